// SPDX-License-Identifier: Apache-2.0

// Text messages that go out by the real gammu-smsd-inject and the daemon with its service for files, as the page on
// hooking up sets them up. The telephone is the one that gammu brings for trying things out.

#include "Routes.h"
#include "SendingMachineTest.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QRegularExpression>
#include <QThread>

#include <algorithm>

namespace
{
constexpr int SecondsToBeTransmitted = 30;
const QString ASmile = QStringLiteral("\U0001F600");

/// A text as the daemon keeps it: its parts in UTF-16, written in hexadecimal digits.
QString TextOfBackup(const QByteArray& file)
{
    static const QRegularExpression line(QStringLiteral("^Text[0-9]+ = ([0-9A-F]+)"),
                                         QRegularExpression::MultilineOption);
    QString text;
    for (auto it = line.globalMatch(QString::fromLatin1(file)); it.hasNext();) {
        const QByteArray units = QByteArray::fromHex(it.next().captured(1).toLatin1());
        for (qsizetype i = 0; i + 1 < units.size(); i += 2)
            text.append(QChar(static_cast<char16_t>((uchar(units.at(i)) << 8) | uchar(units.at(i + 1)))));
    }
    return text;
}
} // namespace

class TextSendingTest : public SendingMachineTest
{
protected:
    void SetUp() override
    {
        const Route& route = AllRoutes().last();
        ASSERT_NO_FATAL_FAILURE(MakeMachine(route.Tree));
        if (IsSkipped() || HasFatalFailure())
            return;
        ASSERT_NO_FATAL_FAILURE(Must(route.Installation + QStringLiteral("chmod 0770 /var/spool/gammu/*")));
        for (const QString& heading : {QStringLiteral("Who runs it"), QStringLiteral("gammu-smsd sends text messages")})
            ASSERT_NO_FATAL_FAILURE(Must(QStringLiteral("cd /root\n") + InstructionsOf(heading)));
        Must(QStringLiteral("tolva delete /srv/station 1 --permanently\n"
                            "chmod -R g+w /srv/station; find /srv/station -exec chown tolva:station {} +"));
    }
    void FileText(const QString& to, const QString& text) const
    {
        File(QStringLiteral("--sms --from Harbour --to '%1'").arg(to), text.toUtf8());
    }
    /// The line of the page's crontab, as the daemon's account and in the environment that cron gives it.
    Run SendByCron(const QString& words = {}) const
    {
        static const QRegularExpression line(QStringLiteral("^\\* \\* \\* \\* \\* (.*--type sms.*) >/dev/null$"),
                                             QRegularExpression::MultilineOption);
        QFile page(QStringLiteral(TOLVA_DOCUMENTS "/hookups.md"));
        EXPECT_TRUE(page.open(QIODevice::ReadOnly));
        const QString command = line.match(QString::fromUtf8(page.readAll())).captured(1);
        EXPECT_FALSE(command.isEmpty());
        return Send(
            QStringLiteral("runuser -u gammu -- env -i PATH=/usr/bin:/bin sh -c '%1 --json %2'").arg(command, words));
    }
    void StartDaemon() const
    {
        Must(QStringLiteral("touch /tmp/smsd.log; chown gammu: /tmp/smsd.log\n"
                            "runuser -u gammu -- gammu-smsd -c /etc/gammu-smsdrc -p /tmp/smsd.pid -d"));
    }
    int CountIn(const char* folder) const
    {
        return NumberOf(QStringLiteral("find /var/spool/gammu/%1 -type f | wc -l").arg(QLatin1String(folder)));
    }
    /// "number: text" of all in one of the daemon's folders, in order.
    QStringList TextsIn(const char* folder) const
    {
        static const QRegularExpression number(QStringLiteral("^Number = \"([^\"]+)\""),
                                               QRegularExpression::MultilineOption);
        QStringList texts;
        const QByteArray all = Computer()
                                   .Run(QStringLiteral("for file in $(find /var/spool/gammu/%1 -type f); do cat $file; "
                                                       "printf '\\001'; done")
                                            .arg(QLatin1String(folder)))
                                   .Output;
        for (const QByteArray& file : all.split('\001')) {
            if (!file.isEmpty())
                texts.append(number.match(QString::fromUtf8(file)).captured(1) + QStringLiteral(": ") +
                             TextOfBackup(file));
        }
        std::sort(texts.begin(), texts.end());
        return texts;
    }
    QByteArray States() const { return Computer().Run(QStringLiteral("tolva send /srv/station state --json")).Output; }
};

TEST_F(TextSendingTest, TheDaemonSendsEachTextWholeToEachNumber)
{
    const QString letters = QStringLiteral("Gr\u00fc\u00dfe \u65e5\u672c, \u20ac5\nand a second line");
    const QString longest = ASmile.repeated(33 * 50);
    ASSERT_NO_FATAL_FAILURE(FileText(QStringLiteral("+44 7700 900111, 07700 900222"), letters));
    ASSERT_NO_FATAL_FAILURE(FileText(QStringLiteral("07700900333"), QStringLiteral("-text")));
    ASSERT_NO_FATAL_FAILURE(FileText(QStringLiteral("07700900444"), longest));
    ASSERT_NO_FATAL_FAILURE(FileText(QStringLiteral("07700900555"), longest + ASmile));
    ASSERT_NO_FATAL_FAILURE(MarkToBeSent());
    const Run run = SendByCron();
    EXPECT_EQ(run.Code, 65) << run.Said.constData();
    const QString tooLong = run.Words.value(QStringLiteral("07700900555"));
    EXPECT_TRUE(tooLong.startsWith(QStringLiteral("refused: "))) << run.Said.constData();
    EXPECT_TRUE(tooLong.contains(QStringLiteral("divided into 51"))) << tooLong.toStdString();
    EXPECT_EQ(NumberOf(QStringLiteral("tolva list /srv/station --category Sent | wc -l")), 3) << run.Said.constData();
    const QStringList expected = {QStringLiteral("+447700900111: ") + letters,
                                  QStringLiteral("07700900222: ") + letters, QStringLiteral("07700900333: -text"),
                                  QStringLiteral("07700900444: ") + longest};
    EXPECT_EQ(TextsIn("outbox").join(u'|').toStdString(), expected.join(u'|').toStdString());
    ASSERT_NO_FATAL_FAILURE(StartDaemon());
    const QDeadlineTimer deadline(SecondsToBeTransmitted * 1000);
    while (CountIn("outbox") > 0 && !deadline.hasExpired())
        QThread::msleep(MillisecondsBetweenLooks);
    // Each part once, the last of each text with its number of parts.
    EXPECT_EQ(NumberOf(QStringLiteral("grep -c ' Transmitted .*(part: ' /tmp/smsd.log")), 49);
    EXPECT_EQ(NumberOf(QStringLiteral("grep -c ' Transmitted .*(total: ' /tmp/smsd.log")), expected.size());
    EXPECT_EQ(CountIn("sent"), expected.size())
        << Computer().Run(QStringLiteral("tail -n 20 /tmp/smsd.log")).Output.constData();
    EXPECT_EQ(CountIn("error"), 0);
}

TEST_F(TextSendingTest, WhatTheDaemonsOutboxCannotTakeWaitsAndGoesOutLater)
{
    const QString to = QStringLiteral("07700900111");
    ASSERT_NO_FATAL_FAILURE(FileText(to, QStringLiteral("On air at nine")));
    ASSERT_NO_FATAL_FAILURE(MarkToBeSent());
    const struct
    {
        const char* BreakIt;
        const char* MendIt;
        const char* Words;
    } causes[] = {
        {"mv /var/spool/gammu/outbox /var/spool/gammu/away", "mv /var/spool/gammu/away /var/spool/gammu/outbox",
         "/var/spool/gammu/outbox/"},
        {"chown root /var/spool/gammu/outbox; chmod g-w /var/spool/gammu/outbox",
         "chown gammu /var/spool/gammu/outbox; chmod g+w /var/spool/gammu/outbox", "Can not open"},
        // As a full disk: the file can be made, and holds nothing.
        {"mount -t tmpfs -o size=4k,mode=0777 tmpfs /var/spool/gammu/outbox\nhead -c 4k /dev/zero "
         ">/var/spool/gammu/outbox/.filling",
         "rm /var/spool/gammu/outbox/.filling\n[ -z \"$(ls /var/spool/gammu/outbox)\" ]\numount "
         "/var/spool/gammu/outbox",
         "full disk"},
        {"mv /etc/gammu-smsdrc /etc/away", "mv /etc/away /etc/gammu-smsdrc", "Failed to read config"},
    };
    for (const auto& cause : causes) {
        SCOPED_TRACE(cause.BreakIt);
        ASSERT_NO_FATAL_FAILURE(Must(QLatin1String(cause.BreakIt)));
        const Run run = SendByCron(QStringLiteral("--message 2"));
        EXPECT_EQ(run.Code, 69) << run.Said.constData();
        const QString words = run.Words.value(to);
        EXPECT_TRUE(words.startsWith(QStringLiteral("putOff: "))) << run.Said.constData();
        EXPECT_TRUE(words.contains(QLatin1String(cause.Words))) << words.toStdString();
        EXPECT_TRUE(States().contains("notYet")) << States().constData();
        ASSERT_NO_FATAL_FAILURE(Must(QLatin1String(cause.MendIt)));
    }
    EXPECT_EQ(SendByCron(QStringLiteral("--message 2")).Code, 0);
    EXPECT_EQ(TextsIn("outbox").join(u'|').toStdString(), "07700900111: On air at nine");
    EXPECT_EQ(NumberOf(QStringLiteral("tolva pending /srv/station | wc -l")), 0);
}
