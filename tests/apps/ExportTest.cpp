// SPDX-License-Identifier: Apache-2.0

// tolva export.

#include "CommandLineTest.h"

#include <QDir>

class ExportTest : public CommandLineTest
{
};

TEST_F(ExportTest, TheFileIsTheMailOctetByOctet)
{
    const QByteArray mail = Mail("A card", QByteArray("8-bit \xE9 and \0 nul\n", 19));
    const QString reference = FileMail(mail);
    const QString path = Path(QStringLiteral("card.eml"));
    EXPECT_EQ(Expect("export", {reference, path}), "");
    EXPECT_EQ(Read(path), mail);
    EXPECT_EQ(Expect("export", {reference, QStringLiteral("-")}), mail);
}

TEST_F(ExportTest, AFileThatExistsIsReplacedOnlyWhenAskedFor)
{
    const QString reference = FileMail(Mail("A card"));
    const QString path = Write(QStringLiteral("card.eml"), "precious");
    EXPECT_EQ(OnStation("export", {reference, path}).Code, 73);
    EXPECT_EQ(Read(path), "precious");
    Expect("export", {reference, path, QStringLiteral("--force")});
    EXPECT_EQ(Read(path), Mail("A card"));
}

TEST_F(ExportTest, IntoAFolderTheFileIsNamedAfterTheSubjectAndStaysInIt)
{
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("out"))));
    const QString reference = FileMail(Mail("../../Re: the \"ferry\"?"));
    const QByteArray printed = Expect("export", {reference, Path(QStringLiteral("out"))});
    const QStringList files = QDir(Path(QStringLiteral("out"))).entryList(QDir::Files);
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(printed, Path(QStringLiteral("out/")).toUtf8() + files.first().toUtf8() + '\n');
    EXPECT_EQ(files.first(), QStringLiteral("Re the ferry.eml"));
}

TEST_F(ExportTest, WhereNothingCanBeMadeIsAnError)
{
    const QString reference = FileMail(Mail("A card"));
    const Outcome outcome = OnStation("export", {reference, Path(QStringLiteral("no/such/folder/card.eml"))});
    EXPECT_EQ(outcome.Code, 73);
    EXPECT_FALSE(outcome.Problems.isEmpty());
    EXPECT_EQ(OnStation("export", {QStringLiteral("42"), Path(QStringLiteral("x.eml"))}).Code, 65);
    EXPECT_FALSE(QFile::exists(Path(QStringLiteral("x.eml"))));
}

TEST_F(ExportTest, ADiskThatIsFullIsAnError)
{
    const QString reference = FileMail(Mail("A card"));
    QProcess process;
    Prepare(process, {QStringLiteral("export"), Station(), reference, QStringLiteral("-")});
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    process.start();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 74);
}
