// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVContact.h"

#include <QHash>
#include <QList>

/// What a directory calls those whom messages come from and go to: found in memory, for lists that show a name on each
/// of their rows. Which contact an address or a number means is told as in SenderContact. A value.
class ContactNames
{
public:
    ContactNames() = default;
    /// contacts: by name, for of several with one address the first counts.
    explicit ContactNames(const QList<clsKVContactPtr>& contacts);

    /// The person of the first mailbox of a From or To header, decoded: the contact's name, else the name that stands
    /// there, else the address or number.
    QString PersonOf(const QString& header) const;

private:
    struct Number
    {
        QString Written;
        QString Name;
    };

    void AddNumber(const QString& number, const QString& name);
    QString NameOfNumber(const QString& number) const;

    QHash<QString, QString> Names_;         ///< By address, or number without a key, in lower case.
    QHash<QString, QList<Number>> Numbers_; ///< By what they end in: the key of a number takes a while to make.
};
