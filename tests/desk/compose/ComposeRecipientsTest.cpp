// SPDX-License-Identifier: Apache-2.0
#include "DeskTest.h"
#include "compose/AddressBox.h"
#include "compose/AddressPopups.h"
#include "compose/BodyEdit.h"
#include "compose/ComposeWindow.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QToolButton>
#include <QtTest>

#include <iostream>

namespace
{
/// The boxes To and Cc of the compose window, with three contacts in the directory.
class ComposeRecipientsTest : public DeskTest
{
protected:
    void SetUp() override
    {
        DeskTest::SetUp();
        AddContact("Loveday Tregenza", "loveday@example.org", "07700 900123");
        AddContact("Zoë Müller", "zm@example.org", "07700 900456");
        AddContact("Zachary O'Neill", "zach.oneill@example.org", "");
    }
    void TearDown() override
    {
        delete Window;
        QGuiApplication::clipboard()->clear();
        DeskTest::TearDown();
    }
    void AddContact(const char* name, const char* email, const char* mobile)
    {
        clsKVContact contact;
        contact.Name = QString::fromUtf8(name);
        contact.Email = QString::fromUtf8(email);
        contact.Mobile = QString::fromUtf8(mobile);
        Station.Directory().SaveContact(contact);
    }
    void Open(const Composition& composition = {}, const cMessagePtr& draft = nullptr)
    {
        delete Window;
        Window = new ComposeWindow(Station, composition, draft);
        Window->show();
        Window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Window));
        ASSERT_TRUE(WaitUntil([this] { return To().HasBook() || !Note().isEmpty(); }));
        To().Box().setFocus();
    }
    static Composition MessageTo(const QString& to)
    {
        Composition composition;
        composition.To = to;
        return composition;
    }
    AddressBox& Recipients(const char* name) const { return *Window->findChild<AddressBox*>(QLatin1String(name)); }
    AddressBox& To() const { return Recipients("to"); }
    QString Note() const { return Window->findChild<QLabel*>(QStringLiteral("note"))->text(); }
    RichTextBox& Box() const { return To().Box(); }
    SuggestionList& List() const { return *To().findChild<SuggestionList*>(); }
    AddressActions& Actions() const { return *To().findChild<AddressActions*>(); }
    QString Text() const { return To().Address().text(); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(&Box(), key, modifiers);
    }
    void Type(const char* text) const { QTest::keyClicks(&Box(), QString::fromUtf8(text)); }
    void Paste(const QString& text) const
    {
        QGuiApplication::clipboard()->setText(text);
        Key(Qt::Key_V, Qt::ControlModifier);
    }
    void ClickAt(int position) const
    {
        QTextCursor cursor = Box().textCursor();
        cursor.setPosition(position);
        QTest::mouseClick(Box().viewport(), Qt::LeftButton, Qt::NoModifier, Box().cursorRect(cursor).center());
    }
    QStringList Suggested() const
    {
        QStringList rows;
        for (int i = 0; List().isVisible() && i < List().count(); ++i)
            rows.append(List().item(i)->text());
        return rows;
    }
    int ProtectedCharacters() const
    {
        int count = 0;
        for (int i = 0; i < Text().size(); ++i)
            count += Box().IsProtectedAt(i) ? 1 : 0;
        return count;
    }

    QPointer<ComposeWindow> Window;
};

const QString LovedayRun = QStringLiteral("\"Loveday Tregenza\" <loveday@example.org>");
} // namespace

TEST_F(ComposeRecipientsTest, ANewWindowHasEmptyBoxes)
{
    Open();
    EXPECT_EQ(Text(), QString());
    EXPECT_EQ(Recipients("cc").Address().text(), QString());
    EXPECT_EQ(Box().placeholderText(), QStringLiteral("Names or addresses, divided by commas"));
    EXPECT_FALSE(Window->IsChanged());
    EXPECT_FALSE(List().isVisible());
}

TEST_F(ComposeRecipientsTest, WhatIsTypedIsCompletedFromTheContacts)
{
    Open();
    Type("treg");
    EXPECT_EQ(Suggested(), QStringList{QStringLiteral("Loveday Tregenza  <loveday@example.org>")});
    EXPECT_TRUE(Box().hasFocus());
    Key(Qt::Key_Down);
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(), LovedayRun + QStringLiteral("; "));
    EXPECT_EQ(ProtectedCharacters(), LovedayRun.size());
    EXPECT_FALSE(List().isVisible());
    EXPECT_TRUE(Box().hasFocus());
    EXPECT_EQ(Window->Current().To, QStringLiteral("Loveday Tregenza <loveday@example.org>"));
}

TEST_F(ComposeRecipientsTest, AccentsCaseAndTheOrderOfWordsMakeNoDifference)
{
    Open();
    Type("MULLER zo");
    EXPECT_EQ(Suggested(), QStringList{QStringLiteral("Zoë Müller  <zm@example.org>")});
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Delete);
    EXPECT_FALSE(List().isVisible());
    Type("z");
    EXPECT_EQ(Suggested().size(), 2);
    Type("ach.o");
    EXPECT_EQ(Suggested(), QStringList{QStringLiteral("Zachary O'Neill  <zach.oneill@example.org>")});
    Type("x");
    EXPECT_FALSE(List().isVisible());
}

TEST_F(ComposeRecipientsTest, TheTabKeyTakesTheChosenContactAndOtherwiseGoesOn)
{
    Open();
    Type("lov");
    Key(Qt::Key_Down);
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(), LovedayRun + QStringLiteral("; "));
    EXPECT_TRUE(Box().hasFocus());
    Type("zo");
    ASSERT_TRUE(List().isVisible());
    Key(Qt::Key_Tab);
    EXPECT_FALSE(List().isVisible());
    EXPECT_TRUE(Recipients("cc").Box().hasFocus());
    EXPECT_EQ(Text(), LovedayRun + QStringLiteral("; zo"));
}

TEST_F(ComposeRecipientsTest, TheArrowsGoRoundTheListAndEscapeClosesIt)
{
    Open();
    Type("z");
    Key(Qt::Key_Up);
    EXPECT_EQ(List().Chosen(), 1);
    Key(Qt::Key_Down);
    EXPECT_EQ(List().Chosen(), -1);
    Key(Qt::Key_Down);
    EXPECT_EQ(List().Chosen(), 0);
    Key(Qt::Key_Escape);
    EXPECT_FALSE(List().isVisible());
    EXPECT_EQ(Text(), QStringLiteral("z"));
    EXPECT_TRUE(Window->isVisible());
}

TEST_F(ComposeRecipientsTest, AContactIsTakenByAClickAndTheFocusStays)
{
    Open();
    Type("a@b.org, lov");
    QTest::mouseClick(List().viewport(), Qt::LeftButton, Qt::NoModifier,
                      List().visualItemRect(List().item(0)).center());
    EXPECT_EQ(Text(), QStringLiteral("a@b.org; ") + LovedayRun + QStringLiteral("; "));
    EXPECT_TRUE(Box().hasFocus());
    EXPECT_EQ(Window->Current().To, QStringLiteral("a@b.org, Loveday Tregenza <loveday@example.org>"));
}

TEST_F(ComposeRecipientsTest, TypedTextStaysFreeAndEnterGoesToTheNextBox)
{
    Open();
    Type("lov@elsewhere.org");
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(), QStringLiteral("lov@elsewhere.org"));
    EXPECT_EQ(ProtectedCharacters(), 0);
    EXPECT_TRUE(Recipients("cc").Box().hasFocus());
    QTest::keyClick(&Recipients("cc").Box(), Qt::Key_Enter);
    EXPECT_EQ(QApplication::focusWidget(), Window->findChild<QLineEdit*>(QStringLiteral("subject")));
    EXPECT_EQ(Window->Current().To, QStringLiteral("lov@elsewhere.org"));
}

TEST_F(ComposeRecipientsTest, TextMessagesAreCompletedWithMobileNumbers)
{
    Composition text;
    text.Type = emtSMS;
    Open(text);
    Type("zach");
    EXPECT_FALSE(List().isVisible());
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Backspace);
    Type("0770090012");
    EXPECT_EQ(Suggested(), QStringList{QStringLiteral("Loveday Tregenza  <07700 900123>")});
    Key(Qt::Key_Down);
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(), QStringLiteral("\"Loveday Tregenza\" <07700 900123>; "));
    EXPECT_EQ(Window->Current().To, QStringLiteral("07700 900123"));
}

TEST_F(ComposeRecipientsTest, RecipientsOfAReplyStandAsUnits)
{
    Open(MessageTo(QStringLiteral("\"Tregenza, Loveday\" <l@example.org>, b@example.org")));
    EXPECT_EQ(Text(), QStringLiteral("\"Tregenza, Loveday\" <l@example.org>;  <b@example.org>; "));
    EXPECT_EQ(ProtectedCharacters(), 35 + 16);
    EXPECT_FALSE(Window->IsChanged());
    EXPECT_EQ(Window->Current().To, QStringLiteral("\"Tregenza, Loveday\" <l@example.org>, b@example.org"));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(Window->IsChanged());
}

TEST_F(ComposeRecipientsTest, ADraftComesBackWithItsUnitsAndItsTypedText)
{
    Open(MessageTo(QStringLiteral("Zoë Müller <zm@example.org>, anna, O\"X <x@y.org>")));
    Key(Qt::Key_End, Qt::ControlModifier);
    Type("c@d.org");
    const QString to = Window->Current().To;
    ASSERT_TRUE(Window->SaveDraft());
    const cMessagePtr draft = Station.Database().GetMessage(Window->Reference());
    Open(Composing::Continue(*draft), draft);
    EXPECT_EQ(Window->Current().To, to);
    EXPECT_TRUE(Text().startsWith(QStringLiteral("\"Zoë Müller\" <zm@example.org>; ")));
    EXPECT_TRUE(Text().contains(QStringLiteral("anna")));
    EXPECT_TRUE(Text().contains(QStringLiteral("<c@d.org>")));
    EXPECT_TRUE(Box().IsProtectedAt(3));
    EXPECT_FALSE(Window->IsChanged());
}

TEST_F(ComposeRecipientsTest, FiveHundredRecipientsAreQuick)
{
    QStringList recipients;
    for (int i = 0; i < 500; ++i)
        recipients.append(QStringLiteral("\"Listener %1\" <listener%1@example.org>").arg(i));
    Open();
    QElapsedTimer timer;
    timer.start();
    To().SetRecipients(recipients.join(QStringLiteral(", ")), emtEmail);
    const qint64 filled = timer.restart();
    EXPECT_EQ(To().Recipients().count(u'@'), 500);
    EXPECT_LT(filled, 800);
    timer.restart();
    for (int i = 0; i < 20; ++i)
        To().Address().AddAddress(QStringLiteral("One more"), QStringLiteral("more%1@example.org").arg(i));
    EXPECT_EQ(To().Recipients().count(u'@'), 520);
    EXPECT_LT(timer.elapsed() / 20, 200);
    std::cout << "500 recipients in " << filled << " ms, one more in " << timer.elapsed() / 20 << " ms\n";
    EXPECT_TRUE(Box().verticalScrollBar()->maximum() > 0);
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Text(), QString());
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(To().Recipients().count(u'@'), 520);
}

TEST_F(ComposeRecipientsTest, PastedListsAreTakenWithTheirSeparators)
{
    Open();
    Paste(QStringLiteral("a@b.org; d@e.org"));
    EXPECT_EQ(Text(), QStringLiteral("a@b.org; d@e.org"));
    EXPECT_EQ(Window->Current().To, QStringLiteral("a@b.org, d@e.org"));
    Key(Qt::Key_A, Qt::ControlModifier);
    Paste(QStringLiteral("Ann <a@b.org>\r\n\r\n  d@e.org,\nBob\tLow <f@g.org>\n"));
    EXPECT_EQ(Text(), QStringLiteral("Ann <a@b.org>; d@e.org, Bob Low <f@g.org>"));
    EXPECT_EQ(ProtectedCharacters(), 0);
    EXPECT_EQ(Window->Current().To, QStringLiteral("Ann <a@b.org>, d@e.org, Bob Low <f@g.org>"));
}

TEST_F(ComposeRecipientsTest, GroupsAndCommentsAreUnderstood)
{
    Open();
    Paste(QStringLiteral("Team: Ann <a@b.org>, c@d.org; e@f.org (Eve, at home); (nobody) g@h.org"));
    EXPECT_EQ(Window->Current().To, QStringLiteral("Ann <a@b.org>, c@d.org, Eve, at home <e@f.org>, nobody <g@h.org>")
                                        .replace(QStringLiteral("Eve, at home"), QStringLiteral("\"Eve, at home\"")));
}

TEST_F(ComposeRecipientsTest, ABrokenAddressIsNamedAndNothingIsLost)
{
    Open(MessageTo(QStringLiteral("Ann <a@b.org>")));
    QTest::keyClicks(&Recipients("cc").Box(), QStringLiteral("c@d.org, Bob <bob@, e@f.org"));
    Ui.ExpectWarning(QStringLiteral("“Bob <bob@” is no e-mail address. Write it like ann@example.com, and commas "
                                    "between several."));
    EXPECT_FALSE(Window->Send());
    EXPECT_TRUE(MessagesIn(tmcOutbox).isEmpty());
    EXPECT_TRUE(Recipients("cc").Box().hasFocus());
    EXPECT_EQ(Recipients("cc").Address().text(), QStringLiteral("c@d.org, Bob <bob@, e@f.org"));
}

TEST_F(ComposeRecipientsTest, WhatIsSentIsWhatIsShown)
{
    Open(MessageTo(QStringLiteral("Loveday Tregenza <loveday@example.org>, \"Low, Bob\" <b@example.org>")));
    // The first goes, one is typed.
    ClickAt(4);
    Key(Qt::Key_Delete);
    Key(Qt::Key_End, Qt::ControlModifier);
    Type("c@example.org");
    Ui.ExpectConfirmation(
        QStringLiteral("This message has neither a subject nor a text. Do you want to send it all the same?"),
        MessageBoxAnswer::Yes);
    ASSERT_TRUE(Window->Send());
    const QList<qint32> sent = MessagesIn(tmcOutbox);
    ASSERT_EQ(sent.size(), 1);
    EXPECT_EQ(Station.Database().GetMessage(sent.first())->CDOMessage()->To(),
              QStringLiteral("\"Low, Bob\" <b@example.org>, c@example.org"));
}

TEST_F(ComposeRecipientsTest, AClickShowsWhatCanBeDoneAndTheKeyboardStaysInTheBox)
{
    Open(MessageTo(QStringLiteral("Ann <a@b.org>, Bob <c@d.org>")));
    ClickAt(4);
    ASSERT_TRUE(Actions().isVisible());
    EXPECT_TRUE(Box().hasFocus());
    QTest::mouseClick(Actions().findChild<QToolButton*>(QStringLiteral("copyAddress")), Qt::LeftButton);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("a@b.org"));
    EXPECT_FALSE(Actions().isVisible());
    ClickAt(4);
    const QSignalSpy wanted(Window, &ComposeWindow::ContactWanted);
    QTest::mouseClick(Actions().findChild<QToolButton*>(QStringLiteral("showContact")), Qt::LeftButton);
    ASSERT_EQ(wanted.size(), 1);
    EXPECT_EQ(wanted.first().at(0).toString(), QStringLiteral("Ann"));
    EXPECT_EQ(wanted.first().at(1).toString(), QStringLiteral("a@b.org"));
    ClickAt(4);
    QTest::mouseClick(Actions().findChild<QToolButton*>(QStringLiteral("removeAddress")), Qt::LeftButton);
    EXPECT_EQ(Text(), QStringLiteral("\"Bob\" <c@d.org>; "));
    EXPECT_FALSE(Actions().isVisible());
}

TEST_F(ComposeRecipientsTest, BackspaceOnASelectedRecipientTakesThatOne)
{
    Open(MessageTo(QStringLiteral("Ann <a@b.org>, Bob <c@d.org>")));
    ClickAt(20);
    EXPECT_EQ(Box().SelText(), QStringLiteral("\"Bob\" <c@d.org>"));
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Text(), QStringLiteral("\"Ann\" <a@b.org>; ; "));
    EXPECT_EQ(Window->Current().To, QStringLiteral("Ann <a@b.org>"));
}

TEST_F(ComposeRecipientsTest, CopyingASelectedRecipientLeavesItAUnit)
{
    Open(MessageTo(QStringLiteral("Ann <a@b.org>")));
    ClickAt(4);
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("\"Ann\" <a@b.org>"));
    Key(Qt::Key_Down);
    EXPECT_EQ(ProtectedCharacters(), 15);
}

TEST_F(ComposeRecipientsTest, KeysActInTypedTextAsInAnyOtherBox)
{
    Open();
    Type("abcd");
    Key(Qt::Key_Home);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box().SelStart(), 1);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Text(), QStringLiteral("acd"));
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(Box().SelText(), QStringLiteral("c"));
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Text(), QStringLiteral("ad"));
    Key(Qt::Key_Left, Qt::ShiftModifier);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box().SelStart(), 1);
}

TEST_F(ComposeRecipientsTest, SelectingWithTheKeyboardTakesRecipientsWhole)
{
    Open(MessageTo(QStringLiteral("Ann <a@b.org>, Bob <c@d.org>")));
    Box().SetSelStart(0);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(Box().SelText(), QStringLiteral("\"Ann\" <a@b.org>"));
    Key(Qt::Key_End, Qt::ControlModifier);
    Key(Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Box().SelText(), QStringLiteral("\"Bob\" <c@d.org>; "));
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Window->Current().To, QStringLiteral("Ann <a@b.org>"));
}

TEST_F(ComposeRecipientsTest, TheBoxGrowsToAFewLinesAndScrollsThen)
{
    Open();
    const int oneLine = To().height();
    QString many;
    for (int i = 0; i < 6; ++i)
        many += QStringLiteral("listener%1@example.org, ").arg(i);
    To().SetRecipients(many, emtEmail);
    EXPECT_TRUE(WaitUntil([&] { return To().height() > oneLine; }));
    for (int i = 0; i < 60; ++i)
        many += QStringLiteral("further%1@example.org, ").arg(i);
    To().SetRecipients(many, emtEmail);
    EXPECT_TRUE(WaitUntil([&] { return Box().verticalScrollBar()->maximum() > 0; }));
    EXPECT_LE(To().height(), oneLine + AddressBox::MostLines * Box().fontMetrics().lineSpacing());
    To().SetRecipients(QString(), emtEmail);
    EXPECT_TRUE(WaitUntil([&] { return To().height() == oneLine; }));
}

TEST_F(ComposeRecipientsTest, ContactsThatCannotBeReadAreToldAndAddressesCanBeTyped)
{
    Station.Directory().Close();
    Open();
    EXPECT_TRUE(Note().startsWith(QStringLiteral("The contacts cannot be read: ")));
    Type("lov");
    EXPECT_FALSE(List().isVisible());
    EXPECT_EQ(Window->Current().To, QStringLiteral("lov"));
}
