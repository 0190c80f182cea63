// SPDX-License-Identifier: Apache-2.0
#include "platform/records/StoreReuse.h"

#include "platform/records/engines/Engine.h"

#include <utility>

namespace dao
{

namespace
{

struct Kept
{
    QString FileName;
    std::unique_ptr<engine::Store> Store;
};

thread_local bool isReusing = false;
/// The file that is being opened; others come only in between.
thread_local Kept kept;

} // namespace

StoreReuse::StoreReuse()
{
    isReusing = true;
}

StoreReuse::~StoreReuse()
{
    isReusing = false;
    kept = {};
}

std::unique_ptr<engine::Store> StoreReuse::Take(const QString& fileName)
{
    if (!kept.Store || kept.FileName != fileName)
        return nullptr;
    std::unique_ptr<engine::Store> store = std::move(kept.Store);
    return store->IsAsNew(fileName) ? std::move(store) : nullptr;
}

void StoreReuse::Keep(const QString& fileName, std::unique_ptr<engine::Store>& store)
{
    if (isReusing && store && !kept.Store && store->MayServeAgain())
        kept = {fileName, std::move(store)};
}

} // namespace dao
