// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactDuplicates.h"

#include "common/GeneralHelper.h"
#include "contacts/SenderContact.h"

namespace
{
/// A contact's addresses and numbers as they stand, and the form of each in which they meet. Addresses and numbers
/// cannot be taken for one another: only an address has an "@".
struct Details
{
    QStringList Texts;
    QStringList Keys;

    explicit Details(const clsKVContact& contact)
    {
        for (const QString& address : {contact.Email.trimmed(), contact.SecondEmail.trimmed()}) {
            if (address.contains(u'@'))
                Add(address, address.toCaseFolded());
        }
        for (const QString& number : SenderContact::NumbersOf(contact))
            Add(number, GeneralHelper::PhoneNumberKey(number));
    }

private:
    void Add(const QString& text, const QString& key)
    {
        if (key.isEmpty() || Keys.contains(key))
            return;
        Texts.append(text);
        Keys.append(key);
    }
};
} // namespace

ContactDuplicates::ContactDuplicates(const QList<clsKVContactPtr>& contacts)
{
    for (const clsKVContactPtr& contact : contacts)
        Add(contact);
}

void ContactDuplicates::Add(const clsKVContactPtr& contact)
{
    for (const QString& key : Details(*contact).Keys)
        ByKey_[key].append(contact);
}

ContactDuplicates::Match ContactDuplicates::Find(const clsKVContact& contact) const
{
    const Details details(contact);
    for (qsizetype i = 0; i < details.Keys.size(); ++i) {
        for (const clsKVContactPtr& known : ByKey_.value(details.Keys.at(i))) {
            if (contact.Reference == 0 || known->Reference != contact.Reference)
                return {known, details.Texts.at(i)};
        }
    }
    return {};
}

ContactDuplicates::Match ContactDuplicates::FindIn(const EmbeddedDirectory& directory, const clsKVContact& contact)
{
    for (const QString& text : Details(contact).Texts) {
        const QList<clsKVContactPtr> known =
            text.contains(u'@') ? directory.ContactsByAddress(text) : SenderContact::AllByNumber(directory, text);
        for (const clsKVContactPtr& candidate : known) {
            if (contact.Reference == 0 || candidate->Reference != contact.Reference)
                return {candidate, text};
        }
    }
    return {};
}
