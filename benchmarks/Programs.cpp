// SPDX-License-Identifier: Apache-2.0
#include "Programs.h"

#include "Measure.h"

#include <QFile>
#include <QStandardPaths>

#include <cstdio>
#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
/// In the child. Its words point into what the parent holds.
[[noreturn]] void Become(const QByteArray& program, const QList<QByteArray>& arguments)
{
    QList<char*> words = {const_cast<char*>(program.constData())};
    for (const QByteArray& argument : arguments)
        words.append(const_cast<char*>(argument.constData()));
    words.append(nullptr);
    execv(program.constData(), words.data());
    _exit(127);
}

rusage WaitFor(pid_t child)
{
    int status = 0;
    rusage usage{};
    Require(wait4(child, &status, 0, &usage) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0,
            "the program did not do its work");
    return usage;
}
} // namespace

rusage RunProgram(const QByteArray& program, const QList<QByteArray>& arguments, const QByteArray& input)
{
    const pid_t child = fork();
    if (child == 0) {
        dup2(open(input.constData(), O_RDONLY), STDIN_FILENO);
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        Become(program, arguments);
    }
    return WaitFor(child);
}

void RunOnTerminal(const QByteArray& program, const QList<QByteArray>& arguments)
{
    int terminal = -1;
    const winsize size{24, 80, 0, 0};
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        setenv("TERM", "xterm", 1);
        Become(program, arguments);
    }
    char output[4096];
    // Its end closes the terminal, which reads as an error.
    while (read(terminal, output, sizeof output) > 0) {
    }
    close(terminal);
    WaitFor(child);
}

void MakeStationIn(const QByteArray& folder, const QByteArray& format)
{
    RunProgram(TOLVA_PROGRAM, {"init", folder, "--name", "Bench FM", "--phone", "01632 960100", "--format", format});
}

QByteArray FindProgram(const QByteArray& name, const char* whatIsNotCompared)
{
    const QByteArray path = QFile::encodeName(QStandardPaths::findExecutable(QString::fromLatin1(name)));
    if (path.isEmpty())
        std::fprintf(stderr, "%s is not installed, so that %s is not compared\n", name.constData(), whatIsNotCompared);
    return path;
}
