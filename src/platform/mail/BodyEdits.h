// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/BodyParts.h"

#include <QString>

/// Changes to a message's bodies and files. Each gives back the new octets and leaves all that it does not name as it
/// stands. The block and the parts are those of the octets; text has "\n" as its line ends.
namespace cdo
{

enum class BodyKind
{
    Text,
    Html
};

BodyKind Other(BodyKind kind);

/// The index of that body among the parts' leaves; BodyParts::None when there is none.
int BodyIndex(const BodyParts& parts, BodyKind kind);

/// The text of one part, with its line ends as "\n".
QString BodyText(QByteArrayView octets, const BodyPart& part);

/// The message with other text in that body. The part keeps its character set and transfer encoding: in HTML, what
/// the set lacks becomes a character reference, and so does the first "-" of a line that would pass for a boundary.
/// Where that is no way out (plain text, or a set that cannot be written) the part becomes UTF-8 in quoted-printable.
QByteArray WithBodyReplaced(const QByteArray& octets, const BodyParts& parts, BodyKind kind, const QString& text);

/// The message with a body of a kind that it does not have yet, in UTF-8 and quoted-printable: as an alternative beside
/// the other body, which stays where it is among the attachments; alone when there was no content. What is signed or
/// encrypted is not reached into: the new body stands beside the whole of it.
QByteArray WithBodyAdded(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts, BodyKind kind,
                         const QString& text);

/// The message with a new body in front of all that it held, in a multipart/mixed. What is broken cannot swallow it
/// there.
QByteArray WithBodyInFront(const QByteArray& octets, const HeaderBlock& block, BodyKind kind, const QString& text);

/// The message with one more file, behind those that it has.
QByteArray WithAttachment(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts,
                          const QString& fileName, const QByteArray& contentType, const QByteArray& content);

/// The message, when it is one body and no more, with a type that says how that body was read. Of a broken or
/// contradictory declaration other readers, and readers of parts, make something else; it stays as
/// "X-Original-Content-Type". Any other message comes back as it was.
QByteArray WithTypeAsRead(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts);

/// The message made anew of its bodies as they were shown, with the whole of the old one as a file: for what is so
/// broken that its parts are others as soon as anything is put beside them.
QByteArray WithWholeEnclosed(const QByteArray& octets, const HeaderBlock& block, const BodyParts& parts);

} // namespace cdo
