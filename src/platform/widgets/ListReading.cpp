// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/ListReading.h"

#include "platform/widgets/CategoryTreeView.h"

#include <QApplication>

ListReading::ListReading(QWidget& list, CategoryTreeView& tree, QWidget& tabs, bool& isReading)
    : List_(&list), Tree_(tree), Tabs_(tabs), IsReading_(isReading), TreeHadFocus_(tree.hasFocus())
{
    list.setCursor(Qt::WaitCursor);
    IsReading_ = true;
    // A disabled tree would end the typing of a folder's name in the middle, and store the half of it.
    if (!Tree_.IsEditingLabel())
        Tree_.setEnabled(false);
    Tabs_.setEnabled(false);
    // A disabled tree loses the focus to a neighbour.
    Neighbour_ = QApplication::focusWidget();
}

ListReading::~ListReading()
{
    if (!List_)
        return;
    Tabs_.setEnabled(true);
    Tree_.setEnabled(true);
    if (TreeHadFocus_ && QApplication::focusWidget() == Neighbour_)
        Tree_.setFocus();
    IsReading_ = false;
    List_->unsetCursor();
}
