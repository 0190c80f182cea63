// SPDX-License-Identifier: Apache-2.0
#include "messages/cMessages.h"

#include <gtest/gtest.h>

TEST(cMessagesTest, ANewCollectionIsEmpty)
{
    cMessages messages;
    EXPECT_EQ(messages.Count(), 0);
    EXPECT_EQ(messages.Message(0), nullptr);
    EXPECT_EQ(messages.Message(1), nullptr);
}

TEST(cMessagesTest, AddingNothingLeavesTheCount)
{
    cMessages messages;
    EXPECT_FALSE(messages.Add(nullptr));
    EXPECT_EQ(messages.Count(), 0);
}

TEST(cMessagesTest, MessagesStandFromOneInOrderOfAdding)
{
    cMessages messages;
    const auto first = std::make_shared<cMessage>();
    const auto second = std::make_shared<cMessage>();
    EXPECT_TRUE(messages.Add(first));
    EXPECT_TRUE(messages.Add(second));
    EXPECT_EQ(messages.Message(1), first);
    EXPECT_EQ(messages.Message(2), second);
    EXPECT_EQ(messages.Message(-1), nullptr);
    EXPECT_EQ(messages.Message(3), nullptr);
}

TEST(cMessagesTest, SettingReplacesInsideTheRangeOnly)
{
    cMessages messages;
    messages.Add(std::make_shared<cMessage>());
    const auto other = std::make_shared<cMessage>();
    messages.SetMessage(1, other);
    messages.SetMessage(0, other);
    messages.SetMessage(2, other);
    EXPECT_EQ(messages.Count(), 1);
    EXPECT_EQ(messages.Message(1), other);
}

TEST(cMessagesTest, RemovingMovesTheLaterMessagesForward)
{
    cMessages messages;
    const auto first = std::make_shared<cMessage>();
    const auto second = std::make_shared<cMessage>();
    messages.Add(first);
    messages.Add(second);
    EXPECT_FALSE(messages.Remove(0));
    EXPECT_FALSE(messages.Remove(3));
    EXPECT_TRUE(messages.Remove(1));
    EXPECT_EQ(messages.Count(), 1);
    EXPECT_EQ(messages.Message(1), second);
}

TEST(cMessagesTest, RemovingTheLastShortensTheList)
{
    cMessages messages;
    const auto first = std::make_shared<cMessage>();
    messages.Add(first);
    messages.Add(std::make_shared<cMessage>());
    EXPECT_TRUE(messages.Remove(messages.Count()));
    EXPECT_EQ(messages.Message(1), first);
    EXPECT_EQ(messages.Message(2), nullptr);
}

TEST(cMessagesTest, ClearingEmptiesIt)
{
    cMessages messages;
    messages.Add(std::make_shared<cMessage>());
    messages.Clear();
    EXPECT_EQ(messages.Count(), 0);
}

TEST(cMessagesTest, ItHoldsNoMoreThanItCanNumber)
{
    cMessages messages;
    const auto message = std::make_shared<cMessage>();
    for (int i = 0; i < 32767; ++i)
        ASSERT_TRUE(messages.Add(message));
    EXPECT_FALSE(messages.Add(message));
    EXPECT_EQ(messages.Count(), 32767);
    EXPECT_EQ(messages.Message(32767), message);
}
