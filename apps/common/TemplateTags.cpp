// SPDX-License-Identifier: Apache-2.0
#include "TemplateTags.h"

#include <QRegularExpression>

/// In one pass over the template, so that a value that looks like a tag stays what it is.
QString TemplateTags::ReplaceTags(const QString& text, const Values& values)
{
    static const QRegularExpression tag(QStringLiteral("</?ZRT_([A-Z_]+)>"));
    QString result;
    qsizetype done = 0;
    for (auto it = tag.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        result += QStringView(text).sliced(done, match.capturedStart() - done);
        result += values.value(match.captured(1)).toHtmlEscaped();
        done = match.capturedEnd();
    }
    return result + text.sliced(done);
}

QString TemplateTags::ReplaceBlocks(const QString& text, const QString& name,
                                    const std::function<QString(const QString&)>& fill,
                                    const std::function<QString(const QString&)>& other)
{
    const QString open = QStringLiteral("<ZRT_%1>").arg(name);
    const QString close = QStringLiteral("</ZRT_%1>").arg(name);
    QString result;
    qsizetype done = 0;
    for (;;) {
        const qsizetype start = text.indexOf(open, done);
        const qsizetype end = start < 0 ? -1 : text.indexOf(close, start);
        if (end < 0)
            return result + other(text.sliced(done));
        result += other(text.sliced(done, start - done));
        result += fill(text.sliced(start + open.size(), end - start - open.size()));
        done = end + close.size();
    }
}
