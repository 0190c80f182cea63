// SPDX-License-Identifier: Apache-2.0

// What a directory's technician changes of its users.

#include "platform/directory/Processes.h"
#include "platform/directory/TemporaryDirectory.h"

#include <unistd.h>

namespace
{
constexpr int Settings = static_cast<int>(DirectoryRight::ChangeSettings);

/// The error that the call raises, as "NUMBER WORDS".
template <typename Call>
QString ErrorWords(Call call)
{
    try {
        call();
    } catch (const dao::Error& error) {
        return QStringLiteral("%1 %2").arg(QString::number(error.Number()), error.Description());
    }
    return QStringLiteral("none");
}

class DirectoryUsersTest : public TemporaryDirectory
{
protected:
    /// "NAME RIGHTS" of each, by name, as another computer sees it.
    QStringList Seen() const
    {
        EmbeddedDirectory other;
        other.Open(FolderName());
        QStringList users;
        for (const DirectoryUser& user : other.Users())
            users.append(QStringLiteral("%1 %2").arg(user.Name, QString::number(user.Rights)));
        return users;
    }
};
} // namespace

TEST_F(DirectoryUsersTest, AnAddedUserHasItsNameAndRights)
{
    const qint32 first = Directory.AddUser(QStringLiteral(" Megan  Tüll "), 17);
    const qint32 second = Directory.AddUser(QStringLiteral("Idris"), 0);
    EXPECT_GT(first, 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(Seen(), (QStringList{QStringLiteral("Idris 0"), QStringLiteral("Megan Tüll 17")}));
    EXPECT_TRUE(Directory.SignIn(QStringLiteral("megan tüll")));
}

TEST_F(DirectoryUsersTest, ANameIsTakenInWhateverCase)
{
    Directory.AddUser(QStringLiteral("Megan"), 0);
    const qint32 idris = Directory.AddUser(QStringLiteral("Idris"), 0);
    const QString words = QStringLiteral("3022 There is a user \"MEGAN\" already.");
    EXPECT_EQ(ErrorWords([&] { Directory.AddUser(QStringLiteral("MEGAN"), 31); }), words);
    EXPECT_EQ(ErrorWords([&] { Directory.RenameUser(idris, QStringLiteral("MEGAN")); }), words);
    EXPECT_EQ(Seen(), (QStringList{QStringLiteral("Idris 0"), QStringLiteral("Megan 0")}));
}

TEST_F(DirectoryUsersTest, AUsersOwnNameCanChangeItsCase)
{
    const qint32 reference = Directory.AddUser(QStringLiteral("megan"), 3);
    Directory.RenameUser(reference, QStringLiteral("Megan"));
    EXPECT_EQ(Seen(), QStringList{QStringLiteral("Megan 3")});
}

TEST_F(DirectoryUsersTest, ANameHasOneTo255Characters)
{
    const qint32 reference = Directory.AddUser(QString(255, u'x'), 0);
    const QString none = QStringLiteral("94 A user needs a name.");
    const QString tooLong = QStringLiteral("3163 A user's name has 255 characters at most.");
    EXPECT_EQ(ErrorWords([&] { Directory.AddUser(QStringLiteral(" \t"), 0); }), none);
    EXPECT_EQ(ErrorWords([&] { Directory.RenameUser(reference, QString()); }), none);
    EXPECT_EQ(ErrorWords([&] { Directory.AddUser(QString(256, u'y'), 0); }), tooLong);
    EXPECT_EQ(ErrorWords([&] { Directory.RenameUser(reference, QString(256, u'y')); }), tooLong);
    EXPECT_EQ(Seen().size(), 1);
}

TEST_F(DirectoryUsersTest, ARenamedUserKeepsItsReferenceRightsAndPreferences)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"), 5);
    ASSERT_TRUE(user.SetPreference(QStringLiteral("key"), 12));
    Directory.RenameUser(user.Reference(), QStringLiteral("Megan Tull"));
    EXPECT_EQ(user.Name(), QStringLiteral("Megan Tull"));
    EXPECT_EQ(user.Preference(QStringLiteral("key"), 1).toInt(), 12);
    EXPECT_EQ(Seen(), QStringList{QStringLiteral("Megan Tull 5")});
}

TEST_F(DirectoryUsersTest, RightsThatAreSetHoldAtOnce)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"), Settings);
    Directory.AddUser(QStringLiteral("Technician"), 31);
    Directory.SetRights(user.Reference(), 3);
    EXPECT_TRUE(user.CanEditMessages());
    EXPECT_FALSE(user.ChangeSettings());
    EXPECT_EQ(Seen(), (QStringList{QStringLiteral("Megan 3"), QStringLiteral("Technician 31")}));
}

TEST_F(DirectoryUsersTest, TheLastWhoMayChangeSettingsKeepsThatRightAndStays)
{
    const qint32 technician = Directory.AddUser(QStringLiteral("Technician"), 31);
    const qint32 megan = Directory.AddUser(QStringLiteral("Megan"), 15);
    const QString words = QStringLiteral("3251 \"Technician\" is the only user who may change settings. Give another "
                                         "user that right first.");
    EXPECT_EQ(ErrorWords([&] { Directory.SetRights(technician, 15); }), words);
    EXPECT_EQ(ErrorWords([&] { Directory.DeleteUser(technician); }), words);
    EXPECT_EQ(Seen(), (QStringList{QStringLiteral("Megan 15"), QStringLiteral("Technician 31")}));
    Directory.SetRights(technician, Settings);
    Directory.SetRights(megan, Settings);
    Directory.DeleteUser(technician);
    EXPECT_EQ(Seen(), QStringList{QStringLiteral("Megan 16")});
}

TEST_F(DirectoryUsersTest, WhereNobodyMayChangeSettingsUsersCanStillBeChanged)
{
    const qint32 megan = Directory.AddUser(QStringLiteral("Megan"), 1);
    Directory.SetRights(megan, 2);
    Directory.DeleteUser(megan);
    EXPECT_EQ(Seen(), QStringList());
}

TEST_F(DirectoryUsersTest, TheUserWhoIsSignedInIsNotDeleted)
{
    const clsKVUser& user = SignedIn(QStringLiteral("Megan"), 31);
    Directory.AddUser(QStringLiteral("Technician"), 31);
    EXPECT_EQ(ErrorWords([&] { Directory.DeleteUser(user.Reference()); }),
              QStringLiteral("3251 \"Megan\" is signed in here and cannot be deleted meanwhile."));
    EXPECT_EQ(Seen().size(), 2);
    const qint32 reference = user.Reference();
    Directory.SignOut();
    Directory.DeleteUser(reference);
    EXPECT_EQ(Seen(), QStringList{QStringLiteral("Technician 31")});
}

TEST_F(DirectoryUsersTest, ARefusedDeletionLeavesThePreferencesToo)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"), 31);
    ASSERT_TRUE(user.SetPreference(QStringLiteral("key"), 12));
    const qint32 reference = user.Reference();
    Directory.SignOut();
    EXPECT_EQ(ErrorNumber([&] { Directory.DeleteUser(reference); }), dao::errNotSupported);
    ASSERT_TRUE(Directory.SignIn(QStringLiteral("Megan")));
    EXPECT_EQ(Directory.CurrentUser()->Preference(QStringLiteral("key"), 1).toInt(), 12);
}

TEST_F(DirectoryUsersTest, AUserWhoWasDeletedMeanwhileIsNotBroughtBack)
{
    const qint32 megan = Directory.AddUser(QStringLiteral("Megan"), 1);
    Directory.DeleteUser(megan);
    const QString words = QStringLiteral("3167 The user has been deleted.");
    EXPECT_EQ(ErrorWords([&] { Directory.RenameUser(megan, QStringLiteral("Idris")); }), words);
    EXPECT_EQ(ErrorWords([&] { Directory.SetRights(megan, 31); }), words);
    Directory.DeleteUser(megan);
    EXPECT_EQ(Seen(), QStringList());
}

TEST_F(DirectoryUsersTest, WithoutAnOpenFileNothingIsChanged)
{
    EmbeddedDirectory closed;
    EXPECT_EQ(ErrorNumber([&] { closed.AddUser(QStringLiteral("Megan"), 0); }), dao::errObjectInvalid);
    EXPECT_EQ(ErrorNumber([&] { closed.RenameUser(1, QStringLiteral("Megan")); }), dao::errObjectInvalid);
    EXPECT_EQ(ErrorNumber([&] { closed.SetRights(1, 0); }), dao::errObjectInvalid);
    EXPECT_EQ(ErrorNumber([&] { closed.DeleteUser(1); }), dao::errObjectInvalid);
    Directory.AddUser(QStringLiteral("Megan"), 0); // no transaction was left open
    EXPECT_EQ(Seen().size(), 1);
}

TEST_F(DirectoryUsersTest, ComputersThatTakeTheRightFromEachOtherAtTheSameMomentLeaveItToSomebody)
{
    for (int round = 0; round < 10; ++round) {
        const QString folder = Folder.filePath(QStringLiteral("shared%1").arg(round));
        constexpr int Count = 4;
        {
            EmbeddedDirectory directory;
            directory.Open(folder);
            for (int i = 0; i < Count; ++i)
                directory.AddUser(QStringLiteral("User %1").arg(i), Settings);
        }
        FailedProcesses(Count, [&folder] {
            EmbeddedDirectory directory;
            directory.Open(folder);
            // One each, mostly: processes that start together have numbers that follow each other.
            const QList<DirectoryUser> users = directory.Users();
            directory.SetRights(users.at(getpid() % Count).Reference, 1);
        });
        EmbeddedDirectory directory;
        directory.Open(folder);
        int inCharge = 0;
        for (const DirectoryUser& user : directory.Users())
            inCharge += user.Rights == Settings ? 1 : 0;
        EXPECT_GE(inCharge, 1);
    }
}
