// SPDX-License-Identifier: Apache-2.0

// Keeping in step with other computers, and with what this program itself saves and deletes.

#include "common/ClockHelper.h"
#include "messageslist/FilledListTest.h"

class MessagesListPollingTest : public FilledListTest
{
};

TEST_F(MessagesListPollingTest, ATickWithoutAChangeFillsNothing)
{
    Save(QStringLiteral("One"));
    Attach();
    Tick();
    Tick();
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPollingTest, ATickWithoutAStationOrAnOpenOneDoesNothing)
{
    Tick();
    EXPECT_EQ(TakeFills(), 0);
    OpenStation();
    Attach();
    Station->CloseTolvaDatabase();
    Tick();
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPollingTest, AChangeOfAnotherComputerShowsAtTheNextTickAndLeavesTheUsersPlace)
{
    const QList<qint32> references = SaveMany(100);
    Attach();
    Grid->SetTopRow(50);
    ClickRow(52);
    SaveElsewhere(QStringLiteral("From afar"));
    EXPECT_EQ(List->NumberItems(), 100);
    Tick();
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Subjects().last(), QStringLiteral("From afar"));
    EXPECT_EQ(List->SelectedReference(), references.at(51));
    EXPECT_EQ(Grid->Row(), 52);
    EXPECT_EQ(Grid->TopRow(), 50);
    Tick();
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPollingTest, AFindTextIsTypedToItsEndBeforeTheListIsReadAgain)
{
    Save(QStringLiteral("The lighthouse"));
    Attach();
    Box->setFocus();
    QTest::keyClicks(Box, QStringLiteral("light"));
    SaveElsewhere(QStringLiteral("From afar"));
    Tick();
    EXPECT_EQ(TakeFills(), 0);
    QTest::keyClicks(Box, QStringLiteral("house"));
    EXPECT_EQ(Box->Text(), QStringLiteral("lighthouse"));
    QTest::keyClick(Box, Qt::Key_Return);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("The lighthouse")});
    SaveElsewhere(QStringLiteral("Another lighthouse"));
    TakeFills();
    Tick();
    EXPECT_EQ(TakeFills(), 1) << "the typing is over";
}

TEST_F(MessagesListPollingTest, AStampThatWentBackIsAChangeToo)
{
    Save(QStringLiteral("One"));
    Attach();
    Now.Advance(-3600);
    OtherComputer().SetLastMessageChanged(ClockHelper::NowUTC());
    Tick();
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(MessagesListPollingTest, AChangeStoredDuringAFillShowsAtTheNextTick)
{
    SaveMany(30);
    Attach();
    OtherComputer();
    AtYield(2, [&] { SaveElsewhere(QStringLiteral("In between")); });
    List->UpdateDisplay();
    TakeFills();
    EXPECT_EQ(List->NumberItems(), 30);
    Tick();
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(List->NumberItems(), 31);
}

TEST_F(MessagesListPollingTest, AMessageSavedByThisProgramDuringAFillShowsAtTheNextTick)
{
    SaveMany(30);
    Attach();
    AtYield(2, [&] {
        Now.Advance(1);
        Save(QStringLiteral("In between"));
    });
    List->UpdateDisplay();
    EXPECT_EQ(TakeFills(), 1);
    Tick();
    EXPECT_EQ(List->NumberItems(), 31);
}

TEST_F(MessagesListPollingTest, AStationWithoutAStampGetsTheLocalTimeAndIsReadAgain)
{
    Now.SetUtc(QDateTime(QDate(2026, 7, 1), QTime(12, 0), Qt::UTC));
    Save(QStringLiteral("One"));
    Attach();
    Station->SetLastMessageChanged(Date());
    ASSERT_TRUE(Station->LastMessageChanged().IsNone());
    Tick();
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Station->LastMessageChanged().GeneralDate(), Date(2026, 7, 1, 13, 0).GeneralDate());
    Tick();
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPollingTest, TheIntervalIsLimited)
{
    EXPECT_EQ(List->AutoUpdateInterval(), 10.0F);
    EXPECT_EQ(Timer().interval(), 10'000);
    List->SetAutoUpdateInterval(90);
    EXPECT_EQ(List->AutoUpdateInterval(), 60.0F);
    List->SetAutoUpdateInterval(60.5F);
    EXPECT_EQ(List->AutoUpdateInterval(), 60.0F);
    List->SetAutoUpdateInterval(2.5F);
    EXPECT_EQ(List->AutoUpdateInterval(), 2.5F);
    EXPECT_EQ(Timer().interval(), 2'500);
    List->SetAutoUpdateInterval(-1);
    EXPECT_EQ(List->AutoUpdateInterval(), 0.0F);
}

TEST_F(MessagesListPollingTest, AnIntervalOfNothingNeverFires)
{
    Save(QStringLiteral("One"));
    Attach();
    List->SetAutoUpdateInterval(0);
    EXPECT_FALSE(Timer().isActive());
    List->SetAutoUpdate(true);
    EXPECT_FALSE(Timer().isActive());
    List->UpdateDisplay();
    EXPECT_FALSE(Timer().isActive());
    List->SetAutoUpdateInterval(1);
    EXPECT_TRUE(Timer().isActive());
}

TEST_F(MessagesListPollingTest, AutoUpdateStartsAndStopsTheTimer)
{
    EXPECT_TRUE(Timer().isActive());
    List->SetAutoUpdate(false);
    EXPECT_FALSE(Timer().isActive());
    EXPECT_FALSE(List->AutoUpdate());
    List->SetAutoUpdateInterval(3);
    EXPECT_FALSE(Timer().isActive());
    List->SetAutoUpdate(true);
    EXPECT_TRUE(Timer().isActive());
}

TEST_F(MessagesListPollingTest, AnErrorAtATickIsToldAndTheNextOneStillComes)
{
    Save(QStringLiteral("One"));
    Attach();
    Box->SetText(QStringLiteral("\""));
    SaveElsewhere(QStringLiteral("Two"));
    try {
        List->UpdateDisplay();
        ADD_FAILURE() << "no error";
    } catch (const dao::Error& error) {
        Ui.ExpectRunTimeError(3075, error.Description());
    }
    Tick();
    EXPECT_TRUE(Timer().isActive());
    Box->SetText(QString());
    Tick();
    EXPECT_EQ(List->NumberItems(), 2);
}

// ---- What this program does

TEST_F(MessagesListPollingTest, AMessageOnShowIsDrawnAgainAlone)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    const cMessagePtr message = Station->GetMessage(references.at(1));
    message->CDOMessage()->SetSubject(QStringLiteral("Changed"));
    Now.Advance(1);
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(Subjects().at(1), QStringLiteral("Changed"));
    Tick();
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPollingTest, ANewMessageRefills)
{
    Save(QStringLiteral("One"));
    Attach();
    Save(QStringLiteral("Two"));
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(List->NumberItems(), 2);
}

TEST_F(MessagesListPollingTest, AMessageOfAnotherFolderIsIgnored)
{
    Save(QStringLiteral("One"));
    Attach();
    SaveIn(QStringLiteral("Kept"), tmcSaved);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPollingTest, WithNoFolderChosenEveryMessageCounts)
{
    Directory.SignedIn = nullptr;
    Attach();
    List->UpdateDisplay();
    TakeFills();
    SaveIn(QStringLiteral("Kept"), tmcSaved);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(List->NumberItems(), 1);
}

TEST_F(MessagesListPollingTest, AnEventWithoutAMessageRefills)
{
    Attach();
    Station->RaiseSaveMessageEvent(nullptr, false);
    EXPECT_EQ(TakeFills(), 1);
    Station->RaiseDeleteMessageEvent(nullptr);
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(MessagesListPollingTest, ADeletedMessageStaysOnShowUntilTheNextFill)
{
    const QList<qint32> references = SaveMany(2);
    Attach();
    ASSERT_TRUE(Station->DeleteMessage(references.at(0), true));
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(List->NumberItems(), 2);
    EXPECT_EQ(Subjects().first(), QStringLiteral("Message 1"));
    TakeSelections();
    ClickRow(2);
    ClickRow(1);
    EXPECT_EQ(TakeSelections(), QList<qint32>{references.at(1)}) << "a message that is gone was told";
    EXPECT_EQ(List->SelectedReference(), references.at(0));
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 1);
}

TEST_F(MessagesListPollingTest, AnErrorInADatabaseEventIsTold)
{
    Save(QStringLiteral("One"));
    Attach();
    Box->SetText(QStringLiteral("\""));
    try {
        List->UpdateDisplay();
        ADD_FAILURE() << "no error";
    } catch (const dao::Error& error) {
        Ui.ExpectRunTimeError(3075, error.Description());
    }
    Station->RaiseSaveMessageEvent(nullptr, false);
}

// ---- Preferences

TEST_F(MessagesListPollingTest, PreferencesOfTheListRefillIt)
{
    Attach();
    Q_EMIT Directory.User.PreferencesChanged(32, QStringLiteral("MESSAGESLISTSORTORDER"));
    EXPECT_EQ(TakeFills(), 1);
    Q_EMIT Directory.User.PreferencesChanged(32 | 1, QString());
    EXPECT_EQ(TakeFills(), 1);
    Q_EMIT Directory.User.PreferencesChanged(31, QString());
    Q_EMIT Directory.User.PreferencesChanged(32, QStringLiteral("Something else"));
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListPollingTest, AllPreferencesRefillTheTreeToo)
{
    Attach();
    clsCategory added;
    added.SetDescription(QStringLiteral("Requests"));
    added.SetParentReference(tmcInbox);
    ASSERT_TRUE(Station->SaveMessageCategory(added));
    Station->UpdateCategoryTree();
    const QString key = QStringLiteral("c%1").arg(added.Reference());
    ASSERT_FALSE(Tree->HasNode(key));
    Q_EMIT Directory.User.PreferencesChanged(32, QStringLiteral("MessagesListSortOrder"));
    EXPECT_FALSE(Tree->HasNode(key));
    Q_EMIT Directory.User.PreferencesChanged(32, QString());
    EXPECT_TRUE(Tree->HasNode(key));
}

TEST_F(MessagesListPollingTest, ErrorsOfAPreferenceChangeAreIgnored)
{
    Attach();
    Box->SetText(QStringLiteral("\""));
    Q_EMIT Directory.User.PreferencesChanged(32, QString());
    EXPECT_EQ(Ui.RunTimeErrors().size(), 0);
    EXPECT_TRUE(Tree->isEnabled());
}

TEST_F(MessagesListPollingTest, PreferencesOfAUserWhoIsNoLongerSetDoNothing)
{
    Attach();
    List->SetTolvaDatabase(nullptr);
    TakeFills();
    Q_EMIT Directory.User.PreferencesChanged(32, QString());
    EXPECT_EQ(TakeFills(), 0);
}
