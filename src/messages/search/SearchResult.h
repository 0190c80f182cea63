// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QSet>

#include <functional>
#include <optional>
#include <vector>

/// A message that was found.
struct SearchHit
{
    qint32 Reference = 0;
    qint64 Seconds = 0; ///< When it was sent, since 1970, universal time.
    int Rank = 0;       ///< 2 for words in the subject, 1 in names and addresses, else 0.

    friend bool operator==(const SearchHit&, const SearchHit&) = default;
};

/// Kinds that results are counted and narrowed by; a message may be of several.
enum class SearchKind
{
    Email,
    SMS,
    Unread,
    WithFiles
};

enum class SearchOrder
{
    NewestFirst,
    BestFirst
};

struct SearchResult
{
    std::vector<SearchHit> Hits; ///< The first ones in order.
    qint64 Count = 0;            ///< All of them.
    /// What narrowing to each would leave, of all that the question finds.
    QHash<qint32, qint64> Folders;
    QHash<SearchKind, qint64> Kinds;
    std::vector<qint64> Since; ///< Of each time in the options how many were sent from then on.
    bool IsFinal = true;       ///< Otherwise more messages, looked through later, may belong among the hits.
    bool IsCounted = true;     ///< Otherwise all numbers are those of the messages that were looked through so far.
};

/// How a search is run. A value.
struct SearchOptions
{
    int Most = 50; ///< Hits that are handed over.
    SearchOrder Order = SearchOrder::NewestFirst;
    /// The folders that the names in the question mean; nothing where it has none.
    std::optional<QSet<qint32>> Folders;
    /// One folder, kind or time of those that were counted.
    std::optional<qint32> OnlyFolder;
    std::optional<SearchKind> OnlyKind;
    std::optional<qint64> OnlySince; ///< Seconds since 1970, universal time.
    /// Times that results are counted by; the same unit.
    std::vector<qint64> Since;
    /// Asked now and then; false ends the search with SearchFailure::Reason::Interrupted.
    std::function<bool()> GoesOn;
    /// false: ends as soon as the hits are final, however many more there are.
    bool IsCounted = true;
    /// Told the first hits when they are final, before all are counted; and once before that, with those that were
    /// found by then, where it takes longer than Patience. Not told what the search itself answers.
    std::function<void(const SearchResult&)> First;
    int Patience = 30; ///< Milliseconds.
};
