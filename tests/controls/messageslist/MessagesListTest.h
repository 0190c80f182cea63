// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messageslist/uMessagesList.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/TabStrip.h"
#include "support/StationTest.h"

#include <QAction>
#include <QMenu>
#include <QTest>

/// A messages list on a window of its own, on an open station, with a user who may do everything. Nothing is attached
/// until Attach.
class MessagesListTest : public StationTest
{
protected:
    MessagesListTest();
    ~MessagesListTest() override;

    /// Opens the station, sets it and shows the list.
    void Attach();
    /// The texts of one column, from row 1.
    QStringList Column(int column) const;
    /// Of the rows on show, without what the second line holds.
    QStringList Subjects() const;
    /// The query that the last fill announced.
    const QString& LastQuery() const { return LastQuery_; }
    /// How often the list asked for a display since the last call.
    int TakeFills() { return std::exchange(Fills_, 0); }
    template <typename Control>
    Control& Child(const char* name) const
    {
        auto* control = List->findChild<Control*>(QLatin1String(name));
        if (!control)
            throw std::runtime_error(std::string("no control ") + name);
        return *control;
    }
    QAction& Entry(const char* name) const { return Child<QAction>(name); }
    /// Types a find text and presses Enter.
    void Find(const QString& text);
    /// Selects a row as a click does.
    void ClickRow(int row);
    /// Clicks the node of a folder.
    void ClickNode(int category);
    QPoint NodePosition(int category) const;
    QPoint RowPosition(int row) const;

    std::unique_ptr<uMessagesList> List;
    FlexGrid* Grid;
    CategoryTreeView* Tree;
    FindBox* Box;
    TabStrip* Tabs;

private:
    QString LastQuery_;
    int Fills_ = 0;
};
