// SPDX-License-Identifier: Apache-2.0
#include "window/FileNames.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(FileNamesTest, APathLosesAllButItsName)
{
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral("../../etc/passwd")), QStringLiteral("passwd"));
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral("C:\\Windows\\system32\\a.dll")), QStringLiteral("a.dll"));
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral("/")), QStringLiteral("Attachment"));
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral("..")), QStringLiteral("Attachment"));
    EXPECT_EQ(FileNames::Cleaned(QString()), QStringLiteral("Attachment"));
}

TEST(FileNamesTest, ControlAndDirectionCharactersGo)
{
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral("invoice\u202Egpj.exe")), QStringLiteral("invoicegpj.exe"));
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral("a\u0000b\r\nc\u2066\u200F.txt")), QStringLiteral("abc.txt"));
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral("a<b>:c|d?e*\".txt")), QStringLiteral("abcde.txt"));
}

TEST(FileNamesTest, LeadingAndTrailingDotsAndBlanksGo)
{
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral(" ..bashrc")), QStringLiteral("bashrc"));
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral("a.txt. .")), QStringLiteral("a.txt"));
}

TEST(FileNamesTest, ReservedNamesAreChanged)
{
    for (const char* name : {"CON", "nul.txt", "COM1.tar.gz", "lpt9"})
        EXPECT_TRUE(FileNames::Cleaned(QString::fromLatin1(name)).startsWith(u'_')) << name;
    EXPECT_EQ(FileNames::Cleaned(QStringLiteral("console.txt")), QStringLiteral("console.txt"));
}

TEST(FileNamesTest, LongNamesKeepTheirExtensionAndWholeCharacters)
{
    const QString cleaned = FileNames::Cleaned(QStringLiteral("🎈").repeated(300) + QStringLiteral(".jpeg"));
    EXPECT_LE(cleaned.size(), 120);
    EXPECT_TRUE(cleaned.endsWith(QStringLiteral("🎈.jpeg")));
    EXPECT_EQ(FileNames::Cleaned(QString(300, u'x') + u'.' + QString(200, u'y')).size(), 120);
}

TEST(FileNamesTest, OrdinaryNamesStayInAnyLanguage)
{
    for (const char* name : {"Übersicht (final).pdf", "写真 1.png", "שלום.txt", "a.tar.gz"})
        EXPECT_EQ(FileNames::Cleaned(QString::fromUtf8(name)), QString::fromUtf8(name));
}

TEST(FileNamesTest, ATakenNameGetsANumberAndNothingIsOverwritten)
{
    const QTemporaryDir folder;
    FileStatus status;
    const QString first = FileNames::WriteNew(folder.path(), QStringLiteral("a.txt"), "one", status);
    const QString second = FileNames::WriteNew(folder.path(), QStringLiteral("../a.txt"), "two", status);
    ASSERT_TRUE(QFile::link(QStringLiteral("/nonexistent"), folder.filePath(QStringLiteral("a (3).txt"))));
    const QString fourth = FileNames::WriteNew(folder.path(), QStringLiteral("a.txt"), "four", status);
    EXPECT_TRUE(status.IsDone());
    EXPECT_EQ(first, folder.filePath(QStringLiteral("a.txt")));
    EXPECT_EQ(second, folder.filePath(QStringLiteral("a (2).txt")));
    EXPECT_EQ(fourth, folder.filePath(QStringLiteral("a (4).txt")));
    QFile file(first);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("one"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot).size(),
              4);
}

TEST(FileNamesTest, AFolderThatIsNotThereGivesNoFile)
{
    FileStatus status;
    EXPECT_EQ(FileNames::WriteNew(QStringLiteral("/nonexistent/folder"), QStringLiteral("a"), "x", status), QString());
    EXPECT_EQ(status.Error(), FileError::NotThere);
}
