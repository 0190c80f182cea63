// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/EmbeddedDirectory.h"

#include <QHash>
#include <QList>

/// Tells whether the directory knows a person already: by an e-mail address, without regard to case, or by a number, in
/// whatever form it is written. Keys are made once, so that an import of thousands asks at no cost.
class ContactDuplicates
{
public:
    struct Match
    {
        clsKVContactPtr Contact; ///< Null for nobody.
        QString Detail;          ///< The address or number that both have, as the one who asked writes it.
    };

    explicit ContactDuplicates(const QList<clsKVContactPtr>& contacts);

    /// The contact that shares an address or, where no address is shared, a number; the first of several. A contact
    /// never matches itself.
    Match Find(const clsKVContact& contact) const;
    /// The same for one contact alone, asked of the directory itself.
    static Match FindIn(const EmbeddedDirectory& directory, const clsKVContact& contact);
    /// Takes in a contact that was saved meanwhile.
    void Add(const clsKVContactPtr& contact);

private:
    QHash<QString, QList<clsKVContactPtr>> ByKey_;
};
