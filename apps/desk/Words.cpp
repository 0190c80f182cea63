// SPDX-License-Identifier: Apache-2.0
#include "Words.h"

#include "common/UserInterface.h"

namespace
{
void Show(const QString& text, MessageBoxIcon icon)
{
    MessageBoxRequest request;
    request.Text = text;
    request.Icon = icon;
    UserInterface::Current().MessageBox(request);
}
} // namespace

void Words::Warn(const QString& text)
{
    Show(text, MessageBoxIcon::Exclamation);
}

void Words::Tell(const QString& text)
{
    Show(text, MessageBoxIcon::Information);
}
