// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/DialogSize.h"

#include <QLayout>
#include <QWidget>

void DialogSize::FitContents(QWidget& window)
{
    window.ensurePolished();
    QLayout& layout = *window.layout();
    layout.activate();
    const QSize wanted = layout.totalSizeHint().expandedTo(window.minimumSize());
    const int height = layout.hasHeightForWidth() ? layout.totalHeightForWidth(wanted.width()) : wanted.height();
    window.resize(wanted.width(), qMax(height, wanted.height()));
}
