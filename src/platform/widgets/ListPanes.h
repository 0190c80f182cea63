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

    /// The control never gets smaller than its least size: it is resized, which lays it out again.
    void LayOut() const;
    /// The tree within its page.
    void LayOutTree() const;
    /// The grid within its page, and the overlays over it below its header, whose height they follow.
    void LayOutList() const;
    /// Keeps the control from getting smaller.
    void SetLeastSize() const;

private:
    int Pixels(double twips) const;
    void LayOutFindBar() const;
};
