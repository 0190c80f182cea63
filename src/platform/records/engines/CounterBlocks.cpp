// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/CounterBlocks.h"

#include "platform/records/Error.h"

#include <algorithm>
#include <limits>

namespace dao::engine
{

namespace
{
constexpr qint64 LargestBlock = 64;
constexpr qint64 HighestNumber = std::numeric_limits<qint32>::max();
} // namespace

bool CounterBlocks::HasNumber(qint64 table) const
{
    const auto found = Blocks_.find(table);
    return found != Blocks_.end() && found->second.Next <= found->second.End;
}

void CounterBlocks::Reserve(qint64 table)
{
    Block block = Blocks_[table];
    // The mark can lie below what was drawn here, where a disk that failed kept it from being restored.
    const qint64 mark = std::max(Mark(table), block.Next - 1);
    if (mark >= HighestNumber)
        throw Error(errOverflow, QStringLiteral("Overflow: the automatic counter has reached its end."));
    // One number at first: a program that files a single message then leaves nothing to give back.
    block.Size = std::clamp<qint64>(block.Size * 2, 1, LargestBlock);
    block.Next = mark + 1;
    block.End = std::min(mark + block.Size, HighestNumber);
    block.IsUncertain = true;
    Marks_.SetMark(table, block.End);
    Blocks_[table] = block;
}

void CounterBlocks::Raise(qint64 table, qint64 number)
{
    if (Mark(table) >= number)
        return;
    GiveUp(table);
    Marks_.SetMark(table, std::min(number, HighestNumber));
}

void CounterBlocks::GiveUp(qint64 table)
{
    const auto found = Blocks_.find(table);
    if (found != Blocks_.end())
        found->second.End = found->second.Next - 1;
}

qint64 CounterBlocks::Draw(qint64 table)
{
    return Blocks_[table].Next++;
}

bool CounterBlocks::HasRest() const
{
    return std::any_of(Blocks_.begin(), Blocks_.end(),
                       [](const auto& entry) { return entry.second.Next <= entry.second.End; });
}

void CounterBlocks::Return()
{
    for (auto& [table, block] : Blocks_) {
        if (block.Next <= block.End && Mark(table) == block.End)
            Marks_.SetMark(table, block.Next - 1);
    }
    Blocks_.clear();
}

void CounterBlocks::TransactionEnded()
{
    for (auto& [table, block] : Blocks_)
        block.IsUncertain = false;
}

bool CounterBlocks::TakenBack()
{
    bool isAny = false;
    for (auto& [table, block] : Blocks_) {
        if (!block.IsUncertain)
            continue;
        block.End = block.Next - 1;
        isAny = true;
    }
    return isAny;
}

void CounterBlocks::Restore()
{
    for (const auto& [table, block] : Blocks_) {
        if (block.IsUncertain && Mark(table) < block.End)
            Marks_.SetMark(table, block.End);
    }
}

} // namespace dao::engine
