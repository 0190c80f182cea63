// SPDX-License-Identifier: Apache-2.0

// A desk without a window, for measuring many of them on one server.
//   serverDesk watch FOLDER SECONDS         looks for changes as a list does, and reads the Inbox behind each
//   serverDesk file FOLDER SECONDS RATE     saves that many messages a second; prints "saved REFERENCE" for each, at
//   the
//                                           end "longest MILLISECONDS"
//   serverDesk fill FOLDER COUNT INBOX      that many messages of few senders, the first INBOX of them in the Inbox,
//   and a
//                                           prize without end
//   serverDesk measure FOLDER               what actions take, in milliseconds, each as "NAME MILLISECONDS"
// An error is a line on standard error and code 1.

#include "common/ListViewObject.h"
#include "common/UserInterface.h"
#include "database/cTolvaDatabase.h"
#include "database/watch/RowChanges.h"
#include "database/watch/StationWatch.h"
#include "platform/directory/EmbeddedDirectory.h"
#include "prizes/Awarding.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace
{
constexpr int BeginningOctets = 4096;
constexpr int LookMilliseconds = 3000;
constexpr int MessagesOfBatch = 500;
constexpr int Rounds = 9;

[[noreturn]] void Fail(const QString& words)
{
    std::fprintf(stderr, "serverDesk: %s\n", qPrintable(words));
    std::exit(1);
}

void Require(bool isTrue, const cTolvaDatabase& station, const char* what)
{
    if (!isTrue)
        Fail(QStringLiteral("%1: %2").arg(QLatin1String(what), station.LastErrorDescription()));
}

/// Nobody is there to be asked.
class NoUser : public UserInterface
{
public:
    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override { Fail(request.Text); }
    int InputBox(const InputBoxRequest&, QString&) override { return -1; }
    void PageSetupLabels(cPageSetup&) override {}
    void SetBusyPointer(bool) override {}
    std::unique_ptr<ProgressDisplay> Progress(const QString&) override { return std::make_unique<NoProgress>(); }
    void Yield() override {}
    void RunTimeError(const dao::Error& error) override { Fail(error.Description()); }

private:
    class NoProgress : public ProgressDisplay
    {
        bool Advance(qint64, qint64) override { return true; }
    };
};

class CountingList : public ListViewObject
{
public:
    int ColumnCount() const override { return static_cast<int>(Keys_.size()); }
    QString ColumnKey(int column) const override { return Keys_.at(column); }
    void ClearItems() override { Count_ = 0; }
    bool AddListItem(const QString&, const QStringList&, const QVariantList&) override
    {
        ++Count_;
        return true;
    }
    int Count() const { return Count_; }

private:
    const QStringList Keys_{QStringLiteral("Subject"), QStringLiteral("FromKey"), QStringLiteral("SENT")};
    int Count_ = 0;
};

struct Desk
{
    explicit Desk(const QString& folder)
    {
        Directory.Open(folder + QStringLiteral("/Directory"));
        Directory.SignIn(Directory.Users().first().Name);
        Station.SetMakesAutomaticBackups(false);
        Station.SetDirectoryDatabase(&Directory);
        Require(Station.OpenTolvaDatabase(folder) == 0, Station, "the station does not open");
    }

    EmbeddedDirectory Directory;
    cTolvaDatabase Station;
};

int List(cTolvaDatabase& station, int folder)
{
    const auto rows = station.OpenMessageRows(
        {QStringLiteral("Reference"), QStringLiteral("Received"), QStringLiteral("Flags"), QStringLiteral("Message")},
        QStringLiteral("[Category]=%1").arg(folder), QStringLiteral("[Received] DESC"));
    const dao::Recordset& fields = *rows;
    int count = 0;
    for (; !rows->AtEOF(); rows->MoveNext())
        count += fields[QStringLiteral("Message")].Beginning(BeginningOctets).Utf8.isEmpty() ? 0 : 1;
    return count;
}

int ReadLightly(cTolvaDatabase& station, int folder)
{
    const QStringList columns{QStringLiteral("Reference"), QStringLiteral("Flags"), QStringLiteral("Priority")};
    const auto rows = station.OpenMessageRows(columns, QStringLiteral("[Category]=%1").arg(folder),
                                              QStringLiteral("[Received] DESC"));
    return static_cast<int>(ReadLightRows(*rows, columns).size());
}

cMessagePtr MessageFrom(const QString& sender, const QString& subject)
{
    auto message = std::make_shared<cMessage>();
    message->SetMessageType(emtEmail);
    message->SetCDOMessage(std::make_shared<cdo::Message>(
        QStringLiteral("From: %1\r\nTo: studio@harbourfm.example.org\r\nSubject: %2\r\nDate: Sat, 21 Nov 2026 10:00:00 "
                       "+0000\r\n\r\nPlease play it again, the one about the lighthouse.\r\n")
            .arg(sender, subject)
            .toUtf8()));
    message->SetCategory(tmcInbox);
    return message;
}

int Watch(const QString& folder, int seconds)
{
    Desk desk(folder);
    Date read;
    bool isFirst = true;
    const auto look = [&] {
        const Date stamp = desk.Station.Watch().MessageStamp();
        desk.Station.Watch().PrizeStamp();
        desk.Station.Watch().RefreshFolders();
        if (stamp == read)
            return;
        read = stamp;
        // As a list does: all of it at first, then what tells which rows differ.
        if (isFirst)
            List(desk.Station, tmcInbox);
        else
            ReadLightly(desk.Station, tmcInbox);
        isFirst = false;
    };
    QObject::connect(&desk.Station.Watch(), &StationWatch::Polled, look);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { desk.Station.Watch().Poll(timer); });
    timer.start(LookMilliseconds);
    desk.Station.Watch().Poll(timer);
    QTimer::singleShot(seconds * 1000, QCoreApplication::instance(), &QCoreApplication::quit);
    return QCoreApplication::exec();
}

int File(const QString& folder, int seconds, int rate)
{
    Desk desk(folder);
    QElapsedTimer since;
    since.start();
    qint64 longest = 0;
    for (qint64 number = 0; since.elapsed() < seconds * qint64{1000}; ++number) {
        const qint64 due = number * 1000 / rate;
        if (since.elapsed() < due)
            QThread::msleep(static_cast<unsigned long>(due - since.elapsed()));
        const cMessagePtr message =
            MessageFrom(QStringLiteral("listener%1@example.com").arg(number % 500),
                        QStringLiteral("Number %1 of %2").arg(number).arg(QCoreApplication::applicationPid()));
        QElapsedTimer save;
        save.start();
        Require(desk.Station.SaveMessage(message), desk.Station, "a message was not saved");
        longest = std::max(longest, save.elapsed());
        std::printf("saved %d\n", message->Reference());
    }
    std::printf("longest %lld\n", longest);
    return 0;
}

int Fill(const QString& folder, int count, int inbox)
{
    Desk desk(folder);
    for (int first = 0; first < count; first += MessagesOfBatch) {
        std::vector<cMessagePtr> batch;
        for (int i = first; i < std::min(first + MessagesOfBatch, count); ++i) {
            batch.push_back(
                MessageFrom(QStringLiteral("listener%1@example.com").arg(i % 100), QStringLiteral("Number %1").arg(i)));
            batch.back()->SetCategory(i < inbox ? tmcInbox : tmcDrafts);
        }
        for (const MessageSaving& saving : desk.Station.SaveMessages(batch, [] { return true; }))
            Require(saving.IsSaved(), desk.Station, "a message was not saved");
    }
    const auto prize = std::make_shared<cPrize>();
    prize->SetTitle(QStringLiteral("Tickets"));
    prize->SetNumberSupplied(30000);
    Require(desk.Station.SavePrize(prize), desk.Station, "the prize was not saved");
    return 0;
}

void Measure(const char* name, const std::function<void()>& action)
{
    std::vector<double> times;
    for (int round = 0; round < Rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        action();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    std::printf("%s %.2f\n", name, times[times.size() / 2]);
}

int MeasureAll(const QString& folder)
{
    Measure("open", [&] { Desk desk(folder); });
    Desk desk(folder);
    Measure("folder", [&] { Require(List(desk.Station, tmcInbox) == 5000, desk.Station, "no folder of 5000"); });
    Measure("history", [&] {
        CountingList list;
        desk.Station.FillMessagesListView(&list, QStringLiteral("listener7@example.com"), QString());
        Require(list.Count() == 100, desk.Station, "no history of 100");
    });
    Measure("award", [&] {
        const Awarding::Result result = Awarding(desk.Station).Award(1, 7);
        Require(result.Winner != nullptr, desk.Station, "nothing was awarded");
    });
    return 0;
}

int Run(const QStringList& words)
{
    const QString what = words.value(1);
    const QString folder = words.value(2);
    if (what == QStringLiteral("watch"))
        return Watch(folder, words.value(3).toInt());
    if (what == QStringLiteral("file"))
        return File(folder, words.value(3).toInt(), words.value(4).toInt());
    if (what == QStringLiteral("fill"))
        return Fill(folder, words.value(3).toInt(), words.value(4).toInt());
    if (what == QStringLiteral("measure"))
        return MeasureAll(folder);
    Fail(QStringLiteral("watch, file, fill or measure"));
}
} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    NoUser user;
    UserInterface::SetCurrent(&user);
    try {
        return Run(QCoreApplication::arguments());
    } catch (const std::exception& error) {
        Fail(QString::fromUtf8(error.what()));
    }
}
