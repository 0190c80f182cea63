// SPDX-License-Identifier: Apache-2.0

// What killed programs left behind goes, and nothing else does.

#include "database/Leftovers.h"

#include "common/GeneralHelper.h"
#include "platform/files/WorkClaim.h"
#include "support/ScriptedUserInterface.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
class LeftoversTest : public testing::Test
{
protected:
    void SetUp() override { Make(QStringLiteral("Tolva.mdb")); }

    QString Path(const QString& name) const { return Folder_.filePath(name); }
    QString File() const { return Path(QStringLiteral("Tolva.mdb")); }
    void Make(const QString& name, const QByteArray& content = "x") const
    {
        QDir().mkpath(QFileInfo(Path(name)).path());
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    /// As a killed program leaves it.
    void Leave(const QString& name) const
    {
        Make(name);
        Make(WorkClaim::NameFor(name), {});
    }
    void SetAge(const QString& name, int hours) const
    {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTimeUtc().addSecs(-3600 * hours),
                                     QFileDevice::FileModificationTime));
    }
    QStringList Files(const QString& folder = QString()) const
    {
        return QDir(Path(folder)).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }
    void ExpectOnlyTheDatabase() const { EXPECT_EQ(Files(), QStringList{QStringLiteral("Tolva.mdb")}); }
    /// That each of these stays.
    void ExpectToStay(const QStringList& names) const
    {
        QStringList all = names + QStringList(QStringLiteral("Tolva.mdb"));
        Leftovers::Remove(File());
        QStringList files = Files();
        all.sort();
        files.sort();
        EXPECT_EQ(files, all);
    }

    ScriptedUserInterface Ui;

private:
    QTemporaryDir Folder_;
};

const QStringList WorkingNames{
    QStringLiteral("~0123456789ab.tmp"),
    QStringLiteral(".copy-1f"),
    QStringLiteral(".copy-0123456789abcdef"),
    QStringLiteral("Tolva.mdb.restored-0123456789ab"),
};

TEST_F(LeftoversTest, WhatADeadProgramClaimedGoesWithItsJournalAndItsClaim)
{
    for (const QString& name :
         WorkingNames + QStringList{QStringLiteral("TOLVA1F.MDB"), QStringLiteral("TOLVA-DESK0123ABCD.MDB")}) {
        Leave(name);
        Make(name + QStringLiteral("-journal"));
    }
    Leftovers::Remove(File());
    ExpectOnlyTheDatabase();
}

TEST_F(LeftoversTest, AClaimAloneGoes)
{
    Make(WorkClaim::NameFor(WorkingNames.first()), {});
    Leftovers::Remove(File());
    ExpectOnlyTheDatabase();
}

TEST_F(LeftoversTest, WhatALivingProgramClaimsStaysHoweverOldItIs)
{
    for (const QString& name : WorkingNames + QStringList(QStringLiteral("TOLVA1F.MDB"))) {
        const WorkClaim claim(Path(name));
        Make(name);
        Make(name + QStringLiteral("-journal"));
        SetAge(name, 100);
        SetAge(name + QStringLiteral("-journal"), 100);
        ExpectToStay({name, name + QStringLiteral("-journal"), WorkClaim::NameFor(name)});
        QFile::remove(Path(name));
        QFile::remove(Path(name + QStringLiteral("-journal")));
    }
}

TEST_F(LeftoversTest, WithoutAClaimAFileGoesAfterADay)
{
    QStringList names = WorkingNames + QStringList{QStringLiteral(".unfinished-1f"), QStringLiteral("TOLVA-DESK1F.tmp"),
                                                   QStringLiteral("TOLVA0123ABCD.tmp")};
    names.append(WorkingNames.first() + QStringLiteral("-journal"));
    for (const QString& name : names) {
        Make(name);
        SetAge(name, 23);
    }
    ExpectToStay(names);
    for (const QString& name : names)
        SetAge(name, 25);
    Leftovers::Remove(File());
    ExpectOnlyTheDatabase();
}

TEST_F(LeftoversTest, AFileThatSomebodyHasLockedStaysHoweverOldItIs)
{
    const QString name = WorkingNames.first();
    Make(name);
    SetAge(name, 100);
    FileStatus status;
    const auto file = FileSystem::Current().Open(Path(name), FileAccess::Change, status);
    ASSERT_TRUE(file->Lock(FileLock::Shared, 0x40000002, 510).IsDone());
    ExpectToStay({name});
}

TEST_F(LeftoversTest, ASecondNameOfAFileStays)
{
    const QString name = WorkingNames.first();
    ASSERT_TRUE(FileSystem::Current().Link(File(), Path(name)).IsDone());
    SetAge(name, 100);
    ExpectToStay({name});
}

TEST_F(LeftoversTest, WhatIsCalledOtherwiseStaysClaimedOrOld)
{
    const QStringList names{
        QStringLiteral("~0123456789a.tmp"),   QStringLiteral("~0123456789ab.tmp2"),
        QStringLiteral("a~0123456789ab.tmp"), QStringLiteral("~0123456789AB.tmp"),
        QStringLiteral(".copy-xyz"),          QStringLiteral("copy-1f"),
        QStringLiteral("Tolva.mdb.restored"), QStringLiteral("Other.mdb.restored-0123456789ab"),
        QStringLiteral("Tolva-0001.BAK"),     QStringLiteral("TOLVA1F.mdb"),
        QStringLiteral("Notes.MDB"),
    };
    QStringList all;
    for (const QString& name : names) {
        Leave(name);
        SetAge(name, 100);
        all += {name, WorkClaim::NameFor(name)};
    }
    ExpectToStay(all);
}

TEST_F(LeftoversTest, ACopyThatSomebodyNamedLikeACompactedOneStays)
{
    const QString name = QStringLiteral("TOLVA20261122.MDB");
    Make(name);
    SetAge(name, 1000);
    ExpectToStay({name});
}

TEST_F(LeftoversTest, NeitherALinkNorWhatItLeadsToIsTouched)
{
    const QString name = WorkingNames.first();
    Make(QStringLiteral("elsewhere/file"));
    SetAge(QStringLiteral("elsewhere/file"), 100);
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("elsewhere/file")), Path(name)));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("elsewhere/file")), Path(WorkClaim::NameFor(WorkingNames.at(1)))));
    ExpectToStay({name, WorkClaim::NameFor(WorkingNames.at(1))});
    EXPECT_EQ(Files(QStringLiteral("elsewhere")), QStringList{QStringLiteral("file")});
}

TEST_F(LeftoversTest, TheFoldersOfBackupsAndTemplatesAreLookedThroughButNotThroughALink)
{
    const QString backup = QStringLiteral("Backups/Tolva/2026-11-22 04.30/");
    Make(backup + QStringLiteral("Tolva.mdb"));
    Leave(backup + QStringLiteral(".copy-1f"));
    Leave(QStringLiteral("HTMLDocs/.copy-1f"));
    Leave(QStringLiteral("elsewhere/.copy-1f"));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("elsewhere")), Path(QStringLiteral("Backups/Tolva/linked"))));
    Leftovers::Remove(File());
    EXPECT_EQ(Files(backup), QStringList{QStringLiteral("Tolva.mdb")});
    EXPECT_TRUE(Files(QStringLiteral("HTMLDocs")).isEmpty());
    EXPECT_EQ(Files(QStringLiteral("elsewhere")).size(), 2);
    ASSERT_TRUE(QDir(Path(QStringLiteral("Backups"))).removeRecursively());
    Make(QStringLiteral("outside/Tolva/then/.copy-1f"));
    Make(QStringLiteral("outside/Tolva/then/.copy-1f-claim"));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("outside")), Path(QStringLiteral("Backups"))));
    Leftovers::Remove(File());
    EXPECT_EQ(Files(QStringLiteral("outside/Tolva/then")).size(), 2);
}

TEST_F(LeftoversTest, TheLogTellsWhatWasRemoved)
{
    Leave(WorkingNames.first());
    const QTemporaryDir logs;
    GeneralHelper::SetDebugPath(logs.path());
    GeneralHelper::SetDebugMode(1);
    Leftovers::Remove(File());
    GeneralHelper::SetDebugMode(0);
    GeneralHelper::SetDebugPath({});
    const QStringList files = QDir(logs.path()).entryList(QDir::Files);
    ASSERT_EQ(files.size(), 1);
    QFile log(logs.filePath(files.first()));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    const QByteArray text = log.readAll();
    EXPECT_TRUE(text.contains("Removed '" + Path(WorkingNames.first()).toUtf8() + "', which")) << text.constData();
    EXPECT_FALSE(text.contains("journal")) << text.constData();
}
} // namespace
