// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/TextDelegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

namespace
{
constexpr QChar FirstStrongIsolate(0x2068);
constexpr QChar PopDirectionalIsolate(0x2069);
} // namespace

TextDelegate::TextDelegate(QWidget* list) : QStyledItemDelegate(list) {}

QString TextDelegate::displayText(const QVariant& value, const QLocale& locale) const
{
    const QString text = QStyledItemDelegate::displayText(value, locale);
    if (text.isEmpty() || text.isRightToLeft() == static_cast<const QWidget*>(parent())->isRightToLeft())
        return text;
    return FirstStrongIsolate + text + PopDirectionalIsolate;
}

bool TextDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                             const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid() || !index.data(Qt::ToolTipRole).toString().isEmpty())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QRect place = view->visualRect(index);
    const bool fits = sizeHint(option, index).width() <= place.width();
    // As rich text a long line wraps, and no text is taken for markup.
    const QString text = index.data(Qt::DisplayRole).toString().toHtmlEscaped();
    QToolTip::showText(event->globalPos(), fits ? QString() : QStringLiteral("<span>%1</span>").arg(text),
                       view->viewport(), place);
    return true;
}
