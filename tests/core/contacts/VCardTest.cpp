// SPDX-License-Identifier: Apache-2.0
#include "contacts/VCard.h"

#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

namespace
{
VCard::Reading ReadFile(const char* name)
{
    QFile file(QStringLiteral(TOLVA_TEST_DATA "/vcard/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return VCard::Read(file.readAll());
}

/// The only contact of one card's lines.
clsKVContact ReadLines(const QByteArray& lines, const QByteArray& version = "3.0")
{
    const VCard::Reading reading =
        VCard::Read("BEGIN:VCARD\r\nVERSION:" + version + "\r\n" + lines + "\r\nEND:VCARD\r\n");
    EXPECT_TRUE(reading.Problems.isEmpty()) << reading.Problems.join(u'\n').toStdString();
    return reading.Contacts.value(0);
}

const QList<VCard::Version> Versions{VCard::Version::V2_1, VCard::Version::V3_0, VCard::Version::V4_0};
} // namespace

TEST(VCardTest, AnOldCardIsReadWithItsCharactersSoftBreaksAndAgents)
{
    const VCard::Reading reading = ReadFile("old.vcf");
    EXPECT_TRUE(reading.Problems.isEmpty());
    ASSERT_EQ(reading.Contacts.size(), 1);
    const clsKVContact& contact = reading.Contacts.first();
    EXPECT_EQ(contact.Name, QStringLiteral("Dr Zoë Penrôse"));
    EXPECT_EQ(contact.Mobile, QStringLiteral("07700 900123"));
    EXPECT_EQ(contact.Telephone, QStringLiteral("01736 555 019"));
    EXPECT_EQ(contact.Email, QStringLiteral("zoe@example.org"));
    EXPECT_TRUE(contact.SecondEmail.isEmpty());
    EXPECT_EQ(contact.Other,
              QStringLiteral("1 Quay; upper floor\nSt Ives\nCornwall\nTR26 1XX\n\n\nWork fax: 01632 960456\n"
                             "Sings in the choir.\nCalls after the news, never before."));
}

TEST(VCardTest, ACardOfTodayIsReadWithGroupsFoldsAndEscapes)
{
    const VCard::Reading reading = ReadFile("three.vcf");
    EXPECT_TRUE(reading.Problems.isEmpty());
    ASSERT_EQ(reading.Contacts.size(), 2);
    const clsKVContact& contact = reading.Contacts.first();
    EXPECT_EQ(contact.Name, QStringLiteral("Loveday Tregenza, MBE"));
    EXPECT_EQ(contact.Mobile, QStringLiteral("+44 7700 900124"));
    EXPECT_EQ(contact.Telephone, QStringLiteral("+44 1632 960001"));
    EXPECT_EQ(contact.Email, QStringLiteral("loveday@example.org"));
    EXPECT_EQ(contact.SecondEmail, QStringLiteral("lt@choir.example"));
    EXPECT_EQ(contact.Other,
              QStringLiteral("Mobile: +44 7700 900125\nE-mail: third@example.org\nOrganisation: Harbour Choir, Altos\n"
                             "Title: Secretary\nWeb page: https://choir.example/?a=1;b=2\nBirthday: 1961-05-03\n"
                             "Knows the words to every carol; asks for them in June, too.\n"
                             "Likes  folded lines and back\\slashes."));
    EXPECT_EQ(reading.Contacts.at(1).Name, QStringLiteral("Penwith Bakery"));
    EXPECT_EQ(reading.Contacts.at(1).Telephone, QStringLiteral("01736 555 020"));
}

TEST(VCardTest, ACardOfVersionFourIsReadWithItsAddressesAndPreferences)
{
    const VCard::Reading reading = ReadFile("four.vcf");
    EXPECT_TRUE(reading.Problems.isEmpty());
    ASSERT_EQ(reading.Contacts.size(), 1);
    const clsKVContact& contact = reading.Contacts.first();
    EXPECT_EQ(contact.Name, QStringLiteral("Jory Hocking"));
    EXPECT_EQ(contact.Mobile, QStringLiteral("07700 900126"));
    EXPECT_EQ(contact.Telephone, QStringLiteral("+44-1632-960125"));
    EXPECT_EQ(contact.Email, QStringLiteral("first@example.org"));
    EXPECT_EQ(contact.SecondEmail, QStringLiteral("second@example.org"));
    EXPECT_EQ(contact.Other, QStringLiteral("Home: +44-1632-960124\nBirthday: --0412\n🎶 “Radio” nights"));
}

TEST(VCardTest, CardsThatAreCutOffAreNamedAndTheWholeOnesRead)
{
    const VCard::Reading reading = ReadFile("cut-off.vcf");
    ASSERT_EQ(reading.Contacts.size(), 2);
    EXPECT_EQ(reading.Contacts.at(0).Name, QStringLiteral("Whole One"));
    EXPECT_EQ(reading.Contacts.at(1).Name, QStringLiteral("Whole Two"));
    EXPECT_EQ(reading.Problems, QStringList({QStringLiteral("Card 2, line 6, \"Lost Middle\": is cut off."),
                                             QStringLiteral("Card 4, line 14: has no name, number or address."),
                                             QStringLiteral("Card 5, line 18, \"Lost End\": is cut off.")}));
}

TEST(VCardTest, ACardCutAtAnyPlaceIsNeverReadByHalf)
{
    QFile file(QStringLiteral(TOLVA_TEST_DATA "/vcard/old.vcf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray octets = file.readAll();
    const clsKVContact whole = VCard::Read(octets).Contacts.value(0);
    for (qsizetype length = 0; length < octets.size() - 11; ++length) {
        const VCard::Reading reading = VCard::Read(octets.left(length));
        EXPECT_TRUE(reading.Contacts.isEmpty()) << length;
        EXPECT_EQ(reading.Problems.size(), 1) << length;
    }
    EXPECT_EQ(VCard::Read(octets + octets.left(40)).Contacts, QList<clsKVContact>{whole});
}

TEST(VCardTest, WhatHoldsNoCardSaysSo)
{
    const QStringList none{QStringLiteral("There is no business card in it.")};
    EXPECT_EQ(VCard::Read(QByteArray()).Problems, none);
    EXPECT_EQ(VCard::Read("Dear station,\r\nhello: there\r\n").Problems, none);
    EXPECT_EQ(VCard::Read("END:VCARD\r\nBEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n").Problems, none);
}

TEST(VCardTest, OtherCharacterSetsMarksAndLineEndsAreRead)
{
    EXPECT_EQ(ReadFile("latin1.vcf").Contacts.value(0).Name, QStringLiteral("Zoë Penrôse"));
    EXPECT_EQ(ReadFile("latin1.vcf").Contacts.value(0).Other, QStringLiteral("£5 - no"));
    EXPECT_EQ(ReadFile("marked.vcf").Contacts.value(0).Name, QStringLiteral("Zoë"));
    EXPECT_EQ(ReadFile("utf16.vcf").Contacts.value(0).Name, QStringLiteral("Zoë"));
    EXPECT_EQ(ReadFile("old-line-ends.vcf").Contacts.value(0).Name, QStringLiteral("Mac"));
}

TEST(VCardTest, TheNameIsMadeOfWhatComesNearest)
{
    EXPECT_EQ(ReadLines("N:Rowe;Wella;Ann;Dr;MBE").Name, QStringLiteral("Dr Wella Ann Rowe MBE"));
    EXPECT_EQ(ReadLines("FN:\r\nNICKNAME:Wel").Name, QStringLiteral("Wel"));
    EXPECT_EQ(ReadLines("EMAIL:wella@example.org").Name, QStringLiteral("wella@example.org"));
    EXPECT_EQ(ReadLines("TEL;TYPE=CELL:07700 900123").Name, QStringLiteral("07700 900123"));
}

TEST(VCardTest, WhatIsTooLongForADetailStandsInOther)
{
    const QByteArray name(300, 'n');
    const QByteArray number(300, '7');
    const clsKVContact contact =
        ReadLines("FN:" + name + "\r\nTEL;TYPE=CELL:" + number + "\r\nTEL;TYPE=CELL:07700 900123");
    EXPECT_EQ(contact.Name, QString::fromLatin1(name.left(255)));
    EXPECT_EQ(contact.Mobile, QStringLiteral("07700 900123"));
    EXPECT_EQ(contact.Other,
              QStringLiteral("Mobile: %1\nName: %2").arg(QString::fromLatin1(number), QString::fromLatin1(name)));
}

TEST(VCardTest, TheFirstPostalAddressIsThatOfALabelAndOthersAreLines)
{
    const clsKVContact contact =
        ReadLines("FN:Wella\r\nADR;TYPE=WORK,PREF:PO Box 1;;;St Ives;;;\r\nADR;TYPE=HOME:;;2 Quay;St Ives;;;UK");
    EXPECT_EQ(contact.Other, QStringLiteral("PO Box 1\nSt Ives\n\n\nHome address: 2 Quay, St Ives, UK"));
    EXPECT_EQ(ReadLines("FN:Wella\r\nADR:;;2 Quay;St Ives;;;").Other, QStringLiteral("2 Quay\nSt Ives"));
    EXPECT_EQ(ReadLines("FN:Wella\r\nADR:;;;;;;\r\nROLE:Baker").Other, QStringLiteral("Role: Baker"));
}

TEST(VCardTest, TheSameNumberOrAddressTwiceIsTakenOnce)
{
    const clsKVContact contact = ReadLines("FN:Wella\r\nTEL;TYPE=CELL:07700 900123\r\nTEL;TYPE=HOME:07700 900123\r\n"
                                           "EMAIL:wella@example.org\r\nEMAIL:Wella@Example.org");
    EXPECT_EQ(contact.Mobile, QStringLiteral("07700 900123"));
    EXPECT_TRUE(contact.Telephone.isEmpty());
    EXPECT_TRUE(contact.SecondEmail.isEmpty());
    EXPECT_TRUE(contact.Other.isEmpty());
}

TEST(VCardTest, ContactsComeBackFromEachVersionAsTheyWere)
{
    const QList<clsKVContact> contacts{
        {0, QStringLiteral("Zoë Penrôse"), QStringLiteral("07700 900123"), QStringLiteral("01736 555 019"),
         QStringLiteral("zoe@example.org"), QStringLiteral("second@example.org"),
         QStringLiteral("Two\nlines; with, signs: and \\ back\\nslashes =3D = and \"quotes\" 🎶")},
        {0, QStringLiteral("Tregenza, Loveday"), {}, {}, {}, {}, {}},
        {0, QStringLiteral("Cher"), {}, QStringLiteral("01736 555 020"), QStringLiteral("c@example.org"), {}, {}},
        {0, QStringLiteral("名前"), {}, {}, {}, {}, QString(5000, QChar(0x00E9)) + QStringLiteral(" end")},
        {0, QStringLiteral("BEGIN:VCARD"), {}, {}, {}, {}, QStringLiteral("END:VCARD\nFN:x\n BEGIN:VCARD")},
    };
    for (const VCard::Version version : Versions) {
        const VCard::Reading reading = VCard::Read(VCard::Write(contacts, version));
        EXPECT_TRUE(reading.Problems.isEmpty()) << reading.Problems.join(u'\n').toStdString();
        EXPECT_EQ(reading.Contacts, contacts) << static_cast<int>(version);
    }
}

TEST(VCardTest, NoWrittenLineIsTooLongOrSplitsACharacter)
{
    const clsKVContact contact{0, QString(200, QChar(0x00E9)), {}, {}, {}, {}, QString(300, QChar(0x540D))};
    for (const VCard::Version version : Versions) {
        for (const QByteArray& line : VCard::Write({contact}, version).split('\n')) {
            EXPECT_LE(line.size(), 76) << line.toStdString();
            EXPECT_EQ(QString::fromUtf8(line).toUtf8(), line);
        }
    }
}

TEST(VCardTest, TheWrittenCardSaysWhichVersionItIs)
{
    const clsKVContact contact{0,  QStringLiteral("Wella Rowe"),    QStringLiteral("07700 900123"),
                               {}, QStringLiteral("w@example.org"), QStringLiteral("w2@example.org"),
                               {}};
    EXPECT_EQ(
        VCard::Write({contact}, VCard::Version::V3_0),
        QByteArray("BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Wella Rowe\r\nN:Rowe;Wella;;;\r\nTEL;TYPE=CELL:07700 900123\r\n"
                   "EMAIL;TYPE=INTERNET,PREF:w@example.org\r\nEMAIL;TYPE=INTERNET:w2@example.org\r\nEND:VCARD\r\n"));
    EXPECT_TRUE(VCard::Write({contact}, VCard::Version::V2_1).contains("VERSION:2.1\r\n"));
    EXPECT_TRUE(VCard::Write({contact}, VCard::Version::V2_1).contains("TEL;CELL:07700 900123\r\n"));
    EXPECT_TRUE(VCard::Write({contact}, VCard::Version::V4_0).contains("EMAIL;PREF=1:w@example.org\r\n"));
}

TEST(VCardTest, AFileOfTenMegabytesIsReadInAMoment)
{
    QByteArray octets;
    int cards = 0;
    for (; octets.size() < 10 * 1024 * 1024; ++cards) {
        octets += "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Listener " + QByteArray::number(cards) +
                  "\r\nTEL;TYPE=CELL:07700 900123\r\nPHOTO;ENCODING=b:" + QByteArray(70, 'A');
        for (int i = 0; i < 20; ++i)
            octets += "\r\n " + QByteArray(74, 'B');
        octets += "\r\nEND:VCARD\r\n";
    }
    QElapsedTimer timer;
    timer.start();
    const VCard::Reading reading = VCard::Read(octets);
    EXPECT_EQ(reading.Contacts.size(), cards);
    EXPECT_TRUE(reading.Problems.isEmpty());
    // Far above what it takes, and far below what anything but a linear reading would.
    EXPECT_LT(timer.elapsed(), 10'000);
}

TEST(VCardTest, OneEndlessLineIsReadInAMoment)
{
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(VCard::Read(QByteArray(10 * 1024 * 1024, ';')).Contacts.isEmpty());
    const QByteArray quotes = "BEGIN:VCARD\r\nFN" + QByteArray(5 * 1024 * 1024, '"') + ":x\r\n" +
                              QByteArray(1024 * 1024, '=') + "\r\nEND:VCARD\r\n";
    EXPECT_LE(VCard::Read(quotes).Contacts.size(), 1);
    EXPECT_LT(timer.elapsed(), 10'000);
}
