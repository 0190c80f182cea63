// SPDX-License-Identifier: Apache-2.0
#include "SearchPictures.h"

#include "search/SearchDesk.h"
#include "search/SearchService.h"
#include "search/SearchWindow.h"
#include "window/Appearance.h"
#include "window/MainWindow.h"

#include <QApplication>

void SearchPictures::Take(MainWindow& window, const Save& save, const Settle& settle)
{
    SearchWindow& search = window.Search().Window();
    const auto settleSearch = [&] {
        settle([&] { return window.Search().Service().IsComplete() && search.IsSettled(); });
    };
    search.Search(QStringLiteral("harbour"));
    settleSearch();
    save(search, "search", 1);
    save(search, "search-200", 2);
    Appearance::Apply(QStringLiteral("dark"));
    settleSearch();
    save(search, "search-dark", 1);
    Appearance::Apply(QStringLiteral("light"));
    QApplication::setLayoutDirection(Qt::RightToLeft);
    settleSearch();
    save(search, "search-right-to-left", 1);
    QApplication::setLayoutDirection(Qt::LeftToRight);
    search.Search(QStringLiteral("harbuor festival"));
    settleSearch();
    save(search, "search-nothing", 1);
    search.close();
}
