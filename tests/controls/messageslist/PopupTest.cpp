// SPDX-License-Identifier: Apache-2.0

// The popup of the grid: its entries and which of them are enabled and visible.

#include "messageslist/FilledListTest.h"

#include <QTabBar>

namespace
{
/// Rights of the user.
enum
{
    None = 0,
    Messages = 1,
    PersonalMessages = 2
};

QString Described(const QAction& entry)
{
    return entry.objectName() + QLatin1Char('|') + (entry.isSeparator() ? QStringLiteral("-") : entry.text());
}
} // namespace

class MessagesListPopupTest : public FilledListTest
{
protected:
    void PopUp()
    {
        QTest::mouseClick(Grid->viewport(), Qt::RightButton, {},
                          Grid->Rows() > 1 ? RowPosition(Grid->Row()) : QPoint(50, 50));
        ASSERT_TRUE(List->MessageMenu()->isVisible());
        List->MessageMenu()->close();
    }
    /// Of the visible entries.
    QStringList Enabled() const
    {
        QStringList names;
        for (const QAction* entry : List->MessageMenu()->actions()) {
            if (!entry->isSeparator() && entry->isEnabled())
                names.append(entry->objectName());
        }
        return names;
    }
    /// Of the four marking entries.
    QStringList VisibleMarks() const
    {
        QStringList names;
        for (const char* name : {"mnuMarkAsRead", "mnuMarkasUnread", "mnuMarkAllRead1", "mnuMarkAllRead2"}) {
            if (Entry(name).isVisible())
                names.append(QLatin1String(name));
        }
        return names;
    }
    static QStringList Names(std::initializer_list<const char*> names)
    {
        QStringList list;
        for (const char* name : names)
            list.append(QLatin1String(name));
        return list;
    }
};

TEST_F(MessagesListPopupTest, ItsEntriesStandInThisOrder)
{
    QStringList entries;
    for (const QAction* entry : List->MessageMenu()->actions())
        entries.append(Described(*entry));
    EXPECT_EQ(entries, Names({"mnuOpen|&Open Message",
                              "mnuReadSep|-",
                              "mnuMarkAsRead|Mark as &Read",
                              "mnuMarkasUnread|Mark as Un&read",
                              "mnuMarkAllSep|-",
                              "mnuMarkAllRead1|Mark a&ll as Read",
                              "mnuMarkAllRead2|Mark all as &Unread",
                              "mnuPrioritySep|-",
                              "mnuChangePriority|Change Message Priority",
                              "mnuPrintSep|-",
                              "mnuCopy|&Copy",
                              "mnuPrint|&Print Message",
                              "mnuEmailSep|-",
                              "mnuReplyMessage|&Reply to Message",
                              "mnuForwardMessage|&Forward Message",
                              "mnuExportSep|-",
                              "mnuExportMessage|Export to &File",
                              "mnuMessageNewMessageSep|-",
                              "mnuMessageNewMessage|&New Message",
                              "mnuDeleteSep|-",
                              "mnuDelete|&Delete Message"}));
    EXPECT_EQ(List->MessageMenu()->defaultAction(), &Entry("mnuOpen"));
    QStringList priorities;
    for (const QAction* entry : Entry("mnuChangePriority").menu()->actions())
        priorities.append(Described(*entry));
    EXPECT_EQ(priorities,
              Names({"mnuPriority0|Low Priority", "mnuPriority1|&Normal Priority", "mnuPriority2|&High Priority"}));
}

TEST_F(MessagesListPopupTest, ThePrioritiesChangeNothing)
{
    const qint32 one = Save(QStringLiteral("One"), [](cMessage& message) { message.SetPriority(1); });
    Attach();
    for (const char* name : {"mnuPriority0", "mnuPriority1", "mnuPriority2"})
        Entry(name).trigger();
    EXPECT_EQ(Station->GetMessage(one)->Priority(), 1);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPopupTest, WithAMessageAndRightsEverythingIsEnabled)
{
    Save(QStringLiteral("One"));
    Attach();
    PopUp();
    EXPECT_EQ(Enabled(), Names({"mnuOpen", "mnuMarkAsRead", "mnuMarkAllRead1", "mnuMarkAllRead2", "mnuChangePriority",
                                "mnuCopy", "mnuPrint", "mnuReplyMessage", "mnuForwardMessage", "mnuExportMessage",
                                "mnuMessageNewMessage", "mnuDelete"}));
}

TEST_F(MessagesListPopupTest, WithoutTheRightWhatChangesIsDisabled)
{
    Save(QStringLiteral("One"));
    Attach();
    Directory.User.Rights = PersonalMessages;
    PopUp();
    const QStringList readOnly = Names({"mnuOpen", "mnuMarkAsRead", "mnuMarkAllRead1", "mnuMarkAllRead2", "mnuPrint",
                                        "mnuReplyMessage", "mnuForwardMessage"});
    EXPECT_EQ(Enabled(), readOnly);
    // On another tab the other right decides.
    Tabs->Tabs().addTab(QStringLiteral("Personal"));
    Tabs->Tabs().addTab(QStringLiteral("All"));
    Tabs->SetTab(2);
    PopUp();
    EXPECT_TRUE(Entry("mnuDelete").isEnabled());
    EXPECT_TRUE(Entry("mnuCopy").isEnabled());
    Directory.User.Rights = Messages;
    PopUp();
    EXPECT_EQ(Enabled(), readOnly);
}

TEST_F(MessagesListPopupTest, WithoutAMessageOnlyANewOneCanBeMade)
{
    Attach();
    PopUp();
    EXPECT_EQ(Enabled(), Names({"mnuMessageNewMessage"}));
    Directory.User.Rights = None;
    PopUp();
    EXPECT_EQ(Enabled(), QStringList{});
}

TEST_F(MessagesListPopupTest, AMessageThatIsGoneCountsAsNoneWhileItsRowStands)
{
    const qint32 one = Save(QStringLiteral("One"));
    Attach();
    ASSERT_TRUE(OtherComputer().DeleteMessage(one, true));
    PopUp();
    EXPECT_EQ(Enabled(), Names({"mnuMarkasUnread", "mnuMarkAllRead1", "mnuMarkAllRead2", "mnuMessageNewMessage"}));
}

TEST_F(MessagesListPopupTest, OnlyAMessageWithASenderCanBeRepliedTo)
{
    Save(QStringLiteral("One"), [](cMessage& message) { message.CDOMessage()->SetFrom(QString()); });
    Attach();
    PopUp();
    EXPECT_FALSE(Entry("mnuReplyMessage").isEnabled());
    EXPECT_TRUE(Entry("mnuForwardMessage").isEnabled());
}

TEST_F(MessagesListPopupTest, MarkingFollowsTheReadStateOfTheMessage)
{
    const qint32 one = Save(QStringLiteral("One"));
    Attach();
    PopUp();
    EXPECT_EQ(VisibleMarks(), Names({"mnuMarkAsRead", "mnuMarkAllRead1", "mnuMarkAllRead2"}));
    const cMessagePtr message = Station->GetMessage(one);
    message->SetFlags(mfRead);
    ASSERT_TRUE(Station->SaveMessage(message));
    PopUp();
    EXPECT_EQ(VisibleMarks(), Names({"mnuMarkasUnread", "mnuMarkAllRead1", "mnuMarkAllRead2"}));
    EXPECT_TRUE(Entry("mnuMarkasUnread").isEnabled());
}

TEST_F(MessagesListPopupTest, WithoutAUserNothingCanBeMarkedOrChanged)
{
    Save(QStringLiteral("One"));
    Directory.SignedIn = nullptr;
    Attach();
    List->UpdateDisplay();
    EXPECT_FALSE(Entry("mnuReadSep").isVisible());
    PopUp();
    EXPECT_EQ(VisibleMarks(), QStringList{});
    EXPECT_EQ(Enabled(), Names({"mnuOpen", "mnuPrint", "mnuReplyMessage", "mnuForwardMessage"}));
}

TEST_F(MessagesListPopupTest, ASignedInUserSeesTheSeparatorOfTheMarks)
{
    Attach();
    EXPECT_TRUE(Entry("mnuReadSep").isVisible());
}

TEST_F(MessagesListPopupTest, TheMenuOfAListWithoutStationOffersNothing)
{
    List->MessageMenu()->popup(QPoint(10, 10));
    EXPECT_EQ(Enabled(), QStringList{});
    List->MessageMenu()->close();
}
