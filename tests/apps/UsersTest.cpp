// SPDX-License-Identifier: Apache-2.0

// tolva users.

#include "CommandLineTest.h"

class UsersTest : public CommandLineTest
{
protected:
    Outcome Users(const QStringList& words) const { return OnStation("users", words); }
    /// The list, with its columns one blank apart.
    QString Listed() const { return QString::fromUtf8(Expect("users")).simplified(); }
};

TEST_F(UsersTest, ANewStationHasOneUserWithAllRights)
{
    EXPECT_EQ(Expect("users"), "Technician                     all\n");
    EXPECT_EQ(OnStation("users", {QStringLiteral("--json")}).Output.count("\"name\":\"Technician\""), 1);
}

TEST_F(UsersTest, AnAddedUserHasTheRightsThatWereGiven)
{
    EXPECT_EQ(Expect("users", {QStringLiteral("add"), QStringLiteral("Loveday Tregenza"), QStringLiteral("--rights"),
                               QStringLiteral("messages, PERSONAL")}),
              "");
    Expect("users", {QStringLiteral("add"), QStringLiteral("Guest")});
    EXPECT_EQ(Listed(), QStringLiteral("Guest none Loveday Tregenza messages,personal Technician all"));
    const QByteArray json = Expect("users", {QStringLiteral("--json")});
    EXPECT_TRUE(json.contains("\"name\":\"Loveday Tregenza\",\"reference\":")) << json.constData();
    EXPECT_TRUE(json.contains("\"rights\":[\"messages\",\"personal\"]")) << json.constData();
    const QString reference = FileMail(Mail("A card"));
    const QStringList move = {reference, QStringLiteral("Saved"), QStringLiteral("--user")};
    EXPECT_EQ(OnStation("move", move + QStringList{QStringLiteral("guest")}).Code, 77);
    EXPECT_EQ(OnStation("move", move + QStringList{QStringLiteral("loveday tregenza")}).Code, 0);
}

TEST_F(UsersTest, RightsAreSetAnewAndHoldAtOnce)
{
    Expect("users", {QStringLiteral("add"), QStringLiteral("Guest")});
    Expect("users", {QStringLiteral("rights"), QStringLiteral("GUEST"), QStringLiteral("folders,prizes,settings")});
    EXPECT_EQ(Listed(), QStringLiteral("Guest folders,prizes,settings Technician all"));
    Expect("users", {QStringLiteral("rights"), QStringLiteral("Technician"), QStringLiteral("none"),
                     QStringLiteral("--user"), QStringLiteral("Guest")});
    EXPECT_EQ(Listed(), QStringLiteral("Guest folders,prizes,settings Technician none"));
    EXPECT_EQ(Users({QStringLiteral("add"), QStringLiteral("Other")}).Code, 77);
}

TEST_F(UsersTest, AUserIsRenamedAndRemoved)
{
    Expect("users", {QStringLiteral("add"), QStringLiteral("Gest")});
    Expect("users", {QStringLiteral("rename"), QStringLiteral("Gest"), QStringLiteral("Guest")});
    EXPECT_EQ(Listed(), QStringLiteral("Guest none Technician all"));
    Expect("users", {QStringLiteral("remove"), QStringLiteral("guest")});
    EXPECT_EQ(Listed(), QStringLiteral("Technician all"));
}

TEST_F(UsersTest, TheLastInChargeAndTheOneWhoActsStay)
{
    const Outcome rights = Users({QStringLiteral("rights"), QStringLiteral("Technician"), QStringLiteral("messages")});
    EXPECT_EQ(rights.Code, 65);
    EXPECT_EQ(rights.Problems, "tolva: \"Technician\" is the only user who may change settings. Give another user that "
                               "right first.\n");
    const Outcome removed = Users({QStringLiteral("remove"), QStringLiteral("Technician")});
    EXPECT_EQ(removed.Code, 65);
    EXPECT_EQ(removed.Problems, "tolva: \"Technician\" is signed in here and cannot be deleted meanwhile.\n");
    EXPECT_EQ(Listed(), QStringLiteral("Technician all"));
}

TEST_F(UsersTest, ANameThatIsTakenOrNoneIsRefused)
{
    const Outcome taken = Users({QStringLiteral("add"), QStringLiteral("TECHNICIAN")});
    EXPECT_EQ(taken.Code, 73);
    EXPECT_EQ(taken.Problems, "tolva: There is a user \"TECHNICIAN\" already.\n");
    EXPECT_EQ(Users({QStringLiteral("add"), QStringLiteral(" ")}).Code, 64);
    EXPECT_EQ(Users({QStringLiteral("add"), QString(256, u'x')}).Code, 64);
    const Outcome unknown = Users({QStringLiteral("remove"), QStringLiteral("Nobody")});
    EXPECT_EQ(unknown.Code, 67);
    EXPECT_TRUE(unknown.Problems.contains("\"Nobody\" is not a user of the directory")) << unknown.Problems.constData();
    EXPECT_EQ(Listed(), QStringLiteral("Technician all"));
}

TEST_F(UsersTest, WithoutTheRightUsersAreListedAndNotChanged)
{
    AddUser(QStringLiteral("Work Experience"), 15);
    const QStringList user = {QStringLiteral("--user"), QStringLiteral("Work Experience")};
    const Outcome outcome =
        Users(QStringList{QStringLiteral("rights"), QStringLiteral("Work Experience"), QStringLiteral("all")} + user);
    EXPECT_EQ(outcome.Code, 77);
    EXPECT_TRUE(outcome.Problems.contains("Work Experience has no right to change users here."))
        << outcome.Problems.constData();
    EXPECT_EQ(Users(user).Code, 0);
    EXPECT_EQ(Listed(), QStringLiteral("Technician all Work Experience messages,personal,folders,prizes"));
}

TEST_F(UsersTest, WhatIsNotUnderstoodChangesNothing)
{
    for (const QStringList& words :
         {QStringList{QStringLiteral("add")}, QStringList{QStringLiteral("fire"), QStringLiteral("Technician")},
          QStringList{QStringLiteral("rights"), QStringLiteral("Technician")},
          QStringList{QStringLiteral("rights"), QStringLiteral("Technician"), QStringLiteral("everything")},
          QStringList{QStringLiteral("add"), QStringLiteral("Guest"), QStringLiteral("--rights"),
                      QStringLiteral("messages,")},
          QStringList{QStringLiteral("remove"), QStringLiteral("Technician"), QStringLiteral("Guest")}})
        EXPECT_EQ(Users(words).Code, 64) << words.join(u' ').toStdString();
    EXPECT_EQ(Listed(), QStringLiteral("Technician all"));
}
