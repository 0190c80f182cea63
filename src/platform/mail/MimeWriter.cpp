// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/MimeWriter.h"

#include <QCryptographicHash>
#include <QSet>

#include <algorithm>

namespace cdo
{

namespace
{

/// The fields that go with the content. Of several of one name only the first counts, and readers of parts do not agree
/// on that, so the others go under a name that describes nothing. So do those whose names are taken already.
QByteArray ContentFields(const QByteArray& octets, const HeaderBlock& block, QSet<QByteArray> taken,
                         const QByteArray& lineBreak)
{
    QByteArray fields;
    for (const HeaderField& field : block.Fields()) {
        const QByteArray name = HeaderBlock::Name(octets, field).toByteArray().toLower();
        if (!DescribesContent(name))
            continue;
        if (taken.contains(name))
            fields.append("X-Original-");
        taken.insert(name);
        fields.append(octets.constData() + field.Begin, field.End - field.Begin);
        if (!fields.endsWith('\n'))
            fields.append(lineBreak);
    }
    return fields;
}

/// Everything in front of the empty line, but with these fields instead of those that describe the content.
QByteArray HeaderWith(const QByteArray& octets, const HeaderBlock& block, const QByteArray& contentFields,
                      const QByteArray& lineBreak)
{
    QByteArray header;
    qsizetype kept = 0;
    qsizetype insertAt = -1;
    for (const HeaderField& field : block.Fields()) {
        if (!DescribesContent(HeaderBlock::Name(octets, field)))
            continue;
        header.append(octets.constData() + kept, field.Begin - kept);
        kept = field.End;
        if (insertAt < 0)
            insertAt = header.size();
    }
    header.append(octets.constData() + kept, block.End() - kept);
    if (!header.isEmpty() && !header.endsWith('\n'))
        header.append(lineBreak);
    QByteArray fields = contentFields;
    if (block.Find(octets, "MIME-Version") == nullptr)
        fields.prepend("MIME-Version: 1.0" + lineBreak);
    return header.insert(insertAt < 0 ? header.size() : insertAt, fields);
}

/// GMime's header text has "\n" at its line ends.
QByteArray HeaderText(GMimeObject* object, const QByteArray& lineBreak)
{
    const TextPointer text(g_mime_object_get_headers(object, FormatOptions()));
    return QByteArray(text.get()).replace("\n", lineBreak);
}

bool IsToken(QByteArrayView text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](char c) {
        return g_ascii_isalnum(c) || QByteArrayView("!#$&-^_.+").contains(c);
    });
}

/// "type/subtype" taken apart; a type that is none counts as plain octets, and so does a multipart, whose parts these
/// octets are not.
std::pair<QByteArray, QByteArray> TypeAndSubtype(const QByteArray& contentType)
{
    const QByteArray name = contentType.split(';').constFirst().trimmed().toLower();
    const qsizetype slash = name.indexOf('/');
    const QByteArray type = name.left(qMax<qsizetype>(slash, 0));
    const QByteArray subtype = name.mid(slash + 1);
    if (!IsToken(type) || !IsToken(subtype) || type == "multipart")
        return {"application", "octet-stream"};
    return {type, subtype};
}

/// A Content-Type field with the type and parameters of the old value, but for its character set.
QByteArray TypeField(const QByteArray& oldValue, BodyKind kind, const QByteArray& characterSet,
                     const QByteArray& lineBreak)
{
    const char* subtype = kind == BodyKind::Html ? "html" : "plain";
    const QByteArray value = QByteArray(oldValue).replace('\0', ' ');
    ObjectPointer<GMimeContentType> type(g_mime_content_type_parse(ParserOptions(), value.constData()));
    if (!g_mime_content_type_is_type(type.get(), "text", subtype))
        type.reset(g_mime_content_type_new("text", subtype));
    g_mime_content_type_set_parameter(type.get(), "charset", characterSet.constData());
    const TextPointer encoded(g_mime_content_type_encode(type.get(), FormatOptions()));
    QByteArray field = QByteArray("Content-Type: ") + QByteArray(encoded.get()).trimmed() + '\n';
    return field.replace("\n", lineBreak);
}

} // namespace

bool DescribesContent(QByteArrayView name)
{
    return name.size() > 8 && name.first(8).compare("Content-", Qt::CaseInsensitive) == 0;
}

QByteArray TransferEncoded(const QByteArray& content, GMimeContentEncoding encoding, const QByteArray& lineBreak)
{
    QByteArray result = content;
    const bool isBase64 = encoding == GMIME_CONTENT_ENCODING_BASE64;
    if (isBase64 || encoding == GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE) {
        const ObjectPointer<GMimeFilter> filter(g_mime_filter_basic_new(encoding, TRUE));
        result = Filtered(content, filter.get());
        // What closes the encoder's last line is no part of the content.
        if (!isBase64 && result.endsWith("=\n"))
            result.chop(2);
        else if (result.endsWith('\n') && (isBase64 || !content.endsWith('\n')))
            result.chop(1);
    }
    return result.replace("\n", lineBreak);
}

QByteArray WithoutBoundaryLines(const QByteArray& content, const QList<QByteArray>& boundaries,
                                const QByteArray& replacement)
{
    QByteArray result;
    qsizetype kept = 0;
    qsizetype line = FindBoundaryLine(content, 0, boundaries);
    while (line >= 0) {
        result.append(content.constData() + kept, line - kept).append(replacement);
        kept = line + 1;
        const qsizetype lineFeed = content.indexOf('\n', line);
        line = lineFeed < 0 ? -1 : FindBoundaryLine(content, lineFeed + 1, boundaries);
    }
    return result.append(content.constData() + kept, content.size() - kept);
}

QByteArray Utf8TypeField(const QByteArray& oldValue, BodyKind kind, const QByteArray& lineBreak)
{
    return TypeField(oldValue, kind, "utf-8", lineBreak);
}

QByteArray BodyEntity(BodyKind kind, const QString& text, const QByteArray& lineBreak,
                      const QList<QByteArray>& boundaries)
{
    const QByteArray content = TransferEncoded(text.toUtf8(), GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE, lineBreak);
    return Utf8TypeField(QByteArray(), kind, lineBreak) + "Content-Transfer-Encoding: quoted-printable" + lineBreak +
           lineBreak + WithoutBoundaryLines(content, boundaries, "=2D");
}

QByteArray FileEntity(const QString& fileName, const QByteArray& contentType, const QByteArray& content,
                      const QByteArray& lineBreak)
{
    const auto [type, subtype] = TypeAndSubtype(contentType);
    const bool isMessage = type == "message";
    ParserOptions();
    const ObjectPointer<GMimePart> part(g_mime_part_new_with_type(type.constData(), subtype.constData()));
    QString name = fileName;
    for (QChar& c : name)
        c = c.unicode() < 0x20 || c.unicode() == 0x7F ? QChar(u' ') : c;
    g_mime_object_set_disposition(GMIME_OBJECT(part.get()), GMIME_DISPOSITION_ATTACHMENT);
    if (!name.isEmpty())
        g_mime_part_set_filename(part.get(), name.toUtf8().constData());
    g_mime_part_set_content_encoding(part.get(),
                                     isMessage ? GMIME_CONTENT_ENCODING_BINARY : GMIME_CONTENT_ENCODING_BASE64);
    return HeaderText(GMIME_OBJECT(part.get()), lineBreak) + lineBreak +
           (isMessage ? content : TransferEncoded(content, GMIME_CONTENT_ENCODING_BASE64, lineBreak));
}

QByteArray NewBoundary(const QByteArray& octets, const QByteArray& entity)
{
    // "=_" stands in no quoted-printable or base64 text, and the digest makes boundaries within boundaries differ.
    QCryptographicHash digest(QCryptographicHash::Sha1);
    digest.addData(octets);
    digest.addData(entity);
    QByteArray boundary;
    do {
        boundary = "=_" + digest.result().toHex().left(24);
        digest.addData(boundary);
    } while (octets.contains(boundary) || entity.contains(boundary));
    return boundary;
}

QByteArray Wrapped(const QByteArray& subtype, const QByteArray& old, Placement placement, const QByteArray& entity,
                   const QByteArray& boundary, const QByteArray& lineBreak)
{
    const QByteArray delimiter = "--" + boundary + lineBreak;
    QByteArray result = "Content-Type: multipart/" + subtype + "; boundary=\"" + boundary + '"' + lineBreak + lineBreak;
    if (placement != Placement::Behind)
        result.append(delimiter).append(entity).append(lineBreak);
    if (placement != Placement::Alone)
        result.append(delimiter).append(old).append(lineBreak);
    if (placement == Placement::Behind)
        result.append(delimiter).append(entity).append(lineBreak);
    return result.append("--" + boundary + "--");
}

QByteArray WithMessageWrapped(const QByteArray& octets, const HeaderBlock& block, const QByteArray& subtype,
                              Placement placement, const QByteArray& entity)
{
    const QByteArray lineBreak = LineBreakOf(octets);
    const QByteArray old = ContentFields(octets, block, {}, lineBreak) + lineBreak + octets.sliced(block.BodyBegin());
    const QByteArray wrapped =
        Wrapped(subtype, old, placement, entity, NewBoundary(octets, entity), lineBreak) + lineBreak;
    return WithOnlyBody(octets, block, wrapped, lineBreak);
}

QByteArray WithDeclaration(const QByteArray& octets, const HeaderBlock& block, const BodyPart& part, BodyKind kind)
{
    const QByteArray lineBreak = LineBreakOf(octets);
    const QByteArray characterSet = TextOf(octets, part).CharacterSet;
    QByteArray fields = TypeField(QByteArray(), kind, characterSet, lineBreak);
    if (const char* encoding = g_mime_content_encoding_to_string(part.Encoding))
        fields.append("Content-Transfer-Encoding: ").append(encoding).append(lineBreak);
    fields.append(ContentFields(octets, block, {"content-type", "content-transfer-encoding"}, lineBreak));
    return HeaderWith(octets, block, fields, lineBreak) + lineBreak + octets.sliced(block.BodyBegin());
}

QByteArray WithOnlyBody(const QByteArray& octets, const HeaderBlock& block, const QByteArray& entity,
                        const QByteArray& lineBreak)
{
    const qsizetype empty = entity.indexOf(lineBreak + lineBreak) + lineBreak.size();
    return HeaderWith(octets, block, entity.left(empty), lineBreak) + entity.mid(empty);
}

} // namespace cdo
