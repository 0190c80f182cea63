// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace dao::jet
{

/// Appends the octets that a text has in an ascending index, without the flag in front of them. False, with nothing
/// appended, when it holds a character whose weight is not known.
bool AppendTextKey(const QString& text, QByteArray& key);

} // namespace dao::jet
