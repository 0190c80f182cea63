// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "Measure.h"
#include "Programs.h"
#include "Subjects.h"
#include "messageslist/uMessagesList.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEvent>
#include <QFile>
#include <QTableView>
#include <QThread>
#include <QTimer>
#include <QWindow>

#include <malloc.h>
#include <vector>

namespace
{
constexpr int Small = 1000;
constexpr int Refreshes = 200;
constexpr int Ticks = 500;
constexpr int SecondsAtRest = 3;
constexpr int Mixed = 20000;

/// A list on show, which holds all messages of its station.
class ShownList
{
public:
    explicit ShownList(const QString& folder) : Station_(OpenStation(folder))
    {
        List_.resize(1000, 700);
        List_.show();
        while (!List_.windowHandle()->isExposed())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
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

/// Tells when a widget is painted next.
class NextPaint : public QObject
{
public:
    explicit NextPaint(QWidget& widget) { widget.installEventFilter(this); }
    bool IsPainted() const { return IsPainted_; }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        IsPainted_ = IsPainted_ || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool IsPainted_ = false;
};

/// A maildir of the mails of a mixed station.
void MakeMixedMaildir(const QString& folder, int count)
{
    for (const QString& part : {QStringLiteral("/cur"), QStringLiteral("/new"), QStringLiteral("/tmp")})
        Require(QDir().mkpath(folder + part), "the maildir cannot be made");
    for (int i = 0; i < count; ++i)
        WriteFile(folder + QStringLiteral("/cur/%1.M1P1.bench:2,S").arg(1795000000 + i),
                  MixedMail(i).replace("\r\n", "\n"));
}

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

/// The wait for what is painted first when a folder is chosen, and for its rows when they are read.
void BenchFirstScreen(ShownList& shown)
{
    constexpr double most = 100;
    auto* loading = shown.List().findChild<QWidget*>(QStringLiteral("picLoading"));
    auto* grid = shown.List().findChild<QTableView*>(QStringLiteral("grdMessages"));
    Require(loading && grid, "the list has no panel or no grid");
    QElapsedTimer sinceChoice;
    double untilPanel = 0;
    const NextPaint panel(*loading);
    const auto connection = QObject::connect(&shown.List(), &uMessagesList::FillProgress, [&] {
        if (panel.IsPainted() && untilPanel == 0)
            untilPanel = static_cast<double>(sinceChoice.nsecsElapsed()) / 1e6;
    });
    sinceChoice.start();
    shown.List().UpdateDisplay();
    QObject::disconnect(connection);
    Require(untilPanel > 0, "the panel was not painted");
    Report("a folder chosen, its first paint", "0.1 s", most, untilPanel, 1.0, "ms");
    const NextPaint rows(*grid->viewport());
    QElapsedTimer sinceRead;
    sinceRead.start();
    while (!rows.IsPainted())
        QCoreApplication::processEvents();
    Report("its rows read, their first paint", "0.1 s", most, static_cast<double>(sinceRead.nsecsElapsed()) / 1e6, 1.0,
           "ms");
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
        [&] { shown.Tick(); }, change);
}

/// A fill of mails as they come, against the programs that show the same mails.
void BenchMixedFill(const QString& station, int rows, ShownList& shown)
{
    const std::string name = "UpdateDisplay of " + std::to_string(rows) + " as they come";
    const QByteArray folder = QFile::encodeName(station);
    Compare(
        {name, "tolva list of them", 1.3, 5, 1},
        [&] {
            RunProgram(TOLVA_PROGRAM, {"list", folder});
        },
        [&] { shown.Fill(rows); });
    const QByteArray neomutt = FindProgram("neomutt", "the speed of opening a folder");
    if (neomutt.isEmpty())
        return;
    const QByteArray maildir = folder + "-maildir";
    MakeMixedMaildir(QFile::decodeName(maildir), rows);
    const QByteArray settings = maildir + "/neomuttrc";
    Require(QDir().mkpath(QFile::decodeName(maildir + "/cache")), "the cache cannot be made");
    WriteFile(QFile::decodeName(settings), "set folder='" + maildir + "'\nset spoolfile='" + maildir +
                                               "'\nset record=''\nset header_cache='" + maildir +
                                               "/cache'\nset sort=reverse-date-sent\nset quit=yes\n");
    // The first run, which does not count, writes the cache.
    Compare(
        {name, "neomutt opening them, header cache warm", 0.5, 5, 1},
        [&] {
            RunOnTerminal(neomutt, {"-n", "-R", "-F", settings, "-f", maildir, "-e", "push <exit>"});
        },
        [&] { shown.Fill(rows); });
}

void BenchTick(const QString& station, ShownList& shown)
{
    BareDatabase bare(station + QStringLiteral("/Tolva.mdb"));
    sqlite3_stmt* setting = bare.Prepare("SELECT Value FROM Settings WHERE Item='Messages.LastChanged'");
    // Nobody has written for a while, and the list has seen so.
    shown.Tick();
    QThread::sleep(SecondsAtRest);
    shown.Tick();
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
        MakeStationIn(QFile::encodeName(mixedStation));
        MakeMixedStation(mixedStation, Mixed);
        ShownList mixed(mixedStation);
        mixed.Tick();
        BenchFill(mixedStation, Mixed, " as they come", mixed);
        BenchMixedFill(mixedStation, Mixed, mixed);
        BenchFirstScreen(mixed);
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

void BenchJetListing(const QString& folder, int large)
{
    const QString usualStation = folder + QStringLiteral("-usual");
    MakeStation(usualStation, large);
    MakeStation(folder, large, QStringLiteral("jet"));
    ShownList usual(usualStation);
    ShownList shown(folder);
    Compare(
        {"UpdateDisplay, " + std::to_string(large) + " in a Jet file", "the same in the usual format", 1.5, 3, 1},
        [&] { usual.Fill(large); }, [&] { shown.Fill(large); });
}
