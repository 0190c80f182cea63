// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVContact.h"

#include <QList>
#include <QStringList>

/// The contacts of a directory, ready to be searched at each key that is typed: their texts are folded once. Finds a
/// contact that holds all words of what was typed, each anywhere in its name or details, whatever case, accents and
/// the blanks of numbers. All characters mean themselves. Copies share their data.
class ContactSearch
{
public:
    ContactSearch() = default;
    /// contacts: in the order in which they are to be found.
    explicit ContactSearch(const QList<clsKVContactPtr>& contacts);

    /// At most limit of them, below 0 for all: those first one of whose names begins with the first word. Empty text
    /// finds everybody.
    QList<clsKVContactPtr> Find(const QString& text, int limit = -1) const;
    int Count() const { return static_cast<int>(Entries_.size()); }
    const QList<clsKVContactPtr>& Contacts() const { return Contacts_; }

private:
    struct Entry
    {
        QString Name;    ///< Folded.
        QString Details; ///< All of it, folded.
        QString Numbers; ///< The digits of its numbers alone.
    };

    QList<clsKVContactPtr> Contacts_;
    QList<Entry> Entries_;
};
