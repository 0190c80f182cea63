// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

#include <QFile>

using namespace dao;

namespace
{

const QString MemoField = QStringLiteral("Message");

/// The beginnings of memos, read without the rest of them.
class MemoBeginningTest : public RecordsFixture
{
protected:
    MemoBeginningTest() { MakeMessages(); }

    std::unique_ptr<Recordset> Snapshot()
    {
        return Db().OpenRecordset(QStringLiteral("SELECT * FROM [Messages] ORDER BY [Reference] DESC"), dbOpenSnapshot);
    }
    void ExpectBeginnings(Recordset& rows, qsizetype most)
    {
        int count = 0;
        for (; !rows.AtEOF(); rows.MoveNext(), ++count) {
            const QVariant value = rows[MemoField].Value();
            const QByteArray utf8 = value.toString().toUtf8();
            const MemoBeginning beginning = rows[MemoField].Beginning(most);
            EXPECT_EQ(beginning.Utf8, utf8.first(qMin(most, utf8.size()))) << most;
            EXPECT_EQ(beginning.Utf8.isNull(), !value.isValid());
            EXPECT_EQ(beginning.IsWhole, utf8.size() <= most) << most;
        }
        EXPECT_GT(count, 0);
    }
};

/// Of an engine that can read a part of a memo.
class MemoBeginningFileTest : public MemoBeginningTest
{
};

} // namespace

TEST_P(MemoBeginningTest, IsTheFirstOctetsOfWhatIsStoredInAnyKindOfRecordset)
{
    DBEngine::BeginTrans();
    AddMessage(QStringLiteral("None"));
    AddMessage(QStringLiteral("Short"), QStringLiteral("Dear station"));
    AddMessage(QStringLiteral("Wide"), QStringLiteral("Gr\u00FC\u00DFe ").repeated(3000));
    AddMessage(QStringLiteral("Wider"), QStringLiteral("\u6E2F").repeated(2000));
    for (int i = 0; i < 100; ++i)
        AddMessage(QStringLiteral("Row"), QString(50 * i, QLatin1Char('a')));
    // So large that it is kept as octets.
    AddMessage(QStringLiteral("Large"), QStringLiteral("\u00FC").repeated(700'000));
    DBEngine::CommitTrans();
    for (const qsizetype most : {qsizetype{1}, qsizetype{3}, qsizetype{1000}, qsizetype{4000}, qsizetype{5'000'000}}) {
        ExpectBeginnings(*Snapshot(), most);
        ExpectBeginnings(*Db().OpenRecordset(QStringLiteral("SELECT * FROM [Messages]"), dbOpenDynaset), most);
        ExpectBeginnings(*OpenMessages(), most);
    }
}

TEST_P(MemoBeginningTest, OfARowThatIsGoneIsAnError)
{
    AddMessage(QStringLiteral("One"), QStringLiteral("Dear station"));
    const auto rows = Snapshot();
    OpenMessages()->Delete();
    EXPECT_EQ(ErrorNumberOf([&] { (*rows)[MemoField].Beginning(4); }), errRecordDeleted);
}

TEST_P(MemoBeginningTest, OfARowThatIsBeingEditedIsWhatWasSet)
{
    AddMessage(QStringLiteral("One"), QStringLiteral("Dear station"));
    const auto rows = OpenMessages();
    rows->Edit();
    rows->SetCollect(MemoField, QStringLiteral("Hello"));
    EXPECT_EQ((*rows)[MemoField].Beginning(4).Utf8, QByteArray("Hell"));
    EXPECT_FALSE((*rows)[MemoField].Beginning(4).IsWhole);
}

TEST_P(MemoBeginningTest, OfEachRowOfAWalkAreItsOwnWhateverTheirLength)
{
    DBEngine::BeginTrans();
    for (int i = 0; i < 300; ++i)
        AddMessage(QStringLiteral("Row"), QStringLiteral("Mail %1 ").arg(i).repeated(1000));
    DBEngine::CommitTrans();
    const auto rows = Snapshot();
    for (int i = 299; i >= 0; --i, rows->MoveNext()) {
        // Another length in the middle of the walk, and back.
        const qsizetype most = i == 150 ? 2000 : 9;
        EXPECT_EQ((*rows)[MemoField].Beginning(most).Utf8,
                  QStringLiteral("Mail %1 ").arg(i).repeated(1000).toUtf8().first(most));
    }
}

TEST_P(MemoBeginningFileTest, IsReadWhereWhatLiesBehindItIsDamaged)
{
    const QByteArray start(200, 'a');
    AddMessage(QStringLiteral("One"), QString::fromLatin1(start + QByteArray(60000, 'b')));
    AddMessage(QStringLiteral("Two"), QStringLiteral("Dear station"));
    Database_.reset();
    QFile file(FileName());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray octets = file.readAll();
    // As the engine stores it: an octet a character, or two.
    const QByteArray unit = GetParam() == QStringLiteral("jet") ? QByteArray("b\0", 2) : QByteArray("b");
    const qsizetype middle = octets.indexOf(unit.repeated(1500));
    ASSERT_GT(middle, 0);
    // A page that lies in that stretch whole.
    constexpr qsizetype Page = 4096;
    const qsizetype page = (middle / Page + 5) * Page;
    ASSERT_TRUE(octets.mid(page + Page / 2, 1000) == unit.repeated(1000 / static_cast<int>(unit.size())));
    ASSERT_TRUE(file.seek(page) && file.write(QByteArray(Page, '\xFF')) == Page);
    file.close();
    Database_ = DBEngine::OpenDatabase(FileName());
    const auto rows = Snapshot();
    EXPECT_EQ((*rows)[MemoField].Beginning(200).Utf8, QByteArray("Dear station"));
    rows->MoveNext();
    const int error = ErrorNumberOf([&] { (*rows)[MemoField].Octets(); });
    EXPECT_TRUE(error == errFileDamaged || error == errMemoDamaged) << error;
    EXPECT_EQ((*rows)[MemoField].Beginning(200).Utf8, start);
}

INSTANTIATE_FOR_ENGINES(MemoBeginningTest);
INSTANTIATE_TEST_SUITE_P(, MemoBeginningFileTest, testing::Values(QStringLiteral("sqlite"), QStringLiteral("jet")),
                         EngineTestName);
