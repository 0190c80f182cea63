// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLabel>
#include <QPushButton>

/// The small controls of the windows that print; the parent owns them.
namespace PrintControls
{
/// A button that Return does not press by itself.
inline QPushButton* MakeButton(QWidget* parent, const char* name, const QString& text)
{
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    return button;
}

/// Words that the window changes; they wrap and are never read as markup.
inline QLabel* MakeWords(QWidget* parent, const char* name)
{
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}
} // namespace PrintControls
