// SPDX-License-Identifier: Apache-2.0

// What the desk says of a mail that came by two routes.

#include "search/SameMailNotice.h"

#include "SearchDeskTest.h"
#include "messages/MessageWindow.h"
#include "window/NoticeBar.h"

#include <QPushButton>

class SameMailNoticeTest : public SearchDeskTest
{
protected:
    /// A mail with what the servers of one route put before it.
    static QByteArray By(const QByteArray& route, const QByteArray& body = "Play the lighthouse song.\r\n",
                         const QByteArray& identity = "<1@listeners.example>")
    {
        return "Received: from " + route +
               " by mx.harbour.example; Sat, 21 Nov 2026 14:05:10 +0000\r\nDelivered-To: " + route +
               "@harbour.example\r\nFrom: ann@listeners.example\r\nTo: studio@harbour.example\r\nSubject: A "
               "wish\r\nDate: Sat, 21 Nov 2026 14:05:09 +0000\r\nMessage-ID: " +
               identity + "\r\n\r\n" + body;
    }
    static NoticeBar& NoticeOf(QWidget& window)
    {
        return *window.findChild<NoticeBar*>(QStringLiteral("sameMailNotice"));
    }
    static QPushButton& ButtonOf(QWidget& window)
    {
        return *NoticeOf(window).findChild<QPushButton*>(QStringLiteral("noticeButton"));
    }
    MessageWindow& Open(qint32 reference)
    {
        return *Window->OpenInWindow(Window->Station().Database().ReadMessage(reference));
    }
    /// Long enough for an answer to have come.
    static void LetItLook() { QTest::qWait(SameMailNotice::RestMilliseconds + 300); }
};

TEST_F(SameMailNoticeTest, TheListsMessageSaysWhereTheSameOneIsAndShowsIt)
{
    const qint32 one = FileMail(By("studio"));
    const qint32 other = FileMail(By("info"), tmcSaved);
    const qint32 alone = FileMail(By("studio", "Another one.\r\n", "<2@listeners.example>"));
    FileMail(
        "From: bob@harbour.example\r\nSubject: Re: A wish\r\nDate: Sat, 21 Nov 2026 14:05:09 +0000\r\nIn-Reply-To: "
        "<1@listeners.example>\r\n\r\nYes.\r\n",
        tmcSent);
    OpenSearch();
    Window_().close();
    SelectByKeys(*Window, one);
    ASSERT_TRUE(WaitUntil([&] { return !NoticeOf(*Window).Text().isEmpty(); }));
    EXPECT_EQ(NoticeOf(*Window).Text(), QStringLiteral("The same message is also in Saved."));
    QTest::mouseClick(&ButtonOf(*Window), Qt::LeftButton);
    ASSERT_EQ(Window->MessageWindows().size(), 1);
    MessageWindow& window = *Window->MessageWindows().first();
    EXPECT_EQ(window.Reference(), other);
    ASSERT_TRUE(WaitUntil([&] { return !NoticeOf(window).Text().isEmpty(); }));
    EXPECT_EQ(NoticeOf(window).Text(), QStringLiteral("The same message is also in Inbox."));
    SelectByKeys(*Window, alone);
    EXPECT_EQ(NoticeOf(*Window).Text(), QString());
    LetItLook();
    EXPECT_EQ(NoticeOf(*Window).Text(), QString());
}

TEST_F(SameMailNoticeTest, AWindowSaysItAlsoWhereThereIsNoIndex)
{
    const qint32 one = FileMail(By("studio"));
    FileMail(By("info"), tmcSaved);
    FileMail(By("third"), tmcSent);
    const qint32 alone = FileMail(By("studio", "Another one.\r\n", "<2@listeners.example>"));
    OpenWindow();
    ASSERT_FALSE(Window->Search().Service().IsComplete());
    MessageWindow& window = Open(one);
    ASSERT_TRUE(WaitUntil([&] { return !NoticeOf(window).Text().isEmpty(); }));
    EXPECT_EQ(NoticeOf(window).Text(), QStringLiteral("The same message is also in Saved and in Sent."));
    MessageWindow& other = Open(alone);
    LetItLook();
    EXPECT_EQ(NoticeOf(other).Text(), QString()) << "what a mail says counts, not its date and subject";
}

TEST_F(SameMailNoticeTest, TwoWindowsThatAskAtOnceAreBothAnswered)
{
    const qint32 first = FileMail(By("studio"));
    FileMail(By("info"), tmcSaved);
    const qint32 second = FileMail(By("studio", "Two.\r\n", "<2@listeners.example>"));
    FileMail(By("info", "Two.\r\n", "<2@listeners.example>"), tmcSent);
    OpenSearch();
    MessageWindow& one = Open(first);
    MessageWindow& two = Open(second);
    EXPECT_TRUE(WaitUntil([&] { return NoticeOf(one).Text().endsWith(QStringLiteral("in Saved.")); }));
    EXPECT_TRUE(WaitUntil([&] { return NoticeOf(two).Text().endsWith(QStringLiteral("in Sent.")); }));
}

TEST_F(SameMailNoticeTest, AMailWithoutDateAndIdentityIsFoundToo)
{
    const QByteArray bare = "Subject: Bare\r\n\r\nNothing else.\r\n";
    const qint32 one = FileMail("Received: by one\r\n" + bare);
    FileMail("Received: by two\r\n" + bare, tmcSaved);
    OpenSearch();
    SelectByKeys(*Window, one);
    EXPECT_TRUE(WaitUntil([&] { return NoticeOf(*Window).Text().endsWith(QStringLiteral("in Saved.")); }));
}
