// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/directory/clsKVContact.h"
#include "platform/directory/clsKVUser.h"

/// The contact directory that a host brings: contacts, users and their rights live there, and the station database
/// stores references to them. The host owns it and keeps it alive while a station is open.
class TOLVA_EXPORT clsKVDirectory
{
public:
    virtual ~clsKVDirectory() = default;

    /// The signed-in user, null when nobody is.
    virtual clsKVUser* CurrentUser() const = 0;
    /// Null when there is no such contact. The two further arguments are reserved; pass 0.
    virtual clsKVContactPtr GetContact(qint32 reference, int options = 0, int reserved = 0) const = 0;
};
