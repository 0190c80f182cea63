// SPDX-License-Identifier: Apache-2.0
#include "messages/HighlightMarking.h"

#include "common/GeneralHelper.h"
#include "common/clsFont.h"

namespace
{
/// Characters. An empty entry in the list of words multiplies a page by the length of the tags.
constexpr qsizetype LargestBody = qsizetype(64) * 1024 * 1024;

/// The shortest form, without padding to two digits: pages in use hold colours in this form.
QString ColourText(qint32 colour)
{
    const auto hex = [](int value) { return QString::number(value, 16).toUpper(); };
    return hex(GeneralHelper::RedOf(colour)) + hex(GeneralHelper::GreenOf(colour)) + hex(GeneralHelper::BlueOf(colour));
}

/// The empty word is found at any place that has a character behind it.
qsizetype FindWord(const QString& body, const QString& word, qsizetype from)
{
    if (from >= body.size())
        return -1;
    return word.isEmpty() ? from : body.indexOf(word, from, Qt::CaseInsensitive);
}
} // namespace

HighlightTags MakeHighlightTags(const clsFont& font)
{
    HighlightTags tags;
    if (!font.Name.isEmpty() || font.Size > 0 || font.Colour >= 0) {
        tags.Start = QStringLiteral("<font");
        if (!font.Name.isEmpty())
            tags.Start += QStringLiteral(" face = \"%1\"").arg(font.Name);
        if (font.Size > 0)
            tags.Start += QStringLiteral(" size = \"%1\"").arg(font.Size);
        if (font.Colour > 0)
            tags.Start += QStringLiteral(" color = \"#%1\"").arg(ColourText(font.Colour));
        tags.Start += QLatin1Char('>');
        tags.End = QStringLiteral("</font>");
    }
    const auto addStyle = [&tags](bool isOn, const QString& element) {
        if (!isOn)
            return;
        tags.Start += QStringLiteral("<%1>").arg(element);
        tags.End.prepend(QStringLiteral("</%1>").arg(element));
    };
    addStyle(font.Bold, QStringLiteral("b"));
    addStyle(font.Italic, QStringLiteral("i"));
    addStyle(font.Underline, QStringLiteral("u"));
    addStyle(font.Strikethrough, QStringLiteral("strike"));
    return tags;
}

HighlightResult MarkHighlightWord(QString& body, const QString& word, const HighlightTags& tags)
{
    QString marked;
    qsizetype copied = 0;
    qsizetype hit = FindWord(body, word, 0);
    if (hit < 0)
        return HighlightResult::NotFound;
    for (; hit >= 0; hit = FindWord(body, word, copied + 1)) {
        marked += QStringView(body).mid(copied, hit - copied);
        marked += tags.Start;
        marked += QStringView(body).mid(hit, word.size());
        marked += tags.End;
        copied = hit + word.size();
        if (marked.size() > LargestBody)
            return HighlightResult::TooLarge;
    }
    marked += QStringView(body).mid(copied);
    body = marked;
    return HighlightResult::Found;
}

bool HoldsHighlightWord(const QString& body, const QString& word)
{
    return FindWord(body, word, 0) >= 0;
}
