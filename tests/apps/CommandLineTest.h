// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

/// What one run of the program left behind.
struct Outcome
{
    int Code = -1;
    QByteArray Output;
    QByteArray Problems; ///< Standard error.

    /// The lines of the output, without their ends.
    QList<QByteArray> Lines() const;
    QByteArray LastLine() const;
};

/// Runs the real program on a station of its own, in an environment of its own: nothing of the account that runs the
/// tests is read or written.
class CommandLineTest : public ::testing::Test
{
protected:
    /// Makes the station: a file, or on the tests' server with TOLVA_TEST_STATION=server in the environment.
    void SetUp() override;

    /// Runs to the end. The words are the arguments as they are.
    Outcome Run(const QStringList& words, const QByteArray& input = {}) const;
    /// Runs a command on the station: OnStation("list", {"--json"}).
    Outcome OnStation(const char* command, const QStringList& words = {}, const QByteArray& input = {}) const;
    /// The same, and the run must succeed without a word on standard error.
    QByteArray Expect(const char* command, const QStringList& words = {}, const QByteArray& input = {}) const;
    /// A process with the environment, not started.
    void Prepare(QProcess& process, const QStringList& words) const;

    /// Files one mail and returns its number in the list.
    QString FileMail(const QByteArray& octets, const QStringList& words = {}) const;
    /// The messages of "list --json", each line read by a strict parser.
    QList<QJsonObject> Messages(const QStringList& words = {}) const;
    /// Adds a user with these rights, added up, to the station's directory.
    void AddUser(const QString& name, int rights) const;

    QString Path(const QString& name) const { return Temporary_.filePath(name); }
    QString Station() const { return Path(QStringLiteral("station")); }
    /// Writes a file in the temporary folder, making its folders; its path.
    QString Write(const QString& name, const QByteArray& octets) const;
    static QByteArray Read(const QString& path);
    /// Waits until a program that is held up (StoppingLocks) has stopped; false when it ended before.
    static bool HasStopped(QProcess& process);

    /// A short mail.
    static QByteArray Mail(const QByteArray& subject, const QByteArray& body = "Hello.\r\n");

private:
    std::shared_ptr<void> Schemas_; ///< On the server, gone with the test.
    /// In memory where the system has a place for that: most of the time of a small station goes into the syncs of its
    /// commits, and the end of a process needs none of them.
    QTemporaryDir Temporary_{QFileInfo(QStringLiteral("/dev/shm")).isWritable()
                                 ? QStringLiteral("/dev/shm/tolva-XXXXXX")
                                 : QDir::tempPath() + QStringLiteral("/tolva-XXXXXX")};
};
