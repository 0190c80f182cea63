// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/BodyEdits.h"
#include "platform/mail/Message.h"

#include <QHash>

#include <functional>
#include <initializer_list>
#include <optional>

namespace cdo
{

/// The octets of a message and what was found in them so far: the header on its first use, the parts on theirs. Every
/// change of the octets drops both. Owned by its Message.
class Message::Content
{
public:
    const QByteArray& Octets() const { return Octets_; }
    void SetOctets(const QByteArray& octets);

    const HeaderBlock& Header();
    const BodyParts& Parts();

    QString Text(const QByteArray& name);
    void SetText(const QByteArray& name, const QString& text);

    QString Body(BodyKind kind);
    void SetBody(BodyKind kind, const QString& text);
    void AddFile(const QString& fileName, const QByteArray& contentType, const QByteArray& content);

    /// The leaf of one attachment; null when there is no such index.
    const BodyPart* File(int index);
    const BodyPart* PartByID(const QString& contentID);

    /// -1 low, 0 normal, 1 high.
    int Priority();

    QHash<QString, QVariant> Fields; ///< Values set by name, the names in lower case.

private:
    using Edit = std::function<QByteArray()>;
    using Mending = QByteArray (*)(const QByteArray&, const HeaderBlock&, const BodyParts&);

    /// Broken parts may swallow what is put into or beside them, or read otherwise once they stand inside others. So
    /// each edit is tried until the result is right: on the message as it is, and then on what is made of it, the
    /// lesser change first. The last depends on nothing that is broken, and stands.
    void Change(std::initializer_list<Edit> edits, const std::function<bool()>& isRight);

    QByteArray Octets_;
    std::optional<HeaderBlock> Header_;
    std::optional<BodyParts> Parts_;
};

} // namespace cdo
