// SPDX-License-Identifier: Apache-2.0
#include "IndexedStation.h"
#include "messages/search/EntryBits.h"
#include "platform/records/DBEngine.h"

namespace
{
/// A station of two ranges of references, with an index that is in line with it.
class SearchRangesTest : public IndexedStation
{
protected:
    static constexpr int Messages = SearchIndex::RangeSize + 50;
    static constexpr qint32 Draft = 7;

    void SetUp() override
    {
        OpenStation();
        std::vector<cMessagePtr> messages;
        for (int i = 1; i <= Messages; ++i) {
            const auto message = std::make_shared<cMessage>();
            message->SetCDOMessage(std::make_shared<cdo::Message>(Mail("Number", "ferry n" + QByteArray::number(i))));
            message->SetCategory(i == Draft ? tmcDrafts : tmcInbox);
            messages.push_back(message);
        }
        Station->SaveMessages(messages, [] { return true; });
        ASSERT_EQ(messages.back()->Reference(), Messages);
        Follow();
    }

    /// As software does that moves no stamp.
    void ChangeQuietly(const QString& sql) const
    {
        const auto database = dao::DBEngine::OpenDatabase(FileName());
        EXPECT_GE(database->Execute(sql), 1) << qPrintable(sql);
    }

    /// Goes through the station whatever it looks like; how often each step was taken.
    QHash<SearchStep, int> GoThrough() const
    {
        QHash<SearchStep, int> steps;
        Following->Begin();
        while (!Following->IsDone()) {
            SearchWork work = Following->Next(100);
            ++steps[work.Kind];
            if (work.Kind != SearchStep::Pause)
                Following->Take(work.DoIn(*Index));
        }
        return steps;
    }

    /// What the station says of its messages beside what the index says of them; empty when they agree.
    QString Disagreement() const
    {
        IndexConnection connection(IndexFile());
        IndexStatement rows(connection, "SELECT content, seconds, category, bits FROM messages WHERE reference = ?1");
        qint64 count = 0;
        for (qint32 first = 1; first <= Messages + 100; first += SearchIndex::RangeSize) {
            for (const MessageState& row : StationRows::ReadRange(*Station, first).Rows) {
                ++count;
                rows.Bind(1, qint64{row.Reference});
                if (!rows.Step())
                    return QStringLiteral("%1 is missing").arg(row.Reference);
                if (static_cast<quint64>(rows.Integer(0)) != row.Content || rows.Integer(1) != row.Seconds ||
                    rows.Integer(2) != row.Category || rows.Integer(3) != EntryBits::Of(row))
                    return QStringLiteral("%1 is another").arg(row.Reference);
                rows.Reset();
            }
        }
        const qint64 known = Index->Count();
        return known == count ? QString() : QStringLiteral("%1 of %2 messages").arg(known).arg(count);
    }
};
} // namespace

TEST_F(SearchRangesTest, OnlyRangesInWhichSomethingChangedAreCompared)
{
    EXPECT_EQ(Disagreement(), QString());
    QHash<SearchStep, int> steps = GoThrough();
    EXPECT_EQ(steps.value(SearchStep::Look), 2);
    EXPECT_EQ(steps.value(SearchStep::Compare), 0);
    Save(Mail("New", "harbour"));
    steps = GoThrough();
    EXPECT_EQ(steps.value(SearchStep::Compare), 1);
    EXPECT_EQ(steps.value(SearchStep::Store), 1);
    EXPECT_EQ(Find(u"harbour"_qs).Count, 1);
    steps = GoThrough();
    EXPECT_EQ(steps.value(SearchStep::Compare), 0) << "what was stored is known to be in line";
}

TEST_F(SearchRangesTest, NewMailIsFoundBeforeOlderRangesAreLookedAt)
{
    Save(Mail("New", "harbour"));
    ChangeQuietly(u"UPDATE [Messages] SET [Category]=3 WHERE [Reference]=5"_qs);
    Following->Begin();
    std::size_t looked = 0;
    while (!Following->IsDone()) {
        if (Find(u"harbour"_qs).Count > 0)
            break;
        SearchWork work = Following->Next(100);
        looked += work.Marks.size();
        if (work.Kind != SearchStep::Pause)
            Following->Take(work.DoIn(*Index));
    }
    EXPECT_EQ(looked, 1U) << "the newest range alone";
    EXPECT_FALSE(Following->IsDone());
    ASSERT_TRUE(BringUpToDate(*Following, *Index));
    EXPECT_EQ(Disagreement(), QString());
}

TEST_F(SearchRangesTest, WhateverChangesInOldMessagesIsSeenThoughNoStampMoved)
{
    const struct
    {
        const char* What;
        QString Sql;
    } changes[] = {
        {"a move", u"UPDATE [Messages] SET [Category]=3 WHERE [Reference]=5"_qs},
        {"two messages in each other's folder",
         u"UPDATE [Messages] SET [Category]=4-[Category] WHERE [Reference] IN (5,6)"_qs},
        {"a mark", u"UPDATE [Messages] SET [Flags]=1 WHERE [Reference]=5"_qs},
        {"a date", u"UPDATE [Messages] SET [Sent]=46000.25 WHERE [Reference]=5"_qs},
        {"a key", u"UPDATE [Messages] SET [ToKey]='|a@example.com|' WHERE [Reference]=5"_qs},
        {"a kind", u"UPDATE [Messages] SET [MessageType]=2 WHERE [Reference]=5"_qs},
        {"a subject", u"UPDATE [Messages] SET [Subject]='Another' WHERE [Reference]=5"_qs},
        {"the text of a draft", u"UPDATE [Messages] SET [Message]='Subject: x\n\nquagmire' WHERE [Reference]=7"_qs},
        {"a deleted one", u"DELETE FROM [Messages] WHERE [Reference]=9"_qs},
        {"the last one deleted", u"DELETE FROM [Messages] WHERE [Reference]=2050"_qs},
        {"a whole range deleted", u"DELETE FROM [Messages] WHERE [Reference]>2000"_qs},
    };
    for (const auto& change : changes) {
        ASSERT_EQ(Disagreement(), QString()) << "before " << change.What;
        ChangeQuietly(change.Sql);
        ASSERT_NE(Disagreement(), QString()) << "or the test would prove nothing of " << change.What;
        GoThrough();
        EXPECT_EQ(Disagreement(), QString()) << change.What;
    }
    EXPECT_EQ(Found(u"quagmire"_qs), QList<qint32>{Draft});
}

TEST_F(SearchRangesTest, WhatAnotherProgramChangedInTheIndexIsPutRight)
{
    SearchIndex other(IndexFile(), SearchFollowing::IdentityOf(*Station));
    IndexedMessage ghost;
    ghost.State.Reference = 3; // of a range that is in line
    ghost.State.Content = 1;
    other.Store({ghost});
    EXPECT_NE(Disagreement(), QString());
    GoThrough();
    EXPECT_EQ(Disagreement(), QString()) << "words of another mail";
    other.EndAt(Messages - 3);
    EXPECT_NE(Disagreement(), QString());
    GoThrough();
    EXPECT_EQ(Disagreement(), QString()) << "messages that it took for deleted";
}

TEST_F(SearchRangesTest, AProgramThatComesLateWithWhatItReadBeforeIsPutRight)
{
    SearchIndex slowIndex(IndexFile(), SearchFollowing::IdentityOf(*Station));
    SearchFollowing slow(*Station);
    ChangeQuietly(u"UPDATE [Messages] SET [Category]=3 WHERE [Reference]=5"_qs);
    slow.Begin();
    SearchWork work;
    while (work.Kind != SearchStep::Compare) {
        slow.Take(work.DoIn(slowIndex));
        work = slow.Next(100);
    }
    ChangeQuietly(u"UPDATE [Messages] SET [Category]=4 WHERE [Reference]=5"_qs);
    GoThrough();
    ASSERT_EQ(Disagreement(), QString());
    slow.Take(work.DoIn(slowIndex));
    ASSERT_NE(Disagreement(), QString()) << "or the test would prove nothing";
    GoThrough();
    EXPECT_EQ(Disagreement(), QString());
}

TEST_F(SearchRangesTest, AStepThatFailedIsNotTakenForDone)
{
    ChangeQuietly(u"UPDATE [Messages] SET [Category]=3 WHERE [Reference]=5"_qs);
    for (const SearchStep failing : {SearchStep::Look, SearchStep::Compare}) {
        Following->Begin();
        SearchWork work;
        while (work.Kind != failing) {
            Following->Take(work.DoIn(*Index));
            work = Following->Next(100);
        }
        // Nobody does it, and nothing is taken. Who goes on all the same must not come to an end without it.
        while (!Following->IsDone())
            Following->Take(Following->Next(100).DoIn(*Index));
        EXPECT_EQ(Disagreement(), QString());
        ChangeQuietly(u"UPDATE [Messages] SET [Category]=4 WHERE [Reference]=5"_qs);
    }
}

TEST_F(SearchRangesTest, AProgramThatEndsBetweenComparingAndStoringHidesNothing)
{
    const qint32 reference = Save(Mail("New", "harbour"));
    SearchFollowing ended(*Station);
    ended.Begin();
    bool hasCompared = false;
    while (!hasCompared) {
        SearchWork work = ended.Next(100);
        hasCompared = work.Kind == SearchStep::Compare;
        if (work.Kind != SearchStep::Pause)
            ended.Take(work.DoIn(*Index));
    }
    ASSERT_EQ(Find(u"harbour"_qs).Count, 0) << "or the test would prove nothing";
    GoThrough();
    EXPECT_EQ(Found(u"harbour"_qs), QList<qint32>{reference});
    EXPECT_EQ(Disagreement(), QString());
}

TEST_F(SearchRangesTest, MailsThatAreDeletedWhileTheyAreReadAreNoFailure)
{
    std::vector<qint32> references;
    for (qint32 reference = 1000; reference > 800; --reference)
        references.push_back(reference);
    int read = 0;
    EXPECT_TRUE(StationRows::ReadMails(*Station, references, [&](SearchedMail&& mail) {
        if (++read == 1)
            ChangeQuietly(u"DELETE FROM [Messages] WHERE [Reference]<%1"_qs.arg(mail.State.Reference));
        return true;
    }));
    GoThrough();
    EXPECT_EQ(Disagreement(), QString());
}
