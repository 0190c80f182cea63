// SPDX-License-Identifier: Apache-2.0
#include "contacts/SenderContact.h"

#include "common/GeneralHelper.h"
#include "contacts/PhoneDigits.h"

#include <QRegularExpression>

#include <algorithm>

namespace
{
/// The digits that two ways of writing one number have in common at its end; fewer would tell few numbers apart.
constexpr qsizetype LeastTellingDigits = 6;

bool MayBeNumber(const QString& text)
{
    return std::any_of(text.begin(), text.end(), [](QChar character) { return character.isDigit(); });
}

/// The numbers of one free text: each line, each part between commas or semicolons, with or without a word before it
/// ("Work: 01736 555 019").
QStringList NumbersIn(const QString& text)
{
    static const QRegularExpression divider(QStringLiteral("[\\r\\n;,]"));
    QStringList numbers;
    for (const QString& part : text.split(divider, Qt::SkipEmptyParts)) {
        const QString number = part.mid(part.lastIndexOf(u':') + 1).trimmed();
        if (MayBeNumber(number))
            numbers.append(number);
    }
    return numbers;
}

/// Recognises one number among the many of a directory.
class NumberMatch
{
public:
    explicit NumberMatch(const QString& number)
        : Text_(number.trimmed()), Key_(GeneralHelper::PhoneNumberKey(number)), Ending_(Key_.right(LeastTellingDigits))
    {
    }

    bool IsNothing() const { return Text_.isEmpty(); }
    bool Fits(const clsKVContact& contact) const
    {
        if (IsIt(contact.Mobile) || IsIt(contact.Telephone))
            return true;
        const QStringList others = NumbersIn(contact.Other);
        return std::any_of(others.begin(), others.end(), [this](const QString& number) { return IsIt(number); });
    }

private:
    bool IsIt(const QString& number) const
    {
        if (number.isEmpty())
            return false;
        if (Key_.isEmpty())
            return number.trimmed().compare(Text_, Qt::CaseInsensitive) == 0;
        // Making a key takes far longer than looking for the digits that it must end in.
        return PhoneDigits(number).contains(Ending_) && GeneralHelper::PhoneNumberKey(number) == Key_;
    }

    QString Text_;
    QString Key_; ///< Empty for a short code or a sender's name.
    QString Ending_;
};

/// Where a mailbox ends and what its parts are, of a text that others wrote.
struct MailboxReader
{
    QString Name;
    QString Comment;
    QString Bracketed;
    bool HasBrackets = false;

    void Read(const QString& text)
    {
        for (const QChar character : text) {
            if (!Take(character))
                return;
        }
    }

private:
    /// False at the comma behind the mailbox.
    bool Take(QChar character)
    {
        if (IsEscaped_) {
            IsEscaped_ = false;
            Here().append(character);
        } else if (character == u'\\' && (InQuotes_ || Depth_ > 0)) {
            IsEscaped_ = true;
        } else if (character == u'"' && Depth_ == 0 && !InBrackets_) {
            InQuotes_ = !InQuotes_;
        } else if (!InQuotes_ && !InBrackets_ && (character == u'(' || character == u')')) {
            Depth_ = std::max(0, Depth_ + (character == u'(' ? 1 : -1));
        } else if (!InQuotes_ && Depth_ == 0 && (character == u'<' || character == u'>')) {
            InBrackets_ = character == u'<' && !HasBrackets;
            HasBrackets = true;
        } else if (!InQuotes_ && Depth_ == 0 && !InBrackets_ && (character == u',' || character == u';')) {
            return Name.trimmed().isEmpty() && !HasBrackets;
        } else {
            Here().append(character);
        }
        return true;
    }
    QString& Here()
    {
        if (InBrackets_)
            return Bracketed;
        return Depth_ > 0 ? Comment : Name;
    }

    bool InQuotes_ = false;
    bool InBrackets_ = false;
    bool IsEscaped_ = false;
    int Depth_ = 0;
};

bool IsAddress(const QString& text)
{
    return text.contains(u'@');
}
} // namespace

SenderContact::Mailbox SenderContact::FirstMailbox(const QString& from)
{
    MailboxReader reader;
    reader.Read(from);
    Mailbox mailbox;
    const QString outside = reader.Name.simplified();
    if (reader.HasBrackets) {
        mailbox.Address = reader.Bracketed.simplified().remove(u' ');
        mailbox.Name = outside;
    } else if (IsAddress(outside) || MayBeNumber(outside)) {
        mailbox.Address = outside;
    } else {
        mailbox.Name = outside;
    }
    if (mailbox.Name.isEmpty())
        mailbox.Name = reader.Comment.simplified();
    return mailbox;
}

QString SenderContact::NameFromAddress(const QString& address)
{
    QString local = address.section(u'@', 0, 0).section(u'+', 0, 0);
    local.replace(u'.', u' ').replace(u'_', u' ');
    bool isStart = true;
    for (QChar& character : local) {
        if (isStart)
            character = character.toUpper();
        isStart = character == u' ' || character == u'-';
    }
    return local.simplified();
}

QStringList SenderContact::NumbersOf(const clsKVContact& contact)
{
    QStringList numbers;
    for (const QString& number : {contact.Mobile.trimmed(), contact.Telephone.trimmed()}) {
        if (!number.isEmpty())
            numbers.append(number);
    }
    for (const QString& number : NumbersIn(contact.Other)) {
        if (!GeneralHelper::PhoneNumberKey(number).isEmpty())
            numbers.append(number);
    }
    return numbers;
}

clsKVContactPtr SenderContact::FindByAddress(const EmbeddedDirectory& directory, const QString& address)
{
    const QList<clsKVContactPtr> contacts = directory.ContactsByAddress(address.trimmed());
    return contacts.isEmpty() ? nullptr : contacts.first();
}

QList<clsKVContactPtr> SenderContact::AllByNumber(const EmbeddedDirectory& directory, const QString& number)
{
    const NumberMatch match(number);
    if (match.IsNothing())
        return {};
    QList<clsKVContactPtr> contacts = directory.Contacts();
    contacts.removeIf([&match](const clsKVContactPtr& contact) { return !match.Fits(*contact); });
    return contacts;
}

clsKVContactPtr SenderContact::FindByNumber(const EmbeddedDirectory& directory, const QString& number)
{
    const QList<clsKVContactPtr> contacts = AllByNumber(directory, number);
    return contacts.isEmpty() ? nullptr : contacts.first();
}

clsKVContactPtr SenderContact::Find(const EmbeddedDirectory& directory, const cMessage& message)
{
    const Mailbox sender = FirstMailbox(message.CDOMessage()->From());
    if (message.MessageType() != emtSMS)
        return FindByAddress(directory, sender.Address);
    return FindByNumber(directory, sender.Address.isEmpty() ? sender.Name : sender.Address);
}

clsKVContact SenderContact::FromMessage(const cMessage& message)
{
    const Mailbox sender = FirstMailbox(message.CDOMessage()->From());
    clsKVContact contact;
    contact.Name = sender.Name;
    if (message.MessageType() == emtSMS) {
        // A sender's name that is no number is how the answer to "who is it" will be looked up again.
        contact.Mobile = sender.Address.isEmpty() ? sender.Name : sender.Address;
        return contact;
    }
    contact.Email = sender.Address;
    if (contact.Name.isEmpty() || contact.Name.compare(sender.Address, Qt::CaseInsensitive) == 0)
        contact.Name = NameFromAddress(sender.Address);
    return contact;
}
