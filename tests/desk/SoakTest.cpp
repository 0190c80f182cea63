// SPDX-License-Identifier: Apache-2.0

// Two real desks and the command line on one station: one desk marks, moves and awards without pause while mail is
// filed, the other one only looks on. In the end both show what the file holds, row for row. TOLVA_SOAK_SECONDS
// lengthens it.

#include "DeskTest.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <csignal>

namespace
{
constexpr int ShortSeconds = 8;
constexpr int FilingsASecond = 20;
constexpr int Patience = 60000;

class SoakTest : public DeskTest
{
protected:
    static int Seconds()
    {
        const QByteArray wanted = qgetenv("TOLVA_SOAK_SECONDS");
        return wanted.isEmpty() ? ShortSeconds : wanted.toInt();
    }
    void StartDesk(QProcess& desk, const QString& name) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("TOLVA_USER"));
        environment.insert(QStringLiteral("TOLVA_REGISTRY"), Path(QStringLiteral("Tolva.ini")));
        environment.insert(QStringLiteral("XDG_STATE_HOME"), Path(QStringLiteral("state")));
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), Path(QStringLiteral("cache")));
        desk.setProcessEnvironment(environment);
        desk.start(QStringLiteral(TOLVA_SOAK_DESK), {Folder(), Path(name + QStringLiteral(".ini"))});
        ASSERT_TRUE(desk.waitForStarted());
    }
    static void Tell(QProcess& desk, const char* word) { desk.write(QByteArray(word) + '\n'); }
    /// The desk's one line of answer; nothing when it died.
    static QJsonDocument Ask(QProcess& desk, const char* word)
    {
        Tell(desk, word);
        QByteArray line;
        for (const QDeadlineTimer deadline(Patience); !line.endsWith('\n') && !deadline.hasExpired();) {
            desk.waitForReadyRead(100);
            line += desk.readLine();
            if (desk.state() != QProcess::Running)
                break;
        }
        EXPECT_TRUE(line.endsWith('\n')) << word << " was not answered" << desk.readAllStandardError().constData();
        return QJsonDocument::fromJson(line);
    }
    /// Asks until the desk shows so many rows, or more.
    static QJsonArray AskForRows(QProcess& desk, qsizetype count)
    {
        QJsonArray shown;
        for (const QDeadlineTimer deadline(Patience);
             shown.size() < count && !deadline.hasExpired() && desk.state() == QProcess::Running;)
            shown = Ask(desk, "rows").array();
        return shown;
    }
    /// Asks until the desk shows that, or for so long as a desk may take to see the last change.
    static QJsonArray AskUntil(QProcess& desk, const char* word, const QJsonArray& expected)
    {
        QJsonArray shown;
        for (const QDeadlineTimer deadline(Patience); !deadline.hasExpired();) {
            shown = Ask(desk, word).array();
            if (shown == expected || desk.state() != QProcess::Running)
                break;
        }
        return shown;
    }
    /// Files mails as a mail server does, at that rate, one process each.
    void FileFor(int seconds, int& filed, int& refused) const
    {
        const QDeadlineTimer deadline(seconds * 1000);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TOLVA_REGISTRY"), Path(QStringLiteral("Tolva.ini")));
        environment.insert(QStringLiteral("XDG_STATE_HOME"), Path(QStringLiteral("state")));
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), Path(QStringLiteral("cache")));
        QElapsedTimer since;
        since.start();
        for (int started = 0; !deadline.hasExpired(); ++started) {
            QProcess filer;
            filer.setProcessEnvironment(environment);
            filer.start(QStringLiteral(TOLVA_PROGRAM), {QStringLiteral("file"), Folder(), QStringLiteral("-")});
            filer.write(Mail("Message " + QByteArray::number(started), QByteArray(4000, 'x') + "\r\n"));
            filer.closeWriteChannel();
            ASSERT_TRUE(filer.waitForFinished(Patience));
            (filer.exitCode() == 0 ? filed : refused)++;
            EXPECT_TRUE(filer.exitCode() == 0 || filer.exitCode() == 75) << filer.readAllStandardError().constData();
            const qint64 due = (started + 1) * 1000LL / FilingsASecond;
            if (due > since.elapsed())
                QTest::qWait(static_cast<int>(due - since.elapsed()));
        }
    }
};
} // namespace

TEST_F(SoakTest, BothDesksShowWhatTheFileHoldsRowForRow)
{
    WithoutAutomaticBackups();
    clsKVContact contact;
    contact.Name = QStringLiteral("Loveday Tregenza");
    Station.Directory().SaveContact(contact);
    for (const char* title : {"Mug", "Tickets"})
        OtherComputer("prize", {QStringLiteral("add"), QStringLiteral("--title"), QString::fromLatin1(title),
                                QStringLiteral("--supplied"), QStringLiteral("20000")});
    for (int i = 0; i < 60; ++i)
        FileMail(Mail("Before " + QByteArray::number(i)));
    Station.Close();

    QProcess worker;
    QProcess watcher;
    StartDesk(worker, QStringLiteral("worker"));
    StartDesk(watcher, QStringLiteral("watcher"));
    ASSERT_EQ(AskForRows(watcher, 60).size(), 60);
    ASSERT_EQ(AskForRows(worker, 60).size(), 60);
    Tell(worker, "work");
    int filed = 0;
    int refused = 0;
    FileFor(Seconds(), filed, refused);
    const QJsonObject work = Ask(worker, "rest").object();
    RecordProperty("work", QJsonDocument(work).toJson(QJsonDocument::Compact).toStdString());
    std::printf("filed %d, to be tried again %d; desk: %s\n", filed, refused,
                QJsonDocument(work).toJson(QJsonDocument::Compact).constData());
    EXPECT_GT(filed, 0);
    for (const char* kind : {"marked", "moved", "awarded"})
        EXPECT_GT(work.value(QLatin1String(kind)).toInt(), 0) << kind;

    // A desk that is started now reads everything anew.
    QProcess fresh;
    StartDesk(fresh, QStringLiteral("fresh"));
    const auto linesOf = [&](const QString& folder) {
        return OtherComputer("list", {QStringLiteral("--category"), folder, QStringLiteral("--json")}).count('\n');
    };
    const qsizetype expected = linesOf(QStringLiteral("Inbox"));
    EXPECT_EQ(expected + linesOf(QStringLiteral("Saved")), 60 + filed);
    const QJsonArray rows = AskForRows(fresh, expected);
    EXPECT_EQ(rows.size(), expected);
    EXPECT_EQ(AskUntil(watcher, "rows", rows), rows) << "the desk that looked on";
    EXPECT_EQ(AskUntil(worker, "rows", rows), rows) << "the desk that worked";
    const QJsonArray prizes = Ask(fresh, "prizes").array();
    EXPECT_EQ(AskUntil(watcher, "prizes", prizes), prizes);
    EXPECT_EQ(AskUntil(worker, "prizes", prizes), prizes);
    for (QProcess* desk : {&worker, &watcher, &fresh}) {
        Tell(*desk, "end");
        EXPECT_TRUE(desk->waitForFinished(Patience));
        EXPECT_EQ(desk->exitCode(), 0);
    }
    OtherComputer("check");
}
