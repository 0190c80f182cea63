// SPDX-License-Identifier: Apache-2.0

// What the desk shows of a text message that was answered by itself, and of the answer.

#include "answering/SongAnswers.h"
#include "common/ClockHelper.h"
#include "desk/window/MainWindowTest.h"
#include "messages/TextMessage.h"
#include "sending/OutgoingIdentity.h"
#include "sending/SendingDesk.h"
#include "sending/SendingLedger.h"

namespace
{
class AutomaticAnswerTest : public MainWindowTest
{
protected:
    cMessagePtr FileText(const QString& words, double secondsAgo)
    {
        TextMessage text;
        text.From = QStringLiteral("+44 7700 900123");
        text.To = QStringLiteral("07700 900001");
        text.Text = words;
        text.Received = Date(ClockHelper::CurrentTime().DayNumber() - secondsAgo / 86400);
        const cMessagePtr message = MakeMessage(text);
        message->SetCategory(tmcInbox);
        EXPECT_TRUE(Station.Database().SaveMessage(message));
        return message;
    }
    /// The number of the answer.
    qint32 AnswerTo(const cMessage& text)
    {
        const SongAnswers::Result result = SongAnswers(Station.Database(), Station.Directory().File()).Answer(text);
        EXPECT_EQ(result.What, SongAnswers::Outcome::Answered);
        return result.Answer;
    }
    /// As the program that sends does.
    void Send(qint32 reference)
    {
        SendingLedger(Station.Directory().File())
            .NoteWent(reference, OutgoingIdentity(*Station.Database().GetMessage(reference)));
        ASSERT_TRUE(Station.Database().MarkMessageSent(reference, ClockHelper::CurrentTime()));
    }
    void OpenFolder(enTolvaMessageCategories folder, qint32 reference)
    {
        List().SetCategory(folder);
        ASSERT_TRUE(WaitUntil([&] { return !List().IsFilling() && List().References().contains(reference); }));
        Select(reference);
    }
    int RowOf(qint32 reference) { return static_cast<int>(List().References().indexOf(reference)); }
    QString Spoken(qint32 reference)
    {
        return Grid().model()->index(RowOf(reference), 2).data(Qt::AccessibleTextRole).toString();
    }
    /// The second line of its row.
    QString Line(qint32 reference) { return Grid().TextMatrix(RowOf(reference) + 1, 2).section(u'\r', 1); }
    QString NoticeText() { return Notice("sendingNotice").Text(); }
};
} // namespace

TEST_F(AutomaticAnswerTest, TheTextThatAskedIsMarkedAndNoneThatItsSenderWroteToPeople)
{
    const cMessagePtr toPeople = FileText(QStringLiteral("Could somebody ring me?"), 120);
    const cMessagePtr asked = FileText(QStringLiteral("SONG"), 0);
    const qint32 answer = AnswerTo(*asked);
    Send(answer);
    OpenWindow();
    EXPECT_TRUE(WaitUntil([&] {
        Grid().viewport()->update();
        return Spoken(asked->Reference()).contains(QStringLiteral("Answered by a machine, "));
    })) << Spoken(asked->Reference()).toStdString();
    List().ShowChanges();
    EXPECT_FALSE(WaitUntil(
        [&] {
            Grid().viewport()->update();
            return Spoken(toPeople->Reference()).contains(u"Answered");
        },
        2000));
}

TEST_F(AutomaticAnswerTest, TheAnswerSaysThatItWasWrittenAutomatically)
{
    const qint32 answer = AnswerTo(*FileText(QStringLiteral("SONG"), 0));
    OpenWindow();
    OpenFolder(tmcOutbox, answer);
    Window->findChild<SendingDesk*>()->CountUnsent();
    EXPECT_TRUE(NoticeText().startsWith(QStringLiteral("Written automatically. Waiting to be sent")))
        << NoticeText().toStdString();
    EXPECT_TRUE(WaitUntil([&] { return Line(answer).endsWith(QStringLiteral(" \u00B7 automatic, waiting")); }))
        << Line(answer).toStdString();
    EXPECT_TRUE(Spoken(answer).contains(QStringLiteral("automatic"))) << Spoken(answer).toStdString();
    Send(answer);
    OpenFolder(tmcSent, answer);
    EXPECT_TRUE(WaitUntil([&] { return Line(answer).contains(QStringLiteral(" \u00B7 automatic, sent ")); }))
        << Line(answer).toStdString();
    EXPECT_TRUE(NoticeText().startsWith(QStringLiteral("Written automatically. Sent on ")))
        << NoticeText().toStdString();
}
