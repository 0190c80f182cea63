// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/PageWriter.h"

#include "platform/records/Error.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/jet/DataPage.h"
#include "platform/records/engines/jet/Header.h"
#include "platform/records/engines/jet/PageLayout.h"
#include "platform/records/engines/jet/UsageMap.h"

#include <algorithm>
#include <cstring>

namespace dao::jet
{

namespace
{

constexpr quint32 FirstFreePage = 6;
constexpr quint32 GlobalMapPage = 1;
constexpr quint32 InlinePages = (MapLayout::RowSize - MapLayout::BitsAt) * MapLayout::BitsOfOctet;
constexpr int MapsOfPage = (PageSize - RowPageLayout::SlotsAt) / (MapLayout::RowSize + RowPageLayout::SlotSize);
constexpr quint16 UntouchedCommits = 0x0100;

QByteArray EmptyMap()
{
    return QByteArray(MapLayout::RowSize, '\0');
}

QByteArray EmptyBitmap(bool isSet)
{
    QByteArray page(PageSize, isSet ? '\xFF' : '\0');
    Put(page, 0, static_cast<quint8>(PageType::Bitmap));
    Put(page, 1, quint8(1));
    Put(page, RowPageLayout::FreeOctetsAt, quint16(0));
    return page;
}

} // namespace

PageWriter::PageWriter(const QString& fileName, std::vector<quint32> reserved)
    : Name_(fileName), Reserved_(std::move(reserved)), NextPage_(FirstFreePage)
{
    FileStatus status;
    File_ = FileSystem::Current().Open(fileName, FileAccess::Change, status);
    Require(status);
    Require(File_->SetSize(0));
}

void PageWriter::Require(const FileStatus& status) const
{
    RequireWritten(Name_, status);
}

quint32 PageWriter::Allocate()
{
    while (IsReserved(NextPage_))
        ++NextPage_;
    if (NextPage_ >= LargestPageCount)
        throw Error(errNotSupported, QStringLiteral("A Jet file holds 2 GB at most, and this database is larger."));
    return NextPage_++;
}

bool PageWriter::IsReserved(quint32 page) const
{
    return std::binary_search(Reserved_.begin(), Reserved_.end(), page);
}

quint32 PageWriter::PageCount() const
{
    return Reserved_.empty() ? NextPage_ : std::max(NextPage_, Reserved_.back() + 1);
}

void PageWriter::Write(quint32 number, const QByteArray& page)
{
    Require(File_->WriteAt(qint64(number) * PageSize, page.constData(), page.size()));
}

quint32 PageWriter::AddMap()
{
    const auto row = static_cast<quint32>(Maps_.size() % MapsOfPage);
    const quint32 page = row == 0 ? Allocate() : Maps_.back().Pointer >> 8;
    Maps_.push_back({page << 8 | row, {}});
    return Maps_.back().Pointer;
}

PageWriter::Map& PageWriter::MapAt(quint32 pointer)
{
    return *std::lower_bound(Maps_.begin(), Maps_.end(), pointer,
                             [](const Map& map, quint32 wanted) { return map.Pointer < wanted; });
}

void PageWriter::AddToMap(quint32 map, quint32 page)
{
    MapAt(map).Pages.push_back(page);
}

QByteArray PageWriter::MapRow(const Map& map)
{
    QByteArray row = EmptyMap();
    if (map.Pages.empty())
        return row;
    const quint32 first = map.Pages.front() / 8 * 8;
    if (map.Pages.back() - first < InlinePages) {
        Put(row, MapLayout::FirstPageAt, first);
        for (const quint32 page : map.Pages)
            SetMapBit(row, MapLayout::BitsAt, page - first, true);
        return row;
    }
    Put(row, 0, MapLayout::Referring);
    for (auto at = map.Pages.begin(); at != map.Pages.end();) {
        const quint32 place = *at / PagesOfBitmap;
        QByteArray bitmap = EmptyBitmap(false);
        for (; at != map.Pages.end() && *at / PagesOfBitmap == place; ++at)
            SetMapBit(bitmap, MapLayout::BitmapAt, *at % PagesOfBitmap, true);
        const quint32 number = Allocate();
        Write(number, bitmap);
        Put(row, MapLayout::ReferencesAt + 4 * qsizetype(place), number);
    }
    return row;
}

QByteArray PageWriter::GlobalMapRow()
{
    QByteArray row(MapLayout::RowSize, '\xFF');
    Put(row, 0, quint32(0));
    Put(row, 4, quint8(0));
    if (PageCount() <= InlinePages) {
        for (quint32 page = 0; page < PageCount(); ++page)
            SetMapBit(row, MapLayout::BitsAt, page, !IsUsed(page));
        return row;
    }
    row = EmptyMap();
    Put(row, 0, MapLayout::Referring);
    // The map's own pages are used as well.
    std::vector<quint32> bitmaps;
    while (quint64(bitmaps.size()) * PagesOfBitmap < PageCount())
        bitmaps.push_back(Allocate());
    for (std::size_t place = 0; place < bitmaps.size(); ++place) {
        QByteArray bitmap = EmptyBitmap(true);
        const quint32 first = static_cast<quint32>(place) * PagesOfBitmap;
        for (quint32 page = first; page < std::min(PageCount(), first + PagesOfBitmap); ++page)
            SetMapBit(bitmap, MapLayout::BitmapAt, page - first, !IsUsed(page));
        Write(bitmaps[place], bitmap);
        Put(row, MapLayout::ReferencesAt + 4 * static_cast<qsizetype>(place), bitmaps[place]);
    }
    return row;
}

void PageWriter::WriteMaps()
{
    std::vector<QByteArray> rows;
    for (std::size_t i = 0; i < Maps_.size(); ++i) {
        rows.push_back(MapRow(Maps_[i]));
        if (rows.size() == MapsOfPage || i + 1 == Maps_.size()) {
            Write(Maps_[i].Pointer >> 8, MakeDataPage(0, rows));
            rows.clear();
        }
    }
    const QByteArray global = GlobalMapRow();
    Write(GlobalMapPage, MakeDataPage(GlobalMapPage, {global, EmptyMap()}));
}

void PageWriter::Finish(const QByteArray& firstPage)
{
    WriteMaps();
    Write(0, firstPage);
    Require(File_->Sync());
    Require(File_->Close());
}

QByteArray MakeFirstPage(double created)
{
    QByteArray page(PageSize, '\0');
    Put(page, 0, quint32(0x100));
    std::memcpy(page.data() + 4, "Standard Jet DB", 16);
    Put(page, 0x14, quint32(1));
    Put(page, 0x18, GlobalMapPointer);
    Put(page, 0x1C, GlobalMapPointer + 1);
    for (quint32 table = 0; table < 4; ++table)
        Put(page, 0x20 + 4 * qsizetype(table), CatalogueDefinition + table);
    Put(page, 0x3C, quint16(1252));
    // Without a password the mask stands there by itself.
    for (int at = 0; at < 40; at += 4)
        Put(page, 0x42 + at, static_cast<qint32>(created));
    Put(page, 0x6E, GeneralSortOrder);
    quint64 bits = 0;
    std::memcpy(&bits, &created, sizeof(bits));
    Put(page, 0x72, bits);
    Mask(page.data() + MaskedAt);
    Put(page, 0x98, quint32(1620));
    std::memcpy(page.data() + 0x9C, "4.0", 4);
    for (int at = CommitCountsAt; at < CommitCountsAt + CommitCountsSize; at += 2)
        Put(page, at, UntouchedCommits);
    return page;
}

QByteArray MakeDataPage(quint32 owner, const std::vector<QByteArray>& rows)
{
    QByteArray page(PageSize, '\0');
    Put(page, 0, static_cast<quint8>(PageType::Data));
    Put(page, 1, quint8(1));
    Put(page, 4, owner);
    Put(page, 12, static_cast<quint16>(rows.size()));
    qsizetype start = PageSize;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        start -= rows[i].size();
        std::memcpy(page.data() + start, rows[i].constData(), static_cast<std::size_t>(rows[i].size()));
        Put(page, RowPageLayout::SlotsAt + RowPageLayout::SlotSize * static_cast<qsizetype>(i),
            static_cast<quint16>(start));
    }
    Put(page, RowPageLayout::FreeOctetsAt,
        static_cast<quint16>(start - RowPageLayout::SlotsAt -
                             RowPageLayout::SlotSize * static_cast<qsizetype>(rows.size())));
    return page;
}

} // namespace dao::jet
