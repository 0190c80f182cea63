// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/MemoBlob.h"

#include <algorithm>

namespace dao::sqlite
{

MemoBlob::MemoBlob(Connection& connection, const engine::Table& table, int column)
    : Connection_(connection),
      Table_(table.Name.toUtf8()),
      Column_(table.Columns[static_cast<std::size_t>(column)].Name.toUtf8())
{
}

void MemoBlob::Close()
{
    // What failed was told by the read.
    sqlite3_blob_close(Handle_);
    Handle_ = nullptr;
}

bool MemoBlob::MoveTo(qint64 id)
{
    const int code = Handle_ != nullptr ? sqlite3_blob_reopen(Handle_, id)
                                        : sqlite3_blob_open(Connection_.Handle(), "main", Table_.constData(),
                                                            Column_.constData(), id, 0, &Handle_);
    if (code == SQLITE_OK)
        return true;
    // A handle that could not be moved is of no more use.
    Close();
    if (code != SQLITE_ERROR)
        Connection_.Raise(code);
    return false;
}

void MemoBlob::Read(char* to, int count, int from)
{
    const int code = sqlite3_blob_read(Handle_, to, count, from);
    if (code != SQLITE_OK)
        Connection_.Raise(code);
}

std::optional<MemoBeginning> MemoBlob::Beginning(qint64 id, qsizetype mostOctets)
{
    if (!MoveTo(id))
        return std::nullopt;
    const qsizetype size = Size();
    if (size == 0)
        return MemoBeginning{QByteArrayLiteral(""), true};
    MemoBeginning beginning{QByteArray(std::min(size, mostOctets), Qt::Uninitialized), size <= mostOctets};
    Read(beginning.Utf8.data(), static_cast<int>(beginning.Utf8.size()), 0);
    return beginning;
}

} // namespace dao::sqlite
