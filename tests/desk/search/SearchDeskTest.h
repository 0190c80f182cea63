// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "WindowTest.h"
#include "search/SearchDesk.h"
#include "search/SearchService.h"
#include "search/SearchWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>

/// The desk with its search over all folders.
class SearchDeskTest : public WindowTest
{
protected:
    SearchWindow& Window_() const { return Window->Search().Window(); }
    template <typename Widget>
    Widget& Part(const char* name) const
    {
        return *Window_().findChild<Widget*>(QLatin1String(name));
    }
    QLineEdit& Field() const { return Part<QLineEdit>("searchField"); }
    QAbstractItemModel& Rows() const { return *Part<QTreeView>("searchList").model(); }
    QString Cell(int row, int column) const { return Rows().index(row, column).data().toString(); }
    QString Count() const { return Part<QLabel>("searchCount").text(); }

    /// Opens the desk and its search, which has read everything.
    void OpenSearch()
    {
        OpenWindow();
        QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Window_()));
        ASSERT_TRUE(WaitUntil([this] { return Window->Search().Service().IsComplete(); }, 20'000));
    }
    void Type(const QString& text)
    {
        Field().setFocus();
        Field().clear();
        QTest::keyClicks(&Field(), text);
        ASSERT_TRUE(WaitUntil([this] { return Window_().IsSettled(); }, 20'000));
    }
    /// A key as the user presses it: what is popped up gets it first.
    static void Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget* popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
    }
    /// The same for characters.
    static void PressKeys(const QString& text)
    {
        for (const QChar character : text) {
            QWidget* popup = QApplication::activePopupWidget();
            QTest::keyClicks(popup ? popup : QApplication::focusWidget(), QString(character));
        }
    }
    void ChooseFilter(const char* name, const QString& begin)
    {
        auto& box = Part<QComboBox>(name);
        for (int i = 0; i < box.count(); ++i) {
            if (box.itemText(i).startsWith(begin))
                box.setCurrentIndex(i);
        }
        ASSERT_TRUE(box.currentText().startsWith(begin)) << qPrintable(box.currentText());
        ASSERT_TRUE(WaitUntil([this] { return Window_().IsSettled(); }, 20'000));
    }
};
