// SPDX-License-Identifier: Apache-2.0

// The units that let systemd make the backup of every night, as far as they can be tried without a running systemd.

#include "CommandLineTest.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QStandardPaths>

namespace
{
const QString Instance = QStringLiteral("tolva-backup@srv-station");

QString ValueOf(const QString& unit, const QString& key)
{
    const QRegularExpression line(u'^' + key + QStringLiteral("=(.*)$"), QRegularExpression::MultilineOption);
    return line.match(unit).captured(1);
}

Outcome RunProgram(const QString& program, const QStringList& words)
{
    QProcess process;
    process.start(program, words);
    EXPECT_TRUE(process.waitForFinished()) << program.toStdString();
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}
} // namespace

class BackupUnitsTest : public CommandLineTest
{
protected:
    static QByteArray Unit(const char* ending)
    {
        return Read(QStringLiteral(TOLVA_DOCUMENTS "/../packaging/systemd/tolva-backup@.") + QLatin1String(ending));
    }
};

TEST_F(BackupUnitsTest, WhatTheServiceStartsMakesABackup)
{
    const QString service = QString::fromUtf8(Unit("service"));
    QStringList words = QProcess::splitCommand(ValueOf(service, QStringLiteral("ExecStart")));
    ASSERT_FALSE(words.isEmpty());
    EXPECT_EQ(words.takeFirst(), QStringLiteral("tolva"));
    words.replaceInStrings(QStringLiteral("%f"), Station());
    const QString user = ValueOf(service, QStringLiteral("Environment")).section(u'=', 1);
    const Outcome outcome = Run(words + QStringList{QStringLiteral("--user"), user});
    EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
    const QJsonObject backup = QJsonDocument::fromJson(outcome.Output).object();
    EXPECT_TRUE(QFileInfo::exists(backup.value(QStringLiteral("folder")).toString() + QStringLiteral("/Backup.inf")))
        << outcome.Output.constData();
}

TEST_F(BackupUnitsTest, OnlyALockedStationIsTriedAgain)
{
    const QString never = ValueOf(QString::fromUtf8(Unit("service")), QStringLiteral("RestartPreventExitStatus"));
    const QStringList codes = never.split(u' ');
    for (const int code : {64, 65, 66, 67, 70, 74, 77})
        EXPECT_TRUE(codes.contains(QString::number(code))) << code;
    EXPECT_FALSE(codes.contains(QStringLiteral("75")));
}

TEST_F(BackupUnitsTest, SystemdTakesTheUnits)
{
    const QString analyse = QStandardPaths::findExecutable(QStringLiteral("systemd-analyze"));
    if (analyse.isEmpty())
        GTEST_SKIP() << "there is no systemd-analyze here";
    // systemd looks for programs where packages put them, and this one is not installed.
    Write(QStringLiteral("tolva-backup@.service"),
          Unit("service").replace("ExecStart=tolva ", "ExecStart=" TOLVA_PROGRAM " "));
    Write(QStringLiteral("tolva-backup@.timer"), Unit("timer"));
    for (const char* ending : {".service", ".timer"}) {
        const Outcome outcome = RunProgram(
            analyse, {QStringLiteral("verify"), QStringLiteral("--man=no"), Path(Instance + QLatin1String(ending))});
        EXPECT_EQ(outcome.Code, 0);
        EXPECT_EQ(outcome.Problems, "");
    }
}

TEST_F(BackupUnitsTest, ThePageNamesTheInstanceThatStandsForItsStation)
{
    const QByteArray page = Read(QStringLiteral(TOLVA_DOCUMENTS "/backup.md"));
    EXPECT_TRUE(page.contains("systemctl enable --now " + Instance.toUtf8() + ".timer\n"));
    EXPECT_TRUE(page.contains("systemctl start " + Instance.toUtf8() + ".service\n"));
    const QString escape = QStandardPaths::findExecutable(QStringLiteral("systemd-escape"));
    if (escape.isEmpty())
        GTEST_SKIP() << "there is no systemd-escape here";
    EXPECT_EQ("tolva-backup@" +
                  RunProgram(escape, {QStringLiteral("--path"), QStringLiteral("/srv/station")}).Output.trimmed(),
              Instance.toUtf8());
}
