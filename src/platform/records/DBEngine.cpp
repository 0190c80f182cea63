// SPDX-License-Identifier: Apache-2.0
#include "platform/records/DBEngine.h"

#include "platform/records/FileOpening.h"
#include "platform/records/FileTools.h"
#include "platform/records/StoreDatabase.h"
#include "platform/records/WorkspaceTransaction.h"
#include "platform/records/engines/EngineRegistry.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace dao
{

namespace
{

constexpr int PageLevel = 0;

class EngineWorkspace final : public Workspace
{
public:
    std::unique_ptr<Connection> OpenConnection(const QString& name, int options, bool readOnly,
                                               const QString& connect) override
    {
        if (!IsOpen_)
            throw Error(errObjectInvalid, QStringLiteral("Object invalid or no longer set: the workspace is closed."));
        engine::Engine& engine = engine::EngineRegistry::Instance().ForConnect(connect);
        return engine.OpenConnection(name, options, readOnly, connect);
    }
    void Close() override { IsOpen_ = false; }

private:
    bool IsOpen_ = true;
};

void RequireFreeTarget(const QString& target)
{
    RequireFolder(target);
    const QFileInfo info(target);
    if (info.isDir() || (info.exists() && info.size() > 0))
        throw Error(errCannotOpen, QStringLiteral("Cannot write '%1': it exists already.").arg(target));
}

} // namespace

std::unique_ptr<Database> DBEngine::OpenDatabase(const QString& name, int, bool readOnly, const QString& connect)
{
    if (connect.isEmpty()) {
        SessionPtr session = OpenFile(name, readOnly, PageLevel);
        return std::make_unique<StoreDatabase>(QFileInfo(name).absoluteFilePath(), connect, std::move(session));
    }
    auto session = std::make_shared<DatabaseSession>();
    session->Store = engine::EngineRegistry::Instance().ForConnect(connect).Open(name, connect, readOnly);
    return std::make_unique<StoreDatabase>(name, connect, std::move(session));
}

std::unique_ptr<Database> DBEngine::CreateDatabase(const QString& name, const QString&, const QString& engine)
{
    if (name.isEmpty())
        throw Error(errNotAValidPath, QStringLiteral("'' is not a valid path."));
    RequireFolder(name);
    if (QFileInfo::exists(name))
        throw Error(errCannotOpen, QStringLiteral("Cannot create '%1': it exists already.").arg(name));
    engine::EngineRegistry::Instance().ForNewFiles(engine).Create(QFileInfo(name).absoluteFilePath());
    return OpenDatabase(name);
}

QString DBEngine::WithoutPassword(const QString& connect)
{
    // Most have none, and making the patterns takes a moment.
    if (connect.isEmpty())
        return connect;
    static const QRegularExpression word(
        QStringLiteral(R"(((?:pwd|\w*password)\s*=\s*)('(?:[^'\\]|\\.)*'?|[^\s;&']+))"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression inAddress(QStringLiteral(R"((://[^/?@:]*:)[^/?@]*@)"));
    QString shown = connect;
    return shown.replace(word, QStringLiteral("\\1***")).replace(inAddress, QStringLiteral("\\1***@"));
}

void DBEngine::CreateLinkedDatabase(const QString& file, const QString& connect, const QString& part)
{
    RequireFolder(file);
    engine::EngineRegistry::Instance().ForConnect(connect).CreateLinked(QFileInfo(file).absoluteFilePath(), connect,
                                                                        part);
}

bool DBEngine::IsLinked(const QString& file)
{
    try {
        return EngineOfFile(file).Capabilities().IsServer;
    } catch (const Error&) {
        return false;
    }
}

void DBEngine::LinkDatabase(const QString& file, const QString& connect, const QString& part)
{
    RequireFolder(file);
    engine::EngineRegistry::Instance().ForConnect(connect).Link(QFileInfo(file).absoluteFilePath(), connect, part);
}

void DBEngine::TakeAwayLinkedDatabase(const QString& file)
{
    EngineOfFile(file).TakeAwayLinked(QFileInfo(file).absoluteFilePath());
}

void DBEngine::CompactDatabase(const QString& source, const QString& target)
{
    engine::Engine& engine = EngineOfFile(source);
    if (target.isEmpty())
        throw Error(errNotAValidPath, QStringLiteral("'' is not a valid path."));
    RequireFreeTarget(target);
    engine.Compact(QFileInfo(source).absoluteFilePath(), QFileInfo(target).absoluteFilePath());
}

bool DBEngine::IsDatabase(const QString& file)
{
    try {
        EngineOfFile(file);
        return true;
    } catch (const Error&) {
        return false;
    }
}

void DBEngine::CopyDatabase(const QString& source, const QString& target,
                            const std::function<bool(qint64 done, qint64 total)>& advance)
{
    engine::Engine& engine = EngineOfFile(source);
    RequireFolder(target);
    engine.Copy(QFileInfo(source).absoluteFilePath(), QFileInfo(target).absoluteFilePath(), advance);
}

void DBEngine::CheckDatabase(const QString& file)
{
    RequireNotDamaged(file, ExamineDatabase(file));
}

FileReport DBEngine::ExamineDatabase(const QString& file, const std::function<bool(qint64, qint64)>& advance)
{
    return EngineOfFile(file).Examine(QFileInfo(file).absoluteFilePath(), advance);
}

qint64 DBEngine::IdentityOf(const QString& file)
{
    const QString fileName = QFileInfo(file).absoluteFilePath();
    return EngineOfFile(fileName).IdentityOf(fileName);
}

QStringList DBEngine::CompanionsOf(const QString& file)
{
    return engine::EngineRegistry::Instance().CompanionsOf(QFileInfo(file).absoluteFilePath());
}

std::unique_ptr<Workspace> DBEngine::CreateWorkspace(const QString&, const QString&, const QString&, WorkspaceTypeEnum)
{
    return std::make_unique<EngineWorkspace>();
}

void DBEngine::BeginTrans()
{
    WorkspaceTransaction::Begin();
}

void DBEngine::CommitTrans(int)
{
    WorkspaceTransaction::Commit();
}

void DBEngine::Rollback()
{
    WorkspaceTransaction::Rollback();
}

} // namespace dao
