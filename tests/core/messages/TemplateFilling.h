// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/messages/TemplateMails.h"
#include "support/ScriptedRegistry.h"

#include <gtest/gtest.h>

/// Fills templates from mails on a machine whose settings the test makes.
class TemplateFilling : public testing::Test
{
protected:
    static QString Filled(const Mail& mail, const QString& strTemplate, qint32 flags = 0)
    {
        return MakeMessage(mail)->ProcessHTMLTags(strTemplate, flags);
    }
    void Mask(const char* value)
    {
        Machine.Set(QStringLiteral("SOFTWARE\\Kelvarin"), QStringLiteral("MaskPhoneNumbers"), QLatin1String(value));
    }

    ScriptedRegistry Machine;
};
