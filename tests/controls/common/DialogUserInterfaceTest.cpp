// SPDX-License-Identifier: Apache-2.0

// The user interface as real dialogs.

#include "common/dialogs/DialogUserInterface.h"

#include "common/dialogs/frmGoodInputBox.h"
#include "controls/support/WhenShown.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace
{
void Click(QMessageBox& box, QMessageBox::StandardButton button)
{
    QTest::mouseClick(box.button(button), Qt::LeftButton);
}

/// Types into an input box and confirms.
void Answer(frmGoodInputBox& form, const QString& text)
{
    auto* const edit = form.findChild<QLineEdit*>(QStringLiteral("Text1"));
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
}

const MessageBoxRequest Question = {QStringLiteral("Are you sure?"), QStringLiteral("Delete Message"),
                                    MessageBoxButtons::YesNo, MessageBoxIcon::Question, MessageBoxAnswer::No};
} // namespace

class DialogUserInterfaceTest : public testing::Test
{
protected:
    DialogUserInterfaceTest() { UserInterface::SetCurrent(&Ui); }
    ~DialogUserInterfaceTest() override { UserInterface::SetCurrent(nullptr); }

    MessageBoxAnswer Ask(const MessageBoxRequest& request, std::function<void(QMessageBox&)> user)
    {
        const WhenShown<QMessageBox> shown(std::move(user));
        return Ui.MessageBox(request);
    }

    DialogUserInterface Ui;
};

TEST_F(DialogUserInterfaceTest, AQuestionShowsItsTextTitleIconAndTwoButtons)
{
    const MessageBoxAnswer answer = Ask(Question, [](QMessageBox& box) {
        EXPECT_EQ(box.text(), QStringLiteral("Are you sure?"));
        EXPECT_EQ(box.windowTitle(), QStringLiteral("Delete Message"));
        EXPECT_EQ(box.icon(), QMessageBox::Question);
        EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
        EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
        EXPECT_TRUE(box.isModal());
        Click(box, QMessageBox::Yes);
    });
    EXPECT_EQ(answer, MessageBoxAnswer::Yes);
    EXPECT_EQ(Ask(Question, [](QMessageBox& box) { Click(box, QMessageBox::No); }), MessageBoxAnswer::No);
}

TEST_F(DialogUserInterfaceTest, EnterGivesTheDefaultAnswer)
{
    const auto enter = [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); };
    EXPECT_EQ(Ask(Question, enter), MessageBoxAnswer::No);
    MessageBoxRequest yes = Question;
    yes.DefaultAnswer = MessageBoxAnswer::Yes;
    EXPECT_EQ(Ask(yes, enter), MessageBoxAnswer::Yes);
}

TEST_F(DialogUserInterfaceTest, EscapeAndTheCloseBoxAreNo)
{
    MessageBoxRequest request = Question;
    request.DefaultAnswer = MessageBoxAnswer::Yes;
    EXPECT_EQ(Ask(request, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }), MessageBoxAnswer::No);
    EXPECT_EQ(Ask(request, [](QMessageBox& box) { box.close(); }), MessageBoxAnswer::No);
}

TEST_F(DialogUserInterfaceTest, ABoxThatTellsHasOneButtonAndTheProgramsName)
{
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Tolva"));
    const std::pair<MessageBoxIcon, QMessageBox::Icon> icons[] = {
        {MessageBoxIcon::None, QMessageBox::NoIcon},
        {MessageBoxIcon::Information, QMessageBox::Information},
        {MessageBoxIcon::Exclamation, QMessageBox::Warning},
        {MessageBoxIcon::Stop, QMessageBox::Critical}};
    for (const auto& [asked, icon] : icons) {
        const auto user = [icon = icon](QMessageBox& box) {
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Tolva"));
            EXPECT_EQ(box.icon(), icon);
            EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
            QTest::keyClick(&box, Qt::Key_Return);
        };
        EXPECT_EQ(Ask({QStringLiteral("Done."), QString(), MessageBoxButtons::OK, asked, MessageBoxAnswer::OK}, user),
                  MessageBoxAnswer::OK);
    }
    QGuiApplication::setApplicationDisplayName(QString());
}

TEST_F(DialogUserInterfaceTest, ASubjectWithMarkupIsShownAsItStands)
{
    MessageBoxRequest request = Question;
    request.Text = QStringLiteral("Delete '<img src=\"http://example.org/x.png\"><b>Rock & roll</b>'?");
    Ask(request, [&](QMessageBox& box) {
        EXPECT_EQ(box.text(), request.Text);
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        const auto* const label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        EXPECT_EQ(label->text(), request.Text);
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
        Click(box, QMessageBox::No);
    });
}

TEST_F(DialogUserInterfaceTest, ATextOfAnyLengthLeavesTheButtonsOnTheScreen)
{
    const QString cases[] = {QString(100'000, u'x'), QStringLiteral("line\n").repeated(10'000),
                             QStringLiteral("word ").repeated(20'000), QStringLiteral("\U0001F3B5").repeated(5'000)};
    for (const QString& text : cases) {
        MessageBoxRequest request = Question;
        request.Text = text;
        Ask(request, [&](QMessageBox& box) {
            const QPushButton* const no = qobject_cast<QPushButton*>(box.button(QMessageBox::No));
            EXPECT_LE(no->mapTo(&box, no->rect().bottomRight()).y(), box.height());
            EXPECT_LE(box.height(), box.screen()->availableGeometry().height());
            EXPECT_LE(box.width(), box.screen()->availableGeometry().width());
            EXPECT_TRUE(box.text().endsWith(QChar(0x2026)));
            EXPECT_TRUE(text.startsWith(box.text().chopped(1)));
            EXPECT_FALSE(box.text().at(box.text().size() - 2).isHighSurrogate());
            Click(box, QMessageBox::No);
        });
    }
}

TEST_F(DialogUserInterfaceTest, TheBoxBelongsToTheActiveWindow)
{
    QWidget window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    Ask(Question, [&](QMessageBox& first) {
        EXPECT_EQ(first.parentWidget(), &window);
        QTimer::singleShot(0, &first, [this, &first] {
            const WhenShown<QMessageBox> shown([&first](QMessageBox& box) {
                QMessageBox* second = &box;
                for (QWidget* widget : QApplication::topLevelWidgets()) {
                    auto* const other = qobject_cast<QMessageBox*>(widget);
                    second = other && other != &first ? other : second;
                }
                EXPECT_EQ(second->parentWidget(), &first);
                Click(*second, QMessageBox::No);
            });
            Ui.MessageBox(Question);
            Click(first, QMessageBox::No);
        });
    });
    window.close();
}

TEST_F(DialogUserInterfaceTest, AWindowThatGoesTakesItsQuestionAlongWithoutAYes)
{
    auto* window = new QWidget;
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    EXPECT_EQ(Ask(Question,
                  [&](QMessageBox&) { QTimer::singleShot(0, window, [&] { delete std::exchange(window, nullptr); }); }),
              MessageBoxAnswer::No);
    EXPECT_EQ(window, nullptr);
}

TEST_F(DialogUserInterfaceTest, TheBusyPointerShowsAndIsTheDefaultOneUnderABox)
{
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    {
        const BusyPointer busy;
        ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
        Ask(Question, [](QMessageBox& box) {
            EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
            Click(box, QMessageBox::No);
        });
        EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    }
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(DialogUserInterfaceTest, TheInputBoxAsksAndLimits)
{
    QString result;
    {
        const WhenShown<frmGoodInputBox> shown([](frmGoodInputBox& form) {
            EXPECT_EQ(form.windowTitle(), QStringLiteral("Song"));
            EXPECT_EQ(form.findChild<QLabel*>(QStringLiteral("lblCaption"))->text(), QStringLiteral("What plays?"));
            EXPECT_EQ(form.findChild<QLineEdit*>(QStringLiteral("Text1"))->echoMode(), QLineEdit::Password);
            Answer(form, QStringLiteral("Yesterday"));
        });
        EXPECT_EQ(Ui.InputBox({QStringLiteral("What plays?"), QStringLiteral("Song"), QStringLiteral("before"), 6,
                               QStringLiteral("*")},
                              result),
                  0);
    }
    EXPECT_EQ(result, QStringLiteral("Yester"));
    const WhenShown<frmGoodInputBox> shown([](frmGoodInputBox& form) { QTest::keyClick(&form, Qt::Key_Escape); });
    EXPECT_EQ(Ui.InputBox({QStringLiteral("What plays?"), QString(), QString(), 0, QString()}, result), -1);
    EXPECT_EQ(result, QString());
}

TEST_F(DialogUserInterfaceTest, YieldRunsWhatIsPending)
{
    bool hasRun = false;
    QTimer::singleShot(0, qApp, [&] { hasRun = true; });
    Ui.Yield();
    EXPECT_TRUE(hasRun);
}
