// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QHash>
#include <QString>

#include <optional>

/// Plain texts that a station keeps in its template folder, with tags for what is filled in: answers, signatures, and
/// what is answered by itself.
namespace TextTemplate
{
/// The file's text; line ends are "\n". Nothing where it cannot be read: problem says why, in a sentence with the
/// file's name.
TOLVA_EXPORT std::optional<QString> Read(const QString& path, QString& problem);

/// The text with "<ZRT_NAME>" replaced by the value under NAME, in one pass, so that a value that looks like a tag
/// stays what it is. Tags without a value are left out.
TOLVA_EXPORT QString Filled(const QString& text, const QHash<QString, QString>& values);
/// Whether the text holds that tag.
TOLVA_EXPORT bool Holds(const QString& text, const QString& name);
} // namespace TextTemplate
