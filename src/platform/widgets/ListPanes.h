// SPDX-License-Identifier: Apache-2.0
#pragma once

class FindBox;
class FlexGrid;
class OverlayPanel;
class QLabel;
class QPushButton;
class QWidget;
class TabStrip;
class ToolBar;

/// Where the parts of a list control lie: a tool bar with the find box across the top, a button for a new entry over
/// its far end, below them a tree in a third of the width and the list beside it. Where people read from right to left
/// it is mirrored. A plain value; the parts are the control's.
struct ListPanes
{
    QWidget* Control = nullptr;
    ToolBar* Bar = nullptr; ///< With a place-holder "findholder".
    QWidget* Find = nullptr;
    QLabel* FindCaption = nullptr;
    FindBox* Box = nullptr;
    QPushButton* New = nullptr; ///< Hidden: the find box takes its room.
    TabStrip* TreeTabs = nullptr;
    QWidget* Tree = nullptr;
    QWidget* List = nullptr; ///< Hidden: the tree takes all the width.
    TabStrip* ListTabs = nullptr;
    FlexGrid* Grid = nullptr;
    OverlayPanel* Loading = nullptr;
    OverlayPanel* Nothing = nullptr;
    QLabel* Unread = nullptr; ///< Says that rows are missing, below those that are there.

    /// The control never gets smaller than its least size: it is resized, which lays it out again.
    void LayOut() const;
    /// The tree within its page.
    void LayOutTree() const;
    /// The grid within its page, and what lies over it: the overlays below its header, whose height they follow, and
    /// the line at its foot.
    void LayOutList() const;
    /// The line that says that rows are missing; hidden.
    static QLabel* MakeUnread(QWidget& page);
    /// Keeps the control from getting smaller.
    void SetLeastSize() const;

private:
    int Pixels(double twips) const;
    void LayOutFindBar() const;
};

/// Says in that line how many rows could not be read; hides it when all could.
void ShowUnread(QLabel& line, int rows);
