// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Words and names that several sources of the messages list share.
namespace MessagesListTexts
{
inline const QString AllMessages = QStringLiteral("<All Messages>");
inline const QString MessageWord = QStringLiteral("!KVMessage");
inline const QString CategoryWord = QStringLiteral("!KVMessageCategory");
inline const QString ReferenceKey = QStringLiteral("Reference");
inline const QString AllKey = QStringLiteral("All"); ///< Where several are dragged: their numbers, divided by commas.
} // namespace MessagesListTexts
