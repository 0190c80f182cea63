// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessages.h"

/// Messages and tags for tests of page templates.
struct Mail
{
    QString From = QStringLiteral("Ann Lee <ann@example.com>");
    QString To = QStringLiteral("studio@example.com");
    QString Subject = QStringLiteral("A request");
    QString Text = QString();
    QString HTML = QString();
};

inline cMessagePtr MakeMessage(const Mail& mail)
{
    auto content = std::make_shared<cdo::Message>();
    content->SetFrom(mail.From);
    content->SetTo(mail.To);
    content->SetSubject(mail.Subject);
    if (!mail.Text.isEmpty())
        content->SetTextBody(mail.Text);
    if (!mail.HTML.isEmpty())
        content->SetHTMLBody(mail.HTML);
    auto message = std::make_shared<cMessage>();
    message->SetCDOMessage(content);
    return message;
}

inline QString Tag(const QString& name)
{
    return QStringLiteral("<ZRT_MESSAGE_") + name + u'>';
}

inline QString Tag(const char* name)
{
    return Tag(QString::fromLatin1(name));
}

/// All tags of a message, in the order in which they are filled.
inline QStringList TagNames()
{
    return {QStringLiteral("REFERENCE"),
            QStringLiteral("SUBJECT"),
            QStringLiteral("SUBJECTSHORT"),
            QStringLiteral("FROM"),
            QStringLiteral("FROMNAME"),
            QStringLiteral("FROMEMAIL"),
            QStringLiteral("TO"),
            QStringLiteral("SENT"),
            QStringLiteral("RECEIVED"),
            QStringLiteral("SENDAFTER"),
            QStringLiteral("PERSONALREFERENCE"),
            QStringLiteral("SOURCEINDEX"),
            QStringLiteral("BODY"),
            QStringLiteral("HTMLBODY"),
            QStringLiteral("TEXTBODY"),
            QStringLiteral("BODYSHORT"),
            QStringLiteral("TEXTBODYSHORT"),
            QStringLiteral("HTMLBODYSHORT")};
}

inline cMessages MessagesWithSubjects(const QStringList& subjects)
{
    cMessages messages;
    for (const QString& subject : subjects)
        messages.Add(MakeMessage({.Subject = subject}));
    return messages;
}
