// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QList>

namespace cdo
{

/// Where one header field stands in the octets: its name, its value with the folding, and the line break that ends it.
struct HeaderField
{
    qsizetype Begin = 0;
    qsizetype NameEnd = 0;
    qsizetype ValueBegin = 0;
    qsizetype End = 0;
};

/// Where the header of a message or of a part stands in its octets. It is found by its lines alone, nothing is decoded
/// and nothing behind it is looked at, so that a list of messages costs no more than their headers. A plain value; the
/// octets stay with their owner and are handed in again where they are needed.
///
/// The header ends at the first empty line. Lines in it that are no fields are passed over. Where no empty line comes
/// at all, it ends before the first line that is no field, since that must be the text. An mbox "From " line in front
/// belongs to no field.
class HeaderBlock
{
public:
    HeaderBlock() = default;
    explicit HeaderBlock(QByteArrayView octets, qsizetype begin = 0);

    const QList<HeaderField>& Fields() const { return Fields_; }
    /// Where the first field begins.
    qsizetype Begin() const { return Begin_; }
    /// Where a further field can be put in.
    qsizetype End() const { return End_; }
    /// The first octet behind the empty line.
    qsizetype BodyBegin() const { return BodyBegin_; }
    /// Whether the empty line is there.
    bool IsTerminated() const { return BodyBegin_ > End_; }

    /// The first field of this name, whatever its case; null when there is none.
    const HeaderField* Find(QByteArrayView octets, QByteArrayView name) const;
    /// The value of the first field of this name as it stands, with its folding; empty when there is none.
    QByteArray Value(QByteArrayView octets, QByteArrayView name) const;
    static QByteArrayView Name(QByteArrayView octets, const HeaderField& field);
    static QByteArray Value(QByteArrayView octets, const HeaderField& field);

private:
    QList<HeaderField> Fields_;
    qsizetype Begin_ = 0;
    qsizetype End_ = 0;
    qsizetype BodyBegin_ = 0;
};

/// The line break that these octets use, "\r\n" or "\n"; fallback when they have none.
QByteArray LineBreakOf(QByteArrayView octets, const QByteArray& fallback = QByteArrayLiteral("\r\n"));

/// The octets with this field (name, value, line breaks) in the place of the first one of its name, or at the end of
/// the header. Everything else stays as it is, but a missing empty line behind the header is added.
QByteArray WithField(const QByteArray& octets, const HeaderBlock& block, QByteArrayView name, const QByteArray& field);

/// The octets without any field of this name.
QByteArray WithoutField(const QByteArray& octets, const HeaderBlock& block, QByteArrayView name);

} // namespace cdo
