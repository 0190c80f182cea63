// SPDX-License-Identifier: Apache-2.0
#include "Addresses.h"

#include <QRegularExpression>
#include <QSet>

namespace
{
/// RFC 5321, 4.5.3.1: longer ones are refused on their way.
constexpr qsizetype LongestAddress = 254;

constexpr int FewestDigits = 3;
constexpr int MostDigits = 15;

/// Where a quotation or comment that begins at from ends: the position of its last character. -1 when it does not.
qsizetype EndOf(const QString& text, qsizetype from)
{
    const bool isComment = text.at(from) == u'(';
    int depth = 1;
    for (qsizetype i = from + 1; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (character == u'\\')
            ++i;
        else if (isComment && character == u'(')
            ++depth;
        else if (character == (isComment ? u')' : u'"') && --depth == 0)
            return i;
    }
    return -1;
}

/// The same for an address in angle brackets; another one before its end says that it has none.
qsizetype EndOfBracket(const QString& text, qsizetype from)
{
    for (qsizetype i = from + 1; i < text.size(); ++i) {
        if (text.at(i) == u'"') {
            const qsizetype end = EndOf(text, i);
            if (end > 0)
                i = end;
        } else if (text.at(i) == u'>') {
            return i;
        } else if (text.at(i) == u'<') {
            return -1;
        }
    }
    return -1;
}

bool IsScheme(const QString& word)
{
    static const QStringList schemes = {QStringLiteral("mailto"), QStringLiteral("tel"), QStringLiteral("sms")};
    return schemes.contains(word.trimmed(), Qt::CaseInsensitive);
}

/// One pass over a list of recipients. What is opened and never closed is a character like any other, but for a
/// quotation at a word's beginning, which goes to the end: nothing is guessed within it, and nothing is lost.
class Splitter
{
public:
    explicit Splitter(const QString& text) : Text_(text), HasGroups_(text.contains(u';')) {}

    QStringList Run()
    {
        for (Position_ = 0; Position_ < Text_.size(); ++Position_)
            Take(Text_.at(Position_));
        Finish();
        return Elements_;
    }

private:
    void Take(QChar character)
    {
        if (character == u',' || character == u';') {
            IsInGroup_ = IsInGroup_ && character == u',';
            return Finish();
        }
        if (character == u'(' && HasComments_) {
            const qsizetype end = EndOf(Text_, Position_);
            HasComments_ = end > 0;
            return TakeTo(end > 0 ? end : Position_);
        }
        // Behind an address in brackets the next recipient begins, though somebody forgot the comma.
        if (HasAddress_ && !character.isSpace())
            Finish();
        if (character == u'"')
            return TakeTo(EndOfQuotation());
        if (character == u'<') {
            const qsizetype end = EndOfBracket(Text_, Position_);
            TakeTo(end > 0 ? end : Position_);
            HasAddress_ = end > 0;
            return;
        }
        if (character == u':' && BeginsList())
            return Element_.clear();
        Element_ += character;
    }

    void TakeTo(qsizetype end)
    {
        Element_ += Text_.mid(Position_, end - Position_ + 1);
        Position_ = end;
    }

    qsizetype EndOfQuotation()
    {
        const qsizetype end = HasQuotations_ ? EndOf(Text_, Position_) : -1;
        HasQuotations_ = end > 0;
        if (end > 0)
            return end;
        const bool isWithinWord = !Element_.isEmpty() && !Element_.back().isSpace();
        return isWithinWord ? Position_ : Text_.size() - 1;
    }

    /// A group's name, or what a link has in front of its address.
    bool BeginsList()
    {
        if (IsScheme(Element_))
            return true;
        if (IsInGroup_ || !HasGroups_ || Element_.trimmed().isEmpty() || Element_.contains(u'@') ||
            Element_.contains(u'[') || Text_.indexOf(u';', Position_) < 0)
            return false;
        IsInGroup_ = true;
        return true;
    }

    void Finish()
    {
        Element_ = Element_.simplified();
        if (!Element_.isEmpty())
            Elements_.append(Element_);
        Element_.clear();
        HasAddress_ = false;
    }

    const QString& Text_;
    const bool HasGroups_;
    qsizetype Position_ = 0;
    QString Element_;
    QStringList Elements_;
    bool IsInGroup_ = false;
    bool HasAddress_ = false;
    bool HasComments_ = true;
    bool HasQuotations_ = true;
};

/// One element in its parts, without the marks around them.
struct Parts
{
    QString Phrase;
    QString Address; ///< Of the brackets; empty when there are none.
    QString Comment;
};

QString Unescaped(const QString& text)
{
    static const QRegularExpression escape(QStringLiteral("\\\\(.)"));
    return QString(text).replace(escape, QStringLiteral("\\1"));
}

Parts PartsOf(const QString& element)
{
    Parts parts;
    for (qsizetype i = 0; i < element.size(); ++i) {
        const QChar character = element.at(i);
        const qsizetype end = character == u'"' || character == u'(' ? EndOf(element, i)
                              : character == u'<'                    ? EndOfBracket(element, i)
                                                                     : -1;
        if (end < 0) {
            parts.Phrase += character;
            continue;
        }
        const QString inner = element.mid(i + 1, end - i - 1);
        if (character == u'<')
            parts.Address = inner.trimmed();
        else if (character == u'(')
            parts.Comment = Unescaped(inner).simplified();
        else
            // The part of an address before its @ keeps its quotation.
            parts.Phrase += element.mid(end + 1).startsWith(u'@') ? element.mid(i, end - i + 1) : Unescaped(inner);
        i = end;
    }
    parts.Phrase = parts.Phrase.simplified();
    return parts;
}

QStringList Addressed(const QStringList& elements)
{
    QStringList addresses;
    for (const QString& element : elements)
        addresses.append(Addresses::Bare(element).toCaseFolded());
    return addresses;
}
} // namespace

QStringList Addresses::Split(const QString& recipients)
{
    return Splitter(recipients).Run();
}

QString Addresses::Bare(const QString& element)
{
    const Parts parts = PartsOf(element);
    QString address = parts.Address.isEmpty() ? parts.Phrase : parts.Address;
    // A route in front of the address, which nobody has used for decades but which may stand there.
    if (address.startsWith(u'@') && address.contains(u':'))
        address = address.mid(address.lastIndexOf(u':') + 1).trimmed();
    const qsizetype colon = address.indexOf(u':');
    if (colon > 0 && IsScheme(address.left(colon)))
        address = address.mid(colon + 1).trimmed();
    if (address.isEmpty())
        address = element.trimmed();
    const qsizetype at = address.lastIndexOf(u'@');
    return at < 0 ? address : address.left(at) + address.mid(at).toLower();
}

QString Addresses::DisplayName(const QString& element)
{
    const Parts parts = PartsOf(element);
    if (!parts.Address.isEmpty() && !parts.Phrase.isEmpty())
        return parts.Phrase;
    return parts.Comment.isEmpty() || parts.Phrase.isEmpty() == parts.Address.isEmpty() ? Bare(element) : parts.Comment;
}

QString Addresses::Normalised(const QString& recipients, enMsgType type)
{
    QStringList elements = Split(recipients);
    for (QString& element : elements) {
        const QString address = Bare(element);
        if (type == emtSMS) {
            if (IsPlausibleNumber(address))
                element = address;
        } else if (IsPlausible(address)) {
            const QString name = DisplayName(element);
            element = Mailbox(name.compare(address, Qt::CaseInsensitive) == 0 ? QString() : name, address);
        }
    }
    return elements.join(QStringLiteral(", "));
}

QString Addresses::Mailbox(const QString& name, const QString& address)
{
    if (name.trimmed().isEmpty() || address.isEmpty())
        return name.trimmed().isEmpty() ? address : name.trimmed();
    static const QRegularExpression special(QStringLiteral("[()<>\\[\\]:;@\\\\,.\"]"));
    QString shown = name.simplified();
    if (shown.contains(special)) {
        shown.replace(u'\\', QStringLiteral("\\\\")).replace(u'"', QStringLiteral("\\\""));
        shown = u'"' + shown + u'"';
    }
    return QStringLiteral("%1 <%2>").arg(shown, address);
}

bool Addresses::IsPlausible(const QString& address)
{
    static const QRegularExpression pattern(
        QStringLiteral(
            "^[^\\s@<>,;:\"()\\[\\]\\\\]+@(?:[\\p{L}\\p{N}](?:[\\p{L}\\p{N}\\p{M}-]*[\\p{L}\\p{N}\\p{M}])?\\.)+"
            "[\\p{L}\\p{N}\\p{M}-]{2,}$"),
        QRegularExpression::UseUnicodePropertiesOption);
    return address.size() <= LongestAddress && pattern.match(address).hasMatch() &&
           !address.contains(QStringLiteral("..")) && !address.startsWith(u'.');
}

bool Addresses::IsPlausibleNumber(const QString& number)
{
    static const QRegularExpression pattern(QStringLiteral("^\\+?[0-9 ()./-]+$"));
    if (!pattern.match(number).hasMatch())
        return false;
    const qsizetype digits = number.count(QRegularExpression(QStringLiteral("[0-9]")));
    return digits >= FewestDigits && digits <= MostDigits;
}

QStringList Addresses::Without(const QStringList& list, const QStringList& others)
{
    const QStringList known = Addressed(others);
    QSet<QString> seen(known.begin(), known.end());
    QStringList result;
    for (const QString& element : list) {
        const QString address = Bare(element).toCaseFolded();
        if (seen.contains(address))
            continue;
        seen.insert(address);
        result.append(element);
    }
    return result;
}

QString Addresses::WhyNotSendable(const QString& to, const QString& cc, const QString& bcc, enMsgType type)
{
    const QStringList recipients = Split(to) + Split(cc) + Split(bcc);
    if (recipients.isEmpty()) {
        return type == emtSMS ? QStringLiteral("Nobody is named in To. Write the telephone number that the text "
                                               "message goes to.")
                              : QStringLiteral("Nobody is named in To. Write at least one e-mail address.");
    }
    for (const QString& recipient : recipients) {
        const QString address = Bare(recipient);
        if (type == emtSMS && !IsPlausibleNumber(address))
            return QStringLiteral("\u201C%1\u201D is no telephone number. A text message needs one, such as 07700 "
                                  "900123.")
                .arg(recipient);
        if (type != emtSMS && !IsPlausible(address))
            return QStringLiteral("\u201C%1\u201D is no e-mail address. Write it like ann@example.com, and commas "
                                  "between several.")
                .arg(recipient);
    }
    return QString();
}
