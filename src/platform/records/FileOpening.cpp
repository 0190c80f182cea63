// SPDX-License-Identifier: Apache-2.0
#include "platform/records/FileOpening.h"

#include "platform/records/engines/EngineRegistry.h"

#include <QFile>
#include <QFileInfo>

namespace dao
{

namespace
{

constexpr qint64 FirstOctets = 100;

void RequireFile(const QString& fileName)
{
    if (fileName.isEmpty())
        throw Error(errNotAValidPath, QStringLiteral("'' is not a valid path."));
    RequireFolder(fileName);
    const QFileInfo info(fileName);
    if (info.isDir())
        throw Error(errCannotOpen, QStringLiteral("Cannot open '%1': it is a folder.").arg(fileName));
    if (!info.exists())
        throw Error(errFileNotFound, QStringLiteral("Could not find file '%1'.").arg(fileName));
}

} // namespace

void RequireFolder(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (!QFileInfo(info.absolutePath()).isDir())
        throw Error(errNotAValidPath, QStringLiteral("'%1' is not a valid path.").arg(fileName));
}

engine::Engine& EngineOfFile(const QString& fileName)
{
    const auto& registry = engine::EngineRegistry::Instance();
    RequireFile(fileName);
    // A file that is open is not opened a second time past its engine: closing it would let go of the locks that the
    // whole process holds on it.
    const QString known = FileLease::EngineOf(fileName);
    if (!known.isEmpty())
        return registry.Named(known);
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        throw Error(errCannotOpen,
                    QStringLiteral("Cannot open '%1': it is in use, or permission is missing.").arg(fileName));
    }
    return registry.ForFile(file.read(FirstOctets));
}

SessionPtr OpenFile(const QString& fileName, bool readOnly, int lockingMode)
{
    engine::Engine& engine = EngineOfFile(fileName);
    auto session = std::make_shared<DatabaseSession>();
    session->FileName = QFileInfo(fileName).absoluteFilePath();
    if (!readOnly)
        session->Store = StoreReuse::Take(session->FileName);
    if (!session->Store)
        session->Store = engine.Open(session->FileName, QString(), readOnly);
    session->Lease = FileLease(fileName, engine.Name(), lockingMode);
    return session;
}

} // namespace dao
