#include "Addresses.h"

#include <QRegularExpression>
#include <QSet>

namespace
{
/// RFC 5321, 4.5.3.1: longer ones are refused on their way.
constexpr qsizetype LongestAddress = 254;

constexpr int FewestDigits = 3;
constexpr int MostDigits = 15;

bool IsSeparator(QChar character)
{
    return character == u',' || character == u';';
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
    QStringList elements;
    QString element;
    bool isQuoted = false;
    bool isBracketed = false;
    const auto finish = [&] {
        element = element.simplified();
        if (!element.isEmpty())
            elements.append(element);
        element.clear();
    };
    for (qsizetype i = 0; i < recipients.size(); ++i) {
        const QChar character = recipients.at(i);
        if (isQuoted && character == u'\\' && i + 1 < recipients.size()) {
            element += character;
            element += recipients.at(++i);
            continue;
        }
        if (!isQuoted && !isBracketed && IsSeparator(character)) {
            finish();
            continue;
        }
        if (character == u'"' && !isBracketed)
            isQuoted = !isQuoted;
        else if (!isQuoted && character == u'<')
            isBracketed = true;
        else if (!isQuoted && character == u'>')
            isBracketed = false;
        element += character;
    }
    finish();
    return elements;
}

QString Addresses::Bare(const QString& element)
{
    const qsizetype open = element.lastIndexOf(u'<');
    const qsizetype close = element.indexOf(u'>', open);
    const bool isBracketed = open >= 0 && close > open;
    QString address = (isBracketed ? element.mid(open + 1, close - open - 1) : element).trimmed();
    const qsizetype at = address.lastIndexOf(u'@');
    return at < 0 ? address : address.left(at) + address.mid(at).toLower();
}

QString Addresses::DisplayName(const QString& element)
{
    const qsizetype open = element.lastIndexOf(u'<');
    QString name = open > 0 ? element.left(open).trimmed() : QString();
    if (name.size() >= 2 && name.startsWith(u'"') && name.endsWith(u'"')) {
        static const QRegularExpression escape(QStringLiteral("\\\\(.)"));
        name = name.mid(1, name.size() - 2).replace(escape, QStringLiteral("\\1"));
    }
    return name.trimmed().isEmpty() ? Bare(element) : name.trimmed();
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
