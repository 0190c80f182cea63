// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <memory>

namespace dao
{

namespace engine
{
class Store;
}

/// A station is opened in steps that each open its file and close it again, which costs as much each time as the first.
/// While one of these lives, a file that its thread closes stays open in secret, and the next opening goes on with it.
/// Where the name belongs to another file by then, or the file to another state, it is opened anew. Scopes do not nest.
class StoreReuse
{
public:
    StoreReuse();
    ~StoreReuse();
    StoreReuse(const StoreReuse&) = delete;
    StoreReuse& operator=(const StoreReuse&) = delete;

    /// Null when the file has to be opened. fileName: absolute.
    static std::unique_ptr<engine::Store> Take(const QString& fileName);
    /// Takes the store over, so that store is null, where a scope is open and the store may serve once more.
    static void Keep(const QString& fileName, std::unique_ptr<engine::Store>& store);
};

} // namespace dao
