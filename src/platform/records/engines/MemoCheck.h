// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <string_view>

/// The check that stands beside each memo in a file: by it a memo that was changed on the disk is told from what was
/// saved. Pure functions; any thread.
namespace dao::engine
{

/// CRC-32C (Castagnoli), continued from the sum of what came before; 0 to begin with. By the processor's own
/// instruction where it has one.
quint32 Crc32c(std::string_view octets, quint32 sum = 0);
/// The same without that instruction.
quint32 Crc32cByTable(std::string_view octets, quint32 sum = 0);

/// What the check column of a memo holds: the sum over the row id (eight octets, the lowest first) and the memo's
/// octets, so that the memo of one row does not pass for that of another.
qint64 MemoCheck(qint64 rowId, std::string_view utf8);

/// The same of a memo that comes in pieces.
class MemoSum
{
public:
    explicit MemoSum(qint64 rowId);
    void Add(std::string_view utf8) { Sum_ = Crc32c(utf8, Sum_); }
    qint64 Value() const { return Sum_; }

private:
    quint32 Sum_;
};

} // namespace dao::engine
