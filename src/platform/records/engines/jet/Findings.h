// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/FileReport.h"
#include "platform/records/engines/jet/Octets.h"

#include <utility>

namespace dao::jet
{

/// What an examination found so far.
class Findings
{
public:
    /// What the rows themselves make good again: indexes, counts.
    void AddRepairable(const QString& words)
    {
        if (Report_.Verdict == FileReport::State::Sound)
            Report_.Verdict = FileReport::State::Repairable;
        Keep(words);
    }
    void AddDamage(const QString& words)
    {
        Report_.Verdict = FileReport::State::Damaged;
        Report_.IsStructureSound = false;
        Keep(words);
    }
    void AddMemo(const DamagedMemo& memo)
    {
        Report_.Verdict = FileReport::State::Damaged;
        if (Report_.Memos.size() < Kept)
            Report_.Memos += memo;
    }
    /// Runs a part; what breaks it off is damage.
    template <typename Part>
    void Run(const QString& where, const Part& part)
    {
        try {
            part();
        } catch (const Fault& fault) {
            AddDamage(where + fault.Words());
        }
    }
    FileReport Take() { return std::move(Report_); }

private:
    static constexpr qsizetype Kept = 100;

    void Keep(const QString& words)
    {
        if (Report_.Faults.size() < Kept)
            Report_.Faults += words;
    }

    FileReport Report_;
};

} // namespace dao::jet
