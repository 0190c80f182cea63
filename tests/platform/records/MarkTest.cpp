// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"
#include "platform/records/RowMark.h"

using namespace dao;

namespace
{
const QString AllRows = QStringLiteral("SELECT [Reference], [Subject], [Category], [Sent], [Done], [Message] "
                                       "FROM [Messages] ORDER BY [Reference]");

class Mark : public RecordsFixture
{
protected:
    Mark()
    {
        MakeMessages();
        const auto messages = OpenMessages();
        for (int i = 1; i <= 5; ++i) {
            messages->AddNew();
            if (i != 3)
                messages->SetCollect(QStringLiteral("Subject"), QStringLiteral("Ünïcode %1").arg(i));
            messages->SetCollect(QStringLiteral("Category"), i);
            messages->SetCollect(QStringLiteral("Sent"), 46000.0 + 0.5 * i);
            messages->SetCollect(QStringLiteral("Message"), QStringLiteral("Body"));
            messages->Update();
        }
    }

    quint64 MarkOfAll() { return Db().MarkOf(AllRows); }
};

TEST_P(Mark, IsAnotherWhenAnythingOfARowIs)
{
    QList<quint64> marks = {MarkOfAll()};
    for (const char* change :
         {"UPDATE [Messages] SET [Subject]='x' WHERE [Reference]=2",
          "UPDATE [Messages] SET [Subject]=NULL WHERE "
          "[Reference]=2",
          "UPDATE [Messages] SET [Category]=9 WHERE [Reference]=4",
          "UPDATE [Messages] SET [Category]=6-[Category] "
          "WHERE [Reference] IN (1,5)",
          "UPDATE [Messages] SET [Sent]=46001.25 WHERE [Reference]=1", "DELETE FROM [Messages] WHERE [Reference]=3",
          "DELETE FROM [Messages] WHERE [Reference]=5", "DELETE FROM [Messages]"}) {
        ASSERT_GE(Db().Execute(QString::fromLatin1(change)), 1) << change;
        EXPECT_FALSE(marks.contains(MarkOfAll())) << change;
        marks.append(MarkOfAll());
    }
}

TEST_P(Mark, IsTheSameForTheSameRowsInAnotherConnectionAndLeavesMemosAlone)
{
    const quint64 mark = MarkOfAll();
    EXPECT_EQ(OpenAgain()->MarkOf(AllRows), mark);
    ASSERT_EQ(Db().Execute(QStringLiteral("UPDATE [Messages] SET [Message]='Another' WHERE [Reference]=1")), 1);
    EXPECT_EQ(MarkOfAll(), mark);
    Reopen();
    EXPECT_EQ(MarkOfAll(), mark);
}

/// Who has read the rows need not ask for their mark.
TEST_P(Mark, IsMadeOfWhatTheFieldsSay)
{
    const auto rows = Db().OpenRecordset(AllRows, dbOpenSnapshot);
    RowMark mark;
    for (; !rows->AtEOF(); rows->MoveNext()) {
        RowMark row;
        for (const char16_t* field : {u"Reference", u"Subject", u"Category", u"Sent", u"Done"})
            row.Add((*rows)[QString::fromUtf16(field)].Hash());
        row.Add(0); // the memo
        mark.Add(row.Number());
    }
    EXPECT_EQ(MarkOfAll(), mark.Number());
}

TEST_P(Mark, GoesByTheOrderAndTakesSums)
{
    const QString rows = QStringLiteral("SELECT [Subject] FROM [Messages] ORDER BY [Reference]");
    EXPECT_NE(Db().MarkOf(rows), Db().MarkOf(rows + QStringLiteral(" DESC")));
    const QString sum = QStringLiteral("SELECT COUNT(*) AS [Rows], MAX([Category]) AS [Last] FROM [Messages]");
    const quint64 mark = Db().MarkOf(sum);
    ASSERT_EQ(Db().Execute(QStringLiteral("DELETE FROM [Messages] WHERE [Reference]=1")), 1);
    EXPECT_NE(Db().MarkOf(sum), mark);
    EXPECT_EQ(ErrorNumberOf([&] { Db().MarkOf(QStringLiteral("SELECT [Nothing] FROM [Messages]")); }),
              errTooFewParameters);
}

INSTANTIATE_FOR_ENGINES(Mark);
} // namespace
