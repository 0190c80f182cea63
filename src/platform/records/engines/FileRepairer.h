// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RepairReport.h"
#include "platform/records/engines/Engine.h"

namespace dao::engine
{

/// What an engine is as well when its damaged files can be repaired row by row.
class FileRepairer
{
public:
    FileRepairer() = default;
    virtual ~FileRepairer() = default;
    FileRepairer(const FileRepairer&) = delete;
    FileRepairer& operator=(const FileRepairer&) = delete;

    /// Whether a file that no engine recognises any more looks as if it had been this one's.
    virtual bool RecognisesRemains(const QString& fileName) = 0;
    /// Writes what can be read of a damaged file, row by row as it was stored or not at all, into a new one, and tells
    /// what is missing. The damaged one is left as it is. hints: files that may have tables of the same names and
    /// fields. progress as for Engine::Copy. A failure leaves no target.
    virtual RepairReport Repair(const QString& source, const QString& target, const QStringList& hints,
                                const CopyProgress& progress) = 0;
};

} // namespace dao::engine
