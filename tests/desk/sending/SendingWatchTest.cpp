// SPDX-License-Identifier: Apache-2.0
#include "sending/SendingWatch.h"

#include "core/support/FaultyEngine.h"
#include "desk/DeskTest.h"
#include "platform/records/Error.h"

namespace
{
constexpr int Messages = 300;

class SendingWatchTest : public DeskTest
{
protected:
    /// Accesses to the files that it may take from now on.
    void Allow(int accesses)
    {
        Engine_.FailAt(
            accesses + 1, [] { throw dao::Error(dao::errDiskError, QStringLiteral("The cable was pulled.")); }, true);
    }
    bool TookMore() const { return Engine_.HasFailed(); }

private:
    FaultyEngine Engine_;
};
} // namespace

TEST_F(SendingWatchTest, TheNotesOfAllSentMessagesTakeNoAccessEach)
{
    SendingLedger ledger(Station.Directory().File());
    QList<qint32> sent;
    for (int i = 0; i < Messages; ++i) {
        sent.append(FileMail(Mail("Sent"), tmcSent, mfRead));
        ledger.NoteWent(sent.last(), QStringLiteral("<a@b>"));
    }
    SendingWatch watch(Station);
    // What a statement reads comes in pieces of some dozen rows.
    Allow(Messages / 5);
    for (const qint32 message : sent)
        EXPECT_TRUE(watch.SentNote(message).startsWith(QStringLiteral("sent ")));
    EXPECT_FALSE(TookMore());
    Allow(0);
    EXPECT_TRUE(watch.SentNote(sent.first()).startsWith(QStringLiteral("sent "))) << "known by now";
}

TEST_F(SendingWatchTest, TheNotesOfTheOutboxTakeNoAccessAtAll)
{
    QList<qint32> waiting;
    for (int i = 0; i < Messages; ++i)
        waiting.append(FileMail(Mail("Waiting"), tmcOutbox, mfRead | mfSendPending));
    SendingWatch watch(Station);
    watch.Refresh();
    EXPECT_EQ(watch.Count().All, Messages);
    Allow(0);
    for (const qint32 message : waiting)
        EXPECT_EQ(watch.OutboxNote(message), QStringLiteral("waiting"));
    EXPECT_FALSE(TookMore());
}
