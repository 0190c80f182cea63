// SPDX-License-Identifier: Apache-2.0

// The properties that a host's form stores, and the choice of a folder.

#include "messageslist/FilledListTest.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"

#include <QTabBar>

class MessagesListPropertiesTest : public FilledListTest
{
protected:
    MessagesListPropertiesTest()
    {
        QObject::connect(List.get(), &uMessagesList::PropertyChanged, List.get(),
                         [this](const QString& key) { Keys.append(key); });
    }
    static QStringList Names(std::initializer_list<const char*> names)
    {
        QStringList list;
        for (const char* name : names)
            list.append(QLatin1String(name));
        return list;
    }

    QStringList Keys;
};

TEST_F(MessagesListPropertiesTest, ANewListHasTheDefaults)
{
    EXPECT_EQ(List->BackColour(), SystemColour::ButtonFace);
    EXPECT_TRUE(List->DoubleHeightRows());
    EXPECT_TRUE(List->DisplayNewMessage());
    EXPECT_TRUE(List->DisplayMessageList());
    EXPECT_TRUE(List->PrintVisible());
    EXPECT_TRUE(List->AutoUpdate());
    EXPECT_EQ(List->AutoUpdateInterval(), 10.0F);
    EXPECT_EQ(List->SelectedReference(), 0);
    EXPECT_EQ(static_cast<int>(List->Category()), 0);
}

TEST_F(MessagesListPropertiesTest, EverySetterTellsItsKey)
{
    List->SetBackColour(1);
    List->SetPrintVisible(false);
    List->SetDoubleHeightRows(false);
    List->SetDisplayNewMessage(false);
    List->SetDisplayMessageList(false);
    List->SetAutoUpdate(false);
    List->SetAutoUpdateInterval(5);
    List->SetFont(QFont());
    EXPECT_EQ(Keys, Names({"BackColour", "PrintVisible", "DoubleHeightRows", "DisplayNewMessage", "DisplayMessageList",
                           "AutoUpdate", "AutoUpdateInterval", "Font"}));
}

TEST_F(MessagesListPropertiesTest, InitialisingAndReadingSetThePropertiesInTheirOrder)
{
    List->InitProperties();
    EXPECT_EQ(Keys, Names({"BackColour", "DoubleHeightRows", "DisplayNewMessage", "DisplayMessageList",
                           "AutoUpdateInterval", "AutoUpdate"}));
    Keys.clear();
    List->ReadProperties(PropertyBag());
    EXPECT_EQ(Keys, Names({"Font", "PrintVisible", "BackColour", "DoubleHeightRows", "DisplayNewMessage",
                           "DisplayMessageList", "AutoUpdate", "AutoUpdateInterval"}));
}

TEST_F(MessagesListPropertiesTest, DefaultsAreNotStored)
{
    PropertyBag bag;
    List->WriteProperties(bag);
    EXPECT_EQ(bag.Values(), QVariantMap());
}

TEST_F(MessagesListPropertiesTest, WhatIsStoredIsReadAgain)
{
    QFont font = List->Font();
    font.setPointSize(23);
    List->SetBackColour(0x123456);
    List->SetPrintVisible(false);
    List->SetDoubleHeightRows(false);
    List->SetDisplayNewMessage(false);
    List->SetDisplayMessageList(false);
    List->SetAutoUpdate(false);
    List->SetAutoUpdateInterval(2.5F);
    List->SetFont(font);
    PropertyBag bag;
    List->WriteProperties(bag);
    EXPECT_EQ(QStringList(bag.Values().keys()),
              Names({"AutoUpdate", "AutoUpdateInterval", "BackColour", "DisplayMessageList", "DisplayNewMessage",
                     "DoubleHeightRows", "Font", "PrintVisible"}));
    uMessagesList other;
    other.ReadProperties(bag);
    EXPECT_EQ(other.BackColour(), 0x123456);
    EXPECT_FALSE(other.PrintVisible());
    EXPECT_FALSE(other.DoubleHeightRows());
    EXPECT_FALSE(other.DisplayNewMessage());
    EXPECT_FALSE(other.DisplayMessageList());
    EXPECT_FALSE(other.AutoUpdate());
    EXPECT_EQ(other.AutoUpdateInterval(), 2.5F);
    EXPECT_EQ(other.Font().pointSize(), 23);
}

TEST_F(MessagesListPropertiesTest, MissingKeysReadAsTheDefaults)
{
    List->SetAutoUpdateInterval(3);
    List->SetPrintVisible(false);
    List->SetBackColour(1);
    List->SetDisplayMessageList(false);
    List->ReadProperties(PropertyBag());
    EXPECT_EQ(List->AutoUpdateInterval(), 10.0F);
    EXPECT_TRUE(List->PrintVisible());
    EXPECT_TRUE(List->DisplayMessageList());
    EXPECT_EQ(List->BackColour(), SystemColour::ButtonFace);
}

TEST_F(MessagesListPropertiesTest, TheFontOfTheContainerIsTheDefault)
{
    QWidget container;
    QFont font = container.font();
    font.setPointSize(19);
    container.setFont(font);
    auto* list = new uMessagesList(&container);
    list->ReadProperties(PropertyBag());
    EXPECT_EQ(list->Font().pointSize(), 19);
    PropertyBag bag;
    list->WriteProperties(bag);
    EXPECT_FALSE(bag.Values().contains(QStringLiteral("Font")));
}

TEST_F(MessagesListPropertiesTest, DoubleHeightRowsRefillsTheList)
{
    Save(QStringLiteral("One"));
    Attach();
    List->SetDoubleHeightRows(false);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Grid->TextMatrix(1, 2), QStringLiteral("One"));
}

TEST_F(MessagesListPropertiesTest, AFolderThatDoesNotExistIsIgnored)
{
    Attach();
    for (const int category : {-1, 0, Station->LastMessageCategoryReference() + 1, 32000}) {
        List->SetCategory(static_cast<enTolvaMessageCategories>(category));
        EXPECT_EQ(List->Category(), tmcInbox) << category;
        EXPECT_EQ(Tree->SelectedKey(), QStringLiteral("c1")) << category;
    }
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPropertiesTest, ChoosingAFolderSelectsItsNodeAndIsRemembered)
{
    SaveIn(QStringLiteral("Kept"), tmcSaved);
    Attach();
    List->SetCategory(tmcSaved);
    EXPECT_EQ(List->Category(), tmcSaved);
    EXPECT_EQ(Tree->SelectedKey(), QStringLiteral("c3"));
    EXPECT_EQ(Directory.User.Preferences.value(QStringLiteral("SelectedMessageCategory")).toInt(), 3);
    EXPECT_EQ(TakeFills(), 1);
    List->SetCategory(tmcSaved);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPropertiesTest, ChoosingAFolderExpandsIt)
{
    OpenStation();
    clsCategory added;
    added.SetDescription(QStringLiteral("Requests"));
    added.SetParentReference(tmcSaved);
    ASSERT_TRUE(Station->SaveMessageCategory(added));
    Station->UpdateCategoryTree();
    Attach();
    ASSERT_FALSE(Tree->IsExpanded(QStringLiteral("c3")));
    List->SetCategory(tmcSaved);
    EXPECT_TRUE(Tree->IsExpanded(QStringLiteral("c3")));
}

TEST_F(MessagesListPropertiesTest, ResettingGoesBackToTheStartView)
{
    Save(QStringLiteral("One"));
    Attach();
    Tabs->Tabs().addTab(QStringLiteral("Personal"));
    Box->showPopup();
    Box->hidePopup();
    Box->SetText(QStringLiteral("nothing like it"));
    Tabs->SetTab(1);
    List->SetCategory(tmcSaved);
    TakeFills();
    List->ResetDisplay();
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Box->Text(), QStringLiteral("<All Messages>"));
    EXPECT_EQ(Tabs->Tab(), 0);
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_EQ(List->NumberItems(), 1);
}

TEST_F(MessagesListPropertiesTest, ResettingInTheInboxReadsItAgainAndABoxWithoutEntriesKeepsItsText)
{
    Save(QStringLiteral("One"));
    Save(QStringLiteral("Two"));
    Attach();
    Find(QStringLiteral("two"));
    TakeFills();
    List->ResetDisplay();
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Box->Text(), QStringLiteral("two"));
    Box->showPopup();
    Box->hidePopup();
    List->ResetDisplay();
    EXPECT_EQ(List->NumberItems(), 2);
}

TEST_F(MessagesListPropertiesTest, ResettingWorksWithoutAUser)
{
    Directory.SignedIn = nullptr;
    Save(QStringLiteral("One"));
    Attach();
    List->ResetDisplay();
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_EQ(List->NumberItems(), 1);
}

TEST_F(MessagesListPropertiesTest, TakingTheStationAwayLeavesTheHeaderAlone)
{
    SaveMany(3);
    Attach();
    TakeSelections();
    List->SetTolvaDatabase(nullptr);
    EXPECT_EQ(Grid->Rows(), 1);
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_EQ(List->SelectedReference(), 0);
    EXPECT_EQ(TakeFills(), 0);
    // What the station does then is no matter of this list.
    Save(QStringLiteral("Later"));
    EXPECT_EQ(TakeFills(), 0);
}
