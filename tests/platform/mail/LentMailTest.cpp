// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

#include <QFileInfo>

using cdo::Message;
using mailTest::Plain;

// Mails of others, which the project does not hold: those in the folder "mail" of the folder that TOLVA_CORPUS names.

namespace
{

class LentMails : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!qEnvironmentVariableIsSet("TOLVA_CORPUS"))
            GTEST_SKIP() << "TOLVA_CORPUS names no folder of lent files.";
        const QDir folder(qEnvironmentVariable("TOLVA_CORPUS") + QStringLiteral("/mail"));
        Files_ = folder.entryInfoList({QStringLiteral("*.eml")}, QDir::Files, QDir::Name);
        ASSERT_FALSE(Files_.isEmpty()) << "There are no mails in " << folder.path().toStdString();
    }

    QFileInfoList Files_;
};

} // namespace

TEST_F(LentMails, ReadWithoutAFaultAndStayAsTheyWere)
{
    for (const QFileInfo& file : Files_) {
        const QByteArray octets = mailTest::ReadFile(file.filePath());
        const Message message(octets);
        mailTest::ReadEverything(message);
        EXPECT_EQ(message.Octets(), octets) << qPrintable(file.fileName());
        EXPECT_FALSE(message.From().isEmpty()) << qPrintable(file.fileName());
        EXPECT_TRUE(!message.TextBody().isEmpty() || !message.HTMLBody().isEmpty() || !message.Attachments().isEmpty())
            << qPrintable(file.fileName());
    }
}

TEST_F(LentMails, TakeANewSubjectAndANewFileBesideWhatTheyHold)
{
    for (const QFileInfo& file : Files_) {
        Message message(mailTest::ReadFile(file.filePath()));
        const QString text = message.TextBody();
        const QString html = message.HTMLBody();
        const qsizetype files = message.Attachments().size();
        message.SetSubject(QStringLiteral("Grüße"));
        message.AddAttachment(QStringLiteral("neu.txt"), "text/plain", "new");
        EXPECT_EQ(Plain(message.Subject()), "Grüße") << qPrintable(file.fileName());
        EXPECT_EQ(Plain(message.TextBody()), Plain(text)) << qPrintable(file.fileName());
        EXPECT_EQ(Plain(message.HTMLBody()), Plain(html)) << qPrintable(file.fileName());
        EXPECT_EQ(message.Attachments().size(), files + 1) << qPrintable(file.fileName());
    }
}

TEST_F(LentMails, CutAnywhereTheyStillRead)
{
    for (const QFileInfo& file : Files_) {
        const QByteArray octets = mailTest::ReadFile(file.filePath());
        const qsizetype step = qMax<qsizetype>(1, octets.size() / 100);
        for (qsizetype length = 0; length < octets.size(); length += step) {
            const Message message(octets.left(length));
            mailTest::ReadEverything(message);
            ASSERT_EQ(message.Octets(), octets.left(length)) << qPrintable(file.fileName());
        }
    }
}
