// SPDX-License-Identifier: Apache-2.0
#include "window/NoticeBar.h"

#include "window/Appearance.h"

#include <QApplication>
#include <QLabel>
#include <QScopeGuard>

#include <gtest/gtest.h>

TEST(NoticeBar, FollowsTheColoursWhileItIsOnShow)
{
    const auto restore = qScopeGuard([] { Appearance::Apply(QString()); });
    Appearance::Apply(QStringLiteral("light"));
    NoticeBar notice(QStringLiteral("search"), QStringLiteral("&Show all"));
    notice.resize(400, 40);
    notice.Show(QStringLiteral("Filter is on"));
    const auto ground = [&] { return notice.grab().toImage().pixelColor(2, 2).lightness(); };
    const auto text = [&] {
        return notice.findChild<QLabel*>(QStringLiteral("noticeText"))
            ->palette()
            .color(QPalette::WindowText)
            .lightness();
    };
    EXPECT_GT(ground(), 200);
    EXPECT_LT(text(), 60);
    Appearance::Apply(QStringLiteral("dark"));
    QCoreApplication::processEvents();
    EXPECT_LT(ground(), 100);
    EXPECT_GT(text(), 200);
}
