// SPDX-License-Identifier: Apache-2.0
#include "IndexedStation.h"
#include "messages/search/SearchPlace.h"
#include "platform/records/ContentExchange.h"
#include "platform/records/DBEngine.h"

namespace
{
class SearchFollowingTest : public IndexedStation
{
};
} // namespace

TEST_F(SearchFollowingTest, WhatChangesInTheStationChangesInTheIndex)
{
    OpenStation();
    const qint32 moved = Save(Mail("One", "ferry"));
    Follow();
    const qint32 added = Save(Mail("Two", "ferry"));
    ASSERT_TRUE(Station->ChangeMessageFlags(moved, mfRead, 0));
    Follow();
    EXPECT_EQ(Found(u"ferry is:unread"_qs), QList<qint32>{added});
    const cMessagePtr message = Station->GetMessage(moved);
    message->SetCategory(tmcSaved);
    ASSERT_TRUE(Station->SaveMessage(message));
    Follow();
    EXPECT_EQ(Find(u"ferry"_qs).Folders.value(tmcSaved), 1);
}

TEST_F(SearchFollowingTest, WhatIsErasedLeavesTheFileWithItsWordsAtTheNextLook)
{
    OpenStation();
    // Not the last one, whose reference would tell that it is gone.
    Save(Mail("Secret", "xylophonist quagmire"), tmcDeleted);
    for (int i = 0; i < 50; ++i)
        Save(Mail("Filler", "some harmless words " + QByteArray::number(i)));
    Follow();
    ASSERT_TRUE(HoldsOctets("xylophonist")) << "or the test would prove nothing";
    EXPECT_FALSE(HoldsOctets("xylophonist quagmire")) << "words, but no text that could be read";
    ASSERT_TRUE(Station->DeleteMessagesOfCategory(tmcDeleted)); // which moves no stamp
    Follow();
    EXPECT_TRUE(Found(u"quagmire"_qs).isEmpty());
    EXPECT_FALSE(HoldsOctets("xylophonist"));
    EXPECT_FALSE(HoldsOctets("quagmire"));
    EXPECT_EQ(Find(u"harmless"_qs).Count, 50);
    EXPECT_EQ(Index->Count(), 50);
}

TEST_F(SearchFollowingTest, TheTextOfADraftIsFollowedAsItIsWritten)
{
    OpenStation();
    const qint32 reference = Save(Mail("Draft", "first thoughts"), tmcDrafts);
    Follow();
    const cMessagePtr draft = Station->GetMessage(reference);
    draft->CDOMessage()->SetTextBody(u"second thoughts"_qs);
    ASSERT_TRUE(Station->SaveMessage(draft));
    Follow();
    EXPECT_TRUE(Found(u"first"_qs).isEmpty());
    EXPECT_EQ(Found(u"second"_qs), QList<qint32>{reference});
}

TEST_F(SearchFollowingTest, AnIndexThatIsUpToDateReadsNothing)
{
    OpenStation();
    Save(Mail("One", "ferry"));
    Follow();
    SearchFollowing other(*Station);
    other.Look(Index->Note());
    EXPECT_TRUE(other.IsDone());
    Save(Mail("Two", "ferry"));
    other.Look(Index->Note());
    EXPECT_FALSE(other.IsDone());
}

TEST_F(SearchFollowingTest, AnIndexThatWasMadeInManyPiecesIsWrittenAsOne)
{
    OpenStation();
    std::vector<cMessagePtr> messages;
    for (int i = 0; i < 1200; ++i) {
        QByteArray words;
        for (int word = 0; word < 60; ++word)
            words += "word" + QByteArray::number((i * 7 + word * word) % 3000) + ' ';
        const auto message = std::make_shared<cMessage>();
        message->SetCDOMessage(std::make_shared<cdo::Message>(Mail("One", words)));
        message->SetCategory(tmcInbox);
        messages.push_back(message);
    }
    Station->SaveMessages(messages, [] { return true; });
    Follow();
    const auto pages = [this] { return IndexConnection(IndexFile()).Number("PRAGMA page_count"); };
    const qint64 made = pages();
    IndexConnection index(IndexFile());
    EXPECT_EQ(index.Number("PRAGMA freelist_count"), 0);
    index.Execute("INSERT INTO words_0(words_0) VALUES ('optimize')");
    index.Execute("PRAGMA incremental_vacuum");
    EXPECT_TRUE(index.EmptyLog());
    EXPECT_EQ(pages(), made) << "there was nothing to gain";
    EXPECT_EQ(Find(u"word7"_qs).Count, Find(u"word7"_qs).Folders.value(tmcInbox));
    EXPECT_GT(Find(u"word7"_qs).Count, 0);
}

TEST_F(SearchFollowingTest, BuildingStopsAtAnyStepAndGoesOnThereLater)
{
    OpenStation();
    constexpr int Messages = 600;
    for (int i = 0; i < Messages; ++i)
        Save(Mail("One", "ferry"));
    const auto open = [this] {
        return std::make_unique<SearchIndex>(IndexFile(), SearchFollowing::IdentityOf(*Station));
    };
    qint64 before = 0;
    int rounds = 0;
    for (bool isWhole = false; !isWhole; ++rounds) {
        Index = open();
        SearchFollowing following(*Station);
        isWhole = BringUpToDate(following, *Index, [&](qint64 done, qint64 total) {
            EXPECT_EQ(total, Messages);
            return done == before;
        });
        EXPECT_GE(Index->Count(), before);
        before = Index->Count();
        ASSERT_LT(rounds, 20);
    }
    EXPECT_GT(rounds, 2) << "it was ended in between";
    EXPECT_EQ(Find(u"ferry"_qs).Count, Messages);
}

TEST_F(SearchFollowingTest, TwoProgramsShareOneIndex)
{
    OpenStation();
    Save(Mail("One", "ferry"));
    Follow();
    SearchIndex second(IndexFile(), SearchFollowing::IdentityOf(*Station));
    SearchFollowing followed(*Station);
    const auto count = [&second] {
        return second.Find(SearchQuestion::Of(u"ferry"_qs, SearchQuestion::Reading::Finished), {}).Count;
    };
    EXPECT_EQ(count(), 1);
    Save(Mail("Two", "ferry"));
    Follow();
    EXPECT_EQ(count(), 2) << "what the first one stored";
    Save(Mail("Three", "ferry"));
    // Both read the same mail and store it.
    followed.Begin();
    SearchFollowing again(*Station);
    again.Begin();
    while (!followed.IsDone() || !again.IsDone()) {
        if (!followed.IsDone())
            followed.Take(followed.Next(100).DoIn(second));
        if (!again.IsDone())
            again.Take(again.Next(100).DoIn(*Index));
    }
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(Find(u"ferry"_qs).Count, 3);
    EXPECT_EQ(second.Count(), 3);
}

TEST_F(SearchFollowingTest, AClockThatWasSetBackHidesNothing)
{
    OpenStation();
    Save(Mail("One", "ferry"));
    Follow();
    Now.Advance(-3600 * 24 * 400);
    const qint32 second = Save(Mail("Two", "harbour"));
    Follow();
    EXPECT_EQ(Found(u"harbour"_qs), QList<qint32>{second});
}

TEST_F(SearchFollowingTest, AnotherStationUnderTheSamePathHasAnIndexOfItsOwn)
{
    OpenStation();
    Save(Mail("One", "ferry"));
    Follow();
    const QByteArray identity = SearchFollowing::IdentityOf(*Station);
    Station->CloseTolvaDatabase();
    Following.reset();
    ASSERT_TRUE(QFile::remove(FileName()));
    OpenStation();
    EXPECT_NE(SearchFollowing::IdentityOf(*Station), identity);
    const qint32 other = Save(Mail("Other", "harbour"));
    Index.reset();
    Follow();
    EXPECT_TRUE(Found(u"ferry"_qs).isEmpty());
    EXPECT_EQ(Found(u"harbour"_qs), QList<qint32>{other});
}

/// The state before would be searched otherwise, with messages that the state now does not have.
TEST_F(SearchFollowingTest, ABackupThatIsPutBackHasAnIndexOfItsOwnAndTheOneBeforeGoes)
{
    OpenStation();
    Save(Mail("One", "ferry"));
    const QString backup = Folder.filePath(u"backup.mdb"_qs);
    dao::DBEngine::CopyDatabase(FileName(), backup, [](qint64, qint64) { return true; });
    Save(Mail("Two", "harbour"));
    const auto file = [this] {
        return Folder.filePath(u"cache/"_qs + QFileInfo(SearchPlace::FileFor(*Station)).fileName());
    };
    const QString before = file();
    const auto open = [&] {
        Index = std::make_unique<SearchIndex>(file(), SearchFollowing::IdentityOf(*Station),
                                              SearchPlace::PlaceOf(*Station));
        Following = std::make_unique<SearchFollowing>(*Station);
        ASSERT_TRUE(BringUpToDate(*Following, *Index));
    };
    open();
    EXPECT_EQ(Find(u"harbour"_qs).Count, 1);
    Index.reset();
    Following.reset();
    Station->CloseTolvaDatabase();
    dao::ContentExchange::MarkAsRestored(backup, FileName());
    {
        dao::ContentExchange exchange(FileName());
        exchange.Note(true);
        ASSERT_TRUE(exchange.Put(backup));
    }
    OpenStation();
    EXPECT_NE(file(), before);
    open();
    EXPECT_EQ(Find(u"harbour"_qs).Count, 0);
    EXPECT_EQ(Find(u"ferry"_qs).Count, 1);
    EXPECT_FALSE(QFile::exists(before));
}

TEST_F(SearchFollowingTest, TheIndexOfAStateThatIsGoneGoesWhenItsPlaceIsTaken)
{
    const auto name = [this](const char* file) { return Folder.filePath(u"cache/"_qs + QLatin1String(file)); };
    const auto isThere = [&](const char* file) { return QFile::exists(name(file)); };
    SearchIndex(name("before.index"), "one", "/srv/station");
    SearchIndex(name("elsewhere.index"), "two", "/srv/other");
    SearchIndex(name("after.index"), "three", "/srv/station");
    EXPECT_FALSE(isThere("before.index"));
    EXPECT_TRUE(isThere("elsewhere.index"));
    EXPECT_TRUE(isThere("after.index"));
}

TEST_F(SearchFollowingTest, AStationThatWasMovedToAnotherFolderKeepsItsIndex)
{
    OpenStation();
    const QByteArray identity = SearchFollowing::IdentityOf(*Station);
    Station->CloseTolvaDatabase();
    const QString elsewhere = Folder.filePath(u"elsewhere"_qs);
    ASSERT_TRUE(QDir().mkdir(elsewhere));
    ASSERT_TRUE(QFile::rename(FileName(), elsewhere + u"/Tolva.mdb"_qs));
    ASSERT_EQ(Station->OpenTolvaDatabase(elsewhere), 0);
    EXPECT_EQ(SearchFollowing::IdentityOf(*Station), identity);
}

/// Of one whose file carries no number the index is made anew, and finds the same.
TEST_F(SearchFollowingTest, ACompactedStationKeepsItsIndexWhereItsFileCarriesANumber)
{
    OpenStation();
    const QByteArray identity = SearchFollowing::IdentityOf(*Station);
    Station->CloseTolvaDatabase();
    const bool carriesNumber = dao::DBEngine::IdentityOf(FileName()) != 0;
    const QString compacted = Folder.filePath(u"Other.mdb"_qs);
    dao::DBEngine::CompactDatabase(FileName(), compacted);
    ASSERT_TRUE(QFile::remove(FileName()));
    ASSERT_TRUE(QFile::rename(compacted, FileName()));
    OpenStation();
    EXPECT_EQ(SearchFollowing::IdentityOf(*Station) == identity, carriesNumber);
}
