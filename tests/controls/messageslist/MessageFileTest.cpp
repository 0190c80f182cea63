// SPDX-License-Identifier: Apache-2.0

// Messages as files: writing and reading .eml.

#include "messageslist/MessageFile.h"

#include "platform/records/Error.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
/// Octets that no text conversion leaves alone.
QByteArray Odd()
{
    QByteArray octets = "Subject: Odd\nFrom: a@example.com\r\n\r\n";
    for (int i = 1; i < 256; ++i)
        octets.append(static_cast<char>(i));
    return octets + "\r\n\n\r";
}
} // namespace

class MessageFileTest : public testing::Test
{
protected:
    QString Path(const QString& name) const { return Folder.filePath(name); }
    QByteArray Read(const QString& name) const
    {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }
    QString Write(const QString& name, const QByteArray& content) const
    {
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return Path(name);
    }
    static cMessagePtr Make(const QByteArray& octets)
    {
        auto message = std::make_shared<cMessage>();
        message->SetCDOMessage(std::make_shared<cdo::Message>(octets));
        return message;
    }

    QTemporaryDir Folder;
};

TEST_F(MessageFileTest, AMessageIsWrittenAndReadOctetByOctet)
{
    SaveMessageAsEml(Make(Odd()), Path(QStringLiteral("a.eml")));
    EXPECT_EQ(Read(QStringLiteral("a.eml")), Odd());
    const cMessagePtr read = LoadMessageFromEml(Path(QStringLiteral("a.eml")));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->CDOMessage()->Octets(), Odd());
    EXPECT_EQ(read->CDOMessage()->Subject(), QStringLiteral("Odd"));
    EXPECT_EQ(read->Reference(), 0);
}

TEST_F(MessageFileTest, AFileThatIsThereIsReplaced)
{
    Write(QStringLiteral("a.eml"), QByteArray(10'000, 'x'));
    SaveMessageAsEml(Make("Subject: Short\r\n\r\n"), Path(QStringLiteral("a.eml")));
    EXPECT_EQ(Read(QStringLiteral("a.eml")), QByteArray("Subject: Short\r\n\r\n"));
}

TEST_F(MessageFileTest, WithoutAMessageANameOrAFolderNothingIsWritten)
{
    SaveMessageAsEml(nullptr, Path(QStringLiteral("a.eml")));
    SaveMessageAsEml(Make(Odd()), QString());
    SaveMessageAsEml(Make(Odd()), Path(QStringLiteral("no/such/folder/a.eml")));
    EXPECT_TRUE(QDir(Folder.path()).isEmpty());
}

TEST_F(MessageFileTest, AFileThatCannotBeWrittenIsAnError)
{
    ASSERT_TRUE(QDir(Folder.path()).mkdir(QStringLiteral("taken.eml")));
    try {
        SaveMessageAsEml(Make(Odd()), Path(QStringLiteral("taken.eml")));
        FAIL() << "no error";
    } catch (const dao::Error& error) {
        EXPECT_EQ(error.Number(), dao::errDiskError);
        EXPECT_EQ(
            error.Description(),
            QStringLiteral("The file %1 could not be written: it is a folder.").arg(Path(QStringLiteral("taken.eml"))));
    }
}

TEST_F(MessageFileTest, TheHeaderFieldsOfTheMailAreTaken)
{
    const cMessagePtr read = LoadMessageFromEml(
        Write(QStringLiteral("a.eml"), "From: Ann <ann@example.com>\nSubject: =?utf-8?Q?Gr=C3=BC=C3=9Fe?=\n"
                                       "Date: Sat, 21 Nov 2026 10:00:00 +0000\n\nHello\n"));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->CDOMessage()->Subject(), QStringLiteral("Grüße"));
    EXPECT_EQ(read->CDOMessage()->From(), QStringLiteral("Ann <ann@example.com>"));
    EXPECT_EQ(read->SentString(), QStringLiteral("21/11/2026 10:00:00"));
}

TEST_F(MessageFileTest, WhatIsNoFileOrNoMailGivesNothing)
{
    ASSERT_TRUE(QDir(Folder.path()).mkdir(QStringLiteral("folder.eml")));
    EXPECT_EQ(LoadMessageFromEml(QString()), nullptr);
    EXPECT_EQ(LoadMessageFromEml(Path(QStringLiteral("vanished.eml"))), nullptr);
    EXPECT_EQ(LoadMessageFromEml(Path(QStringLiteral("folder.eml"))), nullptr);
    EXPECT_EQ(LoadMessageFromEml(Path(QStringLiteral("vanished.eml/a.eml"))), nullptr);
    EXPECT_EQ(LoadMessageFromEml(Write(QStringLiteral("empty.eml"), {})), nullptr);
    EXPECT_EQ(LoadMessageFromEml(Write(QStringLiteral("zeros.eml"), QByteArray(100, '\0'))), nullptr);
    EXPECT_EQ(LoadMessageFromEml(Write(QStringLiteral("program.eml"), QByteArray("\x7F"
                                                                                 "ELF\2\1\1\0\0\0",
                                                                                 10))),
              nullptr);
}

TEST_F(MessageFileTest, DamagedMailIsReadAsFarAsItGoes)
{
    for (const QByteArray& octets :
         {QByteArray("x"), QByteArray("\r\n"), QByteArray("Subject"), QByteArray("Subject:"),
          QByteArray("\xFF\xFE\xFD"), QByteArray("Content-Type: multipart/mixed; boundary=\"b\"\n\n--b\n--b\n--b"),
          QByteArray(100'000, ':')}) {
        const cMessagePtr read = LoadMessageFromEml(Write(QStringLiteral("a.eml"), octets));
        ASSERT_NE(read, nullptr) << octets.left(40).constData();
        EXPECT_EQ(read->CDOMessage()->Octets(), octets);
    }
}

TEST_F(MessageFileTest, AFileThatIsTooLargeForAMailGivesNothingAndIsNotRead)
{
    QFile file(Write(QStringLiteral("huge.eml"), "Subject: Huge\r\n\r\n"));
    // Takes no room on the disk.
    ASSERT_TRUE(file.resize(3LL << 30));
    EXPECT_EQ(LoadMessageFromEml(file.fileName()), nullptr);
}
