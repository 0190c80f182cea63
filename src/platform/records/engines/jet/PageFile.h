// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"
#include "platform/records/engines/jet/FileFormat.h"
#include "platform/records/engines/jet/Header.h"

#include <QCache>

namespace dao::jet
{

/// The pages of a file that is open to be read, and the last of them that were asked for. One thread.
///
/// Office programs may change the file meanwhile. NoteChanges sees it by the counts of their commits, the file's size
/// and its time, and then begins anew with whatever file bears the name by now.
class PageFile
{
public:
    /// Errors: 3051 the file cannot be opened, 3043 it cannot be read, 3049 shorter than a page, those of
    /// RequireReadable.
    explicit PageFile(const QString& fileName);

    const QString& Name() const { return Name_; }
    const Header& FileHeader() const { return Header_; }
    /// Whole pages in the file; at most 2 GiB of them.
    quint32 PageCount() const { return PageCount_; }
    qint64 Size() const { return Size_; }

    /// Fault when the file has no such page; 3043 when it cannot be read. Shares its octets with the cache.
    QByteArray Page(quint32 number);
    /// The same, a Fault when it is of another kind.
    QByteArray Page(quint32 number, PageType type);
    /// To be called before each operation: whether the file was changed since the last call. All pages are read anew
    /// then. Errors: those of the constructor, and 3734 when a file of another format has the name.
    bool NoteChanges();

private:
    void Open();
    QByteArray ReadAt(qint64 offset, qint64 size);

    QString Name_;
    std::unique_ptr<FileHandle> File_;
    Header Header_;
    qint64 Size_ = 0;
    quint32 PageCount_ = 0;
    QByteArray CommitCounts_;
    std::optional<qint64> ChangedMilliseconds_;
    QCache<quint32, QByteArray> Cache_;
};

} // namespace dao::jet
