// SPDX-License-Identifier: Apache-2.0
#include "contacts/VCardLines.h"

#include "common/FileHelper.h"
#include "platform/mail/CharacterSets.h"

#include <algorithm>

namespace
{
using VCardLines::Card;
using VCardLines::Property;

constexpr int MeansNothing = 100;

/// A file's physical lines, one at a time, whatever ends them.
class LineReader
{
public:
    explicit LineReader(const QByteArray& octets) : Octets_(octets) {}

    bool AtEnd() const { return At_ >= Octets_.size(); }
    /// Of the line that Take gives next, from 1.
    int Number() const { return Number_; }
    /// The first octet of the next line; a line end for an empty one.
    char Peek() const { return AtEnd() ? '\n' : Octets_.at(At_); }
    QByteArray Take()
    {
        qsizetype end = At_;
        while (end < Octets_.size() && Octets_.at(end) != '\n' && Octets_.at(end) != '\r')
            ++end;
        const QByteArray line = Octets_.mid(At_, end - At_);
        At_ = end;
        if (At_ < Octets_.size() && Octets_.at(At_++) == '\r' && At_ < Octets_.size() && Octets_.at(At_) == '\n')
            ++At_;
        ++Number_;
        return line;
    }

private:
    const QByteArray& Octets_;
    qsizetype At_ = 0;
    int Number_ = 1;
};

/// What stands before the colon of a line.
struct Head
{
    QByteArray Name; ///< Upper case, with its group.
    QByteArray Parameters;
    qsizetype Colon = -1; ///< Below 0: it is no property.
};

Head HeadOf(const QByteArray& line)
{
    Head head;
    bool inQuotes = false;
    qsizetype nameEnd = -1;
    for (qsizetype i = 0; i < line.size() && head.Colon < 0; ++i) {
        const char octet = line.at(i);
        if (octet == '"' && nameEnd >= 0)
            inQuotes = !inQuotes;
        else if (octet == ';' && nameEnd < 0)
            nameEnd = i;
        else if (octet == ':' && !inQuotes)
            head.Colon = i;
    }
    // A quote that nobody closed must not swallow the value.
    if (head.Colon < 0)
        head.Colon = line.indexOf(':');
    if (head.Colon < 0)
        return head;
    if (nameEnd < 0 || nameEnd > head.Colon)
        nameEnd = head.Colon;
    head.Name = line.left(nameEnd).trimmed().toUpper();
    head.Parameters = line.mid(nameEnd, head.Colon - nameEnd);
    return head;
}

QList<QByteArray> SplitOutsideQuotes(const QByteArray& text, char divider)
{
    QList<QByteArray> parts(1);
    bool inQuotes = false;
    for (const char octet : text) {
        if (octet == '"')
            inQuotes = !inQuotes;
        else if (octet == divider && !inQuotes)
            parts.append(QByteArray());
        else
            parts.last().append(octet);
    }
    return parts;
}

struct Parameters
{
    QStringList Types;
    int Preference = MeansNothing;
    bool IsQuotedPrintable = false;
    bool IsBase64 = false;
    QByteArray Charset;
};

void TakeParameter(Parameters& parameters, const QByteArray& name, const QByteArray& value)
{
    const QByteArray upper = value.trimmed().toUpper();
    if (name == "CHARSET") {
        parameters.Charset = value.trimmed();
    } else if (name == "PREF") {
        const int preference = upper.toInt();
        parameters.Preference = preference >= 1 && preference <= MeansNothing ? preference : MeansNothing;
    } else if (upper == "QUOTED-PRINTABLE") {
        parameters.IsQuotedPrintable = true;
    } else if ((name == "ENCODING" && upper == "B") || upper == "BASE64") {
        parameters.IsBase64 = true;
    } else if (name == "TYPE" || name.isEmpty()) {
        for (const QByteArray& type : SplitOutsideQuotes(upper, ','))
            parameters.Types.append(QString::fromLatin1(type.trimmed()));
        if (parameters.Types.contains(u"PREF"))
            parameters.Preference = std::min(parameters.Preference, MeansNothing - 1);
    }
}

Parameters ParametersOf(const Head& head)
{
    Parameters parameters;
    // A TYPE's list in quotes ("cell,home") is a list all the same.
    QByteArray text = head.Parameters;
    if (text.count('"') % 2 != 0)
        text.replace('"', "");
    for (const QByteArray& parameter : SplitOutsideQuotes(text, ';')) {
        const qsizetype equals = parameter.indexOf('=');
        const QByteArray name = equals < 0 ? QByteArray() : parameter.left(equals).trimmed().toUpper();
        TakeParameter(parameters, name, parameter.mid(equals + 1));
    }
    return parameters;
}

int HexDigit(char octet)
{
    if (octet >= '0' && octet <= '9')
        return octet - '0';
    const char lower = static_cast<char>(octet | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

QByteArray FromQuotedPrintable(const QByteArray& text)
{
    QByteArray octets;
    octets.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const int high = text.at(i) == '=' && i + 2 < text.size() ? HexDigit(text.at(i + 1)) : -1;
        const int low = high >= 0 ? HexDigit(text.at(i + 2)) : -1;
        if (low < 0) {
            octets.append(text.at(i));
            continue;
        }
        octets.append(static_cast<char>(high * 16 + low));
        i += 2;
    }
    return octets;
}

/// Reads cards line by line; one object a file.
class CardReader
{
public:
    explicit CardReader(const QByteArray& octets) : Lines_(octets) {}

    QList<Card> Read()
    {
        while (!Lines_.AtEnd())
            TakeProperty();
        return Cards_;
    }

private:
    bool IsInCard() const { return !Cards_.isEmpty() && !Cards_.last().IsWhole; }

    void TakeProperty()
    {
        const int number = Lines_.Number();
        QByteArray line = Lines_.Take();
        const Head head = HeadOf(line);
        const QByteArray name = head.Name.mid(head.Name.lastIndexOf('.') + 1);
        if (head.Colon < 0)
            return;
        if (name == "BEGIN" || name == "END") {
            const bool isCard = line.mid(head.Colon + 1).trimmed().toUpper() == "VCARD";
            if (isCard && name == "BEGIN")
                Begin(number);
            else if (isCard)
                End();
            return;
        }
        if (!IsInCard())
            return;
        const Parameters parameters = ParametersOf(head);
        TakeContinuation(line, parameters);
        IsAgent_ = name == "AGENT";
        if (Depth_ > 0)
            return;
        Add(name, parameters, line.mid(head.Colon + 1));
    }

    void Begin(int line)
    {
        // Somebody's agent is a card within the card. Any other one that begins ends one that was cut off.
        if (IsInCard() && (Depth_ > 0 || IsAgent_)) {
            ++Depth_;
            return;
        }
        Depth_ = 0;
        IsAgent_ = false;
        IsOld_ = false;
        Cards_.append({{}, line, false});
    }

    void End()
    {
        IsAgent_ = false;
        if (Depth_ > 0)
            --Depth_;
        else if (IsInCard())
            Cards_.last().IsWhole = true;
    }

    /// Appends the further lines of a folded or soft-broken one.
    void TakeContinuation(QByteArray& line, const Parameters& parameters)
    {
        while (!Lines_.AtEnd()) {
            const bool isFolded = Lines_.Peek() == ' ' || Lines_.Peek() == '\t';
            if (parameters.IsQuotedPrintable && line.endsWith('=')) {
                line.chop(1);
                line.append(Lines_.Take());
            } else if (isFolded) {
                // The version before 3.0 broke lines at blanks that belong to the text.
                line.append(IsOld_ && !parameters.IsBase64 ? Lines_.Take() : Lines_.Take().mid(1));
            } else {
                return;
            }
        }
    }

    void Add(const QByteArray& name, const Parameters& parameters, const QByteArray& value)
    {
        if (name == "VERSION")
            IsOld_ = value.trimmed().startsWith("2");
        if (parameters.IsBase64)
            return;
        Property property;
        property.Name = QString::fromLatin1(name);
        property.Types = parameters.Types;
        property.Preference = parameters.Preference;
        property.Value =
            cdo::Decode(parameters.IsQuotedPrintable ? FromQuotedPrintable(value) : value, parameters.Charset).Text;
        property.IsOld = IsOld_;
        Cards_.last().Properties.append(property);
    }

    LineReader Lines_;
    QList<Card> Cards_;
    int Depth_ = 0;        ///< Of cards within the card.
    bool IsAgent_ = false; ///< The property before was the agent's.
    bool IsOld_ = false;
};

/// UTF-8 without its mark.
QByteArray Plain(const QByteArray& octets)
{
    if (octets.startsWith("\xEF\xBB\xBF"))
        return octets.mid(3);
    if (octets.startsWith("\xFF\xFE") || octets.startsWith("\xFE\xFF"))
        return FileHelper::DecodeText(octets).toUtf8();
    return octets;
}

/// Takes the character behind a backslash; what it stands for.
QString Unescaped(QChar character, bool isOld)
{
    switch (character.unicode()) {
    case u'\\':
    case u';':
    case u',':
    case u':':
        return character;
    case u'n':
    case u'N':
        return isOld ? QLatin1Char('\\') + QString(character) : QStringLiteral("\n");
    default:
        return QLatin1Char('\\') + QString(character);
    }
}
} // namespace

QList<Card> VCardLines::Read(const QByteArray& octets)
{
    const QByteArray plain = Plain(octets);
    return CardReader(plain).Read();
}

QStringList VCardLines::Parts(const Property& property, QChar divider)
{
    QStringList parts{QString()};
    const QString& value = property.Value;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value.at(i) == u'\\' && i + 1 < value.size())
            parts.last() += Unescaped(value.at(++i), property.IsOld);
        else if (!divider.isNull() && value.at(i) == divider)
            parts.append(QString());
        else
            parts.last() += value.at(i);
    }
    return parts;
}

QString VCardLines::Text(const Property& property)
{
    return Parts(property, QChar()).first();
}
