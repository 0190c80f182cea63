// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Enumerations.h"

#include <QString>

/// What a directory keeps for each user (clsKVUser::Preference): names and defaults in one place.
namespace UserPreferences
{

struct Preference
{
    QString Name;
    qint32 Default;
};

/// The folder whose messages the user saw last; the Inbox.
inline const Preference MessageFolder{QStringLiteral("SelectedMessageCategory"), tmcInbox};
/// How the list of messages is sorted (enMessagesListSortOrder); by the date of sending.
inline const Preference MessageOrder{QStringLiteral("MessagesListSortOrder"), 0};
/// The kind of prizes that the user saw last (enPrizeListCategory); what is available.
inline const Preference PrizeKind{QStringLiteral("SelectedPrizeCategory"), 1};
/// Sorts nothing: the list of prizes is only read anew when it changes.
inline const Preference PrizeOrder{QStringLiteral("PrizesListSortOrder"), 0};

} // namespace UserPreferences
