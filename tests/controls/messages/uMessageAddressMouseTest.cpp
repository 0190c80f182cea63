// SPDX-License-Identifier: Apache-2.0
#include "messages/AddressBoxOnShow.h"

class uMessageAddressMouseTest : public AddressBoxOnShow
{
protected:
    QSignalSpy Clicked{&Control, &uMessageAddress::AddressClicked};
    QString NameAt(int click) const { return Clicked.value(click).value(0).toString(); }
    QString EmailAt(int click) const { return Clicked.value(click).value(1).toString(); }
};

TEST_F(uMessageAddressMouseTest, AClickSelectsTheRunAndReportsItsNameAndAddress)
{
    AddAnn();
    Control.AddAddress(QStringLiteral("Bob Low"), QStringLiteral("c@d.org"));
    ClickAt(AnnEnd + 6);
    ASSERT_EQ(Clicked.size(), 1);
    EXPECT_EQ(NameAt(0), QStringLiteral("Bob Low"));
    EXPECT_EQ(EmailAt(0), QStringLiteral("c@d.org"));
    EXPECT_EQ(Box.SelText(), QStringLiteral("\"Bob Low\" <c@d.org>"));
    EXPECT_EQ(Box.Tag(), QStringLiteral("0"));
}

TEST_F(uMessageAddressMouseTest, AClickOnTheFirstCharacterReportsNothingAndLaterInTheRunItDoes)
{
    AddAnn();
    ClickAt(0);
    EXPECT_EQ(Clicked.size(), 0);
    for (int i = 1; i <= AnnEnd; ++i)
        ClickAt(i);
    EXPECT_EQ(Clicked.size(), AnnEnd);
    EXPECT_EQ(Box.SelText(), AnnRun);
}

TEST_F(uMessageAddressMouseTest, AClickAtTheEndOfTheTextReportsNothing)
{
    AddAnn();
    Key(Qt::Key_Backspace);
    Key(Qt::Key_Backspace);
    ClickAt(AnnEnd);
    EXPECT_EQ(Clicked.size(), 0);
}

TEST_F(uMessageAddressMouseTest, ATypedAddressReportsNothing)
{
    Type(QStringLiteral("x@y.org"));
    ClickAt(3);
    EXPECT_EQ(Clicked.size(), 0);
    EXPECT_EQ(Box.SelLength(), 0);
}

TEST_F(uMessageAddressMouseTest, AnEntryWithoutANameReportsItsAddress)
{
    Control.AddAddress(QString(), QStringLiteral("a@b.org"));
    ClickAt(5);
    EXPECT_EQ(NameAt(0), QString());
    EXPECT_EQ(EmailAt(0), QStringLiteral("a@b.org"));
}

TEST_F(uMessageAddressMouseTest, AnEntryWithoutAnAddressReportsItsNameAsAddress)
{
    Control.AddAddress(QStringLiteral("Ann"), QString());
    ClickAt(3);
    EXPECT_EQ(NameAt(0), QString());
    EXPECT_EQ(EmailAt(0), QStringLiteral("Ann"));
}

TEST_F(uMessageAddressMouseTest, ANumberFollowsAsItStands)
{
    Control.AddAddress(QStringLiteral("Ann"), QStringLiteral("+44 7700 900123"));
    ClickAt(3);
    EXPECT_EQ(EmailAt(0), QStringLiteral("+44 7700 900123"));
}

TEST_F(uMessageAddressMouseTest, AnotherButtonSelectsTheRunAndReportsNothing)
{
    AddAnn();
    ClickAt(4, Qt::MiddleButton);
    EXPECT_EQ(Clicked.size(), 0);
    Box.SetSelStart(4);
    ClickAt(4, Qt::RightButton);
    EXPECT_EQ(Clicked.size(), 0);
    EXPECT_EQ(Box.SelText(), AnnRun);
}

TEST_F(uMessageAddressMouseTest, WhileBusyNothingIsReported)
{
    AddAnn();
    Box.SetTag(QStringLiteral("1"));
    ClickAt(4);
    EXPECT_EQ(Clicked.size(), 0);
    Box.SetTag(QStringLiteral("0"));
    ClickAt(4);
    EXPECT_EQ(Clicked.size(), 1);
}

TEST_F(uMessageAddressMouseTest, ANewPressBeginsFromABareCaret)
{
    AddAnn();
    Type(QStringLiteral("xyz"));
    Select(AnnEnd + 2, 3);
    QTest::mousePress(Box.viewport(), Qt::LeftButton, Qt::NoModifier, Box.cursorRect().center());
    EXPECT_EQ(Box.SelLength(), 0);
    QTest::mouseRelease(Box.viewport(), Qt::LeftButton, Qt::NoModifier, Box.cursorRect().center());
}

TEST_F(uMessageAddressMouseTest, DeleteWorksOnAClickedRunAtOnce)
{
    AddAnn();
    AddAnn();
    ClickAt(AnnEnd + 5);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Control.text(), AnnEntry + u' ');
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral("..."));
}

TEST_F(uMessageAddressMouseTest, AClickInALockedBoxReportsToo)
{
    AddAnn();
    Control.SetLocked(true);
    ClickAt(4);
    EXPECT_EQ(EmailAt(0), QStringLiteral("a@b.org"));
}
