// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactNames.h"

#include <gtest/gtest.h>

namespace
{
clsKVContactPtr Contact(const QString& name, const QString& email, const QString& mobile = {},
                        const QString& other = {})
{
    auto contact = std::make_shared<clsKVContact>();
    contact->Name = name;
    contact->Email = email;
    contact->Mobile = mobile;
    contact->Other = other;
    return contact;
}

ContactNames Names()
{
    clsKVContactPtr second = Contact(u"Wenna Pascoe"_qs, u"house@example.org"_qs);
    second->SecondEmail = u"Wenna@Example.org"_qs;
    return ContactNames({Contact(u"Ann Rosewarne"_qs, u"house@example.org"_qs, u"07700 900123"_qs),
                         Contact(u"Ferry line"_qs, {}, u"FERRIES"_qs, u"Office: 01736 555 019"_qs), second,
                         Contact({}, u"nameless@example.org"_qs)});
}
} // namespace

TEST(ContactNames, TheContactsNameComesBeforeTheOneInTheMessage)
{
    EXPECT_EQ(Names().PersonOf(u"W. P. <wenna@example.ORG>"_qs), u"Wenna Pascoe"_qs);
    EXPECT_EQ(Names().PersonOf(u"house@example.org"_qs), u"Ann Rosewarne"_qs) << "of several the first by name";
}

TEST(ContactNames, ANumberIsAContactsInAnyWayOfWritingIt)
{
    for (const char* written : {"+447700900123", "07700 900 123", "0044 7700 900123"})
        EXPECT_EQ(Names().PersonOf(QString::fromLatin1(written)), u"Ann Rosewarne"_qs) << written;
    EXPECT_EQ(Names().PersonOf(u"+441736555019"_qs), u"Ferry line"_qs) << "among the others too";
    EXPECT_EQ(Names().PersonOf(u"ferries"_qs), u"Ferry line"_qs) << "a sender's name means itself";
    EXPECT_EQ(Names().PersonOf(u"+33700900123"_qs), u"+33700900123"_qs) << "it ends alike, and is another";
}

TEST(ContactNames, WhoIsNoContactIsCalledAsTheMessageSaysOrByAddressOrNumber)
{
    EXPECT_EQ(Names().PersonOf(u"\"Postcard, Pete\" <pete@example.com>, Bob <bob@example.com>"_qs),
              u"Postcard, Pete"_qs);
    EXPECT_EQ(Names().PersonOf(u"pete@example.com"_qs), u"pete@example.com"_qs);
    EXPECT_EQ(Names().PersonOf(u"07700 900999"_qs), u"07700 900999"_qs);
    EXPECT_EQ(Names().PersonOf(u"Name <nameless@example.org>"_qs), u"Name"_qs);
    EXPECT_EQ(Names().PersonOf(QString()), QString());
}
