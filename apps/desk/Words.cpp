#include "Words.h"

#include "common/UserInterface.h"

void Words::Warn(const QString& text)
{
    MessageBoxRequest request;
    request.Text = text;
    request.Icon = MessageBoxIcon::Exclamation;
    UserInterface::Current().MessageBox(request);
}
