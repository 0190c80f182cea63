// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/BodyEdits.h"

#include "platform/Ascii.h"
#include "platform/mail/CharacterSets.h"
#include "platform/mail/MimeWriter.h"

#include <algorithm>
#include <optional>

namespace cdo
{

namespace
{

/// Deeper than this no new body is put, since a reader may not look there.
constexpr qsizetype DeepestPlace = 100;

QByteArray Spliced(const QByteArray& octets, qsizetype begin, qsizetype end, const QByteArray& replacement)
{
    QByteArray result;
    result.reserve(octets.size() - (end - begin) + replacement.size());
    result.append(octets.constData(), begin);
    result.append(replacement);
    return result.append(octets.constData() + end, octets.size() - end);
}

/// The same for what ends where a part ends. An empty part can be followed by a boundary without a line break between.
QByteArray SplicedPart(const QByteArray& octets, qsizetype begin, qsizetype end, const QByteArray& replacement)
{
    const bool isAtBoundary = end < octets.size() && octets.at(end) != '\r' && octets.at(end) != '\n';
    return Spliced(octets, begin, end, isAtBoundary ? replacement + LineBreakOf(octets) : replacement);
}

bool IsSevenBit(const BodyPart& part)
{
    return part.Encoding == GMIME_CONTENT_ENCODING_7BIT || part.Encoding == GMIME_CONTENT_ENCODING_DEFAULT;
}

/// Text that a character set holds, and its octets in it.
struct CodedText
{
    QString Text;
    QByteArray Octets;
};

/// A mail that was cut off in the header of its last part has no empty line there to put content behind.
QByteArray WithHeaderEnded(const QByteArray& octets, BodyPart* part)
{
    const bool isCutOff = part->ContentBegin == octets.size() && !HeaderBlock(octets, part->HeaderBegin).IsTerminated();
    if (!isCutOff)
        return octets;
    const QByteArray lineBreak = LineBreakOf(octets);
    const QByteArray ended = octets + (octets.endsWith('\n') ? lineBreak : lineBreak + lineBreak);
    part->ContentBegin = part->ContentEnd = ended.size();
    return ended;
}

/// The text in the set, with references for what it lacks where the kind of body allows them; nothing otherwise.
std::optional<CodedText> InCharacterSet(const QString& text, const QByteArray& characterSet, BodyKind kind,
                                        bool mustBeAscii)
{
    const auto coded = [&](const QString& form) -> std::optional<CodedText> {
        const std::optional<QByteArray> octets = Encode(form, characterSet);
        if (!octets || (mustBeAscii && !IsAscii(*octets)))
            return std::nullopt;
        return CodedText{form, *octets};
    };
    std::optional<CodedText> result = coded(text);
    if (!result && kind == BodyKind::Html)
        result = coded(WithReferences(text, characterSet));
    if (!result && kind == BodyKind::Html)
        result = coded(WithReferences(text, QByteArrayLiteral("us-ascii")));
    return result;
}

/// The new content as it stands in the part; nothing when the part as declared cannot hold it.
std::optional<QByteArray> ContentInPart(const QByteArray& octets, const BodyPart& part,
                                        const QList<QByteArray>& boundaries, BodyKind kind, const QString& text)
{
    if (part.Encoding == GMIME_CONTENT_ENCODING_UUENCODE)
        return std::nullopt;
    const QByteArray old = DecodedContent(octets, part);
    const QByteArray characterSet = Decode(old, part.CharacterSet).CharacterSet;
    const bool isBase64 = part.Encoding == GMIME_CONTENT_ENCODING_BASE64;
    const QString lines =
        isBase64 ? QString(text).replace(QStringLiteral("\n"), QString::fromLatin1(LineBreakOf(old))) : text;
    const std::optional<CodedText> coded = InCharacterSet(lines, characterSet, kind, IsSevenBit(part) && IsAscii(old));
    if (!coded)
        return std::nullopt;

    const QByteArray lineBreak = LineBreakOf(octets);
    QByteArray content = TransferEncoded(coded->Octets, part.Encoding, lineBreak);
    // What the part declares must lead a reader back to the very same text.
    BodyPart written = part;
    written.ContentBegin = 0;
    written.ContentEnd = content.size();
    if (BodyText(content, written) != WithPlainLineEnds(coded->Text))
        return std::nullopt;
    if (isBase64) {
        const bool endedTheLine = part.ContentEnd > part.ContentBegin && octets.at(part.ContentEnd - 1) == '\n';
        return endedTheLine ? content + lineBreak : content;
    }
    const bool isQuoted = part.Encoding == GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE;
    const QByteArray guarded = WithoutBoundaryLines(content, boundaries, isQuoted ? "=2D" : "&#45;");
    if (kind == BodyKind::Text && !isQuoted && guarded != content)
        return std::nullopt;
    return guarded;
}

/// The message with the part's content replaced and declared anew.
QByteArray WithPartRewritten(const QByteArray& octets, const BodyPart& part, const QList<QByteArray>& boundaries,
                             BodyKind kind, const QString& text)
{
    const QByteArray lineBreak = LineBreakOf(octets);
    const QByteArray content = WithoutBoundaryLines(
        TransferEncoded(text.toUtf8(), GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE, lineBreak), boundaries, "=2D");
    QByteArray result = SplicedPart(octets, part.ContentBegin, part.ContentEnd, content);

    HeaderBlock block(result, part.HeaderBegin);
    const QByteArray type = block.Value(result, "Content-Type");
    result = WithField(result, block, "Content-Type", Utf8TypeField(type, kind, lineBreak));
    block = HeaderBlock(result, part.HeaderBegin);
    return WithField(result, block, "Content-Transfer-Encoding",
                     "Content-Transfer-Encoding: quoted-printable" + lineBreak);
}

/// Where the entity that a new body goes beside begins and ends, when it is a part and not the message itself.
struct Entity
{
    qsizetype Begin = 0;
    qsizetype End = 0;
};

Entity EntityAround(const QByteArray& octets, const BodyParts& parts, const BodyPart& part, int protection)
{
    if (protection == BodyParts::None)
        return {part.HeaderBegin, part.ContentEnd};
    return {parts.Multiparts().at(protection).HeaderBegin, parts.EndOf(octets, protection)};
}

/// The message with a new body beside the other one.
QByteArray WithAlternative(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts,
                           const BodyPart& other, BodyKind kind, const QString& text)
{
    const QByteArray lineBreak = LineBreakOf(octets);
    const QByteArray entity = BodyEntity(kind, text, lineBreak, parts.EnclosingBoundaries(other.Parent));
    const int protection = parts.OutermostProtection(other.Parent);
    const int beside = protection == BodyParts::None ? other.Parent : parts.Multiparts().at(protection).Parent;
    const Placement placement = kind == BodyKind::Html ? Placement::Behind : Placement::Before;
    if (beside == BodyParts::None || parts.EnclosingBoundaries(beside).size() > DeepestPlace)
        return WithMessageWrapped(octets, block, "alternative", placement, entity);

    const Entity around = EntityAround(octets, parts, other, protection);
    const Multipart& parent = parts.Multiparts().at(beside);
    if (parent.ContentType == "multipart/alternative") {
        const QByteArray delimiter = "--" + parent.Boundary + lineBreak;
        return placement == Placement::Behind
                   ? SplicedPart(octets, around.End, around.End, lineBreak + delimiter + entity)
                   : Spliced(octets, around.Begin, around.Begin, entity + lineBreak + delimiter);
    }
    const QByteArray old = octets.sliced(around.Begin, around.End - around.Begin);
    return SplicedPart(octets, around.Begin, around.End,
                       Wrapped("alternative", old, placement, entity, NewBoundary(octets, entity), lineBreak));
}

/// Whether the header says more of the content than one type and one encoding.
bool HasFurtherContentFields(const QByteArray& octets, const HeaderBlock& block)
{
    int types = 0;
    int encodings = 0;
    int all = 0;
    for (const HeaderField& field : block.Fields()) {
        const QByteArrayView name = HeaderBlock::Name(octets, field);
        types += name.compare("Content-Type", Qt::CaseInsensitive) == 0 ? 1 : 0;
        encodings += name.compare("Content-Transfer-Encoding", Qt::CaseInsensitive) == 0 ? 1 : 0;
        all += DescribesContent(name) ? 1 : 0;
    }
    return types > 1 || encodings > 1 || all > types + encodings;
}

/// Whether there is nothing that a new body or file could push aside: no content, and no word about it.
bool HasNoContent(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts)
{
    const BodyPart& part = parts.Leaves().constFirst();
    return parts.Multiparts().isEmpty() && parts.Files().isEmpty() && !HasFurtherContentFields(octets, block) &&
           QByteArrayView(octets).sliced(part.ContentBegin, part.ContentEnd - part.ContentBegin).trimmed().isEmpty();
}

/// The outermost multipart when files and bodies can simply be put into it; null when it is of another kind.
const Multipart* OuterMixed(const BodyParts& parts)
{
    const bool isMixed =
        !parts.Multiparts().isEmpty() && parts.Multiparts().constFirst().ContentType == "multipart/mixed";
    return isMixed ? &parts.Multiparts().constFirst() : nullptr;
}

QByteArray WithFirstPart(const QByteArray& octets, const HeaderBlock& block, const Multipart& mixed,
                         const QByteArray& entity, const QByteArray& lineBreak)
{
    const qsizetype first = FindBoundaryLine(octets, block.BodyBegin(), {mixed.Boundary});
    return Spliced(octets, first, first, "--" + mixed.Boundary + lineBreak + entity + lineBreak);
}

QByteArray WithLastPart(const QByteArray& octets, const HeaderBlock& block, const Multipart& mixed,
                        const QByteArray& entity, const QByteArray& lineBreak)
{
    const QByteArray delimiter = "--" + mixed.Boundary;
    qsizetype line = FindBoundaryLine(octets, block.BodyBegin(), {mixed.Boundary});
    while (line >= 0) {
        if (QByteArrayView(octets).sliced(line).startsWith(delimiter + "--"))
            return Spliced(octets, line, line, delimiter + lineBreak + entity + lineBreak);
        const qsizetype lineFeed = octets.indexOf('\n', line);
        line = lineFeed < 0 ? -1 : FindBoundaryLine(octets, lineFeed + 1, {mixed.Boundary});
    }
    // The message was cut off before its end.
    return octets + lineBreak + delimiter + lineBreak + entity + lineBreak + delimiter + "--" + lineBreak;
}

} // namespace

BodyKind Other(BodyKind kind)
{
    return kind == BodyKind::Html ? BodyKind::Text : BodyKind::Html;
}

int BodyIndex(const BodyParts& parts, BodyKind kind)
{
    return kind == BodyKind::Html ? parts.Html() : parts.Text();
}

QString BodyText(QByteArrayView octets, const BodyPart& part)
{
    return WithPlainLineEnds(TextOf(octets, part).Text);
}

QByteArray WithBodyReplaced(const QByteArray& original, const BodyParts& parts, BodyKind kind, const QString& text)
{
    BodyPart part = parts.Leaves().at(BodyIndex(parts, kind));
    const QByteArray octets = WithHeaderEnded(original, &part);
    const QList<QByteArray> boundaries = parts.EnclosingBoundaries(part.Parent);
    if (const std::optional<QByteArray> content = ContentInPart(octets, part, boundaries, kind, text))
        return SplicedPart(octets, part.ContentBegin, part.ContentEnd, *content);
    return WithPartRewritten(octets, part, boundaries, kind, text);
}

QByteArray WithBodyAdded(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts, BodyKind kind,
                         const QString& text)
{
    const QByteArray lineBreak = LineBreakOf(octets);
    if (HasNoContent(octets, block, parts))
        return WithOnlyBody(octets, block, BodyEntity(kind, text, lineBreak, {}), lineBreak);
    const int other = BodyIndex(parts, Other(kind));
    if (other != BodyParts::None)
        return WithAlternative(octets, block, parts, parts.Leaves().at(other), kind, text);
    if (const Multipart* mixed = OuterMixed(parts))
        return WithFirstPart(octets, block, *mixed, BodyEntity(kind, text, lineBreak, {mixed->Boundary}), lineBreak);
    return WithBodyInFront(octets, block, kind, text);
}

QByteArray WithBodyInFront(const QByteArray& octets, const HeaderBlock& block, BodyKind kind, const QString& text)
{
    const QByteArray entity = BodyEntity(kind, text, LineBreakOf(octets), {});
    return WithMessageWrapped(octets, block, "mixed", Placement::Before, entity);
}

QByteArray WithTypeAsRead(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts)
{
    if (!parts.Multiparts().isEmpty())
        return octets;
    for (const BodyKind kind : {BodyKind::Text, BodyKind::Html}) {
        const int index = BodyIndex(parts, kind);
        if (index != BodyParts::None)
            return WithDeclaration(octets, block, parts.Leaves().at(index), kind);
    }
    return octets;
}

QByteArray WithWholeEnclosed(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts)
{
    const QByteArray lineBreak = LineBreakOf(octets);
    QByteArray bodies;
    for (const BodyKind kind : {BodyKind::Text, BodyKind::Html}) {
        const int index = BodyIndex(parts, kind);
        if (index == BodyParts::None)
            continue;
        const QByteArray shown = BodyEntity(kind, BodyText(octets, parts.Leaves().at(index)), lineBreak, {});
        bodies = bodies.isEmpty()
                     ? shown
                     : Wrapped("alternative", bodies, Placement::Behind, shown, NewBoundary(bodies, shown), lineBreak);
    }
    const QByteArray whole = FileEntity(QStringLiteral("original.eml"), "message/rfc822", octets, lineBreak);
    const Placement placement = bodies.isEmpty() ? Placement::Alone : Placement::Behind;
    const QByteArray content = Wrapped("mixed", bodies, placement, whole, NewBoundary(bodies, whole), lineBreak);
    return WithOnlyBody(octets, block, content + lineBreak, lineBreak);
}

QByteArray WithAttachment(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts,
                          const QString& fileName, const QByteArray& contentType, const QByteArray& content)
{
    const QByteArray lineBreak = LineBreakOf(octets);
    const QByteArray entity = FileEntity(fileName, contentType, content, lineBreak);
    if (HasNoContent(octets, block, parts))
        return WithMessageWrapped(octets, block, "mixed", Placement::Alone, entity);
    const Multipart* mixed = OuterMixed(parts);
    if (mixed != nullptr && FindBoundaryLine(entity, 0, {mixed->Boundary}) < 0)
        return WithLastPart(octets, block, *mixed, entity, lineBreak);
    return WithMessageWrapped(octets, block, "mixed", Placement::Behind, entity);
}

} // namespace cdo
