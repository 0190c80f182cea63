// SPDX-License-Identifier: Apache-2.0
#include "IndexedStation.h"
#include "core/support/FaultyEngine.h"
#include "platform/files/FileSystem.h"
#include "support/FilesMayNotGrow.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

namespace
{
class SearchFaultTest : public IndexedStation
{
protected:
    /// A station of some messages with its index, which is closed.
    void MakeIndex(int messages = 40)
    {
        OpenStation();
        for (int i = 0; i < messages; ++i)
            Save(Mail("Number " + QByteArray::number(i), "ferry and harbour " + QByteArray::number(i)));
        Follow();
        Index.reset();
        Following.reset();
    }

    QByteArray Content() const
    {
        QFile file(IndexFile());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void Put(const QByteArray& content) const
    {
        QFile file(IndexFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    /// Follows as programs do: what is damaged is made anew, once.
    void FollowAnyhow()
    {
        try {
            Follow();
            Find(u"ferry"_qs);
        } catch (const SearchFailure& failure) {
            ASSERT_EQ(failure.Why(), SearchFailure::Reason::Damaged) << failure.what();
            Index.reset();
            Following.reset();
            ASSERT_TRUE(SearchIndex::Remove(IndexFile()));
            Follow();
        }
    }
};

/// Over a station whose accesses fail when the test says so.
class FailingSearchTest : public IndexedStation
{
protected:
    ~FailingSearchTest() override { Station->CloseTolvaDatabase(); }

    FaultyEngine Engine;
};
} // namespace

TEST_F(SearchFaultTest, AnIndexThatWasCutIsMadeAnewOrFindsEverything)
{
    MakeIndex();
    const QByteArray whole = Content();
    for (const qsizetype size :
         {qsizetype{0}, qsizetype{1}, qsizetype{99}, qsizetype{100}, qsizetype{4095}, qsizetype{4096}, qsizetype{8192},
          whole.size() / 2, whole.size() - 4096, whole.size() - 1}) {
        Put(whole.left(size));
        FollowAnyhow();
        EXPECT_EQ(Find(u"ferry"_qs).Count, 40) << size;
        Index.reset();
        Following.reset();
    }
}

TEST_F(SearchFaultTest, WhatIsNoIndexOrOneOfTheFutureIsMadeAnew)
{
    MakeIndex();
    const QByteArray whole = Content();
    QByteArray future = whole;
    future[63] = 99; // the version in the header
    QByteArray foreign = whole;
    foreign[71] = 1; // whose file it is
    for (const QByteArray& content : {future, foreign, QByteArray("hello"), QByteArray(100'000, '\0'),
                                      QByteArray("SQLite format 3\0", 16) + QByteArray(5000, 'x')}) {
        Put(content);
        FollowAnyhow();
        EXPECT_EQ(Find(u"harbour"_qs).Count, 40);
        IndexConnection made(IndexFile());
        EXPECT_EQ(made.Number("PRAGMA user_version"), whole[63]) << "and is one of today";
        EXPECT_EQ(made.Number("PRAGMA application_id") & 0xFF, whole[71]);
        Index.reset();
        Following.reset();
    }
}

TEST_F(SearchFaultTest, OctetsThatWereFlippedNeverShowAMessageThatIsNotThere)
{
    MakeIndex();
    const QByteArray whole = Content();
    QRandomGenerator random(20261122);
    for (int round = 0; round < 60; ++round) {
        QByteArray flipped = whole;
        for (int i = 0; i < 8; ++i) {
            const auto place = static_cast<qsizetype>(random.bounded(static_cast<int>(whole.size())));
            flipped[place] = static_cast<char>(random.generate());
        }
        Put(flipped);
        FollowAnyhow();
        for (const SearchHit& hit : Find(u"ferry"_qs).Hits)
            EXPECT_TRUE(Station->GetMessage(hit.Reference) != nullptr) << round;
        Index.reset();
        Following.reset();
    }
}

TEST_F(SearchFaultTest, ARowThatADiskChangedIsSeenByWhoeverReadsIt)
{
    MakeIndex();
    IndexConnection(IndexFile()).Execute("UPDATE messages SET category = 3 WHERE reference = 5");
    SearchIndex index(IndexFile(), SearchFollowing::IdentityOf(*Station));
    try {
        index.Find(SearchQuestion::Of(u"ferry"_qs, SearchQuestion::Reading::Finished), {});
        FAIL() << "nothing was seen";
    } catch (const SearchFailure& failure) {
        EXPECT_EQ(failure.Why(), SearchFailure::Reason::Damaged);
    }
}

TEST_F(SearchFaultTest, AFullTableOfWordsThatADiskChangedIsSeen)
{
    std::vector<IndexedMessage> messages(8200);
    for (std::size_t i = 0; i < messages.size(); ++i) {
        messages[i].State.Reference = static_cast<qint32>(i + 1);
        messages[i].Text.Body.Add("word" + std::to_string(i));
    }
    {
        SearchIndex index(IndexFile(), "station");
        index.Store(messages);
        EXPECT_NO_THROW(index.CheckAllTables());
        EXPECT_NO_THROW(index.CheckOneTable());
        EXPECT_TRUE(index.Tidy());
    }
    EXPECT_EQ(IndexConnection(IndexFile()).Number("PRAGMA freelist_count"), 0) << "no room is wasted";
    {
        IndexConnection disk(IndexFile());
        disk.Execute("UPDATE words_0_data SET block = substr(block, 1, 100) || x'00' || substr(block, 102) "
                     "WHERE id = (SELECT max(id) FROM words_0_data)");
    }
    SearchIndex index(IndexFile(), "station");
    try {
        index.CheckAllTables();
        FAIL() << "nothing was seen";
    } catch (const SearchFailure& failure) {
        EXPECT_EQ(failure.Why(), SearchFailure::Reason::Damaged);
    }
}

TEST_F(SearchFaultTest, AFolderThatCannotBeWrittenIsSaidInWords)
{
    OpenStation();
    const QByteArray identity = SearchFollowing::IdentityOf(*Station);
    const QString blocked = Folder.filePath(u"blocked"_qs);
    QFile file(blocked);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    try {
        SearchIndex index(blocked + u"/Tolva/station.index"_qs, identity);
        FAIL() << "it was made";
    } catch (const SearchFailure& failure) {
        EXPECT_EQ(failure.Why(), SearchFailure::Reason::NoAccess);
        EXPECT_TRUE(failure.Words().contains(u"cannot be made"_qs)) << failure.what();
    }
}

TEST_F(FailingSearchTest, WhateverTheStationFailsToTellIsFoundLater)
{
    OpenStation();
    for (int i = 0; i < 3; ++i)
        Save(Mail("Number " + QByteArray::number(i), "ferry"));
    int failing = 0;
    for (bool hasFailed = true; hasFailed;) {
        ++failing;
        Index.reset();
        SearchIndex::Remove(IndexFile());
        Index = std::make_unique<SearchIndex>(IndexFile(), "station");
        Following = std::make_unique<SearchFollowing>(*Station);
        Engine.FailAt(failing, [] { throw dao::Error(dao::errFileDamaged, QStringLiteral("A page is damaged.")); });
        try {
            BringUpToDate(*Following, *Index);
        } catch (const dao::Error& error) {
            EXPECT_EQ(error.Number(), dao::errFileDamaged);
        }
        hasFailed = Engine.HasFailed();
        Engine.Heal();
        Save(Mail("Later", "harbour"));
        ASSERT_TRUE(BringUpToDate(*Following, *Index));
        EXPECT_EQ(Find(u"ferry"_qs).Count, 3) << "access " << failing;
        EXPECT_EQ(Find(u"harbour"_qs).Count, failing);
    }
    EXPECT_GT(failing, 5) << "the station is asked that often";
}

TEST_F(SearchFaultTest, ALinkUnderItsNameIsReplacedAndNotFollowed)
{
    OpenStation();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(IndexFile()).absolutePath()));
    // What is empty could be made a database of.
    for (const QByteArray& content : {QByteArray("precious"), QByteArray()}) {
        const QString elsewhere = Folder.filePath(u"elsewhere"_qs);
        QFile file(elsewhere);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
        file.close();
        ASSERT_TRUE(SearchIndex::Remove(IndexFile()));
        ASSERT_TRUE(QFile::link(elsewhere, IndexFile()));
        Index.reset();
        Follow();
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), content);
        EXPECT_EQ(FileSystem::Current().KindOf(IndexFile()), FileKind::File);
        file.close();
    }
}

TEST_F(SearchFaultTest, AFullDiskIsSaidAndWhatStoodBeforeIsFound)
{
    MakeIndex();
    Follow();
    QByteArray words;
    for (int i = 0; i < 20'000; ++i)
        words += "w" + QByteArray::number(i) + ' ';
    Save(Mail("Large", words));
    {
        const FilesMayNotGrow full(QFileInfo(IndexFile()).size());
        try {
            BringUpToDate(*Following, *Index);
            ADD_FAILURE() << "it had room";
        } catch (const SearchFailure& failure) {
            EXPECT_EQ(failure.Why(), SearchFailure::Reason::Full) << failure.what();
        }
        EXPECT_EQ(Find(u"ferry"_qs).Count, 40);
    }
    Following.reset();
    Follow();
    EXPECT_EQ(Find(u"w777"_qs).Count, 1) << "as soon as there is room";
}

TEST_F(SearchFaultTest, AnIndexThatAnotherProgramHoldsIsWaitedForAMomentOnly)
{
    MakeIndex();
    Follow();
    IndexConnection other(IndexFile());
    const IndexChange held(other);
    Save(Mail("New", "ferry"));
    QElapsedTimer time;
    time.start();
    try {
        BringUpToDate(*Following, *Index);
        FAIL() << "it was stored";
    } catch (const SearchFailure& failure) {
        EXPECT_EQ(failure.Why(), SearchFailure::Reason::Busy);
    }
    EXPECT_LT(time.elapsed(), 10'000);
    EXPECT_EQ(Find(u"ferry"_qs).Count, 40) << "searching goes on";
}

TEST_F(SearchFaultTest, ABodyOfAHundredMegabytesIsSearchedAsFarAsAnybodyReads)
{
    QByteArray body = "firstword ";
    while (body.size() < 100 * 1024 * 1024)
        body += "lines and lines of the same words that nobody reads to the end\r\n";
    QElapsedTimer time;
    time.start();
    const SearchText text = ReadSearchText(Mail("Large", body + "lastword").left(MostSearchedOctets));
    EXPECT_TRUE(text.Body.Contains("firstword"));
    EXPECT_FALSE(text.Body.Contains("lastword"));
    EXPECT_LT(time.elapsed(), 10'000);
}

TEST_F(SearchFaultTest, BodiesAndFilesAreSearchedAsFarAsThePagesSay)
{
    QByteArray body("beginning ");
    while (body.size() < 4'500'000)
        body += "the same words in line after line of it\r\n";
    const SearchText text = ReadSearchText(Mail("Long", body + "behind"));
    EXPECT_TRUE(text.Body.Contains("beginning"));
    EXPECT_FALSE(text.Body.Contains("behind"));
    cdo::Message mail(Mail("Files", "many"));
    for (int i = 1; i <= 101; ++i)
        mail.AddAttachment(u"number%1.bin"_qs.arg(i), "application/octet-stream", "x");
    const SearchText files = ReadSearchText(mail.Octets());
    EXPECT_TRUE(files.Body.Contains("number100"));
    EXPECT_FALSE(files.Body.Contains("number101"));
    EXPECT_TRUE(files.HasFiles);
}

TEST_F(SearchFaultTest, AnIndexThatWasDeletedOrTakenAnothersPlaceIsKnownByItsOpenConnection)
{
    MakeIndex(1);
    Follow();
    EXPECT_FALSE(Index->IsReplaced());
    ASSERT_TRUE(SearchIndex::Remove(IndexFile()));
    EXPECT_TRUE(Index->IsReplaced());
    const SearchIndex other(IndexFile(), "another");
    EXPECT_TRUE(Index->IsReplaced());
}

TEST_F(SearchFaultTest, AMillionWordsAndControlCharactersAreStoredWithinBounds)
{
    OpenStation();
    QByteArray words("\x01\x02\xED\xA0\xBC ");
    for (int i = 0; i < 1'000'000; ++i)
        words += "w" + QByteArray::number(i) + (i % 10 == 9 ? "\r\n" : " ");
    const qint32 reference = Save(Mail("Million", words));
    Follow();
    EXPECT_EQ(Found(u"w99"_qs), QList<qint32>{reference});
    ASSERT_TRUE(Station->DeleteMessage(reference, true));
    Follow();
    EXPECT_TRUE(Found(u"w99"_qs).isEmpty());
}
