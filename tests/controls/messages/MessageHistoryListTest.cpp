// SPDX-License-Identifier: Apache-2.0

// A contact's messages in the real list.

#include "core/support/StationTest.h"
#include "platform/widgets/ListView.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QtTest>

namespace
{
class MessageHistoryListTest : public StationTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        List.AddColumn(QStringLiteral("Subject"), 2000, Qt::AlignLeft, QStringLiteral("Subject"));
        List.AddColumn(QStringLiteral("Folder"), 2000, Qt::AlignLeft, QStringLiteral("Folder"));
        List.AddColumn(QStringLiteral("Sent"), 2000, Qt::AlignLeft, QStringLiteral("Sent"));
        List.resize(600, 300);
    }
    void Save(const QString& subject, Date sent)
    {
        const cMessagePtr message = MakeMessage(subject);
        message->SetCategory(tmcInbox);
        message->SetSent(sent);
        ASSERT_TRUE(Station->SaveMessage(message));
    }
    void Fill() { Station->FillMessagesListView(&List, QStringLiteral("ann@example.com"), {}); }
    QStringList Subjects() const
    {
        QStringList subjects;
        for (const QString& key : List.Keys())
            subjects.append(List.SubItem(key, 0));
        return subjects;
    }
    void ClickHeading(int column)
    {
        QTest::mouseClick(List.header()->viewport(), Qt::LeftButton, {},
                          QPoint(List.header()->sectionViewportPosition(column) + 20, List.header()->height() / 2));
    }

    ListView List;
};
} // namespace

TEST_F(MessageHistoryListTest, TheListShowsTheNewestFirstAndSortsTheDatesAsDates)
{
    const QAbstractItemModelTester tester(List.model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    // By their text, with the day of the week in front, they would stand otherwise.
    Save(QStringLiteral("Monday in July"), Date(2026, 7, 6, 9));
    Save(QStringLiteral("Friday in August"), Date(2026, 8, 7, 9));
    Save(QStringLiteral("Wednesday in June"), Date(2026, 6, 3, 9));
    Save(QStringLiteral("never"), Date());
    List.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&List));
    Fill();
    const QStringList newestFirst{QStringLiteral("Friday in August"), QStringLiteral("Monday in July"),
                                  QStringLiteral("Wednesday in June"), QStringLiteral("never")};
    EXPECT_EQ(Subjects(), newestFirst);
    EXPECT_EQ(List.SubItem(List.Keys().first(), 1), QStringLiteral("Inbox"));
    EXPECT_EQ(List.SubItem(List.Keys().first(), 2), Date(2026, 8, 7, 9).Format(QStringLiteral("ddd ddddd hh:nn")));
    EXPECT_EQ(List.SubItem(List.Keys().last(), 2), QString());
    ClickHeading(2);
    EXPECT_EQ(Subjects(), QStringList({QStringLiteral("Wednesday in June"), QStringLiteral("Monday in July"),
                                       QStringLiteral("Friday in August"), QStringLiteral("never")}));
    Fill();
    EXPECT_EQ(Subjects(), newestFirst);
    List.close();
}

TEST_F(MessageHistoryListTest, EntriesAreKnownByTheirMessages)
{
    const qint32 reference = SaveNew(QStringLiteral("Hello"));
    List.AddItem(QStringLiteral("old"), {QStringLiteral("old")});
    Fill();
    EXPECT_EQ(List.Keys(), QStringList(QStringLiteral("m%1").arg(reference)));
}

TEST_F(MessageHistoryListTest, FiveHundredAddressesAndNumbersAreLookedForTogether)
{
    QStringList addresses;
    QStringList numbers;
    for (int i = 0; i < 500; ++i) {
        addresses.append(QStringLiteral("listener%1@example.org").arg(i));
        numbers.append(QStringLiteral("07700 9%1").arg(i, 5, 10, QLatin1Char('0')));
    }
    const qint32 reference = SaveNew(QStringLiteral("Hello"));
    const cMessagePtr other = MakeMessage(QStringLiteral("Another"), QStringLiteral("bob@example.org"));
    ASSERT_TRUE(Station->SaveMessage(other));
    addresses[499] = QStringLiteral("ann@example.com");
    Station->FillMessagesListView(&List, addresses.join(u'|'), numbers.join(u'|'));
    EXPECT_EQ(List.Keys(), QStringList(QStringLiteral("m%1").arg(reference)));
}

TEST_F(MessageHistoryListTest, WildcardsInAnAddressMeanThemselves)
{
    SaveNew(QStringLiteral("Hello"));
    for (const char16_t* address : {u"*", u"?nn@example.com", u"[a]nn@example.com", u"%", u"_nn@example.com", u"ann#",
                                    u"ann@example.com' OR '1'='1", u"x\" OR \"1\"=\"1"}) {
        Station->FillMessagesListView(&List, QString::fromUtf16(address), {});
        EXPECT_EQ(List.ItemCount(), 0) << QString::fromUtf16(address).toStdString();
    }
}
