// SPDX-License-Identifier: Apache-2.0

// Any octets are a mail: they read without a fault, stay as they were, and a change of one thing leaves the others.

#include "platform/mail/Message.h"

#include <cstdlib>

namespace
{

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

void ReadEverything(const cdo::Message& message)
{
    message.From();
    message.Sender();
    message.ReplyTo();
    message.SentOn();
    message.ReceivedTime();
    for (qsizetype i = message.Attachments().size(); i > 0; --i)
        Require(message.AttachmentContent(static_cast<int>(i - 1)).size() == message.Attachments().at(i - 1).Size);
}

void AddFile(cdo::Message* message, const QByteArray& octets)
{
    const QString text = message->TextBody();
    const QString html = message->HTMLBody();
    message->AddAttachment(QStringLiteral("é.bin"), "application/octet-stream", octets);
    Require(!message->Attachments().isEmpty());
    Require(message->AttachmentContent(static_cast<int>(message->Attachments().size()) - 1) == octets);
    Require(message->TextBody() == text && message->HTMLBody() == html);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const QByteArray octets(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    cdo::Message message(octets);
    ReadEverything(message);
    Require(message.Octets() == octets);

    const QString text = message.TextBody().trimmed();
    const QString html = message.HTMLBody();
    message.SetSubject(QStringLiteral("Grüße"));
    Require(message.Subject() == QStringLiteral("Grüße"));
    Require(message.TextBody().trimmed() == text && message.HTMLBody() == html);

    message.SetHTMLBody(html + QStringLiteral("<b>x</b>"));
    Require(message.HTMLBody().endsWith(QStringLiteral("<b>x</b>")));
    Require(message.TextBody().trimmed() == text);
    AddFile(&message, octets);

    cdo::Message other(octets);
    AddFile(&other, octets);
    other.SetTextBody(text + QStringLiteral("x"));
    Require(other.TextBody() == text + QStringLiteral("x"));
    Require(other.HTMLBody().trimmed() == html.trimmed());
    return 0;
}
