// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"
#include "platform/records/engines/jet/FileFormat.h"
#include "platform/records/engines/jet/Octets.h"

#include <memory>
#include <vector>

namespace dao::jet
{

/// Writes a whole new file: pages one behind the other, and the maps of whose they are. The pages that have a place of
/// their own, up to the definitions of the format's four tables, are kept free, and others that somebody wants. Errors:
/// 3026 and 3043 for the disk, 3251 when the file would be larger than such a file can be.
class PageWriter
{
public:
    /// The file is there, and nobody else writes to it.
    /// reserved: pages that are given to nobody, in order.
    explicit PageWriter(const QString& fileName, std::vector<quint32> reserved = {});

    /// The number of a page that nobody has.
    quint32 Allocate();
    /// page: of a page's size.
    void Write(quint32 number, const QByteArray& page);

    /// A map without pages, by the pointer to where it will stand.
    quint32 AddMap();
    /// Pages rise within a map.
    void AddToMap(quint32 map, quint32 page);
    /// Writes the maps and the first page, and puts the file on the disk.
    void Finish(const QByteArray& firstPage);

private:
    struct Map
    {
        quint32 Pointer = 0;
        std::vector<quint32> Pages;
    };

    Map& MapAt(quint32 pointer);
    QByteArray MapRow(const Map& map);
    QByteArray GlobalMapRow();
    void WriteMaps();
    bool IsReserved(quint32 page) const;
    /// How many pages the file has, and whether one of them is used.
    quint32 PageCount() const;
    bool IsUsed(quint32 page) const { return page < NextPage_ || IsReserved(page); }
    void Require(const FileStatus& status) const;

    QString Name_;
    std::unique_ptr<FileHandle> File_;
    std::vector<quint32> Reserved_;
    quint32 NextPage_;
    std::vector<Map> Maps_; ///< In order of their pointers.
};

/// The first page of a new file. created: a day number.
QByteArray MakeFirstPage(double created);
/// A page of rows with these on it. owner: what stands in it as its owner.
QByteArray MakeDataPage(quint32 owner, const std::vector<QByteArray>& rows);

} // namespace dao::jet
