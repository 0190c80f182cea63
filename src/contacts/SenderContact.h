// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "platform/directory/EmbeddedDirectory.h"

/// Who in the directory wrote a message: an e-mail by its From address, an SMS by its number.
namespace SenderContact
{
/// The contact who wrote it; null when the directory has none. Of several, a household's one address for instance, the
/// first by name. An e-mail address counts in either of the contact's two, whatever its case; a number in mobile,
/// telephone and other, in whatever form it is written. A short code or a sender's name is no number and must stand
/// there as it came. Raises dao::Error as the directory does.
clsKVContactPtr Find(const EmbeddedDirectory& directory, const cMessage& message);
/// The same for an e-mail address or number by itself.
clsKVContactPtr FindByAddress(const EmbeddedDirectory& directory, const QString& address);
clsKVContactPtr FindByNumber(const EmbeddedDirectory& directory, const QString& number);
/// All whose number it is, by name.
QList<clsKVContactPtr> AllByNumber(const EmbeddedDirectory& directory, const QString& number);

/// A new contact with what the message tells of its writer: the name of the From address, or one made of what stands
/// before its @, and the address; of an SMS its number as it came, or the sender's name. Nothing is saved.
clsKVContact FromMessage(const cMessage& message);

/// The first mailbox of a From header in its two parts; either may be empty.
struct Mailbox
{
    QString Name;
    QString Address;
};
Mailbox FirstMailbox(const QString& from);
/// "Jane Tregenza" of "jane.tregenza+news@example.org".
QString NameFromAddress(const QString& address);

/// The numbers of a contact as they are written: mobile, telephone, and those lines of other that are one.
QStringList NumbersOf(const clsKVContact& contact);
} // namespace SenderContact
