// SPDX-License-Identifier: Apache-2.0
#include "common/SearchFold.h"

#include <QList>

#include <algorithm>
#include <iterator>

namespace
{
/// Marks of the keyboard, each before what typesetters and telephones write for it.
const QStringView Marks[] = {
    u"'`\u00B4\u02B9\u02BB\u02BC\u2018\u2019\u201A\u201B\u2032\u2035\u2039\u203A\uFF07",
    u"\"\u00AB\u00BB\u201C\u201D\u201E\u201F\u2033\u2036\uFF02",
    u"-\u2010\u2011\u2012\u2013\u2014\u2015\u2212\uFE63\uFF0D",
    u" \u00A0\u2002\u2003\u2007\u2008\u2009\u200A\u202F",
};

QStringView MarkOf(QChar character)
{
    const auto* const mark = std::find_if(std::begin(Marks), std::end(Marks),
                                          [character](QStringView forms) { return forms.contains(character); });
    return mark == std::end(Marks) ? QStringView() : *mark;
}

/// The plain characters for what has no decomposition, in folded case; an empty text for none.
QStringView PlainCharacters(char32_t character)
{
    switch (character) {
    case 0x00DF:
        return u"ss";
    case 0x00E6:
        return u"ae";
    case 0x00F0:
    case 0x0111:
        return u"d";
    case 0x00F8:
        return u"o";
    case 0x00FE:
        return u"th";
    case 0x0127:
        return u"h";
    case 0x0131:
        return u"i";
    case 0x0142:
        return u"l";
    case 0x0153:
        return u"oe";
    case 0x0167:
        return u"t";
    default:
        return {};
    }
}

bool IsLeftOut(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return true;
    default:
        return false;
    }
}

bool IsPlainText(const QString& text)
{
    for (const QChar character : text) {
        if (character.unicode() >= 0x80)
            return false;
    }
    return true;
}
} // namespace

QString SearchFold::Folded(const QString& text)
{
    if (IsPlainText(text))
        return text.toLower().replace(u'`', u'\'');
    // Before the decomposition, which makes a blank of an acute accent that stands by itself.
    QString typed = text;
    std::transform(typed.cbegin(), typed.cend(), typed.begin(), KeyboardMark);
    // Folding case can bring marks back (as that of a capital I with a dot does), so they go last.
    const QString decomposed =
        typed.normalized(QString::NormalizationForm_KD).toCaseFolded().normalized(QString::NormalizationForm_KD);
    QString folded;
    folded.reserve(decomposed.size());
    const QList<uint> characters = decomposed.toUcs4();
    for (const char32_t character : characters) {
        if (IsLeftOut(character))
            continue;
        const QStringView plain = PlainCharacters(character);
        if (plain.isEmpty())
            folded += QString::fromUcs4(&character, 1);
        else
            folded += plain;
    }
    return folded;
}

QChar SearchFold::KeyboardMark(QChar character)
{
    const QStringView forms = MarkOf(character);
    return forms.isEmpty() ? character : forms.front();
}

QString SearchFold::FormsOfMark(QChar mark)
{
    const QStringView forms = MarkOf(mark);
    return forms.isEmpty() || forms.front() != mark ? QString(mark) : forms.toString();
}
