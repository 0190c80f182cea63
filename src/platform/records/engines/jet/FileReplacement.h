// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/jet/FileSession.h"

namespace dao::jet
{

/// Puts another file in the place of a database that others may have open, between two commits. Rows stand at other
/// places there, so that whoever had the old one open is told so (3734) and opens it anew.
class FileReplacement final : public engine::ContentExchange
{
public:
    explicit FileReplacement(const QString& fileName) : Session_(fileName, PageFile::Use::Change) {}

    void Note(bool keepsWritersOut) override;
    bool IsAsNoted() override;
    void KeepAs(const QString& keepName, const engine::CopyProgress& progress) override;
    void RequireSameRows(const QString& replacement) override;
    bool Put(const QString& replacement) override;

private:
    FileSession Session_;
    bool IsNoted_ = false; ///< Nothing was committed since Note.
};

/// A restored file gives no number that the replaced one gave, as far as that can be read.
void RaiseCountersTo(const QString& replacement, const QString& replaced);

} // namespace dao::jet
