// SPDX-License-Identifier: Apache-2.0

// tolva contacts.

#include "CommandLineTest.h"

#include <QJsonDocument>

class ContactsTest : public CommandLineTest
{
protected:
    Outcome Contacts(const QStringList& words, const QByteArray& input = {}) const
    {
        return OnStation("contacts", words, input);
    }
    /// The new contact's number.
    QString Add(const QString& name, const QStringList& details = {}) const
    {
        return QString::fromUtf8(Expect("contacts", QStringList{QStringLiteral("add"), name} + details)).trimmed();
    }
    QJsonObject Shown(const QString& number) const
    {
        return QJsonDocument::fromJson(Expect("contacts", {QStringLiteral("show"), number, QStringLiteral("--json")}))
            .object();
    }
    /// The list with its columns one blank apart, a line each.
    QStringList Listed(const QStringList& words = {}) const
    {
        QStringList lines;
        for (const QByteArray& line : Contacts(words).Lines())
            lines.append(QString::fromUtf8(line).section(u' ', 1).simplified());
        return lines;
    }
    static QByteArray Card(const QByteArray& name, const QByteArray& mobile)
    {
        return "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:" + name + "\r\nTEL;TYPE=CELL:" + mobile + "\r\nEND:VCARD\r\n";
    }
};

TEST_F(ContactsTest, ANewStationHasNoContacts)
{
    EXPECT_EQ(Expect("contacts"), "");
    EXPECT_EQ(Expect("contacts", {QStringLiteral("list"), QStringLiteral("--json")}), "");
    EXPECT_EQ(Expect("contacts", {QStringLiteral("export")}), "");
}

TEST_F(ContactsTest, AContactIsAddedShownEditedAndDeleted)
{
    const QString number =
        Add(QStringLiteral(" Zoë  Penrose "), {QStringLiteral("--mobile"), QStringLiteral("07700 900123"),
                                               QStringLiteral("--other"), QStringLiteral("Sings\nloudly")});
    EXPECT_EQ(Expect("contacts", {QStringLiteral("show"), number}),
              "Name: Zoë Penrose\nMobile: 07700 900123\nOther: Sings\nloudly\n");
    EXPECT_EQ(Shown(number).value(QStringLiteral("reference")).toInt(), number.toInt());
    EXPECT_EQ(Expect("contacts", {QStringLiteral("edit"), number, QStringLiteral("--email"),
                                  QStringLiteral("zoe@example.org"), QStringLiteral("--mobile"), QString()}),
              "");
    const QJsonObject shown = Shown(number);
    EXPECT_EQ(shown.value(QStringLiteral("name")).toString(), QStringLiteral("Zoë Penrose"));
    EXPECT_EQ(shown.value(QStringLiteral("mobile")).toString(), QString());
    EXPECT_EQ(shown.value(QStringLiteral("email")).toString(), QStringLiteral("zoe@example.org"));
    EXPECT_EQ(shown.value(QStringLiteral("other")).toString(), QStringLiteral("Sings\nloudly"));
    EXPECT_EQ(Expect("contacts", {QStringLiteral("delete"), number}), "");
    EXPECT_EQ(Contacts({QStringLiteral("show"), number}).Code, 65);
}

TEST_F(ContactsTest, TheListIsByNameAndFindsWhateverCaseAccentsAndFormOfNumbers)
{
    Add(QStringLiteral("Zoë Penrose"), {QStringLiteral("--mobile"), QStringLiteral("07700 900123")});
    Add(QStringLiteral("Jory Hocking"), {QStringLiteral("--email"), QStringLiteral("jory@example.org")});
    EXPECT_EQ(Listed(), QStringList({QStringLiteral("Jory Hocking jory@example.org"),
                                     QStringLiteral("Zoë Penrose 07700 900123")}));
    EXPECT_EQ(Listed({QStringLiteral("list"), QStringLiteral("ZOE pen")}),
              QStringList(QStringLiteral("Zoë Penrose 07700 900123")));
    EXPECT_EQ(Listed({QStringLiteral("list"), QStringLiteral("+447700900123")}),
              QStringList(QStringLiteral("Zoë Penrose 07700 900123")));
    EXPECT_EQ(Listed({QStringLiteral("list"), QStringLiteral("*")}), QStringList());
}

TEST_F(ContactsTest, CardsAreImportedAndExportedAgain)
{
    const QString file =
        Write(QStringLiteral("cards.vcf"), Card("Zoë Penrose", "07700 900123") + Card("Jory", "07700 900124"));
    EXPECT_EQ(Expect("contacts", {QStringLiteral("import"), file}), "2 added, 0 updated, 0 skipped.\n");
    const QByteArray exported = Expect("contacts", {QStringLiteral("export")});
    EXPECT_TRUE(exported.contains("FN:Zoë Penrose\r\n")) << exported.constData();
    const QString target = Path(QStringLiteral("out.vcf"));
    EXPECT_EQ(Expect("contacts", {QStringLiteral("export"), QStringLiteral("-o"), target}), "");
    EXPECT_EQ(Read(target), exported);
    EXPECT_EQ(Contacts({QStringLiteral("export"), QStringLiteral("--output"), target}).Code, 73);
    Expect("contacts", {QStringLiteral("export"), QStringLiteral("--output"), target, QStringLiteral("--force"),
                        QStringLiteral("--vcard"), QStringLiteral("4.0")});
    EXPECT_TRUE(Read(target).contains("VERSION:4.0"));
}

TEST_F(ContactsTest, KnownContactsAreToldAndSkippedUpdatedOrAdded)
{
    const QString number = Add(QStringLiteral("Wella"), {QStringLiteral("--mobile"), QStringLiteral("07700 900123")});
    const QByteArray card =
        "BEGIN:VCARD\nVERSION:3.0\nFN:W Rowe\nTEL;TYPE=CELL:+447700900123\nEMAIL:w@example.org\nEND:VCARD\n";
    EXPECT_EQ(Expect("contacts", {QStringLiteral("import"), QStringLiteral("-")}, card),
              "W Rowe: Wella has +447700900123 already.\n0 added, 0 updated, 1 skipped.\n");
    EXPECT_EQ(Expect("contacts",
                     {QStringLiteral("import"), QStringLiteral("-"), QStringLiteral("--duplicates"),
                      QStringLiteral("update"), QStringLiteral("--json")},
                     card),
              "{\"added\":0,\"failed\":0,\"skipped\":0,\"updated\":1}\n");
    EXPECT_EQ(Shown(number).value(QStringLiteral("email")).toString(), QStringLiteral("w@example.org"));
    Expect("contacts",
           {QStringLiteral("import"), QStringLiteral("-"), QStringLiteral("--duplicates"), QStringLiteral("add")},
           card);
    EXPECT_EQ(Listed().size(), 2);
}

TEST_F(ContactsTest, CardsThatAreCutOffAreNamedAndTheWholeOnesTakenOver)
{
    const Outcome outcome = Contacts({QStringLiteral("import"), QStringLiteral("-")},
                                     Card("Jory", "07700 900124") + Card("Wella", "07700 900125").left(50));
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_EQ(outcome.Output, "1 added, 0 updated, 0 skipped.\n");
    EXPECT_EQ(outcome.Problems, "tolva: Card 2, line 6, \"Wella\": is cut off.\n");
    EXPECT_EQ(Listed(), QStringList(QStringLiteral("Jory 07700 900124")));
}

TEST_F(ContactsTest, WhatIsNoFormOfTheCommandIsRefusedBeforeAnythingIsOpened)
{
    EXPECT_EQ(Contacts({QStringLiteral("show")}).Code, 64);
    EXPECT_EQ(Contacts({QStringLiteral("show"), QStringLiteral("Zoë")}).Code, 64);
    EXPECT_EQ(Contacts({QStringLiteral("rename"), QStringLiteral("1")}).Code, 64);
    EXPECT_EQ(Contacts({QStringLiteral("add"), QStringLiteral(" ")}).Code, 64);
    EXPECT_EQ(Contacts({QStringLiteral("add"), QString(256, u'x')}).Code, 64);
    EXPECT_EQ(Contacts({QStringLiteral("export"), QStringLiteral("--vcard"), QStringLiteral("5")}).Code, 64);
    EXPECT_EQ(Contacts({QStringLiteral("import"), QStringLiteral("-"), QStringLiteral("--duplicates"),
                        QStringLiteral("maybe")})
                  .Code,
              64);
    EXPECT_EQ(Contacts({QStringLiteral("import"), Path(QStringLiteral("absent.vcf"))}).Code, 66);
    EXPECT_EQ(
        Contacts({QStringLiteral("edit"), QStringLiteral("4711"), QStringLiteral("--name"), QStringLiteral("x")}).Code,
        65);
    EXPECT_EQ(Listed(), QStringList());
}
