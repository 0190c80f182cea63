// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPointer>
#include <QWidget>

class CategoryTreeView;

/// What the user meets while a list reads its rows: the pointer waits, and the list's tree and tabs take no input. It
/// lasts as long as the object, and nothing is touched when the list has gone meanwhile. The focus goes back to the
/// part of them that had it, unless the user has taken it elsewhere.
class ListReading
{
public:
    /// isReading: a field of the list, true as long as the object lives.
    ListReading(QWidget& list, CategoryTreeView& tree, QWidget& tabs, bool& isReading);
    ~ListReading();
    Q_DISABLE_COPY_MOVE(ListReading)

private:
    QPointer<QWidget> List_;
    CategoryTreeView& Tree_;
    QWidget& Tabs_;
    bool& IsReading_;
    QPointer<QWidget> Focused_; ///< A part that takes no input meanwhile; null when none of them had the focus.
    QPointer<QWidget> Neighbour_;
};
