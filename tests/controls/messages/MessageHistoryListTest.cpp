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
