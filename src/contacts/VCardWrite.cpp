// SPDX-License-Identifier: Apache-2.0

// Writing business cards, in each of the three versions.

#include "contacts/VCard.h"

namespace
{
using VCard::Version;

constexpr qsizetype LongestLine = 75;

/// Breaks a line where it is too long, never within a character.
QByteArray Folded(const QByteArray& line)
{
    QByteArray folded;
    qsizetype room = LongestLine;
    for (qsizetype i = 0; i < line.size();) {
        qsizetype length = 1;
        while (i + length < line.size() && (line.at(i + length) & 0xC0) == 0x80)
            ++length;
        if (room < length) {
            folded += "\r\n ";
            room = LongestLine - 1;
        }
        folded += line.mid(i, length);
        room -= length;
        i += length;
    }
    return folded + "\r\n";
}

QString WithPlainLineEnds(QString text)
{
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
}

QByteArray Escaped(const QString& text)
{
    QString escaped;
    for (const QChar character : WithPlainLineEnds(text)) {
        if (character == u'\\' || character == u';' || character == u',')
            escaped += u'\\';
        if (character == u'\n')
            escaped += QStringLiteral("\\n");
        else
            escaped += character;
    }
    return escaped.toUtf8();
}

bool IsPlainAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character.unicode() >= 0x20 && character.unicode() < 0x7F; });
}

/// Octets of a value of the old version: each as it is or as "=3D", with the line broken where it grows too long.
QByteArray QuotedPrintable(const QByteArray& octets, qsizetype column)
{
    constexpr char hexDigits[] = "0123456789ABCDEF";
    QByteArray text;
    for (const char octet : octets) {
        const auto code = static_cast<unsigned char>(octet);
        const bool isPlain = code > 0x20 && code < 0x7F && octet != '=';
        if (column + 4 > LongestLine) {
            text += "=\r\n";
            column = 0;
        }
        if (isPlain) {
            text += octet;
            ++column;
            continue;
        }
        text += '=';
        text += hexDigits[code >> 4];
        text += hexDigits[code & 0x0F];
        column += 3;
    }
    return text;
}

/// One property of the old version, which escapes semicolons and backslashes and has no other way for a line end.
QByteArray OldProperty(const QByteArray& name, const QStringList& parts)
{
    QStringList escaped;
    for (const QString& part : parts) {
        escaped.append(WithPlainLineEnds(part)
                           .replace(u'\\', QStringLiteral("\\\\"))
                           .replace(u';', QStringLiteral("\\;"))
                           .replace(u'\n', QStringLiteral("\r\n")));
    }
    const QString value = escaped.join(u';');
    if (IsPlainAscii(value) && name.size() + 1 + value.size() <= LongestLine)
        return name + ':' + value.toLatin1() + "\r\n";
    const QByteArray head = name + ";CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:";
    return head + QuotedPrintable(value.toUtf8(), head.size()) + "\r\n";
}

/// Writes one card; empty values make no property.
class CardWriter
{
public:
    explicit CardWriter(Version version) : Version_(version) {}

    QByteArray Write(const clsKVContact& contact)
    {
        Card_ = "BEGIN:VCARD\r\nVERSION:" + Number() + "\r\n";
        AddAlways("FN", {contact.Name});
        AddAlways("N", NameParts(contact.Name));
        Add(WithType("TEL", "CELL"), contact.Mobile);
        Add(WithType("TEL", "VOICE"), contact.Telephone);
        Add(Address(contact.SecondEmail.isEmpty() ? 0 : 1), contact.Email);
        Add(Address(contact.Email.isEmpty() ? 0 : 2), contact.SecondEmail);
        Add("NOTE", contact.Other);
        return Card_ + "END:VCARD\r\n";
    }

private:
    QByteArray Number() const { return Version_ == Version::V2_1 ? "2.1" : Version_ == Version::V3_0 ? "3.0" : "4.0"; }
    QByteArray WithType(const QByteArray& name, const QByteArray& type) const
    {
        if (Version_ == Version::V2_1)
            return name + ';' + type;
        return name + ";TYPE=" + (Version_ == Version::V4_0 ? type.toLower() : type);
    }
    /// place: 1 for the first of two, 2 for the second, 0 for the only one.
    QByteArray Address(int place) const
    {
        if (Version_ == Version::V4_0)
            return place == 0 ? QByteArray("EMAIL") : "EMAIL;PREF=" + QByteArray::number(place);
        const QByteArray address = WithType("EMAIL", "INTERNET");
        if (place != 1)
            return address;
        return address + (Version_ == Version::V2_1 ? ";PREF" : ",PREF");
    }
    /// Family, given, and three parts that a contact does not tell apart. Other programs sort by the first.
    static QStringList NameParts(const QString& name)
    {
        const qsizetype comma = name.indexOf(u',');
        const qsizetype blank = name.lastIndexOf(u' ');
        QStringList parts{name, QString()};
        if (comma > 0)
            parts = {name.left(comma).trimmed(), name.mid(comma + 1).trimmed()};
        else if (blank > 0)
            parts = {name.mid(blank + 1), name.left(blank)};
        return parts + QStringList{QString(), QString(), QString()};
    }
    void Add(const QByteArray& name, const QString& value)
    {
        if (!value.isEmpty())
            AddAlways(name, {value});
    }
    void AddAlways(const QByteArray& name, const QStringList& parts)
    {
        if (Version_ == Version::V2_1) {
            Card_ += OldProperty(name, parts);
            return;
        }
        QByteArrayList values;
        for (const QString& part : parts)
            values.append(Escaped(part));
        Card_ += Folded(name + ':' + values.join(';'));
    }

    Version Version_;
    QByteArray Card_;
};
} // namespace

QByteArray VCard::Write(const QList<clsKVContact>& contacts, Version version)
{
    QByteArray octets;
    CardWriter writer(version);
    for (const clsKVContact& contact : contacts)
        octets += writer.Write(contact);
    return octets;
}
