#include "platform/records/engines/sqlite/CounterBlocks.h"

#include <algorithm>
#include <limits>

namespace dao::sqlite
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
    const qint64 mark = Mark(table);
    if (mark >= HighestNumber)
        throw Error(errOverflow, QStringLiteral("Overflow: the automatic counter has reached its end."));
    Block block = Blocks_[table];
    // One number at first: a program that files a single message then leaves nothing to give back.
    block.Size = std::clamp<qint64>(block.Size * 2, 1, LargestBlock);
    block.Next = mark + 1;
    block.End = std::min(mark + block.Size, HighestNumber);
    block.IsUncertain = true;
    SetMark(table, block.End);
    Blocks_[table] = block;
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
            SetMark(table, block.Next - 1);
    }
    Blocks_.clear();
}

bool CounterBlocks::NeedsRestore() const
{
    return std::any_of(Blocks_.begin(), Blocks_.end(), [](const auto& entry) { return entry.second.IsUncertain; });
}

void CounterBlocks::TransactionEnded()
{
    for (auto& [table, block] : Blocks_)
        block.IsUncertain = false;
}

void CounterBlocks::Restore()
{
    for (auto& [table, block] : Blocks_) {
        if (!block.IsUncertain)
            continue;
        // Another process may have taken the rest of the block by now.
        const qint64 drawn = block.Next - 1;
        if (Mark(table) < drawn)
            SetMark(table, drawn);
        block.End = drawn;
        block.IsUncertain = false;
    }
}

qint64 CounterBlocks::Mark(qint64 table)
{
    if (!ReadMark_)
        ReadMark_ = Statement(Connection_, "SELECT Counter FROM \"~Tables\" WHERE Id = ?");
    StatementUse use(ReadMark_);
    use.Bind(1, table);
    return use.Step() ? use.Integer(0) : 0;
}

void CounterBlocks::SetMark(qint64 table, qint64 mark)
{
    if (!WriteMark_)
        WriteMark_ = Statement(Connection_, "UPDATE \"~Tables\" SET Counter = ?2 WHERE Id = ?1");
    StatementUse use(WriteMark_);
    use.Bind(1, table);
    use.Bind(2, mark);
    use.Run();
}

} // namespace dao::sqlite
