// SPDX-License-Identifier: Apache-2.0

// Who may use a station's file may use what takes its place and what is kept of it, and nobody else.

#include "CommandLineTest.h"

#ifdef Q_OS_LINUX
#include <QDirIterator>
#include <QtEndian>

#include <array>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{
constexpr char AccessList[] = "system.posix_acl_access";
constexpr char FolderList[] = "system.posix_acl_default";
constexpr quint32 Nobody = 65534;

enum class About : quint16
{
    Owner = 1,
    User = 2,
    Group = 4,
    Mask = 16,
    Others = 32
};

struct Entry
{
    About What;
    quint16 Rights;
    quint32 Account = 0xFFFFFFFF;
};

QByteArray ListOf(const std::vector<Entry>& entries)
{
    QByteArray list;
    const auto append = [&](auto number) {
        number = qToLittleEndian(number);
        list.append(reinterpret_cast<const char*>(&number), sizeof number);
    };
    append(quint32{2});
    for (const Entry& entry : entries) {
        append(static_cast<quint16>(entry.What));
        append(entry.Rights);
        append(entry.Account);
    }
    return list;
}

/// The owner and one more account, and nobody by his group.
QByteArray ListForNobody()
{
    return ListOf(
        {{About::Owner, 6}, {About::User, 6, Nobody}, {About::Group, 0}, {About::Mask, 6}, {About::Others, 0}});
}

class AccessTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        Expect("setting", {QStringLiteral("Backups.EnableAutoBackup"), QStringLiteral("False")});
        FileMail(Mail("one", QByteArray(20000, 'm') + "\n"));
        if (!Give(File(), AccessList, ListForNobody()))
            GTEST_SKIP() << "the file system of the tests has no access lists";
        ASSERT_EQ(::removexattr(File().toUtf8().constData(), AccessList), 0);
        ASSERT_EQ(::chmod(File().toUtf8().constData(), 0640), 0);
    }
    static bool Give(const QString& name, const char* kind, const QByteArray& list)
    {
        return ::setxattr(name.toUtf8().constData(), kind, list.constData(), static_cast<size_t>(list.size()), 0) == 0;
    }
    static QByteArray ListOn(const QString& name)
    {
        QByteArray list(1024, '\0');
        const ssize_t size =
            ::getxattr(name.toUtf8().constData(), AccessList, list.data(), static_cast<size_t>(list.size()));
        return size < 0 ? QByteArray() : list.left(size);
    }
    static struct stat StatusOf(const QString& name)
    {
        struct stat status = {};
        EXPECT_EQ(::stat(name.toUtf8().constData(), &status), 0) << name.toStdString();
        return status;
    }
    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }
    QStringList Kept() const
    {
        QStringList names;
        for (const QFileInfo& kept : QDir(Station()).entryInfoList({QStringLiteral("*.BAK")}))
            names.append(kept.filePath());
        return names;
    }
    /// The station's file, those that were kept of it and its backup.
    QStringList CompactedRestoredAndBackedUp() const
    {
        Expect("backup");
        Expect("compact", {QStringLiteral("--yes")});
        Expect("restore", {QStringLiteral("--yes")});
        QStringList names = Kept();
        EXPECT_EQ(names.size(), 2);
        const QDir backups(Station() + QStringLiteral("/Backups/Tolva"));
        for (const QString& name : backups.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            names.append(backups.filePath(name) + QStringLiteral("/Tolva.mdb"));
        EXPECT_EQ(names.size(), 3);
        return names + QStringList(File());
    }
};

TEST_F(AccessTest, AnAccessListGoesWithTheFile)
{
    ASSERT_TRUE(Give(File(), AccessList, ListForNobody()));
    for (const QString& name : CompactedRestoredAndBackedUp())
        EXPECT_EQ(ListOn(name).toHex(), ListForNobody().toHex()) << name.toStdString();
}

TEST_F(AccessTest, WhatTheFolderGivesToNewFilesIsNotGivenToThese)
{
    ASSERT_TRUE(Give(Station(), FolderList, ListForNobody()));
    Expect("compact", {QStringLiteral("--yes")});
    ASSERT_EQ(Kept().size(), 1);
    EXPECT_EQ(ListOn(Kept().first()), QByteArray());
    EXPECT_EQ(StatusOf(Kept().first()).st_mode & 07777U, 0640U);
}

TEST_F(AccessTest, OwnerAndGroupGoWithTheFile)
{
    uid_t owner = ::geteuid();
    gid_t group = Nobody;
    if (owner == 0) {
        owner = Nobody;
    } else {
        std::array<gid_t, 256> groups{};
        const int count = ::getgroups(static_cast<int>(groups.size()), groups.data());
        for (int i = 0; i < count; ++i) {
            if (groups.at(static_cast<size_t>(i)) != ::getegid())
                group = groups.at(static_cast<size_t>(i));
        }
        if (group == Nobody)
            GTEST_SKIP() << "this account is in one group alone";
    }
    ASSERT_EQ(::chown(File().toUtf8().constData(), owner, group), 0);
    for (const QString& name : CompactedRestoredAndBackedUp()) {
        EXPECT_EQ(StatusOf(name).st_uid, owner) << name.toStdString();
        EXPECT_EQ(StatusOf(name).st_gid, group) << name.toStdString();
        EXPECT_EQ(StatusOf(name).st_mode & 07777U, 0640U) << name.toStdString();
    }
}

TEST_F(AccessTest, WhoMayNotGiveAFileItsGroupGivesHisOwnGroupNothing)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs an account that may do everything, to be another one";
    const QByteArray list =
        ListOf({{About::Owner, 6}, {About::User, 6, Nobody}, {About::Group, 6}, {About::Mask, 6}, {About::Others, 6}});
    for (const QByteArray& given : {list, QByteArray()}) {
        ASSERT_EQ(QProcess::execute(QStringLiteral("chmod"),
                                    {QStringLiteral("-R"), QStringLiteral("a+rwX"), Path(QString()), Station()}),
                  0);
        if (!given.isEmpty())
            ASSERT_TRUE(Give(File(), AccessList, given));
        else
            ::removexattr(File().toUtf8().constData(), AccessList);
        ASSERT_EQ(::chmod(File().toUtf8().constData(), 0666), 0);
        QProcess process;
        Prepare(process, {QStringLiteral("compact"), Station(), QStringLiteral("--yes")});
        process.setChildProcessModifier([] {
            if (::setgid(Nobody) != 0 || ::setuid(Nobody) != 0)
                ::_exit(99);
        });
        process.start();
        ASSERT_TRUE(process.waitForFinished());
        if (process.error() == QProcess::FailedToStart || process.exitCode() == 99)
            GTEST_SKIP() << "another account cannot start the program from where it was built";
        ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
        const QString kept = Kept().last();
        EXPECT_EQ(StatusOf(kept).st_uid, Nobody);
        QByteArray expected = given;
        if (!given.isEmpty())
            expected[4 + 2 * 8 + 2] = 0; // of the third entry, the group's rights
        else
            EXPECT_EQ(StatusOf(kept).st_mode & 0070U, 0U);
        EXPECT_EQ(ListOn(kept).toHex(), expected.toHex());
        EXPECT_EQ(OnStation("check").Code, 0);
    }
}

TEST_F(AccessTest, WhatIsBeingMadeIsNeverOpenToMoreThanTheStation)
{
    ASSERT_EQ(::chmod(File().toUtf8().constData(), 0600), 0);
    Expect("backup");
    const mode_t mask = ::umask(022);
    int seen = 0;
    for (const char* command : {"compact", "backup", "restore"}) {
        for (int call = 1;; call += 1 + call / 12) {
            QProcess victim;
            QStringList words{QString::fromLatin1(command), Station()};
            if (QByteArray(command) != "backup")
                words.append(QStringLiteral("--yes"));
            Prepare(victim, words);
            QProcessEnvironment environment = victim.processEnvironment();
            environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
            environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
            environment.insert(QStringLiteral("KILL_AT"), QString::number(call));
            victim.setProcessEnvironment(environment);
            victim.start();
            ASSERT_TRUE(victim.waitForFinished());
            QDirIterator files(Station(),
                               {QStringLiteral("*.tmp"), QStringLiteral("*.MDB"), QStringLiteral("*.mdb"),
                                QStringLiteral(".copy-*"), QStringLiteral("*.restored-*"), QStringLiteral("*.BAK")},
                               QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
            while (files.hasNext()) {
                const QString name = files.next();
                if (name.contains(QStringLiteral("/Directory/")) || files.fileInfo().size() == 0)
                    continue;
                ++seen;
                EXPECT_EQ(StatusOf(name).st_mode & 0077U, 0U) << command << call << ' ' << name.toStdString();
            }
            for (const QString& kept : Kept())
                QFile::remove(kept);
            if (victim.exitStatus() == QProcess::NormalExit)
                break;
        }
    }
    ::umask(mask);
    EXPECT_GT(seen, 100);
}

TEST_F(AccessTest, AListThatCannotBeGivenOpensNothingAndIsSaid)
{
    ASSERT_TRUE(Give(File(), AccessList, ListForNobody()));
    int told = 0;
    const QString log = Path(QStringLiteral("calls"));
    for (int call = 1;; ++call) {
        QProcess process;
        Prepare(process, {QStringLiteral("compact"), Station(), QStringLiteral("--yes")});
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QStringLiteral("FAIL_AT"), QString::number(call));
        environment.insert(QStringLiteral("FAIL_NAMES"), QStringLiteral(".tmp"));
        environment.insert(QStringLiteral("FAIL_LOG"), log);
        process.setProcessEnvironment(environment);
        process.start();
        ASSERT_TRUE(process.waitForFinished());
        const QByteArray problems = process.readAllStandardError();
        EXPECT_EQ(ListOn(File()), ListForNobody()) << call;
        for (const QString& kept : Kept()) {
            EXPECT_EQ(ListOn(kept).toHex(), ListForNobody().toHex()) << call << ' ' << kept.toStdString();
            QFile::remove(kept);
        }
        if (Read(log).toInt() < call)
            break;
        told += process.exitCode() != 0 ? 1 : 0;
        EXPECT_EQ(process.exitCode() != 0, !problems.isEmpty()) << call << problems.constData();
    }
    EXPECT_GT(told, 3);
    EXPECT_EQ(OnStation("check").Code, 0);
}
} // namespace
#endif
