// SPDX-License-Identifier: Apache-2.0

// What brings a search index in line with its station.

#include "messages/search/EntryBits.h"
#include "messages/search/SearchIndex.h"

#include <algorithm>

struct SearchIndex::Known
{
    qint64 Document = 0;
    MessageState State;
};

namespace
{
const char* const Columns[] = {"sender", "recipients", "subject", "body"};

using Words = std::array<std::string, std::size(Columns)>;

int PlaceOf(std::string_view column)
{
    for (int i = 0; i < static_cast<int>(std::size(Columns)); ++i) {
        if (column == Columns[i])
            return i;
    }
    return static_cast<int>(std::size(Columns)) - 1;
}

bool IsSameState(const MessageState& a, const MessageState& b)
{
    return a.Seconds == b.Seconds && a.Category == b.Category && a.IsSMS == b.IsSMS && a.IsUnread == b.IsUnread;
}
} // namespace

void SearchIndex::AddShard(qint64 shard)
{
    IndexStatement& present = Connection_->Statement("SELECT 1 FROM shards WHERE shard = ?1");
    const bool isThere = present.Bind(1, shard).Step();
    present.Reset();
    if (isThere)
        return;
    // The one before is full: one segment is quicker to search than several, and its words take less room.
    if (shard > 0)
        Condense(shard - 1);
    const QByteArray table = TableOf(shard);
    // Two letters begin thousands of words: what they find is kept, so that it is there while one types.
    Connection_->Execute("CREATE VIRTUAL TABLE " + table +
                         " USING fts5(sender, recipients, subject, body, content='', columnsize=0, detail=column, "
                         "prefix='2', tokenize='ascii')");
    // Few large merges instead of many small ones.
    Connection_->Execute("INSERT INTO " + table + "(" + table + ", rank) VALUES ('automerge', 16)");
    Connection_->Execute("INSERT INTO " + table + "(" + table + ", rank) VALUES ('crisismerge', 64)");
    Connection_->Execute("INSERT INTO " + table + "(" + table + ", rank) VALUES ('hashsize', 8388608)");
    Connection_->Execute("INSERT INTO shards VALUES (" + QByteArray::number(shard) + ", 0, 0, NULL)");
}

QHash<qint32, SearchIndex::Known> SearchIndex::KnownBetween(qint32 first, qint32 last)
{
    IndexStatement rows(*Connection_, "SELECT * FROM messages WHERE reference BETWEEN ?1 AND ?2");
    rows.Bind(1, qint64{first}).Bind(2, qint64{last});
    QHash<qint32, Known> known;
    while (rows.Step()) {
        const MessageState state = StateIn(rows);
        known.insert(state.Reference, {rows.Integer(0), state});
    }
    return known;
}

std::vector<qint32> SearchIndex::Differing(const std::vector<RangeMark>& ranges)
{
    IndexStatement& known = Connection_->Statement("SELECT mark FROM ranges WHERE first = ?1");
    std::vector<qint32> differing;
    for (const RangeMark& range : ranges) {
        const bool isThere = known.Bind(1, qint64{range.First}).Step();
        if (!isThere || static_cast<quint64>(known.Integer(0)) != range.Mark)
            differing.push_back(range.First);
        known.Reset();
    }
    return differing;
}

void SearchIndex::KeepMark(const RangeMark& range)
{
    Connection_->Statement("INSERT OR REPLACE INTO ranges VALUES (?1, ?2)")
        .Bind(1, qint64{range.First})
        .Bind(2, static_cast<qint64>(range.Mark))
        .Run();
}

/// Inside the caller's change of that message: whether its range is in line with the station only another comparison
/// tells.
void SearchIndex::ForgetMarkOf(qint64 reference)
{
    Connection_->Statement("DELETE FROM ranges WHERE first = ?1")
        .Bind(1, (reference - 1) / RangeSize * RangeSize + 1)
        .Run();
}

std::vector<qint32> SearchIndex::Compare(const RangeMark& range, const std::vector<MessageState>& rows)
{
    IndexChange change(*Connection_);
    QHash<qint32, Known> known = KnownBetween(range.First, range.First + RangeSize - 1);
    std::vector<qint32> unread;
    for (const MessageState& row : rows) {
        const auto found = known.constFind(row.Reference);
        if (found == known.constEnd() || found->State.Content != row.Content)
            unread.push_back(row.Reference);
        if (found == known.constEnd())
            continue;
        if (!IsSameState(found->State, row)) {
            MessageState state = row;
            state.Content = found->State.Content; // until its mail is read
            state.HasFiles = found->State.HasFiles;
            WriteState(found->Document, state);
        }
        known.erase(found);
    }
    QList<qint64> gone;
    for (const Known& row : std::as_const(known))
        gone.append(row.Document);
    Erase(gone);
    if (unread.empty())
        KeepMark(range);
    change.Commit();
    return unread;
}

std::vector<qint32> SearchIndex::Within(enTolvaMessageCategories category)
{
    IndexStatement rows(*Connection_, "SELECT reference FROM messages WHERE category = " +
                                          QByteArray::number(category) + " ORDER BY reference");
    std::vector<qint32> references;
    while (rows.Step())
        references.push_back(static_cast<qint32>(rows.Integer(0)));
    return references;
}

std::vector<qint32> SearchIndex::Unlike(const std::vector<MessageState>& rows)
{
    IndexStatement& known = Connection_->Statement("SELECT content FROM messages WHERE reference = ?1");
    std::vector<qint32> references;
    for (const MessageState& row : rows) {
        const bool isThere = known.Bind(1, qint64{row.Reference}).Step();
        if (!isThere || static_cast<quint64>(known.Integer(0)) != row.Content)
            references.push_back(row.Reference);
        known.Reset();
    }
    return references;
}

void SearchIndex::EndAt(qint32 last)
{
    IndexStatement rows(*Connection_, "SELECT document FROM messages WHERE reference > ?1");
    rows.Bind(1, qint64{last});
    QList<qint64> gone;
    while (rows.Step())
        gone.append(rows.Integer(0));
    rows.Reset();
    if (gone.isEmpty())
        return;
    IndexChange change(*Connection_);
    Erase(gone);
    change.Commit();
}

/// Of a whole row.
MessageState SearchIndex::StateIn(const IndexStatement& row) const
{
    MessageState state;
    state.Reference = static_cast<qint32>(row.Integer(1));
    state.Content = static_cast<quint64>(row.Integer(2));
    state.Seconds = row.Integer(3);
    state.Category = static_cast<qint32>(row.Integer(4));
    EntryBits::Take(static_cast<quint8>(row.Integer(5)), state);
    if (row.Integer(6) != EntryBits::ProofOf(row.Integer(0), state))
        Connection_->Raise(SQLITE_CORRUPT);
    return state;
}

void SearchIndex::WriteState(qint64 document, const MessageState& state)
{
    ForgetMarkOf(state.Reference);
    IndexStatement& row = Connection_->Statement("INSERT OR REPLACE INTO messages VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7)");
    row.Bind(1, document).Bind(2, qint64{state.Reference}).Bind(3, static_cast<qint64>(state.Content));
    row.Bind(4, state.Seconds).Bind(5, qint64{state.Category});
    row.Bind(6, qint64{EntryBits::Of(state)}).Bind(7, EntryBits::ProofOf(document, state)).Run();
    NoteChange(document >> ShardBits);
}

void SearchIndex::NoteChange(qint64 shard)
{
    Connection_->Statement("UPDATE shards SET changes = changes + 1 WHERE shard = ?1").Bind(1, shard).Run();
}

void SearchIndex::Store(const std::vector<IndexedMessage>& messages)
{
    const qint64 tables = Shards();
    if (!messages.empty())
        StoreAll(messages);
    // SQLite keeps for each table of words what it took to write to it, as long as the connection lasts.
    if (Shards() != tables && !IsReplaced())
        Connection_ = std::make_unique<IndexConnection>(File_);
}

qint64 SearchIndex::Shards()
{
    return Connection_->Number("SELECT count(*) FROM shards");
}

void SearchIndex::StoreAll(const std::vector<IndexedMessage>& messages)
{
    IndexChange change(*Connection_);
    IndexStatement old(*Connection_, "SELECT document, content FROM messages WHERE reference = ?1");
    QList<qint64> replaced;
    QSet<qint32> present;
    for (const IndexedMessage& message : messages) {
        old.Bind(1, qint64{message.State.Reference});
        if (old.Step()) {
            // Another program may have been quicker with the same mail.
            if (static_cast<quint64>(old.Integer(1)) == message.State.Content)
                present.insert(message.State.Reference);
            else
                replaced.append(old.Integer(0));
        }
        old.Reset();
    }
    Erase(replaced);
    // Never in a table that is full, even where the last one was emptied since.
    const qint64 lastShard = Connection_->Number("SELECT coalesce(max(shard), 0) FROM shards");
    qint64 document =
        std::max(Connection_->Number("SELECT coalesce(max(document), 0) FROM messages"), lastShard << ShardBits) + 1;
    for (const IndexedMessage& message : messages) {
        if (present.contains(message.State.Reference))
            continue;
        present.insert(message.State.Reference); // nobody is stored twice
        Insert(document++, message);
    }
    change.Commit();
}

void SearchIndex::Insert(qint64 document, const IndexedMessage& message)
{
    const qint64 shard = document >> ShardBits;
    AddShard(shard);
    IndexStatement& row = Connection_->Statement("INSERT INTO " + TableOf(shard) +
                                                 "(rowid, sender, recipients, subject, body) VALUES (?1, ?2, ?3, ?4, "
                                                 "?5)");
    const SearchText& text = message.Text;
    row.Bind(1, document).Bind(2, text.Sender.Joined()).Bind(3, text.Recipients.Joined());
    row.Bind(4, text.Subject.Joined()).Bind(5, text.Body.Joined()).Run();
    MessageState state = message.State;
    state.HasFiles = text.HasFiles;
    WriteState(document, state);
    Connection_->Statement("UPDATE shards SET documents = documents + 1 WHERE shard = ?1").Bind(1, shard).Run();
}

/// Inside the caller's change.
void SearchIndex::Erase(const QList<qint64>& documents)
{
    QHash<qint64, QSet<qint64>> ofShards;
    for (const qint64 document : documents)
        ofShards[document >> ShardBits].insert(document);
    for (auto shard = ofShards.constBegin(); shard != ofShards.constEnd(); ++shard) {
        EraseWords(shard.key(), shard.value());
        IndexStatement row(*Connection_, "DELETE FROM messages WHERE document = ?1 RETURNING reference");
        for (const qint64 document : shard.value()) {
            row.Bind(1, document);
            while (row.Step())
                ForgetMarkOf(row.Integer(0));
            row.Reset();
        }
        IndexStatement(*Connection_,
                       "UPDATE shards SET documents = documents - ?2, changes = changes + 1 WHERE shard = ?1")
            .Bind(1, shard.key())
            .Bind(2, shard.value().size())
            .Run();
    }
    MustTidy_ = MustTidy_ || !documents.isEmpty();
}

/// The table knows a message's words by the words alone, so that all of them are gone through.
void SearchIndex::EraseWords(qint64 shard, const QSet<qint64>& documents)
{
    const QByteArray table = TableOf(shard);
    const QByteArray vocabulary = "vocabulary_" + QByteArray::number(shard);
    Connection_->Execute("CREATE VIRTUAL TABLE temp." + vocabulary + " USING fts5vocab('main', '" + table +
                         "', 'instance')");
    QHash<qint64, Words> erased;
    {
        IndexStatement rows(*Connection_, "SELECT doc, col, term FROM temp." + vocabulary);
        while (rows.Step()) {
            const qint64 document = rows.Integer(0);
            if (!documents.contains(document))
                continue;
            std::string& words = erased[document][static_cast<std::size_t>(PlaceOf(rows.Text(1)))];
            words += words.empty() ? "" : " ";
            words += rows.Text(2);
        }
    }
    Connection_->Execute("DROP TABLE temp." + vocabulary);
    IndexStatement row(*Connection_, "INSERT INTO " + table + "(" + table +
                                         ", rowid, sender, recipients, subject, body) VALUES ('delete', ?1, ?2, ?3, "
                                         "?4, ?5)");
    for (auto words = erased.constBegin(); words != erased.constEnd(); ++words) {
        row.Bind(1, words.key());
        for (int i = 0; i < static_cast<int>(words->size()); ++i)
            row.Bind(i + 2, (*words)[static_cast<std::size_t>(i)]);
        row.Run();
    }
    // Until it is written anew the table holds the words and a note that they do not count.
    Condense(shard);
}

/// Inside the caller's change.
void SearchIndex::Condense(qint64 shard)
{
    const QByteArray table = TableOf(shard);
    if (Connection_->Number("SELECT count(*) FROM sqlite_schema WHERE name = '" + table + "'") == 0)
        return;
    Connection_->Execute("INSERT INTO " + table + "(" + table + ") VALUES ('optimize')");
    Connection_->Statement("UPDATE shards SET proof = ?2 WHERE shard = ?1")
        .Bind(1, shard)
        .Bind(2, ProofOfWords(shard))
        .Run();
}

void SearchIndex::CondenseAfter(qint64 stored)
{
    constexpr qint64 FewestStored = 512; // fewer are stored in one piece
    const qint64 shard = Connection_->Number("SELECT coalesce(max(shard), 0) FROM shards");
    const qint64 documents =
        Connection_->Number("SELECT documents FROM shards WHERE shard = " + QByteArray::number(shard));
    if (stored < FewestStored || stored * 2 < documents)
        return;
    IndexChange change(*Connection_);
    Condense(shard);
    change.Commit();
    MustTidy_ = true; // what it took before is free now
}

qint64 SearchIndex::ProofOfWords(qint64 shard)
{
    // But its first block, the sizes of all texts, which FTS5 writes at the commit and nobody asks for.
    IndexStatement blocks(*Connection_, "SELECT id, block FROM " + TableOf(shard) + "_data WHERE id > 1 ORDER BY id");
    quint64 proof = 1;
    while (blocks.Step()) {
        const std::string_view block = blocks.Text(1);
        proof = StableHash::Mixed(proof, static_cast<quint64>(blocks.Integer(0)));
        proof = StableHash::Mixed(proof, StableHash::Of(block));
    }
    return static_cast<qint64>(proof);
}

/// Words are still added to the last one.
std::vector<qint64> SearchIndex::FullShards()
{
    IndexStatement& rows =
        Connection_->Statement("SELECT shard FROM shards WHERE shard < (SELECT max(shard) FROM shards)");
    std::vector<qint64> shards;
    while (rows.Step())
        shards.push_back(rows.Integer(0));
    rows.Reset();
    return shards;
}

void SearchIndex::CheckTable(qint64 shard)
{
    // Both as they stand at one moment.
    Connection_->Execute("BEGIN");
    bool isSame = false;
    try {
        const QByteArray number = QByteArray::number(shard);
        isSame = Connection_->Number("SELECT proof FROM shards WHERE shard = " + number) == ProofOfWords(shard);
    } catch (...) {
        sqlite3_exec(Connection_->Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
    Connection_->Execute("COMMIT");
    if (!isSame)
        Connection_->Raise(SQLITE_CORRUPT);
}

void SearchIndex::CheckOneTable()
{
    const std::vector<qint64> shards = FullShards();
    if (!shards.empty())
        CheckTable(shards[static_cast<std::size_t>(NextToCheck_++) % shards.size()]);
}

void SearchIndex::CheckAllTables()
{
    for (const qint64 shard : FullShards())
        CheckTable(shard);
}

bool SearchIndex::Tidy()
{
    // Writing a table anew takes its room twice; the next one would use what is left over.
    constexpr qint64 MostFreePages = 256;
    if (MustTidy_ || Connection_->Number("PRAGMA freelist_count") > MostFreePages) {
        Connection_->Execute("PRAGMA incremental_vacuum");
        MustTidy_ = !Connection_->EmptyLog();
    }
    return !MustTidy_;
}
