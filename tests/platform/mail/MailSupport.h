// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/Message.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <ostream>

/// Shared by the tests of the mail object: the mail files, small mails written out in the test, readable failures.
namespace mailTest
{

inline QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

inline QString DataFolder()
{
    return QStringLiteral(TOLVA_TEST_DATA "/mail/");
}

inline QByteArray MailFile(const char* name)
{
    return ReadFile(DataFolder() + QString::fromLatin1(name) + QStringLiteral(".eml"));
}

inline QStringList MailFileNames()
{
    QStringList names = QDir(DataFolder()).entryList({QStringLiteral("*.eml")}, QDir::Files, QDir::Name);
    names.replaceInStrings(QStringLiteral(".eml"), QString());
    return names;
}

/// A mail as it is sent: the lines of the test's literal with "\r\n" between them.
inline QByteArray Sent(const char* lines)
{
    return QByteArray(lines).replace("\n", "\r\n");
}

inline std::string Plain(const QString& text)
{
    return text.toStdString();
}

/// Calls every reading function, so that none can fall over unseen.
inline void ReadEverything(const cdo::Message& message)
{
    message.From();
    message.To();
    message.CC();
    message.BCC();
    message.ReplyTo();
    message.Subject();
    message.MessageID();
    message.Sender();
    message.Header("Received");
    message.SentOn();
    message.ReceivedTime();
    message.TextBody();
    message.HTMLBody();
    const qsizetype count = message.Attachments().size();
    for (int i = 0; i < count; ++i) {
        message.AttachmentContent(i);
        message.ContentByID(message.Attachments().at(i).ContentID);
    }
    message.Field(QStringLiteral("urn:schemas:httpmail:priority"));
}

} // namespace mailTest
