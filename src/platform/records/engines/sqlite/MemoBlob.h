// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

namespace dao::sqlite
{

/// Reads pieces of the memos of one column where they stand, without the pages behind the piece. Keeps the file locked
/// for readers from the first read on until it is gone.
class MemoBlob
{
public:
    MemoBlob(Connection& connection, const engine::Table& table, int column);
    ~MemoBlob() { Close(); }
    MemoBlob(const MemoBlob&) = delete;
    MemoBlob& operator=(const MemoBlob&) = delete;

    /// Goes to the row. False where there is no text to be read in pieces: the row is gone, its memo is Null, or other
    /// software stored a number there.
    bool MoveTo(qint64 id);
    int Size() const { return sqlite3_blob_bytes(Handle_); }
    /// count octets of the row's memo behind the first ones; no more than there are.
    void Read(char* to, int count, int from);
    /// The first octets of the row's memo, at most so many; nothing where MoveTo is false.
    std::optional<MemoBeginning> Beginning(qint64 id, qsizetype mostOctets);

private:
    void Close();

    Connection& Connection_;
    QByteArray Table_;
    QByteArray Column_;
    sqlite3_blob* Handle_ = nullptr;
};

} // namespace dao::sqlite
