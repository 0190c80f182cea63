#include "Measure.h"
#include "Subjects.h"

#include <QFile>
#include <QList>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
/// Runs the program to its good end; its peak of resident memory, in MB.
double PeakOf(const QList<QByteArray>& arguments)
{
    QList<char*> words = {const_cast<char*>(TOLVA_PROGRAM)};
    for (const QByteArray& argument : arguments)
        words.append(const_cast<char*>(argument.constData()));
    words.append(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        execv(TOLVA_PROGRAM, words.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    Require(wait4(child, &status, 0, &usage) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0,
            "the program did not do its work");
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}
} // namespace

void BenchFiling(const QString& folder, int megabytes)
{
    const QByteArray station = QFile::encodeName(folder);
    PeakOf({"init", station, "--name", "Bench FM", "--phone", "01632 960100"});
    const QString name = folder + QStringLiteral("/large.eml");
    QFile file(name);
    Require(file.open(QIODevice::WriteOnly), "the large mail cannot be written");
    file.write("From: ann@example.com\r\nSubject: A film of the regatta\r\nMIME-Version: 1.0\r\n"
               "Content-Type: multipart/mixed; boundary=\"=_b\"\r\n\r\n--=_b\r\nContent-Type: text/plain\r\n\r\nHere "
               "it is.\r\n"
               "--=_b\r\nContent-Type: video/mp4; name=\"regatta.mp4\"\r\nContent-Transfer-Encoding: base64\r\n\r\n");
    const QByteArray line = QByteArray(76, 'Q') + "\r\n";
    const QByteArray block = line.repeated(1024 * 1024 / static_cast<int>(line.size()));
    for (int i = 0; i < megabytes; ++i)
        file.write(block);
    file.write("\r\n--=_b--\r\n");
    file.close();
    const double size = static_cast<double>(file.size()) / (1024.0 * 1024.0);
    Report("peak memory, filing a large mail", "the size of the mail", size,
           PeakOf({"file", station, QFile::encodeName(name)}), 5.0, "MB");
}
