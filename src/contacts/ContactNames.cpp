// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactNames.h"

#include "common/GeneralHelper.h"
#include "contacts/PhoneDigits.h"
#include "contacts/SenderContact.h"

namespace
{
/// Fewer would be the end of many numbers.
constexpr qsizetype EndDigits = 6;

QString EndOf(const QString& number)
{
    return PhoneDigits(number).right(EndDigits);
}
} // namespace

ContactNames::ContactNames(const QList<clsKVContactPtr>& contacts)
{
    for (const clsKVContactPtr& contact : contacts) {
        if (contact->Name.trimmed().isEmpty())
            continue;
        for (const QString& address : {contact->Email, contact->SecondEmail}) {
            const QString key = address.trimmed().toLower();
            if (!key.isEmpty() && !Names_.contains(key))
                Names_.insert(key, contact->Name);
        }
        for (const QString& number : SenderContact::NumbersOf(*contact))
            AddNumber(number, contact->Name);
    }
}

/// One with fewer digits is a short code or a sender's name, which means itself.
void ContactNames::AddNumber(const QString& number, const QString& name)
{
    const QString written = number.trimmed();
    if (written.isEmpty())
        return;
    const QString end = EndOf(written);
    if (end.size() == EndDigits)
        Numbers_[end].append({written, name});
    else if (!Names_.contains(written.toLower()))
        Names_.insert(written.toLower(), name);
}

QString ContactNames::NameOfNumber(const QString& number) const
{
    const auto candidates = Numbers_.constFind(EndOf(number));
    if (candidates == Numbers_.constEnd())
        return {};
    const QString key = GeneralHelper::PhoneNumberKey(number);
    for (const Number& candidate : *candidates) {
        const bool isIt = key.isEmpty() ? candidate.Written.compare(number.trimmed(), Qt::CaseInsensitive) == 0
                                        : GeneralHelper::PhoneNumberKey(candidate.Written) == key;
        if (isIt)
            return candidate.Name;
    }
    return {};
}

QString ContactNames::PersonOf(const QString& header) const
{
    const SenderContact::Mailbox mailbox = SenderContact::FirstMailbox(header);
    const QString& meant = mailbox.Address.isEmpty() ? mailbox.Name : mailbox.Address;
    QString name = Names_.value(meant.trimmed().toLower());
    if (name.isEmpty() && !meant.contains(u'@'))
        name = NameOfNumber(meant);
    if (!name.isEmpty())
        return name;
    return mailbox.Name.isEmpty() ? mailbox.Address : mailbox.Name;
}
