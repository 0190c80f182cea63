// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactImport.h"

#include "platform/directory/TemporaryDirectory.h"

namespace
{
using ContactImport::Duplicates;

class ContactImportTest : public TemporaryDirectory
{
protected:
    qint32 Add(clsKVContact contact)
    {
        Directory.SaveContact(contact);
        return contact.Reference;
    }
    QStringList Names()
    {
        QStringList names;
        for (const clsKVContactPtr& contact : Directory.Contacts())
            names.append(contact->Name);
        return names;
    }
    ContactImport::Result Import(const QList<clsKVContact>& contacts, Duplicates duplicates)
    {
        return ContactImport::Run(Directory, ContactImport::Plan(Directory, contacts), duplicates);
    }
    static clsKVContact Contact(const QString& name, const QString& mobile, const QString& email = {})
    {
        return {0, name, mobile, {}, email, {}, {}};
    }
};
} // namespace

TEST_F(ContactImportTest, ThePlanTellsWhoIsKnownByNumberOrAddress)
{
    Add(Contact(QStringLiteral("Wella"), QStringLiteral("07700 900123")));
    Add(Contact(QStringLiteral("Zoë"), {}, QStringLiteral("zoe@example.org")));
    const QList<ContactImport::Entry> plan = ContactImport::Plan(
        Directory,
        {Contact(QStringLiteral("W Rowe"), QStringLiteral("+447700900123")),
         Contact(QStringLiteral("Z"), {}, QStringLiteral("ZOE@example.org")),
         Contact(QStringLiteral("Jory"), QStringLiteral("07700 900124"), QStringLiteral("jory@example.org"))});
    ASSERT_EQ(plan.size(), 3);
    ASSERT_TRUE(plan.at(0).Known);
    EXPECT_EQ(plan.at(0).Known->Name, QStringLiteral("Wella"));
    EXPECT_EQ(plan.at(0).Detail, QStringLiteral("+447700900123"));
    ASSERT_TRUE(plan.at(1).Known);
    EXPECT_EQ(plan.at(1).Known->Name, QStringLiteral("Zoë"));
    EXPECT_FALSE(plan.at(2).Known);
    EXPECT_EQ(ContactImport::KnownIn(plan), 2);
}

TEST_F(ContactImportTest, KnownContactsAreSkippedUpdatedOrAddedAsAsked)
{
    const qint32 wella = Add(Contact(QStringLiteral("Wella"), QStringLiteral("07700 900123")));
    const QList<clsKVContact> taken{
        Contact(QStringLiteral("W Rowe"), QStringLiteral("07700 900123"), QStringLiteral("w@example.org")),
        Contact(QStringLiteral("Jory"), QStringLiteral("07700 900124"))};
    ContactImport::Result result = Import(taken, Duplicates::Skip);
    EXPECT_EQ(result.Added, 1);
    EXPECT_EQ(result.Skipped, 1);
    EXPECT_EQ(Names(), QStringList({QStringLiteral("Jory"), QStringLiteral("Wella")}));
    EXPECT_TRUE(Directory.GetContact(wella)->Email.isEmpty());

    result = Import(taken, Duplicates::Update);
    EXPECT_EQ(result.Added, 0);
    EXPECT_EQ(result.Updated, 1);
    EXPECT_EQ(result.Skipped, 1);
    EXPECT_EQ(Directory.GetContact(wella)->Email, QStringLiteral("w@example.org"));
    EXPECT_EQ(Directory.GetContact(wella)->Name, QStringLiteral("Wella"));

    result = Import(taken, Duplicates::Add);
    EXPECT_EQ(result.Added, 2);
    EXPECT_EQ(Names().size(), 4);
}

TEST_F(ContactImportTest, TwoCardsOfOnePersonMeetInOneContact)
{
    const QList<clsKVContact> taken{
        Contact(QStringLiteral("Jory"), QStringLiteral("07700 900124")),
        Contact(QStringLiteral("Jory H"), QStringLiteral("+44 7700 900124"), QStringLiteral("jory@example.org"))};
    const ContactImport::Result result = Import(taken, Duplicates::Update);
    EXPECT_EQ(result.Added, 1);
    EXPECT_EQ(result.Updated, 1);
    ASSERT_EQ(Names(), QStringList(QStringLiteral("Jory")));
    EXPECT_EQ(Directory.Contacts().first()->Email, QStringLiteral("jory@example.org"));
}

TEST_F(ContactImportTest, MergingFillsWhatIsEmptyAndKeepsTheRestInOther)
{
    const clsKVContact known{3,
                             QStringLiteral("Wella"),
                             QStringLiteral("07700 900123"),
                             {},
                             QStringLiteral("w@example.org"),
                             QStringLiteral("w2@example.org"),
                             QStringLiteral("Choir")};
    const clsKVContact taken{0,
                             QStringLiteral("W Rowe"),
                             QStringLiteral("07700 900199"),
                             QStringLiteral("01736 555 019"),
                             QStringLiteral("W@example.org"),
                             QStringLiteral("w3@example.org"),
                             QStringLiteral("Choir\nTenor")};
    const clsKVContact merged = ContactImport::Merged(known, taken);
    EXPECT_EQ(merged.Reference, 3);
    EXPECT_EQ(merged.Name, QStringLiteral("Wella"));
    EXPECT_EQ(merged.Mobile, QStringLiteral("07700 900123"));
    EXPECT_EQ(merged.Telephone, QStringLiteral("01736 555 019"));
    EXPECT_EQ(merged.SecondEmail, QStringLiteral("w2@example.org"));
    EXPECT_EQ(merged.Other, QStringLiteral("Choir\n07700 900199\nw3@example.org\nTenor"));
    EXPECT_EQ(ContactImport::Merged(merged, taken), merged);
}

TEST_F(ContactImportTest, WhenOneContactCannotBeSavedNoneIs)
{
    const QList<clsKVContact> taken{Contact(QStringLiteral("Jory"), QStringLiteral("07700 900124")),
                                    Contact(QString(300, u'x'), QStringLiteral("07700 900125"))};
    EXPECT_THROW(Import(taken, Duplicates::Skip), dao::Error);
    EXPECT_TRUE(Names().isEmpty());
}

TEST_F(ContactImportTest, WhatSomebodyChangedSinceThePlanIsNotOverwritten)
{
    const qint32 wella = Add(Contact(QStringLiteral("Wella"), QStringLiteral("07700 900123")));
    const QList<ContactImport::Entry> plan = ContactImport::Plan(
        Directory, {Contact(QStringLiteral("Jory"), QStringLiteral("07700 900124")),
                    Contact(QStringLiteral("W"), QStringLiteral("07700 900123"), QStringLiteral("w@example.org"))});
    Add({wella, QStringLiteral("Wella Rowe"), QStringLiteral("07700 900123"), {}, {}, {}, {}});
    EXPECT_THROW(ContactImport::Run(Directory, plan, Duplicates::Update), dao::Error);
    EXPECT_EQ(Names(), QStringList(QStringLiteral("Wella Rowe")));
}
