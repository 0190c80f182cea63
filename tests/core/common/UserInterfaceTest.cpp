// SPDX-License-Identifier: Apache-2.0
#include "common/UserInterface.h"

#include "common/DebugLog.h"
#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "support/FixedClock.h"
#include "support/ScriptedUserInterface.h"

#include <QTemporaryDir>

#include <gtest/gtest-spi.h>

namespace
{
const QString Question = QStringLiteral("Really?");
const MessageBoxRequest YesNoRequest = {Question, QString(), MessageBoxButtons::YesNo, MessageBoxIcon::Question,
                                        MessageBoxAnswer::No};
const InputBoxRequest Input = {QStringLiteral("Name"), QString(), QStringLiteral("x"), 10, QString()};

void AskUnexpectedly()
{
    ScriptedUserInterface user;
    EXPECT_EQ(user.MessageBox(YesNoRequest), MessageBoxAnswer::No);
}

void LeaveAnExpectation()
{
    ScriptedUserInterface user;
    user.ExpectConfirmation(Question, MessageBoxAnswer::Yes);
}

void AskWithAnotherDefault()
{
    ScriptedUserInterface user;
    user.ExpectConfirmation(Question, MessageBoxAnswer::Yes);
    MessageBoxRequest request = YesNoRequest;
    request.DefaultAnswer = MessageBoxAnswer::Yes;
    user.MessageBox(request);
}

void LeaveThePointerBusy()
{
    ScriptedUserInterface user;
    user.SetBusyPointer(true);
}

void MeetAnError()
{
    ScriptedUserInterface user;
    user.RunTimeError(dao::Error(5, QStringLiteral("broken")));
}

void ShowABoxInPlaceOfAnInput()
{
    ScriptedUserInterface user;
    user.ExpectInputBox(Input, QStringLiteral("y"));
    user.MessageBox(YesNoRequest);
    QString result;
    user.InputBox(Input, result);
}
} // namespace

TEST(UserInterfaceTest, TheSilentOneAnswersNoAndCancels)
{
    UserInterface& user = UserInterface::Current();
    MessageBoxRequest request = YesNoRequest;
    request.DefaultAnswer = MessageBoxAnswer::Yes;
    EXPECT_EQ(user.MessageBox(request), MessageBoxAnswer::No);
    EXPECT_EQ(user.MessageBox({Question, QString()}), MessageBoxAnswer::OK);
    QString result = QStringLiteral("before");
    EXPECT_EQ(user.InputBox(Input, result), -1);
    EXPECT_EQ(result, QString());
    EXPECT_TRUE(user.Progress(QString())->Advance(1, 2));
    user.SetBusyPointer(true);
    user.SetBusyPointer(false);
    user.Yield();
}

TEST(UserInterfaceTest, TheSilentOneLogsRunTimeErrors)
{
    const QTemporaryDir folder;
    const FixedClock clock;
    DebugLog log;
    DebugLog::SetCurrent(&log);
    GeneralHelper::SetDebugPath(folder.path());
    GeneralHelper::SetDebugMode(1);
    UserInterface::Current().RunTimeError(dao::Error(3021, QStringLiteral("No current record")));
    GeneralHelper::SetDebugMode(0);
    GeneralHelper::SetDebugPath(QString());
    DebugLog::SetCurrent(nullptr);
    EXPECT_EQ(FileHelper::ReadTextFile(folder.filePath(QStringLiteral("coreTests.20261121.log"))),
              u"14:05:09 Run-time error '3021': No current record\n");
}

TEST(UserInterfaceTest, BusyPointersNestAndTheDefaultOneInterruptsThem)
{
    ScriptedUserInterface user;
    {
        const BusyPointer outer;
        {
            const BusyPointer inner;
            EXPECT_EQ(user.BusyDepth(), 1);
            const DefaultPointer box;
            EXPECT_EQ(user.BusyDepth(), 0);
            const BusyPointer withinTheBox;
            EXPECT_EQ(user.BusyDepth(), 1);
        }
        EXPECT_TRUE(user.IsBusy());
    }
    EXPECT_FALSE(user.IsBusy());
    const DefaultPointer idle;
    EXPECT_FALSE(user.IsBusy());
}

TEST(ScriptedUserInterfaceTest, IsInForceForItsLifetimeAndNests)
{
    UserInterface& before = UserInterface::Current();
    {
        ScriptedUserInterface outer;
        EXPECT_EQ(&UserInterface::Current(), &outer);
        {
            ScriptedUserInterface inner;
            EXPECT_EQ(&UserInterface::Current(), &inner);
        }
        EXPECT_EQ(&UserInterface::Current(), &outer);
    }
    EXPECT_EQ(&UserInterface::Current(), &before);
}

TEST(ScriptedUserInterfaceTest, AnswersInOrderAndRecords)
{
    ScriptedUserInterface user;
    user.ExpectConfirmation(Question, MessageBoxAnswer::Yes);
    user.ExpectInputBox(Input, QStringLiteral("answer"));
    user.ExpectInputBoxCancelled(Input);
    user.ExpectRunTimeError(5, QStringLiteral("broken"));
    EXPECT_EQ(user.MessageBox(YesNoRequest), MessageBoxAnswer::Yes);
    QString result;
    EXPECT_EQ(user.InputBox(Input, result), 0);
    EXPECT_EQ(result, u"answer");
    EXPECT_EQ(user.InputBox(Input, result), -1);
    EXPECT_EQ(result, QString());
    user.RunTimeError(dao::Error(5, QStringLiteral("broken")));
    user.Yield();
    EXPECT_EQ(user.MessageBoxes().size(), 1);
    EXPECT_EQ(user.InputBoxes().size(), 2);
    EXPECT_EQ(user.RunTimeErrors().size(), 1);
    EXPECT_EQ(user.Yields(), 1);
}

TEST(ScriptedUserInterfaceTest, StopsWorkAtTheCallItWasTold)
{
    ScriptedUserInterface user;
    user.CancelProgressAt(2);
    const auto first = user.Progress(QStringLiteral("One"));
    EXPECT_TRUE(first->Advance(0, 2));
    EXPECT_FALSE(first->Advance(1, 2));
    EXPECT_FALSE(first->Advance(2, 2));
    EXPECT_TRUE(user.Progress(QStringLiteral("Two"))->Advance(0, 0));
    EXPECT_EQ(user.ProgressCaptions(), (QStringList{QStringLiteral("One"), QStringLiteral("Two")}));
    EXPECT_EQ(user.Advances(), 4);
}

TEST(ScriptedUserInterfaceTest, FailsTheTestForWhatWasNotTold)
{
    EXPECT_NONFATAL_FAILURE(AskUnexpectedly(), "not expected now: message box \"Really?\"");
    EXPECT_NONFATAL_FAILURE(LeaveAnExpectation(), "did not come: message box \"Really?\"");
    EXPECT_NONFATAL_FAILURE(AskWithAnotherDefault(), "default 2");
    EXPECT_NONFATAL_FAILURE(LeaveThePointerBusy(), "busy pointer was left");
    EXPECT_NONFATAL_FAILURE(MeetAnError(), "run-time error 5 \"broken\"");
    EXPECT_NONFATAL_FAILURE(ShowABoxInPlaceOfAnInput(), "not expected now: message box");
}
