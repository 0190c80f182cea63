// SPDX-License-Identifier: Apache-2.0
#include "compose/AddressBook.h"

#include <gtest/gtest.h>

namespace
{
clsKVContactPtr Contact(const char* name, const char* email, const char* second = "", const char* mobile = "")
{
    auto contact = std::make_shared<clsKVContact>();
    contact->Name = QString::fromUtf8(name);
    contact->Email = QString::fromUtf8(email);
    contact->SecondEmail = QString::fromUtf8(second);
    contact->Mobile = QString::fromUtf8(mobile);
    return contact;
}

const QList<clsKVContactPtr> Contacts = {
    Contact("Ångström, Åsa", "asa@example.org", "A.Angstrom@work.example"),
    Contact("Bob Low", "bob@example.org", "BOB@example.org", "+44 (0)7700 900123"),
    Contact("Łukasz", "lukasz@example.org"),
    Contact("Nobody", ""),
    Contact("שלום לוי", "shalom@example.org"),
};

QStringList Found(const char* typed, enMsgType type = emtEmail, int limit = 10)
{
    QStringList addresses;
    for (const AddressBook::Entry& entry : AddressBook(Contacts, type).Matching(QString::fromUtf8(typed), limit))
        addresses.append(entry.Address);
    return addresses;
}
} // namespace

TEST(AddressBookTest, EachAddressOfAContactStandsOnce)
{
    EXPECT_EQ(AddressBook(Contacts, emtEmail).Size(), 5);
    EXPECT_EQ(AddressBook(Contacts, emtSMS).Size(), 1);
    EXPECT_EQ(Found("bob"), QStringList{QStringLiteral("bob@example.org")});
}

TEST(AddressBookTest, AnyWordsBeginningIsFoundWithoutAccents)
{
    const QStringList both = {QStringLiteral("asa@example.org"), QStringLiteral("A.Angstrom@work.example")};
    EXPECT_EQ(Found("ang"), both);
    EXPECT_EQ(Found("ÅNG"), both);
    EXPECT_EQ(Found("asa angst"), both);
    EXPECT_EQ(Found("work"), QStringList{QStringLiteral("A.Angstrom@work.example")});
    EXPECT_EQ(Found("luk"), QStringList{QStringLiteral("lukasz@example.org")});
    EXPECT_EQ(Found("לוי"), QStringList{QStringLiteral("shalom@example.org")});
    EXPECT_TRUE(Found("ngst").isEmpty());
    EXPECT_TRUE(Found("asa bob").isEmpty());
}

TEST(AddressBookTest, AWholeAddressIsFoundWhileItIsTyped)
{
    EXPECT_EQ(Found("bob@exa"), QStringList{QStringLiteral("bob@example.org")});
    EXPECT_EQ(Found("a.angst"), QStringList{QStringLiteral("A.Angstrom@work.example")});
}

TEST(AddressBookTest, NumbersAreFoundByTheirDigits)
{
    EXPECT_EQ(Found("+44 0 77", emtSMS).size(), 1);
    EXPECT_EQ(Found("440770", emtSMS).size(), 1);
    EXPECT_EQ(Found("low", emtSMS).size(), 1);
    EXPECT_TRUE(Found("123", emtSMS).isEmpty());
}

TEST(AddressBookTest, NothingIsFoundForNothing)
{
    for (const char* typed : {"", "  ", "@", "\"", "<", ".", "-"})
        EXPECT_TRUE(Found(typed).isEmpty()) << typed;
    EXPECT_EQ(Found("e", emtEmail, 2).size(), 2);
}
