// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <unordered_map>

namespace dao::engine
{

/// Where a file keeps, for each table, the highest number that was ever taken out of its counter. Written inside the
/// caller's write transaction.
class CounterMarks
{
public:
    CounterMarks() = default;
    virtual ~CounterMarks() = default;
    CounterMarks(const CounterMarks&) = delete;
    CounterMarks& operator=(const CounterMarks&) = delete;

    virtual qint64 Mark(qint64 table) = 0;
    virtual void SetMark(qint64 table, qint64 mark) = 0;
};

/// The automatic counters of one connection. The file keeps for each table the highest number that was ever taken out
/// of it; a connection takes numbers out in blocks that grow with use, so that a drawn number is this connection's
/// alone before its row is stored, and a long run of inserts does not pay a commit for each. What is left of a block
/// goes back at a clean close if nobody took more since; after a crash it is never used.
class CounterBlocks
{
public:
    explicit CounterBlocks(CounterMarks& marks) : Marks_(marks) {}

    /// The highest number that was ever taken out of the file.
    qint64 Mark(qint64 table) { return Marks_.Mark(table); }
    bool HasNumber(qint64 table) const;
    /// Takes a block out of the file; inside the caller's write transaction. 6 when the counter is at its end.
    void Reserve(qint64 table);
    /// Draws nothing up to this number any more; inside the caller's write transaction.
    void Raise(qint64 table, qint64 number);
    /// Draws nothing more from a block, as its reservation failed.
    void GiveUp(qint64 table);
    /// HasNumber must hold.
    qint64 Draw(qint64 table);

    /// Whether Return would give anything back.
    bool HasRest() const;
    /// Gives back what is left, inside the caller's write transaction.
    void Return();

    /// The transaction that blocks were taken out in is durable.
    void TransactionEnded();
    /// The transaction was taken back, and the marks of its blocks with it. The numbers that were drawn from them stay
    /// drawn, the others may be another process's by now. True when there are such blocks and Restore is due.
    bool TakenBack();
    /// Puts the file's marks behind all blocks of this connection again, inside the caller's write transaction. When
    /// only a part of a transaction was taken back, they are ours to the end, as nobody else could write.
    void Restore();

private:
    struct Block
    {
        qint64 Next = 1;
        qint64 End = 0; ///< The last number of the block.
        qint64 Size = 0;
        bool IsUncertain = false; ///< Reserved by a transaction that is still open.
    };

    CounterMarks& Marks_;
    std::unordered_map<qint64, Block> Blocks_;
};

} // namespace dao::engine
