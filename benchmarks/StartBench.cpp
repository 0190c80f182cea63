#include "BenchStation.h"
#include "DeskSettings.h"
#include "DeskStation.h"
#include "MainWindow.h"
#include "Measure.h"
#include "StationPlace.h"
#include "Subjects.h"
#include "messageslist/uMessagesList.h"

#include <QApplication>
#include <QDir>
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

/// Sends itself an event as soon as the list of messages is painted with its station set, as a key would come; when
/// that arrives the window has answered.
class FirstAnswer : public QObject
{
public:
    explicit FirstAnswer(MainWindow* window) : Window_(window) { qApp->installEventFilter(this); }
    bool HasCome() const { return HasCome_; }
    bool WasFilling() const { return WasFilling_; }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (!IsAsked_ && event->type() == QEvent::Paint && Window_->List().TolvaDatabase() && object->isWidgetType() &&
            Window_->List().isAncestorOf(static_cast<QWidget*>(object))) {
            IsAsked_ = true;
            QCoreApplication::postEvent(this, new QEvent(QEvent::User), Qt::LowEventPriority);
        }
        return false;
    }
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        HasCome_ = true;
        WasFilling_ = Window_->List().IsFilling();
        // What is left of the fill is measured elsewhere.
        Window_->List().SetTolvaDatabase(nullptr);
        return true;
    }

private:
    MainWindow* Window_;
    bool IsAsked_ = false;
    bool HasCome_ = false;
    bool WasFilling_ = false;
};

/// Whether the folder was still filling when the window answered.
bool StartDesk(const QString& folder)
{
    DeskSettings settings(folder + QStringLiteral("/desk.ini"));
    auto station = std::make_unique<DeskStation>();
    station->Open(folder, User);
    MainWindow window(std::move(station), settings);
    FirstAnswer answer(&window);
    window.show();
    while (!answer.HasCome())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    window.close();
    return answer.WasFilling();
}
} // namespace

void BenchStart(const QString& folder, const QString& largeStation)
{
    MakeStation(folder, 0);
    AddUser(folder);
    AddUser(largeStation);
    Compare(
        {"the desk's window on the large station", "its start on an empty station", 2.0, 7, 1},
        [&] { StartDesk(folder); },
        [&] { Require(StartDesk(largeStation), "the window did not answer while the folder was filling"); });
}
