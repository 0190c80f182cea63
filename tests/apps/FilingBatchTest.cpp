// SPDX-License-Identifier: Apache-2.0

// Filing in batches: what was told as filed is there whatever happens, nothing is there twice, and others get their
// turn.

#include "CommandLineTest.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QMap>
#include <QRandomGenerator>
#include <QSet>
#include <QThread>

#include <sqlite3.h>

#include <csignal>

class FilingBatchTest : public CommandLineTest
{
protected:
    static QByteArray MailNumber(int number, qsizetype size = 1500)
    {
        return Mail("number " + QByteArray::number(number), QByteArray(size, 'm') + "\r\n");
    }
    /// A maildir of numbered mails.
    QString MakeMaildir(int count, qsizetype size = 1500) const
    {
        QDir().mkpath(Path(QStringLiteral("Maildir/cur")));
        for (int i = 0; i < count; ++i)
            Write(QStringLiteral("Maildir/new/%1.M1P1.mx").arg(1795000000 + i), MailNumber(i, size));
        return Path(QStringLiteral("Maildir"));
    }
    /// How often each mail is in the station, by its subject.
    QMap<QString, int> Counts() const { return CountsIn(Messages()); }
    static QMap<QString, int> CountsIn(const QList<QJsonObject>& messages)
    {
        QMap<QString, int> counts;
        for (const QJsonObject& message : messages)
            ++counts[message.value(QStringLiteral("subject")).toString()];
        return counts;
    }
    static bool EachIsOnce(const QMap<QString, int>& counts)
    {
        return std::all_of(counts.begin(), counts.end(), [](int count) { return count == 1; });
    }
    /// References of the whole lines "filed NAME as REF".
    static QList<int> Acknowledged(const QByteArray& output)
    {
        QList<int> references;
        for (const QByteArray& line : output.left(output.lastIndexOf('\n') + 1).split('\n')) {
            const qsizetype position = line.lastIndexOf(" as ");
            if (position >= 0)
                references.append(line.mid(position + 4).toInt());
        }
        return references;
    }
    /// Runs with the failing calls in front of the C library. The exit code, -1 for a process that was killed.
    int RunFaulty(const QStringList& words, const char* kind, int number, QByteArray& output, int& calls) const
    {
        const QString log = Path(QStringLiteral("calls"));
        QFile::remove(log);
        QProcess process;
        Prepare(process, words);
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QString::fromLatin1(kind), QString::number(number));
        environment.insert(QStringLiteral("FAIL_LOG"), log);
        process.setProcessEnvironment(environment);
        process.start();
        EXPECT_TRUE(process.waitForFinished());
        output = process.readAllStandardOutput();
        calls = QFile::exists(log) ? Read(log).trimmed().toInt() : number;
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    static void ExpectStored(const QList<int>& references, const QList<QJsonObject>& messages)
    {
        QSet<int> stored;
        for (const QJsonObject& message : messages)
            stored.insert(message.value(QStringLiteral("reference")).toInt());
        for (const int reference : references)
            ASSERT_TRUE(stored.contains(reference)) << reference;
    }
    /// The station as it was when the test began, kept at the first call.
    void MakeStationAnew() const
    {
        const QString kept = Path(QStringLiteral("kept"));
        const QString from = QFileInfo::exists(kept) ? kept : Station();
        const QString to = QFileInfo::exists(kept) ? Station() : kept;
        QDir(to).removeRecursively();
        ASSERT_EQ(QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-a"), from, to}), 0);
    }
    /// A call from which on opening the station is not far from done: of a run without mails more than one in five is
    /// made before the mails' turn would come.
    int CallBeforeFiling() const
    {
        QDir().mkpath(Path(QStringLiteral("none")));
        QByteArray output;
        int calls = 0;
        EXPECT_EQ(
            RunFaulty({QStringLiteral("file"), Station(), Path(QStringLiteral("none"))}, "FAIL_AT", 0, output, calls),
            0);
        return qMax(1, calls / 5);
    }
};

TEST_F(FilingBatchTest, KilledAtAnyMomentItKeepsWhatItToldAndARepeatedRunFilesNothingTwice)
{
    constexpr int Count = 1300;
    const int rounds = qEnvironmentVariable("TOLVA_KILL_ROUNDS", QStringLiteral("30")).toInt();
    const quint32 seed = QRandomGenerator::global()->generate();
    SCOPED_TRACE(seed);
    QRandomGenerator random(seed);
    const QStringList words = {QStringLiteral("file"), Station(), QStringLiteral("--verbose"),
                               QStringLiteral("--skip-filed"), MakeMaildir(Count)};
    ASSERT_NO_FATAL_FAILURE(MakeStationAnew());
    int killed = 0;
    for (int round = 0; round < rounds; ++round) {
        QProcess process;
        Prepare(process, words);
        process.start();
        const bool isOver = process.waitForFinished(static_cast<int>(random.bounded(20, 700)));
        if (!isOver) {
            ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGKILL), 0);
            ASSERT_TRUE(process.waitForFinished());
        }
        const QList<QJsonObject> messages = Messages();
        ASSERT_NO_FATAL_FAILURE(ExpectStored(Acknowledged(process.readAllStandardOutput()), messages));
        const QMap<QString, int> counts = CountsIn(messages);
        ASSERT_TRUE(EachIsOnce(counts));
        killed += isOver ? 0 : 1;
        if (isOver) {
            ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
            ASSERT_EQ(counts.size(), Count);
            ASSERT_NO_FATAL_FAILURE(MakeStationAnew());
        }
    }
    EXPECT_GT(killed, 0);
    ASSERT_EQ(Run(words).Code, 0);
    EXPECT_EQ(Counts().size(), Count);
    EXPECT_TRUE(EachIsOnce(Counts()));
    EXPECT_EQ(OnStation("check").Code, 0);
}

TEST_F(FilingBatchTest, KilledAtAnyWriteItKeepsWhatItToldAndARepeatedRunFilesNothingTwice)
{
    const QStringList words = {QStringLiteral("file"), Station(), QStringLiteral("--verbose"),
                               QStringLiteral("--skip-filed"), MakeMaildir(20)};
    ASSERT_NO_FATAL_FAILURE(MakeStationAnew());
    int kills = 0;
    for (int number = CallBeforeFiling();; number += 4) {
        SCOPED_TRACE(number);
        ASSERT_NO_FATAL_FAILURE(MakeStationAnew());
        QByteArray output;
        int calls = 0;
        const int code = RunFaulty(words, "KILL_AT", number, output, calls);
        if (code != -1) {
            EXPECT_EQ(code, 0);
            break;
        }
        ++kills;
        ASSERT_NO_FATAL_FAILURE(ExpectStored(Acknowledged(output), Messages()));
        ASSERT_EQ(Run(words).Code, 0);
        ASSERT_EQ(Counts().size(), 20);
        ASSERT_TRUE(EachIsOnce(Counts()));
    }
    EXPECT_GT(kills, 5);
}

TEST_F(FilingBatchTest, OnAFullDiskItTellsOnlyWhatIsStoredAndNamesTheFirstThatIsNot)
{
    const QStringList words = {QStringLiteral("file"), Station(), QStringLiteral("--verbose"), MakeMaildir(20)};
    ASSERT_NO_FATAL_FAILURE(MakeStationAnew());
    int failures = 0;
    int unpromised = 0;
    for (int number = CallBeforeFiling();; number += 7) {
        SCOPED_TRACE(number);
        ASSERT_NO_FATAL_FAILURE(MakeStationAnew());
        QByteArray output;
        int calls = 0;
        const int code = RunFaulty(words, "FAIL_FROM", number, output, calls);
        const QList<int> acknowledged = Acknowledged(output);
        const QList<QJsonObject> messages = Messages();
        ASSERT_NO_FATAL_FAILURE(ExpectStored(acknowledged, messages));
        // Where the very last step of the commit fails they are there, though nobody can promise that they stay.
        if (acknowledged.isEmpty() && messages.size() == 20)
            ++unpromised;
        else
            ASSERT_EQ(messages.size(), acknowledged.size()) << output.constData();
        ASSERT_EQ(OnStation("check").Code, 0);
        if (acknowledged.size() == 20)
            break;
        EXPECT_NE(code, 0);
        ++failures;
    }
    EXPECT_GT(failures, 2);
    EXPECT_LE(unpromised, 1);
}

TEST_F(FilingBatchTest, AfterOneFailureOfTheDiskTheBatchIsFiledMailByMail)
{
    const QStringList words = {QStringLiteral("file"), Station(), QStringLiteral("--verbose"), MakeMaildir(5)};
    ASSERT_NO_FATAL_FAILURE(MakeStationAnew());
    bool wasFiledAfterFailure = false;
    for (int number = CallBeforeFiling();; ++number) {
        SCOPED_TRACE(number);
        ASSERT_NO_FATAL_FAILURE(MakeStationAnew());
        QByteArray output;
        int calls = 0;
        const int code = RunFaulty(words, "FAIL_AT", number, output, calls);
        const QList<QJsonObject> messages = Messages();
        ASSERT_NO_FATAL_FAILURE(ExpectStored(Acknowledged(output), messages));
        ASSERT_TRUE(EachIsOnce(CountsIn(messages)));
        ASSERT_TRUE(code != 0 || Acknowledged(output).size() == 5);
        wasFiledAfterFailure = wasFiledAfterFailure || (code == 0 && calls >= number);
        if (calls < number)
            break;
    }
    EXPECT_TRUE(wasFiledAfterFailure);
}

TEST_F(FilingBatchTest, WhatIsNoMailTakesNoOtherOfItsBatchWithIt)
{
    const QString folder = MakeMaildir(500);
    Write(QStringLiteral("Maildir/new/1795000250.M1P1.mx"), "");
    const Outcome outcome = OnStation("file", {folder});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_EQ(outcome.Output, "filed 499, failed 1\n");
    EXPECT_TRUE(outcome.Problems.contains("1795000250.M1P1.mx is empty")) << outcome.Problems.constData();
    EXPECT_EQ(Counts().size(), 499);
}

TEST_F(FilingBatchTest, MoreThanABatchHoldsIsFiledInOrder)
{
    constexpr int Count = 1101;
    Expect("file", {MakeMaildir(Count, 100)});
    const QList<QJsonObject> messages = Messages();
    ASSERT_EQ(messages.size(), Count);
    for (int i = 0; i < Count; ++i)
        ASSERT_EQ(messages.at(i).value(QStringLiteral("subject")).toString(), QStringLiteral("number %1").arg(i));
}

TEST_F(FilingBatchTest, AMailBeyondTheSizeOfABatchIsFiledAmongTheOthers)
{
    const QString folder = MakeMaildir(3);
    const QByteArray large = MailNumber(1, 6000000);
    Write(QStringLiteral("Maildir/new/1795000001.M1P1.mx"), large);
    EXPECT_EQ(Expect("file", {folder}), "filed 3, failed 0\n");
    EXPECT_EQ(Expect("show", {QStringLiteral("2"), QStringLiteral("--raw")}), large);
}

TEST_F(FilingBatchTest, AnotherWriterWaitsNoLongerThanABatch)
{
    const QString folder = MakeMaildir(3000, 6000);
    QProcess process;
    Prepare(process, {QStringLiteral("file"), Station(), QStringLiteral("--verbose"), folder});
    process.start();
    ASSERT_TRUE(process.waitForReadyRead());
    sqlite3* other = nullptr;
    const QByteArray file = (Station() + QStringLiteral("/Tolva.mdb")).toUtf8();
    ASSERT_EQ(sqlite3_open(file.constData(), &other), SQLITE_OK);
    sqlite3_busy_timeout(other, 5000);
    qint64 longest = 0;
    int turns = 0;
    while (!process.waitForFinished(1)) {
        QElapsedTimer clock;
        clock.start();
        ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE; COMMIT", nullptr, nullptr, nullptr), SQLITE_OK);
        longest = qMax(longest, clock.elapsed());
        ++turns;
        QThread::msleep(5);
    }
    sqlite3_close(other);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_GT(turns, 3);
    // Twice the second of an idle computer.
    EXPECT_LT(longest, 2000);
    EXPECT_EQ(Messages().size(), 3000);
}

TEST_F(FilingBatchTest, PassesOverWhatIsFiledWhereItIsAsked)
{
    const QString folder = MakeMaildir(30);
    EXPECT_EQ(Expect("file", {QStringLiteral("--skip-filed"), folder}), "filed 30, failed 0, passed over 0\n");
    Write(QStringLiteral("Maildir/new/1795000030.M1P1.mx"), MailNumber(30));
    // Same date and subject, other octets.
    Write(QStringLiteral("Maildir/new/1795000031.M1P1.mx"), MailNumber(30) + "PS: one thing more\r\n");
    Write(QStringLiteral("Maildir/new/1795000032.M1P1.mx"), MailNumber(30));
    EXPECT_EQ(Expect("file", {QStringLiteral("--skip-filed"), folder}), "filed 2, failed 0, passed over 31\n");
    EXPECT_EQ(Messages().size(), 32);
    EXPECT_EQ(Expect("file", {folder}), "filed 33, failed 0\n");
    EXPECT_EQ(Messages().size(), 65);
}

TEST_F(FilingBatchTest, PassesOverMailsThatAreStoredWithMarksAndTextMessages)
{
    Expect("setting", {QStringLiteral("Messages.HighlightWords"), QStringLiteral("ferry")});
    Write(QStringLiteral("post/1.eml"), "From: a@example.org\r\nSubject: page\r\nMIME-Version: 1.0\r\n"
                                        "Content-Type: text/html; charset=utf-8\r\n\r\n<p>the ferry</p>\r\n");
    Write(QStringLiteral("post/2.sms"),
          "From: 07700 900123\nTo: 81000\nReceived: 2026-11-12 09:00:00\n\nIs the ferry late?\n");
    const QString folder = Path(QStringLiteral("post"));
    EXPECT_EQ(Expect("file", {QStringLiteral("--skip-filed"), folder}), "filed 2, failed 0, passed over 0\n");
    EXPECT_EQ(Expect("file", {QStringLiteral("--skip-filed"), folder}), "filed 0, failed 0, passed over 2\n");
}
