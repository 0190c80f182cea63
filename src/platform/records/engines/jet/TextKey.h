// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace dao::jet
{

/// Which characters have a place in the order of texts.
enum class TextOrder
{
    Known,   ///< Those whose weights are known: the keys are those that office programs make.
    Extended ///< The others as well, behind all letters in the order of their code points, upper and lower case alike.
};

/// Appends the octets that a text has in an ascending index, without the flag in front of them. False, with nothing
/// appended, when it holds a character that has no place in the order.
bool AppendTextKey(const QString& text, TextOrder order, QByteArray& key);

} // namespace dao::jet
