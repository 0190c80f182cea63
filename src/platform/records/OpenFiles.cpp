// SPDX-License-Identifier: Apache-2.0
#include "platform/records/OpenFiles.h"

#include <QFileInfo>
#include <QHash>

namespace dao
{

namespace
{

struct OpenFile
{
    QString Engine;
    int LockingMode = 0;
    int Leases = 0;
};

QHash<QString, OpenFile>& OpenFiles()
{
    static QHash<QString, OpenFile> files;
    return files;
}

QString PathOf(const QString& fileName)
{
    const QFileInfo info(fileName);
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? info.absoluteFilePath() : canonical;
}

} // namespace

FileLease::FileLease(const QString& fileName, const QString& engine, int lockingMode) : Path_(PathOf(fileName))
{
    OpenFile& file = OpenFiles()[Path_];
    if (file.Leases++ == 0) {
        file.Engine = engine;
        file.LockingMode = lockingMode;
    }
}

FileLease& FileLease::operator=(FileLease&& other) noexcept
{
    if (this != &other) {
        Release();
        Path_ = std::exchange(other.Path_, {});
    }
    return *this;
}

int FileLease::LockingMode() const
{
    return OpenFiles().value(Path_).LockingMode;
}

void FileLease::Release()
{
    if (Path_.isEmpty())
        return;
    const auto found = OpenFiles().find(Path_);
    if (found != OpenFiles().end() && --found->Leases == 0)
        OpenFiles().erase(found);
    Path_.clear();
}

QString FileLease::EngineOf(const QString& fileName)
{
    return OpenFiles().value(PathOf(fileName)).Engine;
}

} // namespace dao
