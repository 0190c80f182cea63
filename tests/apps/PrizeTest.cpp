// SPDX-License-Identifier: Apache-2.0

// tolva prizes and tolva prize.

#include "CommandLineTest.h"
#include "platform/directory/EmbeddedDirectory.h"
#include "platform/records/DBEngine.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace
{
QStringList Words(const char* line)
{
    return QString::fromUtf8(line).split(u' ', Qt::SkipEmptyParts);
}

class PrizeTest : public CommandLineTest
{
protected:
    /// The reference of a contact of the station's directory.
    qint32 AddContact(const QString& name, const QString& mobile = QString()) const
    {
        EmbeddedDirectory directory;
        directory.Open(Station() + QStringLiteral("/Directory"));
        clsKVContact contact;
        contact.Name = name;
        contact.Mobile = mobile;
        directory.SaveContact(contact);
        return contact.Reference;
    }
    /// "prize FOLDER WORDS..."
    Outcome Prize(const QStringList& words, const QByteArray& input = {}) const
    {
        return OnStation("prize", words, input);
    }
    QByteArray ExpectPrize(const QStringList& words) const { return Expect("prize", words); }
    /// The number of a new prize.
    QString AddPrize(const QString& title, int units = 1, const QStringList& options = {}) const
    {
        return QString::fromLatin1(ExpectPrize(QStringList{QStringLiteral("add"), QStringLiteral("--title"), title,
                                                           QStringLiteral("--supplied"), QString::number(units)} +
                                               options))
            .trimmed();
    }
    QByteArray AwardTo(const QString& prize, qint32 contact) const
    {
        return ExpectPrize({QStringLiteral("award"), prize, QStringLiteral("--contact"), QString::number(contact)});
    }
    QJsonObject Json(const QString& prize) const
    {
        return QJsonDocument::fromJson(ExpectPrize({QStringLiteral("show"), prize, QStringLiteral("--json")})).object();
    }
    QList<QJsonObject> JsonLines(const char* command, const QStringList& words) const
    {
        QList<QJsonObject> objects;
        for (const QByteArray& line : Expect(command, words + QStringList{QStringLiteral("--json")}).split('\n')) {
            if (!line.isEmpty())
                objects.append(QJsonDocument::fromJson(line).object());
        }
        return objects;
    }
    QStringList Titles(const QStringList& options) const
    {
        QStringList titles;
        for (const QJsonObject& prize : JsonLines("prizes", options))
            titles.append(prize.value(QStringLiteral("title")).toString());
        return titles;
    }
    /// The numbers of a prize's winners.
    QStringList WinnersOf(const QString& prize) const
    {
        QStringList winners;
        const Outcome outcome = Prize({QStringLiteral("winners"), prize, QStringLiteral("--json")});
        EXPECT_EQ(outcome.Code, 0);
        for (const QByteArray& line : outcome.Lines()) {
            const QJsonObject winner = QJsonDocument::fromJson(line).object();
            winners.append(QString::number(winner.value(QStringLiteral("reference")).toInt()));
        }
        return winners;
    }
    /// Writes a number into the row, past the program.
    void Overwrite(const QString& prize, const QString& column, int value) const
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        const auto rows = database->OpenRecordset(QStringLiteral("Prizes"), dao::dbOpenTable);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {prize.toInt()});
        ASSERT_FALSE(rows->NoMatch());
        rows->Edit();
        rows->SetCollect(column, value);
        rows->Update();
    }
};
} // namespace

TEST_F(PrizeTest, ANewPrizeIsShownWithAllThatWasSaid)
{
    const Outcome added = Prize({QStringLiteral("add"), QStringLiteral("--title"), QStringLiteral("Two tickets"),
                                 QStringLiteral("--supplied"), QStringLiteral("3"), QStringLiteral("--start"),
                                 QStringLiteral("2026-12-01"), QStringLiteral("--end"), QStringLiteral("2026-12-24"),
                                 QStringLiteral("--hours"), QStringLiteral("9-17"), QStringLiteral("--script-file"),
                                 QStringLiteral("-"), QStringLiteral("--notes"), QStringLiteral("At the door")},
                                "Ring us now, \xC3\xA9t\xC3\xA9!\n");
    ASSERT_EQ(added.Code, 0) << added.Problems.constData();
    EXPECT_EQ(added.Output, "1\n");
    EXPECT_EQ(added.Problems, "");
    const QByteArray shown = ExpectPrize(Words("show 1"));
    for (const char* part : {"Prize:       1\n", "Title:       Two tickets\n", "Stock:       3 of 3 left\n",
                             "From:        Tue 01 Dec 2026 00:00:00\n", "Until:       Thu 24 Dec 2026 23:59:59\n",
                             "Hours:       every day 09:00 to 17:00\n", ", Technician\n",
                             "\nScript:\nRing us now, \xC3\xA9t\xC3\xA9!\n", "\nNotes:\nAt the door\n"}) {
        EXPECT_TRUE(shown.contains(part)) << part << "\nis not in\n" << shown.constData();
    }
    const QJsonObject prize = Json(QStringLiteral("1"));
    EXPECT_EQ(prize.value(QStringLiteral("supplied")).toInt(), 3);
    EXPECT_EQ(prize.value(QStringLiteral("winners")).toInt(), 0);
    EXPECT_EQ(prize.value(QStringLiteral("end")).toString(), QStringLiteral("2026-12-24T23:59:59Z"));
    EXPECT_TRUE(prize.value(QStringLiteral("lastWon")).isNull());
    EXPECT_EQ(prize.value(QStringLiteral("hours")).toArray().at(6).toString(),
              QStringLiteral("         JKLMNOPQ       "));
}

TEST_F(PrizeTest, EditingChangesWhatIsSaidAndNothingElse)
{
    const QString prize = AddPrize(QStringLiteral("Mug"), 2, {QStringLiteral("--notes"), QStringLiteral("blue")});
    ExpectPrize({QStringLiteral("edit"), prize, QStringLiteral("--title"), QStringLiteral("Red mug"),
                 QStringLiteral("--end"), QStringLiteral("2026-12-24 18:30")});
    QJsonObject read = Json(prize);
    EXPECT_EQ(read.value(QStringLiteral("title")).toString(), QStringLiteral("Red mug"));
    EXPECT_EQ(read.value(QStringLiteral("notes")).toString(), QStringLiteral("blue"));
    EXPECT_EQ(read.value(QStringLiteral("supplied")).toInt(), 2);
    EXPECT_EQ(read.value(QStringLiteral("end")).toString(), QStringLiteral("2026-12-24T18:30:00Z"));
    ExpectPrize({QStringLiteral("edit"), prize, QStringLiteral("--end"), QString()});
    EXPECT_TRUE(Json(prize).value(QStringLiteral("end")).isNull());
}

TEST_F(PrizeTest, WhatIsNotUnderstoodIsRefusedBeforeAnythingIsDone)
{
    const QString prize = AddPrize(QStringLiteral("Mug"));
    const QList<QStringList> refused = {
        Words("add"),
        {QStringLiteral("add"), QStringLiteral("--title"), QStringLiteral("  ")},
        {QStringLiteral("add"), QStringLiteral("--title"), QString(256, u'x')},
        Words("add --title x --supplied -1"),
        Words("add --title x --supplied many"),
        Words("add --title x --start 2026-13-45"),
        Words("add --title x --end soon"),
        Words("add --title x --start 2026-12-24 --end 2026-12-23"),
        Words("add --title x --hours 17-9"),
        Words("add --title x --hours 9-25"),
        Words("add --title x --hours morning"),
        Words("add --title x --script a --script-file b"),
        Words("add --title x --contact 1"),
        Words("edit 1"),
        Words("edit one --title x"),
        Words("show 0"),
        Words("show"),
        Words("show 1 2"),
        Words("hours 1 --day someday"),
        Words("hours 1 --set 9-"),
        Words("award 1"),
        Words("award 1 --contact 1 --name Ann"),
        Words("award 1 --contact Ann"),
        {QStringLiteral("award"), QStringLiteral("1"), QStringLiteral("--name"), QStringLiteral(" ")},
        Words("frobnicate 1"),
    };
    for (const QStringList& words : refused) {
        const Outcome outcome = Prize(words);
        EXPECT_EQ(outcome.Code, 64) << words.join(u' ').toStdString();
        EXPECT_TRUE(outcome.Problems.startsWith("tolva: ")) << words.join(u' ').toStdString();
        EXPECT_EQ(outcome.Output, "") << words.join(u' ').toStdString();
    }
    EXPECT_EQ(OnStation("prizes", Words("--now --won")).Code, 64);
    EXPECT_EQ(Titles({QStringLiteral("--all")}), QStringList{QStringLiteral("Mug")});
    EXPECT_EQ(Prize(Words("add --title x --script-file absent.txt")).Code, 66);
    EXPECT_EQ(Prize({QStringLiteral("add"), QStringLiteral("--title"), QStringLiteral("x"),
                     QStringLiteral("--script-file"), Write(QStringLiteral("bad.txt"), "\xff\xfe")})
                  .Code,
              65);
}

TEST_F(PrizeTest, APrizeThatIsNotThereIsSaid)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    for (const QStringList& words : {Words("show 9"), Words("edit 9 --title x"), Words("delete 9"), Words("hours 9"),
                                     Words("winners 9"), Words("recount 9"),
                                     QStringList{QStringLiteral("award"), QStringLiteral("9"),
                                                 QStringLiteral("--contact"), QString::number(ann)}}) {
        const Outcome outcome = Prize(words);
        EXPECT_EQ(outcome.Code, 65) << words.join(u' ').toStdString();
        EXPECT_TRUE(outcome.Problems.startsWith("tolva: There is no prize 9 in the station in"))
            << outcome.Problems.constData();
    }
    EXPECT_EQ(Prize(Words("remove-winner 9")).Code, 65);
}

TEST_F(PrizeTest, ListsShowTheirKinds)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    AddPrize(QStringLiteral("any"), 2);
    AddPrize(QStringLiteral("never"), 1, {QStringLiteral("--hours"), QStringLiteral("none")});
    AddPrize(QStringLiteral("over"), 1, {QStringLiteral("--end"), QStringLiteral("2020-01-01")});
    AddPrize(QStringLiteral("later"), 1, {QStringLiteral("--start"), QStringLiteral("2099-01-01")});
    AddPrize(QStringLiteral("none"), 0);
    const QString won = AddPrize(QStringLiteral("won"), 1);
    AwardTo(won, ann);
    EXPECT_EQ(Titles({}), (QStringList{QStringLiteral("any"), QStringLiteral("never")}));
    EXPECT_EQ(Titles({QStringLiteral("--now")}), QStringList{QStringLiteral("any")});
    EXPECT_EQ(Titles({QStringLiteral("--all")}).size(), 6);
    EXPECT_EQ(Titles({QStringLiteral("--won")}), QStringList{QStringLiteral("won")});
    EXPECT_EQ(Titles({QStringLiteral("--recent")}), QStringList{QStringLiteral("won")});
    EXPECT_EQ(Expect("prizes"), "     1       2/2                  any\n     2       1/1                  never\n");
    const Outcome none = OnStation("prizes", {QStringLiteral("--find"), QStringLiteral("zebra")});
    EXPECT_EQ(none.Code, 0);
    EXPECT_EQ(none.Output, "");
    EXPECT_EQ(none.Problems, "tolva: There are no matching prizes.\n");
}

TEST_F(PrizeTest, TheFindTextIsTakenLiterally)
{
    for (const char* title : {"100% *free* [one]", "What? \"This\" #1", "It's"})
        AddPrize(QString::fromLatin1(title));
    const auto found = [this](const char* text) {
        return Titles({QStringLiteral("--find"), QString::fromLatin1(text)}).size();
    };
    for (const char* text : {"*free*", "[one]", "?", "\"this\"", "#", "'", "100%", "*"})
        EXPECT_EQ(found(text), 1) << text;
    EXPECT_EQ(found("f*e"), 0);
    EXPECT_EQ(found(""), 3);
}

TEST_F(PrizeTest, HoursAreShownAndSetByDay)
{
    const QString prize = AddPrize(QStringLiteral("Mug"));
    const QStringList hours = {QStringLiteral("hours"), prize};
    EXPECT_TRUE(ExpectPrize(hours).startsWith("Monday all day\nTuesday all day\n"));
    EXPECT_EQ(ExpectPrize(hours + Words("--day wed --set 9-12,18-24")),
              "Wednesday 09:00 to 12:00 and 18:00 to midnight\n");
    EXPECT_EQ(ExpectPrize(hours + Words("--day Sunday --set none")), "Sunday never\n");
    EXPECT_EQ(ExpectPrize(hours + Words("--day mon --set 7")), "Monday 07:00 to 08:00\n");
    EXPECT_EQ(ExpectPrize(hours + Words("--day mon --json")), "{\"day\":\"mon\",\"hours\":[7]}\n");
    EXPECT_EQ(Json(prize).value(QStringLiteral("hours")).toArray().at(2).toString(),
              QStringLiteral("         JKL      STUVWX"));
    EXPECT_EQ(Json(prize).value(QStringLiteral("hours")).toArray().at(3).toString(),
              QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX"));
    ExpectPrize(hours + Words("--set all"));
    EXPECT_TRUE(ExpectPrize(Words("show 1")).contains("at any time"));
}

TEST_F(PrizeTest, AnAwardIsAcknowledgedWithTheWinnersNumberAndWhatIsLeft)
{
    const qint32 carla = AddContact(QStringLiteral("Carla Count"), QStringLiteral("07700 900123"));
    AddContact(QStringLiteral("Carl Counter"));
    const QString prize = AddPrize(QStringLiteral("Tickets"), 3);
    EXPECT_EQ(AwardTo(prize, carla), "1  Carla Count: \"Tickets\", 2 of 3 left\n");
    const Outcome again = Prize({QStringLiteral("award"), prize, QStringLiteral("--number"),
                                 QStringLiteral("+44 7700 900123"), QStringLiteral("--notes"), QStringLiteral("n")});
    EXPECT_EQ(again.Code, 0);
    EXPECT_EQ(again.Output, "2  Carla Count: \"Tickets\", 1 of 3 left\n");
    // A second prize within the days in which winners wait is said.
    EXPECT_TRUE(again.Problems.startsWith("tolva: Carla Count won \"Tickets\" on ")) << again.Problems.constData();
    EXPECT_TRUE(again.Problems.endsWith("winners wait 30 days here.\n"));
    Expect("setting", Words("Prizes.EligibleDays 0"));
    EXPECT_EQ(ExpectPrize({QStringLiteral("award"), prize, QStringLiteral("--name"), QStringLiteral("carla count")}),
              "3  Carla Count: \"Tickets\", 0 of 3 left\n");
    const QList<QJsonObject> winners = JsonLines("prize", {QStringLiteral("winners"), prize});
    ASSERT_EQ(winners.size(), 3);
    EXPECT_EQ(winners.at(0).value(QStringLiteral("contact")).toInt(), carla);
    EXPECT_EQ(winners.at(1).value(QStringLiteral("name")).toString(), QStringLiteral("Carla Count"));
    EXPECT_EQ(winners.at(1).value(QStringLiteral("notes")).toString(), QStringLiteral("n"));
    EXPECT_TRUE(winners.at(1).value(QStringLiteral("sent")).isNull());
    EXPECT_TRUE(ExpectPrize({QStringLiteral("winners"), prize}).contains("Carla Count, awarded by Technician\n"));
}

TEST_F(PrizeTest, AWinnerWhoIsNobodyOrSeveralIsRefused)
{
    AddContact(QStringLiteral("Ann Able"), QStringLiteral("07700 900123"));
    AddContact(QStringLiteral("Ann Baker"), QStringLiteral("07700 900123"));
    const QString prize = AddPrize(QStringLiteral("Mug"));
    const auto award = [&](const char* option, const char* value) {
        return Prize({QStringLiteral("award"), prize, QString::fromLatin1(option), QString::fromLatin1(value)});
    };
    EXPECT_EQ(award("--contact", "99").Code, 65);
    EXPECT_EQ(award("--name", "Zoe").Code, 65);
    const Outcome several = award("--name", "Ann");
    EXPECT_EQ(several.Code, 65);
    EXPECT_EQ(
        several.Problems,
        "tolva: Several contacts have the name \"Ann\": Ann Able (1), Ann Baker (2). Say which with --contact.\n");
    EXPECT_EQ(award("--number", "07700900123").Code, 65);
    EXPECT_EQ(award("--number", "07700900999").Code, 65);
    EXPECT_TRUE(WinnersOf(prize).isEmpty());
    EXPECT_EQ(award("--name", "ann able").Code, 0);
}

TEST_F(PrizeTest, AFullPrizeAndOneOfNoneAreRefusedInWords)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    const QString one = AddPrize(QStringLiteral("Mug"), 1);
    const QString none = AddPrize(QStringLiteral("Air"), 0);
    AwardTo(one, ann);
    const Outcome full = Prize({QStringLiteral("award"), one, QStringLiteral("--contact"), QString::number(ann)});
    EXPECT_EQ(full.Code, 73);
    EXPECT_EQ(full.Problems, "tolva: \"Mug\" has already been fully allocated: all 1 are won.\n");
    const Outcome air = Prize({QStringLiteral("award"), none, QStringLiteral("--contact"), QString::number(ann)});
    EXPECT_EQ(air.Code, 73);
    EXPECT_TRUE(air.Problems.startsWith("tolva: \"Air\" cannot be awarded: none of it was supplied."));
    EXPECT_EQ(WinnersOf(one).size(), 1);
}

TEST_F(PrizeTest, AContactWhoseNumberDoesNotFitIsRefused)
{
    AddContact(QStringLiteral("Ann"));
    // Contacts get their numbers by a counter, which is moved on here.
    {
        const auto directory = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Directory/Directory.mdb"));
        for (int i = 0; i < 600; ++i) {
            const auto rows = directory->OpenRecordset(QStringLiteral("Contacts"), dao::dbOpenTable);
            for (int j = 0; j < 64; ++j)
                rows->AddNew();
        }
    }
    const qint32 late = AddContact(QStringLiteral("Late"));
    ASSERT_GT(late, 32767);
    const QString prize = AddPrize(QStringLiteral("Mug"));
    const Outcome outcome = Prize({QStringLiteral("award"), prize, QStringLiteral("--name"), QStringLiteral("Late")});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_TRUE(outcome.Problems.contains("a winner's number can be 32767 at most")) << outcome.Problems.constData();
    EXPECT_TRUE(WinnersOf(prize).isEmpty());
    EXPECT_EQ(Json(prize).value(QStringLiteral("winners")).toInt(), 0);
}

TEST_F(PrizeTest, WithoutTheRightPrizesAreAwardedAndNotChanged)
{
    AddUser(QStringLiteral("Petra"), 0);
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    const QString prize = AddPrize(QStringLiteral("Mug"), 2);
    const QString theirs = QString::fromLatin1(AwardTo(prize, ann)).section(u' ', 0, 0);
    const QStringList petra = Words("--user Petra");
    for (const QStringList& words :
         {Words("add --title x"), Words("edit 1 --title x"), Words("delete 1"), Words("hours 1 --set all"),
          Words("recount 1"), QStringList{QStringLiteral("remove-winner"), theirs}}) {
        const Outcome outcome = Prize(words + petra);
        EXPECT_EQ(outcome.Code, 77) << words.join(u' ').toStdString();
        EXPECT_EQ(outcome.Problems, "tolva: Petra has no right to manage prizes here.\n");
    }
    EXPECT_EQ(Prize(Words("hours 1") + petra).Code, 0);
    const QStringList award = {QStringLiteral("award"), prize, QStringLiteral("--contact"), QString::number(ann)};
    EXPECT_EQ(Prize(award + petra).Code, 0);
    // What one awarded oneself, one takes back oneself.
    const QString own = WinnersOf(prize).last();
    EXPECT_EQ(Prize(QStringList{QStringLiteral("remove-winner"), own} + petra).Code, 0);
    Expect("setting", Words("Prizes.AwardNeedsRight 1"));
    const Outcome refused = Prize(award + petra);
    EXPECT_EQ(refused.Code, 77);
    EXPECT_EQ(refused.Problems, "tolva: Petra has no right to award prizes here.\n");
    EXPECT_EQ(WinnersOf(prize), QStringList{theirs});
}

TEST_F(PrizeTest, ADeletedPrizeIsGoneWithItsWinnersAndOtherComputersLearnOfIt)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    const QString prize = AddPrize(QStringLiteral("Mug"));
    AwardTo(prize, ann);
    const auto stamp = [this] { return Expect("setting", {QStringLiteral("Prizes.LastChanged")}); };
    const QByteArray before = stamp();
    ExpectPrize({QStringLiteral("delete"), prize});
    EXPECT_NE(stamp(), before);
    EXPECT_TRUE(Titles({QStringLiteral("--all")}).isEmpty());
    EXPECT_EQ(Prize(Words("remove-winner 1")).Code, 65);
}

TEST_F(PrizeTest, AWinnerTakenBackFreesTheUnit)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    const QString prize = AddPrize(QStringLiteral("Mug"));
    AwardTo(prize, ann);
    EXPECT_EQ(ExpectPrize(Words("remove-winner 1")), "");
    EXPECT_EQ(Json(prize).value(QStringLiteral("winners")).toInt(), 0);
    EXPECT_EQ(AwardTo(prize, ann), "2  Ann: \"Mug\", 0 of 1 left\n");
}

TEST_F(PrizeTest, AWinnerWhoWasNotCountedHasTheUnitAllTheSame)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    const QString prize = AddPrize(QStringLiteral("Mug"), 1);
    AwardTo(prize, ann);
    const QString won = Json(prize).value(QStringLiteral("lastWon")).toString();
    // As a program leaves it that was killed before it counted the winner.
    Overwrite(prize, QStringLiteral("NumberWinners"), 0);
    Overwrite(prize, QStringLiteral("LastWonDate"), 0);
    const Outcome second = Prize({QStringLiteral("award"), prize, QStringLiteral("--contact"), QString::number(ann)});
    EXPECT_EQ(second.Code, 73);
    EXPECT_EQ(second.Problems, "tolva: \"Mug\" has already been fully allocated: all 1 are won.\n");
    EXPECT_EQ(WinnersOf(prize), QStringList{QStringLiteral("1")});
    EXPECT_EQ(Json(prize).value(QStringLiteral("winners")).toInt(), 1);
    EXPECT_EQ(Json(prize).value(QStringLiteral("lastWon")).toString(), won);
}

TEST_F(PrizeTest, MoreWinnersThanUnitsAreSaidAndTakenBackWithoutFreeingAUnit)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    Expect("setting", Words("Prizes.EligibleDays 0"));
    const QString prize = AddPrize(QStringLiteral("Mug"), 2);
    AwardTo(prize, ann);
    AwardTo(prize, ann);
    const Outcome fewer = Prize({QStringLiteral("edit"), prize, QStringLiteral("--supplied"), QStringLiteral("1")});
    EXPECT_EQ(fewer.Code, 0);
    EXPECT_EQ(fewer.Problems, "tolva: \"Mug\" is stored with 1 supplied, but 2 are won already.\n");
    // Nobody else was at it; the words allow for that.
    EXPECT_EQ(Prize({QStringLiteral("winners"), prize}).Problems,
              "tolva: \"Mug\" has 1 unit, but 2 winners: it was awarded elsewhere at the same moment, or the number "
              "supplied was lowered since. Take winners back, or put the number supplied right.\n");
    EXPECT_EQ(ExpectPrize(Words("remove-winner 2")), "");
    EXPECT_EQ(Json(prize).value(QStringLiteral("winners")).toInt(), 1);
    EXPECT_EQ(Prize({QStringLiteral("award"), prize, QStringLiteral("--contact"), QString::number(ann)}).Code, 73);
}

TEST_F(PrizeTest, TwoProgramsThatAwardTheLastUnitAtOnceNeverLeaveMoreWinnersUnsaid)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    Expect("setting", Words("Prizes.EligibleDays 0"));
    int bothStood = 0;
    for (int round = 0; round < 12; ++round) {
        const QString prize = AddPrize(QStringLiteral("Mug"), 1);
        const QStringList award = {QStringLiteral("prize"),     Station(),           QStringLiteral("award"), prize,
                                   QStringLiteral("--contact"), QString::number(ann)};
        QProcess first;
        QProcess second;
        for (QProcess* process : {&first, &second}) {
            Prepare(*process, award);
            process->start();
        }
        int stored = 0;
        int warned = 0;
        for (QProcess* process : {&first, &second}) {
            ASSERT_TRUE(process->waitForFinished(60000));
            const QByteArray problems = process->readAllStandardError();
            const int code = process->exitCode();
            EXPECT_TRUE(code == 0 || code == 65 || code == 73) << code << ' ' << problems.constData();
            stored += process->readAllStandardOutput().contains("Ann: \"Mug\"") ? 1 : 0;
            warned += code == 65 ? 1 : 0;
            EXPECT_EQ(code == 65, problems.contains("1 unit, but 2 winners")) << problems.constData();
            EXPECT_EQ(code == 73, problems.contains("has already been fully allocated")) << problems.constData();
        }
        const QStringList winners = WinnersOf(prize);
        EXPECT_EQ(winners.size(), stored);
        EXPECT_GE(stored, 1);
        EXPECT_EQ(warned > 0, winners.size() == 2);
        if (winners.size() == 2) {
            ++bothStood;
            ExpectPrize({QStringLiteral("remove-winner"), winners.last()});
        }
        EXPECT_EQ(Json(prize).value(QStringLiteral("winners")).toInt(), 1);
        EXPECT_EQ(Prize(award.mid(2)).Code, 73);
    }
    RecordProperty("BothStood", bothStood);
}
