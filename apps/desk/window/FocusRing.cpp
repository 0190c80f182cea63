// SPDX-License-Identifier: Apache-2.0
#include "FocusRing.h"

#include <QApplication>

void FocusNext(const QList<QWidget*>& panes, bool backwards)
{
    qsizetype current = -1;
    const QWidget* focus = QApplication::focusWidget();
    for (qsizetype i = 0; i < panes.size() && focus; ++i) {
        if (panes.at(i) == focus || panes.at(i)->isAncestorOf(focus))
            current = i;
    }
    const qsizetype count = panes.size();
    const qsizetype next = current < 0 ? 1 : (current + (backwards ? count - 1 : 1)) % count;
    panes.at(next)->setFocus(Qt::ShortcutFocusReason);
}
