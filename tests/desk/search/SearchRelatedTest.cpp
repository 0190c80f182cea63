// SPDX-License-Identifier: Apache-2.0

// The way from one message to those that go with it.

#include "SearchDeskTest.h"
#include "messages/MessageWindow.h"
#include "messages/search/SearchText.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QMenu>

namespace
{
class SearchRelatedTest : public SearchDeskTest
{
protected:
    qint32 FileText(const QByteArray& from, const QByteArray& subject, enTolvaMessageCategories folder = tmcInbox,
                    const QByteArray& to = "Studio <studio@harbourfm.example.org>")
    {
        const auto message = std::make_shared<cMessage>();
        message->SetMessageType(emtSMS);
        message->SetCDOMessage(
            std::make_shared<cdo::Message>("From: " + from + "\r\nTo: " + to + "\r\nSubject: " + subject +
                                           "\r\nDate: Fri, 20 Nov 2026 08:00:00 +0000\r\n\r\nx\r\n"));
        message->SetCategory(folder);
        EXPECT_TRUE(Station.Database().SaveMessage(message));
        return message->Reference();
    }

    /// Selects it in the list, and chooses that entry of its menu.
    void FindFromList(qint32 reference, const char* relation)
    {
        Window->activateWindow();
        Window->List().SelectMessage(reference);
        ASSERT_TRUE(WaitUntil([&] { return Window->List().SelectedReference() == reference; }));
        Window->findChild<QAction*>(QLatin1String(relation))->trigger();
        Settle();
    }
    void Settle()
    {
        ASSERT_TRUE(
            WaitUntil([this] { return Window_().IsSettled() && Window->Search().Service().IsComplete(); }, 20'000));
    }
    /// The subjects on show, in the order of the alphabet.
    QStringList Subjects() const
    {
        QStringList subjects;
        for (int row = 0; row < Rows().rowCount(); ++row)
            subjects.append(Cell(row, 1));
        subjects.sort();
        return subjects;
    }
    bool Shows(const QStringList& subjects)
    {
        return WaitUntil([&] { return Subjects() == subjects; }, 20'000);
    }
};

QByteArray WithHeaders(QByteArray mail, const QByteArray& headers)
{
    return mail.replace("Message-ID: <1@example.org>\r\n", headers);
}
} // namespace

TEST_F(SearchRelatedTest, TheConversationOfAMailIsWhatRefersToItAndWhatItRefersTo)
{
    FileMail(WithHeaders(Mail("Question", "one\r\n"), "Message-ID: <a@example.org>\r\n"));
    const qint32 answer = FileMail(WithHeaders(Mail("Answer", "two\r\n", "Ann <ann@example.org>"),
                                               "Message-ID: <b@example.org>\r\nIn-Reply-To: <a@example.org>\r\n"),
                                   tmcSaved);
    FileMail(WithHeaders(Mail("Thanks", "three\r\n"),
                         "Message-ID: <c@example.org>\r\nReferences: <a@example.org> <b@example.org>\r\n"),
             tmcSent);
    FileMail(WithHeaders(Mail("Answer", "of another\r\n"), "Message-ID: <d@example.org>\r\n"));
    OpenWindow();
    Window->List().SetCategory(tmcSaved);
    FindFromList(answer, "sameConversation");
    EXPECT_TRUE(Shows({QStringLiteral("Answer"), QStringLiteral("Question"), QStringLiteral("Thanks")}))
        << qPrintable(Subjects().join(u','));
    EXPECT_EQ(Part<NoticeBar>("searchRelated").Text(), QStringLiteral("Only the conversation of \"Answer\"."));
}

TEST_F(SearchRelatedTest, TheConversationOfATextIsWhatWasWrittenToAndFromItsNumber)
{
    FileText("+447700900123", "First");
    const qint32 wanted = FileText("07700 900123", "Second");
    FileText("07700900124", "Other");
    const qint32 sent = FileText("Studio <studio@harbourfm.example.org>", "Reply", tmcSent, "+44 7700 900123");
    FileText("Studio <studio@harbourfm.example.org>", "To another", tmcSent, "+44 7700 900124");
    OpenWindow();
    const QStringList all{QStringLiteral("First"), QStringLiteral("Reply"), QStringLiteral("Second")};
    FindFromList(wanted, "sameConversation");
    EXPECT_TRUE(Shows(all)) << qPrintable(Subjects().join(u','));
    Window->List().SetCategory(tmcSent);
    FindFromList(sent, "sameConversation");
    EXPECT_TRUE(Shows(all)) << "from what the station wrote too: " << qPrintable(Subjects().join(u','));
}

TEST_F(SearchRelatedTest, AMessageInAWindowOfItsOwnHasTheWayToo)
{
    FileMail(Mail("Ferry", "one\r\n", "Ann <ann@example.org>"));
    FileMail(Mail("Harbour", "two\r\n", "Ann <ann@example.org>"), tmcSaved);
    FileMail(Mail("Other", "three\r\n", "Bob <bob@example.org>"));
    OpenSearch();
    Type(QStringLiteral("two"));
    Press(Qt::Key_Return);
    ASSERT_TRUE(WaitUntil([this] { return Window->MessageWindows().size() == 1; }));
    MessageWindow* opened = Window->MessageWindows().first();
    for (const char* relation : {"sameSender", "sameConversation", "sameSubject"})
        EXPECT_NE(opened->findChild<QAction*>(QLatin1String(relation)), nullptr) << relation;
    opened->findChild<QAction*>(QStringLiteral("sameSender"))->trigger();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&Window_()));
    EXPECT_TRUE(Shows({QStringLiteral("Ferry"), QStringLiteral("Harbour")})) << qPrintable(Subjects().join(u','));
}

TEST_F(SearchRelatedTest, AMessageThatTellsNothingOfWhatItBelongsToIsSaidToBeOne)
{
    const qint32 reference =
        FileMail("From: Ann <ann@example.org>\r\nDate: Fri, 20 Nov 2026 08:00:00 +0000\r\n\r\nx\r\n");
    OpenWindow();
    FindFromList(reference, "sameSubject");
    EXPECT_EQ(Part<NoticeBar>("searchRelated").Text(),
              QStringLiteral("This message does not tell what it belongs to."));
    EXPECT_EQ(Rows().rowCount(), 0);
    EXPECT_TRUE(Count().isEmpty()) << qPrintable(Count());
}

TEST_F(SearchRelatedTest, WhereNothingBelongsToAMessageTheListSaysHowToLookAmongAll)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    Window_().SearchRelated(KinshipOf("Message-ID: <gone@example.org>\r\n\r\nx\r\n").Mails,
                            QStringLiteral("Only the conversation of \"Gone\"."));
    Settle();
    EXPECT_EQ(Part<QLabel>("searchNothing").text(),
              QStringLiteral("No message belongs to that. \u201CSearch all\u201D above looks among all messages."));
    Type(QStringLiteral("canal"));
    EXPECT_TRUE(Part<QLabel>("searchNothing").text().contains(QStringLiteral("Try fewer words")));
}
