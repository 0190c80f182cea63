// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/JetEngine.h"

#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"
#include "platform/records/LockPatience.h"
#include "platform/records/engines/FileRepairer.h"
#include "platform/records/engines/jet/DatabaseBuilder.h"
#include "platform/records/engines/jet/FileCheck.h"
#include "platform/records/engines/jet/FileCompaction.h"
#include "platform/records/engines/jet/FileCopy.h"
#include "platform/records/engines/jet/FileRepair.h"
#include "platform/records/engines/jet/FileReplacement.h"
#include "platform/records/engines/jet/JetStore.h"

#include <QFileInfo>

namespace dao::jet
{

namespace
{

class JetEngine final : public engine::Engine, public engine::FileRepairer
{
public:
    QString Name() const override { return QStringLiteral("jet"); }
    Capability Capabilities() const override { return {.Creates = true, .IsServer = false}; }
    bool IsAvailable(QString&) const override { return true; }
    bool RecognisesFile(const QByteArray& firstOctets) const override { return IsOfFamily(firstOctets); }
    bool RecognisesConnect(const QString&) const override { return false; }

    std::unique_ptr<engine::Store> Open(const QString& name, const QString&, bool readOnly) override
    {
        return std::make_unique<JetStore>(name, readOnly);
    }
    void Create(const QString& fileName) override
    {
        TemporaryFile file(fileName);
        DatabaseBuilder(file.Name(), DayNumberNow()).Finish();
        file.MoveTo(fileName);
    }
    void Compact(const QString& source, const QString& target) override
    {
        TemporaryFile file(target);
        CompactFile(source, file.Name());
        file.LimitRights(source);
        file.MoveTo(target);
    }
    void Copy(const QString& source, const QString& target, const engine::CopyProgress& progress) override
    {
        CopyFile(source, target, progress);
    }
    FileReport Examine(const QString& fileName, const engine::CopyProgress& progress) override
    {
        return ExamineFile(fileName, progress);
    }
    bool RecognisesRemains(const QString& fileName) override { return LooksLikeRemains(fileName); }
    RepairReport Repair(const QString& source, const QString& target, const QStringList& hints,
                        const engine::CopyProgress& progress) override;
    std::unique_ptr<engine::ContentExchange> BeginExchange(const QString& fileName) override
    {
        return std::make_unique<FileReplacement>(fileName);
    }
    void MarkAsRestored(const QString& replacement, const QString& replaced) override
    {
        RaiseCountersTo(replacement, replaced);
    }
    std::unique_ptr<engine::FileLock> LockOut(const QString& fileName) override;
    QStringList CompanionsOf(const QString& fileName) const override { return {ChangeJournal::NameFor(fileName)}; }
    std::unique_ptr<dao::Connection> OpenConnection(const QString&, int, bool, const QString&) override
    {
        throw Error(errNotSupported, QStringLiteral("This database engine serves no connections."));
    }
};

/// Whether the change that a crash left beside the file is in it now.
bool HasAllChanges(const QString& fileName)
{
    try {
        const FileSession session(fileName, PageFile::Use::Change);
    } catch (const Fault&) {
        return !ChangeJournal(fileName).IsPending();
    } catch (const Error& error) {
        if (error.Number() == errLocked || error.Number() == errCannotOpen)
            throw;
        return !ChangeJournal(fileName).IsPending();
    }
    return true;
}

RepairReport JetEngine::Repair(const QString& source, const QString& target, const QStringList& hints,
                               const engine::CopyProgress& progress)
{
    const bool hasAll = HasAllChanges(source);
    TemporaryFile file(target);
    RepairReport report = RepairFile(source, file.Name(), hints, progress);
    if (!hasAll)
        report.Notes += QStringLiteral("The last change that was being made is not in the new file.");
    file.LimitRights(source);
    file.MoveTo(target);
    return report;
}

/// Keeps who works in a Jet file out of it. Of a file of another engine it holds nothing but the handle: closing that
/// at once would take away the locks that the other engine has on the file by now, for the system lets them go with any
/// handle of the process.
class JetFileLock final : public engine::FileLock
{
public:
    explicit JetFileLock(std::unique_ptr<FileHandle> file) : File_(std::move(file)) {}

private:
    std::unique_ptr<FileHandle> File_; // The locks go with it.
};

/// Office programs would go on in the old file, so that it is refused while one has it open.
std::unique_ptr<engine::FileLock> JetEngine::LockOut(const QString& fileName)
{
    FileStatus status;
    auto file = FileSystem::Current().Open(QFileInfo(fileName).canonicalFilePath(), FileAccess::Change, status);
    if (!file)
        file = FileSystem::Current().Open(fileName, FileAccess::Read, status);
    QByteArray first(HeaderOctets, '\0');
    qint64 count = 0;
    if (!file)
        return nullptr;
    if (!file->ReadAt(0, first.data(), first.size(), count).IsDone() || !IsOfFamily(first))
        return std::make_unique<JetFileLock>(std::move(file));
    if (IsOpenInOfficeProgram(fileName))
        throw Error(errNotSupported, QStringLiteral("another program has it open, for '%1' is there. Close it there. "
                                                    "If nobody has it open, a program left that file behind: take it "
                                                    "away")
                                         .arg(OfficeUsersFile(fileName)));
    const QDeadlineTimer deadline(LockPatience::Milliseconds());
    FileLocks locks(*file);
    status = locks.BeginWriting(deadline);
    if (status.IsDone())
        status = locks.ShutReadersOut(deadline);
    if (status.Error() == FileError::Locked)
        throw Error(errLocked, QStringLiteral("'%1' is locked by another user.").arg(fileName));
    return std::make_unique<JetFileLock>(std::move(file));
}

} // namespace

std::unique_ptr<engine::Engine> MakeJetEngine()
{
    return std::make_unique<JetEngine>();
}

} // namespace dao::jet
