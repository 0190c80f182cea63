// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactImport.h"

#include "common/GeneralHelper.h"
#include "contacts/ContactDuplicates.h"
#include "contacts/SenderContact.h"

#include <QHash>

#include <algorithm>

namespace
{
void AddLine(QString& other, const QString& line)
{
    if (line.isEmpty() || other.contains(line))
        return;
    if (!other.isEmpty())
        other += u'\n';
    other += line;
}

void TakeNumber(clsKVContact& contact, QString& place, const QString& number)
{
    if (number.isEmpty())
        return;
    const QString key = GeneralHelper::PhoneNumberKey(number);
    const QStringList known = SenderContact::NumbersOf(contact);
    const bool isKnown = std::any_of(known.begin(), known.end(), [&](const QString& other) {
        return other == number || (!key.isEmpty() && GeneralHelper::PhoneNumberKey(other) == key);
    });
    if (isKnown)
        return;
    if (place.isEmpty())
        place = number;
    else
        AddLine(contact.Other, number);
}

void TakeAddress(clsKVContact& contact, const QString& address)
{
    const auto isSame = [&](const QString& other) { return other.compare(address, Qt::CaseInsensitive) == 0; };
    if (address.isEmpty() || isSame(contact.Email) || isSame(contact.SecondEmail))
        return;
    if (contact.Email.isEmpty())
        contact.Email = address;
    else if (contact.SecondEmail.isEmpty())
        contact.SecondEmail = address;
    else
        AddLine(contact.Other, address);
}

/// What an import does to the directory, gathered first: several cards may belong to one contact.
class Changes
{
public:
    void Add(const clsKVContactPtr& contact) { At(contact); }
    /// False when the contact has all of it.
    bool Merge(const clsKVContactPtr& known, const clsKVContact& taken)
    {
        clsKVContact& contact = At(known);
        const clsKVContact merged = ContactImport::Merged(contact, taken);
        const bool isNew = merged != contact;
        contact = merged;
        return isNew;
    }
    void Save(EmbeddedDirectory& directory)
    {
        for (Change& change : Changes_) {
            if (change.Before->Reference == 0)
                directory.SaveContact(change.After);
            else if (change.After != *change.Before)
                directory.ChangeContact(*change.Before, change.After);
        }
    }

private:
    struct Change
    {
        clsKVContactPtr Before; ///< Reference 0 for one that is added.
        clsKVContact After;
    };

    clsKVContact& At(const clsKVContactPtr& contact)
    {
        const auto known = Places_.constFind(contact.get());
        if (known != Places_.constEnd())
            return Changes_[*known].After;
        Places_.insert(contact.get(), Changes_.size());
        Changes_.append({contact, *contact});
        return Changes_.last().After;
    }

    QList<Change> Changes_;
    QHash<const clsKVContact*, qsizetype> Places_;
};
} // namespace

clsKVContact ContactImport::Merged(const clsKVContact& known, const clsKVContact& taken)
{
    clsKVContact merged = known;
    if (merged.Name.isEmpty())
        merged.Name = taken.Name;
    TakeNumber(merged, merged.Mobile, taken.Mobile);
    TakeNumber(merged, merged.Telephone, taken.Telephone);
    TakeAddress(merged, taken.Email);
    TakeAddress(merged, taken.SecondEmail);
    for (const QString& line : taken.Other.split(u'\n'))
        AddLine(merged.Other, line.trimmed());
    return merged;
}

QList<ContactImport::Entry> ContactImport::Plan(const EmbeddedDirectory& directory, const QList<clsKVContact>& contacts)
{
    ContactDuplicates duplicates(directory.Contacts());
    QList<Entry> plan;
    plan.reserve(contacts.size());
    for (const clsKVContact& contact : contacts) {
        const auto taken = std::make_shared<clsKVContact>(contact);
        taken->Reference = 0;
        const ContactDuplicates::Match match = duplicates.Find(*taken);
        plan.append({taken, match.Contact, match.Detail});
        if (!match.Contact)
            duplicates.Add(taken);
    }
    return plan;
}

int ContactImport::KnownIn(const QList<Entry>& plan)
{
    return static_cast<int>(
        std::count_if(plan.begin(), plan.end(), [](const Entry& entry) { return entry.Known != nullptr; }));
}

ContactImport::Result ContactImport::Run(EmbeddedDirectory& directory, const QList<Entry>& plan, Duplicates duplicates)
{
    Result result;
    Changes changes;
    for (const Entry& entry : plan) {
        if (!entry.Known || duplicates == Duplicates::Add) {
            changes.Add(entry.Contact);
            ++result.Added;
        } else if (duplicates == Duplicates::Update && changes.Merge(entry.Known, *entry.Contact)) {
            ++result.Updated;
        } else {
            ++result.Skipped;
        }
    }
    directory.InOneStep([&] { changes.Save(directory); });
    return result;
}
