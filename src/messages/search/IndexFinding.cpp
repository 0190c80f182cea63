// SPDX-License-Identifier: Apache-2.0

// Searching: the words by the index's tables, all else by what is known of each message.

#include "common/ClockHelper.h"
#include "messages/search/EntryBits.h"
#include "messages/search/SearchFailure.h"
#include "messages/search/SearchIndex.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr qint64 NoBound = std::numeric_limits<qint64>::min();
constexpr int MostTerms = 64;

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
} // namespace

struct SearchIndex::Finding
{
    const SearchQuestion& Question;
    const SearchOptions& Options;
    QByteArray Expression;
    QByteArray InSubject; ///< Empty where the order does not ask.
    QByteArray InPeople;
    qint64 After = NoBound;
    qint64 Before = NoBound;
    SearchResult Result;

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

    static bool IsOfKind(const Entry& entry, SearchKind kind)
    {
        switch (kind) {
        case SearchKind::Email:
            return (entry.Bits & EntryBits::SMS) == 0;
        case SearchKind::SMS:
            return (entry.Bits & EntryBits::SMS) != 0;
        case SearchKind::Unread:
            return (entry.Bits & EntryBits::Unread) != 0;
        case SearchKind::WithFiles:
            return (entry.Bits & EntryBits::Files) != 0;
        }
        return false;
    }

    void Take(const Entry& entry, int rank)
    {
        ++Result.Folders[entry.Category];
        for (const SearchKind kind : {SearchKind::Email, SearchKind::SMS, SearchKind::Unread, SearchKind::WithFiles}) {
            if (IsOfKind(entry, kind))
                ++Result.Kinds[kind];
        }
        for (std::size_t i = 0; i < Options.Since.size(); ++i)
            Result.Since[i] += qint64{entry.Seconds} >= Options.Since[i] ? 1 : 0;
        const bool isNarrowedOut = (Options.OnlyFolder && entry.Category != *Options.OnlyFolder) ||
                                   (Options.OnlyKind && !IsOfKind(entry, *Options.OnlyKind)) ||
                                   (Options.OnlySince && qint64{entry.Seconds} < *Options.OnlySince);
        if (isNarrowedOut)
            return;
        ++Result.Count;
        Keep({entry.Reference, qint64{entry.Seconds}, rank});
    }

    /// The worst of those that are kept stands first.
    void Keep(const SearchHit& hit)
    {
        std::vector<SearchHit>& hits = Result.Hits;
        if (static_cast<int>(hits.size()) < Options.Most) {
            hits.push_back(hit);
            std::push_heap(hits.begin(), hits.end(), IsBetter);
        } else if (!hits.empty() && IsBetter(hit, hits.front())) {
            std::pop_heap(hits.begin(), hits.end(), IsBetter);
            hits.back() = hit;
            std::push_heap(hits.begin(), hits.end(), IsBetter);
        }
    }
};

void SearchIndex::ReadShard(qint64 number, Shard& shard)
{
    shard.Entries.assign(ShardSize, Entry());
    IndexStatement& rows = Connection_->Statement("SELECT * FROM messages WHERE document BETWEEN ?1 AND ?2");
    rows.Bind(1, number << ShardBits).Bind(2, (number << ShardBits) + static_cast<qint64>(ShardSize) - 1);
    while (rows.Step()) {
        Entry& entry = shard.Entries[static_cast<std::size_t>(rows.Integer(0)) & (ShardSize - 1)];
        const MessageState state = StateIn(rows);
        entry.Reference = state.Reference;
        entry.Seconds = static_cast<quint32>(std::clamp(state.Seconds, qint64{0}, qint64{0xFFFFFFFF}));
        entry.Category = static_cast<qint16>(state.Category);
        entry.Bits = EntryBits::Of(state);
    }
    rows.Reset();
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

SearchResult SearchIndex::Find(const SearchQuestion& question, const SearchOptions& options)
{
    Finding finding{question, options, ExpressionOf(question), {}, {}, NoBound, NoBound, {}};
    finding.Result.Since.resize(options.Since.size());
    finding.After = SecondsOf(question.After);
    finding.Before = SecondsOf(question.Before);
    if (options.Order == SearchOrder::BestFirst && !question.Words.isEmpty()) {
        finding.InSubject = ExpressionWithin("{subject} : ", question);
        finding.InPeople = ExpressionWithin("{sender recipients} : ", question);
    }
    // What another program commits in between would belong to other entries.
    Connection_->Execute("BEGIN");
    try {
        RefreshShards();
        for (const auto& [number, shard] : Shards_) {
            if (options.GoesOn && !options.GoesOn())
                throw SearchFailure(SearchFailure::Reason::Interrupted, QString());
            FindIn(number, shard, finding);
        }
    } catch (...) {
        sqlite3_exec(Connection_->Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
    Connection_->Execute("COMMIT");
    std::sort_heap(finding.Result.Hits.begin(), finding.Result.Hits.end(), IsBetter);
    return finding.Result;
}
