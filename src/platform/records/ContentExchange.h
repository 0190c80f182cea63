// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/OpenFiles.h"

#include <functional>
#include <memory>
#include <vector>

namespace dao
{

namespace engine
{
class ContentExchange;
class FileLock;
} // namespace engine

/// The exchange of a database's content while others have it open, in one step: they find the old content or the new
/// one, never another file, and a commit that comes in between makes the step not happen instead of being lost. The
/// file keeps its mode, owner, access lists and names. Errors are dao::Error; they leave the file as it was.
///
///     ContentExchange exchange(file);
///     exchange.Note(false);
///     ... make the replacement of what the file holds ...
///     exchange.KeepAs(keepName);
///     if (!exchange.Put(replacement)) ... somebody wrote meanwhile: begin again at Note ...
class TOLVA_EXPORT ContentExchange
{
public:
    /// Errors: those of OpenDatabase; 3251 where the engine has no such exchange.
    explicit ContentExchange(const QString& file);
    ~ContentExchange();
    ContentExchange(const ContentExchange&) = delete;
    ContentExchange& operator=(const ContentExchange&) = delete;

    /// Takes note of the state of the file. keepsWritersOut: from here to Put nobody else writes, for as long as it
    /// takes; others wait their usual time and are told to try again. They read on. 3260 as usual.
    void Note(bool keepsWritersOut);
    /// Whether nothing was committed since.
    bool IsAsNoted();
    /// Writes a copy of the file as it stands now under a name that is free, octet by octet and unchecked, with the
    /// file's mode, owner and access list, on the disk when it returns. Nobody ever had the copy open. advance as in
    /// DBEngine::CopyDatabase.
    void KeepAs(const QString& keepName, const std::function<bool(qint64 done, qint64 total)>& advance = {});
    /// 3049 unless the replacement has as many rows in each table as the file, unless that has changed meanwhile.
    void RequireSameRows(const QString& replacement);
    /// Puts the replacement's content into the file, unless something was committed since Note: then false, and nothing
    /// is changed. Everybody else waits meanwhile. On the disk when it returns. 3026 needs room for the old content
    /// once more; 3260 when somebody reads for longer than the usual wait.
    bool Put(const QString& replacement);

    /// Makes replacement what is put back in the place of replaced: whoever has that open is refused from then on with
    /// 3734, until he opens it anew, and no automatic number that replaced gave, as far as it can be read, is given
    /// again.
    static void MarkAsRestored(const QString& replacement, const QString& replaced);

private:
    FileLease Lease_; ///< Nobody opens the file past its engine, which would let go of the lock.
    std::unique_ptr<engine::ContentExchange> Exchange_;
};

/// Keeps everybody who has a database file open from reading and writing it, whatever it holds, while it loses its name
/// to another file; they find out when they go on (3734). Must not outlive that moment. A file that is not there is
/// fine.
class TOLVA_EXPORT FileLockout
{
public:
    /// 3260 when somebody keeps the lock for longer than the usual wait, 3051 for a file that may not be opened.
    explicit FileLockout(const QString& file);
    ~FileLockout();
    FileLockout(const FileLockout&) = delete;
    FileLockout& operator=(const FileLockout&) = delete;

private:
    std::vector<std::unique_ptr<engine::FileLock>> Locks_;
};

} // namespace dao
