// SPDX-License-Identifier: Apache-2.0
#include "Machine.h"

#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

namespace
{
constexpr int MillisecondsToStart = 60000;

/// As a user without rights the machine's accounts are those that the system lets this user have.
QStringList Namespaces()
{
    QStringList words = {QStringLiteral("--mount"), QStringLiteral("--pid"), QStringLiteral("--net"),
                         QStringLiteral("--uts")};
    if (geteuid() != 0)
        words += {QStringLiteral("--user"), QStringLiteral("--map-root-user"), QStringLiteral("--map-auto")};
    return words;
}

QByteArray ChildOf(qint64 process)
{
    QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(process));
    return children.open(QIODevice::ReadOnly) ? children.readAll().trimmed() : QByteArray();
}
} // namespace

Machine::Machine(const QStringList& trees, const QString& programs)
{
    Leader_.start(QStringLiteral("unshare"), Namespaces() +
                                                 QStringList{QStringLiteral("--fork"), QStringLiteral("--kill-child"),
                                                             QStringLiteral(TOLVA_MACHINE), Place_.path(), programs} +
                                                 trees);
    while (Leader_.waitForReadyRead(MillisecondsToStart) && !Leader_.canReadLine()) {
    }
    if (Leader_.readLine() == "ready\n")
        First_ = ChildOf(Leader_.processId()).toLongLong();
    if (First_ == 0) {
        Leader_.kill();
        Leader_.waitForFinished();
        Problem_ = QStringLiteral("no computer of its own can be made here: %1")
                       .arg(QString::fromUtf8(Leader_.readAllStandardError().trimmed()));
    }
}

Machine::~Machine()
{
    // Its first process ends with its input, and takes all others with it.
    Leader_.closeWriteChannel();
    if (Leader_.state() != QProcess::NotRunning && !Leader_.waitForFinished(MillisecondsToStart))
        Leader_.kill();
    Leader_.waitForFinished();
}

Machine::Outcome Machine::Run(const QString& script, const QByteArray& input, int seconds) const
{
    QProcess process;
    QStringList words = {QStringLiteral("--target"), QString::number(First_), QStringLiteral("--mount"),
                         QStringLiteral("--pid"),    QStringLiteral("--net"), QStringLiteral("--uts"),
                         QStringLiteral("--root"),   QStringLiteral("--wd")};
    if (geteuid() != 0)
        words.append(QStringLiteral("--user"));
    words += {QStringLiteral("--"),
              QStringLiteral("env"),
              QStringLiteral("-i"),
              QStringLiteral("PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"),
              QStringLiteral("HOME=/root"),
              QStringLiteral("LC_ALL=C.UTF-8"),
              QStringLiteral("TZ=Europe/London"),
              QStringLiteral("bash"),
              QStringLiteral("-c"),
              script};
    process.start(QStringLiteral("nsenter"), words);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(seconds * 1000)) {
        process.kill();
        process.waitForFinished();
        return {-1, process.readAllStandardOutput(), process.readAllStandardError() + "\ntook too long"};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

void Machine::Write(const QList<std::pair<QString, QByteArray>>& files) const
{
    QByteArray all;
    for (const auto& [path, octets] : files)
        all += QByteArray::number(octets.size()) + ' ' + path.toUtf8() + '\n' + octets;
    const Outcome written = Run(QStringLiteral("perl -e 'while (<STDIN>) { chomp; my ($n, $p) = split / /, $_, 2; "
                                               "read(STDIN, my $octets, $n) == $n or die; open(my $f, \">\", $p) or "
                                               "die \"$p: $!\"; print $f $octets; close($f) or die }'"),
                                all);
    ASSERT_EQ(written.Code, 0) << written.Problems.constData();
}
