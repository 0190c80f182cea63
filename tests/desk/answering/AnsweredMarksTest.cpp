// SPDX-License-Identifier: Apache-2.0

// What was answered, by whom and when: in the row and above the message, at every desk.

#include "answering/AnsweredMarks.h"

#include "common/ClockHelper.h"
#include "desk/window/MainWindowTest.h"
#include "messages/TextMessage.h"

#include <QPlainTextEdit>

namespace
{
class AnsweredMarksTest : public MainWindowTest
{
protected:
    qint32 FileText(const QString& from, const QString& words)
    {
        TextMessage text;
        text.From = from;
        text.To = QStringLiteral("01632 960100");
        text.Text = words;
        text.Received = ClockHelper::CurrentTime();
        const cMessagePtr message = MakeMessage(text);
        message->SetCategory(tmcInbox);
        EXPECT_TRUE(Station.Database().SaveMessage(message));
        return message->Reference();
    }
    /// By the window's own keys.
    void Answer(qint32 reference, const QString& words = QStringLiteral("Gladly."))
    {
        Select(reference);
        Key(Qt::Key_R, Qt::ControlModifier);
        ASSERT_NE(OnlyCompose(), nullptr);
        ComposeWindow& compose = *OnlyCompose();
        QTest::keyClicks(compose.findChild<QPlainTextEdit*>(QStringLiteral("body")), words);
        ASSERT_TRUE(compose.Send());
        ASSERT_TRUE(WaitUntil([this] { return Window->ComposeWindows().isEmpty(); }));
    }
    /// As the row says it; asked for as a painting does.
    bool IsMarked(qint32 reference, const QString& words = QStringLiteral("Answered by Technician, "))
    {
        return WaitUntil(
            [&] {
                const auto row = static_cast<int>(List().References().indexOf(reference));
                const QModelIndex index = Grid().model()->index(row, 2);
                return index.data(Qt::AccessibleTextRole).toString().contains(words);
            },
            1000);
    }
};
} // namespace

TEST_F(AnsweredMarksTest, AnAnswerThatIsFiledMarksItsMessageWithWhoAndWhen)
{
    const qint32 first = FileMail(Mail("Lighthouse"));
    const qint32 second = FileMail(Mail("Harbour"));
    OpenWindow();
    EXPECT_FALSE(IsMarked(first));
    Answer(first);
    EXPECT_TRUE(IsMarked(first));
    EXPECT_FALSE(IsMarked(second));
    Select(first);
    EXPECT_TRUE(WaitUntil([this] {
        return Notice("answeringNotice").Text().startsWith(QStringLiteral("Answered by Technician, "));
    })) << Notice("answeringNotice").Text().toStdString();
    // A desk that starts later.
    CloseWindow();
    OpenWindow();
    EXPECT_TRUE(IsMarked(first));
}

TEST_F(AnsweredMarksTest, ADraftMarksNothingUntilItIsSentAlsoByAnotherDesk)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    Key(Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(OnlyCompose()->SaveDraft());
    OnlyCompose()->close();
    EXPECT_FALSE(IsMarked(reference));
    CloseWindow();
    OpenWindow();
    const cMessagePtr draft = Database().GetMessage(MessagesIn(tmcDrafts).value(0));
    ASSERT_NE(draft, nullptr);
    ComposeWindow* compose = Window->Compose(Composing::Continue(*draft), draft);
    compose->findChild<QPlainTextEdit*>(QStringLiteral("body"))->insertPlainText(QStringLiteral("Gladly."));
    ASSERT_TRUE(compose->Send());
    EXPECT_TRUE(IsMarked(reference));
}

TEST_F(AnsweredMarksTest, ATextMessageIsAnsweredByItsNumberWithAllThatCameBefore)
{
    const qint32 first = FileText(QStringLiteral("07700 900123"), QStringLiteral("Play the lighthouse song"));
    const qint32 second = FileText(QStringLiteral("+447700900123"), QStringLiteral("please"));
    const qint32 other = FileText(QStringLiteral("07700 900124"), QStringLiteral("Me too"));
    OpenWindow();
    Answer(second);
    EXPECT_TRUE(IsMarked(first));
    EXPECT_TRUE(IsMarked(second));
    EXPECT_FALSE(IsMarked(other));
    const qint32 later = FileText(QStringLiteral("07700 900123"), QStringLiteral("Thank you"));
    List().ShowChanges();
    EXPECT_FALSE(IsMarked(later));
}

TEST_F(AnsweredMarksTest, AnotherMessageUnderTheSameNumberIsNotTakenForAnswered)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    AnswerLedger(Station.Directory().File())
        .Note({{reference, Date(30000)}}, 99, QStringLiteral("Technician"), Date(46000));
    OpenWindow();
    EXPECT_FALSE(IsMarked(reference));
}

TEST_F(AnsweredMarksTest, TheMarksOfAScreenAreOneStatement)
{
    QList<AnsweredMessage> originals;
    for (int i = 0; i < 40; ++i) {
        const qint32 reference = FileMail(Mail("Message " + QByteArray::number(i)));
        const auto row = Station.Database().OpenMessageRows({QStringLiteral("Received")},
                                                            QStringLiteral("[Reference]=%1").arg(reference));
        originals.append({reference, Date(row->Collect(QStringLiteral("Received")).toDouble())});
    }
    AnswerLedger(Station.Directory().File()).Note(originals, 99, QStringLiteral("Petra"), Date(46000));
    AnsweredMarks marks(Station, nullptr);
    int changes = 0;
    QObject::connect(&marks, &AnsweredMarks::Changed, &marks, [&] { ++changes; });
    marks.Refresh();
    for (const AnsweredMessage& original : originals)
        EXPECT_FALSE(marks.Of(original.Message)) << "nothing is read while a screen is painted";
    EXPECT_TRUE(WaitUntil([&] { return changes == 2; }));
    for (const AnsweredMessage& original : originals)
        EXPECT_TRUE(marks.Of(original.Message));
    QTest::qWait(20);
    EXPECT_EQ(changes, 2) << "and all were looked up at once";
}
