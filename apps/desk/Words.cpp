// SPDX-License-Identifier: Apache-2.0
#include "Words.h"

#include "common/UserInterface.h"

#include <QCoreApplication>
#include <QLocale>

void Words::Warn(const QString& text)
{
    UserInterface::Warn(text);
}

void Words::Tell(const QString& text)
{
    MessageBoxRequest request;
    request.Text = text;
    request.Icon = MessageBoxIcon::Information;
    UserInterface::Current().MessageBox(request);
}

QString Words::CountMessages(qsizetype count)
{
    return count == 1 ? QCoreApplication::translate("Words", "1 message")
                      : QCoreApplication::translate("Words", "%1 messages").arg(QLocale().toString(count));
}
