// SPDX-License-Identifier: Apache-2.0
#include "OnAirPictures.h"

#include "answering/AnsweringDesk.h"
#include "answering/AnsweringTable.h"
#include "messageslist/uMessagesList.h"
#include "onair/OnAirDesk.h"
#include "window/Appearance.h"
#include "window/MainWindow.h"

#include <QApplication>

namespace
{
constexpr qsizetype MostEntries = 6;
constexpr qint32 SecondsAnswering = 135;

void TakeAnswering(MainWindow& window, const OnAirPictures::Save& save, const std::function<void()>& settle)
{
    const QList<qint32> messages = window.List().References();
    if (messages.isEmpty())
        return;
    window.List().SelectMessage(messages.first());
    window.List().ScrollToTop();
    AnsweringTable table(window.Station().Directory().File());
    const QString entry = QStringLiteral("picture");
    table.Write({{entry, messages.first(), QStringLiteral("Petra"), SecondsAnswering}}, {});
    auto* desk = window.findChild<AnsweringDesk*>();
    desk->Look();
    settle();
    save(window, "desk-answering", 1);
    table.Write({}, {entry});
    desk->Look();
}
} // namespace

void OnAirPictures::Take(MainWindow& window, const Save& save, const std::function<void()>& settle)
{
    window.List().SetCategory(tmcInbox);
    settle();
    TakeAnswering(window, save, settle);
    window.OnAir().PutMessages(window.List().References().mid(0, MostEntries));
    window.OnAir().ShowWindow();
    OnAirWindow& air = *window.OnAir().Window();
    settle();
    air.Use();
    air.Skip();
    settle();
    save(air, "on-air", 1);
    save(air, "on-air-200", 2);
    Appearance::Apply(QStringLiteral("dark"));
    settle();
    save(air, "on-air-dark", 1);
    Appearance::Apply(QStringLiteral("light"));
    QApplication::setLayoutDirection(Qt::RightToLeft);
    settle();
    save(air, "on-air-right-to-left", 1);
    QApplication::setLayoutDirection(Qt::LeftToRight);
    air.close();
    settle();
    save(window, "desk-on-the-order", 1);
}
