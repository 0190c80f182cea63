// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

class CategoryTreeView;
class clsCategory;

/// The key of a folder's node, and the folder's number in a node's key.
QString CategoryKey(qint32 reference);
qint32 CategoryOfKey(const QString& key);

/// Fills a tree with all below a category, each node's key being prefix and reference. What was open and selected
/// before stays so where it is still there.
void FillTree(const clsCategory& root, CategoryTreeView& tree, const QString& prefix);

/// The same for two trees of folders that look the same.
quint64 FolderSignature(const clsCategory& root);
