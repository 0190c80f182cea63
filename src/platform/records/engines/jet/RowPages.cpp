// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/RowPages.h"

#include "platform/records/Error.h"
#include "platform/records/engines/jet/DataPage.h"
#include "platform/records/engines/jet/PageLayout.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr qsizetype LargestPiece = LargestLongRow - 4;
constexpr qsizetype LongestValue = 0x3FFFFFFF;
constexpr quint32 InOneRow = 0x40000000;
constexpr quint32 Inline = 0x80000000;

QByteArray Reference(quint32 kindAndSize, quint32 pointer)
{
    QByteArray reference;
    Append(reference, kindAndSize);
    Append(reference, pointer);
    Append(reference, quint32(0));
    return reference;
}

QByteArray Piece(quint32 next, const QByteArray& octets)
{
    QByteArray piece;
    Append(piece, next);
    return piece + octets;
}

} // namespace

RowPages::RowPages(PageWriter& pages, quint32 owner)
    : Pages_(pages), Owner_(owner), OwnedMap_(pages.AddMap()), FreeMap_(pages.AddMap())
{
}

RowPlace RowPages::Add(const QByteArray& row)
{
    if (Page_ != 0 && (row.size() + RowPageLayout::SlotSize > Room_ || Rows_.size() == MostRowsOfPage))
        WritePage();
    if (Page_ == 0) {
        Page_ = AllocateAlone();
        Room_ = PageSize - RowPageLayout::SlotsAt;
    }
    Rows_.push_back(row);
    Room_ -= row.size() + RowPageLayout::SlotSize;
    return {Page_, static_cast<quint8>(Rows_.size() - 1)};
}

quint32 RowPages::AllocateAlone()
{
    Owned_.push_back(Pages_.Allocate());
    return Owned_.back();
}

void RowPages::WriteAlone(quint32 page, const QByteArray& row)
{
    Pages_.Write(page, MakeDataPage(Owner_, {row}));
}

void RowPages::WritePage()
{
    Pages_.Write(Page_, MakeDataPage(Owner_, Rows_));
    Page_ = 0;
    Rows_.clear();
}

void RowPages::Finish()
{
    if (Page_ != 0) {
        Pages_.AddToMap(FreeMap_, Page_);
        WritePage();
    }
    for (const quint32 page : Owned_)
        Pages_.AddToMap(OwnedMap_, page);
}

QByteArray StoreLongValue(const QByteArray& value, const std::function<RowPlace(const QByteArray&)>& addPiece,
                          const std::function<quint32()>& allocate,
                          const std::function<void(quint32, const QByteArray&)>& writeAlone)
{
    if (value.size() > LongestValue)
        throw Error(errNotSupported, QStringLiteral("A field of a Jet file holds 1 GB at most."));
    const auto size = static_cast<quint32>(value.size());
    if (value.size() <= LargestInline)
        return Reference(Inline | size, 0) + value;
    if (value.size() <= LargestLongRow)
        return Reference(InOneRow | size, addPiece(value).Pointer());
    // Each piece on a page of its own, so that one page tells the beginning; what fills no page comes last and shares
    // one.
    const qsizetype rest = (value.size() - 1) / LargestPiece * LargestPiece;
    const quint32 last = addPiece(Piece(0, value.mid(rest))).Pointer();
    const quint32 first = allocate();
    quint32 page = first;
    for (qsizetype at = 0; at < rest; at += LargestPiece) {
        const bool isBeforeLast = at + LargestPiece == rest;
        const quint32 next = isBeforeLast ? 0 : allocate();
        writeAlone(page, Piece(isBeforeLast ? last : next << 8, value.mid(at, LargestPiece)));
        page = next;
    }
    return Reference(size, first << 8);
}

QByteArray LongValueWriter::Add(const QByteArray& value)
{
    return StoreLongValue(
        value, [&](const QByteArray& piece) { return Rows_.Add(piece); }, [&] { return Rows_.AllocateAlone(); },
        [&](quint32 page, const QByteArray& piece) { Rows_.WriteAlone(page, piece); });
}

} // namespace dao::jet
