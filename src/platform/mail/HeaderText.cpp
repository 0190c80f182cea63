// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/HeaderText.h"

#include "platform/mail/GMimeSupport.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace cdo
{

namespace
{

QString FromUtf8(const TextPointer& text)
{
    return text == nullptr ? QString() : QString::fromUtf8(text.get());
}

/// On one line and without what would end it, or end the text, elsewhere.
QString OnOneLine(QString text)
{
    for (QChar& c : text) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7F)
            c = u' ';
    }
    return text.trimmed();
}

/// GMime reads text up to a NUL; a blank in its place keeps what stands behind it.
QByteArray Unfolded(QByteArray value)
{
    value = WithJoinedBase64Words(value.replace('\0', ' '));
    const TextPointer unfolded(g_mime_utils_header_unfold(value.constData()));
    return unfolded == nullptr ? QByteArray() : QByteArray(unfolded.get());
}

ObjectPointer<InternetAddressList> ParsedAddresses(const QByteArray& unfolded)
{
    return ObjectPointer<InternetAddressList>(internet_address_list_parse(ParserOptions(), unfolded.constData()));
}

QString AddressText(InternetAddressList* list)
{
    return OnOneLine(FromUtf8(TextPointer(internet_address_list_to_string(list, FormatOptions(), FALSE))));
}

InternetAddress* FirstMailboxIn(InternetAddressList* list)
{
    for (int i = 0; i < internet_address_list_length(list); ++i) {
        InternetAddress* address = internet_address_list_get_address(list, i);
        if (INTERNET_ADDRESS_IS_MAILBOX(address))
            return address;
        InternetAddressList* members = internet_address_group_get_members(INTERNET_ADDRESS_GROUP(address));
        if (members != nullptr && internet_address_list_length(members) > 0)
            return internet_address_list_get_address(members, 0);
    }
    return nullptr;
}

/// The field as GMime writes it: encoded where it must be, and folded.
QByteArray Formatted(const QByteArray& name, const QByteArray& utf8)
{
    const ObjectPointer<GMimeHeaderList> list(g_mime_header_list_new(ParserOptions()));
    g_mime_header_list_set(list.get(), name.constData(), utf8.constData(), "utf-8");
    GMimeHeader* header = g_mime_header_list_get_header_at(list.get(), 0);
    return header == nullptr ? QByteArray() : QByteArray(g_mime_header_get_raw_value(header));
}

/// The whole text in encoded words, whatever it is, split between characters to the length that RFC 2047 allows.
QByteArray AsEncodedWords(const QByteArray& utf8)
{
    constexpr qsizetype MaximumOctets = 42;
    QByteArray value;
    for (qsizetype begin = 0, end = 0; begin < utf8.size(); begin = end) {
        end = qMin(begin + MaximumOctets, utf8.size());
        while (end < utf8.size() && end > begin + 1 && (static_cast<uchar>(utf8.at(end)) & 0xC0) == 0x80)
            --end;
        value.append("\n =?utf-8?B?" + utf8.mid(begin, end - begin).toBase64() + "?=");
    }
    return value.mid(1) + '\n';
}

/// GMime does not split a long word that it encodes.
bool HasOverlongEncodedWord(const QByteArray& value)
{
    const QList<QByteArray> lines = value.split('\n');
    return std::any_of(lines.begin(), lines.end(),
                       [](const QByteArray& line) { return line.size() > 77 && line.contains("=?"); });
}

/// A clock that was never set dates mail centuries away, where it would head every list for good; that is no date.
bool IsPlausible(const QDateTime& date)
{
    return date.date().year() >= 1900 && date.date().year() < 2200;
}

QDateTime ToDateTime(const QByteArray& text)
{
    const DatePointer date(g_mime_utils_header_decode_date(text.constData()));
    if (date == nullptr)
        return QDateTime();
    const QDateTime time = QDateTime::fromSecsSinceEpoch(g_date_time_to_unix(date.get())).toUTC();
    return IsPlausible(time) ? time : QDateTime();
}

} // namespace

QByteArray WithJoinedBase64Words(const QByteArray& value)
{
    // A word that ends in padding, and another one behind it: most subjects are one word.
    const qsizetype padded = value.indexOf("=?=");
    if (padded < 0 || value.indexOf("=?", padded + 3) < 0)
        return value;
    static const QRegularExpression word(QStringLiteral("=\\?([^?\\s]+)\\?[Bb]\\?([^?\\s]*)\\?="));
    QByteArray result;
    QByteArray characterSet;
    QByteArray content;
    qsizetype kept = 0;
    const auto writeWord = [&] {
        if (!characterSet.isEmpty())
            result.append("=?" + characterSet + "?B?" + content.toBase64() + "?=");
        content.clear();
    };
    // Latin-1 stands for the octets one to one here.
    for (const QRegularExpressionMatch& match : word.globalMatch(QString::fromLatin1(value))) {
        const QByteArray between = value.mid(kept, match.capturedStart() - kept);
        const QByteArray name = match.captured(1).toLatin1();
        if (!between.trimmed().isEmpty() || name.compare(characterSet, Qt::CaseInsensitive) != 0) {
            writeWord();
            result.append(between);
            characterSet = name;
        }
        content.append(QByteArray::fromBase64(match.captured(2).toLatin1()));
        kept = match.capturedEnd();
    }
    writeWord();
    return result.append(value.mid(kept));
}

QString DecodeHeader(const QByteArray& value)
{
    const TextPointer text(g_mime_utils_header_decode_text(ParserOptions(), Unfolded(value).constData()));
    return OnOneLine(FromUtf8(text));
}

QString DecodeAddresses(const QByteArray& value)
{
    const QByteArray unfolded = Unfolded(value);
    if (unfolded.contains("=?")) {
        const ObjectPointer<InternetAddressList> list = ParsedAddresses(unfolded);
        const QString text = list == nullptr ? QString() : AddressText(list.get());
        if (!text.isEmpty() && !text.contains(QLatin1String("=?")))
            return text;
    }
    return DecodeHeader(value);
}

QString FirstMailbox(const QByteArray& value)
{
    const ObjectPointer<InternetAddressList> list = ParsedAddresses(Unfolded(value));
    InternetAddress* mailbox = list == nullptr ? nullptr : FirstMailboxIn(list.get());
    if (mailbox == nullptr)
        return QString();
    return OnOneLine(FromUtf8(TextPointer(internet_address_to_string(mailbox, FormatOptions(), FALSE))));
}

bool IsAddressField(QByteArrayView name)
{
    static constexpr std::array names = {"From", "To", "Cc", "Bcc", "Reply-To", "Sender"};
    return std::any_of(names.begin(), names.end(),
                       [name](const char* known) { return name.compare(known, Qt::CaseInsensitive) == 0; });
}

QByteArray EncodeField(const QByteArray& name, const QString& text, const QByteArray& lineBreak)
{
    const QString line = OnOneLine(text);
    const QByteArray utf8 = line.toUtf8();
    QByteArray value = Formatted(name, utf8);
    // What GMime makes of odd text (a bare name outside ASCII as an address, something like an encoded word) must still
    // read back as it was set.
    const bool isAddress = IsAddressField(name);
    if ((isAddress ? DecodeAddresses(value) : DecodeHeader(value)) != line ||
        (!isAddress && HasOverlongEncodedWord(value)))
        value = AsEncodedWords(utf8);
    if (!value.startsWith(' ') && !value.startsWith('\n'))
        value.prepend(' ');
    if (!value.endsWith('\n'))
        value.append('\n');
    return name + ':' + value.replace("\n", lineBreak);
}

QDateTime DecodeDate(const QByteArray& value)
{
    return ToDateTime(Unfolded(value));
}

QDateTime DecodeReceivedDate(const QByteArray& value)
{
    const QByteArray unfolded = Unfolded(value);
    // A comment behind the date may hold a semicolon of its own.
    for (qsizetype end = unfolded.lastIndexOf(';'); end >= 0;) {
        const QDateTime date = ToDateTime(unfolded.mid(end + 1));
        if (date.isValid())
            return date;
        end = end == 0 ? -1 : unfolded.lastIndexOf(';', end - 1);
    }
    return QDateTime();
}

QString EncodeDate(const QDateTime& time)
{
    if (!time.isValid())
        return QString();
    const DatePointer date(g_date_time_new_from_unix_utc(time.toSecsSinceEpoch()));
    if (date == nullptr)
        return QString();
    return FromUtf8(TextPointer(g_mime_utils_header_format_date(date.get())));
}

} // namespace cdo
