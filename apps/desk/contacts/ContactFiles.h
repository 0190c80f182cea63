// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/EmbeddedDirectory.h"

class QWidget;

/// Files of business cards, as the user gives and takes them. What goes wrong is told.
namespace ContactFiles
{
/// Lets the user choose a file, shows what it would bring, and takes it over. What was done, in words; empty when
/// nothing was.
QString Import(EmbeddedDirectory& directory, QWidget* parent);
/// What was written, in words, and the file; both empty when nothing was.
struct Exported
{
    QString Words;
    QString Path;
};
/// Lets the user choose where to, and writes. proposed: the file's name.
Exported Export(const QList<clsKVContact>& contacts, const QString& proposed);

/// Larger files are not read: they are no business cards.
constexpr qint64 LargestFile = 100LL * 1024 * 1024;
} // namespace ContactFiles
