// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QStyledItemDelegate>

/// Shows the texts of a list or tree each in the direction of its own letters, whatever that of the window: a telephone
/// number reads the same in a window laid out from right to left, and an Arabic name in one from left to right. A text
/// that is cut off is seen whole as its tool tip. Belongs to its list.
class TOLVA_EXPORT TextDelegate : public QStyledItemDelegate
{
public:
    explicit TextDelegate(QWidget* list);

    QString displayText(const QVariant& value, const QLocale& locale) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
};
