// SPDX-License-Identifier: Apache-2.0

// A desk in a process of its own, driven by words on its standard input: "work" marks, moves and awards without pause,
// "write" opens a new message and types into it, "rest" ends the work, "rows" prints what its list shows of the Inbox,
// "prizes" what its page of prizes shows, "reply N" begins an answer to the message N, "close" closes what is written,
// "lock N" keeps the directory's lock of writers for N milliseconds, which it says when it has it, "end" ends it. Each
// answer is one line.
//   soakDesk FOLDER SETTINGS

#include "DeskSettings.h"
#include "DeskUserInterface.h"
#include "compose/ComposeWindow.h"
#include "messageslist/uMessagesList.h"
#include "platform/records/Transaction.h"
#include "platform/widgets/FlexGrid.h"
#include "prizes/PrizeAwards.h"
#include "prizes/PrizeDesk.h"
#include "prizes/controls/uPrizesList.h"
#include "station/DeskStation.h"
#include "window/MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QMenu>
#include <QRandomGenerator>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstdio>
#include <unistd.h>

namespace
{
constexpr int WorkMilliseconds = 30;
constexpr float PollSeconds = 1;

/// The texts of a grid, row by row, without rows that are about to be filled.
QJsonArray TextsOf(const QWidget& control, const char* name)
{
    QJsonArray rows;
    const auto* grid = control.findChild<FlexGrid*>(QLatin1String(name));
    for (int row = 1; grid && row < grid->Rows(); ++row) {
        QJsonArray cells;
        for (int column = 0; column < grid->Cols(); ++column)
            cells.append(grid->TextMatrix(row, column));
        if (!std::all_of(cells.begin(), cells.end(), [](const QJsonValue& cell) { return cell.toString().isEmpty(); }))
            rows.append(cells);
    }
    return rows;
}

/// What somebody does who never rests, by the window's own commands where it has them.
class Worker : public QObject
{
public:
    explicit Worker(MainWindow& window) : Window_(window), Random_(4711)
    {
        Timer_.setInterval(WorkMilliseconds);
        connect(&Timer_, &QTimer::timeout, this, [this] { Step(); });
    }
    void Start() { Timer_.start(); }
    QJsonObject Rest()
    {
        Timer_.stop();
        return {{QStringLiteral("marked"), Marked_},
                {QStringLiteral("moved"), Moved_},
                {QStringLiteral("awarded"), Awarded_},
                {QStringLiteral("refused"), Refused_}};
    }

private:
    void Step()
    {
        if (Window_.List().IsFilling())
            return;
        try {
            switch (Random_.bounded(10)) {
            case 0:
                return Award();
            case 1:
            case 2:
                return Move();
            default:
                return Mark();
            }
        } catch (const dao::Error&) {
            ++Refused_; // such as a row that is locked at this moment; the next step is another one
        }
    }
    /// A row of the list at random; 0 when it is empty.
    qint32 AnyMessage()
    {
        const auto* grid = Window_.List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
        if (grid->Rows() < 2)
            return 0;
        Window_.List()
            .findChild<FlexGrid*>(QStringLiteral("grdMessages"))
            ->SetRow(1 + Random_.bounded(grid->Rows() - 1));
        return Window_.List().SelectedReference();
    }
    void Mark()
    {
        if (AnyMessage() == 0)
            return;
        for (QAction* action : Window_.List().MessageMenu()->actions()) {
            const bool isMark = action->objectName() == QLatin1String("mnuMarkAsRead") ||
                                action->objectName() == QLatin1String("mnuMarkasUnread");
            if (isMark && action->isVisible()) {
                action->trigger();
                ++Marked_;
                return;
            }
        }
    }
    void Move()
    {
        const qint32 reference = AnyMessage();
        cTolvaDatabase& database = Window_.Station().Database();
        if (reference != 0 && database.MoveMessage(reference, tmcSaved)) {
            ++Moved_;
        }
    }
    void Award()
    {
        DeskStation& station = Window_.Station();
        static constexpr std::array Prizes = {1, 2};
        const PrizeAwards::Result result =
            PrizeAwards::Award(station, Prizes[static_cast<std::size_t>(Random_.bounded(2))], 1);
        (result.Winner != 0 ? Awarded_ : Refused_)++;
    }

    MainWindow& Window_;
    QRandomGenerator Random_;
    QTimer Timer_;
    int Marked_ = 0;
    int Moved_ = 0;
    int Awarded_ = 0;
    int Refused_ = 0;
};

void Answer(const QJsonDocument& answer)
{
    std::fputs(answer.toJson(QJsonDocument::Compact).constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

/// By the keyboard, into the text of a new message.
void Write(MainWindow& window)
{
    const auto* compose = window.Compose(Composition());
    auto* body = compose->findChild<QWidget*>(QStringLiteral("body"));
    for (const QChar letter : QStringLiteral("Dear listener, thank you")) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(letter));
        QApplication::sendEvent(body, &press);
    }
}

/// As somebody does who has selected it. Again until its list shows the message.
void Reply(MainWindow& window, qint32 reference)
{
    if (window.List().IsFilling() || !window.List().SelectMessage(reference))
        QTimer::singleShot(WorkMilliseconds, &window, [&window, reference] { Reply(window, reference); });
    else
        window.Reply();
}

void Close(const MainWindow& window)
{
    for (ComposeWindow* compose : window.ComposeWindows())
        compose->close();
}

void Lock(MainWindow& window, int milliseconds)
{
    const dao::Transaction lock(window.Station().Directory().File());
    Answer(QJsonDocument(QJsonArray{QStringLiteral("locked")}));
    QThread::msleep(static_cast<unsigned long>(milliseconds));
}

void Obey(const QByteArray& word, MainWindow& window, Worker& worker)
{
    if (word == "work")
        worker.Start();
    else if (word == "rest")
        Answer(QJsonDocument(worker.Rest()));
    else if (word == "write")
        Write(window);
    else if (word.startsWith("reply "))
        Reply(window, word.mid(6).toInt());
    else if (word.startsWith("lock "))
        Lock(window, word.mid(5).toInt());
    else if (word == "close")
        Close(window);
    else if (word == "rows")
        Answer(QJsonDocument(window.List().IsFilling() ? QJsonArray() : TextsOf(window.List(), "grdMessages")));
    else if (word == "prizes")
        Answer(QJsonDocument(TextsOf(window, "grdPrizes")));
    else
        QApplication::quit();
}
} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    if (argc != 3)
        return 64;
    DeskSettings settings(QString::fromLocal8Bit(argv[2]));
    const DeskUserInterface userInterface;
    auto station = std::make_unique<DeskStation>();
    station->Open(QString::fromLocal8Bit(argv[1]), QStringLiteral("Technician"));
    MainWindow window(std::move(station), settings);
    window.show();
    window.List().SetAutoUpdateInterval(PollSeconds);
    if (auto* prizes = window.findChild<uPrizesList*>())
        prizes->SetAutoUpdateInterval(PollSeconds);
    Worker worker(window);
    QByteArray words;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&] {
        std::array<char, 256> buffer{};
        const auto size = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (size <= 0)
            return QApplication::quit();
        words.append(buffer.data(), size);
        for (qsizetype end = 0; (end = words.indexOf('\n')) >= 0; words.remove(0, end + 1))
            Obey(words.left(end), window, worker);
    });
    return QApplication::exec();
}
