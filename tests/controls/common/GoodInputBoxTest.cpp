// SPDX-License-Identifier: Apache-2.0

// GoodInputBox: the function that asks for one line of text.

#include "common/dialogs/frmGoodInputBox.h"
#include "common/dialogs/modGoodInputBox.h"
#include "controls/support/WhenShown.h"
#include "platform/widgets/Twips.h"

#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTest>

namespace
{
const QString Prompt = QStringLiteral("What is the name of your Station?\n\n(Your database will be given this name)");
const QString Title = QStringLiteral("Open Tolva Database");

QLineEdit& Text1(frmGoodInputBox& form)
{
    return *form.findChild<QLineEdit*>(QStringLiteral("Text1"));
}

QPushButton& Button(frmGoodInputBox& form, const char* name)
{
    return *form.findChild<QPushButton*>(QLatin1String(name));
}

void Click(frmGoodInputBox& form, const char* button)
{
    QTest::mouseClick(&Button(form, button), Qt::LeftButton);
}

QIcon MakeIcon(Qt::GlobalColor colour)
{
    QPixmap picture(16, 16);
    picture.fill(colour);
    return QIcon(picture);
}
} // namespace

class GoodInputBoxTest : public testing::Test
{
protected:
    /// Asks; the user does this in the box.
    qint32 Ask(std::function<void(frmGoodInputBox&)> user, const QString& defaultText = QString(),
               const QString& maxLength = QString(), const QString& passwordChar = QString(), bool modal = true)
    {
        const WhenShown<frmGoodInputBox> shown(std::move(user));
        return GoodInputBox(Prompt, Title, defaultText, maxLength, Result, nullptr, passwordChar, modal);
    }

    QString Result = QStringLiteral("before");
};

TEST_F(GoodInputBoxTest, OneVariableServesAsDefaultAndResult)
{
    QString shownText;
    const WhenShown<frmGoodInputBox> shown([&](frmGoodInputBox& form) {
        shownText = Text1(form).text();
        Click(form, "cmdOK");
    });
    EXPECT_EQ(GoodInputBox(Prompt, Title, Result, QString(), Result), 0);
    EXPECT_EQ(shownText, QStringLiteral("before"));
    EXPECT_EQ(Result, QStringLiteral("before"));
}

TEST_F(GoodInputBoxTest, ShowsPromptTitleAndDefaultInATextBoxAlone)
{
    EXPECT_EQ(
        Ask(
            [](frmGoodInputBox& form) {
                EXPECT_EQ(form.windowTitle(), Title);
                EXPECT_EQ(form.findChild<QLabel*>(QStringLiteral("lblCaption"))->text(), Prompt);
                EXPECT_EQ(Text1(form).text(), QStringLiteral("My Radio Station Name"));
                EXPECT_TRUE(Text1(form).isVisible());
                for (const char* other : {"comboCombo", "comboList", "comboSortedList", "listMulti", "listMultiNonSel"})
                    EXPECT_FALSE(form.findChild<QWidget*>(QLatin1String(other))->isVisible()) << other;
                EXPECT_EQ(Button(form, "cmdOK").text(), QStringLiteral("OK"));
                EXPECT_EQ(Button(form, "cmdCancel").text(), QStringLiteral("Cancel"));
                EXPECT_TRUE(form.isModal());
                EXPECT_EQ(Text1(form).accessibleName(), Prompt);
                Click(form, "cmdOK");
            },
            QStringLiteral("My Radio Station Name")),
        0);
    EXPECT_EQ(Result, QStringLiteral("My Radio Station Name"));
}

TEST_F(GoodInputBoxTest, TypingReplacesTheDefaultWhichIsSelected)
{
    EXPECT_EQ(Ask(
                  [](frmGoodInputBox& form) {
                      EXPECT_TRUE(Text1(form).hasFocus());
                      EXPECT_EQ(Text1(form).selectedText(), QStringLiteral("Old FM"));
                      QTest::keyClicks(&Text1(form), QStringLiteral("Harbour FM"));
                      QTest::keyClick(&Text1(form), Qt::Key_Return);
                  },
                  QStringLiteral("Old FM")),
              0);
    EXPECT_EQ(Result, QStringLiteral("Harbour FM"));
}

TEST_F(GoodInputBoxTest, TheFocusComingBackSelectsTheText)
{
    Ask(
        [](frmGoodInputBox& form) {
            Text1(form).deselect();
            QTest::keyClick(&Text1(form), Qt::Key_Tab);
            EXPECT_TRUE(Button(form, "cmdOK").hasFocus());
            QTest::keyClick(&form, Qt::Key_Tab);
            EXPECT_TRUE(Button(form, "cmdCancel").hasFocus());
            Text1(form).setFocus(Qt::OtherFocusReason);
            EXPECT_EQ(Text1(form).selectedText(), QStringLiteral("Old FM"));
            Click(form, "cmdCancel");
        },
        QStringLiteral("Old FM"));
}

TEST_F(GoodInputBoxTest, CancelGivesMinusOneAndNothingWhateverWasTyped)
{
    EXPECT_EQ(Ask([](frmGoodInputBox& form) {
                  QTest::keyClicks(&Text1(form), QStringLiteral("typed"));
                  Click(form, "cmdCancel");
              }),
              -1);
    EXPECT_EQ(Result, QString());
}

TEST_F(GoodInputBoxTest, EscapeIsCancel)
{
    EXPECT_EQ(Ask([](frmGoodInputBox& form) {
                  QTest::keyClicks(&Text1(form), QStringLiteral("typed"));
                  QTest::keyClick(&Text1(form), Qt::Key_Escape);
              }),
              -1);
    EXPECT_EQ(Result, QString());
}

TEST_F(GoodInputBoxTest, TheCloseBoxEndsLikeOKWithoutAResult)
{
    EXPECT_EQ(Ask(
                  [](frmGoodInputBox& form) {
                      EXPECT_FALSE(form.close());
                      EXPECT_FALSE(form.isVisible());
                  },
                  QStringLiteral("Default")),
              0);
    EXPECT_EQ(Result, QString());
}

TEST_F(GoodInputBoxTest, ADefaultLongerThanTheLimitIsShownWholeAndCanOnlyBeShortened)
{
    EXPECT_EQ(Ask(
                  [](frmGoodInputBox& form) {
                      QLineEdit& text = Text1(form);
                      EXPECT_EQ(text.text(), QStringLiteral("Harbour FM"));
                      QTest::keyClick(&text, Qt::Key_End);
                      QTest::keyClicks(&text, QStringLiteral("xyz"));
                      EXPECT_EQ(text.text(), QStringLiteral("Harbour FM"));
                      // Not even in the place of something else.
                      QTest::keyClick(&text, Qt::Key_Left, Qt::ShiftModifier);
                      QTest::keyClicks(&text, QStringLiteral("x"));
                      EXPECT_EQ(text.text(), QStringLiteral("Harbour FM"));
                      QTest::keyClick(&text, Qt::Key_End);
                      for (int i = 0; i < 7; ++i)
                          QTest::keyClick(&text, Qt::Key_Backspace);
                      EXPECT_EQ(text.text(), QStringLiteral("Har"));
                      QTest::keyClicks(&text, QStringLiteral("wich"));
                      EXPECT_EQ(text.text(), QStringLiteral("Harwi"));
                      Click(form, "cmdOK");
                  },
                  QStringLiteral("Harbour FM"), QStringLiteral("5")),
              0);
    EXPECT_EQ(Result, QStringLiteral("Harwi"));
}

TEST_F(GoodInputBoxTest, ATooLongDefaultCanBeConfirmedAsItIs)
{
    EXPECT_EQ(Ask([](frmGoodInputBox& form) { QTest::keyClick(&Text1(form), Qt::Key_Return); },
                  QStringLiteral("Harbour FM"), QStringLiteral("5")),
              0);
    EXPECT_EQ(Result, QStringLiteral("Harbour FM"));
}

TEST_F(GoodInputBoxTest, WhatIsPastedIsCutToTheRoomThereIs)
{
    QApplication::clipboard()->setText(QStringLiteral("Harbour FM"));
    Ask(
        [](frmGoodInputBox& form) {
            QTest::keyClick(&Text1(form), Qt::Key_End);
            QTest::keyClick(&Text1(form), Qt::Key_V, Qt::ControlModifier);
            Click(form, "cmdOK");
        },
        QStringLiteral("My "), QStringLiteral("7"));
    EXPECT_EQ(Result, QStringLiteral("My Harb"));
}

TEST_F(GoodInputBoxTest, WithoutALimitAnyLengthIsTaken)
{
    const QString text(40'000, u'x');
    for (const QString& maxLength : {QString(), QStringLiteral("0"), QStringLiteral("none")}) {
        Ask(
            [](frmGoodInputBox& form) {
                QTest::keyClick(&Text1(form), Qt::Key_End);
                QTest::keyClicks(&Text1(form), QStringLiteral("yz"));
                Click(form, "cmdOK");
            },
            text, maxLength);
        EXPECT_EQ(Result, text + QStringLiteral("yz"));
    }
}

TEST_F(GoodInputBoxTest, TheFirstPasswordCharacterMasksTheText)
{
    Ask(
        [](frmGoodInputBox& form) {
            QTest::keyClicks(&Text1(form), QStringLiteral("abc"));
            EXPECT_EQ(Text1(form).echoMode(), QLineEdit::Password);
            EXPECT_EQ(Text1(form).displayText(), QStringLiteral("###"));
            Click(form, "cmdOK");
        },
        QString(), QString(), QStringLiteral("#*"));
    EXPECT_EQ(Result, QStringLiteral("abc"));
}

TEST_F(GoodInputBoxTest, TheTitleIsTrimmed)
{
    const WhenShown<frmGoodInputBox> shown([](frmGoodInputBox& form) {
        EXPECT_EQ(form.windowTitle(), QStringLiteral("Current song"));
        Click(form, "cmdCancel");
    });
    EXPECT_EQ(GoodInputBox(Prompt, QStringLiteral("  Current song "), QString(), QString(), Result), -1);
}

TEST_F(GoodInputBoxTest, MarkupAndAmpersandsInThePromptAreShownAsTheyStand)
{
    const QString hostile = QStringLiteral("<b>Rock & roll</b> <img src=\"http://example.org/x.png\">");
    const WhenShown<frmGoodInputBox> shown([&](frmGoodInputBox& form) {
        const auto* const caption = form.findChild<QLabel*>(QStringLiteral("lblCaption"));
        EXPECT_EQ(caption->text(), hostile);
        EXPECT_EQ(caption->textFormat(), Qt::PlainText);
        EXPECT_EQ(caption->buddy(), nullptr);
        Click(form, "cmdCancel");
    });
    GoodInputBox(hostile, Title, QString(), QString(), Result);
}

TEST_F(GoodInputBoxTest, StandsOnTopInTheMiddleOfTheScreenWithTheRoomBelowItsButtons)
{
    Ask([](frmGoodInputBox& form) {
        EXPECT_TRUE(form.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        const QPoint middle = form.screen()->availableGeometry().center();
        EXPECT_LE((form.geometry().center() - middle).manhattanLength(), 4);
        const int gap = Twips::ToPixels(form, 120);
        EXPECT_EQ(Button(form, "cmdOK").y(), Text1(form).geometry().bottom() + 1 + gap);
        EXPECT_EQ(Button(form, "cmdCancel").y(), Button(form, "cmdOK").y());
        EXPECT_EQ(form.height(), Button(form, "cmdOK").geometry().bottom() + 1 + gap);
        Click(form, "cmdCancel");
    });
}

TEST_F(GoodInputBoxTest, TheBackgroundIsTheOneGiven)
{
    const WhenShown<frmGoodInputBox> shown([](frmGoodInputBox& form) {
        EXPECT_EQ(form.palette().color(QPalette::Window), QColor(0, 0, 128));
        EXPECT_EQ(form.grab().toImage().pixelColor(1, 1), QColor(0, 0, 128));
        EXPECT_EQ(form.palette().color(QPalette::WindowText), QColor(Qt::white));
        Click(form, "cmdCancel");
    });
    GoodInputBox(Prompt, Title, QString(), QString(), Result, nullptr, QString(), true, 0x800000);
}

TEST_F(GoodInputBoxTest, TheIconIsTheOwnersUnlessAnotherFormGivesOne)
{
    QWidget owner;
    owner.setWindowIcon(MakeIcon(Qt::red));
    QWidget iconForm;
    iconForm.setWindowIcon(MakeIcon(Qt::green));
    const auto colour = [](const QIcon& icon) { return icon.pixmap(16, 16).toImage().pixelColor(8, 8); };
    {
        const WhenShown<frmGoodInputBox> shown([&](frmGoodInputBox& form) {
            EXPECT_EQ(colour(form.windowIcon()), QColor(Qt::red));
            EXPECT_EQ(form.parentWidget(), &owner);
            Click(form, "cmdCancel");
        });
        GoodInputBox(Prompt, Title, QString(), QString(), Result, &owner);
    }
    const WhenShown<frmGoodInputBox> shown([&](frmGoodInputBox& form) {
        EXPECT_EQ(colour(form.windowIcon()), QColor(Qt::green));
        Click(form, "cmdCancel");
    });
    GoodInputBox(Prompt, Title, QString(), QString(), Result, &owner, QString(), true, QVariant(), &iconForm);
    EXPECT_TRUE(owner.isVisible()); // it is brought to the front
    owner.close();
}

TEST_F(GoodInputBoxTest, TheOwnerIsInFrontAfterwards)
{
    QWidget owner;
    QWidget other;
    owner.show();
    other.show();
    other.activateWindow();
    const WhenShown<frmGoodInputBox> shown([](frmGoodInputBox& form) { Click(form, "cmdOK"); });
    GoodInputBox(Prompt, Title, QString(), QString(), Result, &owner);
    EXPECT_TRUE(QTest::qWaitFor([&] { return owner.isActiveWindow(); }));
    owner.close();
    other.close();
}

TEST_F(GoodInputBoxTest, WithoutModalityTheRestOfTheProgramRunsWhileItWaits)
{
    QWidget other;
    QLineEdit edit(&other);
    other.show();
    EXPECT_EQ(Ask(
                  [&](frmGoodInputBox& form) {
                      EXPECT_FALSE(form.isModal());
                      QTest::keyClicks(&edit, QStringLiteral("busy"));
                      EXPECT_EQ(edit.text(), QStringLiteral("busy"));
                      QTest::keyClicks(&Text1(form), QStringLiteral("song"));
                      Click(form, "cmdOK");
                  },
                  QString(), QString(), QString(), false),
              0);
    EXPECT_EQ(Result, QStringLiteral("song"));
    EXPECT_EQ(Ask([](frmGoodInputBox& form) { Click(form, "cmdCancel"); }, QString(), QString(), QString(), false), -1);
    other.close();
}

TEST_F(GoodInputBoxTest, AnOwnerThatGoesMeanwhileTakesTheBoxAlongAndCancels)
{
    auto* owner = new QWidget;
    owner->show();
    const WhenShown<frmGoodInputBox> shown([&](frmGoodInputBox& form) {
        QTest::keyClicks(&Text1(form), QStringLiteral("typed"));
        QTimer::singleShot(0, owner, [&] { delete std::exchange(owner, nullptr); });
    });
    EXPECT_EQ(GoodInputBox(Prompt, Title, QString(), QString(), Result, owner), -1);
    EXPECT_EQ(Result, QString());
    EXPECT_EQ(owner, nullptr);
}
