// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <memory>

/// A person or firm of the directory: a name and five details. A plain record; the directory saves it.
struct clsKVContact
{
    qint32 Reference = 0; ///< 0 until it is saved.
    QString Name;
    QString Mobile;
    QString Telephone;
    QString Email;
    QString SecondEmail;
    QString Other;

    friend bool operator==(const clsKVContact&, const clsKVContact&) = default;
};

using clsKVContactPtr = std::shared_ptr<clsKVContact>;
