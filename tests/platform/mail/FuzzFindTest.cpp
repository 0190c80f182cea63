// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

using cdo::Message;

/// Octets that once went wrong, kept so that they cannot again.
TEST(MailFuzzFinds, AllReadAndTakeChanges)
{
    const QDir folder(mailTest::DataFolder() + QStringLiteral("finds"));
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        const QByteArray octets = mailTest::ReadFile(folder.filePath(name));
        Message message(octets);
        mailTest::ReadEverything(message);
        EXPECT_EQ(message.Octets(), octets) << qPrintable(name);
        const QString text = message.TextBody().trimmed();
        message.SetSubject(QStringLiteral("Grüße"));
        EXPECT_EQ(message.Subject(), QStringLiteral("Grüße")) << qPrintable(name);
        message.SetHTMLBody(message.HTMLBody() + QStringLiteral("<b>x</b>"));
        EXPECT_TRUE(message.HTMLBody().endsWith(QStringLiteral("<b>x</b>"))) << qPrintable(name);
        EXPECT_EQ(message.TextBody().trimmed(), text) << qPrintable(name);
        const qsizetype files = message.Attachments().size();
        message.AddAttachment(QStringLiteral("é.bin"), "application/octet-stream", octets);
        EXPECT_EQ(message.Attachments().size(), files + 1) << qPrintable(name);
        EXPECT_EQ(message.AttachmentContent(static_cast<int>(files)), octets) << qPrintable(name);
        EXPECT_EQ(message.TextBody().trimmed(), text) << qPrintable(name);

        Message other(octets);
        const QString html = other.HTMLBody();
        other.SetTextBody(text + QStringLiteral("x"));
        EXPECT_EQ(other.TextBody(), text + QStringLiteral("x")) << qPrintable(name);
        EXPECT_EQ(other.HTMLBody(), html) << qPrintable(name);
    }
}
