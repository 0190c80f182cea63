// SPDX-License-Identifier: Apache-2.0

// What the compose window has for answers: the original beside the reply, templates, signatures.

#include "compose/AnswerTemplates.h"

#include "common/ClockHelper.h"
#include "desk/window/MainWindowTest.h"
#include "messages/TextMessage.h"

#include <QPlainTextEdit>

namespace
{
class AnswerTemplatesTest : public MainWindowTest
{
protected:
    void WriteTemplate(const QString& name, const QByteArray& text)
    {
        const QDir folder(Station.Database().HTMLTemplatesLocation());
        ASSERT_TRUE(folder.mkpath(QStringLiteral(".")));
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(text), text.size());
    }
    qint32 FileText(const QString& words)
    {
        TextMessage text;
        text.From = QStringLiteral("07700 900123");
        text.To = QStringLiteral("01632 960100");
        text.Text = words;
        text.Received = ClockHelper::CurrentTime();
        const cMessagePtr message = MakeMessage(text);
        message->SetCategory(tmcInbox);
        EXPECT_TRUE(Station.Database().SaveMessage(message));
        return message->Reference();
    }
    ComposeWindow& Answer(qint32 reference)
    {
        OpenWindow();
        Select(reference);
        Key(Qt::Key_R, Qt::ControlModifier);
        return *OnlyCompose();
    }
    static QString BodyOf(const ComposeWindow& compose)
    {
        return compose.findChild<QPlainTextEdit*>(QStringLiteral("body"))->toPlainText();
    }
    static PreviewPane* OriginalOf(const ComposeWindow& compose)
    {
        return compose.findChild<PreviewPane*>(QStringLiteral("original"));
    }
};
} // namespace

TEST_F(AnswerTemplatesTest, ATemplateIsFilledWithListenerSongAndStationWhereTheCaretStands)
{
    WriteTemplate(QStringLiteral("Answer-Song & more.txt"),
                  "Dear <ZRT_LISTENER_NAME>,\r\nit is <ZRT_SONG> on <ZRT_STATION_NAME>.<ZRT_UNKNOWN>\r\n");
    Station.Database().SetCurrentSongFullName(QStringLiteral("<ZRT_STATION_NAME> - Waves"));
    ComposeWindow& compose = Answer(FileMail(Mail("Lighthouse")));
    auto* menu = compose.findChild<QMenu*>(QStringLiteral("answerTemplates"));
    Q_EMIT menu->aboutToShow();
    QAction* entry = nullptr;
    for (QAction* action : menu->actions()) {
        if (action->text() == u"Song && more")
            entry = action;
    }
    ASSERT_NE(entry, nullptr);
    entry->trigger();
    EXPECT_TRUE(BodyOf(compose).startsWith(
        QStringLiteral("Dear Loveday Tregenza,\nit is <ZRT_STATION_NAME> - Waves on Harbour FM.\n")))
        << BodyOf(compose).toStdString();
    compose.findChild<QPlainTextEdit*>(QStringLiteral("body"))->undo();
    EXPECT_FALSE(BodyOf(compose).contains(QStringLiteral("Dear"))) << "one undo takes it back";
}

TEST_F(AnswerTemplatesTest, AListenerWithoutANameIsCalledListenerAndAContactByHis)
{
    Composition answer;
    answer.To = QStringLiteral("nobody@example.org");
    WriteTemplate(QStringLiteral("Answer-A.txt"), "<ZRT_LISTENER_NAME>");
    EXPECT_EQ(AnswerTemplates::Filled(Station, QStringLiteral("A"), answer), QStringLiteral("listener"));
    clsKVContact contact{0, QStringLiteral("Wella Rowe"), QStringLiteral("07700 900123"), {}, {}, {}, {}};
    Station.Directory().SaveContact(contact);
    answer.Type = emtSMS;
    answer.To = QStringLiteral("+447700900123");
    EXPECT_EQ(AnswerTemplates::Filled(Station, QStringLiteral("A"), answer), QStringLiteral("Wella Rowe"));
}

TEST_F(AnswerTemplatesTest, ASignatureStandsAboveWhatIsQuotedAndOnesOwnBeforeTheStations)
{
    WriteTemplate(QStringLiteral("Signature.txt"), "Everybody at <ZRT_STATION_NAME>\n");
    const qint32 reference = FileMail(Mail("Lighthouse"));
    ComposeWindow& compose = Answer(reference);
    EXPECT_TRUE(BodyOf(compose).startsWith(QStringLiteral("\n\n-- \nEverybody at Harbour FM\n\n\nOn ")))
        << BodyOf(compose).toStdString();
    EXPECT_FALSE(compose.IsChanged()) << "nobody has written anything yet";
    compose.close();
    WriteTemplate(QStringLiteral("Signature-Technician.txt"), "The technician");
    Key(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(WaitUntil([this] { return Window->ComposeWindows().size() == 1; }));
    EXPECT_TRUE(BodyOf(*OnlyCompose()).contains(QStringLiteral("-- \nThe technician\n")));
}

TEST_F(AnswerTemplatesTest, TheOriginalStandsBesideTheAnswerToATextAndBesideAnyByAKey)
{
    const qint32 mail = FileMail(Mail("Lighthouse"));
    ComposeWindow& text = Answer(FileText(QStringLiteral("Play the lighthouse song")));
    ASSERT_NE(OriginalOf(text), nullptr);
    EXPECT_TRUE(OriginalOf(text)->isVisible());
    EXPECT_TRUE(WaitUntil([&] { return OriginalOf(text)->IsLoaded(); }));
    EXPECT_FALSE(BodyOf(text).contains(QStringLiteral("lighthouse"))) << "a text quotes nothing";
    QTest::keyClick(&text, Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(OriginalOf(text)->isVisible());
    text.close();
    ASSERT_TRUE(WaitUntil([this] { return Window->ComposeWindows().isEmpty(); }));
    Window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window.get()));
    Select(mail);
    Key(Qt::Key_R, Qt::ControlModifier);
    ASSERT_NE(OnlyCompose(), nullptr);
    ComposeWindow& reply = *OnlyCompose();
    EXPECT_EQ(OriginalOf(reply), nullptr);
    reply.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&reply));
    QTest::keyClick(&reply, Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_NE(OriginalOf(reply), nullptr);
    EXPECT_EQ(OriginalOf(reply)->Message()->Reference(), mail);
    EXPECT_TRUE(OriginalOf(reply)->isVisible());
}
