// SPDX-License-Identifier: Apache-2.0
#include "FailingStation.h"

namespace
{
class OpenWithFailingAccessTest : public FailingStation
{
};
} // namespace

/// One step of the open is told to raise: the look at the index of the settings, and with it an open that failed
/// before.
TEST_F(OpenWithFailingAccessTest, AnswersAtEveryAccessButThatOfTheSettingsIndex)
{
    int raised = 0;
    int number = 1;
    for (; number < MostAccesses; ++number) {
        SCOPED_TRACE(number);
        Station->CloseTolvaDatabase();
        Disk->FailAt(number, [] { throw dao::Error(dao::errDiskError, Words); });
        qint32 answer = 0;
        try {
            answer = Station->OpenTolvaDatabase(Location());
        } catch (const dao::Error& error) {
            EXPECT_EQ(error.Number(), dao::errDiskError);
            EXPECT_EQ(error.Description(), Words);
            ++raised;
        }
        const bool hasFailed = Disk->HasFailed();
        Disk->Heal();
        if (answer > 0 && Station->IsOpen()) {
            EXPECT_EQ(answer, dao::errDiskError);
            EXPECT_EQ(Station->LastErrorNumber(), dao::errDiskError);
            EXPECT_EQ(Station->LastErrorDescription(), Words);
        }
        if (!hasFailed) {
            EXPECT_EQ(answer, 0);
            break;
        }
    }
    EXPECT_GT(number, 20) << "the open looks at more than that";
    EXPECT_LE(raised, 3);
}
