// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CommandLineTest.h"
#include "support/TestServer.h"

#include <QProcess>

/// A station whose rows are on the tests' server, and whose folder says so.
class ServerStationTest : public CommandLineTest
{
protected:
    ServerStationTest()
        : Schema_(TestServer::Shared().NewSchema()), Directory_(Schema_.Name + QStringLiteral("_directory"))
    {
    }

    QString Connect(const QString& user = QStringLiteral("tolva")) const
    {
        return TestServer::Shared().Connect(Schema_.Name, user);
    }
    Outcome Init(const QString& folder, const QString& connect) const
    {
        return Run({QStringLiteral("init"), folder, QStringLiteral("--name"), QStringLiteral("Harbour FM"),
                    QStringLiteral("--phone"), QStringLiteral("01632 960100"), QStringLiteral("--connect"), connect});
    }
    /// The station is on the server.
    void SetUp() override
    {
        const Outcome made = Init(Station(), Connect());
        ASSERT_EQ(made.Code, 0) << made.Problems.constData();
    }
    /// The folder of another computer.
    QString Joined() const
    {
        const QString folder = Path(QStringLiteral("joined"));
        const Outcome joined = Run({QStringLiteral("init"), folder, QStringLiteral("--connect"), Connect()});
        EXPECT_EQ(joined.Code, 0) << joined.Problems.constData();
        return folder;
    }
    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }
    QString DirectoryFile() const { return Station() + QStringLiteral("/Directory/Directory.mdb"); }
    bool IsOnServer() const { return Read(File()).startsWith("Tolva station on a server"); }
    /// Kills the program in front of the n-th call that changes a database file; false when it was killed.
    bool RunKilled(const QStringList& words, int call) const
    {
        QProcess process;
        Prepare(process, words);
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QStringLiteral("FAIL_NAMES"), QStringLiteral(".mdb"));
        environment.insert(QStringLiteral("KILL_AT"), QString::number(call));
        process.setProcessEnvironment(environment);
        process.start();
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_TRUE(process.exitStatus() == QProcess::CrashExit || process.exitCode() == 0)
            << process.readAllStandardError().constData();
        return process.exitStatus() == QProcess::NormalExit;
    }

    TestServer::Schema Schema_;
    QString Directory_;
};
