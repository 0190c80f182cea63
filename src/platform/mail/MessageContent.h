#pragma once

#include "platform/mail/BodyEdits.h"
#include "platform/mail/Message.h"

#include <QHash>

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

    /// The leaf of one attachment; null when there is no such index.
    const BodyPart* File(int index);
    const BodyPart* PartByID(const QString& contentID);
    bool IsInline(const BodyPart& part, const QString& html) const;

    /// -1 low, 0 normal, 1 high.
    int Priority();

    QHash<QString, QVariant> Fields; ///< Values set by name, the names in lower case.

private:
    void AddBody(BodyKind kind, const QString& text);

    QByteArray Octets_;
    std::optional<HeaderBlock> Header_;
    std::optional<BodyParts> Parts_;
};

} // namespace cdo
