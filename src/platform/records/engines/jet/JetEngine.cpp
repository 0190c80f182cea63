// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/JetEngine.h"

#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/jet/FileCheck.h"
#include "platform/records/engines/jet/FileCompaction.h"
#include "platform/records/engines/jet/FileCopy.h"
#include "platform/records/engines/jet/JetStore.h"

#include <QFile>
#include <QFileInfo>

namespace dao::jet
{

namespace
{

class JetEngine final : public engine::Engine
{
public:
    QString Name() const override { return QStringLiteral("jet"); }
    Capability Capabilities() const override { return {.Creates = false, .IsServer = false}; }
    bool IsAvailable(QString&) const override { return true; }
    bool RecognisesFile(const QByteArray& firstOctets) const override { return IsOfFamily(firstOctets); }
    bool RecognisesConnect(const QString&) const override { return false; }

    std::unique_ptr<engine::Store> Open(const QString& name, const QString&, bool) override
    {
        return std::make_unique<JetStore>(name);
    }
    void Create(const QString&) override
    {
        throw Error(errNotSupported, QStringLiteral("Jet files can be read here, and not be made to be worked in."));
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
    std::unique_ptr<engine::FileLock> LockOut(const QString& fileName) override;
    QStringList CompanionsOf(const QString&) const override { return {}; }
    std::unique_ptr<dao::Connection> OpenConnection(const QString&, int, bool, const QString&) override
    {
        throw Error(errNotSupported, QStringLiteral("This database engine serves no connections."));
    }
};

/// Office programs note there who has the file open, and take it away when the last of them closes it. They would go on
/// in the old file.
std::unique_ptr<engine::FileLock> JetEngine::LockOut(const QString& fileName)
{
    QFile file(fileName);
    const QFileInfo info(fileName);
    const QString users = info.path() + u'/' + info.completeBaseName() + QStringLiteral(".ldb");
    if (!file.open(QIODevice::ReadOnly) || !IsOfFamily(file.read(HeaderOctets)) ||
        FileSystem::Current().KindOf(users) == FileKind::None)
        return nullptr;
    throw Error(errNotSupported, QStringLiteral("another program has it open, for '%1' is there. Close it there. If "
                                                "nobody has it open, a program left that file behind: take it away")
                                     .arg(users));
}

} // namespace

std::unique_ptr<engine::Engine> MakeJetEngine()
{
    return std::make_unique<JetEngine>();
}

} // namespace dao::jet
