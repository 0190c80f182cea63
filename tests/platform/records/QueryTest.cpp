// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

using namespace dao;

namespace
{

class Query : public RecordsFixture
{
protected:
    Query()
    {
        MakeMessages();
        const auto messages = OpenMessages();
        for (int i = 1; i <= 6; ++i) {
            messages->AddNew();
            messages->SetCollect(QStringLiteral("Subject"), QStringLiteral("Message %1").arg(i));
            messages->SetCollect(QStringLiteral("Category"), i % 2);
            messages->SetCollect(QStringLiteral("Message"), QStringLiteral("Body of number %1").arg(i));
            messages->Update();
        }
    }

    std::unique_ptr<Recordset> Open(const QString& sql, RecordsetTypeEnum type = dbOpenDefault)
    {
        return Db().OpenRecordset(sql, type);
    }
    static QString References(Recordset& rows)
    {
        QStringList references;
        for (; !rows.AtEOF(); rows.MoveNext())
            references += QString::number(rows.Collect(QStringLiteral("Reference")).toInt());
        return references.join(QLatin1Char(','));
    }
};

TEST_P(Query, AWholeTableWithNothingBehindItsName)
{
    const auto rows = Open(QStringLiteral("SELECT * FROM [Messages] "), dbOpenSnapshot);
    EXPECT_EQ(rows->Type(), dbOpenSnapshot);
    EXPECT_FALSE(rows->Updatable());
    EXPECT_EQ(rows->RecordCount(), 6);
    EXPECT_EQ(rows->Collect(QStringLiteral("Message")).toString(), QStringLiteral("Body of number 1"));
    EXPECT_EQ(References(*rows), QStringLiteral("1,2,3,4,5,6"));
    EXPECT_TRUE(rows->AtEOF());
}

TEST_P(Query, ConditionAndOrder)
{
    const auto rows = Open(QStringLiteral("SELECT * FROM [Messages]  WHERE [Category]=1 ORDER BY [Reference] DESC"));
    EXPECT_EQ(rows->Type(), dbOpenDynaset);
    EXPECT_TRUE(rows->Updatable());
    EXPECT_EQ(References(*rows), QStringLiteral("5,3,1"));
}

TEST_P(Query, WithoutRowsIsAtBothEnds)
{
    for (const RecordsetTypeEnum type : {dbOpenDynaset, dbOpenSnapshot}) {
        const auto rows = Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Category]=9"), type);
        EXPECT_EQ(rows->RecordCount(), 0);
        EXPECT_TRUE(rows->AtEOF());
        EXPECT_TRUE(rows->AtBOF());
        EXPECT_EQ(ErrorNumberOf([&] { rows->MoveFirst(); }), errNoCurrentRecord);
        EXPECT_EQ(ErrorNumberOf([&] { rows->MoveNext(); }), errNoCurrentRecord);
        EXPECT_EQ(ErrorNumberOf([&] { rows->Collect(QStringLiteral("Subject")); }), errNoCurrentRecord);
    }
}

TEST_P(Query, ReadsMemosInAnyOrder)
{
    for (const RecordsetTypeEnum type : {dbOpenDynaset, dbOpenSnapshot}) {
        const auto rows = Open(QStringLiteral("SELECT * FROM [Messages]"), type);
        rows->MoveLast();
        EXPECT_EQ(rows->Collect(QStringLiteral("Message")).toString(), QStringLiteral("Body of number 6"));
        rows->MovePrevious();
        EXPECT_EQ(rows->Collect(QStringLiteral("Message")).toString(), QStringLiteral("Body of number 5"));
        rows->MoveFirst();
        for (int i = 1; i <= 6; ++i, rows->MoveNext())
            EXPECT_EQ(rows->Fields().Item(QStringLiteral("Message")).Octets(),
                      "Body of number " + QByteArray::number(i));
    }
}

TEST_P(Query, DynasetRowsAreEditedAndDeletedWhileWalking)
{
    const auto rows = Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Category]=1"));
    rows->Edit();
    rows->SetCollect(QStringLiteral("Subject"), QStringLiteral("changed"));
    rows->Update();
    EXPECT_EQ(rows->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("changed"));
    while (!rows->AtEOF()) {
        rows->Delete();
        EXPECT_EQ(ErrorNumberOf([&] { rows->Collect(QStringLiteral("Subject")); }), errNoCurrentRecord);
        rows->MoveNext();
    }
    EXPECT_EQ(rows->RecordCount(), 0);
    const auto left = Open(QStringLiteral("SELECT * FROM [Messages]"), dbOpenSnapshot);
    EXPECT_EQ(References(*left), QStringLiteral("2,4,6"));
}

TEST_P(Query, DynasetMovesPassOverRowsThatSomebodyDeleted)
{
    const auto rows = Open(QStringLiteral("SELECT * FROM [Messages]"));
    const auto other = OpenAgain();
    EXPECT_EQ(other->Execute(QStringLiteral("DELETE FROM [Messages] WHERE [Reference] IN (1, 2, 6)")), 3);
    EXPECT_EQ(References(*rows), QStringLiteral("3,4,5"));
}

TEST_P(Query, DynasetTakesNewRowsAtItsEnd)
{
    const auto rows = Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Category]=1"));
    rows->AddNew();
    EXPECT_EQ(rows->Collect(QStringLiteral("Reference")).toInt(), 7);
    rows->SetCollect(QStringLiteral("Subject"), QStringLiteral("new"));
    rows->Update();
    EXPECT_EQ(rows->Collect(QStringLiteral("Reference")).toInt(), 1);
    EXPECT_EQ(rows->RecordCount(), 4);
    EXPECT_EQ(References(*rows), QStringLiteral("1,3,5,7"));
}

TEST_P(Query, SnapshotKeepsItsValuesButMemosAreReadLate)
{
    const auto rows = Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Reference]=1"), dbOpenSnapshot);
    const auto messages = OpenMessages();
    messages->Seek(SeekComparison::Equal, {1});
    messages->Edit();
    messages->SetCollect(QStringLiteral("Subject"), QStringLiteral("later"));
    messages->SetCollect(QStringLiteral("Message"), QStringLiteral("later"));
    messages->Update();
    EXPECT_EQ(rows->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("Message 1"));
    EXPECT_EQ(rows->Collect(QStringLiteral("Message")).toString(), QStringLiteral("later"));
}

TEST_P(Query, SnapshotCannotBeChanged)
{
    const auto rows = Open(QStringLiteral("SELECT * FROM [Messages]"), dbOpenSnapshot);
    EXPECT_EQ(ErrorNumberOf([&] { rows->Edit(); }), errNotSupported);
    EXPECT_EQ(ErrorNumberOf([&] { rows->AddNew(); }), errNotSupported);
    EXPECT_EQ(ErrorNumberOf([&] { rows->Delete(); }), errNotSupported);
    EXPECT_EQ(ErrorNumberOf([&] { rows->SetIndex(QStringLiteral("Main")); }), errNotSupported);
}

TEST_P(Query, FindFirstKeepsTheRowWhenThereIsNoMatch)
{
    for (const RecordsetTypeEnum type : {dbOpenDynaset, dbOpenSnapshot}) {
        const auto rows = Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Category]=0"), type);
        rows->FindFirst(QStringLiteral("Subject=\"MESSAGE 4\""));
        EXPECT_FALSE(rows->NoMatch());
        EXPECT_EQ(rows->Collect(QStringLiteral("Reference")).toInt(), 4);
        rows->FindFirst(QStringLiteral("Reference=3"));
        EXPECT_TRUE(rows->NoMatch());
        EXPECT_EQ(rows->Collect(QStringLiteral("Reference")).toInt(), 4);
        EXPECT_EQ(ErrorNumberOf([&] { rows->FindFirst(QStringLiteral("Reference=")); }), errSyntax);
    }
}

TEST_P(Query, LikeIgnoresCaseInAllOfUnicode)
{
    AddMessage(QStringLiteral("Grüße aus ΑΘΉΝΑ"), QStringLiteral("memo ÀÉÎ"));
    EXPECT_EQ(References(*Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Subject] LIKE '*GRÜ?E*αθήνα'"))),
              QStringLiteral("7"));
    EXPECT_EQ(References(*Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Message] LIKE '*àéî'"))),
              QStringLiteral("7"));
    EXPECT_EQ(References(*Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Subject] = 'GRÜßE AUS αθήνα'"))),
              QStringLiteral("7"));
}

TEST_P(Query, ParametersOfAQueryDef)
{
    const auto query =
        Db().CreateQueryDef(QString(), QStringLiteral("UPDATE [Messages] SET [Priority]=[NewPriority] WHERE "
                                                      "[Category]=[Wanted] AND [Message] IS NOT NULL"));
    ASSERT_EQ(query->Parameters().Count(), 2);
    EXPECT_EQ(ErrorNumberOf([&] { query->Execute(); }), errTooFewParameters);
    query->Parameters().Item(QStringLiteral("newpriority")).SetValue(3);
    query->Parameters().Item(QStringLiteral("Wanted")).SetValue(1);
    query->Execute();
    EXPECT_EQ(query->RecordsAffected(), 3);
    const auto rows = Db().CreateQueryDef(QString(), QStringLiteral("SELECT * FROM Messages WHERE Priority=[P]"));
    rows->Parameters().Item(0).SetValue(3);
    EXPECT_EQ(References(*rows->OpenRecordset(dbOpenSnapshot)), QStringLiteral("1,3,5"));
    EXPECT_EQ(ErrorNumberOf([&] { rows->Execute(); }), errNotSupported);
}

TEST_P(Query, ParametersTakeAnyTextAndDates)
{
    const QString half = QStringLiteral("x") + QChar(0xD83D);
    AddMessage(half);
    Db().Execute(QStringLiteral("UPDATE [Messages] SET [Sent]=45000.5 WHERE [Reference]=7"));
    const auto query =
        Db().CreateQueryDef(QString(), QStringLiteral("SELECT * FROM Messages WHERE Subject=[S] AND Sent=[D]"));
    query->Parameters().Item(QStringLiteral("S")).SetValue(half);
    query->Parameters().Item(QStringLiteral("D")).SetValue(QDateTime(QDate(2023, 3, 15), QTime(12, 0), Qt::UTC));
    EXPECT_EQ(References(*query->OpenRecordset()), QStringLiteral("7"));
    query->Parameters().Item(QStringLiteral("S")).SetValue(QVariantList{1});
    EXPECT_EQ(ErrorNumberOf([&] { query->OpenRecordset(); }), errDataTypeConversion);
}

TEST_P(Query, AnUpdateQueryIsSeenByAnEditThatBeganBefore)
{
    const auto messages = OpenMessages();
    messages->Edit();
    messages->SetCollect(QStringLiteral("Category"), 4);
    EXPECT_EQ(Db().Execute(QStringLiteral("UPDATE [Messages] SET [Message]='x' WHERE [Reference]=1")), 1);
    EXPECT_EQ(ErrorNumberOf([&] { messages->Update(); }), errChangedByAnother);
    messages->MoveFirst();
    EXPECT_EQ(messages->Collect(QStringLiteral("Message")).toString(), QStringLiteral("x"));
}

TEST_P(Query, UpdateQueriesRefuseWhatDoesNotFit)
{
    EXPECT_EQ(ErrorNumberOf([&] { Db().Execute(QStringLiteral("UPDATE [Messages] SET [Category]=70000")); }),
              errOverflow);
    EXPECT_EQ(ErrorNumberOf([&] {
                  Db().Execute(QStringLiteral("UPDATE [Messages] SET [Subject]='") + QString(300, QLatin1Char('x')) +
                               QLatin1Char('\''));
              }),
              errFieldTooSmall);
    EXPECT_EQ(ErrorNumberOf([&] { Db().Execute(QStringLiteral("UPDATE [Messages] SET [Reference]=9")); }),
              errNotSupported);
    EXPECT_EQ(References(*Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Subject] LIKE 'Message #'"))),
              QStringLiteral("1,2,3,4,5,6"));
}

TEST_P(Query, NothingIsStoredThatItsFieldCannotHold)
{
    for (const char* change : {"[Sum]=1E308*10", "[Sum]=-1E308*10", "[Sent]=1E9", "[Rate]=1E39"}) {
        EXPECT_EQ(ErrorNumberOf(
                      [&] { Db().Execute(QStringLiteral("UPDATE [Messages] SET ") + QString::fromLatin1(change)); }),
                  errOverflow)
            << change;
    }
    EXPECT_EQ(References(*Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Sum] IS NULL AND [Sent] IS NULL"))),
              QStringLiteral("1,2,3,4,5,6"));
}

TEST_P(Query, ACounterIsNotSetUnderAQualifiedName)
{
    for (const char* name : {"Reference", "Messages.Reference", "[Messages.Reference]"}) {
        EXPECT_EQ(ErrorNumberOf([&] {
                      Db().Execute(
                          QStringLiteral("UPDATE Messages SET %1=9 WHERE Reference=1").arg(QString::fromLatin1(name)));
                  }),
                  errNotSupported)
            << name;
    }
}

TEST_P(Query, ASumThatIsTooLargeIsAnOverflow)
{
    EXPECT_EQ(
        ErrorNumberOf([&] { Open(QStringLiteral("SELECT SUM(9223372036854775807) FROM Messages"), dbOpenSnapshot); }),
        errOverflow);
}

TEST_P(Query, AJoinFindsTextsWhoseSpellingTakesAnotherNumberOfOctets)
{
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Word"), dbText));
    AddTable(Db(), QStringLiteral("Words"), std::move(fields));
    const auto words = OpenTable(QStringLiteral("Words"));
    for (int i = 0; i < 40; ++i) {
        words->AddNew();
        words->SetCollect(QStringLiteral("Word"), i == 30 ? QStringLiteral("300 k") : QString::number(i));
        words->Update();
    }
    AddMessage(QStringLiteral("300 ") + QChar(0x212A)); // The Kelvin sign, which is a K.
    const auto rows = Open(QStringLiteral("SELECT Reference FROM Messages INNER JOIN Words ON Subject = Word"));
    EXPECT_EQ(References(*rows), QStringLiteral("7"));
}

TEST_P(Query, AJoinFindsTextsOfAListWhoseSpellingTakesAnotherNumberOfOctets)
{
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Word"), dbText));
    AddTable(Db(), QStringLiteral("Words"), std::move(fields));
    const auto words = OpenTable(QStringLiteral("Words"));
    for (int i = 0; i < 40; ++i) {
        words->AddNew();
        words->SetCollect(QStringLiteral("Word"),
                          i == 30 ? QStringLiteral("300 ") + QChar(0x212A) : QString::number(i));
        words->Update();
    }
    const auto all = Open(QStringLiteral("SELECT Reference FROM Messages"));
    const auto rows =
        Open(QStringLiteral("SELECT Reference FROM Messages LEFT JOIN Words ON Word IN ('300 k') WHERE Word >= '3'"));
    EXPECT_GT(all->RecordCount(), 0);
    EXPECT_EQ(rows->RecordCount(), all->RecordCount());
}

TEST_P(Query, AParameterIsConvertedBeforeTheFirstRow)
{
    Db().Execute(QStringLiteral("DELETE FROM Messages"));
    const auto query = Db().CreateQueryDef(QString(), QStringLiteral("SELECT * FROM Messages WHERE Category IN (1, "
                                                                     "[p]) OR [p] BETWEEN 1 AND Category"));
    query->Parameters().Item(0).SetValue(QStringLiteral("some"));
    EXPECT_EQ(ErrorNumberOf([&] { query->OpenRecordset(); }), errDataTypeConversion);
    query->Parameters().Item(0).SetValue(QStringLiteral(" 5 "));
    EXPECT_EQ(query->OpenRecordset()->RecordCount(), 0);
}

TEST_P(Query, ErrorsOfTheText)
{
    EXPECT_EQ(ErrorNumberOf([&] { Open(QStringLiteral("Absent")); }), errTableNotFound);
    EXPECT_EQ(ErrorNumberOf([&] { Open(QStringLiteral("SELECT * FROM [Absent]")); }), errTableNotFound);
    EXPECT_EQ(ErrorNumberOf([&] { Open(QStringLiteral("SELECT * FROM [Messages] WHERE ORDER BY [Sent]")); }),
              errSyntax);
    EXPECT_EQ(ErrorNumberOf([&] { Open(QStringLiteral("SELECT * FROM [Messages] WHERE [Absent]=1")); }),
              errTooFewParameters);
    EXPECT_EQ(ErrorNumberOf([&] { Open(QStringLiteral("SELECT * FROM [Messages]"), dbOpenTable); }), errNotSupported);
}

TEST_P(Query, AJoinNamesRepeatedFieldsByTheirTable)
{
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField));
    fields.push_back(MakeField(QStringLiteral("MessageReference"), dbLong));
    fields.push_back(MakeField(QStringLiteral("Note"), dbMemo));
    AddTable(Db(), QStringLiteral("Replies"), std::move(fields));
    const auto replies = OpenTable(QStringLiteral("Replies"));
    for (const int message : {2, 2, 5}) {
        replies->AddNew();
        replies->SetCollect(QStringLiteral("MessageReference"), message);
        replies->SetCollect(QStringLiteral("Note"), QStringLiteral("reply to %1").arg(message));
        replies->Update();
    }
    const auto rows = Open(QStringLiteral("SELECT Messages.Reference, Messages.Subject, Replies.* FROM Messages LEFT "
                                          "JOIN Replies ON Messages.Reference = Replies.MessageReference "
                                          "WHERE ( [Messages.Category]=0 OR [Replies.MessageReference]=5)"));
    EXPECT_FALSE(rows->Updatable());
    QStringList seen;
    for (; !rows->AtEOF(); rows->MoveNext()) {
        seen += QStringLiteral("%1:%2:%3")
                    .arg(rows->Collect(QStringLiteral("Messages.Reference")).toInt())
                    .arg(rows->Collect(QStringLiteral("Replies.Reference")).toInt())
                    .arg(rows->Collect(QStringLiteral("Note")).toString());
    }
    EXPECT_EQ(seen.join(QLatin1Char(' ')), QStringLiteral("2:1:reply to 2 2:2:reply to 2 4:0: 5:3:reply to 5 6:0:"));
}

INSTANTIATE_FOR_ENGINES(Query);

} // namespace
