// SPDX-License-Identifier: Apache-2.0
#include "messages/cMessage.h"

#include "common/ClockHelper.h"

cMessage::cMessage() : CDOMessage_(std::make_shared<cdo::Message>()) {}

cMessage::~cMessage() = default;

void cMessage::SetReference(qint32 reference)
{
    Reference_ = reference;
    SetEdited(true);
}

void cMessage::SetCategory(enTolvaMessageCategories category)
{
    Category_ = category;
    SetEdited(true);
}

void cMessage::SetEdited(bool edited)
{
    Edited_ = edited;
    Q_EMIT MessageEdited(edited);
}

void cMessage::SetCDOMessage(const std::shared_ptr<cdo::Message>& message)
{
    if (!message)
        return;
    CDOMessage_ = message;
    IsDamaged_ = false;
    ReadHeaderFields();
}

void cMessage::SetPersonalToContact(qint32 contact)
{
    if (PersonalToContact_ == contact)
        return;
    PersonalToContact_ = contact;
    SetEdited(true);
}

void cMessage::SetSourceIndex(qint16 index)
{
    if (SourceIndex_ == index)
        return;
    SourceIndex_ = index;
    SetEdited(true);
}

void cMessage::SetHasHighlightWords(bool has)
{
    HasHighlightWords_ = has;
    SetEdited(true);
}

void cMessage::SetReceived(Date date)
{
    Received_ = date;
    SetEdited(true);
}

void cMessage::SetSent(Date date)
{
    Sent_ = date;
    SetEdited(true);
}

void cMessage::SetSendAfter(Date date)
{
    SendAfter_ = date;
    SetEdited(true);
}

void cMessage::SetReceivedString(const QString& text)
{
    if (const std::optional<Date> date = Date::Parse(text))
        SetReceived(*date);
}

void cMessage::SetSentString(const QString& text)
{
    if (const std::optional<Date> date = Date::Parse(text))
        SetSent(*date);
}

void cMessage::SetSendAfterString(const QString& text)
{
    if (const std::optional<Date> date = Date::Parse(text))
        SetSendAfter(*date);
}

void cMessage::SetFlags(qint32 flags)
{
    Flags_ = flags;
    SetEdited(true);
}

void cMessage::SetMultiPartMessage(qint16 part)
{
    MultiPartMessage_ = part;
    SetEdited(true);
}

void cMessage::SetPriority(qint32 priority)
{
    Priority_ = priority;
    SetEdited(true);
}

void cMessage::SetMessageType(enMsgType type)
{
    MessageType_ = type;
    SetEdited(true);
}

cMessagePtr cMessage::Copy() const
{
    auto copy = std::make_shared<cMessage>();
    copy->SetCategory(Category_);
    copy->SetFlags(Flags_);
    copy->SetMultiPartMessage(MultiPartMessage_);
    copy->SetHasHighlightWords(HasHighlightWords_);
    copy->SetMessageType(MessageType_);
    copy->SetPersonalToContact(PersonalToContact_);
    copy->SetSourceIndex(SourceIndex_);
    copy->SetPriority(Priority_);
    copy->SetReceived(Received_);
    copy->SetSent(Sent_);
    copy->SetSendAfter(SendAfter_);
    copy->CDOMessage_->SetOctets(CDOMessage_->Octets());
    copy->IsDamaged_ = IsDamaged_;
    copy->SetEdited(copy->Edited());
    return copy;
}

/// The mail's dates are universal time where its time zone field is not zero.
Date cMessage::HeaderDate(const QDateTime& universal) const
{
    const Date date = Date::FromDateTime(universal);
    const QVariant timeZone = CDOMessage_->ConfigurationField(QStringLiteral("urn:schemas:calendar:timezoneid"));
    return timeZone.toInt() != 0 ? ClockHelper::UTCToLocal(date) : date;
}

void cMessage::ReadHeaderFields()
{
    // No mail has a field of this name, which holds a word too many, so a mail's priority is taken only where a host
    // gave it this field. Stations rely on the column being 0 for what comes in.
    const QVariant priority = CDOMessage_->Field(QStringLiteral("urn:schemas:httpmail:priority Field"));
    if (priority.isValid())
        SetPriority(priority.toInt());

    const QDateTime received = CDOMessage_->ReceivedTime();
    if (received.isValid())
        Received_ = HeaderDate(received);
    const QDateTime sent = CDOMessage_->SentOn();
    if (sent.isValid())
        Sent_ = HeaderDate(sent);
    else if (received.isValid())
        Sent_ = HeaderDate(received);
}
