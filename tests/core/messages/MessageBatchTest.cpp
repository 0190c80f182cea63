// SPDX-License-Identifier: Apache-2.0

// Several messages stored in one step.

#include "core/support/StationTest.h"
#include "platform/records/DBEngine.h"

#include <sqlite3.h>

namespace
{
const auto Always = [] { return true; };
const enTolvaMessageCategories CategoryBeyondItsColumn = static_cast<enTolvaMessageCategories>(100000);
} // namespace

class MessageBatchTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }

    static std::vector<cMessagePtr> Make(int count)
    {
        std::vector<cMessagePtr> messages;
        for (int i = 1; i <= count; ++i) {
            messages.push_back(MakeMessage(QStringLiteral("Request %1").arg(i)));
            messages.back()->SetCategory(tmcInbox);
        }
        return messages;
    }
    static QList<int> References(const std::vector<cMessagePtr>& messages)
    {
        QList<int> references;
        for (const cMessagePtr& message : messages)
            references.append(message->Reference());
        return references;
    }
    /// The rows that another program sees.
    int Rows() const { return OpenTable(QStringLiteral("Messages"))->RecordCount(); }
};

TEST_F(MessageBatchTest, AllAreStoredWithOneStampAndAnEntryAndAnEventForEach)
{
    QStringList told;
    QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, [&](const cMessagePtr& message, bool edited) {
        told += QStringLiteral("%1 %2 of %3, %4 in the log")
                    .arg(message->Reference())
                    .arg(edited)
                    .arg(Rows())
                    .arg(Audit().size());
    });
    const auto messages = Make(3);
    const auto savings = Station->SaveMessages(messages, Always);
    ASSERT_EQ(savings.size(), 3U);
    for (const MessageSaving& saving : savings)
        EXPECT_TRUE(saving.IsSaved()) << saving.ErrorDescription.toStdString();
    EXPECT_EQ(References(messages), (QList<int>{1, 2, 3}));
    EXPECT_EQ(told, (QStringList{QStringLiteral("1 1 of 3, 3 in the log"), QStringLiteral("2 1 of 3, 3 in the log"),
                                 QStringLiteral("3 1 of 3, 3 in the log")}));
    EXPECT_EQ(Audit(), (QStringList{QStringLiteral("6 Message Added: Request 1 (1)"),
                                    QStringLiteral("6 Message Added: Request 2 (1)"),
                                    QStringLiteral("6 Message Added: Request 3 (1)")}));
    EXPECT_NEAR(Station->LastMessageChanged().DayNumber(), Date(2026, 11, 21, 14, 5, 9).DayNumber(), 1e-7);
}

TEST_F(MessageBatchTest, AMessageThatCannotBeStoredTakesNoOtherWithIt)
{
    const auto messages = Make(500);
    messages[250]->SetCategory(CategoryBeyondItsColumn);
    const auto savings = Station->SaveMessages(messages, Always);
    ASSERT_EQ(savings.size(), 500U);
    EXPECT_EQ(savings[250].ErrorNumber, dao::errOverflow);
    EXPECT_TRUE(savings[249].IsSaved());
    EXPECT_TRUE(savings[251].IsSaved());
    EXPECT_EQ(messages[250]->Reference(), 0);
    EXPECT_EQ(Rows(), 499);
    ASSERT_EQ(Audit().size(), 500);
    EXPECT_TRUE(Audit().at(250).startsWith(QStringLiteral("6 Message Added: Request 251 - ")));
    EXPECT_TRUE(Audit().at(250).endsWith(QStringLiteral(" (0)")));
}

TEST_F(MessageBatchTest, WhatIsNoLongerWantedIsLeftAlone)
{
    const auto messages = Make(5);
    int asked = 0;
    const auto savings = Station->SaveMessages(messages, [&] { return ++asked < 2; });
    EXPECT_EQ(savings.size(), 2U);
    EXPECT_EQ(References(messages), (QList<int>{1, 2, 0, 0, 0}));
    EXPECT_EQ(Rows(), 2);
    EXPECT_EQ(Audit().size(), 2);
}

TEST_F(MessageBatchTest, NobodySeesAPartOfIt)
{
    QList<int> seen;
    const auto messages = Make(20);
    Station->SaveMessages(messages, [&] {
        seen += Rows();
        return true;
    });
    EXPECT_EQ(seen, QList<int>(19, 0));
    EXPECT_EQ(Rows(), 20);
}

TEST_F(MessageBatchTest, ALockedStationStoresNoneAndLeavesTheMessagesAsTheyCame)
{
    const auto messages = Make(3);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(FileName().toUtf8().constData(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    try {
        Station->SaveMessages(messages, Always);
        ADD_FAILURE() << "stored in spite of the lock";
    } catch (const dao::Error& error) {
        EXPECT_EQ(error.Number(), dao::errLocked);
    }
    sqlite3_close(other);
    EXPECT_EQ(References(messages), (QList<int>{0, 0, 0}));
    EXPECT_TRUE(messages.front()->Edited());
    EXPECT_EQ(Audit(), QStringList());
    EXPECT_EQ(Station->SaveMessages(messages, Always).size(), 3U);
    EXPECT_EQ(Rows(), 3);
}

TEST_F(MessageBatchTest, TheOctetsToStoreAreThoseThatSavingStores)
{
    Station->SetDatabaseSetting(QStringLiteral("Messages.HighlightWords"), QStringLiteral("ferry"), QString());
    Station->ReadDatabaseSettings();
    const QByteArray page = "From: a@example.org\r\nSubject: s\r\nContent-Type: text/html\r\n\r\n<p>the ferry</p>\r\n";
    const auto message = std::make_shared<cMessage>();
    message->SetCDOMessage(std::make_shared<cdo::Message>(page));
    const QByteArray octets = Station->OctetsToStore(*message);
    EXPECT_NE(octets, page);
    EXPECT_EQ(message->CDOMessage()->Octets(), page);
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(Station->GetMessage(message->Reference())->CDOMessage()->Octets(), octets);
}
