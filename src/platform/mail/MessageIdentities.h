// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QStringList>

namespace cdo
{
/// The identities that stand in a header such as Message-ID, In-Reply-To or References, each with its angle brackets,
/// in their order.
TOLVA_EXPORT QStringList MessageIdentities(const QString& header);
} // namespace cdo
