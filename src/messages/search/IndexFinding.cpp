// SPDX-License-Identifier: Apache-2.0

// Searching: the words by the index's tables, all else by what is known of each message. The tables are looked through
// from the one with the newest messages on, so that the first hits are there long before all are counted.

#include "common/ClockHelper.h"
#include "messages/search/EntryBits.h"
#include "messages/search/SearchFailure.h"
#include "messages/search/SearchIndex.h"

#include <QElapsedTimer>

#include <algorithm>
#include <limits>

namespace
{
constexpr qint64 NoBound = std::numeric_limits<qint64>::min();
constexpr int MostTerms = 64;
/// Of so many messages of a table one may be dated far off the others, by a clock that was wrong.
constexpr std::size_t MessagesAStraggler = 512;
/// Of which it is asked one by one whether they belong among the first hits.
constexpr std::size_t MostStragglers = 64;

QByteArray TermText(const SearchWords::Term& term)
{
    // Quotation marks make everything within literal; words have none.
    return '"' + term.Word + (term.IsPrefix ? "\" *" : "\"");
}

QByteArray AlternativeText(const QList<SearchWords::Term>& terms)
{
    QByteArrayList texts;
    for (const SearchWords::Term& term : terms.mid(0, MostTerms))
        texts.append(TermText(term));
    return '(' + texts.join(" AND ") + ')';
}

QByteArray AlternativesText(const SearchWords::Alternatives& alternatives)
{
    QByteArrayList texts;
    for (const QList<SearchWords::Term>& alternative : alternatives) {
        if (!alternative.isEmpty())
            texts.append(AlternativeText(alternative));
    }
    return '(' + texts.join(" OR ") + ')';
}

/// columns: as "{sender} : ", empty for all.
void AppendWords(QByteArrayList& conditions, const QByteArray& columns, const QList<SearchWords::Alternatives>& words)
{
    for (const SearchWords::Alternatives& alternatives : words)
        conditions.append(columns + AlternativesText(alternatives));
}

QByteArray ExpressionOf(const SearchQuestion& question)
{
    QByteArrayList conditions;
    AppendWords(conditions, {}, question.Words);
    AppendWords(conditions, "{sender} : ", question.Sender);
    AppendWords(conditions, "{recipients} : ", question.Recipients);
    QByteArrayList any;
    for (const QByteArray& term : question.AnyOf)
        any.append(TermText({term, false}));
    if (!any.isEmpty())
        conditions.append('(' + any.join(" OR ") + ')');
    return conditions.join(" AND ");
}

QByteArray ExpressionWithin(const QByteArray& columns, const SearchQuestion& question)
{
    QByteArrayList conditions;
    AppendWords(conditions, columns, question.Words);
    return conditions.join(" AND ");
}

qint64 SecondsOf(Date local)
{
    return local.IsNone() ? NoBound : ClockHelper::LocalToUTC(local).ToDateTime(Qt::UTC).toSecsSinceEpoch();
}

/// The better one first.
bool IsBetter(const SearchHit& a, const SearchHit& b)
{
    if (a.Rank != b.Rank)
        return a.Rank > b.Rank;
    return a.Seconds != b.Seconds ? a.Seconds > b.Seconds : a.Reference > b.Reference;
}
/// The best ones of those that it is given.
class FirstHits
{
public:
    explicit FirstHits(int most) : Most_(static_cast<std::size_t>(std::max(0, most))) {}

    void Keep(const SearchHit& hit)
    {
        if (Hits_.size() < Most_) {
            Hits_.push_back(hit);
            std::push_heap(Hits_.begin(), Hits_.end(), IsBetter);
        } else if (Most_ > 0 && IsBetter(hit, Hits_.front())) {
            std::pop_heap(Hits_.begin(), Hits_.end(), IsBetter);
            Hits_.back() = hit;
            std::push_heap(Hits_.begin(), Hits_.end(), IsBetter);
        }
    }

    bool IsEmpty() const { return Hits_.empty(); }
    bool IsFull() const { return Most_ > 0 && Hits_.size() == Most_; }
    /// The one that another would take the place of.
    const SearchHit& Worst() const { return Hits_.front(); }

    std::vector<SearchHit> InOrder() const
    {
        std::vector<SearchHit> hits = Hits_;
        std::sort_heap(hits.begin(), hits.end(), IsBetter);
        return hits;
    }

private:
    std::size_t Most_;
    std::vector<SearchHit> Hits_; ///< A heap: the worst one stands first.
};
} // namespace

struct SearchIndex::Finding
{
    Finding(const SearchQuestion& question, const SearchOptions& options);

    const SearchQuestion& Question;
    const SearchOptions& Options;
    QByteArray Expression;
    QByteArray InSubject; ///< Empty where the order does not ask.
    QByteArray InPeople;
    qint64 After = NoBound;
    qint64 Before = NoBound;
    FirstHits Hits;

    /// What the question itself asks for beside words.
    bool IsMet(const Entry& entry) const
    {
        if (entry.Reference == 0 || (Options.Folders && !Options.Folders->contains(entry.Category)))
            return false;
        if ((After != NoBound && qint64{entry.Seconds} < After) ||
            (Before != NoBound && qint64{entry.Seconds} >= Before))
            return false;
        const auto has = [&entry](quint8 bit) { return (entry.Bits & bit) != 0; };
        return (!Question.IsUnread || has(EntryBits::Unread) == *Question.IsUnread) &&
               (!Question.IsSMS || has(EntryBits::SMS) == *Question.IsSMS) &&
               (!Question.HasFiles || has(EntryBits::Files));
    }

    bool IsNarrowedOut(const Entry& entry) const
    {
        return (Options.OnlyFolder && entry.Category != *Options.OnlyFolder) ||
               (Options.OnlyKind && !IsOfKind(entry.Bits, *Options.OnlyKind)) ||
               (Options.OnlySince && qint64{entry.Seconds} < *Options.OnlySince);
    }

    void Take(const Entry& entry, int rank)
    {
        qint64& ofFolder = OfFolders_[static_cast<quint16>(entry.Category)];
        if (ofFolder++ == 0)
            FoldersMet_.push_back(entry.Category);
        ++OfBits_[entry.Bits % OfBits_.size()];
        for (std::size_t i = 0; i < Options.Since.size(); ++i)
            Since_[i] += qint64{entry.Seconds} >= Options.Since[i] ? 1 : 0;
        if (IsNarrowedOut(entry))
            return;
        ++Count_;
        Hits.Keep({entry.Reference, qint64{entry.Seconds}, rank});
    }

    /// As far as it has come.
    SearchResult Answer(std::vector<SearchHit> hits, bool isFinal, bool isCounted) const;

private:
    static bool IsOfKind(std::size_t bits, SearchKind kind)
    {
        switch (kind) {
        case SearchKind::Email:
            return (bits & EntryBits::SMS) == 0;
        case SearchKind::SMS:
            return (bits & EntryBits::SMS) != 0;
        case SearchKind::Unread:
            return (bits & EntryBits::Unread) != 0;
        case SearchKind::WithFiles:
            return (bits & EntryBits::Files) != 0;
        }
        return false;
    }

    // Counted for each of up to a million hits: by places in arrays.
    qint64 Count_ = 0;
    std::vector<qint64> OfFolders_ = std::vector<qint64>(std::size_t{1} << 16);
    std::vector<qint16> FoldersMet_;
    std::array<qint64, 8> OfBits_{};
    std::vector<qint64> Since_;
};

SearchIndex::Finding::Finding(const SearchQuestion& question, const SearchOptions& options)
    : Question(question),
      Options(options),
      Expression(ExpressionOf(question)),
      After(SecondsOf(question.After)),
      Before(SecondsOf(question.Before)),
      Hits(options.Most),
      Since_(options.Since.size())
{
    if (options.Order == SearchOrder::BestFirst && !question.Words.isEmpty()) {
        InSubject = ExpressionWithin("{subject} : ", question);
        InPeople = ExpressionWithin("{sender recipients} : ", question);
    }
}

SearchResult SearchIndex::Finding::Answer(std::vector<SearchHit> hits, bool isFinal, bool isCounted) const
{
    SearchResult result;
    result.Hits = std::move(hits);
    result.IsFinal = isFinal;
    result.IsCounted = isCounted;
    result.Count = Count_;
    result.Since = Since_;
    for (const qint16 folder : FoldersMet_)
        result.Folders.insert(folder, OfFolders_[static_cast<quint16>(folder)]);
    for (const SearchKind kind : {SearchKind::Email, SearchKind::SMS, SearchKind::Unread, SearchKind::WithFiles}) {
        qint64 count = 0;
        for (std::size_t bits = 0; bits < OfBits_.size(); ++bits)
            count += IsOfKind(bits, kind) ? OfBits_[bits] : 0;
        if (count > 0)
            result.Kinds.insert(kind, count);
    }
    return result;
}

void SearchIndex::ReadShard(qint64 number, Shard& shard)
{
    shard.Entries.assign(ShardSize, Entry());
    std::vector<quint16> places;
    IndexStatement& rows = Connection_->Statement("SELECT * FROM messages WHERE document BETWEEN ?1 AND ?2");
    rows.Bind(1, number << ShardBits).Bind(2, (number << ShardBits) + static_cast<qint64>(ShardSize) - 1);
    while (rows.Step()) {
        const auto place = static_cast<quint16>(static_cast<std::size_t>(rows.Integer(0)) & (ShardSize - 1));
        Entry& entry = shard.Entries[place];
        const MessageState state = StateIn(rows);
        entry.Reference = state.Reference;
        entry.Seconds = static_cast<quint32>(std::clamp(state.Seconds, qint64{0}, qint64{0xFFFFFFFF}));
        entry.Category = static_cast<qint16>(state.Category);
        entry.Bits = EntryBits::Of(state);
        places.push_back(place);
    }
    rows.Reset();
    const std::size_t stragglers = places.size() / MessagesAStraggler;
    const auto usual = places.begin() + static_cast<std::ptrdiff_t>(stragglers);
    std::partial_sort(places.begin(), places.empty() ? usual : usual + 1, places.end(),
                      [&shard](auto a, auto b) { return shard.Entries[a].Seconds > shard.Entries[b].Seconds; });
    shard.Newest = places.empty() ? 0 : shard.Entries[*usual].Seconds;
    shard.Stragglers.assign(places.begin(), usual);
}

/// Reads again what this or another program has changed since.
void SearchIndex::RefreshShards()
{
    std::map<qint64, qint64> changes;
    IndexStatement& rows = Connection_->Statement("SELECT shard, changes FROM shards");
    while (rows.Step())
        changes[rows.Integer(0)] = rows.Integer(1);
    rows.Reset();
    std::erase_if(Shards_, [&changes](const auto& shard) { return changes.count(shard.first) == 0; });
    for (const auto& [number, change] : changes) {
        Shard& shard = Shards_[number];
        if (shard.Changes == change)
            continue;
        ReadShard(number, shard);
        shard.Changes = change;
    }
}

SearchIndex::Walk SearchIndex::NewestFirst() const
{
    Walk walk;
    for (const auto& [number, shard] : Shards_)
        walk.emplace_back(number, &shard);
    std::stable_sort(walk.begin(), walk.end(),
                     [](const auto& a, const auto& b) { return a.second->Newest > b.second->Newest; });
    return walk;
}

SearchIndex::Marks SearchIndex::Matches(qint64 shard, const QByteArray& expression)
{
    const QByteArray table = TableOf(shard);
    IndexStatement& rows = Connection_->Statement("SELECT rowid FROM " + table + " WHERE " + table + " MATCH ?1");
    rows.Bind(1, std::string_view(expression.constData(), static_cast<std::size_t>(expression.size())));
    Marks marks;
    while (rows.Step())
        marks.set(static_cast<std::size_t>(rows.Integer(0)) & (ShardSize - 1));
    rows.Reset();
    return marks;
}

bool SearchIndex::DoesMatch(qint64 document, const QByteArray& expression)
{
    const QByteArray table = TableOf(document >> ShardBits);
    IndexStatement& row =
        Connection_->Statement("SELECT 1 FROM " + table + " WHERE " + table + " MATCH ?1 AND rowid = ?2");
    row.Bind(1, std::string_view(expression.constData(), static_cast<std::size_t>(expression.size())));
    const bool isThere = row.Bind(2, document).Step();
    row.Reset();
    return isThere;
}

void SearchIndex::FindIn(qint64 number, const Shard& shard, Finding& finding)
{
    const bool hasWords = !finding.Expression.isEmpty();
    const Marks found = hasWords ? Matches(number, finding.Expression) : Marks().set();
    if (found.none())
        return;
    const Marks inSubject = finding.InSubject.isEmpty() ? Marks() : Matches(number, finding.InSubject);
    const Marks inPeople = finding.InPeople.isEmpty() ? Marks() : Matches(number, finding.InPeople);
    for (std::size_t i = 0; i < ShardSize; ++i) {
        if (found.test(i) && finding.IsMet(shard.Entries[i]))
            finding.Take(shard.Entries[i], inSubject.test(i) ? 2 : inPeople.test(i) ? 1 : 0);
    }
}

/// The hits, if the shards that are left, from next on, have none that belongs among them; nothing where that takes
/// looking through them.
std::optional<std::vector<SearchHit>> SearchIndex::FinalHits(const Walk& walk, std::size_t next, const Finding& finding)
{
    const int bestRank = finding.InSubject.isEmpty() ? 0 : 2;
    if (!finding.Hits.IsFull() || finding.Hits.Worst().Rank < bestRank)
        return {};
    const qint64 since = finding.Hits.Worst().Seconds;
    if (qint64{walk[next].second->Newest} >= since)
        return {};
    std::vector<std::pair<qint64, const Entry*>> stragglers;
    for (std::size_t i = next; i < walk.size(); ++i) {
        const auto& [number, shard] = walk[i];
        for (const quint16 place : shard->Stragglers) {
            const Entry& entry = shard->Entries[place];
            if (qint64{entry.Seconds} < since)
                break;
            if (finding.IsMet(entry) && !finding.IsNarrowedOut(entry))
                stragglers.emplace_back((number << ShardBits) + place, &entry);
        }
    }
    if (stragglers.size() > MostStragglers)
        return {};
    FirstHits hits = finding.Hits;
    for (const auto& [document, entry] : stragglers) {
        const auto has = [&, document = document](const QByteArray& expression) {
            return expression.isEmpty() || DoesMatch(document, expression);
        };
        if (has(finding.Expression) && has(finding.InSubject))
            hits.Keep({entry->Reference, qint64{entry->Seconds}, bestRank});
    }
    return hits.InOrder();
}

SearchResult SearchIndex::FindAll(Finding& finding)
{
    const SearchOptions& options = finding.Options;
    const Walk walk = NewestFirst();
    QElapsedTimer time;
    time.start();
    bool isFinal = !options.First && options.IsCounted; // nobody asks before the end
    bool isEarlyTold = !options.First;
    for (std::size_t i = 0; i < walk.size(); ++i) {
        std::optional<std::vector<SearchHit>> hits = isFinal ? std::nullopt : FinalHits(walk, i, finding);
        if (hits) {
            isFinal = isEarlyTold = true;
            SearchResult result = finding.Answer(std::move(*hits), true, false);
            if (!options.IsCounted)
                return result;
            options.First(result);
        }
        if (!isEarlyTold && !finding.Hits.IsEmpty() && time.elapsed() >= options.Patience) {
            isEarlyTold = true;
            options.First(finding.Answer(finding.Hits.InOrder(), false, false));
        }
        if (options.GoesOn && !options.GoesOn())
            throw SearchFailure(SearchFailure::Reason::Interrupted, QString());
        FindIn(walk[i].first, *walk[i].second, finding);
    }
    return finding.Answer(finding.Hits.InOrder(), true, true);
}

SearchResult SearchIndex::Find(const SearchQuestion& question, const SearchOptions& options)
{
    Finding finding(question, options);
    SearchResult result;
    // What another program commits in between would belong to other entries.
    Connection_->Execute("BEGIN");
    try {
        RefreshShards();
        result = FindAll(finding);
    } catch (...) {
        sqlite3_exec(Connection_->Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
    Connection_->Execute("COMMIT");
    return result;
}
