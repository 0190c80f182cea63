// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/LongValue.h"

#include "platform/records/engines/jet/DataPage.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr int ReferenceSize = 12;
constexpr quint32 SizeMask = 0x3FFFFFFF;
constexpr int KindShift = 30;

/// A row of long values, with the page that it stands on.
class LongPiece
{
public:
    LongPiece(PageFile& file, const RowPlace& place) : Page_(file, place.Page)
    {
        if (Page_.Owner() != LongOwner)
            throw Fault(QStringLiteral("a long value is said to stand on page %1, which holds none").arg(place.Page));
        const DataPage::Slot slot = Page_.SlotAt(place.Row);
        if (slot.Flags != 0)
            throw Fault(QStringLiteral("a long value is said to stand in row %1 of page %2, which was given up")
                            .arg(place.Row)
                            .arg(place.Page));
        Octets_ = Page_.RowAt(slot);
    }
    LongPiece(const LongPiece&) = delete;
    LongPiece& operator=(const LongPiece&) = delete;

    const OctetView& Octets() const { return Octets_; }

private:
    DataPage Page_;
    OctetView Octets_;
};

/// The pieces up to the one in which so many octets are reached.
QByteArray ReadChain(PageFile& file, const LongReference& reference, qsizetype mostOctets,
                     std::vector<RowPlace>& pieces)
{
    QByteArray value;
    value.reserve(std::min<qsizetype>(mostOctets, reference.Size));
    for (RowPlace place = reference.First; place.Pointer() != 0 && value.size() < mostOctets;) {
        const LongPiece piece(file, place);
        pieces.push_back(place);
        const OctetView& octets = piece.Octets();
        // Each piece brings something, and all no more than was announced: so a ring of them ends.
        if (octets.Size() <= 4 || octets.Size() - 4 > qsizetype(reference.Size) - value.size())
            throw Fault(QStringLiteral("the pieces of a long value on page %1 do not fit together").arg(place.Page));
        value.append(octets.Data() + 4, std::min(octets.Size() - 4, mostOctets - value.size()));
        place = RowPlace::FromPointer(octets.U32(0));
    }
    return value;
}

/// At least so many octets of a value, or all that are there.
QByteArray ReadAtLeast(PageFile& file, const LongReference& reference, qsizetype mostOctets,
                       std::vector<RowPlace>& pieces)
{
    if (reference.Where == LongReference::Place::Inline)
        return reference.InlineOctets.Copy();
    if (qint64(reference.Size) > qint64(file.PageCount()) * PageSize)
        throw Fault(QStringLiteral("a long value is said to be longer than the file"));
    if (reference.Where == LongReference::Place::Chain)
        return ReadChain(file, reference, mostOctets, pieces);
    pieces.push_back(reference.First);
    return LongPiece(file, reference.First).Octets().Copy();
}

[[noreturn]] void RaiseOtherLength()
{
    throw Fault(QStringLiteral("a long value has another length than is said of it"));
}

} // namespace

LongReference ReadLongReference(const OctetView& stored)
{
    const quint32 kindAndSize = stored.U32(0);
    LongReference reference;
    reference.Size = kindAndSize & SizeMask;
    reference.First = RowPlace::FromPointer(stored.U32(4));
    switch (kindAndSize >> KindShift) {
    case 0:
        reference.Where = LongReference::Place::Chain;
        break;
    case 1:
        reference.Where = LongReference::Place::OneRow;
        break;
    case 2:
        reference.InlineOctets = stored.Part(ReferenceSize, reference.Size);
        break;
    default:
        throw Fault(QStringLiteral("a long value is stored in a way that nobody knows"));
    }
    return reference;
}

QByteArray ReadLongValue(PageFile& file, const OctetView& stored, std::vector<RowPlace>* pieces)
{
    const LongReference reference = ReadLongReference(stored);
    std::vector<RowPlace> places;
    // One octet more than is announced: a chain is read to its end, whatever it says.
    QByteArray value = ReadAtLeast(file, reference, qsizetype(reference.Size) + 1, places);
    if (value.size() != qsizetype(reference.Size))
        RaiseOtherLength();
    if (pieces != nullptr)
        *pieces = std::move(places);
    return value;
}

LongBeginning ReadLongBeginning(PageFile& file, const OctetView& stored, qsizetype mostOctets)
{
    const LongReference reference = ReadLongReference(stored);
    const qsizetype size = std::min(mostOctets, qsizetype(reference.Size));
    std::vector<RowPlace> places;
    QByteArray value = ReadAtLeast(file, reference, size, places);
    const bool isInOneRow = reference.Where == LongReference::Place::OneRow;
    if (isInOneRow ? value.size() != qsizetype(reference.Size) : value.size() < size)
        RaiseOtherLength();
    value.truncate(size);
    return {std::move(value), size == qsizetype(reference.Size)};
}

} // namespace dao::jet
