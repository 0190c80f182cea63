// SPDX-License-Identifier: Apache-2.0

// What the desk shows of messages that another computer sends.

#include "sending/SendingDesk.h"

#include "common/ClockHelper.h"
#include "desk/window/MainWindowTest.h"
#include "sending/Outbox.h"

#include <QFile>

class SendingDeskTest : public MainWindowTest
{
protected:
    void SetUp() override
    {
        MainWindowTest::SetUp();
        OtherComputer("setting", {QStringLiteral("Station.EmailAddress"), QStringLiteral("studio@harbour.example")});
        Answer("cat >/dev/null");
    }
    /// What the program of the other computer does with each mail.
    void Answer(const QByteArray& script)
    {
        Program_ = Write(QStringLiteral("mailer"), "#!/bin/sh\n" + script + "\n");
        ASSERT_TRUE(QFile::setPermissions(Program_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    /// The exit code of a run of the other computer.
    int SendElsewhere() const
    {
        QProcess process;
        process.start(QStringLiteral(TOLVA_PROGRAM),
                      {QStringLiteral("send"), Folder(), QStringLiteral("--sendmail"), Program_});
        EXPECT_TRUE(process.waitForFinished(60000));
        return process.exitCode();
    }
    qint32 WaitingMail(const QByteArray& subject = "An answer")
    {
        return FileMail("From: studio@harbour.example\r\nTo: ann@listeners.example\r\nSubject: " + subject +
                            "\r\nMessage-ID: <" + subject.toHex() + "@harbour.example>\r\n\r\nHello.\r\n",
                        tmcOutbox, mfSendPending | mfRead);
    }
    /// The same, put there at this moment.
    qint32 WaitingSinceNow(const QByteArray& subject)
    {
        const qint32 reference = WaitingMail(subject);
        const cMessagePtr message = Station.Database().GetMessage(reference);
        message->SetSent(ClockHelper::CurrentTime());
        EXPECT_TRUE(Station.Database().SaveMessage(message));
        return reference;
    }
    void OpenOutbox(qint32 reference)
    {
        OpenWindow();
        List().SetCategory(tmcOutbox);
        ASSERT_TRUE(WaitUntil([this] { return !List().IsFilling() && List().NumberItems() > 0; }));
        Select(reference);
    }
    /// The second line of its row.
    QString Line(qint32 reference)
    {
        const auto row = static_cast<int>(List().References().indexOf(reference)) + 1;
        return Grid().TextMatrix(row, 2).section(u'\r', 1);
    }
    NoticeBar& Sending() { return Notice("sendingNotice"); }
    QPushButton& Button() { return *Sending().findChild<QPushButton*>(QStringLiteral("noticeButton")); }
    QAction& SendAgainAction() { return *Window->findChild<QAction*>(QStringLiteral("sendAgain")); }
    enTolvaMessageCategories FolderOf(qint32 reference) { return Database().GetMessage(reference)->Category(); }

private:
    QString Program_;
};

TEST_F(SendingDeskTest, ARefusalIsShownWithItsReasonAndTheMessageIsSentAgain)
{
    const qint32 reference = WaitingMail();
    OpenOutbox(reference);
    EXPECT_TRUE(Sending().Text().startsWith(QStringLiteral("Waiting to be sent"))) << Sending().Text().toStdString();
    EXPECT_FALSE(Button().isVisible());
    EXPECT_FALSE(SendAgainAction().isEnabled());
    EXPECT_TRUE(Window->findChild<QLabel*>(QStringLiteral("unsent"))->isHidden());

    Answer("cat >/dev/null; echo '550 no such mailbox' >&2; exit 67");
    EXPECT_EQ(SendElsewhere(), 65);
    ASSERT_TRUE(WaitUntil([&] { return Sending().Text().contains(QStringLiteral("550 no such mailbox")); }));
    EXPECT_TRUE(Sending().Text().startsWith(QStringLiteral("Refused on ")));
    EXPECT_TRUE(Button().isVisible());
    Window->findChild<SendingDesk*>()->CountUnsent();
    EXPECT_EQ(Label("unsent"), QStringLiteral("1 message was not sent: see the Outbox"));

    Answer("cat >/dev/null");
    QTest::mouseClick(&Button(), Qt::LeftButton);
    EXPECT_TRUE(Sending().Text().startsWith(QStringLiteral("Waiting to be sent"))) << Sending().Text().toStdString();
    EXPECT_EQ(Label("unsent"), QString());
    EXPECT_EQ(SendElsewhere(), 0);
    EXPECT_EQ(FolderOf(reference), tmcSent);
}

TEST_F(SendingDeskTest, WhatMayHaveGoneOutIsAskedAbout)
{
    const qint32 reference = WaitingMail();
    Answer("cat >/dev/null; kill -9 $$");
    EXPECT_EQ(SendElsewhere(), 65);
    OpenOutbox(reference);
    EXPECT_TRUE(Sending().Text().startsWith(QStringLiteral("May have gone out on "))) << Sending().Text().toStdString();
    {
        const BoxAnswer answer(QStringLiteral("Cancel"));
        SendAgainAction().trigger();
        EXPECT_TRUE(answer.Text().contains(QStringLiteral("gets it twice")));
    }
    EXPECT_TRUE(Sending().Text().startsWith(QStringLiteral("May have gone out on ")));
    {
        const BoxAnswer answer(QStringLiteral("It went out"));
        SendAgainAction().trigger();
    }
    EXPECT_EQ(FolderOf(reference), tmcSent);
    EXPECT_EQ(SendElsewhere(), 0);
}

TEST_F(SendingDeskTest, WhatMayHaveGoneOutIsSentAgainOnlyWhenSomebodyWantsIt)
{
    const qint32 reference = WaitingMail();
    Answer("cat >/dev/null; kill -9 $$");
    EXPECT_EQ(SendElsewhere(), 65);
    Answer("cat >/dev/null");
    EXPECT_EQ(SendElsewhere(), 0);
    OpenOutbox(reference);
    EXPECT_EQ(FolderOf(reference), tmcOutbox);
    {
        const BoxAnswer answer(QStringLiteral("Send again"));
        SendAgainAction().trigger();
    }
    EXPECT_EQ(SendElsewhere(), 0);
    EXPECT_EQ(FolderOf(reference), tmcSent);
}

TEST_F(SendingDeskTest, AMessageInSentSaysWhenItWent)
{
    const qint32 reference = WaitingMail();
    EXPECT_EQ(SendElsewhere(), 0);
    OpenWindow();
    List().SetCategory(tmcSent);
    ASSERT_TRUE(WaitUntil([this] { return !List().IsFilling() && List().NumberItems() > 0; }));
    Select(reference);
    EXPECT_TRUE(Sending().Text().startsWith(QStringLiteral("Sent on "))) << Sending().Text().toStdString();
    EXPECT_FALSE(SendAgainAction().isEnabled());
}

TEST_F(SendingDeskTest, WhatHasNotGoneOutForAnHourStandsInTheStatusBar)
{
    const qint32 reference = WaitingMail();
    const auto sentBefore = [&](double seconds) {
        const cMessagePtr message = Station.Database().GetMessage(reference);
        message->SetSent(Date(ClockHelper::CurrentTime().DayNumber() - seconds / 86400));
        ASSERT_TRUE(Station.Database().SaveMessage(message));
    };
    sentBefore(OutboxCount::UnsentSeconds - 120);
    OpenWindow();
    EXPECT_EQ(Label("unsent"), QString());
    sentBefore(OutboxCount::UnsentSeconds + 1);
    Window->findChild<SendingDesk*>()->CountUnsent();
    EXPECT_EQ(Label("unsent"), QStringLiteral("1 message unsent for an hour"));
    EXPECT_TRUE(Window->findChild<QLabel*>(QStringLiteral("unsent"))->isVisible());
}

TEST_F(SendingDeskTest, SendingAgainNeedsTheRight)
{
    const qint32 reference = WaitingMail();
    Answer("cat >/dev/null; exit 67");
    EXPECT_EQ(SendElsewhere(), 65);
    AddUser(QStringLiteral("Guest"), 0);
    OpenWindow(QStringLiteral("Guest"));
    List().SetCategory(tmcOutbox);
    ASSERT_TRUE(WaitUntil([this] { return !List().IsFilling() && List().NumberItems() > 0; }));
    Select(reference);
    Ui.ExpectWarning(QStringLiteral("You have no right to send messages here."));
    SendAgainAction().trigger();
    EXPECT_TRUE(Sending().Text().startsWith(QStringLiteral("Refused")));
}

TEST_F(SendingDeskTest, ARowOfTheOutboxSaysWhatBecameOfItsMessage)
{
    const qint32 refused = WaitingSinceNow("An answer to Ann");
    OpenOutbox(refused);
    EXPECT_TRUE(Line(refused).endsWith(QStringLiteral(" \u00B7 waiting"))) << Line(refused).toStdString();
    Answer("cat >/dev/null; echo '550 no such mailbox' >&2; exit 67");
    EXPECT_EQ(SendElsewhere(), 65);
    ASSERT_TRUE(WaitUntil([&] { return Line(refused).contains(QStringLiteral("refused: 550")); }));
    const qint32 waiting = WaitingSinceNow("An answer to Bob");
    ASSERT_TRUE(WaitUntil([&] { return List().References().contains(waiting); }));
    EXPECT_TRUE(Line(waiting).endsWith(QStringLiteral(" \u00B7 waiting"))) << Line(waiting).toStdString();
    Select(refused);
    QTest::mouseClick(&Button(), Qt::LeftButton);
    EXPECT_TRUE(Line(refused).endsWith(QStringLiteral(" \u00B7 waiting"))) << Line(refused).toStdString();
    EXPECT_FALSE(Line(refused).startsWith(u' ')) << "the date stays";
}

TEST_F(SendingDeskTest, ARowOfTheSentFolderSaysWhenItWentAndOthersSayNothing)
{
    const qint32 sent = WaitingSinceNow("An answer");
    EXPECT_EQ(SendElsewhere(), 0);
    const qint32 came = FileMail(Mail("A question"));
    const qint32 put = FileMail(Mail("Put there by hand"), tmcSent, mfRead);
    OpenWindow();
    EXPECT_EQ(Line(came).count(u'\u00B7'), 1) << "sender and date: " << Line(came).toStdString();
    List().SetCategory(tmcSent);
    ASSERT_TRUE(WaitUntil([this] { return !List().IsFilling() && List().NumberItems() > 1; }));
    EXPECT_TRUE(Line(sent).contains(QStringLiteral(" \u00B7 sent "))) << Line(sent).toStdString();
    EXPECT_EQ(Line(put).count(u'\u00B7'), 1) << "recipient and date: " << Line(put).toStdString();
}

TEST_F(SendingDeskTest, AWindowOfTheMessageSaysItTooAndSendsItAgain)
{
    const qint32 reference = WaitingMail();
    OpenOutbox(reference);
    MessageWindow& window = *Window->OpenInWindow(Database().ReadMessage(reference));
    auto& notice = *window.findChild<NoticeBar*>(QStringLiteral("sendingNotice"));
    auto& button = *notice.findChild<QPushButton*>(QStringLiteral("noticeButton"));
    EXPECT_TRUE(notice.Text().startsWith(QStringLiteral("Waiting to be sent"))) << notice.Text().toStdString();
    EXPECT_FALSE(button.isVisible());
    Answer("cat >/dev/null; echo '550 no such mailbox' >&2; exit 67");
    EXPECT_EQ(SendElsewhere(), 65);
    ASSERT_TRUE(WaitUntil([&] { return notice.Text().contains(QStringLiteral("550 no such mailbox")); }));
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_TRUE(notice.Text().startsWith(QStringLiteral("Waiting to be sent"))) << notice.Text().toStdString();
    Answer("cat >/dev/null");
    EXPECT_EQ(SendElsewhere(), 0);
    // It shows the message as it was opened, which lay in the Outbox.
    ASSERT_TRUE(WaitUntil([&] { return notice.Text().startsWith(QStringLiteral("Sent on ")); }))
        << notice.Text().toStdString();
    EXPECT_FALSE(button.isVisible());
}
