// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/postgres/ServerStore.h"

/// A station on a server as a whole: copied into a local file, looked through, and given another content.
namespace dao::postgres
{

/// Writes the station as it stands at one moment into a new file of the embedded engine, while others write, and
/// compares it value by value. Errors: those of the store and of a new file; they leave no target.
void CopyToFile(const ConnectString& connect, const QString& target, const engine::CopyProgress& progress);

/// Reads everything, and each mail against its check.
FileReport Examine(const ConnectString& connect, const engine::CopyProgress& progress);

/// From Note on nobody else writes: they are told to try again when it takes longer than their usual wait.
class StationExchange final : public engine::ContentExchange
{
public:
    explicit StationExchange(const ConnectString& connect);
    ~StationExchange() override;

    void Note(bool keepsWritersOut) override;
    bool IsAsNoted() override { return IsNoted_; }
    /// The copy is a file of the embedded engine.
    void KeepAs(const QString& keepName, const engine::CopyProgress& progress) override;
    void RequireSameRows(const QString& replacement) override;
    /// In one transaction. No number is given again that the old content gave.
    bool Put(const QString& replacement) override;

private:
    void TakeBack() noexcept;

    ServerStore Store_;
    bool IsNoted_ = false;
};

} // namespace dao::postgres
