// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

using namespace dao;

namespace
{

class TableRecordset : public RecordsFixture
{
protected:
    TableRecordset() { MakeMessages(); }

    QStringList Subjects(Recordset& messages) const
    {
        QStringList subjects;
        for (; !messages.AtEOF(); messages.MoveNext())
            subjects += messages.Collect(QStringLiteral("Subject")).toString();
        return subjects;
    }
};

TEST_P(TableRecordset, AddNewShowsTheCounterBeforeUpdate)
{
    const auto messages = OpenMessages();
    messages->AddNew();
    EXPECT_EQ(messages->Collect(QStringLiteral("Reference")).toInt(), 1);
    messages->SetCollect(QStringLiteral("Subject"), QStringLiteral("Hello"));
    EXPECT_EQ(messages->RecordCount(), 0);
    messages->Update();
    EXPECT_EQ(messages->RecordCount(), 1);
    messages->Seek(SeekComparison::Equal, {1});
    ASSERT_FALSE(messages->NoMatch());
    EXPECT_EQ(messages->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("Hello"));
}

TEST_P(TableRecordset, UnsetFieldsAreNull)
{
    AddMessage(QStringLiteral("a"));
    const auto messages = OpenMessages();
    EXPECT_FALSE(messages->Collect(QStringLiteral("Priority")).isValid());
    EXPECT_FALSE(messages->Collect(QStringLiteral("Message")).isValid());
    EXPECT_TRUE(messages->Fields().Item(QStringLiteral("Message")).Octets().isNull());
}

TEST_P(TableRecordset, FieldNamesAreFoundInAnyCase)
{
    AddMessage(QStringLiteral("a"));
    const auto messages = OpenMessages();
    EXPECT_EQ(messages->Collect(QStringLiteral("sUBJECT")).toString(), QStringLiteral("a"));
    EXPECT_EQ(ErrorNumberOf([&] { messages->Collect(QStringLiteral("Absent")); }), errItemNotFound);
}

TEST_P(TableRecordset, EmptyTableIsAtBothEnds)
{
    const auto messages = OpenMessages();
    EXPECT_TRUE(messages->AtEOF());
    EXPECT_TRUE(messages->AtBOF());
    EXPECT_EQ(ErrorNumberOf([&] { messages->MoveFirst(); }), errNoCurrentRecord);
    EXPECT_EQ(ErrorNumberOf([&] { messages->MoveLast(); }), errNoCurrentRecord);
    EXPECT_EQ(ErrorNumberOf([&] { messages->MoveNext(); }), errNoCurrentRecord);
    EXPECT_TRUE(messages->AtEOF());
    EXPECT_EQ(ErrorNumberOf([&] { messages->Collect(QStringLiteral("Subject")); }), errNoCurrentRecord);
}

TEST_P(TableRecordset, MovesInBothDirections)
{
    for (const char* subject : {"a", "b", "c"})
        AddMessage(QString::fromLatin1(subject));
    const auto messages = OpenMessages();
    EXPECT_EQ(Subjects(*messages).join(QLatin1Char(',')), QStringLiteral("a,b,c"));
    EXPECT_TRUE(messages->AtEOF());
    EXPECT_FALSE(messages->AtBOF());
    EXPECT_EQ(ErrorNumberOf([&] { messages->MoveNext(); }), errNoCurrentRecord);
    messages->MovePrevious();
    EXPECT_EQ(messages->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("c"));
    messages->MoveFirst();
    messages->MovePrevious();
    EXPECT_TRUE(messages->AtBOF());
    EXPECT_EQ(ErrorNumberOf([&] { messages->MovePrevious(); }), errNoCurrentRecord);
    messages->MoveNext();
    EXPECT_EQ(messages->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("a"));
}

TEST_P(TableRecordset, UpdateOfAnAddNewKeepsTheCurrentRow)
{
    AddMessage(QStringLiteral("a"));
    AddMessage(QStringLiteral("b"));
    const auto messages = OpenMessages();
    messages->MoveNext();
    messages->AddNew();
    messages->SetCollect(QStringLiteral("Subject"), QStringLiteral("c"));
    messages->Update();
    EXPECT_EQ(messages->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("b"));
}

TEST_P(TableRecordset, EditChangesOnlyWhatIsSet)
{
    AddMessage(QStringLiteral("a"), QStringLiteral("body"));
    const auto messages = OpenMessages();
    messages->Edit();
    messages->SetCollect(QStringLiteral("Category"), 5);
    EXPECT_EQ(messages->Collect(QStringLiteral("Category")).toInt(), 5);
    EXPECT_EQ(messages->Collect(QStringLiteral("Message")).toString(), QStringLiteral("body"));
    messages->Update();
    EXPECT_EQ(messages->Collect(QStringLiteral("Category")).toInt(), 5);
    EXPECT_EQ(messages->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("a"));
    EXPECT_EQ(messages->Collect(QStringLiteral("Message")).toString(), QStringLiteral("body"));
}

TEST_P(TableRecordset, SettingAFieldWithoutEditIsRefused)
{
    AddMessage(QStringLiteral("a"));
    const auto messages = OpenMessages();
    EXPECT_EQ(ErrorNumberOf([&] { messages->SetCollect(QStringLiteral("Category"), 5); }), errUpdateWithoutEdit);
    EXPECT_EQ(ErrorNumberOf([&] { messages->Update(); }), errUpdateWithoutEdit);
    EXPECT_EQ(ErrorNumberOf([&] { messages->CancelUpdate(); }), errUpdateWithoutEdit);
}

TEST_P(TableRecordset, MovingDropsTheBuffer)
{
    AddMessage(QStringLiteral("a"));
    const auto messages = OpenMessages();
    messages->Edit();
    messages->SetCollect(QStringLiteral("Subject"), QStringLiteral("changed"));
    messages->MoveFirst();
    EXPECT_EQ(ErrorNumberOf([&] { messages->Update(); }), errUpdateWithoutEdit);
    EXPECT_EQ(messages->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("a"));
}

TEST_P(TableRecordset, DeleteLeavesNoCurrentRowUntilAMove)
{
    for (const char* subject : {"a", "b", "c"})
        AddMessage(QString::fromLatin1(subject));
    const auto messages = OpenMessages();
    messages->Seek(SeekComparison::Equal, {2});
    messages->Delete();
    EXPECT_FALSE(messages->AtEOF());
    EXPECT_EQ(ErrorNumberOf([&] { messages->Collect(QStringLiteral("Subject")); }), errNoCurrentRecord);
    EXPECT_EQ(ErrorNumberOf([&] { messages->Edit(); }), errNoCurrentRecord);
    messages->MoveNext();
    EXPECT_EQ(messages->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("c"));
    messages->MovePrevious();
    EXPECT_EQ(messages->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("a"));
}

TEST_P(TableRecordset, DeletingTheOnlyRowEndsAtTheNextMove)
{
    AddMessage(QStringLiteral("a"));
    const auto messages = OpenMessages();
    messages->Delete();
    EXPECT_FALSE(messages->AtEOF());
    messages->MoveNext();
    EXPECT_TRUE(messages->AtEOF());
}

TEST_P(TableRecordset, SeekWithoutAMatchHasNoCurrentRow)
{
    AddMessage(QStringLiteral("a"));
    const auto messages = OpenMessages();
    messages->Seek(SeekComparison::Equal, {99});
    EXPECT_TRUE(messages->NoMatch());
    EXPECT_FALSE(messages->AtEOF());
    EXPECT_EQ(ErrorNumberOf([&] { messages->Edit(); }), errNoCurrentRecord);
    EXPECT_EQ(ErrorNumberOf([&] { messages->MoveNext(); }), errNoCurrentRecord);
    messages->Seek(SeekComparison::Equal, {1});
    EXPECT_FALSE(messages->NoMatch());
}

TEST_P(TableRecordset, SeekNeedsAnIndex)
{
    const auto messages = OpenTable(QStringLiteral("Messages"));
    EXPECT_EQ(ErrorNumberOf([&] { messages->Seek(SeekComparison::Equal, {1}); }), errNotAnIndex);
    EXPECT_EQ(ErrorNumberOf([&] { messages->SetIndex(QStringLiteral("Absent")); }), errNotAnIndex);
}

TEST_P(TableRecordset, IsOfNoUseAfterCloseOrAfterItsDatabaseIsGone)
{
    AddMessage(QStringLiteral("a"));
    const auto closed = OpenMessages();
    closed->Close();
    closed->Close();
    EXPECT_EQ(ErrorNumberOf([&] { closed->MoveFirst(); }), errObjectInvalid);
    EXPECT_EQ(ErrorNumberOf([&] { closed->Collect(QStringLiteral("Subject")); }), errObjectInvalid);
    EXPECT_EQ(ErrorNumberOf([&] { closed->AtEOF(); }), errObjectInvalid);

    const auto outliving = OpenMessages();
    outliving->Edit();
    Database_.reset();
    EXPECT_EQ(ErrorNumberOf([&] { outliving->Update(); }), errObjectInvalid);
    EXPECT_EQ(ErrorNumberOf([&] { outliving->RecordCount(); }), errObjectInvalid);
    EXPECT_EQ(ErrorNumberOf([&] { outliving->Seek(SeekComparison::Equal, {1}); }), errObjectInvalid);
    outliving->Close();
}

TEST_P(TableRecordset, ADuplicateKeepsTheBufferForAnotherTry)
{
    AddIndex(Db(), QStringLiteral("Messages"), QStringLiteral("Subjects"), {QStringLiteral("Subject")}, true);
    AddMessage(QStringLiteral("Taken"));
    const auto messages = OpenMessages();
    messages->AddNew();
    messages->SetCollect(QStringLiteral("Subject"), QStringLiteral("tAKEN"));
    EXPECT_EQ(ErrorNumberOf([&] { messages->Update(); }), errDuplicateValue);
    messages->SetCollect(QStringLiteral("Subject"), QStringLiteral("Free"));
    messages->Update();
    EXPECT_EQ(messages->RecordCount(), 2);
}

INSTANTIATE_FOR_ENGINES(TableRecordset);

} // namespace
