// SPDX-License-Identifier: Apache-2.0
#include "sending/HandOver.h"

#include "common/HarmlessText.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>

#ifndef Q_OS_WIN
#include <csignal>
#include <unistd.h>
#endif

namespace
{
using Kind = HandOverResult::Kind;

constexpr qsizetype MostWords = 2000;                // characters that are kept
constexpr qsizetype MostRead = qsizetype{64} * 1024; // octets
constexpr int MillisecondsToDie = 5000;

/// The words of sysexits.h.
enum ExitCodes
{
    exNoHost = 68,
    exUnavailable = 69,
    exOSError = 71,
    exTempFail = 75,
    exProtocol = 76,
    exDataError = 65,
    exNoInput = 66,
    exNoUser = 67,
    exUsage = 64,
    exOSFile = 72,
    exCannotCreate = 73,
    exNoPermission = 77,
    exConfig = 78,
    // Of shells.
    exNotExecutable = 126,
    exNotFound = 127
};

/// The last reply of a mail server among the words: '4' for one of a passing refusal, '5' of a lasting one, or none.
QChar ReplyIn(const QString& words)
{
    static const QRegularExpression reply(QStringLiteral("(?:^|[\\s:<(])([45])[0-9]{2}(?:[ -]|$)"));
    QChar last;
    for (auto it = reply.globalMatch(words); it.hasNext();)
        last = it.next().captured(1).at(0);
    return last;
}

QString WordsOf(const QByteArray& octets)
{
    return HarmlessText::Words(QString::fromUtf8(octets)).left(MostWords);
}

#ifdef Q_OS_WIN
void PutIntoGroup(QProcess&) {}

void EndGroup(QProcess& process)
{
    process.kill();
    process.waitForFinished(MillisecondsToDie);
}
#else
/// A group of its own: Ctrl-C is for this program, which lets a hand-over come to its end.
void PutIntoGroup(QProcess& process)
{
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
}

/// The program with its own children, so that none of them goes on when the time is over.
void EndGroup(QProcess& process)
{
    const auto group = static_cast<pid_t>(process.processId());
    if (group > 0)
        ::kill(-group, SIGTERM);
    if (process.waitForFinished(MillisecondsToDie))
        return;
    if (group > 0)
        ::kill(-group, SIGKILL);
    process.waitForFinished(MillisecondsToDie);
}
#endif

/// Everything it says, or only what it says on standard error, is read as its output.
void LetSpeak(QProcess& process, const ProgramHabits& habits)
{
    if (habits.SaysOnOutput) {
        process.setProcessChannelMode(QProcess::MergedChannels);
    } else {
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setReadChannel(QProcess::StandardError);
    }
    if (habits.Locale.isEmpty())
        return;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), habits.Locale);
    process.setProcessEnvironment(environment);
}

/// Reads what the program says until it ends; false when the time was over before.
bool WaitForEnd(QProcess& process, int seconds, QByteArray& said)
{
    QElapsedTimer timer;
    timer.start();
    const qint64 limit = qint64(seconds) * 1000;
    while (process.state() != QProcess::NotRunning) {
        const qint64 rest = limit - timer.elapsed();
        if (rest <= 0)
            return false;
        process.waitForFinished(static_cast<int>(qMin<qint64>(rest, 200)));
        said.append(process.readAll());
        // Its end is worth more than its beginning: there stands why it failed.
        if (said.size() > MostRead)
            said.remove(0, said.size() - MostRead);
    }
    said.append(process.readAll());
    return true;
}
} // namespace

HandOverResult::Kind MeaningOfExitCode(int code, const QString& words)
{
    const QChar reply = ReplyIn(words);
    switch (code) {
    case 0:
        return Kind::Accepted;
    case exTempFail:
    case exNoHost:
    case exOSError:
        return Kind::Later;
    case exUsage:
    case exOSFile:
    case exCannotCreate:
    case exNoPermission:
    case exConfig:
    case exNotExecutable:
    case exNotFound:
        return Kind::SetUp;
    case exProtocol:
        // Without a reply the connection broke off, maybe behind the last octet of the mail.
        return reply == u'4' ? Kind::Later : reply == u'5' ? Kind::Refused : Kind::Unknown;
    case exUnavailable:
        // Without a reply it is no word about the mail: the server's certificate is another one's, say.
        return reply == u'5' ? Kind::Refused : Kind::Later;
    case exDataError:
    case exNoInput:
    case exNoUser:
        return reply == u'4' ? Kind::Later : Kind::Refused;
    default:
        // What programs say that know no such codes; what is above them means anything.
        return code < exUsage ? (reply == u'4' ? Kind::Later : Kind::Refused) : Kind::Unknown;
    }
}

HandOverResult HandOver(const QStringList& command, const QByteArray& input, int seconds, const ProgramHabits& habits)
{
    QProcess process;
    process.setProgram(command.first());
    process.setArguments(command.mid(1));
    LetSpeak(process, habits);
    PutIntoGroup(process);
    process.start();
    if (!process.waitForStarted(-1)) {
        return {Kind::NotStarted,
                QStringLiteral("%1 cannot be started: %2").arg(command.first(), process.errorString())};
    }
    process.write(input);
    process.closeWriteChannel();
    QByteArray said;
    if (!WaitForEnd(process, seconds, said)) {
        EndGroup(process);
        const QString words = WordsOf(said);
        return {Kind::Unknown, QStringLiteral("%1 did not end within %2 seconds%3")
                                   .arg(command.first())
                                   .arg(seconds)
                                   .arg(words.isEmpty() ? QString() : QStringLiteral(", and said: ") + words)};
    }
    QString words = WordsOf(said);
    if (process.exitStatus() == QProcess::CrashExit) {
        return {Kind::Unknown,
                QStringLiteral("%1 was killed%2")
                    .arg(command.first(), words.isEmpty() ? QString() : QStringLiteral(", and said: ") + words)};
    }
    if (words.isEmpty() && process.exitCode() != 0)
        words = QStringLiteral("%1 ended with code %2").arg(command.first()).arg(process.exitCode());
    return {habits.Meaning(process.exitCode(), words), words};
}
