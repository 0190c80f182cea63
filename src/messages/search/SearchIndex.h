// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Enumerations.h"
#include "messages/search/IndexConnection.h"
#include "messages/search/SearchQuestion.h"
#include "messages/search/SearchResult.h"
#include "messages/search/SearchText.h"

#include <QHash>
#include <QSet>

#include <array>
#include <bitset>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

/// What the columns of a message's row say, as far as searches go by it.
struct MessageState
{
    qint32 Reference = 0;
    /// A number made of what its words come with: the same as long as the mail is the same.
    quint64 Content = 0;
    qint64 Seconds = 0; ///< When it was sent, or else received: since 1970, universal time.
    qint32 Category = 0;
    bool IsSMS = false;
    bool IsUnread = false;
    bool HasFiles = false; ///< Not told by the row, but with the words.
};

/// What all rows of a range of references say, in a number.
struct RangeMark
{
    qint32 First = 0;
    quint64 Mark = 0;
};

struct IndexedMessage
{
    MessageState State;
    SearchText Text;
};

/// The words of a station's messages in a file of this computer, beside the station and never in it. All that it holds
/// can be made again from the station: a file that is missing, damaged, of another version or another station is made
/// anew, empty. Programs of one computer may share it. Owned by whoever keeps it up to date or searches in it; one
/// thread at a time. Errors are SearchFailure.
///
/// The words stand in FTS5 tables of some thousand messages each (shards), so that a message that was erased leaves
/// nothing behind: its shard is written anew without its words.
class SearchIndex
{
public:
    /// Opens or makes the file; its folder is made, for this account alone. station: what tells one station from
    /// another. place: where the station lies, empty for nowhere: an index beside this one of what lay there before,
    /// such as a state that a backup took the place of, is removed when this one is made.
    SearchIndex(const QString& file, const QByteArray& station, const QByteArray& place = {});
    ~SearchIndex();
    SearchIndex(const SearchIndex&) = delete;
    SearchIndex& operator=(const SearchIndex&) = delete;

    /// Removes an index with all that belongs to it. False when something of it stays.
    static bool Remove(const QString& file);
    /// Whether the file is not the one under its name any more: somebody else has made it anew.
    bool IsReplaced() const { return Connection_->HasMoved(); }

    /// Messages whose words are in it.
    qint64 Count();
    /// How often anything in it was changed, by whatever program.
    qint64 Changes();
    /// References of a range; the first of one is 1, RangeSize + 1 and so on.
    static constexpr qint32 RangeSize = 2000;
    /// The first references of those ranges whose rows may say something else than what this knows of them.
    std::vector<qint32> Differing(const std::vector<RangeMark>& ranges);
    /// Brings what it knows of messages in line with the station's rows: all that the station has in this range, by
    /// their references. What is gone there goes here; what changed beside the mail is changed. The references of those
    /// whose mails are to be read; where there are none, it is known from now on that the range is in line.
    std::vector<qint32> Compare(const RangeMark& range, const std::vector<MessageState>& rows);
    /// The messages that it knows to be in this folder; quick for drafts alone.
    std::vector<qint32> Within(enTolvaMessageCategories category);
    /// The references of those of these messages that it does not know, or not as they are.
    std::vector<qint32> Unlike(const std::vector<MessageState>& rows);
    /// Nothing of the station has a higher reference than that: what the index has above goes.
    void EndAt(qint32 last);
    /// Takes the words of messages in, in the place of those that it had of them.
    void Store(const std::vector<IndexedMessage>& messages);
    /// So many messages were stored since it was last up to date: where they are most of the last table of words, that
    /// is written anew, which takes a fifth less room and is quicker to search.
    void CondenseAfter(qint64 stored);
    /// Reads the next of its full tables of words, in turn, and compares it with what was written: SearchFailure
    /// (Damaged) for one that a disk changed, of which SQLite itself sees little. Takes some milliseconds.
    void CheckOneTable();
    /// The same for all of them.
    void CheckAllTables();
    /// What is erased leaves the log beside the file too. False while another program hinders it; then again later.
    bool Tidy();

    /// A note of whoever keeps it up to date; empty for none.
    QByteArray Note() { return ReadNote("note"); }
    void SetNote(const QByteArray& note) { WriteNote("note", note); }

    SearchResult Find(const SearchQuestion& question, const SearchOptions& options);

private:
    static constexpr int ShardBits = 13;
    static constexpr std::size_t ShardSize = std::size_t{1} << ShardBits;
    using Marks = std::bitset<ShardSize>;

    /// What is known of a message beside its words, in the least room: there may be a million.
    struct Entry
    {
        qint32 Reference = 0; ///< 0 where there is none.
        quint32 Seconds = 0;
        qint16 Category = 0;
        quint8 Bits = 0;
    };
    struct Shard
    {
        qint64 Changes = -1; ///< With which it was read.
        std::vector<Entry> Entries;
        std::vector<quint16> Stragglers; ///< Places of the few newest entries, the newest first.
        quint32 Newest = 0;              ///< When the newest one but those was sent.
    };
    /// Shards in the order in which they are looked through.
    using Walk = std::vector<std::pair<qint64, const Shard*>>;
    struct Known;
    struct Finding;

    void OpenOrMake();
    void TakePlace(const QByteArray& place);
    bool IsOfUse();
    QByteArray ReadNote(std::string_view name);
    void WriteNote(std::string_view name, const QByteArray& value);
    void MakeStructure();
    void AddShard(qint64 shard);
    void Condense(qint64 shard);
    qint64 ProofOfWords(qint64 shard);
    void CheckTable(qint64 shard);
    std::vector<qint64> FullShards();
    static QByteArray TableOf(qint64 shard);
    QHash<qint32, Known> KnownBetween(qint32 first, qint32 last);
    MessageState StateIn(const IndexStatement& row) const;
    void WriteState(qint64 document, const MessageState& state);
    void Erase(const QList<qint64>& documents);
    void EraseWords(qint64 shard, const QSet<qint64>& documents);
    void Insert(qint64 document, const IndexedMessage& message);
    void StoreAll(const std::vector<IndexedMessage>& messages);
    qint64 Shards();
    void NoteChange(qint64 shard);
    void ForgetMarkOf(qint64 reference);
    void KeepMark(const RangeMark& range);
    void RefreshShards();
    void ReadShard(qint64 number, Shard& shard);
    Walk NewestFirst() const;
    Marks Matches(qint64 shard, const QByteArray& expression);
    bool DoesMatch(qint64 document, const QByteArray& expression);
    void FindIn(qint64 number, const Shard& shard, Finding& finding);
    SearchResult FindAll(Finding& finding);
    std::optional<std::vector<SearchHit>> FinalHits(const Walk& walk, std::size_t next, const Finding& finding);

    QString File_;
    QByteArray Station_;
    std::unique_ptr<IndexConnection> Connection_;
    std::map<qint64, Shard> Shards_;
    bool MustTidy_ = false;
    qint64 NextToCheck_ = 0;
};
