// SPDX-License-Identifier: Apache-2.0
#include "commands/FieldLines.h"

#include "DisplayText.h"
#include "Terminal.h"

namespace
{
constexpr int NameWidth = 12; // with its colon
} // namespace

void FieldLines::Print(const QString& name, const QString& value)
{
    if (!value.isEmpty())
        Terminal::PrintLine(QStringLiteral("%1 %2").arg((name + u':').leftJustified(NameWidth), OneLine(value)));
}
