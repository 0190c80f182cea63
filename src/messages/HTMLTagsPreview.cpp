// SPDX-License-Identifier: Apache-2.0
#include "messages/HTMLTagsPreview.h"

#include "common/GeneralHelper.h"
#include "platform/html/HtmlDocument.h"

namespace
{
constexpr int LinesOfPreview = 2;
const QString LineEnd = QStringLiteral("\n");

/// Puts one more line beneath the others.
void AddLine(const QString& line, QString* preview)
{
    if (!preview->isEmpty())
        *preview += LineEnd;
    *preview += line;
}

/// Behind the first lines of a text, whichever way they end, so that no more of it is touched.
qsizetype EndOfLines(const QString& text, int count)
{
    qsizetype end = 0;
    while (count > 0 && end < text.size()) {
        const QChar character = text.at(end++);
        if (character == u'\r' && end < text.size() && text.at(end) == u'\n')
            ++end;
        count -= character == u'\r' || character == u'\n' ? 1 : 0;
    }
    return end;
}

bool BeginsPreviewLine(const HtmlElement& element)
{
    const QString name = element.TagName().toUpper();
    return name == QLatin1String("P") || name == QLatin1String("UL") || name == QLatin1String("OL") ||
           name == QLatin1String("FONT");
}
} // namespace

QString HTMLTagsPreview::OfText(const QString& textBody)
{
    // An empty line ends the preview, so that no line behind these can be in it.
    QString text = textBody.first(EndOfLines(textBody, LinesOfPreview));
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\r")).replace(u'\r', u'\n');
    QString preview;
    qsizetype next = 0;
    for (int count = 0; count < LinesOfPreview && next >= 0; ++count) {
        const QString line = GeneralHelper::NextToken(text, next, LineEnd, next, true, true);
        if (line.isEmpty())
            break;
        AddLine(line, &preview);
    }
    return preview;
}

QString HTMLTagsPreview::OfHTML(const QString& htmlBody)
{
    if (htmlBody.isEmpty())
        return {};
    HtmlDocument document;
    document.Body().SetInnerHTML(htmlBody);
    QString preview;
    int count = 0;
    for (const HtmlElement& element : document.Body().All()) {
        if (!BeginsPreviewLine(element))
            continue;
        QString first = element.FirstLine();
        // A carriage return comes into a text by a reference; with the line feed behind it, it ends the line.
        if (first.endsWith(u'\r'))
            first.chop(1);
        qsizetype next = 0;
        const QString line = GeneralHelper::NextToken(first, 0, LineEnd, next, true, true);
        if (line.isEmpty())
            continue;
        AddLine(line, &preview);
        if (++count == LinesOfPreview)
            break;
    }
    return preview;
}
