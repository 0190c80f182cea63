// SPDX-License-Identifier: Apache-2.0
#include "platform/records/ContentExchange.h"

#include "platform/records/FileOpening.h"
#include "platform/records/engines/EngineRegistry.h"

#include <QFileInfo>

namespace dao
{

ContentExchange::ContentExchange(const QString& file)
{
    constexpr int PageLevel = 0;
    engine::Engine& engine = EngineOfFile(file);
    Lease_ = FileLease(file, engine.Name(), PageLevel);
    Exchange_ = engine.BeginExchange(QFileInfo(file).absoluteFilePath());
}

ContentExchange::~ContentExchange() = default;

void ContentExchange::Note(bool keepsWritersOut)
{
    Exchange_->Note(keepsWritersOut);
}

bool ContentExchange::IsAsNoted()
{
    return Exchange_->IsAsNoted();
}

void ContentExchange::KeepAs(const QString& keepName, const std::function<bool(qint64 done, qint64 total)>& advance)
{
    Exchange_->KeepAs(QFileInfo(keepName).absoluteFilePath(), advance);
}

void ContentExchange::RequireSameRows(const QString& replacement)
{
    Exchange_->RequireSameRows(QFileInfo(replacement).absoluteFilePath());
}

bool ContentExchange::Put(const QString& replacement)
{
    return Exchange_->Put(QFileInfo(replacement).absoluteFilePath());
}

void ContentExchange::MarkAsRestored(const QString& replacement, const QString& replaced)
{
    EngineOfFile(replacement)
        .MarkAsRestored(QFileInfo(replacement).absoluteFilePath(), QFileInfo(replaced).absoluteFilePath());
}

FileLockout::FileLockout(const QString& file)
{
    if (QFileInfo::exists(file))
        Locks_ = engine::EngineRegistry::Instance().LockOut(QFileInfo(file).absoluteFilePath());
}

FileLockout::~FileLockout() = default;

} // namespace dao
