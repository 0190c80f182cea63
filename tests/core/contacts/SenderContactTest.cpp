// SPDX-License-Identifier: Apache-2.0
#include "contacts/SenderContact.h"

#include "platform/directory/TemporaryDirectory.h"

namespace
{
class SenderContactTest : public TemporaryDirectory
{
protected:
    qint32 Add(const QString& name, const QString& mobile, const QString& telephone = {}, const QString& email = {},
               const QString& second = {}, const QString& other = {})
    {
        clsKVContact contact{0, name, mobile, telephone, email, second, other};
        Directory.SaveContact(contact);
        return contact.Reference;
    }
    static cMessage& From(cMessage& message, const QString& from, enMsgType type = emtEmail)
    {
        message.SetMessageType(type);
        message.CDOMessage()->SetFrom(from);
        return message;
    }
    QString Finds(const QString& from, enMsgType type = emtEmail)
    {
        cMessage message;
        const clsKVContactPtr found = SenderContact::Find(Directory, From(message, from, type));
        return found ? found->Name : QStringLiteral("nobody");
    }
    static clsKVContact Made(const QString& from, enMsgType type = emtEmail)
    {
        cMessage message;
        return SenderContact::FromMessage(From(message, from, type));
    }
};
} // namespace

TEST_F(SenderContactTest, AnEMailIsFoundByEitherAddressWhateverItsCase)
{
    Add(QStringLiteral("Loveday"), {}, {}, QStringLiteral("Loveday@Example.org"), QStringLiteral("lt@studio.example"));
    EXPECT_EQ(Finds(QStringLiteral("\"Loveday Tregenza\" <loveday@EXAMPLE.ORG>")), QStringLiteral("Loveday"));
    EXPECT_EQ(Finds(QStringLiteral("LT@studio.example")), QStringLiteral("Loveday"));
    EXPECT_EQ(Finds(QStringLiteral("veday@example.org")), QStringLiteral("nobody"));
    EXPECT_EQ(Finds(QString()), QStringLiteral("nobody"));
}

TEST_F(SenderContactTest, AnAddressMeansItselfWhateverItsCharacters)
{
    Add(QStringLiteral("Loveday"), {}, {}, QStringLiteral("loveday@example.org"));
    Add(QStringLiteral("Quoted"), {}, {}, QStringLiteral("o'hara*[1]@example.org"));
    EXPECT_EQ(Finds(QStringLiteral("*@example.org")), QStringLiteral("nobody"));
    EXPECT_EQ(Finds(QStringLiteral("o'hara*[1]@example.org")), QStringLiteral("Quoted"));
}

TEST_F(SenderContactTest, ANumberIsFoundInWhateverFormItIsWritten)
{
    Add(QStringLiteral("Mobile"), QStringLiteral("+44 7700 900123"));
    Add(QStringLiteral("Telephone"), {}, QStringLiteral("(01632) 960-199 "));
    Add(QStringLiteral("Other"), {}, {}, {}, {},
        QStringLiteral("Works nights\nWork: 0044 20 7946 0018\nBirthday 3 May"));
    EXPECT_EQ(Finds(QStringLiteral("07700900123"), emtSMS), QStringLiteral("Mobile"));
    EXPECT_EQ(Finds(QStringLiteral("00447700900123"), emtSMS), QStringLiteral("Mobile"));
    EXPECT_EQ(Finds(QStringLiteral("Loveday <+447700900123>"), emtSMS), QStringLiteral("Mobile"));
    EXPECT_EQ(Finds(QStringLiteral("+441632960199"), emtSMS), QStringLiteral("Telephone"));
    EXPECT_EQ(Finds(QStringLiteral("020 7946 0018"), emtSMS), QStringLiteral("Other"));
    EXPECT_EQ(Finds(QStringLiteral("07700900124"), emtSMS), QStringLiteral("nobody"));
    EXPECT_EQ(Finds(QStringLiteral("900123"), emtSMS), QStringLiteral("nobody"));
}

TEST_F(SenderContactTest, AShortCodeOrASendersNameIsFoundAsItStands)
{
    Add(QStringLiteral("Traffic news"), QStringLiteral("82211"));
    Add(QStringLiteral("Harbour"), QStringLiteral("Harbour"));
    EXPECT_EQ(Finds(QStringLiteral("82211"), emtSMS), QStringLiteral("Traffic news"));
    EXPECT_EQ(Finds(QStringLiteral("HARBOUR"), emtSMS), QStringLiteral("Harbour"));
    EXPECT_EQ(Finds(QStringLiteral("8221"), emtSMS), QStringLiteral("nobody"));
    EXPECT_EQ(Finds(QString(), emtSMS), QStringLiteral("nobody"));
}

TEST_F(SenderContactTest, OfAHouseholdTheFirstByNameIsFound)
{
    Add(QStringLiteral("Wella"), QStringLiteral("07700 900123"));
    Add(QStringLiteral("Demelza"), QStringLiteral("07700 900123"));
    EXPECT_EQ(Finds(QStringLiteral("+447700900123"), emtSMS), QStringLiteral("Demelza"));
}

TEST_F(SenderContactTest, ANewContactTakesNameAndAddressFromTheHeader)
{
    const clsKVContact contact = Made(QStringLiteral("\"Tregenza, Loveday\" <Loveday@example.org>"));
    EXPECT_EQ(contact.Reference, 0);
    EXPECT_EQ(contact.Name, QStringLiteral("Tregenza, Loveday"));
    EXPECT_EQ(contact.Email, QStringLiteral("Loveday@example.org"));
    EXPECT_TRUE(contact.Mobile.isEmpty());
    EXPECT_TRUE(Directory.Contacts().isEmpty());
}

TEST_F(SenderContactTest, WithoutANameTheAddressGivesOne)
{
    EXPECT_EQ(Made(QStringLiteral("loveday.tregenza+radio@example.org")).Name, QStringLiteral("Loveday Tregenza"));
    EXPECT_EQ(Made(QStringLiteral("<mary-jane_rowe@example.org>")).Name, QStringLiteral("Mary-Jane Rowe"));
    EXPECT_EQ(Made(QStringLiteral("\"lt@example.org\" <lt@example.org>")).Name, QStringLiteral("Lt"));
    EXPECT_EQ(Made(QStringLiteral("lt@example.org (Loveday)")).Name, QStringLiteral("Loveday"));
}

TEST_F(SenderContactTest, OfSeveralWritersTheFirstCounts)
{
    const clsKVContact contact = Made(QStringLiteral("Wella <wella@example.org>, Demelza <d@example.org>"));
    EXPECT_EQ(contact.Name, QStringLiteral("Wella"));
    EXPECT_EQ(contact.Email, QStringLiteral("wella@example.org"));
}

TEST_F(SenderContactTest, ATextMessageGivesItsNumberAsItCame)
{
    const clsKVContact contact = Made(QStringLiteral("+44 7700 900123"), emtSMS);
    EXPECT_EQ(contact.Mobile, QStringLiteral("+44 7700 900123"));
    EXPECT_TRUE(contact.Name.isEmpty());
    EXPECT_TRUE(contact.Email.isEmpty());
    EXPECT_EQ(Made(QStringLiteral("Harbour"), emtSMS).Name, QStringLiteral("Harbour"));
}

TEST_F(SenderContactTest, AMessageWithoutASenderGivesAnEmptyContact)
{
    EXPECT_EQ(Made(QString()), clsKVContact());
    EXPECT_EQ(Made(QString(), emtSMS), clsKVContact());
}
