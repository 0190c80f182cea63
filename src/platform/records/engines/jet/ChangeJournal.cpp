// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/ChangeJournal.h"

#include "platform/records/Error.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/jet/PageWriter.h"

#include <QCryptographicHash>
#include <QFileInfo>

#include <algorithm>
#include <cstring>

namespace dao::jet
{

namespace
{

constexpr char JournalMark[] = "Tolva commit 01"; // With the closing zero.
constexpr qsizetype JournalMarkSize = sizeof(JournalMark);
constexpr qsizetype PagesBeforeAt = JournalMarkSize;
constexpr qsizetype PagesBehindAt = PagesBeforeAt + 4;
constexpr qsizetype RecordCountAt = PagesBehindAt + 4;
constexpr qsizetype SumAt = RecordCountAt + 4;
constexpr qsizetype JournalSumSize = 32;
constexpr qsizetype HeaderSize = SumAt + JournalSumSize;
constexpr qsizetype SectorSize = 512; ///< What a disk writes whole or not at all.
constexpr qsizetype Sectors = PageSize / SectorSize;
constexpr qsizetype SectorSumSize = 8;
constexpr qsizetype RecordSize = 4 + Sectors * SectorSumSize + PageSize;
/// A larger one gives its room back behind the commit.
constexpr qint64 LargestKept = qint64{1024} * 1024;

QByteArray SumOf(const char* octets, qsizetype size)
{
    return QCryptographicHash::hash(QByteArrayView(octets, size), QCryptographicHash::Blake2b_256);
}

QByteArray SectorSum(const char* page, qsizetype sector)
{
    return SumOf(page + sector * SectorSize, SectorSize).left(SectorSumSize);
}

/// Of all but the sum itself.
QByteArray SumOfJournal(const QByteArray& journal)
{
    QCryptographicHash hash(QCryptographicHash::Blake2b_256);
    hash.addData(QByteArrayView(journal).first(SumAt));
    hash.addData(QByteArrayView(journal).sliced(HeaderSize));
    return hash.result();
}

std::vector<quint32> NumbersOf(const PageChanges& changes)
{
    std::vector<quint32> numbers(changes.Pages().keyBegin(), changes.Pages().keyEnd());
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

quint32 StoredPages(PageFile& pages)
{
    return static_cast<quint32>(pages.Handle().Size() / PageSize);
}

void WritePage(PageFile& pages, quint32 number, const QByteArray& page)
{
    RequireWritten(pages.Name(), pages.Handle().WriteAt(qint64(number) * PageSize, page.constData(), PageSize));
}

/// Takes the room of the pages that are new, so that a disk that is full says so before the commit.
void Lengthen(PageFile& pages, quint32 before)
{
    if (pages.PageCount() <= before)
        return;
    const qint64 size = pages.Handle().Size();
    try {
        // The size first: it is that of whole pages at any moment.
        RequireWritten(pages.Name(), pages.Handle().SetSize(qint64(pages.PageCount()) * PageSize));
        for (quint32 number = before; number < pages.PageCount(); ++number)
            WritePage(pages, number, *pages.Changes().Find(number));
    } catch (...) {
        static_cast<void>(pages.Handle().SetSize(size)); // Pages that nobody uses do no harm.
        throw;
    }
}

} // namespace

QString ChangeJournal::NameFor(const QString& databaseName)
{
    return databaseName + QStringLiteral("-commit");
}

void ChangeJournal::RaiseUnreadable(const FileStatus& status) const
{
    throw Error(status.IsDiskFailure() ? errDiskError : errCannotOpen,
                QStringLiteral("'%1' cannot be read, and the database needs it: %2").arg(Name_, status.Words()));
}

bool ChangeJournal::IsPending() const
{
    FileStatus status;
    const auto file = FileSystem::Current().Open(Name_, FileAccess::Read, status);
    if (status.Error() == FileError::NotThere)
        return false;
    std::array<char, JournalMarkSize> mark{};
    qint64 count = 0;
    if (file)
        status = file->ReadAt(0, mark.data(), JournalMarkSize, count);
    if (!status.IsDone())
        RaiseUnreadable(status);
    return count == JournalMarkSize && std::memcmp(mark.data(), JournalMark, JournalMarkSize) == 0;
}

QByteArray ChangeJournal::Encode(PageFile& pages) const
{
    const std::vector<quint32> numbers = NumbersOf(pages.Changes());
    const quint32 before = StoredPages(pages);
    QByteArray journal(JournalMark, JournalMarkSize);
    journal.reserve(HeaderSize + static_cast<qsizetype>(numbers.size()) * RecordSize);
    Append(journal, before);
    Append(journal, pages.PageCount());
    Append(journal, static_cast<quint32>(numbers.size()));
    journal.append(JournalSumSize, '\0');
    for (const quint32 number : numbers) {
        Append(journal, number);
        const QByteArray old = number < before ? pages.StoredPage(number) : QByteArray(PageSize, '\0');
        if (old.isEmpty())
            throw Error(errDiskError, QStringLiteral("'%1' was cut while it was written.").arg(pages.Name()));
        for (qsizetype sector = 0; sector < Sectors; ++sector)
            journal += SectorSum(old.constData(), sector);
        journal += *pages.Changes().Find(number);
    }
    const QByteArray sum = SumOfJournal(journal);
    std::memcpy(journal.data() + SumAt, sum.constData(), JournalSumSize);
    return journal;
}

void ChangeJournal::Write(PageFile& pages)
{
    const quint32 before = StoredPages(pages);
    const QByteArray journal = Encode(pages);
    FileSystem& files = FileSystem::Current();
    FileStatus status;
    auto file = files.Open(Name_, FileAccess::Change, status);
    const bool isNew = status.Error() == FileError::NotThere;
    if (isNew) {
        file = files.Open(Name_, FileAccess::New, status);
        if (status.IsDone())
            status = files.CopyAccess(pages.Name(), Name_);
    }
    RequireWritten(Name_, status);
    Lengthen(pages, before);
    try {
        RequireWritten(Name_, file->WriteAt(0, journal.constData(), journal.size()));
        RequireWritten(Name_, file->Sync());
        if (isNew)
            RequireWritten(Name_, files.SyncFolder(QFileInfo(Name_).absolutePath()));
    } catch (...) {
        // What is there must not be taken for a commit by whoever comes next.
        static_cast<void>(file->SetSize(0));
        static_cast<void>(file->Sync());
        throw;
    }
}

void ChangeJournal::Apply(PageFile& pages)
{
    for (const quint32 number : NumbersOf(pages.Changes()))
        WritePage(pages, number, *pages.Changes().Find(number));
    RequireWritten(pages.Name(), pages.Handle().Sync());
}

ChangeJournal::Content ChangeJournal::Read(PageFile& pages) const
{
    FileStatus status;
    const auto file = FileSystem::Current().Open(Name_, FileAccess::Read, status);
    if (!file)
        RaiseUnreadable(status);
    QByteArray journal(std::max<qint64>(file->Size(), 0), Qt::Uninitialized);
    qint64 count = 0;
    status = file->ReadAt(0, journal.data(), journal.size(), count);
    if (!status.IsDone())
        RaiseUnreadable(status);
    journal.truncate(count);
    Content content;
    if (journal.size() < HeaderSize)
        return content;
    const OctetView octets(journal);
    const quint32 records = octets.U32(RecordCountAt);
    const qint64 wanted = HeaderSize + qint64(records) * RecordSize;
    if (journal.size() < wanted)
        return content;
    journal.truncate(wanted);
    content.IsWhole = journal.mid(SumAt, JournalSumSize) == SumOfJournal(journal);
    if (!content.IsWhole)
        return content;
    const quint32 before = OctetView(journal).U32(PagesBeforeAt);
    content.PageCount = OctetView(journal).U32(PagesBehindAt);
    content.BelongsThere = StoredPages(pages) >= before;
    for (qsizetype at = HeaderSize; at < journal.size() && content.BelongsThere; at += RecordSize) {
        const quint32 number = OctetView(journal).U32(at);
        const char* const sums = journal.constData() + at + 4;
        const QByteArray page = journal.mid(at + RecordSize - PageSize, PageSize);
        const QByteArray stored = number < before ? pages.StoredPage(number) : page;
        for (qsizetype sector = 0; sector < Sectors && content.BelongsThere; ++sector) {
            const qsizetype place = sector * SectorSize;
            const bool isNew = std::memcmp(stored.constData() + place, page.constData() + place, SectorSize) == 0;
            content.BelongsThere = isNew || SectorSum(stored.constData(), sector) ==
                                                QByteArrayView(sums + sector * SectorSumSize, SectorSumSize);
        }
        content.Pages.emplace_back(number, page);
    }
    return content;
}

void ChangeJournal::Recover(PageFile& pages)
{
    const Content content = Read(pages);
    if (content.IsWhole && !content.BelongsThere) {
        // Kept for whoever may know where it belongs; the database is another one, or an older state of it.
        RequireWritten(Name_, FileSystem::Current().RenameOver(Name_, Name_ + QStringLiteral("-of-another")));
        return;
    }
    if (content.IsWhole) {
        if (StoredPages(pages) < content.PageCount)
            RequireWritten(pages.Name(), pages.Handle().SetSize(qint64(content.PageCount) * PageSize));
        for (const auto& [number, page] : content.Pages)
            WritePage(pages, number, page);
        RequireWritten(pages.Name(), pages.Handle().Sync());
    }
    Clear();
}

void ChangeJournal::Clear()
{
    FileStatus status;
    const auto file = FileSystem::Current().Open(Name_, FileAccess::Change, status);
    RequireWritten(Name_, status);
    // Not put on the disk: a commit that comes back is in the database already, sector by sector.
    const QByteArray nothing(HeaderSize, '\0');
    RequireWritten(Name_, file->Size() > LargestKept ? file->SetSize(0)
                                                     : file->WriteAt(0, nothing.constData(), nothing.size()));
}

void ChangeJournal::Remove() const
{
    static_cast<void>(FileSystem::Current().Remove(Name_)); // Empty, it means nothing to anybody.
}

} // namespace dao::jet
