// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"
#include "platform/records/engines/jet/FileFormat.h"
#include "platform/records/engines/jet/Header.h"
#include "platform/records/engines/jet/PageChanges.h"

#include <QCache>

namespace dao::jet
{

/// The pages of an open file, the last of them that were asked for, and over them those that a transaction has changed.
/// One thread. Nothing here locks or writes the file: FileSession does.
///
/// Others may change the file meanwhile. Refresh sees it by the counts of their commits, the file's size and its
/// time.
class PageFile
{
public:
    enum class Use
    {
        Read,
        Change, ///< Where this account may; see IsWritable.
        Salvage ///< Whatever its first page says, as long as that is not that nobody can read the others.
    };

    /// Errors: 3051 the file cannot be opened, 3043 it cannot be read, 3049 shorter than a page, those of
    /// RequireReadable.
    explicit PageFile(const QString& fileName, Use use = Use::Read);

    const QString& Name() const { return Name_; }
    const Header& FileHeader() const { return Header_; }
    FileHandle& Handle() { return *File_; }
    bool IsWritable() const { return IsWritable_; }
    /// Whole pages in the file, with those that a transaction adds; at most 2 GiB of them.
    quint32 PageCount() const { return PageCount_; }
    qint64 Size() const { return Size_; }

    /// Fault when the file has no such page; 3043 when it cannot be read. Shares its octets with the cache.
    QByteArray Page(quint32 number);
    /// The same, a Fault when it is of another kind.
    QByteArray Page(quint32 number, PageType type);
    /// Whether the file was changed since the last call. All pages are read anew then.
    bool Refresh();
    /// Whether the file still has its name.
    bool IsNamed() { return File_->HasName(Name_); }

    /// Changes a page in memory, or adds the one behind the last.
    void Change(quint32 number, const QByteArray& page);
    const PageChanges& Changes() const { return Changes_; }
    void BeginStep() { Changes_.BeginStep(); }
    void KeepStep() { Changes_.KeepStep(); }
    void TakeBackStep();
    /// Forgets all changes.
    void DropChanges();
    /// The changes are in the file now: they are pages like others.
    void AdoptChanges();
    /// A page as it stands in the file, whatever a transaction changed. Empty when the file ends before it.
    QByteArray StoredPage(quint32 number);

private:
    void Open(Use use);
    void Begin();
    void NoteMarks();
    void CountPages();
    QByteArray ReadAt(qint64 offset, qint64 size);

    QString Name_;
    bool IsSalvaged_;
    bool IsWritable_ = false;
    std::unique_ptr<FileHandle> File_;
    PageChanges Changes_;
    Header Header_;
    qint64 Size_ = 0;
    quint32 PageCount_ = 0;
    QByteArray CommitCounts_;
    std::optional<qint64> ChangedMilliseconds_;
    QCache<quint32, QByteArray> Cache_;
};

} // namespace dao::jet
