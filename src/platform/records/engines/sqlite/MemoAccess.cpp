// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/MemoAccess.h"

#include "platform/Ascii.h"
#include "platform/records/TextCodec.h"
#include "platform/records/engines/MemoCheck.h"
#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/MemoBlob.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"

#include <algorithm>
#include <limits>

namespace dao::sqlite
{

using engine::Column;
using engine::StoredMemo;

namespace
{

/// Octets of a row's memos in UTF-8; from here on they are read piece by piece.
constexpr qint64 LargeMemo = qint64(1024) * 1024;
/// Octets read at a time: little enough to be in the processor's cache when they are summed up.
constexpr int PieceSize = 256 * 1024;

/// Places in what is read of a memo.
enum MemoPlace
{
    LargePlace,
    TextPlace,
    CheckPlace
};

std::string_view View(const QByteArray& octets)
{
    return {octets.constData(), static_cast<std::size_t>(octets.size())};
}

} // namespace

bool IsMemoAsSaved(const StatementUse& use, int place, qint64 id)
{
    if (use.IsNull(place) || use.IsNull(place + 1))
        return use.IsNull(place) && use.IsNull(place + 1);
    return use.Integer(place + 1) == engine::MemoCheck(id, use.Text(place));
}

MemoAccess::MemoAccess(Connection& connection, engine::TablePtr table, bool hasChecks)
    : Connection_(connection), Table_(std::move(table)), HasChecks_(hasChecks)
{
}

QByteArray MemoAccess::Columns(int column) const
{
    const Column& memo = Table_->Columns[static_cast<std::size_t>(column)];
    const QByteArray name = QuoteName(memo.Name);
    // typeof() looks at the value's kind alone.
    const QByteArray isLarge = '(' + QByteArray(OctetsColumn) + " > " + QByteArray::number(LargeMemo) + " AND typeof(" +
                               name + ") IN ('text', 'blob'))";
    QByteArray columns = isLarge + ", CASE WHEN " + isLarge + " THEN NULL ELSE " + name + " END";
    if (HasChecks_)
        columns += ", " + CheckColumn(memo);
    return columns;
}

const Statement& MemoAccess::Prepared(std::unordered_map<int, Statement>& statements, int column,
                                      const QByteArray& condition)
{
    const auto found = statements.find(column);
    if (found != statements.end())
        return found->second;
    const QByteArray text = "SELECT " + Columns(column) + ", " + RowIdName + " FROM " + QuoteName(Table_->Name) +
                            " NOT INDEXED WHERE " + RowIdName + condition;
    return statements.emplace(column, Statement(Connection_, text)).first->second;
}

StoredMemo MemoAccess::Read(int column, qint64 id)
{
    StatementUse use(Prepared(ById_, column, " = ?"));
    use.Bind(1, id);
    return use.Step() ? Take(use, column, id) : StoredMemo();
}

std::vector<StoredMemo> MemoAccess::ReadRange(int column, std::span<const qint64> ids, qint64 octetBudget)
{
    StatementUse use(Prepared(Ranges_, column, " BETWEEN ? AND ? ORDER BY " + QByteArray(RowIdName)));
    std::vector<StoredMemo> memos;
    memos.reserve(ids.size());
    use.Bind(1, ids.front());
    use.Bind(2, ids.back());
    const int idPlace = HasChecks_ ? CheckPlace + 1 : CheckPlace;
    qint64 octets = 0;
    while (octets <= octetBudget && use.Step()) {
        const qint64 id = use.Integer(idPlace);
        while (memos.size() < ids.size() && ids[memos.size()] < id)
            memos.emplace_back();
        if (memos.size() == ids.size() || ids[memos.size()] != id)
            continue;
        memos.push_back(Take(use, column, id));
        octets += memos.back().Size();
    }
    if (octets <= octetBudget)
        memos.resize(ids.size());
    return memos;
}

StoredMemo MemoAccess::Take(const StatementUse& use, int column, qint64 id)
{
    if (use.Integer(LargePlace) != 0)
        return TakeLarge(use, column, id);
    StoredMemo memo{
        .HasRow = true, .IsDamaged = HasChecks_ && !IsMemoAsSaved(use, TextPlace, id), .Utf8 = {}, .Octets = {}};
    if (use.IsNull(TextPlace))
        return memo;
    const std::string_view text = use.Text(TextPlace);
    // An empty text is not Null, and QByteArray tells the two apart by its pointer.
    memo.Utf8 = text.empty() ? QByteArrayLiteral("") : QByteArray(text.data(), static_cast<qsizetype>(text.size()));
    return memo;
}

StoredMemo MemoAccess::TakeLarge(const StatementUse& use, int column, qint64 id)
{
    MemoBlob value(Connection_, *Table_, column);
    if (!value.MoveTo(id))
        Connection_.Raise(SQLITE_CORRUPT); // the row was there, and is held
    QByteArray utf8(value.Size(), Qt::Uninitialized);
    char* const to = utf8.data();
    engine::MemoSum sum(id);
    bool isAscii = true;
    for (int from = 0; from < value.Size(); from += PieceSize) {
        const int count = std::min(PieceSize, value.Size() - from);
        value.Read(to + from, count, from);
        const std::string_view piece(to + from, static_cast<std::size_t>(count));
        if (HasChecks_)
            sum.Add(piece);
        isAscii = isAscii && IsAscii(piece);
    }
    StoredMemo memo{.HasRow = true, .IsDamaged = false, .Utf8 = utf8, .Octets = {}};
    memo.IsDamaged = HasChecks_ && (use.IsNull(CheckPlace) || use.Integer(CheckPlace) != sum.Value());
    memo.Octets = isAscii ? utf8 : OctetsIfAll(View(utf8));
    if (!memo.Octets.isNull())
        memo.Utf8.clear();
    return memo;
}

} // namespace dao::sqlite
