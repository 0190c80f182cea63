// SPDX-License-Identifier: Apache-2.0
#include "compose/ComposeWindow.h"

#include "DeskTest.h"
#include "StationPlace.h"
#include "compose/AddressBox.h"
#include "compose/BodyEdit.h"
#include "support/ScriptedFileDialog.h"

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPointer>
#include <QProcess>
#include <QSignalSpy>
#include <QToolButton>
#include <QUrl>
#include <QtTest>

#include <sqlite3.h>

namespace
{
class ComposeWindowTest : public DeskTest
{
protected:
    void TearDown() override
    {
        if (Window)
            delete Window;
        DeskTest::TearDown();
    }
    void Open(const Composition& composition = {}, const cMessagePtr& draft = nullptr)
    {
        Window = new ComposeWindow(Station, composition, draft);
        Window->show();
        Window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Window));
    }
    void OpenDraft(qint32 reference)
    {
        const cMessagePtr draft = Station.Database().GetMessage(reference);
        Open(Composing::Continue(*draft), draft);
    }
    AddressBox* Recipients(const char* name) const { return Window->findChild<AddressBox*>(QString::fromLatin1(name)); }
    /// The widget that takes the keys of a field.
    QWidget* Box(const char* name) const
    {
        auto* box = Window->findChild<QWidget*>(QString::fromLatin1(name));
        return box->focusProxy() ? box->focusProxy() : box;
    }
    BodyEdit* Body() const { return Window->findChild<BodyEdit*>(QStringLiteral("body")); }
    QListWidget* Files() const { return Window->findChild<QListWidget*>(QStringLiteral("files")); }
    void Type(const char* box, const QString& text) const
    {
        Box(box)->setFocus();
        QTest::keyClick(Box(box), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(Box(box), Qt::Key_Delete);
        QTest::keyClicks(Box(box), text);
    }
    void FillIn() const
    {
        Type("to", QStringLiteral("ann@example.org"));
        Type("subject", QStringLiteral("Hello"));
        Body()->setFocus();
        QTest::keyClicks(Body(), QStringLiteral("Text"));
    }
    cMessagePtr Only(enTolvaMessageCategories category)
    {
        const QList<qint32> references = MessagesIn(category);
        EXPECT_EQ(references.size(), 1);
        return references.isEmpty() ? nullptr : Station.Database().GetMessage(references.first());
    }
    qint32 StoreDraft(const QString& text)
    {
        Composition composition;
        composition.To = QStringLiteral("ann@example.org");
        composition.Subject = QStringLiteral("Hello");
        composition.Body = text;
        const auto draft = std::make_shared<cMessage>();
        Composing::Write(composition, Composing::WriterOf(Station.Database()), Composing::Filing::Draft,
                         Date(2026, 11, 20), *draft);
        EXPECT_TRUE(Station.Database().SaveMessage(draft));
        return draft->Reference();
    }
    /// Another computer's desk rewrites the draft.
    void ChangeElsewhere(qint32 reference, const QString& text)
    {
        DeskStation other;
        other.Open(Folder(), QStringLiteral("Technician"));
        const cMessagePtr draft = other.Database().GetMessage(reference);
        Composition composition = Composing::Continue(*draft);
        composition.Body = text;
        Composing::Write(composition, Composing::WriterOf(other.Database()), Composing::Filing::Draft,
                         Date(2026, 11, 20), *draft);
        EXPECT_TRUE(other.Database().SaveMessage(draft));
    }

    QPointer<ComposeWindow> Window;
};
} // namespace

TEST_F(ComposeWindowTest, SendingPutsTheMessageIntoTheOutboxAndClosesTheWindow)
{
    Open();
    FillIn();
    QTest::keyClick(Body(), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(WaitUntil([&] { return !Window; }));
    const cMessagePtr message = Only(tmcOutbox);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->Flags(), mfRead | mfSendPending);
    EXPECT_EQ(message->CDOMessage()->To(), QStringLiteral("ann@example.org"));
    EXPECT_EQ(message->CDOMessage()->Subject(), QStringLiteral("Hello"));
    EXPECT_EQ(message->CDOMessage()->TextBody(), QStringLiteral("Text"));
    EXPECT_EQ(message->CDOMessage()->From(), QStringLiteral("Harbour FM <studio@harbourfm.example.org>"));
}

TEST_F(ComposeWindowTest, TheOtherComputerSeesThePendingMessage)
{
    Open();
    FillIn();
    EXPECT_TRUE(Window->Send());
    EXPECT_TRUE(OtherComputer("list", {QStringLiteral("--category"), QStringLiteral("Outbox")}).contains("Hello"));
}

TEST_F(ComposeWindowTest, SendSaysThatItIsPutIntoTheOutbox)
{
    Open();
    auto* send = Window->findChild<QAction*>(QStringLiteral("send"));
    EXPECT_EQ(send->text(), QStringLiteral("&Send"));
    EXPECT_TRUE(send->toolTip().startsWith(QStringLiteral("Puts the message in the Outbox for the mailer")));
    Window->close();
}

TEST_F(ComposeWindowTest, WithoutAGoodAddressNothingIsFiledAndTheWordsSayWhy)
{
    Open();
    FillIn();
    Type("to", QStringLiteral("anna"));
    Ui.ExpectWarning(QStringLiteral("“anna” is no e-mail address. Write it like ann@example.com, and commas between "
                                    "several."));
    EXPECT_FALSE(Window->Send());
    EXPECT_TRUE(MessagesIn(tmcOutbox).isEmpty());
    EXPECT_EQ(QApplication::focusWidget(), Box("to"));
    EXPECT_EQ(Body()->toPlainText(), QStringLiteral("Text"));
}

TEST_F(ComposeWindowTest, ADraftIsSavedAgainIntoItsOwnRow)
{
    Open();
    FillIn();
    QTest::keyClick(Body(), Qt::Key_S, Qt::ControlModifier);
    const cMessagePtr first = Only(tmcDrafts);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->Flags(), mfRead);
    QTest::keyClicks(Body(), QStringLiteral(" and more"));
    QTest::keyClick(Body(), Qt::Key_S, Qt::ControlModifier);
    const cMessagePtr second = Only(tmcDrafts);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->Reference(), first->Reference());
    EXPECT_EQ(second->CDOMessage()->TextBody(), QStringLiteral("Text and more"));
    EXPECT_TRUE(Window->Send());
    EXPECT_TRUE(MessagesIn(tmcDrafts).isEmpty());
    EXPECT_EQ(MessagesIn(tmcOutbox), QList<qint32>{first->Reference()});
}

TEST_F(ComposeWindowTest, ListsHearOfAStoredMessageOnce)
{
    QSignalSpy saved(&Station.Database(), &cTolvaDatabase::MessageSaved);
    Open();
    FillIn();
    EXPECT_TRUE(Window->SaveDraft());
    EXPECT_EQ(saved.size(), 1);
    EXPECT_TRUE(Station.Database().RaiseEvents());
}

TEST_F(ComposeWindowTest, ClosingAnUnchangedWindowAsksNothing)
{
    Composition reply;
    reply.Body = QStringLiteral("> quoted");
    Open(reply);
    EXPECT_TRUE(Window->close());
}

TEST_F(ComposeWindowTest, ClosingWithChangesCanBeCancelled)
{
    Open();
    FillIn();
    const BoxAnswer answer(QStringLiteral("Cancel"));
    EXPECT_FALSE(Window->close());
    EXPECT_EQ(Body()->toPlainText(), QStringLiteral("Text"));
}

TEST_F(ComposeWindowTest, ClosingWithChangesCanKeepADraft)
{
    Open();
    FillIn();
    {
        const BoxAnswer answer(QStringLiteral("Save draft"));
        QTest::keyClick(Window, Qt::Key_W, Qt::ControlModifier);
    }
    EXPECT_TRUE(WaitUntil([&] { return !Window; }));
    EXPECT_TRUE(Only(tmcDrafts));
}

TEST_F(ComposeWindowTest, ClosingWithChangesCanDiscardThem)
{
    Open();
    FillIn();
    const BoxAnswer answer(QStringLiteral("Discard"));
    EXPECT_TRUE(Window->close());
    EXPECT_TRUE(MessagesIn(tmcDrafts).isEmpty());
}

TEST_F(ComposeWindowTest, AFailedSaveKeepsTheWindowAndTheText)
{
    Open();
    FillIn();
    Station.Database().CloseTolvaDatabase();
    Ui.ExpectWarning(QStringLiteral("The message was not saved. The station is not open any more.\n\nNothing that you "
                                    "wrote is lost: this window stays open."));
    EXPECT_FALSE(Window->Send());
    Ui.ExpectWarning(QStringLiteral("The message was not saved. The station is not open any more.\n\nNothing that you "
                                    "wrote is lost: this window stays open."));
    {
        const BoxAnswer answer(QStringLiteral("Save draft"));
        EXPECT_FALSE(Window->close());
    }
    EXPECT_TRUE(Window->isVisible());
    EXPECT_EQ(Body()->toPlainText(), QStringLiteral("Text"));
}

TEST_F(ComposeWindowTest, AStationThatAnotherProgramLocksKeepsTheTextAndSaysSo)
{
    Open();
    FillIn();
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(StationPlace::FileIn(Folder()).toUtf8().constData(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    Ui.ExpectWarning(
        QStringLiteral("The message was not saved. The station in %1 is locked by another computer or program. "
                       "Try again in a moment.\n\nNothing that you wrote is lost: this window stays open.")
            .arg(Folder()));
    EXPECT_FALSE(Window->Send());
    sqlite3_close(other);
    EXPECT_EQ(Body()->toPlainText(), QStringLiteral("Text"));
    EXPECT_TRUE(Window->Send());
    EXPECT_EQ(MessagesIn(tmcOutbox).size(), 1);
}

TEST_F(ComposeWindowTest, ADraftThatAnotherComputerChangedIsNotOverwritten)
{
    const qint32 reference = StoreDraft(QStringLiteral("old"));
    OpenDraft(reference);
    Body()->setPlainText(QStringLiteral("mine"));
    ChangeElsewhere(reference, QStringLiteral("theirs"));
    {
        const BoxAnswer answer(QStringLiteral("Cancel"));
        EXPECT_FALSE(Window->SaveDraft());
        EXPECT_EQ(answer.Text(), QStringLiteral("This draft was changed on another computer while it was open here."));
        EXPECT_TRUE(answer.Details().contains(QStringLiteral("theirs")));
    }
    EXPECT_EQ(Only(tmcDrafts)->CDOMessage()->TextBody(), QStringLiteral("theirs"));
    {
        const BoxAnswer answer(QStringLiteral("Save as a new message"));
        EXPECT_TRUE(Window->SaveDraft());
    }
    ASSERT_EQ(MessagesIn(tmcDrafts).size(), 2);
    EXPECT_EQ(Station.Database().GetMessage(reference)->CDOMessage()->TextBody(), QStringLiteral("theirs"));
    EXPECT_NE(Window->Reference(), reference);
    EXPECT_EQ(Station.Database().GetMessage(Window->Reference())->CDOMessage()->TextBody(), QStringLiteral("mine"));
    EXPECT_TRUE(Window->SaveDraft());
    EXPECT_EQ(MessagesIn(tmcDrafts).size(), 2);
}

TEST_F(ComposeWindowTest, OverwritingIsTheWritersChoice)
{
    const qint32 reference = StoreDraft(QStringLiteral("old"));
    OpenDraft(reference);
    Body()->setPlainText(QStringLiteral("mine"));
    ChangeElsewhere(reference, QStringLiteral("theirs"));
    const BoxAnswer answer(QStringLiteral("Overwrite"));
    EXPECT_TRUE(Window->SaveDraft());
    EXPECT_EQ(Only(tmcDrafts)->CDOMessage()->TextBody(), QStringLiteral("mine"));
}

TEST_F(ComposeWindowTest, ADraftThatAnotherComputerDeletedIsSaidSoAndCanBeSavedAnew)
{
    const qint32 reference = StoreDraft(QStringLiteral("old"));
    OpenDraft(reference);
    Body()->setPlainText(QStringLiteral("mine"));
    OtherComputer("delete", {QString::number(reference), QStringLiteral("--permanently"), QStringLiteral("--yes")});
    const BoxAnswer answer(QStringLiteral("Save as a new message"));
    EXPECT_TRUE(Window->SaveDraft());
    EXPECT_EQ(answer.Text(), QStringLiteral("This draft was deleted on another computer while it was open here."));
    EXPECT_EQ(Only(tmcDrafts)->CDOMessage()->TextBody(), QStringLiteral("mine"));
}

TEST_F(ComposeWindowTest, ADraftInTheBinStaysThereWhenItIsSavedAnew)
{
    const qint32 reference = StoreDraft(QStringLiteral("old"));
    OpenDraft(reference);
    Body()->setPlainText(QStringLiteral("mine"));
    OtherComputer("delete", {QString::number(reference)});
    const BoxAnswer answer(QStringLiteral("Save as a new message"));
    EXPECT_TRUE(Window->SaveDraft());
    EXPECT_EQ(Only(tmcDeleted)->Reference(), reference);
    EXPECT_EQ(Only(tmcDrafts)->CDOMessage()->TextBody(), QStringLiteral("mine"));
}

TEST_F(ComposeWindowTest, ADraftThatWasMovedElsewhereIsNoticedBeforeSending)
{
    const qint32 reference = StoreDraft(QStringLiteral("old"));
    OpenDraft(reference);
    OtherComputer("move", {QString::number(reference), QStringLiteral("Saved")});
    const BoxAnswer answer(QStringLiteral("Cancel"));
    EXPECT_FALSE(Window->Send());
    EXPECT_TRUE(MessagesIn(tmcOutbox).isEmpty());
}

TEST_F(ComposeWindowTest, BeingMarkedElsewhereIsNoConflict)
{
    const qint32 reference = StoreDraft(QStringLiteral("old"));
    OpenDraft(reference);
    OtherComputer("mark", {QString::number(reference), QStringLiteral("unread")});
    Body()->setPlainText(QStringLiteral("mine"));
    EXPECT_TRUE(Window->SaveDraft());
}

TEST_F(ComposeWindowTest, AVanishedFileAFolderAndATooLargeFileAreToldInOneBox)
{
    Open();
    QFile large(Path(QStringLiteral("large.bin")));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly));
    ASSERT_TRUE(large.resize(ComposeWindow::LargestFile + 1));
    large.close();
    Ui.ExpectWarning(QStringLiteral("“gone.txt” is not there any more.\n“station” is a folder. Only files can be "
                                    "attached.\n“large.bin” is too large to be mailed: it has 25.0 MB, and 25 MB are "
                                    "the most."));
    EXPECT_FALSE(Window->AddFiles({Path(QStringLiteral("gone.txt")), Folder(), Path(QStringLiteral("large.bin")),
                                   Write(QStringLiteral("good.txt"), "good")}));
    EXPECT_EQ(Files()->count(), 1);
    EXPECT_EQ(Window->Current().Files.first().Content, QByteArray("good"));
    EXPECT_EQ(Window->Current().Files.first().ContentType, QByteArray("text/plain"));
}

TEST_F(ComposeWindowTest, FilesTogetherHaveALimitToo)
{
    Open();
    const QByteArray half(static_cast<int>(ComposeWindow::LargestFile / 2 + 1), 'x');
    EXPECT_TRUE(Window->AddFiles({Write(QStringLiteral("a.bin"), half)}));
    Ui.ExpectWarning(QStringLiteral("With “b.bin” the attachments would have more than 25 MB together."));
    EXPECT_FALSE(Window->AddFiles({Write(QStringLiteral("b.bin"), half)}));
    EXPECT_EQ(Files()->count(), 1);
}

TEST_F(ComposeWindowTest, FilesAreChosenInTheDialogAndRemovedWithTheDeleteKey)
{
    Open();
    ScriptedFileDialog dialog;
    dialog.ExpectOpen(Write(QStringLiteral("a.txt"), "x"));
    QTest::keyClick(Window, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(Files()->count(), 1);
    EXPECT_TRUE(Files()->isVisible());
    EXPECT_TRUE(Window->IsChanged());
    Files()->setFocus();
    Files()->setCurrentRow(0);
    QTest::keyClick(Files(), Qt::Key_Delete);
    EXPECT_EQ(Files()->count(), 0);
    EXPECT_FALSE(Window->IsChanged());
}

TEST_F(ComposeWindowTest, DroppedFilesAreAttachedAndNotWrittenIntoTheText)
{
    Open();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(Write(QStringLiteral("a.txt"), "x"))});
    const auto drop = [&data](QWidget* target) {
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    };
    drop(Body()->viewport());
    EXPECT_EQ(Files()->count(), 1);
    EXPECT_EQ(Body()->toPlainText(), QString());
    drop(Window);
    EXPECT_EQ(Files()->count(), 2);
    const BoxAnswer answer(QStringLiteral("Discard"));
    Window->close();
}

TEST_F(ComposeWindowTest, ATextMessageHasNeitherSubjectNorFiles)
{
    Composition composition;
    composition.Type = emtSMS;
    composition.To = QStringLiteral("07700 900123");
    Open(composition);
    EXPECT_FALSE(Box("subject")->isVisible());
    EXPECT_FALSE(Box("cc")->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), Body());
    Ui.ExpectWarning(QStringLiteral("A text message takes no attachments."));
    EXPECT_FALSE(Window->AddFiles({Folder()}));
    QTest::keyClicks(Body(), QStringLiteral("Thanks"));
    EXPECT_TRUE(Window->Send());
    EXPECT_EQ(Only(tmcOutbox)->MessageType(), emtSMS);
}

TEST_F(ComposeWindowTest, TheTabKeyGoesFromToThroughToTheText)
{
    Open();
    EXPECT_EQ(QApplication::focusWidget(), Box("to"));
    for (QWidget* next : QList<QWidget*>{Box("cc"), Box("subject"), Body()}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), next);
    }
}

TEST_F(ComposeWindowTest, EveryBoxHasANameForScreenReaders)
{
    Open();
    for (QWidget* widget : Window->findChildren<QWidget*>()) {
        const bool isReached = (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisible();
        if (isReached && !qobject_cast<QToolButton*>(widget)) {
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
        }
    }
}

TEST_F(ComposeWindowTest, TypingSingleLettersOnlyTypes)
{
    Open();
    Body()->setFocus();
    QTest::keyClicks(Body(), QStringLiteral("rfnacdsu"));
    EXPECT_EQ(Body()->toPlainText(), QStringLiteral("rfnacdsu"));
    const BoxAnswer answer(QStringLiteral("Discard"));
    Window->close();
}

TEST_F(ComposeWindowTest, ATextMessageCountsAsTheNetworkDoes)
{
    Composition text;
    text.Type = emtSMS;
    Open(text);
    const auto length = [this] { return Window->findChild<QLabel*>(QStringLiteral("textLength"))->text(); };
    EXPECT_EQ(length(), QStringLiteral("160 characters fit into one text message"));
    QTest::keyClicks(Body(), QStringLiteral("Hello"));
    EXPECT_EQ(length(), QStringLiteral("5 in 1 text message, 155 left"));
    Body()->setPlainText(QString(161, u'a'));
    EXPECT_EQ(length(), QStringLiteral("161 in 2 text messages, 145 left"));
    Body()->setPlainText(QStringLiteral("caf\u00EA"));
    EXPECT_EQ(length(), QStringLiteral("4 in 1 text message, 66 left; \u201C\u00EA\u201D makes each shorter"));
}

TEST_F(ComposeWindowTest, AMailIsNotCounted)
{
    Open(Composition());
    EXPECT_TRUE(Window->findChild<QLabel*>(QStringLiteral("textLength"))->isHidden());
}
