#include "common/SearchFold.h"

#include <QList>

namespace
{
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
    // What typesetters and telephones write for the marks on the keyboard.
    case 0x02BC:
    case 0x2018:
    case 0x2019:
    case 0x2032:
        return u"'";
    case 0x201C:
    case 0x201D:
        return u"\"";
    case 0x2010:
    case 0x2012:
    case 0x2013:
    case 0x2014:
    case 0x2212:
        return u"-";
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
        return text.toLower();
    // Folding case can bring marks back (as that of a capital I with a dot does), so they go last.
    const QString decomposed =
        text.normalized(QString::NormalizationForm_KD).toCaseFolded().normalized(QString::NormalizationForm_KD);
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
