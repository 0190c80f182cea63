// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QVariant>

#include <memory>

namespace cdo
{

/// A part of a message that is a file: an attachment, an inline image, an enclosed message.
struct Attachment
{
    QString FileName;    ///< Decoded name as the sender gave it, empty when there is none. Never a safe path by itself.
    QString ContentType; ///< "image/png"; lower case.
    QString ContentID;   ///< Without its angle brackets, empty when there is none.
    qint64 Size = 0;     ///< Decoded octets.
    bool IsInline = false; ///< Disposition "inline", or referred to by content id from the HTML body.
};

/// The content of one e-mail or SMS: addresses, subject, bodies and attachments over the message's octets (RFC 5322,
/// RFC 2045 to 2049).
///
/// The octets are kept as they arrived. Reading parses on first need, headers before bodies, and changes nothing; a
/// setter rewrites only what it names, so that a message nobody changed gives back the octets it was made of. Broken
/// mail never throws: what cannot be read is empty, what cannot be decoded is shown as well as it goes, and Octets()
/// is whole all the same.
///
/// Owned by whoever made it; not copyable (use SetOctets(other.Octets()), which shares the storage). One thread at a
/// time.
class TOLVA_EXPORT Message
{
public:
    Message();
    explicit Message(const QByteArray& octets);
    ~Message();
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    /// The whole message, octet by octet. Empty for a message in which nothing was set. Shared, not copied.
    QByteArray Octets() const;
    /// Replaces the whole message; what was parsed of the old one is dropped.
    void SetOctets(const QByteArray& octets);

    /// Decoded header text (RFC 2047), unfolded, on one line; empty when the header is absent. Addresses stand as
    /// the header has them: "Name <address>, address". A header that stands twice: the first counts.
    QString From() const;
    QString To() const;
    QString CC() const;
    QString BCC() const;
    QString ReplyTo() const;
    QString Subject() const;
    QString MessageID() const;
    /// The Sender header, and when there is none the first From mailbox (RFC 5322, 3.6.2).
    QString Sender() const;

    /// Setting encodes what needs encoding and writes that one header; an empty text removes it. Line breaks in the
    /// text become blanks, so that no value can add a header.
    void SetFrom(const QString& text);
    void SetTo(const QString& text);
    void SetCC(const QString& text);
    void SetBCC(const QString& text);
    void SetReplyTo(const QString& text);
    void SetSubject(const QString& text);

    /// Any header by name, decoded as above; empty when absent.
    QString Header(const QByteArray& name) const;
    void SetHeader(const QByteArray& name, const QString& text);

    /// The Date header and the newest (topmost readable) Received header's date, in universal time; invalid when
    /// absent or no date.
    QDateTime SentOn() const;
    QDateTime ReceivedTime() const;
    void SetSentOn(const QDateTime& time);

    /// The plain text body with line ends as "\n"; of several text parts that are no attachments the first counts.
    /// Empty when there is none.
    QString TextBody() const;
    void SetTextBody(const QString& text);

    /// The HTML body; empty when there is none. Setting replaces the content of the HTML part (its character set and
    /// transfer encoding stay; what the set cannot hold becomes a character reference), and on a message without
    /// one adds it as an alternative beside the text. Setting what is there already changes nothing, and setting
    /// an empty one on a message without HTML changes nothing.
    QString HTMLBody() const;
    void SetHTMLBody(const QString& html);

    /// Files in the order of the message. Nested parts are walked; a message/rfc822 part is one attachment.
    QList<Attachment> Attachments() const;
    /// The decoded octets of one attachment; empty when there is no such index.
    QByteArray AttachmentContent(int index) const;
    void AddAttachment(const QString& fileName, const QByteArray& contentType, const QByteArray& content);
    /// The decoded octets of the part with this Content-ID (RFC 2392), its type in contentType; null when absent.
    QByteArray ContentByID(const QString& contentID, QString* contentType = nullptr) const;

    /// A named field that is not part of the mail: "urn:schemas:httpmail:priority" (-1 low, 0, 1 high; from
    /// Importance, X-Priority or Priority) and whatever was set under other names. Invalid when there is no such
    /// field.
    QVariant Field(const QString& name) const;
    void SetField(const QString& name, const QVariant& value);

    /// A field of the configuration: "urn:schemas:calendar:timezoneid" is non-zero, which says that the two
    /// dates are universal time. Invalid when there is no such field.
    QVariant ConfigurationField(const QString& name) const;

private:
    class Content;
    std::unique_ptr<Content> Content_;
};

} // namespace cdo
