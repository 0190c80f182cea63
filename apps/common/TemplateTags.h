// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QString>

#include <functional>

/// The tags of the page templates that are filled from plain values: "<ZRT_NAME>" stands for a value, and what stands
/// between "<ZRT_NAME>" and "</ZRT_NAME>" is a block.
namespace TemplateTags
{
using Values = QHash<QString, QString>;

/// Values are text, which is encoded, and are never searched for tags. Tags that are not known are left out.
QString ReplaceTags(const QString& text, const Values& values);
/// Each block of that name replaced by what fill makes of it, the rest by what other makes of it.
QString ReplaceBlocks(const QString& text, const QString& name, const std::function<QString(const QString&)>& fill,
                      const std::function<QString(const QString&)>& other);
} // namespace TemplateTags
