// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/BodyEdits.h"

/// The pieces that new MIME structure is made of. An entity is the header and content of one part, without the line
/// break behind it.
namespace cdo
{

enum class Placement
{
    Before,
    Behind,
    Alone
};

/// Whether a field of this name says something about the content.
bool DescribesContent(QByteArrayView name);

/// Content in a transfer encoding, its line ends as given; base64 and quoted-printable do not end in one of their own.
/// Content for all but base64 has "\n" as its line ends.
QByteArray TransferEncoded(const QByteArray& content, GMimeContentEncoding encoding, const QByteArray& lineBreak);

/// The content with the first octet of every line that would pass for a boundary replaced.
QByteArray WithoutBoundaryLines(const QByteArray& content, const QList<QByteArray>& boundaries,
                                const QByteArray& replacement);

/// A Content-Type field with the type and parameters of the old value, but for its character set, which is UTF-8.
QByteArray Utf8TypeField(const QByteArray& oldValue, BodyKind kind, const QByteArray& lineBreak);

/// A body in UTF-8 and quoted-printable, to stand between these boundaries.
QByteArray BodyEntity(BodyKind kind, const QString& text, const QByteArray& lineBreak,
                      const QList<QByteArray>& boundaries);

/// A file in base64; a message as it is, since a message must not be encoded.
QByteArray FileEntity(const QString& fileName, const QByteArray& contentType, const QByteArray& content,
                      const QByteArray& lineBreak);

/// A boundary that stands in neither.
QByteArray NewBoundary(const QByteArray& octets, const QByteArray& entity);

/// A multipart of an old and a new entity (or of the new one alone), itself an entity.
QByteArray Wrapped(const QByteArray& subtype, const QByteArray& old, Placement placement, const QByteArray& entity,
                   const QByteArray& boundary, const QByteArray& lineBreak);

/// The message with its content put into a multipart together with a new entity. The fields that describe the content
/// go with it, repeated ones as "X-Original-Content-..."; all others stay.
QByteArray WithMessageWrapped(const QByteArray& octets, const HeaderBlock& block, const QByteArray& subtype,
                              Placement placement, const QByteArray& entity);

/// The message with the type and encoding by which its only body was read, in front of those that it declared, which
/// stay as "X-Original-Content-...".
QByteArray WithDeclaration(const QByteArray& octets, const HeaderBlock& block, const BodyPart& part, BodyKind kind);

/// The message with the entity as its whole content, in place of what described the old one.
QByteArray WithOnlyBody(const QByteArray& octets, const HeaderBlock& block, const QByteArray& entity,
                        const QByteArray& lineBreak);

} // namespace cdo
