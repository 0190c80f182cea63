#include "messageslist/MessagesListTest.h"

namespace
{
const QString SentOrder = QStringLiteral(" ORDER BY [Sent] DESC, [Reference]");
}

TEST_F(MessagesListTest, ShowsTheInboxOfTheSignedInUserWhenItIsAttached)
{
    OpenStation();
    SaveNew(QStringLiteral("First"));
    SaveNew(QStringLiteral("Elsewhere"), tmcSaved);
    Attach();
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("First")});
    EXPECT_EQ(LastQuery(),
              QStringLiteral("([Category]=1)  AND ([PersonalToContact]=0 or [PersonalToContact] is NULL or "
                             "[PersonalToContact]=7)  ") +
                  SentOrder);
}

TEST_F(MessagesListTest, WithoutUserFolderAndFindTextTheConditionIsEmpty)
{
    OpenStation();
    Directory.SignedIn = nullptr;
    SaveNew(QStringLiteral("First"));
    Attach();
    List->UpdateDisplay();
    EXPECT_EQ(LastQuery(), QLatin1Char(' ') + SentOrder);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("First")});
}

TEST_F(MessagesListTest, AFindTextLooksForSubjectsThatHoldIt)
{
    OpenStation();
    SaveNew(QStringLiteral("The lighthouse again"));
    SaveNew(QStringLiteral("Something else"));
    Attach();
    Find(QStringLiteral("LightHouse"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("The lighthouse again")});
    EXPECT_TRUE(LastQuery().startsWith(QStringLiteral("([Subject] LIKE \"*LightHouse*\" ) AND ([Category]=1) ")));
    EXPECT_TRUE(List->IsFiltered());
    List->ClearFind();
    EXPECT_EQ(Grid->Rows(), 3);
    EXPECT_EQ(Box->Text(), QStringLiteral("<All Messages>"));
}
