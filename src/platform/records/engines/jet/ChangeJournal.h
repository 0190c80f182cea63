// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/PageFile.h"

namespace dao::jet
{

/// The file beside a database in which a commit stands before it is written there: the new pages, and by sums of the
/// old ones what they belong to. Once it is on the disk whole, the commit is done; whoever finds it writes the pages
/// again, as often as need be. It is made, read and removed by whoever shut everybody else out; others may look whether
/// there is one. Never applied to a file of which a single sector is neither as it was nor as it will be.
class ChangeJournal
{
public:
    explicit ChangeJournal(const QString& databaseName) : Name_(NameFor(databaseName)) {}

    static QString NameFor(const QString& databaseName);

    /// Whether somebody left a commit that may not be in the database yet.
    bool IsPending() const;
    /// Puts the changes of pages on the disk. The commit is done when it returns. Errors: 3026, 3043, 3051; then it is
    /// not done, unless the disk failed in such a way that nobody can tell.
    void Write(PageFile& pages);
    /// Writes the changes into the database. Errors: 3026, 3043; the journal is as good as before then.
    static void Apply(PageFile& pages);
    /// The same with what somebody left behind; a journal that is not whole, or another file's, is put away. The pages
    /// are as they are on the disk then.
    void Recover(PageFile& pages);
    /// What it said is in the database, and on the disk there.
    void Clear();
    /// Takes the empty file away.
    void Remove() const;

private:
    struct Content
    {
        quint32 PageCount = 0; ///< Of the database behind the commit.
        std::vector<std::pair<quint32, QByteArray>> Pages;
        bool IsWhole = false;
        bool BelongsThere = false;
    };

    QByteArray Encode(PageFile& pages) const;
    Content Read(PageFile& pages) const;
    [[noreturn]] void RaiseUnreadable(const FileStatus& status) const;

    QString Name_;
};

} // namespace dao::jet
