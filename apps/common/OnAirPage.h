// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/onair/OnAirEntry.h"
#include "platform/html/SafeDocument.h"

#include <QList>
#include <QString>

/// The running order on paper: a page template filled from its entries.
namespace OnAirPage
{

/// The template that is meant where none is named.
inline const QString UsualTemplate = QStringLiteral("OnAir-Running order");

/// The template filled and made safe. Its tags stand for text, which is encoded; a value is never searched for tags.
/// What stands between <ZRT_ONAIR_REPEAT> and its end tag comes once for each entry. Tags that are not known are left
/// out. station: its name.
SafeDocument Fill(const QString& pageTemplate, const QList<OnAirEntry>& order, const QString& station);

} // namespace OnAirPage
