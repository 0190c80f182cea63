// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVContact.h"

#include <QList>

/// Contacts in the order in which people look for them: by name without regard to case and accents, so that Élise
/// stands before Emma; those of one name by the order in which they were saved.
namespace ContactOrder
{
QList<clsKVContactPtr> ByName(const QList<clsKVContactPtr>& contacts);
} // namespace ContactOrder
