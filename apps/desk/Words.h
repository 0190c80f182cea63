// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// What this program tells its user in boxes.
namespace Words
{
/// An OK box with the exclamation icon, through the user interface in force.
void Warn(const QString& text);
/// The same with the information icon: something was done.
void Tell(const QString& text);
/// "1 message", "12 messages".
QString CountMessages(qsizetype count);
} // namespace Words
