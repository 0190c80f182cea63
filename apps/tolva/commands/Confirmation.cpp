// SPDX-License-Identifier: Apache-2.0
#include "commands/Confirmation.h"

#include "Terminal.h"
#include "common/UserInterface.h"

QString Confirmation::YesOption()
{
    return QStringLiteral("yes");
}

bool Confirmation::IsGiven(const Arguments& arguments, const QString& question)
{
    if (arguments.Has(YesOption()) || !Terminal::CanAsk())
        return true;
    return UserInterface::Confirm(question);
}
