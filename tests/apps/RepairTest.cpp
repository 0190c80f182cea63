// SPDX-License-Identifier: Apache-2.0
#include "CommandLineTest.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace
{

constexpr qsizetype PageSize = 4096;

/// A station in a Jet file with three mails.
class RepairTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        FileMail(Mail("First of them"));
        FileMail(Mail("Second of them", QByteArray("A long letter about the harbour.\r\n").repeated(2000)));
        FileMail(Mail("Third of them"));
        Expect("convert", {QStringLiteral("--to"), QStringLiteral("jet")});
        ASSERT_TRUE(QFile::remove(Station() + QStringLiteral("/Tolva-0001.BAK")));
        Sound = Read(File());
    }
    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }
    QString Kept() const { return Station() + QStringLiteral("/Tolva-damaged-0001.BAK"); }
    void Store(const QByteArray& octets) const { Write(QStringLiteral("station/Tolva.mdb"), octets); }
    /// As it stands in the file: two octets a character.
    static QByteArray Wide(const QByteArray& text)
    {
        QByteArray wide;
        for (const char letter : text)
            wide += QByteArray(1, letter) + QByteArray(1, '\0');
        return wide;
    }
    /// One letter in the middle of the long mail is another one.
    QByteArray WithAChangedLetter() const
    {
        QByteArray octets = Sound;
        const qsizetype at = octets.indexOf(Wide("letter about"), octets.size() / 2);
        EXPECT_GT(at, 0);
        octets[at] = 'b';
        return octets;
    }
    QStringList Files() const
    {
        QStringList files = QDir(Station()).entryList(QDir::Files);
        files.removeAll(QStringLiteral("Tolva.ini"));
        return files;
    }

    QByteArray Sound;
};

} // namespace

TEST_F(RepairTest, SavesWhatIsAsItWasStoredAndTellsWhatIsNot)
{
    const QByteArray damaged = WithAChangedLetter();
    Store(damaged);
    const Outcome dry = OnStation("repair", {QStringLiteral("--dry-run")});
    EXPECT_EQ(dry.Code, 65);
    EXPECT_TRUE(dry.Output.contains("Messages: 2 rows saved, 1 lost\n  lost, by their numbers: 2\n"))
        << dry.Output.constData();
    EXPECT_TRUE(dry.Output.contains("Nothing was changed.")) << dry.Output.constData();
    EXPECT_EQ(Read(File()), damaged);
    EXPECT_EQ(Files(), QStringList(QStringLiteral("Tolva.mdb")));

    const Outcome done = OnStation("repair");
    EXPECT_EQ(done.Code, 65);
    EXPECT_TRUE(done.Output.contains("Messages: 2 rows saved, 1 lost")) << done.Output.constData();
    EXPECT_TRUE(done.Output.contains("The damaged file is kept as " + Kept().toUtf8())) << done.Output.constData();
    EXPECT_EQ(Read(Kept()), damaged);
    const QByteArray list = Expect("list");
    EXPECT_TRUE(list.contains("First of them") && list.contains("Third of them") && !list.contains("Second of them"))
        << list.constData();
    EXPECT_TRUE(Expect("check").contains("The station is sound."));
    EXPECT_EQ(FileMail(Mail("Fourth")), QStringLiteral("4")) << "a number that was given is given again";
    EXPECT_TRUE(Read(File()).mid(4).startsWith("Standard Jet DB"));
}

TEST_F(RepairTest, LeavesASoundStationAlone)
{
    const Outcome outcome = OnStation("repair");
    EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Output.contains("The station is sound; nothing was changed.")) << outcome.Output.constData();
    EXPECT_EQ(Read(File()), Sound);
    EXPECT_EQ(Files(), QStringList(QStringLiteral("Tolva.mdb")));
}

TEST_F(RepairTest, SavesEverythingWhereTheHeadTheListOrADefinitionIsGone)
{
    const QByteArray list = Expect("list");
    // Pages of the format's own, and every definition of the station's tables in turn.
    int repaired = 0;
    for (qsizetype page = 0; page * PageSize < Sound.size(); ++page) {
        const char type = Sound.at(page * PageSize);
        const bool isCatalogueRows = type == 1 && Sound.mid(page * PageSize + 4, 4) == QByteArray("\2\0\0\0", 4);
        if (page > 1 && type != 2 && !isCatalogueRows)
            continue;
        QByteArray octets = Sound;
        std::fill_n(octets.begin() + page * PageSize, PageSize, '\0');
        Store(octets);
        const Outcome outcome = OnStation("repair", {QStringLiteral("--json")});
        const QJsonObject said = QJsonDocument::fromJson(outcome.Output).object();
        EXPECT_TRUE(said.value(QStringLiteral("damaged")).toBool()) << "page " << page << outcome.Problems.constData();
        EXPECT_EQ(Expect("list"), list) << "page " << page << ": " << outcome.Output.constData();
        EXPECT_EQ(Read(said.value(QStringLiteral("kept")).toString()), octets) << "page " << page;
        ++repaired;
    }
    EXPECT_GT(repaired, 10);
    EXPECT_EQ(Files().size(), repaired + 1) << "a damaged file was written over";
}

TEST_F(RepairTest, SaysOfTheUsualFormatWhatToDo)
{
    Expect("convert", {QStringLiteral("--to"), QStringLiteral("sqlite")});
    ASSERT_TRUE(QFile::remove(Station() + QStringLiteral("/Tolva-0001.BAK")));
    EXPECT_EQ(OnStation("repair").Code, 0) << "it is sound";
    const QString backup = QString::fromUtf8(Expect("backup").split('\n').first());
    QByteArray octets = Read(File());
    std::fill_n(octets.begin() + PageSize, 3 * PageSize, 'x');
    Store(octets);
    const Outcome outcome = OnStation("repair");
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_TRUE(outcome.Problems.contains("tolva restore")) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains(QFileInfo(backup).fileName().toUtf8())) << outcome.Problems.constData();
    EXPECT_EQ(Read(File()), octets);
    EXPECT_EQ(Files(), QStringList(QStringLiteral("Tolva.mdb")));
}

TEST_F(RepairTest, RefusesWhatIsNoDatabaseAndWhatAnOfficeProgramHasOpen)
{
    Store(WithAChangedLetter());
    const QString users = Write(QStringLiteral("station/Tolva.ldb"), QByteArray(64, ' '));
    const Outcome open = OnStation("repair");
    EXPECT_EQ(open.Code, 69);
    EXPECT_TRUE(open.Problems.contains("Tolva.ldb")) << open.Problems.constData();
    EXPECT_EQ(Read(File()), WithAChangedLetter());
    ASSERT_TRUE(QFile::remove(users));
    Store("Not a database at all. " + QByteArray(20000, 'x'));
    const Outcome none = OnStation("repair");
    EXPECT_EQ(none.Code, 65);
    EXPECT_TRUE(none.Problems.contains("no database")) << none.Problems.constData();
    EXPECT_EQ(Files(), QStringList(QStringLiteral("Tolva.mdb")));
    EXPECT_EQ(Run({QStringLiteral("repair"), Path(QStringLiteral("nowhere"))}).Code, 66);
}
