// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/PageFile.h"

#include "platform/records/Error.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr int CachedPages = 4096; // 16 MiB.

QString KindInWords(PageType type)
{
    switch (type) {
    case PageType::Header:
        return QStringLiteral("the first page");
    case PageType::Data:
        return QStringLiteral("a page of rows");
    case PageType::Definition:
        return QStringLiteral("the definition of a table");
    case PageType::IndexNode:
        return QStringLiteral("a branch of an index");
    case PageType::IndexLeaf:
        return QStringLiteral("a leaf of an index");
    case PageType::Bitmap:
        return QStringLiteral("a map of pages");
    }
    return {};
}

} // namespace

PageFile::PageFile(const QString& fileName, Use use)
    : Name_(fileName), IsSalvaged_(use == Use::Salvage), Cache_(CachedPages)
{
    Open(use);
}

void PageFile::Open(Use use)
{
    FileStatus status;
    if (use == Use::Change)
        File_ = FileSystem::Current().Open(Name_, FileAccess::Change, status);
    IsWritable_ = File_ != nullptr;
    if (!IsWritable_)
        File_ = FileSystem::Current().Open(Name_, FileAccess::Read, status);
    if (!File_)
        throw Error(status.IsDiskFailure() ? errDiskError : errCannotOpen,
                    QStringLiteral("Cannot open '%1': %2").arg(Name_, status.Words()));
    Begin();
}

void PageFile::Begin()
{
    Cache_.clear();
    // In front of the pages: what changes from here on is seen the next time.
    ChangedMilliseconds_ = FileSystem::Current().AttributesOf(Name_).value_or(FileAttributes{}).ChangedMilliseconds;
    CountPages();
    // The header of the older format is shorter than a page of this one, and is to be refused in its own words.
    const QByteArray first = ReadAt(0, std::min<qint64>(PageSize, std::max<qint64>(Size_, 0)));
    if (IsSalvaged_ && !IsOfFamily(first))
        return;
    if (first.size() >= HeaderOctets && !IsOfFamily(first))
        throw Error(errFileReplaced,
                    QStringLiteral("The database '%1' was replaced by another file. Open it anew.").arg(Name_));
    if (first.size() < HeaderOctets)
        throw Error(errFileDamaged, QStringLiteral("The database '%1' is damaged: it is too short.").arg(Name_));
    Header_ = ReadHeader(OctetView(first));
    RequireReadable(Header_, Name_);
    if (first.size() < PageSize)
        throw Error(errFileDamaged, QStringLiteral("The database '%1' is damaged: it is too short.").arg(Name_));
    CommitCounts_ = first.mid(CommitCountsAt, CommitCountsSize);
}

QByteArray PageFile::ReadAt(qint64 offset, qint64 size)
{
    QByteArray octets(size, Qt::Uninitialized);
    qint64 count = 0;
    const FileStatus status = File_->ReadAt(offset, octets.data(), size, count);
    // Of a failing disk whatever it still gives is wanted.
    if (!status.IsDone() && IsSalvaged_)
        return {};
    if (!status.IsDone())
        throw Error(errDiskError, QStringLiteral("'%1' cannot be read: %2").arg(Name_, status.Words()));
    octets.truncate(count);
    return octets;
}

void PageFile::CountPages()
{
    Size_ = File_->Size();
    PageCount_ = static_cast<quint32>(std::clamp<qint64>(Size_ / PageSize, 0, LargestPageCount));
    // Those that a transaction adds lie behind the file's own without a gap.
    while (Changes_.Find(PageCount_) != nullptr)
        ++PageCount_;
}

void PageFile::Change(quint32 number, const QByteArray& page)
{
    if (number > PageCount_ || page.size() != PageSize)
        throw Fault(QStringLiteral("page %1 cannot be changed").arg(number));
    Changes_.Set(number, page);
    PageCount_ = std::max(PageCount_, number + 1);
}

void PageFile::TakeBackStep()
{
    Changes_.TakeBackStep();
    CountPages();
}

void PageFile::DropChanges()
{
    Changes_.Clear();
    CountPages();
}

void PageFile::AdoptChanges()
{
    for (auto page = Changes_.Pages().cbegin(); page != Changes_.Pages().cend(); ++page)
        Cache_.insert(page.key(), new QByteArray(*page));
    DropChanges();
    NoteMarks();
}

void PageFile::NoteMarks()
{
    ChangedMilliseconds_ = FileSystem::Current().AttributesOf(Name_).value_or(FileAttributes{}).ChangedMilliseconds;
    CommitCounts_ = ReadAt(CommitCountsAt, CommitCountsSize);
}

QByteArray PageFile::StoredPage(quint32 number)
{
    QByteArray page = ReadAt(qint64(number) * PageSize, PageSize);
    return page.size() == PageSize ? page : QByteArray();
}

QByteArray PageFile::Page(quint32 number)
{
    if (const QByteArray* changed = Changes_.Find(number))
        return *changed;
    if (const QByteArray* known = Cache_.object(number))
        return *known;
    if (number >= PageCount_)
        throw Fault(QStringLiteral("page %1 is named, and the file ends before it").arg(number));
    QByteArray page = ReadAt(qint64(number) * PageSize, PageSize);
    if (page.size() < PageSize)
        throw Fault(QStringLiteral("the file was cut at page %1 while it was read").arg(number));
    Cache_.insert(number, new QByteArray(page));
    return page;
}

QByteArray PageFile::Page(quint32 number, PageType type)
{
    QByteArray page = Page(number);
    if (number == 0 || page.at(0) != static_cast<char>(type))
        throw Fault(QStringLiteral("page %1 is not %2").arg(number).arg(KindInWords(type)));
    return page;
}

bool PageFile::Refresh()
{
    const std::optional<FileAttributes> attributes = FileSystem::Current().AttributesOf(Name_);
    if (attributes && attributes->ChangedMilliseconds == ChangedMilliseconds_ && File_->Size() == Size_ &&
        ReadAt(CommitCountsAt, CommitCountsSize) == CommitCounts_)
        return false;
    Begin();
    return true;
}

} // namespace dao::jet
