// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/BodyParts.h"

#include "platform/mail/HeaderText.h"

#include <QUrl>

#include <algorithm>

namespace cdo
{

namespace
{

/// The line break in front of a boundary belongs to the boundary.
qsizetype WithoutLineBreak(QByteArrayView octets, qsizetype begin, qsizetype end)
{
    if (end > begin && octets[end - 1] == '\n')
        --end;
    if (end > begin && octets[end - 1] == '\r')
        --end;
    return end;
}

/// GMime judges the length of the line break in front of a boundary by the one behind it, and so is one octet off where
/// the two differ.
qsizetype ContentEnd(QByteArrayView octets, qsizetype begin, qsizetype end)
{
    const auto isAt = [octets](qsizetype position, char c) {
        return position < octets.size() && octets[position] == c;
    };
    const bool isShort = end < octets.size() && !isAt(end, '\r') && !isAt(end, '\n') && isAt(end + 1, '\n');
    if (isShort)
        ++end;
    return isAt(end, '\n') && end > begin && octets[end - 1] == '\r' ? end - 1 : end;
}

QString WithoutBrackets(const char* contentID)
{
    QString id = QString::fromUtf8(contentID).trimmed();
    if (id.startsWith(u'<'))
        id.remove(0, 1);
    if (id.endsWith(u'>'))
        id.chop(1);
    return id;
}

QByteArray TypeName(GMimeContentType* type)
{
    const TextPointer name(g_mime_content_type_get_mime_type(type));
    return QByteArray(name.get()).toLower();
}

/// GMime leaves raw 8-bit text as it is.
QString Parameter(const char* value)
{
    return Decode(QByteArrayView(value, qstrlen(value)), QByteArray()).Text;
}

/// Whether the value begins as "type/subtype".
bool NamesAType(const QByteArray& value)
{
    const QByteArray name = value.split(';').constFirst().trimmed();
    const qsizetype slash = name.indexOf('/');
    const auto isPrintable = [](char c) { return c > 0x20 && c < 0x7F; };
    return slash > 0 && slash < name.size() - 1 && std::all_of(name.begin(), name.end(), isPrintable);
}

void TakeType(GMimeContentType* type, BodyPart* part)
{
    part->ContentType = TypeName(type);
    part->CharacterSet = QByteArray(g_mime_content_type_get_parameter(type, "charset"));
    part->FileName = Parameter(g_mime_content_type_get_parameter(type, "name"));
}

/// What is no type is text (RFC 2045, 5.2).
void TakeType(const QByteArray& value, BodyPart* part)
{
    const QByteArray readable = NamesAType(value) ? WithJoinedBase64Words(value) : QByteArrayLiteral("text/plain");
    const ObjectPointer<GMimeContentType> type(g_mime_content_type_parse(ParserOptions(), readable.constData()));
    TakeType(type.get(), part);
}

void TakeDisposition(const QByteArray& value, BodyPart* part)
{
    if (value.trimmed().isEmpty())
        return;
    const ObjectPointer<GMimeContentDisposition> disposition(
        g_mime_content_disposition_parse(ParserOptions(), WithJoinedBase64Words(value).constData()));
    if (disposition == nullptr)
        return;
    if (g_mime_content_disposition_is_attachment(disposition.get()))
        part->PartDisposition = Disposition::Attachment;
    else if (g_ascii_strcasecmp(g_mime_content_disposition_get_disposition(disposition.get()), "inline") == 0)
        part->PartDisposition = Disposition::Inline;
    const QString name = Parameter(g_mime_content_disposition_get_parameter(disposition.get(), "filename"));
    if (!name.isEmpty())
        part->FileName = name;
}

QByteArray RawHeader(GMimeObject* object, const char* name)
{
    GMimeHeader* header = g_mime_header_list_get_header(g_mime_object_get_header_list(object), name);
    return header == nullptr ? QByteArray() : QByteArray(g_mime_header_get_raw_value(header));
}

GMimeContentEncoding EncodingNamed(const QByteArray& value)
{
    return g_mime_content_encoding_from_string(value.trimmed().constData());
}

/// Where the object's own header begins; negative when it has none.
qsizetype FirstHeaderOffset(GMimeObject* object)
{
    GMimeHeaderList* headers = g_mime_object_get_header_list(object);
    return g_mime_header_list_get_count(headers) == 0
               ? -1
               : static_cast<qsizetype>(g_mime_header_get_offset(g_mime_header_list_get_header_at(headers, 0)));
}

/// A part without any header begins with the empty line in front of its content.
qsizetype BeginWithoutHeader(QByteArrayView octets, qsizetype contentBegin)
{
    return WithoutLineBreak(octets, 0, contentBegin);
}

bool IsBodyType(const QByteArray& type)
{
    return type == "text/plain" || type == "text/html" || type == "text/enriched" || type == "text/richtext";
}

ObjectPointer<GMimeFilter> DecodingFilter(GMimeContentEncoding encoding)
{
    return ObjectPointer<GMimeFilter>(g_mime_filter_basic_new(encoding, FALSE));
}

/// Base64 is undone without GMime, which up to 3.2.13 stops at the first padding: some mailers encode a file in pieces
/// and pad each one. Hands the pieces over.
template <typename Take>
void ForEachBase64Piece(QByteArrayView encoded, Take take)
{
    while (!encoded.isEmpty()) {
        const qsizetype padding = encoded.indexOf('=');
        const qsizetype length = padding < 0 ? encoded.size() : padding + 1;
        take(encoded.first(length));
        encoded = encoded.sliced(length);
    }
}

bool IsBase64Digit(char c)
{
    return g_ascii_isalnum(c) || c == '+' || c == '/';
}

bool UsesFilter(GMimeContentEncoding encoding)
{
    return encoding == GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE || encoding == GMIME_CONTENT_ENCODING_UUENCODE;
}

QByteArrayView EncodedContent(QByteArrayView octets, const BodyPart& part)
{
    return octets.sliced(part.ContentBegin, part.ContentEnd - part.ContentBegin);
}

QByteArray CString(QByteArray value)
{
    return value.replace('\0', ' ');
}

} // namespace

BodyParts::BodyParts(QByteArrayView octets, const HeaderBlock& block)
{
    const QByteArray contentType = CString(block.Value(octets, "Content-Type"));
    if (!contentType.trimmed().toLower().startsWith("multipart/") || !AddMultiparts(octets, block))
        AddMessageAsLeaf(octets, block, contentType);
    Classify();
}

void BodyParts::AddMessageAsLeaf(QByteArrayView octets, const HeaderBlock& block, const QByteArray& contentType)
{
    BodyPart part;
    part.Encoding = EncodingNamed(CString(block.Value(octets, "Content-Transfer-Encoding")));
    TakeType(contentType, &part);
    TakeDisposition(CString(block.Value(octets, "Content-Disposition")), &part);
    // A multipart in which no part can be found is shown as the text that it is.
    if (part.ContentType.startsWith("multipart/"))
        part.ContentType = "text/plain";
    part.ContentID = WithoutBrackets(CString(block.Value(octets, "Content-ID")).constData());
    part.HeaderBegin = block.Begin();
    part.ContentBegin = block.BodyBegin();
    part.ContentEnd = octets.size();
    Leaves_.append(part);
}

bool BodyParts::AddMultiparts(QByteArrayView octets, const HeaderBlock& block)
{
    if (!block.IsTerminated())
        return false;
    const QByteArray value = CString(block.Value(octets, "Content-Type"));
    const ObjectPointer<GMimeContentType> type(g_mime_content_type_parse(ParserOptions(), value.constData()));
    const char* boundary = g_mime_content_type_get_parameter(type.get(), "boundary");
    // GMime keeps a copy of what stands before the first boundary, which would be all of it.
    if (boundary == nullptr || FindBoundaryLine(octets, block.BodyBegin(), {QByteArray(boundary)}) < 0)
        return false;

    const OctetStream stream(octets);
    g_mime_stream_seek(stream.Stream(), block.Begin(), GMIME_STREAM_SEEK_SET);
    const ObjectPointer<GMimeParser> parser(g_mime_parser_new_with_stream(stream.Stream()));
    const ObjectPointer<GMimeObject> object(g_mime_parser_construct_part(parser.get(), ParserOptions()));
    if (object == nullptr || !GMIME_IS_MULTIPART(object.get()))
        return false;
    AddObject(octets, object.get(), None);
    return !Leaves_.isEmpty();
}

/// GMime's parser bounds the depth.
void BodyParts::AddObject(QByteArrayView octets, GMimeObject* object, int parent)
{
    GMimeContentType* type = g_mime_object_get_content_type(object);
    const int count = GMIME_IS_MULTIPART(object) ? g_mime_multipart_get_count(GMIME_MULTIPART(object)) : 0;
    if (count > 0) {
        const int self = static_cast<int>(Multiparts_.size());
        Multiparts_.append({TypeName(type), QByteArray(g_mime_content_type_get_parameter(type, "boundary")),
                            FirstHeaderOffset(object), parent});
        for (int i = 0; i < count; ++i)
            AddObject(octets, g_mime_multipart_get_part(GMIME_MULTIPART(object), i), self);
        return;
    }

    BodyPart part;
    part.Parent = parent;
    part.HeaderBegin = FirstHeaderOffset(object);
    part.ContentID = WithoutBrackets(g_mime_object_get_content_id(object));
    // A part of a digest is a message without saying so.
    const QByteArray contentType = RawHeader(object, "Content-Type");
    if (contentType.isNull())
        TakeType(type, &part);
    else
        TakeType(contentType, &part);
    TakeDisposition(RawHeader(object, "Content-Disposition"), &part);
    if (GMIME_IS_MULTIPART(object) || GMIME_IS_MESSAGE_PART(object))
        AddUndivided(octets, object, part);
    else
        AddLeaf(octets, object, part);
}

void BodyParts::AddLeaf(QByteArrayView octets, GMimeObject* object, BodyPart part)
{
    GMimeDataWrapper* content = GMIME_IS_PART(object) ? g_mime_part_get_content(GMIME_PART(object)) : nullptr;
    if (content == nullptr)
        return;
    const GMimeStream* stream = g_mime_data_wrapper_get_stream(content);
    part.Encoding = g_mime_data_wrapper_get_encoding(content);
    part.ContentBegin = qBound<qsizetype>(0, static_cast<qsizetype>(stream->bound_start), octets.size());
    part.ContentEnd = ContentEnd(octets, part.ContentBegin,
                                 qBound(part.ContentBegin, static_cast<qsizetype>(stream->bound_end), octets.size()));
    if (part.HeaderBegin < 0)
        part.HeaderBegin = BeginWithoutHeader(octets, part.ContentBegin);
    Leaves_.append(part);
}

/// GMime has taken an enclosed message apart, or found nothing in a multipart (which is then shown as the text that it
/// is). Here either is one part, whose octets run to the next boundary around it.
void BodyParts::AddUndivided(QByteArrayView octets, GMimeObject* object, BodyPart part)
{
    const QList<QByteArray> boundaries = EnclosingBoundaries(part.Parent);
    if (part.HeaderBegin < 0) {
        GMimeMessage* enclosed =
            GMIME_IS_MESSAGE_PART(object) ? g_mime_message_part_get_message(GMIME_MESSAGE_PART(object)) : nullptr;
        part.ContentBegin = enclosed == nullptr ? -1 : FirstHeaderOffset(GMIME_OBJECT(enclosed));
        if (part.ContentBegin < 0)
            return;
        part.HeaderBegin = BeginWithoutHeader(octets, part.ContentBegin);
    }
    const qsizetype boundary = FindBoundaryLine(octets, part.HeaderBegin, boundaries);
    const QByteArrayView upToBoundary = boundary < 0 ? octets : octets.first(boundary);
    part.ContentBegin = HeaderBlock(upToBoundary, part.HeaderBegin).BodyBegin();
    part.ContentEnd = boundary < 0 ? octets.size() : WithoutLineBreak(octets, part.ContentBegin, boundary);
    part.Encoding = GMIME_CONTENT_ENCODING_BINARY;
    if (GMIME_IS_MULTIPART(object)) {
        part.ContentType = "text/plain";
        part.Encoding = EncodingNamed(RawHeader(object, "Content-Transfer-Encoding"));
    }
    Leaves_.append(part);
}

void BodyParts::Classify()
{
    // A body has no name, but where no other is to be had, one with a name serves.
    for (const bool isNamed : {false, true}) {
        for (int i = 0; i < Leaves_.size(); ++i) {
            const BodyPart& part = Leaves_.at(i);
            if (part.PartDisposition == Disposition::Attachment || part.FileName.isEmpty() == isNamed)
                continue;
            if (Text_ == None && part.ContentType == "text/plain")
                Text_ = i;
            if (Html_ == None && part.ContentType == "text/html")
                Html_ = i;
        }
    }
    for (int i = 0; i < Leaves_.size(); ++i) {
        const BodyPart& part = Leaves_.at(i);
        const bool isNamelessBody =
            part.PartDisposition != Disposition::Attachment && part.FileName.isEmpty() && IsBodyType(part.ContentType);
        if (i != Text_ && i != Html_ && !isNamelessBody)
            Files_.append(i);
    }
}

QList<QByteArray> BodyParts::EnclosingBoundaries(int multipart) const
{
    QList<QByteArray> boundaries;
    for (int i = multipart; i != None; i = Multiparts_.at(i).Parent)
        boundaries.append(Multiparts_.at(i).Boundary);
    return boundaries;
}

int BodyParts::OutermostProtection(int multipart) const
{
    int outermost = None;
    for (int i = multipart; i != None; i = Multiparts_.at(i).Parent) {
        const QByteArray& type = Multiparts_.at(i).ContentType;
        if (type == "multipart/signed" || type == "multipart/encrypted")
            outermost = i;
    }
    return outermost;
}

qsizetype BodyParts::EndOf(QByteArrayView octets, int multipart) const
{
    const Multipart& part = Multiparts_.at(multipart);
    if (part.Parent == None)
        return octets.size();
    const qsizetype boundary = FindBoundaryLine(octets, part.HeaderBegin, EnclosingBoundaries(part.Parent));
    return boundary < 0 ? octets.size() : WithoutLineBreak(octets, part.HeaderBegin, boundary);
}

bool IsBoundaryLine(QByteArrayView line, const QList<QByteArray>& boundaries)
{
    if (!line.startsWith("--"))
        return false;
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    return std::any_of(boundaries.begin(), boundaries.end(), [&](const QByteArray& boundary) {
        QByteArrayView rest = line.sliced(2);
        if (!rest.startsWith(boundary))
            return false;
        rest = rest.sliced(boundary.size());
        if (rest.startsWith("--"))
            rest = rest.sliced(2);
        return std::all_of(rest.begin(), rest.end(), isBlank);
    });
}

qsizetype FindBoundaryLine(QByteArrayView octets, qsizetype begin, const QList<QByteArray>& boundaries)
{
    while (begin < octets.size()) {
        const qsizetype lineFeed = octets.indexOf('\n', begin);
        const qsizetype end = lineFeed < 0 ? octets.size() : lineFeed + 1;
        if (IsBoundaryLine(octets.sliced(begin, end - begin), boundaries))
            return begin;
        begin = end;
    }
    return -1;
}

QByteArray DecodedContent(QByteArrayView octets, const BodyPart& part)
{
    const QByteArrayView encoded = EncodedContent(octets, part);
    if (UsesFilter(part.Encoding))
        return Filtered(encoded, DecodingFilter(part.Encoding).get());
    if (part.Encoding != GMIME_CONTENT_ENCODING_BASE64)
        return encoded.toByteArray();
    QByteArray content;
    ForEachBase64Piece(encoded, [&content](QByteArrayView piece) {
        content.append(QByteArray::fromBase64(QByteArray::fromRawData(piece.data(), piece.size())));
    });
    return content;
}

DecodedText TextOf(QByteArrayView octets, const BodyPart& part)
{
    // A large body that is not encoded needs no copy of its octets.
    if (!UsesFilter(part.Encoding) && part.Encoding != GMIME_CONTENT_ENCODING_BASE64)
        return Decode(EncodedContent(octets, part), part.CharacterSet);
    return Decode(DecodedContent(octets, part), part.CharacterSet);
}

void ReadBody(QByteArrayView octets, const BodyPart& part, const std::function<bool(const QString& piece)>& take)
{
    // Carriage returns at a piece's end belong to the line feed that the next one may begin with.
    QString held;
    const auto takePiece = [&](const QString& piece) {
        QString text = held + piece;
        qsizetype end = text.size();
        while (end > 0 && text.at(end - 1) == u'\r')
            --end;
        held = text.sliced(end);
        text.truncate(end);
        return take(WithPlainLineEnds(text));
    };
    const bool isEncoded = UsesFilter(part.Encoding) || part.Encoding == GMIME_CONTENT_ENCODING_BASE64;
    const bool wasTaken = isEncoded ? DecodeInPieces(DecodedContent(octets, part), part.CharacterSet, takePiece)
                                    : DecodeInPieces(EncodedContent(octets, part), part.CharacterSet, takePiece);
    if (wasTaken && !held.isEmpty())
        take(held);
}

qint64 DecodedSize(QByteArrayView octets, const BodyPart& part)
{
    const QByteArrayView encoded = EncodedContent(octets, part);
    if (UsesFilter(part.Encoding))
        return FilteredSize(encoded, DecodingFilter(part.Encoding).get());
    if (part.Encoding != GMIME_CONTENT_ENCODING_BASE64)
        return encoded.size();
    qint64 size = 0;
    ForEachBase64Piece(encoded, [&size](QByteArrayView piece) {
        size += std::count_if(piece.begin(), piece.end(), IsBase64Digit) * 6 / 8;
    });
    return size;
}

bool IsInline(const BodyPart& part, const QString& html)
{
    if (part.PartDisposition == Disposition::Inline)
        return true;
    if (part.ContentID.isEmpty())
        return false;
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(part.ContentID, "@"));
    return html.contains(QStringLiteral("cid:") + part.ContentID, Qt::CaseInsensitive) ||
           html.contains(QStringLiteral("cid:") + encoded, Qt::CaseInsensitive);
}

} // namespace cdo
