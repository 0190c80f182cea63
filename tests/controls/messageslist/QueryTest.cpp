// SPDX-License-Identifier: Apache-2.0

// The query text, letter for letter, and what it finds.

#include "messageslist/ErrorCatcher.h"
#include "messageslist/FilledListTest.h"
#include "platform/widgets/Icons.h"

#include <QLineEdit>
#include <QTabBar>

namespace
{
const QString SentOrder = QStringLiteral(" ORDER BY [Sent] DESC, [Reference]");
const QString Inbox = QStringLiteral("([Category]=1) ");
const QString OfTheUser =
    QStringLiteral("([PersonalToContact]=0 or [PersonalToContact] is NULL or [PersonalToContact]=7) ");

/// Signed in, but no contact of the directory.
class UserWithoutContact : public FakeUser
{
public:
    qint32 Reference() const override { return 0; }
};
} // namespace

class MessagesListQueryTest : public FilledListTest
{
protected:
    /// The tabs that a host may add.
    void AddTabs()
    {
        Tabs->Tabs().addTab(QStringLiteral("Personal"));
        Tabs->Tabs().addTab(QStringLiteral("All"));
    }
    void ClickTab(int index)
    {
        QTest::mouseClick(&Tabs->Tabs(), Qt::LeftButton, {}, Tabs->Tabs().tabRect(index).center());
    }
};

TEST_F(MessagesListQueryTest, ShowsTheInboxOfTheSignedInUserWhenItIsAttached)
{
    Save(QStringLiteral("First"));
    SaveIn(QStringLiteral("Elsewhere"), tmcSaved);
    Attach();
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("First")});
    EXPECT_EQ(LastQuery(), Inbox + QStringLiteral(" AND ") + OfTheUser + QLatin1Char(' ') + SentOrder);
}

TEST_F(MessagesListQueryTest, ShowsTheFolderThatTheUserLeftLast)
{
    Directory.User.Preferences.insert(QStringLiteral("SelectedMessageCategory"), 3);
    SaveIn(QStringLiteral("Kept"), tmcSaved);
    Attach();
    EXPECT_EQ(List->Category(), tmcSaved);
    EXPECT_EQ(Tree->SelectedKey(), QStringLiteral("c3"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Kept")});
}

TEST_F(MessagesListQueryTest, WithoutUserFolderAndFindTextTheConditionIsEmpty)
{
    Directory.SignedIn = nullptr;
    Save(QStringLiteral("First"));
    SaveIn(QStringLiteral("Elsewhere"), tmcSaved);
    Attach();
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(List->NumberItems(), 0);
    List->UpdateDisplay();
    EXPECT_EQ(LastQuery(), QLatin1Char(' ') + SentOrder);
    EXPECT_EQ(Subjects(), QStringList({QStringLiteral("First"), QStringLiteral("Elsewhere")}));
}

TEST_F(MessagesListQueryTest, WithoutUserAFolderIsTheWholeCondition)
{
    Directory.SignedIn = nullptr;
    Attach();
    List->SetCategory(tmcSaved);
    EXPECT_EQ(LastQuery(), QStringLiteral("([Category]=3)  ") + SentOrder);
}

TEST_F(MessagesListQueryTest, AFindTextLooksForSubjectsThatHoldItInAnyCase)
{
    Save(QStringLiteral("The lighthouse again"));
    Save(QStringLiteral("Something else"));
    Attach();
    Find(QStringLiteral("LightHouse"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("The lighthouse again")});
    EXPECT_EQ(LastQuery(), QStringLiteral("([Subject] LIKE \"*LightHouse*\" ) AND ") + Inbox + QStringLiteral(" AND ") +
                               OfTheUser + QLatin1Char(' ') + SentOrder);
    EXPECT_EQ(List->FindText(), QStringLiteral("LightHouse"));
    EXPECT_TRUE(List->IsFiltered());
    List->ClearFind();
    EXPECT_EQ(List->NumberItems(), 2);
    EXPECT_EQ(Box->Text(), QStringLiteral("<All Messages>"));
    EXPECT_FALSE(List->IsFiltered());
}

TEST_F(MessagesListQueryTest, AllMessagesInAnyCaseSearchesNothingAndShowsTheCanonicalText)
{
    Save(QStringLiteral("One"));
    Attach();
    for (const QString& typed :
         {QStringLiteral("<all messages>"), QStringLiteral("  <ALL MESSAGES>  "), QString(), QStringLiteral("   ")}) {
        Box->SetText(typed);
        List->UpdateDisplay();
        EXPECT_EQ(Box->Text(), QStringLiteral("<All Messages>")) << qPrintable(typed);
        EXPECT_TRUE(LastQuery().startsWith(QStringLiteral("([Category]=1) "))) << qPrintable(typed);
        EXPECT_EQ(List->NumberItems(), 1) << qPrintable(typed);
    }
}

TEST_F(MessagesListQueryTest, TheFindTextIsTrimmedInTheBoxAndSelectedAfterwards)
{
    Save(QStringLiteral("One more"));
    Attach();
    Box->SetText(QStringLiteral("  one  "));
    List->UpdateDisplay();
    EXPECT_EQ(Box->Text(), QStringLiteral("one"));
    EXPECT_EQ(Box->lineEdit()->selectedText(), QStringLiteral("one"));
    EXPECT_TRUE(LastQuery().startsWith(QStringLiteral("([Subject] LIKE \"*one*\" )")));
    EXPECT_EQ(List->NumberItems(), 1);
}

TEST_F(MessagesListQueryTest, WildcardsOfTheFindTextAreTheUsers)
{
    Save(QStringLiteral("Song 1 please"));
    Save(QStringLiteral("Song 22 please"));
    Save(QStringLiteral("No song"));
    Attach();
    Find(QStringLiteral("song ? p"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Song 1 please")});
    Find(QStringLiteral("song ## p"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Song 22 please")});
    Find(QStringLiteral("s*please"));
    EXPECT_EQ(List->NumberItems(), 2);
    Find(QStringLiteral("song [2-9]"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Song 22 please")});
}

TEST_F(MessagesListQueryTest, ChoosingAFolderThrowsNothingAtItsHost)
{
    Save(QStringLiteral("One"));
    Attach();
    Box->SetText(QStringLiteral("a\"b"));
    const ErrorCatcher errors;
    EXPECT_NO_THROW(List->SetCategory(tmcSaved));
    EXPECT_EQ(errors.Numbers(), QList<int>{3075});
    EXPECT_EQ(errors.Sources(), QStringList{QStringLiteral("uMessagesList.Category")});
    for (const int category : {32767, 40000, -1})
        EXPECT_NO_THROW(List->SetCategory(static_cast<enTolvaMessageCategories>(category)));
}

TEST_F(MessagesListQueryTest, ADoubleQuoteInTheFindTextIsAnErrorAfterWhichTheListGoesOn)
{
    const qint32 one = Save(QStringLiteral("One"));
    Attach();
    ASSERT_EQ(List->SelectedReference(), one);
    Box->SetText(QStringLiteral("a\"b"));
    try {
        List->UpdateDisplay();
        ADD_FAILURE() << "no error";
    } catch (const dao::Error& error) {
        EXPECT_EQ(error.Number(), 3075);
        Ui.ExpectRunTimeError(3075, error.Description());
    }
    EXPECT_TRUE(LastQuery().startsWith(QStringLiteral("([Subject] LIKE \"*a\"b*\" ) AND ")));
    // The same from the box: the host is told, nothing is thrown through the event loop.
    Find(QStringLiteral("a\"b"));
    ASSERT_EQ(Ui.RunTimeErrors().size(), 1);
    EXPECT_TRUE(Tree->isEnabled());
    EXPECT_TRUE(Tabs->isEnabled());
    EXPECT_TRUE(Timer().isActive());
    EXPECT_EQ(List->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(Grid->Redraw());
    EXPECT_FALSE(Loading().isVisible());
    EXPECT_EQ(List->SelectedReference(), one);
    Find(QStringLiteral("one"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("One")});
}

TEST_F(MessagesListQueryTest, OrderByInTheFindTextTakesTheOrderAway)
{
    const auto sent = [](int day) { return [day](cMessage& message) { message.SetSent(Date(2026, 11, day)); }; };
    Save(QStringLiteral("Order by Monday"), sent(1));
    Save(QStringLiteral("Order by Friday"), sent(5));
    Attach();
    EXPECT_EQ(Subjects().first(), QStringLiteral("Order by Friday"));
    Find(QStringLiteral("order by"));
    EXPECT_EQ(Subjects(), QStringList({QStringLiteral("Order by Monday"), QStringLiteral("Order by Friday")}));
    EXPECT_TRUE(LastQuery().endsWith(SentOrder));
}

TEST_F(MessagesListQueryTest, TheOrderFollowsTheUsersPreference)
{
    Attach();
    const auto orderFor = [this](const QVariant& preference) {
        Directory.User.SetPreference(QStringLiteral("MessagesListSortOrder"), preference);
        return LastQuery().section(OfTheUser, 1);
    };
    EXPECT_EQ(orderFor(1), QStringLiteral("  ORDER BY [Received] DESC, [Reference]"));
    EXPECT_EQ(orderFor(QStringLiteral("0")), QStringLiteral("  ORDER BY [Sent] DESC, [Reference]"));
    EXPECT_EQ(orderFor(2), QStringLiteral(" "));
    EXPECT_EQ(orderFor(-1), QStringLiteral(" "));
}

TEST_F(MessagesListQueryTest, WithoutAnOrderMessagesStillShow)
{
    Directory.User.Preferences.insert(QStringLiteral("MessagesListSortOrder"), 5);
    SaveMany(3);
    Attach();
    EXPECT_EQ(List->NumberItems(), 3);
}

TEST_F(MessagesListQueryTest, TheTabsOfAHostChooseWhoseMessages)
{
    Save(QStringLiteral("General"));
    Save(QStringLiteral("Mine"), [](cMessage& message) { message.SetPersonalToContact(7); });
    Save(QStringLiteral("Another's"), [](cMessage& message) { message.SetPersonalToContact(8); });
    AddTabs();
    Attach();
    EXPECT_EQ(Subjects(), QStringList({QStringLiteral("General"), QStringLiteral("Mine")}));
    ClickTab(1);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(LastQuery(), Inbox + QStringLiteral(" AND [PersonalToContact]=7  ") + SentOrder);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Mine")});
    ClickTab(2);
    EXPECT_EQ(LastQuery(), Inbox + QLatin1Char(' ') + SentOrder);
    EXPECT_EQ(List->NumberItems(), 3);
    ClickTab(0);
    EXPECT_EQ(LastQuery(), Inbox + QStringLiteral(" AND ") + OfTheUser + QLatin1Char(' ') + SentOrder);
}

TEST_F(MessagesListQueryTest, AUserWithoutContactHasNoPersonalMessages)
{
    UserWithoutContact user;
    Directory.SignedIn = &user;
    Save(QStringLiteral("General"));
    AddTabs();
    Attach();
    ClickTab(1);
    EXPECT_EQ(LastQuery(), Inbox + QStringLiteral(" AND [PersonalToContact]=-1  ") + SentOrder);
    EXPECT_EQ(List->NumberItems(), 0);
    List->SetTolvaDatabase(nullptr);
    Directory.SignedIn = nullptr;
}

TEST_F(MessagesListQueryTest, WithoutUserTheTabsMakeNoCondition)
{
    Directory.SignedIn = nullptr;
    AddTabs();
    Attach();
    ClickTab(1);
    EXPECT_EQ(LastQuery(), QLatin1Char(' ') + SentOrder);
}

TEST_F(MessagesListQueryTest, TheStripHasOneTabWithABlank)
{
    EXPECT_EQ(Tabs->Tabs().count(), 1);
    EXPECT_EQ(Tabs->Tabs().tabText(0), QStringLiteral(" "));
    EXPECT_EQ(Tabs->Tab(), 0);
}

TEST_F(MessagesListQueryTest, TheFolderInTheQueryIsTheSelectedNodes)
{
    Attach();
    ASSERT_TRUE(Tree->SelectNode(QStringLiteral("c4")));
    List->UpdateDisplay();
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_TRUE(LastQuery().startsWith(QStringLiteral("([Category]=4) ")));
}

TEST_F(MessagesListQueryTest, EachFindTextIsKeptOnceAsItWasFirstTyped)
{
    Attach();
    Find(QStringLiteral("Dusty"));
    Find(QStringLiteral("abba"));
    Find(QStringLiteral("DUSTY"));
    Find(QStringLiteral("<all messages>"));
    Find(QStringLiteral("ABBA"));
    Box->showPopup();
    QStringList entries;
    for (int i = 0; i < Box->count(); ++i)
        entries.append(Box->itemText(i));
    Box->hidePopup();
    EXPECT_EQ(entries,
              QStringList({QStringLiteral("<All Messages>"), QStringLiteral("Dusty"), QStringLiteral("abba")}));
    EXPECT_EQ(Box->Text(), QStringLiteral("ABBA"));
}

TEST_F(MessagesListQueryTest, TheBinsPictureIsAtTheSentMessagesAndTellsWhetherThereAreAny)
{
    const auto picture = [this] {
        for (QTreeWidgetItemIterator item(Tree); *item; ++item) {
            if (Tree->KeyOfItem(**item) == QStringLiteral("c4"))
                return (*item)->icon(0).pixmap(16).toImage();
        }
        return QImage();
    };
    const auto icon = [](const char* key) { return Icons::Get(QLatin1String(key)).pixmap(16).toImage(); };
    Save(QStringLiteral("Deleted"), [](cMessage& message) { message.SetCategory(tmcDeleted); });
    Attach();
    List->UpdateDisplay();
    EXPECT_EQ(picture(), icon("trash"));
    SaveIn(QStringLiteral("Sent"), tmcSent);
    List->UpdateDisplay();
    EXPECT_EQ(picture(), icon("trashfull"));
    // Also while the node is the selected one.
    List->SetCategory(tmcSent);
    EXPECT_EQ(picture(), icon("trashfull"));
}
