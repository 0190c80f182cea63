// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"

#include <QDir>
#include <QHash>
#include <QTemporaryDir>

#include <functional>
#include <vector>

/// The machine's files with a disk that fails when the test says so, and that can lose its power. In force from its
/// making to its destruction; the files are real ones.
///
/// Every call that changes something counts: writing, setting a size, sync, close of a file that was opened for
/// writing, giving rights, renaming, linking, removing, making a file or a folder, and the sync of a folder.
class FaultyFileSystem final : public FileSystem
{
public:
    enum class Fault
    {
        Fails, ///< Nothing of the call happens.
        Tears  ///< Half of a write happens; any other call as with Fails.
    };

    FaultyFileSystem() { SetCurrent(this); }
    ~FaultyFileSystem() override { SetCurrent(nullptr); }

    /// The number-th call from now on fails, 1 for the next; with lasting all later ones as well.
    void FailAt(int number, FileError error, Fault fault = Fault::Fails, bool lasting = false);
    void StopFailing() { FailAt_ = 0; }
    /// Since the making of the object.
    int Calls() const { return Calls_; }
    /// What that call was, such as "sync"; 1 for the first.
    QByteArray NameOfCall(int number) const { return Names_.value(number - 1); }

    /// Takes back what was not synced: content of files, and names in folders.
    void LosePower();

    std::unique_ptr<FileHandle> Open(const QString& name, FileAccess access, FileStatus& status) override;
    FileKind KindOf(const QString& name) override { return System().KindOf(name); }
    std::optional<FileAttributes> AttributesOf(const QString& name) override { return System().AttributesOf(name); }
    FileStatus CopyAccess(const QString& from, const QString& to) override;
    FileStatus RenameToFreeName(const QString& oldName, const QString& newName) override;
    FileStatus RenameOver(const QString& oldName, const QString& newName) override;
    FileStatus Link(const QString& name, const QString& secondName) override;
    FileStatus Remove(const QString& name) override;
    FileStatus RemoveFolder(const QString& name) override;
    FileStatus MakeFolder(const QString& name) override;
    FileStatus SyncFolder(const QString& folder) override;
    std::optional<qint64> FreeSpace(const QString& folder) override { return Free ? Free : System().FreeSpace(folder); }
    FileStatus MayWrite(const QString& name) override;

    std::optional<qint64> Free;          ///< What FreeSpace answers, instead of the truth.
    FileError Refusal = FileError::None; ///< What MayWrite answers, instead of the truth.

private:
    friend class FaultyFile;

    /// A change of names that no sync has put on the disk.
    struct Change
    {
        QStringList Folders; ///< Whose syncs are missing.
        std::function<void()> Undo;
    };

    /// What the call is to answer; counts it.
    FileStatus Answer(const char* call, Fault* fault = nullptr);
    void Note(const QStringList& names, std::function<void()> undo);
    /// Another name for the file, in a folder of ours, so that it can come back.
    QString Kept(const QString& name);
    static quint64 FileNumber(const QString& name);

    int Calls_ = 0;
    QList<QByteArray> Names_;
    int FailAt_ = 0;
    bool IsLasting_ = false;
    FileError Error_ = FileError::Failed;
    Fault Fault_ = Fault::Fails;

    std::vector<Change> Changes_;
    QHash<quint64, QByteArray> Synced_; ///< By file number: what a file held at its last sync, of those written to.
    QHash<quint64, QString> Written_;   ///< A name that a file of Synced_ keeps whatever becomes of its others.
    QTemporaryDir Attic_{QDir::tempPath() + QStringLiteral("/tolva-attic-XXXXXX")};
    int Next_ = 0;
};
