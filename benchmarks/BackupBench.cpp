// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"
#include "common/FileHelper.h"
#include "platform/records/DBEngine.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <vector>

namespace
{
constexpr int RowSize = 256 * 1024;
constexpr int RowsATransaction = 200;
constexpr int PauseMilliseconds = 20;

void FillUp(const QString& file, qint64 size)
{
    const auto database = dao::DBEngine::OpenDatabase(file);
    while (FileHelper::FileSize(file) < size) {
        dao::DBEngine::BeginTrans();
        const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
        for (int i = 0; i < RowsATransaction; ++i) {
            rows->AddNew();
            rows->SetCollect(QStringLiteral("Category"), 1);
            (*rows)[QStringLiteral("Message")].SetOctets(SampleMail(i) + QByteArray(RowSize, 'm'));
            rows->Update();
        }
        dao::DBEngine::CommitTrans();
    }
}

/// The same octets once more, on the disk, and under the name of the copy before.
void PlainCopy(const QByteArray& from, const QByteArray& to)
{
    const QByteArray unfinished = to + ".unfinished";
    const int source = ::open(from.constData(), O_RDONLY);
    const int target = ::open(unfinished.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    Require(source >= 0 && target >= 0, "the plain copy cannot begin");
    std::vector<char> chunk(1024 * 1024);
    for (ssize_t count = 0; (count = ::read(source, chunk.data(), chunk.size())) > 0;)
        Require(::write(target, chunk.data(), static_cast<size_t>(count)) == count, "the plain copy cannot be written");
    Require(::fsync(target) == 0 && ::close(target) == 0 && ::close(source) == 0 &&
                ::rename(unfinished.constData(), to.constData()) == 0,
            "the plain copy was not written");
}

/// A backup is read whole before it counts.
void BareCheck(const QByteArray& file)
{
    BareDatabase database(QString::fromLocal8Bit(file));
    sqlite3_stmt* check = database.Prepare("PRAGMA integrity_check");
    Require(sqlite3_step(check) == SQLITE_ROW &&
                QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(check, 0))) == "ok",
            "the plain copy is not sound");
    sqlite3_finalize(check);
}

bool IsToldToEnd()
{
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, PauseMilliseconds) > 0;
}

/// This program once more, in a process of its own, storing messages all the time.
class Writer
{
public:
    explicit Writer(const QString& file)
    {
        Process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        Process_.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--writer"), file});
        Require(Process_.waitForReadyRead(), "the writer does not start");
        Process_.readAllStandardOutput();
    }
    /// The longest time that storing a message took, in milliseconds.
    double LongestWait()
    {
        Process_.closeWriteChannel();
        Require(Process_.waitForFinished() && Process_.exitCode() == 0, "the writer failed");
        return Process_.readAllStandardOutput().trimmed().toDouble();
    }

private:
    QProcess Process_;
};

void BackUp(const QString& folder)
{
    const auto station = OpenStation(folder);
    Require(station->BackupDatabase(true), "no backup was made");
}
} // namespace

int WriteUntilTold(const QString& file)
{
    const auto database = dao::DBEngine::OpenDatabase(file);
    std::printf("ready\n");
    std::fflush(stdout);
    qint64 longest = 0;
    QElapsedTimer timer;
    while (!IsToldToEnd()) {
        timer.start();
        const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Category"), 1);
        (*rows)[QStringLiteral("Message")].SetOctets(SampleMail(1));
        rows->Update();
        longest = std::max(longest, timer.nsecsElapsed());
    }
    std::printf("%f\n", static_cast<double>(longest) / 1e6);
    return 0;
}

void BenchBackup(const QString& folder, int megabytes)
{
    MakeStation(folder, 100);
    const QString file = folder + QStringLiteral("/Tolva.mdb");
    FillUp(file, static_cast<qint64>(megabytes) * 1024 * 1024);
    const QByteArray from = file.toLocal8Bit();
    Compare(
        {"a backup of " + std::to_string(megabytes) + " MB", "a plain copy with a sync, and bare SQLite's check of it",
         1.5, 3, 1},
        [&] {
            PlainCopy(from, from + ".copy");
            BareCheck(from + ".copy");
        },
        [&] { BackUp(folder); });
    Writer besideCopy(file);
    PlainCopy(from, from + ".copy");
    const double copyWait = besideCopy.LongestWait();
    Writer writer(file);
    BackUp(folder);
    const double wait = writer.LongestWait();
    char words[120];
    std::snprintf(words, sizeof words, "one second (beside a plain copy: %.1f ms)", copyWait);
    Report("longest wait of a writer meanwhile", words, 1000, wait, 1.0, "ms");
}
