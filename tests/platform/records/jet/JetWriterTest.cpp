// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jet/JetFixture.h"

using namespace dao;

namespace
{

class JetWriter : public JetFixture
{
protected:
    void ExpectSound()
    {
        const FileReport report = DBEngine::ExamineDatabase(JetName());
        EXPECT_EQ(report.Verdict, FileReport::State::Sound) << qPrintable(report.Faults.join(u'\n'));
    }
};

} // namespace

TEST_F(JetWriter, WritesWhatIsReadBackValueByValue)
{
    MakeMessages();
    AddMessages(1500);
    WriteJet();
    ExpectSound();
    EXPECT_EQ(AllRows(Jet(), QStringLiteral("Messages")), AllRows(Source(), QStringLiteral("Messages")));
    EXPECT_EQ(AllRows(Jet(), QStringLiteral("Messages"), QStringLiteral("Main")),
              AllRows(Source(), QStringLiteral("Messages"), QStringLiteral("Main")));
    EXPECT_EQ(AllRows(Jet(), QStringLiteral("Messages"), QStringLiteral("When")),
              AllRows(Source(), QStringLiteral("Messages"), QStringLiteral("When")));
}

TEST_F(JetWriter, CompactsAFileWithoutChangingWhatItHolds)
{
    MakeMessages();
    AddMessages(400);
    WriteJet();
    const QStringList before = AllRows(Jet(), QStringLiteral("Messages"), QStringLiteral("Subject"));
    const QString compacted = Path(QStringLiteral("Compacted.mdb"));
    DBEngine::CompactDatabase(JetName(), compacted);
    const auto database = DBEngine::OpenDatabase(compacted);
    EXPECT_EQ(AllRows(*database, QStringLiteral("Messages"), QStringLiteral("Subject")), before);
    EXPECT_EQ(DBEngine::ExamineDatabase(compacted).Verdict, FileReport::State::Sound);
}
