// SPDX-License-Identifier: Apache-2.0

// What the readers of mbox files and maildirs take for a message.

#include "intake/Maildir.h"
#include "intake/Mbox.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
class MailArchivesTest : public testing::Test
{
protected:
    QString Path(const QString& name) const { return Temporary_.filePath(name); }
    QString Write(const QString& name, const QByteArray& octets) const
    {
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(octets), octets.size());
        return file.fileName();
    }
    QList<QByteArray> MessagesOf(const QByteArray& archive) const
    {
        QFile file(Write(QStringLiteral("archive"), archive));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        MboxReader reader(file);
        QList<QByteArray> messages;
        QByteArray octets;
        while (reader.Next(octets))
            messages.append(octets);
        EXPECT_FALSE(reader.HasFailed());
        return messages;
    }
    static bool IsSeparator(const char* line) { return IsMboxSeparator(line, qint64(qstrlen(line))); }

    QTemporaryDir Temporary_;
};
} // namespace

TEST_F(MailArchivesTest, OnlyASenderWithADateSeparatesMessages)
{
    EXPECT_TRUE(IsSeparator("From ann@example.org Fri Nov 20 08:00:00 2026\n"));
    EXPECT_TRUE(IsSeparator("From MAILER-DAEMON Fri, 20 Nov 2026 08:00\n"));
    EXPECT_FALSE(IsSeparator("From here on it is quiet.\n"));
    EXPECT_FALSE(IsSeparator("From Friday Fri to Monday Mon\n"));
    EXPECT_FALSE(IsSeparator("From: ann@example.org Fri Nov 20 08:00:00 2026\n"));
    EXPECT_FALSE(IsSeparator(">From ann@example.org Fri Nov 20 08:00:00 2026\n"));
    EXPECT_FALSE(IsSeparator("From "));
    EXPECT_FALSE(IsSeparator(""));
}

TEST_F(MailArchivesTest, AnArchiveIsCutAtItsSeparatorsAndLosesItsOwnMarksAlone)
{
    const QByteArray separator = "From a@example.org Fri Nov 20 08:00:00 2026\n";
    const QList<QByteArray> messages =
        MessagesOf(separator + "Subject: one\n\n>From the sea\n>>From it\n> From\n\n" + separator +
                   "Subject: two\n\nFrom here on\n\n\n" + separator + "Subject: three\n\nno end of line");
    ASSERT_EQ(messages.size(), 3);
    EXPECT_EQ(messages.at(0), "Subject: one\n\nFrom the sea\n>From it\n> From\n");
    EXPECT_EQ(messages.at(1), "Subject: two\n\nFrom here on\n\n");
    EXPECT_EQ(messages.at(2), "Subject: three\n\nno end of line");
}

TEST_F(MailArchivesTest, ALineLongerThanAPieceIsReadWhole)
{
    const QByteArray line(200'000, 'x');
    const QByteArray separator = "From a@example.org Fri Nov 20 08:00:00 2026\n";
    const QList<QByteArray> messages =
        MessagesOf(separator + "Subject: one\n\n" + line + separator + "\n" + separator + "Subject: two\n\n");
    ASSERT_EQ(messages.size(), 2);
    EXPECT_TRUE(messages.at(0) == "Subject: one\n\n" + line + separator);
}

TEST_F(MailArchivesTest, AMaildirsMessagesAreThoseOfNewAndCurThatAreDelivered)
{
    for (const char* folder : {"box/new", "box/cur", "box/tmp", "box/cur/sub"})
        ASSERT_TRUE(QDir(Path(QString())).mkpath(Path(QLatin1String(folder))));
    EXPECT_TRUE(IsMaildir(Path(QStringLiteral("box"))));
    EXPECT_FALSE(IsMaildir(Path(QStringLiteral("box/new"))));
    Write(QStringLiteral("box/new/2.b"), "new");
    Write(QStringLiteral("box/cur/1.a:2,FS"), "seen");
    Write(QStringLiteral("box/cur/3.c:2,F"), "not seen");
    Write(QStringLiteral("box/cur/.hidden"), "none");
    Write(QStringLiteral("box/tmp/0.z"), "in delivery");
    const QList<MaildirFile> files = MaildirFiles(Path(QStringLiteral("box")));
    ASSERT_EQ(files.size(), 3);
    EXPECT_TRUE(files.at(0).Path.endsWith(QStringLiteral("/cur/1.a:2,FS")));
    EXPECT_TRUE(files.at(0).IsSeen);
    EXPECT_TRUE(files.at(1).Path.endsWith(QStringLiteral("/new/2.b")));
    EXPECT_FALSE(files.at(1).IsSeen);
    EXPECT_FALSE(files.at(2).IsSeen);
}
