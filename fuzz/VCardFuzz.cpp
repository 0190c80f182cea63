// SPDX-License-Identifier: Apache-2.0

// Any bytes as a file of business cards: what is read of them is read again from what is written of it, in each
// version.

#include "contacts/VCard.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QList<clsKVContact> contacts = VCard::Read(input).Contacts;
    for (const VCard::Version version : {VCard::Version::V2_1, VCard::Version::V3_0, VCard::Version::V4_0}) {
        const VCard::Reading again = VCard::Read(VCard::Write(contacts, version));
        if (again.Contacts.size() != contacts.size())
            std::abort();
        for (qsizetype i = 0; i < contacts.size(); ++i) {
            if (again.Contacts.at(i).Email != contacts.at(i).Email ||
                again.Contacts.at(i).Mobile != contacts.at(i).Mobile)
                std::abort();
        }
    }
    return 0;
}
