// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/RichTextFormat.h"

#include <QHash>
#include <QStringList>

#include <array>

namespace
{
using RichTextFormat::Piece;

const QString Beginning = QStringLiteral("{\\rtf");

/// What the octets 0x80 to 0x9F mean in the code page of Western Windows; the rest of it is Latin 1.
constexpr std::array<char16_t, 32> WesternOctets = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                                    0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

QChar WesternCharacter(int octet)
{
    return octet >= 0x80 && octet < 0xA0 ? QChar(WesternOctets[static_cast<size_t>(octet - 0x80)]) : QChar(octet);
}

/// Destinations whose characters are no text of the document.
bool IsHiddenDestination(const QString& word)
{
    static const QStringList words = {
        QStringLiteral("fonttbl"),  QStringLiteral("stylesheet"), QStringLiteral("info"),
        QStringLiteral("pict"),     QStringLiteral("object"),     QStringLiteral("header"),
        QStringLiteral("footer"),   QStringLiteral("headerl"),    QStringLiteral("headerr"),
        QStringLiteral("footerl"),  QStringLiteral("footerr"),    QStringLiteral("footnote"),
        QStringLiteral("filetbl"),  QStringLiteral("listtable"),  QStringLiteral("rsidtbl"),
        QStringLiteral("generator")};
    return words.contains(word);
}

/// Adds to the piece before when the form is the same.
void Append(QList<Piece>& pieces, const Piece& piece)
{
    if (piece.Text.isEmpty())
        return;
    if (!pieces.isEmpty() && pieces.last().Protected == piece.Protected && pieces.last().Colour == piece.Colour)
        pieces.last().Text += piece.Text;
    else
        pieces.append(piece);
}

/// One pass over the text; groups are a stack of forms.
class Reader
{
public:
    explicit Reader(const QString& text) : Text_(text) {}

    QList<Piece> Run()
    {
        while (Position_ < Text_.size() && !IsDone_) {
            const QChar character = Text_.at(Position_++);
            if (character == u'{')
                Groups_.append(Groups_.last());
            else if (character == u'}')
                CloseGroup();
            else if (character == u'\\')
                ReadControl();
            else if (character != u'\r' && character != u'\n')
                Put(character);
        }
        return Pieces_;
    }

private:
    struct Form
    {
        bool Protected = false;
        int Colour = 0;
        int CharactersAfterUnicode = 1;
        bool Hidden = false;
        bool ColourTable = false;
    };

    void CloseGroup()
    {
        if (Groups_.last().ColourTable)
            ColourIsOpen_ = false;
        Skip_ = 0;
        if (Groups_.size() > 1)
            Groups_.removeLast();
        // What follows the document's own group does not belong to it.
        IsDone_ = Groups_.size() == 1;
    }

    void Put(QChar character)
    {
        if (Skip_ > 0) {
            --Skip_;
            return;
        }
        const Form& form = Groups_.last();
        if (form.ColourTable) {
            if (character == u';')
                CloseColour();
            return;
        }
        if (form.Hidden)
            return;
        std::optional<qint32> colour;
        if (form.Colour > 0 && form.Colour < Colours_.size())
            colour = Colours_.at(form.Colour);
        Append(Pieces_, {QString(character), form.Protected, colour});
    }

    void CloseColour()
    {
        Colours_.append(ColourIsOpen_ ? std::optional<qint32>(Colour_) : std::nullopt);
        Colour_ = 0;
        ColourIsOpen_ = false;
    }

    void ReadControl()
    {
        if (Position_ >= Text_.size())
            return;
        const QChar symbol = Text_.at(Position_);
        const bool isWord = (symbol >= u'a' && symbol <= u'z') || (symbol >= u'A' && symbol <= u'Z');
        if (isWord)
            return ReadWord();
        ++Position_;
        switch (symbol.unicode()) {
        case u'\'':
            return ReadOctet();
        case u'*':
            Groups_.last().Hidden = true;
            return;
        case u'~':
            return Put(QChar::Nbsp);
        case u'_':
            return Put(QChar(0x2011));
        case u'\r':
        case u'\n':
            return Put(u'\n');
        case u'\\':
        case u'{':
        case u'}':
            return Put(symbol);
        default:
            return;
        }
    }

    void ReadOctet()
    {
        // Two digits: the conversion would take a sign or a blank for one.
        const auto isDigit = [](QChar c) {
            return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
        };
        if (Position_ + 2 > Text_.size() || !isDigit(Text_.at(Position_)) || !isDigit(Text_.at(Position_ + 1)))
            return;
        const int octet = QStringView(Text_).sliced(Position_, 2).toInt(nullptr, 16);
        Position_ += 2;
        Put(WesternCharacter(octet));
    }

    void ReadWord()
    {
        const auto isLetter = [](QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
        const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
        qsizetype end = Position_;
        while (end < Text_.size() && isLetter(Text_.at(end)))
            ++end;
        const QString word = Text_.mid(Position_, end - Position_);
        qsizetype last = end;
        if (last + 1 < Text_.size() && Text_.at(last) == u'-' && isDigit(Text_.at(last + 1)))
            ++last;
        while (last < Text_.size() && isDigit(Text_.at(last)))
            ++last;
        bool hasNumber = false;
        const int number = Text_.mid(end, last - end).toInt(&hasNumber);
        Position_ = last;
        if (Position_ < Text_.size() && Text_.at(Position_) == u' ')
            ++Position_;
        Obey(word, hasNumber ? std::optional<int>(number) : std::nullopt);
    }

    void Obey(const QString& word, std::optional<int> number)
    {
        Form& form = Groups_.last();
        if (word == u"par" || word == u"line") {
            Put(u'\n');
        } else if (word == u"tab") {
            Put(u'\t');
        } else if (word == u"u") {
            Skip_ = 0;
            if (number)
                Put(QChar(static_cast<char16_t>(*number)));
            Skip_ = form.CharactersAfterUnicode;
        } else if (word == u"uc") {
            form.CharactersAfterUnicode = qBound(0, number.value_or(1), 16);
        } else if (word == u"protect") {
            form.Protected = number.value_or(1) != 0;
        } else if (word == u"cf") {
            form.Colour = number.value_or(0);
        } else if (word == u"plain") {
            form.Protected = false;
            form.Colour = 0;
        } else if (word == u"colortbl") {
            form.ColourTable = true;
        } else if (form.ColourTable) {
            ReadColour(word, number.value_or(0));
        } else if (IsHiddenDestination(word)) {
            form.Hidden = true;
        } else {
            PutNamed(word);
        }
    }

    void ReadColour(const QString& word, int number)
    {
        const int part = qBound(0, number, 255);
        const int shift = word == u"red" ? 0 : word == u"green" ? 8 : word == u"blue" ? 16 : -1;
        if (shift < 0)
            return;
        Colour_ = (Colour_ & ~(0xFF << shift)) | part << shift;
        ColourIsOpen_ = true;
    }

    void PutNamed(const QString& word)
    {
        static const QHash<QString, char16_t> characters = {
            {QStringLiteral("lquote"), 0x2018},    {QStringLiteral("rquote"), 0x2019},
            {QStringLiteral("ldblquote"), 0x201C}, {QStringLiteral("rdblquote"), 0x201D},
            {QStringLiteral("endash"), 0x2013},    {QStringLiteral("emdash"), 0x2014},
            {QStringLiteral("bullet"), 0x2022}};
        const auto found = characters.constFind(word);
        if (found != characters.constEnd())
            Put(QChar(*found));
    }

    const QString& Text_;
    qsizetype Position_ = 0;
    QList<Form> Groups_{Form()};
    QList<std::optional<qint32>> Colours_;
    qint32 Colour_ = 0;
    bool ColourIsOpen_ = false;
    int Skip_ = 0;
    bool IsDone_ = false;
    QList<Piece> Pieces_;
};

QString Escaped(const QString& text)
{
    QString escaped;
    for (const QChar character : text) {
        const char16_t code = character.unicode();
        if (character == u'\n')
            escaped += QStringLiteral("\\par\n");
        else if (character == u'\t')
            escaped += QStringLiteral("\\tab ");
        else if (character == u'\\' || character == u'{' || character == u'}')
            escaped += u'\\' + QString(character);
        else if (code < 0x20 || code > 0x7E)
            escaped += QStringLiteral("\\u%1?").arg(static_cast<qint16>(code));
        else
            escaped += character;
    }
    return escaped;
}
} // namespace

bool RichTextFormat::IsRichText(const QString& text)
{
    return text.startsWith(Beginning);
}

QList<Piece> RichTextFormat::Read(const QString& text)
{
    if (IsRichText(text))
        return Reader(text).Run();
    QString plain = text;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    return plain.isEmpty() ? QList<Piece>() : QList<Piece>{Piece{plain, false, std::nullopt}};
}

QString RichTextFormat::Write(const QList<Piece>& pieces)
{
    QList<qint32> colours;
    for (const Piece& piece : pieces) {
        if (piece.Colour && !colours.contains(*piece.Colour))
            colours.append(*piece.Colour);
    }
    QString text = QStringLiteral("{\\rtf1\\ansi\\ansicpg1252\\uc1{\\colortbl ;");
    for (const qint32 colour : colours) {
        text += QStringLiteral("\\red%1\\green%2\\blue%3;")
                    .arg(colour & 0xFF)
                    .arg(colour >> 8 & 0xFF)
                    .arg(colour >> 16 & 0xFF);
    }
    text += QStringLiteral("}\n");
    for (const Piece& piece : pieces) {
        const QString form =
            (piece.Protected ? QStringLiteral("\\protect") : QString()) +
            (piece.Colour ? QStringLiteral("\\cf%1").arg(colours.indexOf(*piece.Colour) + 1) : QString());
        text += form.isEmpty() ? QStringLiteral("{%1}").arg(Escaped(piece.Text))
                               : QStringLiteral("{%1 %2}").arg(form, Escaped(piece.Text));
    }
    return text + u'}';
}
