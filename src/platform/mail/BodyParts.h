// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/CharacterSets.h"
#include "platform/mail/GMimeSupport.h"
#include "platform/mail/HeaderBlock.h"

#include <QString>

#include <functional>

namespace cdo
{

enum class Disposition
{
    None,
    Inline,
    Attachment
};

/// A part that is no multipart: a body or a file.
struct BodyPart
{
    QByteArray ContentType;  ///< Lower case.
    QByteArray CharacterSet; ///< As declared.
    GMimeContentEncoding Encoding = GMIME_CONTENT_ENCODING_DEFAULT;
    Disposition PartDisposition = Disposition::None;
    QString FileName;
    QString ContentID;
    qsizetype HeaderBegin = 0;
    qsizetype ContentBegin = 0; ///< The encoded content lies from here
    qsizetype ContentEnd = 0;   ///< to here, without the line break that belongs to the boundary behind it.
    int Parent = -1;            ///< The multipart that it stands in; -1 for the message itself.
};

/// Disposition "inline", or referred to by its content id from the page.
bool IsInline(const BodyPart& part, const QString& html);

struct Multipart
{
    QByteArray ContentType; ///< Lower case.
    QByteArray Boundary;
    qsizetype HeaderBegin = 0;
    int Parent = -1;
};

/// The parts of a message by their places in its octets, found by GMime's parser over the octets in place. A plain
/// value; the octets stay with their owner. An enclosed message is one part, whatever it holds. A multipart in which no
/// part is found, or that is nested too deeply for GMime (1024), is one part of plain text.
class BodyParts
{
public:
    static constexpr int None = -1;

    BodyParts(QByteArrayView octets, const HeaderBlock& block);

    const QList<BodyPart>& Leaves() const { return Leaves_; }
    const QList<Multipart>& Multiparts() const { return Multiparts_; }
    /// Indices into Leaves(); None when there is no such body.
    int Text() const { return Text_; }
    int Html() const { return Html_; }
    /// The leaves that are files, in the order of the message.
    const QList<int>& Files() const { return Files_; }

    /// The boundaries that end a part which stands in this multipart.
    QList<QByteArray> EnclosingBoundaries(int multipart) const;
    /// The outermost signed or encrypted multipart around; None when there is none.
    int OutermostProtection(int multipart) const;
    /// Where a multipart's last octet ends.
    qsizetype EndOf(QByteArrayView octets, int multipart) const;

private:
    void AddMessageAsLeaf(QByteArrayView octets, const HeaderBlock& block, const QByteArray& contentType);
    bool AddMultiparts(QByteArrayView octets, const HeaderBlock& block);
    void AddObject(QByteArrayView octets, GMimeObject* object, int parent);
    void AddLeaf(QByteArrayView octets, GMimeObject* object, BodyPart part);
    void AddUndivided(QByteArrayView octets, GMimeObject* object, BodyPart part);
    void Classify();

    QList<BodyPart> Leaves_;
    QList<Multipart> Multiparts_;
    QList<int> Files_;
    int Text_ = None;
    int Html_ = None;
};

/// Whether a line would end a part that one of the boundaries encloses.
bool IsBoundaryLine(QByteArrayView line, const QList<QByteArray>& boundaries);

/// The begin of the first such line at or behind a line's begin; negative when there is none.
qsizetype FindBoundaryLine(QByteArrayView octets, qsizetype begin, const QList<QByteArray>& boundaries);

/// The part's content without its transfer encoding.
QByteArray DecodedContent(QByteArrayView octets, const BodyPart& part);
/// The same as text, with its line ends as they are.
DecodedText TextOf(QByteArrayView octets, const BodyPart& part);
/// The same with "\n" as line ends, piece by piece; false from take ends the reading.
void ReadBody(QByteArrayView octets, const BodyPart& part, const std::function<bool(const QString& piece)>& take);
qint64 DecodedSize(QByteArrayView octets, const BodyPart& part);

} // namespace cdo
