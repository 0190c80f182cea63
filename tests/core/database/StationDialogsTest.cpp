// SPDX-License-Identifier: Apache-2.0
#include "database/StationDialogs.h"

#include "common/TerminalUserInterface.h"
#include "core/support/StationTest.h"
#include "support/ScriptedUserInterface.h"

namespace
{
/// Puts another user interface in force for the life of a scope.
class InForce
{
public:
    explicit InForce(UserInterface& userInterface) : Before_(UserInterface::Current())
    {
        UserInterface::SetCurrent(&userInterface);
    }
    ~InForce() { UserInterface::SetCurrent(&Before_); }
    InForce(const InForce&) = delete;
    InForce& operator=(const InForce&) = delete;

private:
    UserInterface& Before_;
};

class StationDialogsTest : public StationTest
{
};
} // namespace

TEST_F(StationDialogsTest, AUserInterfaceWithoutThemCountsAsSomebodyWhoCancels)
{
    OpenStation();
    TerminalUserInterface terminal;
    const InForce inForce(terminal);
    EXPECT_FALSE(Station->DisplaySettings());
    EXPECT_EQ(Station->LoadAvailableHoursHotlist(nullptr), QString());
    EXPECT_FALSE(Station->SaveAvailableHoursHotlist(QStringLiteral("A"), nullptr));
    StationDialogs::InForce().SetBackupNotice(true);
}

TEST_F(StationDialogsTest, ThoseOfTheUserInterfaceInForceAreAsked)
{
    OpenStation();
    Ui.ExpectDatabaseSettings([this](cTolvaDatabase& database) { return &database == Station.get(); });
    EXPECT_TRUE(Station->DisplaySettings());
    Ui.ExpectHotlist([](dao::Recordset&, bool saveMode) { return saveMode ? QStringLiteral("HR.Noon") : QString(); });
    EXPECT_TRUE(Station->SaveAvailableHoursHotlist(QStringLiteral("A"), nullptr));
}

TEST_F(StationDialogsTest, AnotherUserInterfacesAreTakenFromItself)
{
    EXPECT_EQ(&StationDialogs::Of(Ui), static_cast<StationDialogs*>(&Ui));
    TerminalUserInterface terminal;
    EXPECT_NE(&StationDialogs::Of(terminal), &StationDialogs::Of(Ui));
}
