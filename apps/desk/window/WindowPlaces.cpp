// SPDX-License-Identifier: Apache-2.0
#include "WindowPlaces.h"

#include "DeskSettings.h"
#include "platform/widgets/ListView.h"

#include <QApplication>
#include <QEvent>
#include <QHeaderView>
#include <QScreen>
#include <QSplitter>
#include <QStyle>

#include <algorithm>

namespace
{
/// The main window keeps its own.
constexpr const char* MainName = "mainWindow";
/// There is one of it, so it can stand where it stood. Others would cover each other exactly.
constexpr const char* SingleName = "contactsWindow";
constexpr const char* Names[] = {"composeWindow",    "messageWindow",       "prizeWindow",   "winnerWindow",
                                 "printDialog",      "labelsDialog",        "backupsDialog", "reportDialog",
                                 "shortcutsDialog",  "contactImportDialog", "prizeChooser",  "contactChooser",
                                 "frmDirectoryUsers"};

bool IsNamed(const QWidget& window, const char* name)
{
    return window.objectName() == QLatin1String(name);
}

bool IsRemembered(const QWidget& window)
{
    return IsNamed(window, SingleName) ||
           std::any_of(std::begin(Names), std::end(Names), [&](const char* name) { return IsNamed(window, name); });
}

QString KeyOf(const QWidget& window, const QString& part)
{
    return QStringLiteral("Windows/%1/%2").arg(window.objectName(), part);
}

QByteArray TextOf(const QList<int>& numbers)
{
    QByteArrayList texts;
    for (const int number : numbers)
        texts.append(QByteArray::number(number));
    return texts.join(',');
}

/// Empty unless all of it are numbers above 0.
QList<int> NumbersIn(const QByteArray& text)
{
    QList<int> numbers;
    for (const QByteArray& part : text.split(',')) {
        numbers.append(part.toInt());
        if (numbers.last() <= 0)
            return {};
    }
    return numbers;
}

QList<int> WidthsOf(const ListView& list)
{
    QList<int> widths;
    for (int column = 0; column < list.columnCount(); ++column)
        widths.append(list.columnWidth(column));
    return widths;
}

/// What a window may take of its screen, for the frame that it gets.
QSize LargestOn(const QWidget& window)
{
    const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
    return window.screen()->availableGeometry().size() - QSize(0, title);
}

/// The windows' own sizes are made for the usual type; a larger one needs more room for the same.
QSize FirstSizeOf(const QWidget& window)
{
    constexpr double usualLineSpacing = 18;
    return window.size() * qMax(1.0, window.fontMetrics().lineSpacing() / usualLineSpacing);
}
} // namespace

WindowPlaces::WindowPlaces(DeskSettings& settings) : Settings_(settings)
{
    qApp->installEventFilter(this);
}

bool WindowPlaces::eventFilter(QObject* watched, QEvent* event)
{
    const bool isShown = event->type() == QEvent::Show;
    if ((isShown || event->type() == QEvent::Hide) && !event->spontaneous() && watched->isWidgetType()) {
        auto& window = static_cast<QWidget&>(*watched);
        if (window.isWindow() && isShown)
            Restore(window);
        else if (window.isWindow() && IsRemembered(window))
            Remember(window);
    }
    return QObject::eventFilter(watched, event);
}

void WindowPlaces::Restore(QWidget& window) const
{
    if (!IsRemembered(window) && !IsNamed(window, MainName))
        return;
    if (IsRemembered(window) && !RestoreSize(window))
        window.resize(FirstSizeOf(window));
    if (!window.isMaximized() && !window.isFullScreen())
        window.resize(window.size().boundedTo(LargestOn(window)));
    if (!IsRemembered(window))
        return;
    for (QSplitter* splitter : window.findChildren<QSplitter*>())
        splitter->restoreState(Settings_.State(KeyOf(window, splitter->objectName())));
    for (ListView* list : window.findChildren<ListView*>()) {
        const QList<int> widths = NumbersIn(Settings_.State(KeyOf(window, list->objectName())));
        // Another version may have other columns.
        for (int column = 0; widths.size() == list->columnCount() && column < list->columnCount(); ++column)
            list->setColumnWidth(column, widths.at(column));
    }
}

/// False when nothing is remembered.
bool WindowPlaces::RestoreSize(QWidget& window) const
{
    if (IsNamed(window, SingleName))
        return window.restoreGeometry(Settings_.State(KeyOf(window, QStringLiteral("Geometry"))));
    const QList<int> size = NumbersIn(Settings_.State(KeyOf(window, QStringLiteral("Size"))));
    if (size.size() != 2)
        return false;
    window.resize(size.at(0), size.at(1));
    return true;
}

void WindowPlaces::Remember(const QWidget& window)
{
    if (IsNamed(window, SingleName))
        Settings_.SetState(KeyOf(window, QStringLiteral("Geometry")), window.saveGeometry());
    else if (!window.isMaximized() && !window.isFullScreen())
        Settings_.SetState(KeyOf(window, QStringLiteral("Size")), TextOf({window.width(), window.height()}));
    for (const QSplitter* splitter : window.findChildren<QSplitter*>())
        Settings_.SetState(KeyOf(window, splitter->objectName()), splitter->saveState());
    for (const ListView* list : window.findChildren<ListView*>())
        Settings_.SetState(KeyOf(window, list->objectName()), TextOf(WidthsOf(*list)));
}
