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
    MessageBoxRequest request;
    request.Text = question;
    request.Buttons = MessageBoxButtons::YesNo;
    request.Icon = MessageBoxIcon::Question;
    request.DefaultAnswer = MessageBoxAnswer::No;
    return UserInterface::Current().MessageBox(request) == MessageBoxAnswer::Yes;
}
