// SPDX-License-Identifier: Apache-2.0

// A disk that fails at any of the writes behind a message: the message and the change stamp are stored together.

#include "core/support/StationTest.h"
#include "platform/records/FaultVfs.h"

namespace
{
class MessageFaultTest : public StationTest, public testing::WithParamInterface<FaultVfs::Operation>
{
protected:
    void SetUp() override
    {
        Vfs = std::make_unique<FaultVfs>();
        OpenStation();
    }
    void TearDown() override
    {
        Vfs->Heal();
        Station.reset();
        Vfs.reset();
    }
    bool IsThere(qint32 reference) const { return Station->GetMessage(reference) != nullptr; }
    int CountAll() const { return Station->OpenMessageRows({QStringLiteral("Reference")})->RecordCount(); }
    /// Runs an operation with the first writing call failing, then the second, and so on until none fails any more, and
    /// calls verify after each, when the disk works again.
    template <typename Operation, typename Verify>
    void FailEach(Operation&& operation, Verify&& verify)
    {
        for (int call = 1; call < 200; ++call) {
            SCOPED_TRACE(call);
            Now.Advance(60);
            Stamp = Station->LastMessageChanged();
            Vfs->FailAt(GetParam(), call, SQLITE_FULL);
            bool isDone = false;
            int error = 0;
            try {
                isDone = operation();
                error = Station->LastErrorNumber();
            } catch (const dao::Error& raised) {
                error = raised.Number(); // the row could not be started at all
            }
            const bool hasFailed = Vfs->HasFailed();
            Vfs->Heal();
            EXPECT_EQ(isDone, !hasFailed);
            if (!isDone) {
                // 3043 where the stamp's write met the full disk and the transaction with it.
                EXPECT_TRUE(error == dao::errDiskFull || error == dao::errDiskError) << error;
            }
            verify(isDone);
            if (!hasFailed) {
                EXPECT_GT(call, 1) << "nothing was written at all";
                return;
            }
        }
        FAIL() << "the failures never ended";
    }
    bool IsStamped() const { return Station->LastMessageChanged() != Stamp; }
    /// A sync that fails behind the commit cannot take it back.
    bool IsLastSyncOpen() const { return GetParam() == FaultVfs::Operation::Sync; }

    std::unique_ptr<FaultVfs> Vfs;
    Date Stamp; ///< Before the operation.
};
} // namespace

TEST_P(MessageFaultTest, AMessageAndTheStampAreStoredOrNeither)
{
    cMessagePtr message;
    int before = 0;
    FailEach(
        [&] {
            message = MakeMessage(QStringLiteral("Hello"));
            before = CountAll();
            return Station->SaveMessage(message);
        },
        [&](bool isDone) {
            const int added = CountAll() - before;
            EXPECT_EQ(added == 1, IsStamped());
            EXPECT_EQ(isDone, message->Reference() != 0);
            EXPECT_TRUE((added == 1) == isDone || IsLastSyncOpen());
            if (!isDone) {
                EXPECT_TRUE(message->Edited());
                return;
            }
            EXPECT_TRUE(IsThere(message->Reference()));
        });
}

TEST_P(MessageFaultTest, ADeletionAndTheStampAreStoredOrNeitherWhereTheHostWantsIt)
{
    Station->SetStampsEveryChange(true);
    qint32 reference = SaveNew(QStringLiteral("Hello"));
    FailEach([&] { return Station->DeleteMessage(reference, true); },
             [&](bool isDone) {
                 EXPECT_EQ(!IsThere(reference), IsStamped());
                 EXPECT_TRUE(IsThere(reference) == !isDone || IsLastSyncOpen());
                 if (!IsThere(reference))
                     reference = SaveNew(QStringLiteral("Hello"));
             });
}

INSTANTIATE_TEST_SUITE_P(Calls, MessageFaultTest,
                         testing::Values(FaultVfs::Operation::Write, FaultVfs::Operation::Sync,
                                         FaultVfs::Operation::Truncate));
