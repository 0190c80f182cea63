// SPDX-License-Identifier: Apache-2.0

// Computers of one station whose clocks differ by an hour.

#include "SendTest.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QProcess>
#include <QSet>
#include <QThread>

namespace
{
constexpr int Hour = 3600;

class OtherClockTest : public SendTest
{
protected:
    /// Run by a computer whose clock is so many seconds ahead.
    Outcome OnClock(int ahead, const QStringList& words, const QByteArray& input = {}) const
    {
        QProcess process;
        Prepare(process, words);
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QStringLiteral("CLOCK_AHEAD"), QString::number(ahead));
        process.setProcessEnvironment(environment);
        process.start();
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(60000));
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
    QList<qint32> ReferencesOn(int ahead) const
    {
        const Outcome listed = OnClock(ahead, {QStringLiteral("list"), Station(), QStringLiteral("--json")});
        EXPECT_EQ(listed.Code, 0) << listed.Problems.constData();
        QList<qint32> references;
        for (const QByteArray& line : listed.Lines())
            references.append(QJsonDocument::fromJson(line).object().value(QStringLiteral("reference")).toInt());
        return references;
    }
    QString Stamp() const
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        const auto settings = database->OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
        settings->SetIndex(QStringLiteral("Main"));
        settings->Seek(dao::SeekComparison::Equal, {QStringLiteral("Messages.LastChanged")});
        return settings->NoMatch() ? QString() : settings->Collect(QStringLiteral("Value")).toString();
    }
};
} // namespace

TEST_F(OtherClockTest, ComputersWhoseClocksDifferByAnHourFindTheSameMessagesOnceInTheSameOrder)
{
    constexpr int Rounds = 4;
    QSet<QString> stamps;
    for (int round = 0; round < Rounds; ++round) {
        for (const int ahead : {0, Hour, -Hour}) {
            const QByteArray mail = Mail("Filed on a clock " + QByteArray::number(ahead) + " ahead");
            const Outcome filed = OnClock(ahead, {QStringLiteral("file"), Station(), QStringLiteral("-")}, mail);
            EXPECT_EQ(filed.Code, 0) << filed.Problems.constData();
            stamps.insert(Stamp());
        }
    }
    EXPECT_EQ(stamps.size(), 3 * Rounds) << "each change is one for whoever watches";
    const QList<qint32> here = ReferencesOn(0);
    EXPECT_EQ(here.size(), 3 * Rounds);
    EXPECT_EQ(QSet<qint32>(here.begin(), here.end()).size(), 3 * Rounds);
    EXPECT_EQ(ReferencesOn(Hour), here);
    EXPECT_EQ(ReferencesOn(-Hour), here);
}

TEST_F(OtherClockTest, WhatIsBeingSentIsNotSentAgainByAComputerAnHourAhead)
{
    Answer("while [ ! -e \"" + Path(QStringLiteral("go")).toUtf8() + "\" ]; do sleep 0.05; done");
    const QString reference = WaitingMail();
    QProcess sending;
    Prepare(sending, QStringList{QStringLiteral("send"), Station()} + SendWords());
    sending.start();
    sending.closeWriteChannel();
    const QDeadlineTimer deadline(30000);
    while (TimesCalled() == 0 && !deadline.hasExpired())
        QThread::msleep(20);
    ASSERT_EQ(TimesCalled(), 1);
    const QStringList send = QStringList{QStringLiteral("send"), Station()} + SendWords();
    const Outcome ahead = OnClock(Hour, send);
    EXPECT_EQ(TimesCalled(), 1) << ahead.Output.constData() << ahead.Problems.constData();
    Write(QStringLiteral("go"), "");
    ASSERT_TRUE(sending.waitForFinished(60000));
    EXPECT_EQ(sending.exitCode(), 0) << sending.readAllStandardError().constData();
    OnClock(Hour, send);
    OnClock(-Hour, send);
    EXPECT_EQ(TimesTaken("An answer"), 1);
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
}
