// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactSearch.h"

#include "contacts/ContactOrder.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace
{
QList<clsKVContactPtr> People()
{
    const QList<clsKVContact> people{
        {1, QStringLiteral("Ann Penrose"), QStringLiteral("+44 7700 900123"), {}, {}, {}, {}},
        {2,
         QStringLiteral("Zoë Łaska"),
         {},
         QStringLiteral("01632 960 123"),
         QStringLiteral("zoe@penrose.example"),
         {},
         {}},
        {3,
         QStringLiteral("Wella"),
         {},
         {},
         {},
         QStringLiteral("w_1@example.org"),
         QStringLiteral("Bakery: Straße 5 (100%)\nFriend of Ann")},
    };
    QList<clsKVContactPtr> contacts;
    for (const clsKVContact& contact : people)
        contacts.append(std::make_shared<clsKVContact>(contact));
    return contacts;
}

QList<qint32> Found(const QString& text, int limit = -1)
{
    QList<qint32> references;
    for (const clsKVContactPtr& contact : ContactSearch(People()).Find(text, limit))
        references.append(contact->Reference);
    return references;
}
} // namespace

TEST(ContactSearchTest, NothingTypedFindsEverybodyInTheirOrder)
{
    EXPECT_EQ(Found(QString()), QList<qint32>({1, 2, 3}));
    EXPECT_EQ(Found(QStringLiteral("  ")), QList<qint32>({1, 2, 3}));
    EXPECT_EQ(Found(QString(), 2), QList<qint32>({1, 2}));
    EXPECT_EQ(Found(QString(), 0), QList<qint32>());
}

TEST(ContactSearchTest, CaseAndAccentsMakeNoDifference)
{
    EXPECT_EQ(Found(QStringLiteral("ZOE laska")), QList<qint32>({2}));
    EXPECT_EQ(Found(QStringLiteral("strasse")), QList<qint32>({3}));
    EXPECT_EQ(Found(QStringLiteral("Wéllà")), QList<qint32>({3}));
}

TEST(ContactSearchTest, CurlyMarksAndDashesAreThoseOfTheKeyboard)
{
    const auto find = [](const char16_t* name, const char16_t* typed) {
        const auto contact = std::make_shared<clsKVContact>();
        contact->Name = QString::fromUtf16(name);
        return ContactSearch({contact}).Find(QString::fromUtf16(typed)).size() == 1;
    };
    EXPECT_TRUE(find(u"Zachary O\u2019Neill", u"o'neill"));
    EXPECT_TRUE(find(u"Zachary O'Neill", u"O\u2019NEILL"));
    EXPECT_TRUE(find(u"Anne\u2011Marie", u"anne-marie"));
    EXPECT_TRUE(find(u"Anne-Marie", u"anne\u2013marie"));
    EXPECT_TRUE(find(u"\u201CBud\u201D Rowe", u"\"bud\""));
    EXPECT_FALSE(find(u"ONeill", u"o'neill"));
}

TEST(ContactSearchTest, AccentsAreIgnoredInEachDetailAndHoweverTheyAreStored)
{
    const auto contact = std::make_shared<clsKVContact>();
    // A letter and its accent as two characters, as some telephones store them.
    contact->Name = QStringLiteral("Rene\u0301e \u0141ukasz\u00D8");
    contact->Other = QStringLiteral("Caf\u00E9 de l\u2019\u00CEle, \u0130zmir");
    const ContactSearch search({contact});
    for (const char16_t* typed : {u"renee", u"Ren\u00E9e", u"RENE\u0301E", u"lukaszo", u"cafe", u"caf\u00E9", u"l'ile",
                                  u"izmir", u"ren\u00E8e"})
        EXPECT_EQ(search.Find(QString::fromUtf16(typed)).size(), 1) << QString::fromUtf16(typed).toStdString();
    EXPECT_TRUE(search.Find(QStringLiteral("rena")).isEmpty());
    EXPECT_EQ(search.Contacts().first()->Name, contact->Name);
}

TEST(ContactSearchTest, TheOrderByNameIsThatOfTheAlphabetWhateverTheAccents)
{
    QList<clsKVContactPtr> contacts;
    const QStringList names{
        QStringLiteral("Zoe"),        QStringLiteral("\u00C9lise"), QStringLiteral("emma"), QStringLiteral("Eve"),
        QStringLiteral("\u0141ucja"), QStringLiteral("Lucy"),       QStringLiteral("Emma"), QString()};
    for (const QString& name : names) {
        const auto contact = std::make_shared<clsKVContact>();
        contact->Name = name;
        contact->Reference = static_cast<qint32>(contacts.size()) + 1;
        contacts.append(contact);
    }
    QList<qint32> order;
    for (const clsKVContactPtr& contact : ContactOrder::ByName(contacts))
        order.append(contact->Reference);
    EXPECT_EQ(order, QList<qint32>({8, 2, 3, 7, 4, 5, 6, 1}));
    EXPECT_TRUE(ContactOrder::ByName({}).isEmpty());
}

TEST(ContactSearchTest, EachWordMayStandAnywhereAndNamesThatBeginWithTheFirstLead)
{
    EXPECT_EQ(Found(QStringLiteral("pen")), QList<qint32>({1, 2}));
    EXPECT_EQ(Found(QStringLiteral("ann")), QList<qint32>({1, 3}));
    EXPECT_EQ(Found(QStringLiteral("ann bakery")), QList<qint32>({3}));
    EXPECT_EQ(Found(QStringLiteral("nrose ann")), QList<qint32>({1}));
    EXPECT_EQ(Found(QStringLiteral("ann nobody")), QList<qint32>());
    EXPECT_EQ(Found(QStringLiteral("ann"), 1), QList<qint32>({1}));
}

TEST(ContactSearchTest, ANumberIsFoundInWhateverFormItIsTyped)
{
    for (const char16_t* number :
         {u"07700900123", u"07700 900 123", u"+447700900123", u"0044 7700 900123", u"900123", u"900 123"})
        EXPECT_TRUE(Found(QString::fromUtf16(number)).contains(1)) << QString::fromUtf16(number).toStdString();
    EXPECT_EQ(Found(QStringLiteral("(01632) 960-123")), QList<qint32>({2}));
    EXPECT_EQ(Found(QStringLiteral("07700900124")), QList<qint32>());
}

TEST(ContactSearchTest, AllCharactersMeanThemselves)
{
    EXPECT_EQ(Found(QStringLiteral("w_1")), QList<qint32>({3}));
    EXPECT_EQ(Found(QStringLiteral("100%")), QList<qint32>({3}));
    for (const char16_t* text : {u"*", u"?", u"[a]", u"\"", u"w%1", u"#"})
        EXPECT_EQ(Found(QString::fromUtf16(text)), QList<qint32>()) << QString::fromUtf16(text).toStdString();
}

TEST(ContactSearchTest, TenThousandAreSearchedAsFastAsSomebodyTypes)
{
    QList<clsKVContactPtr> contacts;
    for (int i = 0; i < 10000; ++i) {
        contacts.append(
            std::make_shared<clsKVContact>(clsKVContact{i + 1,
                                                        QStringLiteral("Listener %1").arg(i),
                                                        QStringLiteral("07700 9%1").arg(i, 5, 10, QLatin1Char('0')),
                                                        {},
                                                        QStringLiteral("listener%1@example.org").arg(i),
                                                        {},
                                                        QString(500, u'x')}));
    }
    const ContactSearch search(contacts);
    QElapsedTimer timer;
    timer.start();
    constexpr int keys = 20;
    for (int i = 0; i < keys; ++i)
        EXPECT_EQ(search.Find(QStringLiteral("listener 9999")).size(), 1);
    // Far above what it takes on any machine, and what nobody would call waiting.
    EXPECT_LT(timer.elapsed() / keys, 100);
}
