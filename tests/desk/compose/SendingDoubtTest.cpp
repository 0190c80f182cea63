// SPDX-License-Identifier: Apache-2.0
#include "compose/SendingDoubt.h"

#include "window/MainWindowTest.h"

namespace
{
const QString Quotation = QStringLiteral("\n\nOn Friday Ann wrote:\n> The file is attached.\n");

Composition Reply(const QString& own, bool hasFile = false)
{
    Composition text;
    text.To = QStringLiteral("ann@example.org");
    text.Subject = QStringLiteral("RE: Song");
    text.InReplyTo = QStringLiteral("<1@example.org>");
    text.Body = own + Quotation;
    if (hasFile)
        text.Files = {{QStringLiteral("a.txt"), "text/plain", "a"}};
    return text;
}

class SendingDoubtWindowTest : public MainWindowTest
{
};
} // namespace

TEST(SendingDoubtTest, OnlyWhatTheWriterAddedCounts)
{
    EXPECT_EQ(SendingDoubt(Reply(QString()), Reply(QString())),
              QStringLiteral("You have written nothing in this reply."));
    EXPECT_EQ(SendingDoubt(Reply(QStringLiteral("Thank you!")), Reply(QString())), QString())
        << "the quoted words are not the writer's";
    EXPECT_EQ(SendingDoubt(Reply(QStringLiteral("The list is ATTACHED.")), Reply(QString())),
              QStringLiteral("The text speaks of an attachment, and there is none."));
    EXPECT_EQ(SendingDoubt(Reply(QStringLiteral("The list is attached."), true), Reply(QString())), QString());
    EXPECT_EQ(SendingDoubt(Reply(QStringLiteral("We detached it.")), Reply(QString())), QString()) << "whole words";
    EXPECT_EQ(SendingDoubt(Reply(QString(), true), Reply(QString())), QString()) << "a file alone says enough";
}

TEST(SendingDoubtTest, AMessageOfNothingIsDoubted)
{
    Composition empty;
    empty.To = QStringLiteral("ann@example.org");
    EXPECT_EQ(SendingDoubt(empty, Composition()), QStringLiteral("This message has neither a subject nor a text."));
    Composition titled = empty;
    titled.Subject = QStringLiteral("Hello");
    EXPECT_EQ(SendingDoubt(titled, Composition()), QString());
}

TEST_F(SendingDoubtWindowTest, AnEmptyReplyIsAskedAboutOnceAndSentWhenItIsMeant)
{
    const qint32 reference = FileMail(Mail("Song"));
    OpenWindow();
    Select(reference);
    Key(Qt::Key_R, Qt::ControlModifier);
    const QPointer<ComposeWindow> compose = OnlyCompose();
    ASSERT_TRUE(compose);
    const QString question =
        QStringLiteral("You have written nothing in this reply. Do you want to send it all the same?");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    EXPECT_FALSE(compose->Send());
    EXPECT_TRUE(MessagesIn(tmcOutbox).isEmpty());
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    EXPECT_TRUE(compose->Send());
    EXPECT_EQ(MessagesIn(tmcOutbox).size(), 1);
}

TEST_F(SendingDoubtWindowTest, AnUrgentMessageSaysSoInItsHeaderAndInTheList)
{
    OpenWindow();
    Composition composition;
    composition.To = QStringLiteral("ann@example.org");
    composition.Subject = QStringLiteral("Now");
    composition.Body = QStringLiteral("The mast is down.");
    const QPointer<ComposeWindow> compose = Window->Compose(composition);
    auto* urgent = compose->findChild<QAction*>(QStringLiteral("urgent"));
    urgent->trigger();
    EXPECT_TRUE(compose->IsChanged());
    ASSERT_TRUE(compose->Send());
    const cMessagePtr sent = Station.Database().GetMessage(MessagesIn(tmcOutbox).value(0));
    ASSERT_TRUE(sent);
    EXPECT_EQ(sent->Priority(), 1);
    EXPECT_EQ(sent->CDOMessage()->Header("X-Priority"), QStringLiteral("1"));
    EXPECT_EQ(sent->CDOMessage()->Header("Importance"), QStringLiteral("high"));
    EXPECT_EQ(sent->CDOMessage()->Field(QStringLiteral("urn:schemas:httpmail:priority")).toInt(), 1);
}
