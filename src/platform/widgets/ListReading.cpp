// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/ListReading.h"

#include "platform/widgets/CategoryTreeView.h"

ListReading::ListReading(QWidget& list, CategoryTreeView& tree, QWidget& tabs, bool& isReading)
    : List_(&list), Tree_(tree), Tabs_(tabs), IsReading_(isReading)
{
    // Of its window, which may not be the active one.
    if (QWidget* focused = list.window()->focusWidget(); focused && (focused == &tree || tabs.isAncestorOf(focused)))
        Focused_ = focused;
    list.setCursor(Qt::WaitCursor);
    IsReading_ = true;
    // A disabled tree would end the typing of a folder's name in the middle, and store the half of it.
    if (!Tree_.IsEditingLabel())
        Tree_.setEnabled(false);
    Tabs_.setEnabled(false);
    // A disabled widget loses the focus to a neighbour, or to none.
    Neighbour_ = list.window()->focusWidget();
}

ListReading::~ListReading()
{
    if (!List_)
        return;
    Tabs_.setEnabled(true);
    Tree_.setEnabled(true);
    if (Focused_ && List_->window()->focusWidget() == Neighbour_)
        Focused_->setFocus();
    IsReading_ = false;
    List_->unsetCursor();
}
