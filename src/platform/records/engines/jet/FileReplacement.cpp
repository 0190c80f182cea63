// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/FileReplacement.h"

#include "platform/records/FileTools.h"
#include "platform/records/engines/jet/FileCopy.h"
#include "platform/records/engines/jet/JetStore.h"

namespace dao::jet
{

void FileReplacement::Note(bool keepsWritersOut)
{
    if (Session_.IsWriting())
        Session_.Abandon();
    if (keepsWritersOut)
        Session_.BeginWriting();
    else
        static_cast<void>(ReadingScope(Session_).SawChanges());
    IsNoted_ = true;
}

bool FileReplacement::IsAsNoted()
{
    if (!Session_.IsWriting() && ReadingScope(Session_).SawChanges())
        IsNoted_ = false;
    return IsNoted_;
}

void FileReplacement::KeepAs(const QString& keepName, const engine::CopyProgress& progress)
{
    TemporaryFile copy(keepName);
    {
        // Another session: this one keeps what it noted.
        FileSession session(Session_.Pages().Name(), PageFile::Use::Change);
        CopyContent(session, copy.Name(), progress);
    }
    copy.CopyAccess(Session_.Pages().Name());
    copy.MoveTo(keepName);
}

void FileReplacement::RequireSameRows(const QString& replacement)
{
    JetStore file(Session_.Pages().Name(), true);
    JetStore other(replacement, true);
    for (const engine::TablePtr& table : file.CurrentSchema()->Tables) {
        const engine::TablePtr copied = other.CurrentSchema()->Find(table->Name);
        if ((!copied || other.CountRows(copied) != file.CountRows(table)) && IsAsNoted())
            throw Error(errFileDamaged,
                        QStringLiteral("'%1' lacks rows of the table '%2'.").arg(replacement, table->Name));
    }
}

bool FileReplacement::Put(const QString& replacement)
{
    // Its own copy takes the place, made before anybody has to wait.
    TemporaryFile copy(Session_.Pages().Name());
    {
        FileSession source(replacement, PageFile::Use::Change);
        CopyContent(source, copy.Name(), {});
    }
    if (!Session_.IsWriting())
        IsNoted_ = !Session_.BeginWriting() && IsNoted_;
    if (!IsNoted_) {
        Session_.Abandon();
        return false;
    }
    IsNoted_ = false;
    Session_.GiveNameTo(copy.Name());
    return true;
}

void RaiseCountersTo(const QString& replacement, const QString& replaced)
{
    JetStore target(replacement, false);
    std::optional<JetStore> source;
    try {
        source.emplace(replaced, true);
    } catch (const Error&) {
        return; // What cannot be read tells no numbers.
    }
    for (const engine::TablePtr& table : source->CurrentSchema()->Tables) {
        const engine::TablePtr restored = target.CurrentSchema()->Find(table->Name);
        if (restored && restored->CounterColumn() >= 0 && table->CounterColumn() >= 0)
            target.RaiseCounter(restored, source->LastCounter(table));
    }
}

} // namespace dao::jet
