// SPDX-License-Identifier: Apache-2.0

// The desk's search where its index, its disk or its station is in trouble: what is said, and that it heals by itself.

#include "SearchDeskTest.h"
#include "WithoutRights.h"
#include "messages/MessageWindow.h"
#include "messages/PreviewPane.h"
#include "messages/search/IndexConnection.h"
#include "support/FilesMayNotGrow.h"
#include "window/NoticeBar.h"

#include <QDir>
#include <QRegularExpression>

namespace
{
class SearchTroubleTest : public SearchDeskTest
{
protected:
    void BeginSearch()
    {
        QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Window_()));
    }
    QDir Cache() const { return QDir(Path(QStringLiteral("cache/Tolva/Search"))); }
    QString IndexFile() const
    {
        return Cache().filePath(Cache().entryList({QStringLiteral("*.index")}, QDir::Files).value(0));
    }
    QString Problem() const
    {
        const auto& notice = Part<NoticeBar>("searchProblem");
        return notice.isVisible() ? notice.Text() : QString();
    }
    bool Finds(int count)
    {
        return WaitUntil([&] { return Rows().rowCount() == count; }, 30'000);
    }
    void FileMany(int count)
    {
        std::vector<cMessagePtr> messages;
        for (int i = 0; i < count; ++i) {
            const auto message = std::make_shared<cMessage>();
            message->SetCDOMessage(
                std::make_shared<cdo::Message>(Mail("Number " + QByteArray::number(i), "ferry\r\n")));
            message->SetCategory(tmcSaved);
            messages.push_back(message);
        }
        Station.Database().SaveMessages(messages, [] { return true; });
    }
};

const QString Sought = QStringLiteral("ferry");
} // namespace

TEST_F(SearchTroubleTest, AFullDiskIsSaidInWordsAndTheSearchHealsByItself)
{
    QByteArray words("ferry ");
    for (int i = 0; i < 30'000; ++i)
        words += "w" + QByteArray::number(i) + (i % 10 == 9 ? "\r\n" : " ");
    FileMail(Mail("Large", words), tmcInbox, mfRead);
    OpenWindow();
    {
        const FilesMayNotGrow full(20'000);
        BeginSearch();
        PressKeys(Sought);
        EXPECT_TRUE(WaitUntil([this] { return Problem().contains(u"the disk is full"); }, 20'000))
            << qPrintable(Problem());
        EXPECT_TRUE(Problem().contains(u"the station itself is not concerned"));
        EXPECT_EQ(Rows().rowCount(), 0);
    }
    EXPECT_TRUE(Finds(1)) << "as soon as there is room";
    EXPECT_TRUE(WaitUntil([this] { return Problem().isEmpty(); }, 20'000));
}

TEST_F(SearchTroubleTest, AnIndexThatThisAccountMayNotWriteIsSaidInWords)
{
    FileMail(Mail("One", "ferry\r\n"), tmcInbox, mfRead);
    OpenSearch();
    CloseWindow();
    {
        const WithoutRights without(Path(QStringLiteral("cache")));
        OpenWindow();
        BeginSearch();
        PressKeys(Sought);
        EXPECT_TRUE(WaitUntil([this] { return Problem().contains(u"this account may not write there"); }, 20'000))
            << qPrintable(Problem());
        EXPECT_EQ(Window->List().NumberItems(), 1) << "all else works";
    }
    EXPECT_TRUE(Finds(1)) << "as soon as it may";
}

TEST_F(SearchTroubleTest, AnIndexThatADiskSpoiltWhileItIsSearchedIsMadeAnewWithoutAWord)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    Type(Sought);
    ASSERT_EQ(Rows().rowCount(), 1);
    {
        QFile file(IndexFile());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_EQ(file.write(QByteArray(static_cast<qsizetype>(file.size()), 'x')), file.size());
    }
    OtherComputer("file", {Write(QStringLiteral("new.eml"), Mail("Two", "the ferry sails\r\n"))});
    EXPECT_TRUE(Finds(2));
    EXPECT_TRUE(Problem().isEmpty()) << qPrintable(Problem());
}

TEST_F(SearchTroubleTest, AnIndexOfTheFutureIsMadeAnewWithoutAWord)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    CloseWindow();
    {
        QFile file(IndexFile());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        constexpr qint64 Version = 63; // in the header
        ASSERT_TRUE(file.seek(Version) && file.putChar(99));
    }
    OpenWindow();
    BeginSearch();
    PressKeys(Sought);
    EXPECT_TRUE(Finds(1));
    EXPECT_TRUE(Problem().isEmpty()) << qPrintable(Problem());
    EXPECT_LT(IndexConnection(IndexFile()).Number("PRAGMA user_version"), 99) << "it is one of today";
}

TEST_F(SearchTroubleTest, AStationThatIsPutBackWhileItIsSearchedShowsWhatItHasNow)
{
    FileMail(Mail("One", "ferry\r\n"));
    OtherComputer("backup");
    FileMail(Mail("Two", "ferry xylophonist\r\n"));
    OpenSearch();
    Type(Sought);
    ASSERT_EQ(Rows().rowCount(), 2);
    Window->List().SetAutoUpdateInterval(0); // its window finds out by itself
    OtherComputer("restore", {QStringLiteral("--yes")});
    EXPECT_TRUE(Finds(1));
    EXPECT_EQ(Cell(0, 1), QStringLiteral("One"));
    EXPECT_TRUE(WaitUntil([this] { return Cache().entryList({QStringLiteral("*.index")}).size() == 1; }, 20'000))
        << "nothing is left of the state before";
    Type(QStringLiteral("xylophonist"));
    EXPECT_TRUE(WaitUntil([this] { return Count() == u"No messages"; }, 20'000)) << qPrintable(Count());
}

TEST_F(SearchTroubleTest, AMessageThatIsErasedWhileItIsShownLeavesRowAndPane)
{
    const qint32 reference = FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    Type(Sought);
    auto* pane = Window_().findChild<PreviewPane*>();
    ASSERT_TRUE(WaitUntil([&] { return pane->Message() && pane->IsLoaded(); }));
    ASSERT_EQ(pane->Message()->Reference(), reference);
    OtherComputer("delete", {QString::number(reference), QStringLiteral("--permanently")});
    EXPECT_TRUE(Finds(0));
    EXPECT_EQ(pane->Message(), nullptr);
    EXPECT_TRUE(WaitUntil([this] { return Count() == u"No messages"; }, 20'000)) << qPrintable(Count());
    Press(Qt::Key_Return);
    EXPECT_TRUE(Window->MessageWindows().isEmpty());
}

TEST_F(SearchTroubleTest, WhatIsInTheIndexIsFoundWhileTheRestIsReadAndTheCountSaysHowMuchThatIs)
{
    constexpr int Mails = 600;
    FileMany(Mails);
    OpenWindow();
    SearchService& service = Window->Search().Service();
    bool mayGoOn = false;
    service.SetBusy([&] { return service.Percent() > 0 && !mayGoOn; });
    BeginSearch();
    PressKeys(Sought);
    static const QRegularExpression words(QStringLiteral("first (\\d+) percent searched"));
    const auto percent = [this] { return words.match(Count()).captured(1).toInt(); };
    EXPECT_TRUE(WaitUntil([&] { return percent() > 0 && Rows().rowCount() > 0; }, 30'000)) << qPrintable(Count());
    EXPECT_EQ(percent(), Rows().rowCount() * 100 / Mails) << qPrintable(Count());
    EXPECT_FALSE(WaitUntil([&] { return service.IsComplete(); }, 300)) << "the station is busy";
    mayGoOn = true;
    EXPECT_TRUE(WaitUntil([this] { return Count() == u"The first 300 of 600 messages"; }, 30'000))
        << qPrintable(Count());
}
