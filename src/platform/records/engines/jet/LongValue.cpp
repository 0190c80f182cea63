// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/LongValue.h"

#include "platform/records/engines/jet/DataPage.h"

namespace dao::jet
{

namespace
{

constexpr int ReferenceSize = 12;
constexpr quint32 SizeMask = 0x3FFFFFFF;
constexpr int KindShift = 30;

QByteArray ReadPiece(PageFile& file, const RowPlace& place)
{
    const DataPage page(file, place.Page);
    if (page.Owner() != LongOwner)
        throw Fault(QStringLiteral("a long value is said to stand on page %1, which holds none").arg(place.Page));
    const DataPage::Slot slot = page.SlotAt(place.Row);
    if (slot.Flags != 0)
        throw Fault(QStringLiteral("a long value is said to stand in row %1 of page %2, which was given up")
                        .arg(place.Row)
                        .arg(place.Page));
    return page.RowAt(slot).Copy();
}

QByteArray ReadChain(PageFile& file, const LongReference& reference, std::vector<RowPlace>& pieces)
{
    QByteArray value;
    value.reserve(reference.Size);
    for (RowPlace place = reference.First; place.Pointer() != 0;) {
        const QByteArray piece = ReadPiece(file, place);
        pieces.push_back(place);
        const OctetView octets(piece);
        // Each piece brings something, and all no more than was announced: so a ring of them ends.
        if (octets.Size() <= 4 || octets.Size() - 4 > qsizetype(reference.Size) - value.size())
            throw Fault(QStringLiteral("the pieces of a long value on page %1 do not fit together").arg(place.Page));
        value.append(octets.Data() + 4, octets.Size() - 4);
        place = RowPlace::FromPointer(octets.U32(0));
    }
    return value;
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
    QByteArray value;
    if (reference.Where == LongReference::Place::Inline) {
        value = reference.InlineOctets.Copy();
    } else if (qint64(reference.Size) > qint64(file.PageCount()) * PageSize) {
        throw Fault(QStringLiteral("a long value is said to be longer than the file"));
    } else if (reference.Where == LongReference::Place::OneRow) {
        value = ReadPiece(file, reference.First);
        places.push_back(reference.First);
    } else {
        value = ReadChain(file, reference, places);
    }
    if (value.size() != qsizetype(reference.Size))
        throw Fault(QStringLiteral("a long value has another length than is said of it"));
    if (pieces != nullptr)
        *pieces = std::move(places);
    return value;
}

} // namespace dao::jet
