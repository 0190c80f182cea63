// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"
#include "messageslist/uMessagesList.h"

#include <QCoreApplication>
#include <QTimer>

#include <malloc.h>
#include <vector>

namespace
{
constexpr int Small = 1000;
constexpr int Refreshes = 200;
constexpr int Ticks = 500;
constexpr int Mixed = 20000;

/// A list on show, which holds all messages of its station.
class ShownList
{
public:
    explicit ShownList(const QString& folder) : Station_(OpenStation(folder))
    {
        List_.resize(1000, 700);
        List_.setAttribute(Qt::WA_DontShowOnScreen);
        List_.show();
        List_.SetTolvaDatabase(Station_.get());
    }

    uMessagesList& List() { return List_; }
    void Fill(int rows)
    {
        List_.UpdateDisplay();
        Require(List_.NumberItems() == rows, "the list does not show all messages");
    }
    void Refresh(int rows)
    {
        for (int i = 0; i < Refreshes; ++i)
            Require(List_.RefreshDisplay(1 + (i * 37) % rows), "a row is missing");
    }
    /// As the list's own timer does it.
    void Tick()
    {
        auto* timer = List_.findChild<QTimer*>(QStringLiteral("timerUpdateList"));
        Require(timer && QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection), "the list has no timer");
    }

private:
    std::unique_ptr<cTolvaDatabase> Station_;
    uMessagesList List_;
};

/// The rows that the list shows, in its order, with the mails' headers parsed: what no list can do without.
void SelectAndParse(BareDatabase& bare, sqlite3_stmt* all, int rows)
{
    int count = 0;
    while (sqlite3_step(all) == SQLITE_ROW) {
        const QByteArray mail(static_cast<const char*>(sqlite3_column_blob(all, 5)), sqlite3_column_bytes(all, 5));
        Require(ParseHeaders(mail) > 0, "a header was not parsed");
        ++count;
    }
    sqlite3_reset(all);
    Require(count == rows && bare.Handle(), "rows are missing");
}

constexpr char AllRows[] = "SELECT Reference, Sent, Flags, Priority, PersonalToContact, Message FROM Messages "
                           "ORDER BY Sent DESC, Reference";

void BenchFill(const QString& station, int rows, const std::string& what, ShownList& shown)
{
    BareDatabase bare(station + QStringLiteral("/Tolva.mdb"));
    sqlite3_stmt* all = bare.Prepare(AllRows);
    Compare(
        {"UpdateDisplay of " + std::to_string(rows) + what, "a bare select of the rows, and GMime header parses", 2.0,
         3, 1},
        [&] { SelectAndParse(bare, all, rows); }, [&] { shown.Fill(rows); });
}

/// What the rows give back when the list lets go of them; caches of the store and the fonts are not theirs.
void ReportMemory(const QString& station, int rows)
{
    const auto used = [] { return static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd); };
    ShownList shown(station);
    shown.Fill(rows);
    const double filled = used();
    shown.List().SetTolvaDatabase(nullptr);
    Report("memory of a row", "1 KB", 1024, (filled - used()) / rows, 1.0, "B");
}

/// One row of the folder changed on another computer.
void BenchChange(const QString& folder, int rows, ShownList& shown)
{
    BareDatabase bare(folder + QStringLiteral("/Tolva.mdb"));
    sqlite3_stmt* light = bare.Prepare("SELECT Reference, Flags, Category, Sent, Received, Priority, Subject, FromKey, "
                                       "PersonalToContact, HasHighlightWords, MessageType FROM Messages "
                                       "ORDER BY Sent DESC, Reference");
    const auto other = OpenStation(folder);
    const auto change = [&] {
        const cMessagePtr message = other->GetMessage(rows / 2);
        message->SetFlags(message->Flags() ^ mfRead);
        Require(other->SaveMessage(message), "the other computer cannot save");
    };
    Compare(
        {"a tick after one row of " + std::to_string(rows), "a bare select of the light columns", 2.0, 5, 1},
        [&] {
            int count = 0;
            while (sqlite3_step(light) == SQLITE_ROW) {
                for (int column = 0; column < sqlite3_column_count(light); ++column)
                    sqlite3_column_text(light, column);
                ++count;
            }
            sqlite3_reset(light);
            Require(count == rows, "rows are missing");
        },
        [&] {
            change();
            shown.Tick();
        });
}

void BenchTick(const QString& station, ShownList& shown)
{
    BareDatabase bare(station + QStringLiteral("/Tolva.mdb"));
    sqlite3_stmt* setting = bare.Prepare("SELECT Value FROM Settings WHERE Item='Messages.LastChanged'");
    Compare(
        {"an idle tick", "a prepared select of one setting", 3.0, 7, Ticks},
        [&] {
            for (int i = 0; i < Ticks; ++i) {
                Require(sqlite3_step(setting) == SQLITE_ROW, "there is no stamp");
                sqlite3_reset(setting);
            }
        },
        [&] {
            for (int i = 0; i < Ticks; ++i)
                shown.Tick();
        });
}
} // namespace

void BenchListing(const QString& folder, const QString& largeStation, int large)
{
    MakeStation(folder, Small);
    ShownList small(folder);
    ReportMemory(largeStation, large);
    ShownList shown(largeStation);
    shown.Tick(); // gives the station its stamp
    BenchFill(folder, Small, std::string(), small);
    BenchFill(largeStation, large, std::string(), shown);
    {
        const QString mixedStation = folder + QStringLiteral("-mixed");
        MakeMixedStation(mixedStation, Mixed);
        ShownList mixed(mixedStation);
        mixed.Tick();
        BenchFill(mixedStation, Mixed, " as they come", mixed);
    }
    BenchChange(largeStation, large, shown);
    const int times = large / Small;
    Compare(
        {"UpdateDisplay, rows times " + std::to_string(times),
         "the fill of " + std::to_string(Small) + " so many times", 1.5, 3, 1},
        [&] {
            for (int i = 0; i < times; ++i)
                small.Fill(Small);
        },
        [&] { shown.Fill(large); });
    Compare(
        {"RefreshDisplay of one row", "the same in a list of " + std::to_string(Small), 1.5, 7, Refreshes},
        [&] { small.Refresh(Small); }, [&] { shown.Refresh(large); });
    BenchTick(largeStation, shown);
}
