// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/PlainText.h"

/// One start tag under way; the only place where attributes are written.
class StartTag
{
public:
    void SetName(const QString& name) { Name_ = name; }
    const QString& Name() const { return Name_; }
    void Add(const char* attribute, const QString& value)
    {
        Attributes_ += QStringLiteral(" %1=\"%2\"").arg(QLatin1String(attribute), EscapedText(value));
    }
    void AddStyle(const char* property, const QString& value)
    {
        Style_ += QStringLiteral("%1:%2;").arg(QLatin1String(property), value);
    }
    QString Text() const
    {
        const QString style = Style_.isEmpty() ? QString() : QStringLiteral(" style=\"%1\"").arg(EscapedText(Style_));
        return u'<' + Name_ + Attributes_ + style + u'>';
    }

private:
    QString Name_;
    QString Attributes_;
    QString Style_;
};
