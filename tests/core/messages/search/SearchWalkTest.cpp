// SPDX-License-Identifier: Apache-2.0

// Searches among messages of several tables of words: beside going through all of them, and how far they have to look.

#include "messages/search/EntryBits.h"
#include "messages/search/SearchFailure.h"
#include "messages/search/SearchIndex.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
constexpr int Messages = 19'000; // three tables
constexpr int TablesInAll = 3;
constexpr qint32 Old = 500; ///< One of the first table.
constexpr qint64 FirstSeconds = 1'700'000'000;
constexpr qint64 SecondsApart = 60;

struct Word
{
    const char* Text;
    double Share; ///< Of the messages that have it.
};
constexpr Word Words[] = {{"common", 0.9},  {"comet", 0.5},    {"often", 0.3},   {"some", 0.1},
                          {"seldom", 0.01}, {"rarely", 0.001}, {"once", 0.00006}};

constexpr std::size_t colSender = 0;
constexpr std::size_t colRecipients = 1;
constexpr std::size_t colSubject = 2;
constexpr std::size_t colBody = 3;
constexpr std::size_t ColumnsInAll = 4;
using Columns = std::initializer_list<std::size_t>;

/// A message as the test knows it.
struct Known
{
    MessageState State;
    std::array<QList<QByteArray>, ColumnsInAll> Words;

    bool Has(const QByteArray& word, Columns columns, bool isPrefix) const
    {
        return std::any_of(columns.begin(), columns.end(), [&](std::size_t column) {
            return std::any_of(Words[column].begin(), Words[column].end(), [&](const QByteArray& candidate) {
                return isPrefix ? candidate.startsWith(word) : candidate == word;
            });
        });
    }
};

IndexedMessage Indexed(const Known& message)
{
    IndexedMessage indexed;
    indexed.State = message.State;
    indexed.Text.HasFiles = message.State.HasFiles;
    WordSet* const sets[] = {&indexed.Text.Sender, &indexed.Text.Recipients, &indexed.Text.Subject, &indexed.Text.Body};
    for (std::size_t column = 0; column < std::size(sets); ++column) {
        for (const QByteArray& word : message.Words[column])
            sets[column]->Add({word.constData(), static_cast<std::size_t>(word.size())});
    }
    return indexed;
}

Known Drawn(qint32 reference, QRandomGenerator& random)
{
    Known message;
    message.State.Reference = reference;
    message.State.Content = static_cast<quint64>(reference);
    // As they arrive, half of them late, but for some whose sender's clock is wrong.
    message.State.Seconds = FirstSeconds + reference * SecondsApart + random.bounded(3000) - 1500;
    if (random.bounded(2) == 0)
        message.State.Seconds -= random.bounded(12'000) * SecondsApart;
    if (random.bounded(900) == 0)
        message.State.Seconds = FirstSeconds + random.bounded(2 * Messages) * SecondsApart;
    message.State.Category = random.bounded(1, 6);
    message.State.IsSMS = random.bounded(3) == 0;
    message.State.IsUnread = random.bounded(4) == 0;
    message.State.HasFiles = random.bounded(10) == 0;
    for (const Word& word : Words) {
        if (random.generateDouble() < word.Share)
            message.Words[random.bounded(4) > 0 ? colBody : static_cast<std::size_t>(random.bounded(3))].append(
                word.Text);
    }
    return message;
}

bool IsBefore(const SearchHit& a, const SearchHit& b)
{
    if (a.Rank != b.Rank)
        return a.Rank > b.Rank;
    return a.Seconds != b.Seconds ? a.Seconds > b.Seconds : a.Reference > b.Reference;
}

QList<qint32> References(const SearchResult& result)
{
    QList<qint32> references;
    for (const SearchHit& hit : result.Hits)
        references.append(hit.Reference);
    return references;
}

/// What is asked for, as the test puts it together.
struct Asked
{
    QList<QByteArray> Words;
    bool IsPrefix = false; ///< Of the last word.
    QByteArray Sender;
    bool IsUnread = false;
    SearchOptions Options;

    QString Typed() const
    {
        QByteArray typed = IsUnread ? "is:unread " : "";
        if (!Sender.isEmpty())
            typed += "from:" + Sender + ' ';
        return QString::fromLatin1(typed + Words.join(' '));
    }

    bool IsMet(const Known& message) const
    {
        for (qsizetype i = 0; i < Words.size(); ++i) {
            if (!message.Has(Words[i], {colSender, colRecipients, colSubject, colBody},
                             IsPrefix && i == Words.size() - 1))
                return false;
        }
        return (Sender.isEmpty() || message.Has(Sender, {colSender}, false)) && (!IsUnread || message.State.IsUnread);
    }

    int RankOf(const Known& message) const
    {
        const auto hasAll = [&](Columns columns) {
            for (qsizetype i = 0; i < Words.size(); ++i) {
                if (!message.Has(Words[i], columns, IsPrefix && i == Words.size() - 1))
                    return false;
            }
            return true;
        };
        if (Options.Order == SearchOrder::NewestFirst || Words.isEmpty())
            return 0;
        return hasAll({colSubject}) ? 2 : hasAll({colSender, colRecipients}) ? 1 : 0;
    }
};

bool IsOfKind(const MessageState& state, SearchKind kind)
{
    switch (kind) {
    case SearchKind::Email:
        return !state.IsSMS;
    case SearchKind::SMS:
        return state.IsSMS;
    case SearchKind::Unread:
        return state.IsUnread;
    case SearchKind::WithFiles:
        return state.HasFiles;
    }
    return false;
}

/// Going through all messages one by one.
SearchResult Plainly(const std::vector<Known>& messages, const Asked& asked)
{
    const SearchOptions& options = asked.Options;
    SearchResult result;
    result.Since.resize(options.Since.size());
    for (const Known& message : messages) {
        const MessageState& state = message.State;
        if (!asked.IsMet(message) || (options.Folders && !options.Folders->contains(state.Category)))
            continue;
        ++result.Folders[state.Category];
        for (const SearchKind kind : {SearchKind::Email, SearchKind::SMS, SearchKind::Unread, SearchKind::WithFiles}) {
            if (IsOfKind(state, kind))
                ++result.Kinds[kind];
        }
        for (std::size_t i = 0; i < options.Since.size(); ++i)
            result.Since[i] += state.Seconds >= options.Since[i] ? 1 : 0;
        if ((options.OnlyFolder && state.Category != *options.OnlyFolder) ||
            (options.OnlyKind && !IsOfKind(state, *options.OnlyKind)) ||
            (options.OnlySince && state.Seconds < *options.OnlySince))
            continue;
        ++result.Count;
        result.Hits.push_back({state.Reference, state.Seconds, asked.RankOf(message)});
    }
    std::sort(result.Hits.begin(), result.Hits.end(), IsBefore);
    result.Hits.resize(std::min(result.Hits.size(), static_cast<std::size_t>(options.Most)));
    return result;
}

Asked DrawnQuestion(QRandomGenerator& random)
{
    Asked asked;
    const int words = random.bounded(4);
    for (int i = 0; i < words; ++i)
        asked.Words.append(Words[random.bounded(static_cast<int>(std::size(Words)))].Text);
    asked.IsPrefix = words > 0 && random.bounded(3) == 0;
    if (asked.IsPrefix)
        asked.Words.last().truncate(random.bounded(2, 4));
    asked.IsUnread = words == 0 || random.bounded(5) == 0;
    if (random.bounded(6) == 0)
        asked.Sender = Words[random.bounded(3)].Text;
    SearchOptions& options = asked.Options;
    options.Most = random.bounded(1, 60);
    options.Order = random.bounded(2) == 0 ? SearchOrder::NewestFirst : SearchOrder::BestFirst;
    options.Since = {FirstSeconds + random.bounded(Messages) * SecondsApart};
    options.Patience = random.bounded(2) == 0 ? 0 : 10'000;
    if (random.bounded(5) == 0)
        options.Folders = QSet<qint32>{1, 3};
    if (random.bounded(5) == 0)
        options.OnlyFolder = random.bounded(1, 6);
    if (random.bounded(5) == 0)
        options.OnlyKind = static_cast<SearchKind>(random.bounded(4));
    if (random.bounded(5) == 0)
        options.OnlySince = FirstSeconds + random.bounded(Messages) * SecondsApart;
    return asked;
}

class SearchWalkTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const QByteArray given = qgetenv("TOLVA_TEST_SEED");
        Seed = given.isEmpty() ? QRandomGenerator::system()->generate() : given.toUInt();
        QRandomGenerator random(Seed);
        Folder = std::make_unique<QTemporaryDir>();
        SearchIndex index(File(), "station");
        std::vector<IndexedMessage> batch;
        for (qint32 reference = 1; reference <= Messages; ++reference) {
            Known_.push_back(Drawn(reference, random));
            if (reference == Old)
                Known_.back().Words[colBody] = {"common"};
            batch.push_back(Indexed(Known_.back()));
            if (batch.size() == 1000 || reference == Messages) {
                index.Store(batch);
                batch.clear();
            }
        }
    }
    static void TearDownTestSuite()
    {
        Known_.clear();
        Folder.reset();
    }
    static QString File() { return Folder->filePath(QStringLiteral("cache/station.index")); }

    static SearchQuestion Question(const QString& typed)
    {
        return SearchQuestion::Of(typed, SearchQuestion::Reading::Finished);
    }

    /// Before how many tables it was asked whether the search goes on until the first rows were final; all where they
    /// were not before the end.
    int TablesBeforeRowsOf(const QString& typed, SearchOrder order = SearchOrder::NewestFirst)
    {
        int tables = 0;
        int before = -1;
        SearchOptions options;
        options.Order = order;
        options.Patience = 60'000;
        options.GoesOn = [&tables] { return ++tables > 0; };
        options.First = [&](const SearchResult& result) {
            EXPECT_TRUE(result.IsFinal);
            before = tables;
        };
        Index.Find(Question(typed), options);
        EXPECT_EQ(tables, TablesInAll) << "all hits are counted in the end";
        return before < 0 ? tables : before;
    }

    static inline quint32 Seed = 0;
    static inline std::unique_ptr<QTemporaryDir> Folder;
    static inline std::vector<Known> Known_;
    SearchIndex Index{File(), "station"};
};
} // namespace

TEST_F(SearchWalkTest, WhatIsFoundFirstAndCountedIsWhatGoingThroughAllMessagesFinds)
{
    SCOPED_TRACE(testing::Message() << "seed (TOLVA_TEST_SEED): " << Seed);
    QRandomGenerator random(Seed + 1);
    int early = 0;
    int final = 0;
    for (int i = 0; i < 250; ++i) {
        Asked asked = DrawnQuestion(random);
        const SearchResult plain = Plainly(Known_, asked);
        SCOPED_TRACE(testing::Message() << i << ": " << qPrintable(asked.Typed()) << ", " << asked.Options.Most
                                        << (asked.Options.Order == SearchOrder::BestFirst ? " best" : " newest"));
        SearchQuestion question = SearchQuestion::Of(asked.Typed(), asked.IsPrefix ? SearchQuestion::Reading::Typing
                                                                                   : SearchQuestion::Reading::Finished);
        asked.Options.First = [&](const SearchResult& first) {
            ++(first.IsFinal ? final : early);
            EXPECT_FALSE(first.IsCounted);
            EXPECT_LE(first.Count, plain.Count);
            EXPECT_TRUE(std::is_sorted(first.Hits.begin(), first.Hits.end(), IsBefore));
            if (first.IsFinal) {
                EXPECT_EQ(References(first), References(plain));
            }
        };
        const SearchResult found = Index.Find(question, asked.Options);
        EXPECT_TRUE(found.IsFinal && found.IsCounted);
        EXPECT_EQ(References(found), References(plain));
        EXPECT_EQ(found.Count, plain.Count);
        EXPECT_EQ(found.Folders, plain.Folders);
        EXPECT_EQ(found.Kinds, plain.Kinds);
        EXPECT_EQ(found.Since, plain.Since);
        asked.Options.IsCounted = false;
        EXPECT_EQ(References(Index.Find(question, asked.Options)), References(plain));
        if (HasFailure())
            break;
    }
    EXPECT_GT(early, 0);
    EXPECT_GT(final, 0);
}

TEST_F(SearchWalkTest, TheFirstRowsOfAFrequentWordTakeTheNewestTableAlone)
{
    EXPECT_EQ(TablesBeforeRowsOf(QStringLiteral("common")), 1);
    EXPECT_EQ(TablesBeforeRowsOf(QStringLiteral("common comet often")), 1);
    EXPECT_EQ(TablesBeforeRowsOf(QStringLiteral("common"), SearchOrder::BestFirst), 1);
    EXPECT_EQ(TablesBeforeRowsOf(QStringLiteral("once")), TablesInAll) << "there are fewer than are wanted";
}

TEST_F(SearchWalkTest, WhoWaitsLongIsToldOnceWhatIsFoundByThen)
{
    int told = 0;
    SearchOptions options;
    options.Patience = 0;
    options.First = [&](const SearchResult& result) {
        ++told;
        EXPECT_FALSE(result.IsFinal);
        EXPECT_FALSE(result.IsCounted);
        EXPECT_FALSE(result.Hits.empty());
    };
    const SearchResult result = Index.Find(Question(QStringLiteral("rarely")), options);
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(result.IsFinal && result.IsCounted);
    EXPECT_EQ(result.Count, static_cast<qint64>(result.Hits.size()));
}

TEST_F(SearchWalkTest, ASearchThatNobodyWaitsForEndsBeforeTheNextTable)
{
    int tables = 0;
    bool isTold = false;
    SearchOptions options;
    options.Patience = 60'000;
    options.First = [&isTold](const SearchResult&) { isTold = true; };
    options.GoesOn = [&] {
        ++tables;
        return !isTold;
    };
    try {
        Index.Find(Question(QStringLiteral("common")), options);
        FAIL() << "it went on";
    } catch (const SearchFailure& failure) {
        EXPECT_EQ(failure.Why(), SearchFailure::Reason::Interrupted);
    }
    EXPECT_EQ(tables, 2);
    EXPECT_GT(Index.Find(Question(QStringLiteral("common")), {}).Count, 0) << "the next one is not hindered";
}

TEST_F(SearchWalkTest, WhatAnotherProgramStoresOrDeletesWhileItIsCountedBelongsToTheNextSearch)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("station.index"));
    ASSERT_TRUE(QFile::copy(File(), file));
    SearchIndex index(file, "station");
    SearchIndex other(file, "station");
    const SearchQuestion question = Question(QStringLiteral("common"));
    const qint64 before = index.Find(question, {}).Count;
    Known added;
    added.State.Reference = Messages + 1;
    added.State.Seconds = FirstSeconds;
    added.Words[colBody] = {"common", "added"};
    SearchOptions options;
    options.First = [&](const SearchResult& result) {
        if (other.Count() > Messages)
            return;
        EXPECT_FALSE(result.IsCounted);
        other.Store({Indexed(added)});
    };
    EXPECT_EQ(index.Find(question, options).Count, before) << "all of one moment";
    EXPECT_EQ(index.Find(question, {}).Count, before + 1);

    options.First = [&](const SearchResult&) { other.EndAt(Messages); };
    EXPECT_EQ(index.Find(question, options).Count, before + 1);
    EXPECT_EQ(index.Find(question, {}).Count, before);
}

TEST_F(SearchWalkTest, TablesThatAreFullHoldNoMemoryOfWhoWroteThem)
{
    constexpr std::size_t Batch = 500;
    constexpr std::size_t TwoTables = 2 * 8192;
    QTemporaryDir folder;
    SearchIndex index(folder.filePath(QStringLiteral("station.index")), "station");
    std::vector<IndexedMessage> batch;
    qint64 first = 0;
    for (std::size_t stored = 0; stored < TwoTables + Batch; stored += Batch) {
        for (std::size_t i = stored; i < stored + Batch; ++i)
            batch.push_back(Indexed(Known_[i]));
        index.Store(batch);
        batch.clear();
        first = stored == 0 ? sqlite3_memory_used() : first;
    }
    EXPECT_LT(sqlite3_memory_used(), first * 3 / 2) << "as when the first table was begun";
}

TEST_F(SearchWalkTest, AMessageDatedFarAheadStandsFirstThoughItCameLongAgo)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("station.index"));
    ASSERT_TRUE(QFile::copy(File(), file));
    {
        IndexConnection connection(file);
        MessageState state = Known_[Old - 1].State;
        state.Seconds = FirstSeconds + 10 * Messages * SecondsApart;
        connection.Execute("UPDATE messages SET seconds = " + QByteArray::number(state.Seconds) +
                           ", proof = " + QByteArray::number(EntryBits::ProofOf(Old, state)) + " WHERE document = 500");
    }
    SearchIndex index(file, "station");
    SearchOptions options;
    options.IsCounted = false;
    int tables = 0;
    options.GoesOn = [&tables] { return ++tables > 0; };
    const SearchResult result = index.Find(Question(QStringLiteral("common")), options);
    EXPECT_EQ(result.Hits.front().Reference, Old);
    EXPECT_TRUE(result.IsFinal);
    EXPECT_FALSE(result.IsCounted);
    EXPECT_LT(tables, TablesInAll) << "it was asked for alone";
}
