// SPDX-License-Identifier: Apache-2.0

// The units that let systemd file, fetch and send mail, as far as they can be tried without a running systemd.

#include "SendTest.h"

#include <QRegularExpression>
#include <QStandardPaths>

namespace
{
/// All values of a key, as it may stand there more than once.
QStringList ValuesOf(const QByteArray& unit, const QString& key)
{
    const QRegularExpression line(u'^' + key + QStringLiteral("=(.*)$"), QRegularExpression::MultilineOption);
    QStringList values;
    auto matches = line.globalMatch(QString::fromUtf8(unit));
    while (matches.hasNext())
        values.append(matches.next().captured(1));
    return values;
}
} // namespace

class MailUnitsTest : public SendTest
{
protected:
    static QByteArray Unit(const QString& name)
    {
        return Read(QStringLiteral(TOLVA_DOCUMENTS "/../packaging/systemd/") + name);
    }
    /// What the service runs, for this test's station.
    Outcome RunService(const QString& name, const QString& options = {}) const
    {
        const QByteArray unit = Unit(name);
        QString line = ValuesOf(unit, QStringLiteral("ExecStart")).value(0);
        line.replace(QStringLiteral("$TOLVA_SEND_OPTIONS"), options);
        line.replace(QStringLiteral("%f"), Station());
        QStringList words = QProcess::splitCommand(line);
        EXPECT_EQ(words.takeFirst(), QStringLiteral("tolva"));
        EXPECT_TRUE(ValuesOf(unit, QStringLiteral("Environment")).contains(QStringLiteral("TOLVA_USER=Technician")));
        return Run(words);
    }
};

TEST_F(MailUnitsTest, TheServiceOfTheWatchedFolderFilesWhatThePathWatches)
{
    const QStringList watched =
        ValuesOf(Unit(QStringLiteral("tolva-receive@.path")), QStringLiteral("DirectoryNotEmpty"));
    ASSERT_EQ(watched.size(), 2);
    int mails = 0;
    for (QString folder : watched) {
        folder.replace(QStringLiteral("%f"), QStringLiteral("station"));
        Write(folder + QStringLiteral("/%1.a").arg(++mails), Mail("one"));
    }
    EXPECT_EQ(RunService(QStringLiteral("tolva-receive@.service")).Code, 0);
    EXPECT_EQ(Messages().size(), 1) << "the same octets in both";
    for (QString folder : watched)
        EXPECT_TRUE(QDir(folder.replace(QStringLiteral("%f"), Station())).isEmpty());
}

TEST_F(MailUnitsTest, TheServiceThatSendsTakesItsOptions)
{
    const QString reference = WaitingMail();
    EXPECT_EQ(RunService(QStringLiteral("tolva-send@.service"), QStringLiteral("--sendmail ") + Program()).Code, 0);
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
}

TEST_F(MailUnitsTest, SystemdTakesTheUnits)
{
    const QString analyse = QStandardPaths::findExecutable(QStringLiteral("systemd-analyze"));
    if (analyse.isEmpty())
        GTEST_SKIP() << "there is no systemd-analyze here";
    const QStringList names = {QStringLiteral("tolva-receive@.path"), QStringLiteral("tolva-receive@.service"),
                               QStringLiteral("tolva-fetch@.timer"),  QStringLiteral("tolva-fetch@.service"),
                               QStringLiteral("tolva-send@.timer"),   QStringLiteral("tolva-send@.service")};
    // systemd looks for programs where packages and technicians put them, and these are not there.
    for (const QString& name : names) {
        Write(name, Unit(name)
                        .replace("ExecStart=tolva ", "ExecStart=" TOLVA_PROGRAM " ")
                        .replace("ExecStart=/usr/local/bin/tolva-fetch", "ExecStart=" TOLVA_PROGRAM));
    }
    for (QString name : names) {
        QProcess process;
        process.start(analyse, {QStringLiteral("verify"), QStringLiteral("--man=no"),
                                Path(name.replace(u'@', QStringLiteral("@srv-station")))});
        ASSERT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), 0) << name.toStdString();
        EXPECT_EQ(process.readAllStandardError(), "") << name.toStdString();
    }
}

TEST_F(MailUnitsTest, ThePageNamesEachUnit)
{
    const QByteArray page = Read(QStringLiteral(TOLVA_DOCUMENTS "/hookups.md"));
    for (const char* unit :
         {"tolva-receive@srv-station.path", "tolva-fetch@srv-station.timer", "tolva-send@srv-station.timer"})
        EXPECT_TRUE(page.contains(unit)) << unit;
}
