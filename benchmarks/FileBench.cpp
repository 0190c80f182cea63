// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "Measure.h"
#include "Programs.h"
#include "Subjects.h"

#include <QDir>
#include <QFile>
#include <QList>

namespace
{
/// The program's peak of resident memory, in MB.
double PeakOf(const QList<QByteArray>& arguments)
{
    return static_cast<double>(RunProgram(TOLVA_PROGRAM, arguments).ru_maxrss) / 1024.0;
}

/// A mail of 5 KB.
QByteArray MailOfMaildir(int i)
{
    const QByteArray number = QByteArray::number(i);
    QByteArray mail = "From: Listener " + number + " <l" + QByteArray::number(i % 300) +
                      "@example.org>\nTo: studio@example.org\nSubject: Request " + number +
                      "\nDate: Fri, 20 Nov 2026 08:00:00 +0000\nMessage-ID: <" + number +
                      "@example.org>\nMIME-Version: 1.0\nContent-Type: text/plain; charset=utf-8\n\n";
    for (int word = i; mail.size() < 5000; ++word)
        mail += "word" + QByteArray::number(word % 997) + (word % 11 == 0 ? '\n' : ' ');
    return mail;
}

} // namespace

double MakeMaildir(const QString& folder, int count)
{
    for (const QString& part : {QStringLiteral("/cur"), QStringLiteral("/new"), QStringLiteral("/tmp")})
        Require(QDir().mkpath(folder + part), "the maildir cannot be made");
    double octets = 0;
    for (int i = 0; i < count; ++i) {
        const QByteArray mail = MailOfMaildir(i);
        WriteFile(folder + QStringLiteral("/new/%1.M1P1.bench").arg(1795000000 + i), mail);
        octets += static_cast<double>(mail.size());
    }
    return octets;
}

void BenchFiling(const QString& folder, int megabytes)
{
    const QByteArray station = QFile::encodeName(folder);
    MakeStationIn(station);
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

void BenchFilingAMaildir(const QString& folder, int count)
{
    constexpr int rounds = 1; // beside the one that warms caches
    constexpr double megabyte = 1024.0 * 1024.0;
    constexpr double octetsOfBlock = 512;
    const QString maildir = folder + QStringLiteral("/mail");
    const double octets = MakeMaildir(maildir, count);
    for (int i = 0; i <= rounds; ++i)
        MakeStationIn(QFile::encodeName(folder) + "/station" + QByteArray::number(i));
    int station = 0;
    double written = 0;
    const auto file = [&] {
        const QByteArray name = QFile::encodeName(folder) + "/station" + QByteArray::number(station++);
        written =
            static_cast<double>(RunProgram(TOLVA_PROGRAM, {"file", name, QFile::encodeName(maildir)}).ru_oublock) *
            octetsOfBlock;
    };
    const QByteArray notmuch = FindProgram("notmuch", "the speed of filing a maildir");
    if (notmuch.isEmpty()) {
        file();
    } else {
        const QString settings = folder + QStringLiteral("/notmuch");
        WriteFile(settings, "[database]\npath=" + QFile::encodeName(maildir) +
                                "\n[user]\nname=Bench\nprimary_email=bench@example.org\n[new]\ntags=new\n");
        qputenv("NOTMUCH_CONFIG", QFile::encodeName(settings));
        Compare(
            {"filing a maildir", "notmuch new on it", 1.0, rounds, count},
            [&] {
                QDir(maildir + QStringLiteral("/.notmuch")).removeRecursively();
                RunProgram(notmuch, {"new", "--quiet"});
            },
            file);
    }
    Report("written, filing a maildir", "the mails", octets / megabyte, written / megabyte, 4.0, "MB");
}

void BenchFilingOneMail(const QString& folder)
{
    constexpr int rounds = 15;
    constexpr int mails = 4; // a round
    constexpr double mostSyncs = 12;
    const QByteArray station = QFile::encodeName(folder);
    MakeStationIn(station);
    const QByteArray mail = QFile::encodeName(folder + QStringLiteral("/one.eml"));
    WriteFile(QFile::decodeName(mail), MailOfMaildir(1));
    const QByteArray bare = station + "/bare.db";
    BareDatabase(QFile::decodeName(bare))
        .Execute("CREATE TABLE Messages (Reference INTEGER PRIMARY KEY, Subject TEXT, Message TEXT)");
    Compare(
        {"filing one mail", "a program: one bare durable commit, and a GMime parse", 2.2, rounds, mails},
        [&] {
            for (int i = 0; i < mails; ++i)
                RunProgram(BARE_FILING, {bare}, mail);
        },
        [&] {
            for (int i = 0; i < mails; ++i)
                RunProgram(TOLVA_PROGRAM, {"file", station, "-"}, mail);
        });
    const QByteArray log = station + "/syncs";
    qputenv("LD_PRELOAD", COUNTING_CALLS);
    qputenv("SYNC_LOG", log);
    RunProgram(TOLVA_PROGRAM, {"file", station, "-"}, mail);
    qunsetenv("LD_PRELOAD");
    qunsetenv("SYNC_LOG");
    QFile counted(QFile::decodeName(log));
    Require(counted.open(QIODevice::ReadOnly), "the syncs were not counted");
    Report("syncs, filing one mail", "the most that may be", mostSyncs, counted.readAll().trimmed().toDouble(), 1.0,
           "");
}
