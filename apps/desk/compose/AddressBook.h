// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Enumerations.h"
#include "platform/directory/clsKVContact.h"

#include <QList>
#include <QString>
#include <QStringList>

/// What a writer may mean while typing a recipient: the addresses of the directory's contacts, as they were when this
/// was filled. A value; finding reads nothing.
class AddressBook
{
public:
    struct Entry
    {
        QString Name;
        QString Address; ///< An e-mail address, or the mobile number for text messages.
    };

    explicit AddressBook(enMsgType type = emtEmail) : Type_(type) {}
    /// Each contact once for each of its addresses of that kind.
    AddressBook(const QList<clsKVContactPtr>& contacts, enMsgType type);

    /// Takes in one more contact, behind the others; Sort is next, before anything is looked for.
    void Take(const clsKVContact& contact);
    /// Puts the entries in the order of their names, whatever their case and accents; those of one name stay as they
    /// are.
    void Sort();

    /// At most limit entries, by name, in which each word that was typed begins a word of the name or of the address,
    /// without regard to case and accents; numbers without regard to what stands between their digits. None for a text
    /// without a letter or digit.
    QList<Entry> Matching(const QString& typed, int limit) const;
    qsizetype Size() const { return Rows_.size(); }

private:
    struct Row
    {
        Entry Shown;
        QString Name;      ///< Folded.
        QStringList Words; ///< Folded.
        QString Digits;
    };
    void Add(const QString& name, const QString& address);

    enMsgType Type_;
    QList<Row> Rows_;
};
