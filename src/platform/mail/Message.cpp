// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/Message.h"

#include "platform/mail/CharacterSets.h"
#include "platform/mail/HeaderText.h"
#include "platform/mail/MessageContent.h"

namespace cdo
{

namespace
{

constexpr QLatin1String PriorityField("urn:schemas:httpmail:priority");
constexpr qsizetype LongestDate = 1000; // octets
constexpr QLatin1String TimeZoneField("urn:schemas:calendar:timezoneid");

} // namespace

Message::Message() : Content_(std::make_unique<Content>()) {}

Message::Message(const QByteArray& octets) : Message()
{
    Content_->SetOctets(octets);
}

Message::~Message() = default;

QByteArray Message::Octets() const
{
    return Content_->Octets();
}

void Message::SetOctets(const QByteArray& octets)
{
    Content_->SetOctets(octets);
    Content_->Fields.clear();
}

QString Message::From() const
{
    return Content_->Text("From");
}

QString Message::To() const
{
    return Content_->Text("To");
}

QString Message::CC() const
{
    return Content_->Text("Cc");
}

QString Message::BCC() const
{
    return Content_->Text("Bcc");
}

QString Message::ReplyTo() const
{
    return Content_->Text("Reply-To");
}

QString Message::Subject() const
{
    return Content_->Text("Subject");
}

QString Message::MessageID() const
{
    return Content_->Text("Message-ID");
}

QString Message::Sender() const
{
    const QString sender = Content_->Text("Sender");
    if (!sender.isEmpty())
        return sender;
    const QString mailbox = FirstMailbox(Content_->Header().Value(Content_->Octets(), "From"));
    return mailbox.isEmpty() ? From() : mailbox;
}

void Message::SetFrom(const QString& text)
{
    Content_->SetText("From", text);
}

void Message::SetTo(const QString& text)
{
    Content_->SetText("To", text);
}

void Message::SetCC(const QString& text)
{
    Content_->SetText("Cc", text);
}

void Message::SetBCC(const QString& text)
{
    Content_->SetText("Bcc", text);
}

void Message::SetReplyTo(const QString& text)
{
    Content_->SetText("Reply-To", text);
}

void Message::SetSubject(const QString& text)
{
    Content_->SetText("Subject", text);
}

QString Message::Header(const QByteArray& name) const
{
    return Content_->Text(name);
}

void Message::SetHeader(const QByteArray& name, const QString& text)
{
    Content_->SetText(name, text);
}

QDateTime Message::SentOn() const
{
    return DecodeDate(Content_->Header().Value(Content_->Octets(), "Date").left(LongestDate));
}

QDateTime Message::ReceivedTime() const
{
    const QByteArray octets = Content_->Octets();
    for (const HeaderField& field : Content_->Header().Fields()) {
        if (HeaderBlock::Name(octets, field).compare("Received", Qt::CaseInsensitive) != 0)
            continue;
        // The date stands at its end.
        const QDateTime date = DecodeReceivedDate(HeaderBlock::Value(octets, field).right(LongestDate));
        if (date.isValid())
            return date;
    }
    return QDateTime();
}

void Message::SetSentOn(const QDateTime& time)
{
    Content_->SetText("Date", EncodeDate(time));
}

QString Message::TextBody() const
{
    return Content_->Body(BodyKind::Text);
}

void Message::SetTextBody(const QString& text)
{
    Content_->SetBody(BodyKind::Text, text);
}

QString Message::HTMLBody() const
{
    return Content_->Body(BodyKind::Html);
}

void Message::SetHTMLBody(const QString& html)
{
    Content_->SetBody(BodyKind::Html, html);
}

QList<Attachment> Message::Attachments() const
{
    const QList<int>& files = Content_->Parts().Files();
    const QString html = files.isEmpty() ? QString() : HTMLBody();
    QList<Attachment> attachments;
    for (const int index : files) {
        const BodyPart& part = Content_->Parts().Leaves().at(index);
        attachments.append({part.FileName, QString::fromLatin1(part.ContentType), part.ContentID,
                            DecodedSize(Content_->Octets(), part), cdo::IsInline(part, html)});
    }
    return attachments;
}

QByteArray Message::AttachmentContent(int index) const
{
    const BodyPart* part = Content_->File(index);
    return part == nullptr ? QByteArray() : DecodedContent(Content_->Octets(), *part);
}

void Message::AddAttachment(const QString& fileName, const QByteArray& contentType, const QByteArray& content)
{
    Content_->AddFile(fileName, contentType, content);
}

QByteArray Message::ContentByID(const QString& contentID, QString* contentType) const
{
    const BodyPart* part = Content_->PartByID(contentID);
    if (part == nullptr)
        return QByteArray();
    if (contentType != nullptr)
        *contentType = QString::fromLatin1(part->ContentType);
    const QByteArray content = DecodedContent(Content_->Octets(), *part);
    return content.isNull() ? QByteArray("") : content;
}

QVariant Message::Field(const QString& name) const
{
    const QString key = name.toLower();
    const auto found = Content_->Fields.constFind(key);
    if (found != Content_->Fields.constEnd())
        return *found;
    return key == PriorityField ? QVariant(Content_->Priority()) : QVariant();
}

void Message::SetField(const QString& name, const QVariant& value)
{
    Content_->Fields.insert(name.toLower(), value);
}

QVariant Message::ConfigurationField(const QString& name) const
{
    return name.compare(TimeZoneField, Qt::CaseInsensitive) == 0 ? QVariant(1) : QVariant();
}

} // namespace cdo
