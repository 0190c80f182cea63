// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QString>

class clsCategory;

/// The folder that the user means: its number, the name of a fixed folder, a path of names from the top divided by
/// "/", or any folder's name; without regard to case. Failure (data) when there is none, or, with the candidates, when
/// there are several.
qint32 FindFolder(const clsCategory& root, const QString& name);

/// Each folder's path from the top, by its number.
QHash<qint32, QString> FolderPaths(const clsCategory& root);

/// The path of one folder; its number in brackets when the tree lacks it.
QString FolderPath(const QHash<qint32, QString>& paths, qint32 reference);
