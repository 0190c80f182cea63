// SPDX-License-Identifier: Apache-2.0
#include "BenchStation.h"
#include "Measure.h"
#include "Programs.h"
#include "Subjects.h"
#include "platform/directory/EmbeddedDirectory.h"
#include "platform/records/DBEngine.h"

#include <QDir>
#include <QFile>

#include <malloc.h>

namespace
{
constexpr int Small = 1000;
constexpr int MessagesARound = 20;
const QString Jet = QStringLiteral("jet");

/// The columns that the list shows, of all messages.
void ReadListColumns(const QString& folder, int rows)
{
    const auto database = dao::DBEngine::OpenDatabase(folder + QStringLiteral("/Tolva.mdb"), 0, true);
    const auto recordset = database->OpenRecordset(
        QStringLiteral("SELECT Reference, Flags, Category, Sent, Received, Priority, Subject, FromKey, "
                       "PersonalToContact, HasHighlightWords, MessageType FROM Messages"),
        dao::dbOpenSnapshot);
    int count = 0;
    for (; !recordset->AtEOF(); recordset->MoveNext(), ++count) {
        for (int column = 0; column < recordset->Fields().Count(); ++column)
            static_cast<void>(recordset->Fields().Item(column).Value());
    }
    Require(count == rows, "rows are missing");
}

void BenchReadingBesideExport(const QString& station, int rows)
{
    const QByteArray exporter = FindProgram("mdb-export", "the speed of reading a Jet file");
    if (exporter.isEmpty())
        return;
    const QByteArray file = QFile::encodeName(station) + "/Tolva.mdb";
    Compare(
        {"list columns of " + std::to_string(rows) + ", Jet file", "mdb-export of the table", 1.0 / 3, 3, 1},
        [&] {
            RunProgram(exporter, {file, "Messages"});
        },
        [&] { ReadListColumns(station, rows); });
}

/// A station with a user who saves messages one by one.
class SavingStation
{
public:
    SavingStation(const QString& folder, const QString& engine)
    {
        MakeStation(folder, 0, engine);
        Directory_.Open(folder + QStringLiteral("/Directory"));
        DirectoryUser user{0, QStringLiteral("Bench"), 31};
        Directory_.SaveUser(user);
        Require(Directory_.SignIn(user.Name), "the user cannot sign in");
        Station_ = OpenStation(folder);
        Station_->SetDirectoryDatabase(&Directory_);
    }

    void SaveSome()
    {
        for (int i = 0; i < MessagesARound; ++i, ++Number_) {
            const auto message = std::make_shared<cMessage>();
            message->SetCDOMessage(std::make_shared<cdo::Message>(SampleMail(Number_)));
            message->SetCategory(tmcInbox);
            Require(Station_->SaveMessage(message), "a message was not saved");
        }
    }

private:
    EmbeddedDirectory Directory_;
    std::unique_ptr<cTolvaDatabase> Station_;
    int Number_ = 0;
};

void BenchSavingBesideUsual(const QString& folder)
{
    SavingStation usual(folder + QStringLiteral("/usual-saving"), QString());
    SavingStation jet(folder + QStringLiteral("/jet-saving"), Jet);
    Compare(
        {"SaveMessage, durable, Jet file", "the same in the usual format", 2.5, 9, MessagesARound},
        [&] { usual.SaveSome(); }, [&] { jet.SaveSome(); });
}

void BenchFilingBesideUsual(const QString& folder, int count)
{
    constexpr int rounds = 1; // beside the one that warms caches
    const QString maildir = folder + QStringLiteral("/mail");
    MakeMaildir(maildir, count);
    int usual = 0;
    int jet = 0;
    const auto stationOf = [&](const char* format, int number) {
        return QFile::encodeName(folder) + "/filed-" + format + QByteArray::number(number);
    };
    for (int i = 0; i <= rounds; ++i) {
        MakeStationIn(stationOf("sqlite", i));
        MakeStationIn(stationOf("jet", i), "jet");
    }
    Compare(
        {"filing a maildir, Jet file", "the same in the usual format", 3.0, rounds, count},
        [&] {
            RunProgram(TOLVA_PROGRAM, {"file", stationOf("sqlite", usual++), QFile::encodeName(maildir)});
        },
        [&] {
            RunProgram(TOLVA_PROGRAM, {"file", stationOf("jet", jet++), QFile::encodeName(maildir)});
        });
}

void BenchOpeningJet(const QString& smallStation, const QString& largeStation)
{
    constexpr int Opens = 5;
    const auto openAndClose = [](const QString& folder) {
        for (int i = 0; i < Opens; ++i)
            OpenStation(folder)->CloseTolvaDatabase();
    };
    Compare(
        {"opening the large Jet file", "opening one with 1000 messages", 1.5, 7, Opens},
        [&] { openAndClose(smallStation); }, [&] { openAndClose(largeStation); });
    const auto used = [] { return static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd) / (1024.0 * 1024.0); };
    const double before = used();
    const auto station = OpenStation(largeStation);
    Report("memory of the open large Jet file", "20 MB", 20, used() - before, 1.0, "MB");
}
} // namespace

void BenchJet(const QString& folder, int large, int filed)
{
    const QString largeStation = folder + QStringLiteral("/large");
    const QString smallStation = folder + QStringLiteral("/small");
    std::fprintf(stderr, "Making a Jet file of %d messages\n", large);
    MakeStation(largeStation, large, Jet);
    MakeStation(smallStation, Small, Jet);
    BenchReadingBesideExport(largeStation, large);
    BenchOpeningJet(smallStation, largeStation);
    BenchSavingBesideUsual(folder);
    BenchFilingBesideUsual(folder, filed);
}
