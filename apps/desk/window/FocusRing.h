// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>

class QWidget;

/// Moves the focus to the next of a window's panes, or the one before; from elsewhere to the second, which is the list.
void FocusNext(const QList<QWidget*>& panes, bool backwards);
