// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/OutgoingMail.h"

#include "platform/mail/GMimeSupport.h"
#include "platform/mail/HeaderBlock.h"
#include "platform/mail/HeaderText.h"

#include <algorithm>

namespace cdo
{

namespace
{
constexpr qsizetype LongestLine = 998; // RFC 5322, 2.1.1

struct Form
{
    bool IsSevenBit = true;
    bool HasFittingLines = true; ///< None too long, and no NUL.

    bool IsPlain() const { return IsSevenBit && HasFittingLines; }
};

Form FormOf(QByteArrayView octets)
{
    Form form;
    qsizetype length = 0;
    for (const char c : octets) {
        length = c == '\n' ? 0 : length + 1;
        form.IsSevenBit = form.IsSevenBit && static_cast<uchar>(c) < 0x80;
        form.HasFittingLines = form.HasFittingLines && length <= LongestLine && c != '\0';
    }
    return form;
}

bool IsCalled(QByteArrayView name, QByteArrayView wanted)
{
    return name.compare(wanted, Qt::CaseInsensitive) == 0;
}

/// What tells of blind copies, or is written by the receiving side alone.
bool StaysHere(QByteArrayView name)
{
    return IsCalled(name, "Bcc") || IsCalled(name, "Resent-Bcc") || IsCalled(name, "Return-Path");
}

/// The elements of a list of addresses, as they stand: what commas divide that are not within quotation marks, brackets
/// or remarks; of a group its members. A reader of whole lists passes over what it does not understand, and nobody
/// would hear that somebody did not get the mail.
QList<QByteArray> ElementsOf(const QByteArray& value)
{
    QList<QByteArray> elements;
    QByteArray element;
    bool isQuoted = false;
    int remarks = 0;
    int brackets = 0;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char c = value.at(i);
        const bool isPlain = !isQuoted && remarks == 0 && brackets == 0;
        if (c == '"' && remarks == 0)
            isQuoted = !isQuoted;
        else if (!isQuoted && (c == '(' || c == ')'))
            remarks = qMax(0, remarks + (c == '(' ? 1 : -1));
        else if (!isQuoted && remarks == 0 && (c == '<' || c == '[' || c == '>' || c == ']'))
            brackets = qMax(0, brackets + (c == '<' || c == '[' ? 1 : -1));
        if (isPlain && (c == ',' || c == ';' || c == ':')) {
            // In front of a colon stands the name of a group.
            if (c != ':')
                elements.append(element);
            element.clear();
            continue;
        }
        element.append(c);
        if (c == '\\' && (isQuoted || remarks > 0) && i + 1 < value.size())
            element.append(value.at(++i));
    }
    elements.append(element);
    elements.removeIf([](const QByteArray& text) { return text.trimmed().isEmpty(); });
    return elements;
}

/// The one address in an element, as servers write it; empty where it is none, or more than one.
QString AddressIn(const QByteArray& element)
{
    const ObjectPointer<InternetAddressList> list(internet_address_list_parse(ParserOptions(), element.constData()));
    if (!list || internet_address_list_length(list.get()) != 1)
        return QString();
    InternetAddress* only = internet_address_list_get_address(list.get(), 0);
    if (!INTERNET_ADDRESS_IS_MAILBOX(only))
        return QString();
    const QString address = QString::fromUtf8(internet_address_mailbox_get_idn_addr(INTERNET_ADDRESS_MAILBOX(only)));
    const qsizetype at = address.lastIndexOf(u'@');
    // Programs are started with it.
    const bool isWhole =
        at > 0 && at + 1 < address.size() && !address.startsWith(u'-') &&
        std::all_of(address.begin(), address.end(), [](QChar c) { return c > u' ' && c != QChar(0x7F); });
    return isWhole ? address : QString();
}

/// Adds the recipients of a field, each once. False, and the problem, for what is no address.
bool ReadRecipients(QByteArray value, QStringList& recipients, QString& problem)
{
    value.replace('\0', ' ');
    for (const QByteArray& element : ElementsOf(value)) {
        const QString address = AddressIn(element);
        if (address.isEmpty()) {
            problem = QStringLiteral("\"%1\" is no mail address.").arg(DecodeHeader(element).trimmed());
            return false;
        }
        if (!recipients.contains(address, Qt::CaseInsensitive))
            recipients.append(address);
    }
    return true;
}

/// The field as it goes out: as it stands, or encoded where it holds what no header may.
QByteArray OutgoingField(const QByteArray& octets, const HeaderField& field)
{
    QByteArray text = octets.mid(field.Begin, field.End - field.Begin);
    text.replace("\r\n", "\n");
    if (!text.endsWith('\n'))
        text.append('\n');
    const QByteArray name = HeaderBlock::Name(octets, field).toByteArray();
    const bool describesContent = name.startsWith("Content-") || name.startsWith("content-");
    if (FormOf(text).IsPlain() || describesContent)
        return text;
    const QByteArray value = HeaderBlock::Value(octets, field);
    return EncodeField(name, IsAddressField(name) ? DecodeAddresses(value) : DecodeHeader(value), "\n");
}

/// "Name <address>", encoded.
QByteArray FromField(const OutgoingSender& sender)
{
    const QByteArray name = sender.Name.simplified().toUtf8();
    const ObjectPointer<InternetAddress> mailbox(
        internet_address_mailbox_new(name.isEmpty() ? nullptr : name.constData(), sender.Address.toUtf8().constData()));
    const TextPointer text(internet_address_to_string(mailbox.get(), FormatOptions(), TRUE));
    return QByteArray("From: ") + QByteArray(text.get()).trimmed() + '\n';
}

/// The header as it goes out, with the empty line behind it.
QByteArray OutgoingHeader(const Message& stored, const QByteArray& octets, const HeaderBlock& block,
                          const OutgoingSender& sender)
{
    QStringList from;
    QString problem;
    const bool isOwn = ReadRecipients(block.Value(octets, "From"), from, problem) && from.size() == 1 &&
                       from.first().compare(sender.Address, Qt::CaseInsensitive) == 0;
    const bool hasDate = stored.SentOn().isValid();
    const bool hasID = !stored.MessageID().isEmpty();
    QByteArray header;
    for (const HeaderField& field : block.Fields()) {
        const QByteArrayView name = HeaderBlock::Name(octets, field);
        const bool isReplaced = (!isOwn && (IsCalled(name, "From") || IsCalled(name, "Sender"))) ||
                                (!hasDate && IsCalled(name, "Date")) || (!hasID && IsCalled(name, "Message-ID"));
        if (!isReplaced && !StaysHere(name))
            header.append(OutgoingField(octets, field));
    }
    QByteArray front;
    if (!isOwn)
        front.append(FromField(sender));
    if (!hasDate)
        front.append(EncodeField("Date", EncodeDate(sender.Now), "\n"));
    if (!hasID)
        front.append(EncodeField("Message-ID", sender.MessageID, "\n"));
    return front + header + '\n';
}

/// A part's content taken out of its transfer encoding, which it gets anew when it is written, in lines that fit.
void TakeOutOfEncoding(GMimePart* part)
{
    GMimeDataWrapper* content = g_mime_part_get_content(part);
    if (content == nullptr)
        return;
    const ObjectPointer<GMimeStream> decoded(g_mime_stream_mem_new());
    if (g_mime_data_wrapper_write_to_stream(content, decoded.get()) < 0)
        return;
    g_mime_stream_reset(decoded.get());
    const ObjectPointer<GMimeDataWrapper> plain(
        g_mime_data_wrapper_new_with_stream(decoded.get(), GMIME_CONTENT_ENCODING_DEFAULT));
    g_mime_part_set_content(part, plain.get());
}

/// All leaves but those of what is signed, of which every octet counts.
void TakeAllOutOfEncoding(GMimeObject* object, int depth)
{
    constexpr int MostDepth = 100;
    if (object == nullptr || depth > MostDepth || GMIME_IS_MULTIPART_SIGNED(object))
        return;
    if (GMIME_IS_MULTIPART(object)) {
        const int count = g_mime_multipart_get_count(GMIME_MULTIPART(object));
        for (int i = 0; i < count; ++i)
            TakeAllOutOfEncoding(g_mime_multipart_get_part(GMIME_MULTIPART(object), i), depth + 1);
    } else if (GMIME_IS_PART(object)) {
        TakeOutOfEncoding(GMIME_PART(object));
    }
}

enum class Encoding
{
    WhereMissing, ///< Of parts that no header says to be encoded, and that need it.
    Anew          ///< Also of those that are encoded, but in lines that do not fit.
};

QByteArray Encoded(const QByteArray& octets, Encoding encoding)
{
    const OctetStream source(octets);
    const ObjectPointer<GMimeParser> parser(g_mime_parser_new_with_stream(source.Stream()));
    const ObjectPointer<GMimeMessage> message(g_mime_parser_construct_message(parser.get(), ParserOptions()));
    if (!message)
        return octets;
    if (encoding == Encoding::Anew)
        TakeAllOutOfEncoding(g_mime_message_get_mime_part(message.get()), 0);
    g_mime_object_encode(GMIME_OBJECT(message.get()), GMIME_ENCODING_CONSTRAINT_7BIT);
    const ObjectPointer<GMimeStream> target(g_mime_stream_mem_new());
    g_mime_object_write_to_stream(GMIME_OBJECT(message.get()), FormatOptions(), target.get());
    const GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(target.get()));
    return {reinterpret_cast<const char*>(bytes->data), static_cast<qsizetype>(bytes->len)};
}

/// Whether both say the same to their readers.
bool ReadsTheSame(const QByteArray& left, const QByteArray& right)
{
    const Message one(left);
    const Message other(right);
    if (one.TextBody() != other.TextBody() || one.HTMLBody() != other.HTMLBody())
        return false;
    const qsizetype count = one.Attachments().size();
    if (other.Attachments().size() != count)
        return false;
    for (int i = 0; i < count; ++i) {
        if (one.AttachmentContent(i) != other.AttachmentContent(i))
            return false;
    }
    return true;
}
} // namespace

OutgoingMail MakeOutgoing(const Message& stored, const OutgoingSender& sender)
{
    const QByteArray octets = stored.Octets();
    const HeaderBlock block(octets);
    OutgoingMail mail;
    for (const HeaderField& field : block.Fields()) {
        const QByteArrayView name = HeaderBlock::Name(octets, field);
        if ((IsCalled(name, "To") || IsCalled(name, "Cc") || IsCalled(name, "Bcc")) &&
            !ReadRecipients(HeaderBlock::Value(octets, field), mail.Recipients, mail.Problem))
            return mail;
    }
    if (mail.Problem.isEmpty() && mail.Recipients.isEmpty())
        mail.Problem = QStringLiteral("It has no recipient.");
    if (!mail.Problem.isEmpty())
        return mail;

    mail.Octets = octets.sliced(block.BodyBegin());
    mail.Octets.replace("\r\n", "\n");
    mail.Octets.prepend(OutgoingHeader(stored, octets, block, sender));
    if (!mail.Octets.endsWith('\n'))
        mail.Octets.append('\n');
    if (FormOf(mail.Octets).IsPlain())
        return mail;
    for (const Encoding encoding : {Encoding::WhereMissing, Encoding::Anew}) {
        const QByteArray encoded = Encoded(mail.Octets, encoding);
        // What is broken may be read otherwise once it is written anew; then it goes out as it is, where that can be.
        if (ReadsTheSame(mail.Octets, encoded))
            mail.Octets = encoded;
        if (FormOf(mail.Octets).HasFittingLines)
            break;
    }
    if (!FormOf(mail.Octets).HasFittingLines)
        mail.Problem = QStringLiteral("It holds what mail servers do not take: a line of more than 998 octets, or a "
                                      "character that is none. Write it anew.");
    return mail;
}

} // namespace cdo
