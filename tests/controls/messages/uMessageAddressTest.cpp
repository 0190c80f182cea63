// SPDX-License-Identifier: Apache-2.0
#include "messages/AddressBoxOnShow.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"

#include <QElapsedTimer>
#include <QTextDocument>

using uMessageAddressTest = AddressBoxOnShow;

TEST_F(uMessageAddressTest, ANewControlHasItsDefaults)
{
    const uMessageAddress fresh;
    EXPECT_EQ(fresh.text(), QStringLiteral("MessageAddress"));
    EXPECT_EQ(fresh.BackColour(), static_cast<qint32>(0x8000000F));
    EXPECT_FALSE(fresh.DisplayAddressLinks());
    EXPECT_TRUE(fresh.Enabled());
    EXPECT_FALSE(fresh.Locked());
}

TEST_F(uMessageAddressTest, TheBoxFillsTheControl)
{
    Control.resize(333, 77);
    EXPECT_EQ(Box.geometry(), QRect(0, 0, 333, 77));
}

TEST_F(uMessageAddressTest, NameAndAddressGiveTheQuotedFormAndASeparator)
{
    AddAnn();
    EXPECT_EQ(Control.text(), AnnEntry);
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral(".."));
    EXPECT_EQ(Box.SelStart(), AnnEntry.size());
    EXPECT_EQ(Box.SelLength(), 0);
    EXPECT_EQ(Box.Tag(), QStringLiteral("0"));
}

TEST_F(uMessageAddressTest, AnAddressOnlyHasALeadingBlank)
{
    Control.AddAddress(QString(), QStringLiteral("a@b.org"));
    EXPECT_EQ(Control.text(), QStringLiteral(" <a@b.org>; "));
    EXPECT_EQ(States(), QStringLiteral("PPPPPPPPPP.."));
}

TEST_F(uMessageAddressTest, ANameOnlyIsQuoted)
{
    Control.AddAddress(QStringLiteral(" Ann "), QString());
    EXPECT_EQ(Control.text(), QStringLiteral("\"Ann\"; "));
}

TEST_F(uMessageAddressTest, QuotationMarksAndBracketsGo)
{
    Control.AddAddress(QStringLiteral(" \"An\"n \" "), QStringLiteral(" <a@b.org> "));
    EXPECT_EQ(Control.text(), QStringLiteral("\"Ann \" <a@b.org>; "));
}

TEST_F(uMessageAddressTest, TwoEmptyArgumentsChangeNothingAndRaiseNothing)
{
    AddAnn();
    const QSignalSpy changed(&Control, &uMessageAddress::Change);
    Control.AddAddress(QString(), QString());
    Control.AddAddress(QStringLiteral("  "), QStringLiteral(" "));
    EXPECT_EQ(Control.text(), AnnEntry);
    EXPECT_EQ(changed.size(), 0);
    // Only what is empty before the marks go stops it; what is empty behind that is empty too.
    Control.AddAddress(QStringLiteral("\"\""), QStringLiteral("<>"));
    EXPECT_EQ(Control.text(), AnnEntry);
}

TEST_F(uMessageAddressTest, NoSecondSeparatorFollowsOne)
{
    AddAnn();
    Control.AddAddress(QStringLiteral("Bob"), QStringLiteral("c@d.org"));
    EXPECT_EQ(Control.text(), AnnEntry + QStringLiteral("\"Bob\" <c@d.org>; "));
}

TEST_F(uMessageAddressTest, ASeparatorDividesWhatWasTypedFromANewEntry)
{
    Type(QStringLiteral("x@y.org"));
    AddAnn();
    EXPECT_EQ(Control.text(), QStringLiteral("x@y.org; ") + AnnEntry);
    EXPECT_EQ(States(), QString(9, u'.') + QString(AnnEnd, u'P') + QStringLiteral(".."));
}

TEST_F(uMessageAddressTest, WithTheCaretAtTheSecondPositionThereIsNoSeparatorInFront)
{
    Type(QStringLiteral("xy"));
    AddAnn();
    EXPECT_EQ(Control.text(), QStringLiteral("xy") + AnnEntry);
}

TEST_F(uMessageAddressTest, AnEntryInFrontOfASeparatorGetsNoOther)
{
    Control.Settext(QStringLiteral(" ; x@y.org"));
    Box.SetSelStart(0);
    AddAnn();
    EXPECT_EQ(Control.text(), AnnRun + QStringLiteral(" ; x@y.org"));
}

TEST_F(uMessageAddressTest, AnEntryBetweenTwoIsDividedFromBoth)
{
    AddAnn();
    AddAnn();
    Box.SetSelStart(AnnEnd);
    Control.AddAddress(QStringLiteral("Bob"), QStringLiteral("c@d.org"));
    EXPECT_EQ(Control.text(), AnnRun + QStringLiteral("; \"Bob\" <c@d.org>; ") + AnnEntry);
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral("..") + QString(15, u'P') + QStringLiteral("..") +
                            QString(AnnEnd, u'P') + QStringLiteral(".."));
}

TEST_F(uMessageAddressTest, AnAddedEntryIsUndoneWhole)
{
    Type(QStringLiteral("x@y.org"));
    AddAnn();
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Control.text(), QStringLiteral("x@y.org"));
    Key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(States(), QString(9, u'.') + QString(AnnEnd, u'P') + QStringLiteral(".."));
}

TEST_F(uMessageAddressTest, LinksAreColouredAsTheyStandAtThatMoment)
{
    AddAnn();
    const QSignalSpy noted(&Control, &uMessageAddress::PropertyChanged);
    Control.SetDisplayAddressLinks(true);
    EXPECT_EQ(noted.value(0).value(0).toString(), QStringLiteral("DisplayAddressLinks"));
    EXPECT_EQ(Box.MousePointer(), RichTextBox::CustomPointer);
    EXPECT_EQ(Box.SelLength(), 0);
    Select(0, AnnEnd);
    EXPECT_EQ(Box.SelColor(), std::optional(0xC00000));
    Control.SetDisplayAddressLinks(false);
    EXPECT_EQ(Box.MousePointer(), RichTextBox::DefaultPointer);
    Select(0, AnnEnd);
    EXPECT_EQ(Box.SelColor(), std::optional(static_cast<qint32>(0x80000008)));
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral(".."));
}

TEST_F(uMessageAddressTest, ThePropertiesAreKeptInTheBag)
{
    PropertyBag bag;
    Control.WriteProperties(bag);
    EXPECT_TRUE(bag.Values().isEmpty());
    Control.SetBackColour(0x123456);
    AddAnn();
    Control.SetDisplayAddressLinks(true);
    Control.WriteProperties(bag);
    EXPECT_EQ(bag.Values().size(), 3);
    EXPECT_EQ(bag.Values().value(QStringLiteral("Text")).toString(), AnnEntry);
    uMessageAddress other;
    other.ReadProperties(bag);
    EXPECT_EQ(other.BackColour(), 0x123456);
    EXPECT_EQ(other.text(), AnnEntry);
    EXPECT_TRUE(other.DisplayAddressLinks());
    other.ReadProperties(PropertyBag());
    EXPECT_EQ(other.BackColour(), static_cast<qint32>(0x8000000F));
    EXPECT_EQ(other.text(), QString());
    EXPECT_FALSE(other.DisplayAddressLinks());
}

TEST_F(uMessageAddressTest, AStoredPlainTextHasNoRunsAndAStoredRichTextHas)
{
    AddAnn();
    const QString rich = Box.TextRTF();
    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("Text"), AnnEntry, QString());
    Control.ReadProperties(bag);
    EXPECT_EQ(States(), QString(AnnEntry.size(), u'.'));
    bag.WriteProperty(QStringLiteral("Text"), rich, QString());
    Control.ReadProperties(bag);
    EXPECT_EQ(Control.text(), AnnEntry);
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral(".."));
}

TEST_F(uMessageAddressTest, BorderEnabledAndLockedNoteTheirChange)
{
    const QSignalSpy noted(&Control, &uMessageAddress::PropertyChanged);
    Control.SetBorderStyle(RichTextBox::None);
    Control.SetEnabled(false);
    Control.SetLocked(true);
    EXPECT_EQ(noted.value(0).value(0).toString(), QStringLiteral("BorderStyle"));
    EXPECT_EQ(noted.value(1).value(0).toString(), QStringLiteral("Enabled"));
    EXPECT_EQ(noted.value(2).value(0).toString(), QStringLiteral("Locked"));
    EXPECT_EQ(Box.BorderStyle(), RichTextBox::None);
    EXPECT_FALSE(Box.isEnabled());
    EXPECT_FALSE(Control.isEnabled());
    EXPECT_TRUE(Box.Locked());
}

TEST_F(uMessageAddressTest, ClearingByHandRemovesFormsAndWhatIsTypedNextIsUnprotected)
{
    AddAnn();
    Control.SetDisplayAddressLinks(true);
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Control.text(), QString());
    Type(QStringLiteral("x"));
    EXPECT_EQ(States(), QStringLiteral("."));
    Select(0, 1);
    EXPECT_EQ(Box.SelColor(), std::optional(SystemColour::WindowText));
}

TEST_F(uMessageAddressTest, BlanksAloneAreNoText)
{
    const QSignalSpy changed(&Control, &uMessageAddress::Change);
    Type(QStringLiteral("   "));
    EXPECT_EQ(Control.text(), QString());
    EXPECT_GT(changed.size(), 0);
}

TEST_F(uMessageAddressTest, EveryChangeOfTheTextIsReported)
{
    const QSignalSpy changed(&Control, &uMessageAddress::Change);
    Type(QStringLiteral("ab"));
    EXPECT_EQ(changed.size(), 2);
    AddAnn();
    EXPECT_EQ(changed.size(), 3);
    Key(Qt::Key_Home);
    EXPECT_EQ(changed.size(), 3);
    Key(Qt::Key_Delete);
    EXPECT_EQ(changed.size(), 4);
}

TEST_F(uMessageAddressTest, NamesInAnyScriptStayWhole)
{
    for (const char* name : {"Zoë Müller", "אבגד", "📻 Radio 👩‍👩‍👧", "Ze\u0301", "山田 太郎"}) {
        Control.Settext(QString());
        Control.AddAddress(QString::fromUtf8(name), QStringLiteral("a@b.org"));
        const QString run = QStringLiteral("\"%1\" <a@b.org>").arg(QString::fromUtf8(name));
        EXPECT_EQ(Control.text(), run + QStringLiteral("; "));
        Box.SetSelStart(static_cast<int>(run.size()));
        Key(Qt::Key_Left);
        EXPECT_EQ(Box.SelStart(), 0) << name;
        Key(Qt::Key_Right);
        EXPECT_EQ(Box.SelStart(), run.size() + 1) << name;
        Box.SetSelStart(static_cast<int>(run.size()));
        Key(Qt::Key_Backspace);
        EXPECT_EQ(Control.text(), QStringLiteral("; ")) << name;
    }
}

TEST_F(uMessageAddressTest, ALineEndInANameIsPartOfTheRunAndNothingBehindItIs)
{
    for (const char* end : {"\n", "\r", "\r\n", "\u2028", "\u2029"}) {
        Control.Settext(QString());
        Control.AddAddress(QStringLiteral("Ann") + QString::fromUtf8(end) + QStringLiteral("Low"),
                           QStringLiteral("a@b.org"));
        EXPECT_EQ(Control.text(), QStringLiteral("\"Ann\nLow\" <a@b.org>; "));
        EXPECT_EQ(States(), QString(19, u'P') + QStringLiteral(".."));
    }
}

TEST_F(uMessageAddressTest, TheColourAndTheStateAreThoseOfTheControlAroundTheBoxToo)
{
    Control.SetBackColour(0x00FF00);
    EXPECT_EQ(Control.palette().color(QPalette::Window), QColor(0, 255, 0));
    EXPECT_EQ(Box.palette().color(QPalette::Base), QColor(0, 255, 0));
    Control.SetEnabled(false);
    EXPECT_FALSE(Control.Enabled());
    Control.SetEnabled(true);
    EXPECT_TRUE(Box.isEnabled());
}

TEST_F(uMessageAddressTest, ReadingTheBagTellsNothingOfBorderAndLock)
{
    Control.SetLocked(true);
    Control.SetBorderStyle(RichTextBox::None);
    PropertyBag bag;
    Control.WriteProperties(bag);
    EXPECT_TRUE(bag.Values().isEmpty());
    Control.ReadProperties(bag);
    EXPECT_TRUE(Control.Locked());
    EXPECT_EQ(Control.BorderStyle(), RichTextBox::None);
}

TEST_F(uMessageAddressTest, ASelectionIsReplacedOnlyWhereASeparatorIsNeeded)
{
    Type(QStringLiteral("x@y.org"));
    Select(5, 2);
    AddAnn();
    EXPECT_EQ(Control.text(), QStringLiteral("x@y.o; ") + AnnEntry);
    Control.Settext(QStringLiteral("x@y.org"));
    Select(0, 2);
    AddAnn();
    EXPECT_EQ(Control.text(), AnnEntry + QStringLiteral("x@y.org"));
}

TEST_F(uMessageAddressTest, FiveHundredRunsAreAddedAndJumpedInAMoment)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 500; ++i)
        Control.AddAddress(QStringLiteral("Listener %1").arg(i), QStringLiteral("l%1@example.org").arg(i));
    EXPECT_EQ(Control.text().count(u'@'), 500);
    const qint64 adding = timer.restart();
    Key(Qt::Key_Left);
    Key(Qt::Key_Left);
    // Behind the last run, and over it.
    const int behind = Box.SelStart();
    Key(Qt::Key_Left);
    EXPECT_EQ(Box.SelStart(), behind - QStringLiteral("\"Listener 499\" <l499@example.org>").size());
    Box.SetSelStart(behind);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text().count(u'@'), 499);
    // Far above what it takes on any machine.
    EXPECT_LT(adding / 500, 60);
    EXPECT_LT(timer.elapsed() / 4, 500);
}
