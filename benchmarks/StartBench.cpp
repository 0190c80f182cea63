// SPDX-License-Identifier: Apache-2.0
#include "BenchStation.h"
#include "DeskSettings.h"
#include "Measure.h"
#include "StationPlace.h"
#include "Subjects.h"
#include "messageslist/uMessagesList.h"
#include "station/DeskStation.h"
#include "window/MainWindow.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEvent>

namespace
{
const QString User = QStringLiteral("Technician");

void AddUser(const QString& folder)
{
    QDir().mkpath(StationPlace::DirectoryIn(folder));
    EmbeddedDirectory directory;
    directory.Open(StationPlace::DirectoryIn(folder));
    directory.AddUser(User, StationPlace::AllRights);
}

/// Sends itself events, as keys would come: the first as soon as the window is painted, the next behind it, and so on
/// until one comes in the middle of the fill.
class Answers : public QObject
{
public:
    enum class Until
    {
        First,
        InFill
    };

    Answers(MainWindow* window, Until until) : Window_(window), Until_(until) { qApp->installEventFilter(this); }
    /// The window is painted and has answered.
    bool HasFirst() const { return HasFirst_; }
    bool HasAnsweredInFill() const { return HasAnsweredInFill_; }
    /// Milliseconds between two answers.
    double LongestWait() const { return LongestWait_; }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (!IsAsked_ && event->type() == QEvent::Paint && object == Window_) {
            IsAsked_ = true;
            Ask();
        }
        return false;
    }
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        if (HasFirst_)
            LongestWait_ = qMax(LongestWait_, static_cast<double>(SinceLast_.nsecsElapsed()) / 1e6);
        HasFirst_ = true;
        SinceLast_.start();
        if (Until_ == Until::First) {
            // Before the fill begins.
            Window_->close();
            return true;
        }
        if (!Window_->List().IsFilling()) {
            Ask();
            return true;
        }
        HasAnsweredInFill_ = true;
        // What is left of the fill is measured elsewhere.
        Window_->List().SetTolvaDatabase(nullptr);
        return true;
    }

private:
    void Ask() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

    MainWindow* Window_;
    Until Until_;
    QElapsedTimer SinceLast_;
    double LongestWait_ = 0;
    bool IsAsked_ = false;
    bool HasFirst_ = false;
    bool HasAnsweredInFill_ = false;
};

/// Runs the desk until it answered the first time, or, with a longest wait to be told, until it did so in the middle of
/// the fill.
void StartDesk(const QString& folder, double* longestWait = nullptr)
{
    DeskSettings settings(folder + QStringLiteral("/desk.ini"));
    auto station = std::make_unique<DeskStation>();
    station->Open(folder, User);
    MainWindow window(std::move(station), settings);
    Answers answers(&window, longestWait ? Answers::Until::InFill : Answers::Until::First);
    window.show();
    while (!(longestWait ? answers.HasAnsweredInFill() : answers.HasFirst()))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (longestWait)
        *longestWait = answers.LongestWait();
    window.close();
}
} // namespace

void BenchStart(const QString& folder, const QString& largeStation)
{
    MakeStation(folder, 0);
    AddUser(folder);
    AddUser(largeStation);
    Compare(
        {"the desk's window on the large station", "its start on an empty station", 2.0, 7, 1},
        [&] { StartDesk(folder); }, [&] { StartDesk(largeStation); });
    double longest = 0;
    StartDesk(largeStation, &longest);
    Report("its longest wait until the folder fills", "0.25 s, under the busy pointer", 250, longest, 1.0, "ms");
}
