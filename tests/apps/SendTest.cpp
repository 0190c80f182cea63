// SPDX-License-Identifier: Apache-2.0

// tolva send: what waits in the Outbox is handed to programs, once.

#include "SendTest.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>

#include <csignal>

namespace
{
constexpr double TheYear2000 = 36526; // 2000
const QString Again = QStringLiteral("again");
const QString Went = QStringLiteral("went");
} // namespace

TEST_F(SendTest, AMailGoesToTheProgramAndThenToSent)
{
    const QString reference = WaitingMail("An answer", "Ann <ann@listeners.example>, bob@listeners.example");
    const Outcome sent = Send();
    EXPECT_EQ(sent.Code, 0) << sent.Problems.constData();
    EXPECT_EQ(sent.Output, reference.toUtf8() + "  sent to ann@listeners.example, bob@listeners.example\n");
    EXPECT_EQ(sent.Problems, "");
    ASSERT_EQ(Taken().size(), 1);
    EXPECT_EQ(Taken().first(), "ARGUMENTS -i -f studio@harbour.example -- ann@listeners.example bob@listeners.example\n"
                               "From: Harbour FM <studio@harbour.example>\n"
                               "To: Ann <ann@listeners.example>, bob@listeners.example\n"
                               "Subject: An answer\nDate: Sat, 21 Nov 2026 14:05:09 +0000\n"
                               "Message-ID: <" +
                                   QByteArray("An answer").toHex() + "@harbour.example>\n\nHello.\n");
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
    EXPECT_FALSE(IsMarked(reference));
    EXPECT_EQ(Send().Output, "") << "nothing is left";
    EXPECT_EQ(TimesCalled(), 1);
}

TEST_F(SendTest, BlindCopiesAreRecipientsAndStandInNoHeader)
{
    Waiting("From: Harbour FM <studio@harbour.example>\r\nTo: ann@listeners.example\r\nBcc: Boss "
            "<boss@harbour.example>,\r\n other@harbour.example\r\nSubject: x\r\n\r\nHello.\r\n");
    EXPECT_EQ(Send().Code, 0);
    ASSERT_EQ(Taken().size(), 1);
    EXPECT_TRUE(Taken().first().startsWith("ARGUMENTS -i -f studio@harbour.example -- ann@listeners.example "
                                           "boss@harbour.example other@harbour.example\n"));
    EXPECT_FALSE(Taken().first().contains("Bcc"));
    EXPECT_EQ(Taken().first().count("other@harbour.example"), 1);
}

TEST_F(SendTest, OnlyWhatIsMarkedAndDueIsSent)
{
    FileMail(Mail("in the inbox"));
    const QString unmarked = WaitingMail("unmarked");
    Set(unmarked, QStringLiteral("[Flags]=0"));
    const QString later = WaitingMail("later");
    Set(later, QStringLiteral("[SendAfter]=73051"));
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(TimesCalled(), 0);
}

TEST_F(SendTest, WhatIsRefusedIsToldStaysAndIsNotTriedAgainByItself)
{
    Answer("echo '550 5.1.1 <ann@listeners.example>: no such user' >&2; exit 67");
    const QString reference = WaitingMail();
    const Outcome refused = Send();
    EXPECT_EQ(refused.Code, 65);
    EXPECT_EQ(refused.Output, "");
    EXPECT_EQ(refused.Problems, "tolva: Message " + reference.toUtf8() +
                                    " to ann@listeners.example was refused: 550 5.1.1 <ann@listeners.example>: no "
                                    "such user\n");
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Outbox"));
    EXPECT_TRUE(IsMarked(reference));
    EXPECT_EQ(StateOf(reference), QStringLiteral("refused"));
    EXPECT_TRUE(Expect("send", {QStringLiteral("state")}).contains("no such user"));

    Answer("");
    const Outcome held = Send();
    EXPECT_EQ(held.Code, 0) << "told already";
    EXPECT_TRUE(held.Output.startsWith(reference.toUtf8() + "  held: Refused")) << held.Output.constData();
    EXPECT_EQ(TimesCalled(), 1);

    Expect("send", {Again, reference});
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(TimesTaken("An answer"), 1);
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
}

TEST_F(SendTest, APassingRefusalIsTriedAgainWithGrowingWaits)
{
    Answer("echo 'greylisted' >&2; exit 75");
    const QString reference = WaitingMail();
    double waited = 0;
    for (int attempt = 1; attempt <= 3; ++attempt) {
        const Outcome putOff = Send();
        EXPECT_EQ(putOff.Code, 75);
        EXPECT_TRUE(putOff.Problems.contains("is put off until")) << putOff.Problems.constData();
        EXPECT_TRUE(putOff.Problems.contains("greylisted"));
        EXPECT_EQ(TimesCalled(), attempt);
        EXPECT_EQ(Send().Code, 0) << "its time has not come";
        EXPECT_EQ(TimesCalled(), attempt);

        const auto file = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Directory/Directory.mdb"));
        const auto rows = file->OpenRecordset(QStringLiteral("Sending"), dao::dbOpenTable);
        const double wait =
            rows->Collect(QStringLiteral("Until")).toDouble() - rows->Collect(QStringLiteral("When")).toDouble();
        EXPECT_GT(wait, waited * 1.5);
        waited = wait;
        file->Close();
        MakeDue(reference);
    }
    Answer("");
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(TimesTaken("An answer"), 1);
}

TEST_F(SendTest, AfterDaysOfPassingRefusalsAPersonHasToDecide)
{
    Answer("echo 'greylisted' >&2; exit 75");
    const QString reference = WaitingMail();
    EXPECT_EQ(Send().Code, 75);
    SetLedger(reference, QStringLiteral("[Until]=%1, [FirstTry]=%1").arg(TheYear2000));
    const Outcome refused = Send();
    EXPECT_EQ(refused.Code, 65);
    EXPECT_TRUE(refused.Problems.contains("was refused: tried for 5 days; at last: greylisted"))
        << refused.Problems.constData();
    EXPECT_EQ(StateOf(reference), QStringLiteral("refused"));
}

TEST_F(SendTest, OneMessageIsTriedAtOnceAlsoWhenItWasPutOff)
{
    Answer("exit 75");
    const QString one = WaitingMail("one");
    const QString other = WaitingMail("other");
    EXPECT_EQ(Send().Code, 75);
    Answer("");
    EXPECT_EQ(Send({QStringLiteral("--message"), other}).Code, 0);
    EXPECT_EQ(FolderOf(other), QStringLiteral("Sent"));
    EXPECT_EQ(FolderOf(one), QStringLiteral("Outbox"));
    EXPECT_EQ(Send({QStringLiteral("--message"), other}).Code, 65) << "it does not wait any more";
}

TEST_F(SendTest, AProgramThatDoesNotEndIsEndedAndItsMessageIsUnclear)
{
    Answer("sleep 300 & wait");
    const QString reference = WaitingMail();
    QElapsedTimer timer;
    timer.start();
    const Outcome unclear = Send({QStringLiteral("--time-limit"), QStringLiteral("1")});
    EXPECT_EQ(unclear.Code, 65);
    EXPECT_LT(timer.elapsed(), 60000);
    EXPECT_TRUE(unclear.Problems.contains("may have gone out or not, and is not sent again by itself: " +
                                          Program().toUtf8() + " did not end within 1 seconds"))
        << unclear.Problems.constData();
    Answer("");
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(TimesTaken("An answer"), 0);
    EXPECT_EQ(StateOf(reference), QStringLiteral("unclear"));
    Expect("send", {Went, reference});
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
    EXPECT_EQ(Send().Output, "");
    EXPECT_EQ(TimesTaken("An answer"), 0);
}

TEST_F(SendTest, AProgramThatIsKilledLeavesItsMessageUnclear)
{
    Answer("kill -9 $$");
    const QString reference = WaitingMail();
    const Outcome unclear = Send();
    EXPECT_EQ(unclear.Code, 65);
    EXPECT_TRUE(unclear.Problems.contains("was killed")) << unclear.Problems.constData();
    EXPECT_EQ(StateOf(reference), QStringLiteral("unclear"));
}

TEST_F(SendTest, KilledBeforeItHeardOfTheAcceptanceNothingIsSentTwice)
{
    Answer("accept; kill -9 $PPID; exit 0");
    const QString reference = WaitingMail();
    QProcess killed;
    Prepare(killed, QStringList{QStringLiteral("send"), Station()} + SendWords());
    killed.start();
    ASSERT_TRUE(killed.waitForFinished(60000));
    ASSERT_EQ(killed.exitStatus(), QProcess::CrashExit);
    ASSERT_EQ(TimesTaken("An answer"), 1);
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Outbox"));
    Answer("");
    EXPECT_EQ(StateOf(reference), QStringLiteral("beingSent"));
    EXPECT_EQ(Send().Code, 0);
    // Whoever claimed it has not been heard of for longer than that may take.
    MakeDue(reference);
    EXPECT_EQ(StateOf(reference), QStringLiteral("unclear"));
    const Outcome held = Send();
    EXPECT_EQ(held.Code, 0);
    EXPECT_TRUE(held.Output.contains("held: May have gone out")) << held.Output.constData();
    EXPECT_EQ(TimesCalled(), 1) << "never by itself";
    Expect("send", {Again, reference});
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(TimesTaken("An answer"), 2) << "somebody wanted it so";
}

TEST_F(SendTest, WhatWasAcceptedAndNotMarkedIsMarkedByTheNextRunAndNotSentAgain)
{
    const QString reference = WaitingMail();
    {
        const auto station = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        dao::DBEngine::BeginTrans();
        station->LockForChange();
        const Outcome unmarked = Send();
        dao::DBEngine::Rollback();
        station->Close();
        EXPECT_EQ(unmarked.Code, 75);
        EXPECT_TRUE(unmarked.Problems.contains("was sent, but could not be marked as sent; the next run tries that"))
            << unmarked.Problems.constData();
    }
    ASSERT_EQ(TimesTaken("An answer"), 1);
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Outbox"));
    EXPECT_EQ(StateOf(reference), QStringLiteral("sent"));
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
    EXPECT_EQ(TimesCalled(), 1);
}

TEST_F(SendTest, SeveralRunsAtOnceHandEachMessageOverOnce)
{
    constexpr int Count = 20;
    constexpr int Runs = 4;
    for (int i = 0; i < Count; ++i)
        WaitingMail("answer " + QByteArray::number(i));
    std::vector<std::unique_ptr<QProcess>> runs;
    for (int i = 0; i < Runs; ++i) {
        runs.push_back(std::make_unique<QProcess>());
        Prepare(*runs.back(), QStringList{QStringLiteral("send"), Station()} + SendWords());
        runs.back()->start();
    }
    for (const auto& run : runs) {
        ASSERT_TRUE(run->waitForFinished(120000));
        EXPECT_EQ(run->exitCode(), 0) << run->readAllStandardError().constData();
    }
    for (int i = 0; i < Count; ++i)
        EXPECT_EQ(TimesTaken("answer " + QByteArray::number(i)), 1) << i;
    EXPECT_EQ(TimesCalled(), Count);
    EXPECT_EQ(Expect("pending", {QStringLiteral("--json")}), "") << "all are marked";
}

TEST_F(SendTest, ToldToEndItLetsTheHandOverComeToItsEndAndBeginsNoOther)
{
    const QByteArray goOn = Path(QStringLiteral("go-on")).toUtf8();
    Answer("until [ -e '" + goOn + "' ]; do sleep 0.05; done");
    const QString first = WaitingMail("first");
    const QString second = WaitingMail("second");
    QProcess run;
    Prepare(run, QStringList{QStringLiteral("send"), Station()} + SendWords());
    run.start();
    for (const QDeadlineTimer deadline(30000); TimesCalled() == 0 && !deadline.hasExpired();)
        run.waitForFinished(10);
    ASSERT_EQ(TimesCalled(), 1);
    run.terminate();
    EXPECT_FALSE(run.waitForFinished(300)) << "it has left the hand-over alone";
    Write(QStringLiteral("go-on"), "");
    ASSERT_TRUE(run.waitForFinished(30000));
    EXPECT_EQ(run.exitCode(), 130);
    EXPECT_EQ(FolderOf(first), QStringLiteral("Sent"));
    EXPECT_EQ(StateOf(second), QStringLiteral("waiting"));
}

TEST_F(SendTest, AMessageThatSomebodyTakesBackWhileItGoesOutStaysWhereHePutIt)
{
    const QString reference = WaitingMail();
    Answer(QByteArray(TOLVA_PROGRAM) + " move '" + Station().toUtf8() + "' " + reference.toUtf8() + " 6");
    const Outcome sent = Send();
    EXPECT_EQ(sent.Code, 0);
    EXPECT_TRUE(sent.Problems.contains("was sent; meanwhile somebody had taken it out of the Outbox"))
        << sent.Problems.constData();
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Draft Messages"));
    EXPECT_EQ(Send().Problems, "") << "once is enough";
}

TEST_F(SendTest, PuttingBackABackupDoesNotSendAgainWhatWentOut)
{
    const QString reference = WaitingMail();
    Expect("backup");
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
    ASSERT_EQ(OnStation("restore", {QStringLiteral("--yes")}).Code, 0);
    ASSERT_EQ(FolderOf(reference), QStringLiteral("Outbox"));
    const Outcome held = Send();
    EXPECT_EQ(held.Code, 0);
    EXPECT_TRUE(held.Output.contains("held: May have gone out")) << held.Output.constData();
    EXPECT_EQ(TimesCalled(), 1);
}

TEST_F(SendTest, AMessageThatIsWrittenAnewIsAnotherOne)
{
    const QString reference = WaitingMail("first");
    EXPECT_EQ(Send().Code, 0);
    // Another content under the number, as when somebody continues a draft.
    const QString other = WaitingMail("second");
    const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
    const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
    rows->SetIndex(QStringLiteral("Main"));
    rows->Seek(dao::SeekComparison::Equal, {other.toInt()});
    const QVariant mail = rows->Collect(QStringLiteral("Message"));
    rows->Delete();
    rows->Seek(dao::SeekComparison::Equal, {reference.toInt()});
    rows->Edit();
    rows->SetCollect(QStringLiteral("Message"), mail);
    rows->SetCollect(QStringLiteral("Category"), 2);
    rows->SetCollect(QStringLiteral("Flags"), 2);
    rows->Update();
    database->Close();
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(TimesTaken("first"), 1);
    EXPECT_EQ(TimesTaken("second"), 1);
}

TEST_F(SendTest, ASetUpThatIsWrongEndsTheRunAndRefusesNothing)
{
    Answer("echo 'account studio not found' >&2; exit 78");
    const QString one = WaitingMail("one");
    WaitingMail("two");
    const Outcome wrong = Send();
    EXPECT_EQ(wrong.Code, 69);
    EXPECT_TRUE(wrong.Problems.contains("account studio not found"));
    EXPECT_EQ(TimesCalled(), 1) << "the next would fare no better";
    EXPECT_EQ(StateOf(one), QStringLiteral("notYet"));
}

TEST_F(SendTest, AProgramThatIsNotThereLeavesEverythingAsItWas)
{
    const QString reference = WaitingMail();
    const Outcome none = OnStation("send", {QStringLiteral("--sendmail"), Path(QStringLiteral("bin/nothing"))});
    EXPECT_EQ(none.Code, 69);
    EXPECT_TRUE(none.Problems.contains("cannot be started")) << none.Problems.constData();
    EXPECT_EQ(StateOf(reference), QStringLiteral("waiting"));
    EXPECT_EQ(Send().Code, 0);
}

TEST_F(SendTest, WithoutAnAddressOfTheStationNoMailGoesOut)
{
    Expect("setting", {QStringLiteral("Station.EmailAddress"), QString()});
    WaitingMail();
    const Outcome none = Send();
    EXPECT_EQ(none.Code, 69);
    EXPECT_TRUE(none.Problems.contains("tolva setting " + Station().toUtf8() + " Station.EmailAddress ADDRESS"))
        << none.Problems.constData();
    EXPECT_EQ(Send({QStringLiteral("--from"), QStringLiteral("desk@harbour.example")}).Code, 0);
    ASSERT_EQ(Taken().size(), 1);
    EXPECT_TRUE(Taken().first().startsWith("ARGUMENTS -i -f desk@harbour.example -- "));
    EXPECT_TRUE(Taken().first().contains("<desk@harbour.example>\n")) << Taken().first().constData();
    EXPECT_FALSE(Taken().first().contains("studio@harbour.example>"));
}

TEST_F(SendTest, ADryRunSaysWhatWouldGoOutAndChangesNothing)
{
    const QString reference = WaitingMail();
    const Outcome dry = Send({QStringLiteral("--dry-run")});
    EXPECT_EQ(dry.Code, 0);
    EXPECT_EQ(dry.Output, reference.toUtf8() + "  would be sent to ann@listeners.example\n");
    EXPECT_EQ(TimesCalled(), 0);
    EXPECT_EQ(StateOf(reference), QStringLiteral("waiting"));
}

TEST_F(SendTest, JsonSaysWhatBecameOfEach)
{
    const QString sent = WaitingMail("one");
    const QString refused = WaitingMail("two", "nobody");
    const Outcome outcome = Send({QStringLiteral("--json")});
    EXPECT_EQ(outcome.Code, 65);
    const QList<QByteArray> lines = outcome.Lines();
    ASSERT_EQ(lines.size(), 2);
    const QJsonObject first = QJsonDocument::fromJson(lines.at(0)).object();
    EXPECT_EQ(QString::number(first.value(QStringLiteral("reference")).toInt()), sent);
    EXPECT_EQ(first.value(QStringLiteral("outcome")).toString(), QStringLiteral("sent"));
    EXPECT_EQ(first.value(QStringLiteral("recipients")).toArray().first().toString(),
              QStringLiteral("ann@listeners.example"));
    const QJsonObject second = QJsonDocument::fromJson(lines.at(1)).object();
    EXPECT_EQ(QString::number(second.value(QStringLiteral("reference")).toInt()), refused);
    EXPECT_EQ(second.value(QStringLiteral("outcome")).toString(), QStringLiteral("refused"));
    EXPECT_EQ(second.value(QStringLiteral("words")).toString(), QStringLiteral("\"nobody\" is no mail address."));
}

TEST_F(SendTest, NoMoreGoOutInAMinuteThanIsAllowed)
{
    for (int i = 0; i < 4; ++i)
        WaitingMail("answer " + QByteArray::number(i));
    const QStringList limit = {QStringLiteral("--per-minute"), QStringLiteral("3")};
    const Outcome first = Send(limit);
    EXPECT_EQ(first.Code, 0);
    EXPECT_TRUE(first.Output.contains("as many as may be sent in a minute")) << first.Output.constData();
    EXPECT_EQ(TimesCalled(), 3);
    EXPECT_EQ(Send(limit).Code, 0);
    EXPECT_EQ(TimesCalled(), 3) << "of all runs together";
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(TimesCalled(), 4);
}

TEST_F(SendTest, SendingNeedsTheRightToEditMessages)
{
    AddUser(QStringLiteral("Guest"), 0);
    WaitingMail();
    const Outcome refused = Send({QStringLiteral("--user"), QStringLiteral("Guest")});
    EXPECT_EQ(refused.Code, 77);
    EXPECT_EQ(TimesCalled(), 0);
}

TEST_F(SendTest, WhatTheCommandLineCannotMeanIsRefused)
{
    EXPECT_EQ(Send({QStringLiteral("--type"), QStringLiteral("fax")}).Code, 64);
    EXPECT_EQ(Send({QStringLiteral("--gammu"), Program(), QStringLiteral("--sms"), Program()}).Code, 64);
    EXPECT_EQ(Send({QStringLiteral("--per-minute"), QStringLiteral("0")}).Code, 64);
    EXPECT_EQ(OnStation("send", {Again}).Code, 64);
    EXPECT_EQ(OnStation("send", {Again, QStringLiteral("1")}).Code, 65) << "there is no such message";
    EXPECT_EQ(OnStation("send", {QStringLiteral("please")}).Code, 64);
}

TEST_F(SendTest, WhatIsHandedOutAsAFileIsNotSentUntilSomebodyDecides)
{
    const QString reference = WaitingMail();
    const QString tray = Path(QStringLiteral("taken"));
    Expect("pending", {QStringLiteral("--export"), tray});
    const Outcome held = Send();
    EXPECT_EQ(TimesTaken("An answer"), 0);
    EXPECT_TRUE((held.Output + held.Problems).contains("handed out as a file in " + tray.toUtf8()))
        << held.Output.constData() << held.Problems.constData();
    EXPECT_EQ(StateOf(reference), QStringLiteral("unclear"));
    // The program that takes files may take it once more, and marks it.
    Expect("pending", {QStringLiteral("--export"), tray, QStringLiteral("--force")});
    Expect("send", {QStringLiteral("again"), reference});
    EXPECT_EQ(Send().Code, 0);
    EXPECT_EQ(TimesTaken("An answer"), 1);
}

TEST_F(SendTest, WhatWasSentOrMayHaveBeenIsNotHandedOutAsAFile)
{
    Answer("kill -9 $$");
    const QString reference = WaitingMail();
    Send();
    ASSERT_EQ(StateOf(reference), QStringLiteral("unclear"));
    const QString tray = Path(QStringLiteral("tray"));
    ASSERT_TRUE(QDir().mkpath(tray));
    const Outcome refused = OnStation("pending", {QStringLiteral("--export"), tray});
    EXPECT_EQ(refused.Code, 65);
    EXPECT_TRUE(refused.Problems.contains("is not handed out, because tolva send has it: May have gone out"))
        << refused.Problems.constData();
    EXPECT_TRUE(QDir(tray).isEmpty());
    Expect("send", {QStringLiteral("again"), reference});
    EXPECT_EQ(OnStation("pending", {QStringLiteral("--export"), tray}).Code, 0);
    EXPECT_TRUE(QFile::exists(tray + u'/' + reference + QStringLiteral(".eml")));
}

TEST_F(SendTest, WhatAnotherProgramMarkedStandsInTheLedger)
{
    const QString reference = WaitingMail();
    Expect("pending", {QStringLiteral("--export"), Path(QStringLiteral("taken"))});
    Expect("pending", {QStringLiteral("sent"), reference});
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
    // An older state of the station comes back.
    Set(reference, QStringLiteral("[Category]=2, [Flags]=2"));
    Send();
    EXPECT_EQ(TimesTaken("An answer"), 0);
    EXPECT_EQ(StateOf(reference), QStringLiteral("unclear"));
}
