// SPDX-License-Identifier: Apache-2.0
#include "common/TemplateHelper.h"

QString TemplateHelper::ReplaceTag(const QString& text, const QString& tag, const QString& value, TagValue option)
{
    if (tag.isEmpty())
        return text;
    QString result = text;
    return result.replace(tag, option == TagValue::EncodedForHTML ? value.toHtmlEscaped() : value);
}

QString TemplateHelper::RemoveSection(const QString& text, const QString& openTag, const QString& closeTag)
{
    QString result;
    qsizetype copied = 0;
    while (!openTag.isEmpty() && !closeTag.isEmpty()) {
        const qsizetype open = text.indexOf(openTag, copied);
        const qsizetype close = open < 0 ? -1 : text.indexOf(closeTag, open + openTag.size());
        if (close < 0)
            break;
        result += QStringView(text).mid(copied, open - copied);
        copied = close + closeTag.size();
    }
    result += QStringView(text).mid(copied);
    return result;
}
