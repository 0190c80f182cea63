// SPDX-License-Identifier: Apache-2.0

// Fetching, saving, copying, moving and deleting messages of a station.

#include "core/support/StationTest.h"
#include "platform/records/DBEngine.h"

namespace
{
/// What a station told its listeners, "saved REF CATEGORY EDITED" or "deleted REF CATEGORY".
class EventSpy
{
public:
    explicit EventSpy(const cTolvaDatabase& station)
    {
        QObject::connect(&station, &cTolvaDatabase::MessageSaved, [this](const cMessagePtr& message, bool edited) {
            Events.append(
                QStringLiteral("saved %1 %2 %3").arg(message->Reference()).arg(message->Category()).arg(edited));
        });
        QObject::connect(&station, &cTolvaDatabase::MessageDeleted, [this](const cMessagePtr& message) {
            Events.append(QStringLiteral("deleted %1 %2").arg(message->Reference()).arg(message->Category()));
        });
    }
    QStringList Events;
};

const enTolvaMessageCategories AbsentCategory = static_cast<enTolvaMessageCategories>(99);
} // namespace

class MessageStoreTest : public StationTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        Spy = std::make_unique<EventSpy>(*Station);
    }
    QVariant Column(qint32 reference, const char16_t* name) const
    {
        const auto recordset = OpenTable(QStringLiteral("Messages"));
        recordset->SetIndex(QStringLiteral("Main"));
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        EXPECT_FALSE(recordset->NoMatch());
        return recordset->NoMatch() ? QVariant() : recordset->Collect(QString::fromUtf16(name));
    }
    int Rows() const { return OpenTable(QStringLiteral("Messages"))->RecordCount(); }

    std::unique_ptr<EventSpy> Spy;
};

TEST_F(MessageStoreTest, ASavedMessageReadsBack)
{
    auto message = std::make_shared<cMessage>();
    const QByteArray octets =
        "From: Ann <ann@example.com>\r\nSubject: =?utf-8?q?H=C3=A9llo?=\r\n\r\nbody \x80\x00 end\r\n";
    message->SetCDOMessage(std::make_shared<cdo::Message>(octets));
    message->SetCategory(tmcInbox);
    message->SetFlags(mfRead);
    message->SetPersonalToContact(7);
    message->SetSourceIndex(3);
    message->SetMultiPartMessage(2);
    message->SetPriority(1);
    message->SetSent(Date(2026, 7, 1, 13, 0, 0));
    message->SetSendAfter(Date(2026, 12, 1, 13, 0, 0));
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(message->Reference(), 1);
    EXPECT_FALSE(message->Edited());

    const cMessagePtr read = Station->GetMessage(1);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->Reference(), 1);
    EXPECT_EQ(read->Category(), tmcInbox);
    EXPECT_EQ(read->Flags(), mfRead);
    EXPECT_EQ(read->PersonalToContact(), 7);
    EXPECT_EQ(read->SourceIndex(), 3);
    EXPECT_EQ(read->MultiPartMessage(), 2);
    EXPECT_EQ(read->Priority(), 1);
    EXPECT_EQ(read->MessageType(), emtEmail);
    EXPECT_EQ(read->SentString(), QStringLiteral("01/07/2026 13:00:00"));
    EXPECT_EQ(read->SendAfterString(), QStringLiteral("01/12/2026 13:00:00"));
    EXPECT_EQ(read->CDOMessage()->Octets(), octets);
    EXPECT_EQ(read->CDOMessage()->Subject(), QStringLiteral("Héllo"));
    EXPECT_FALSE(read->Edited());
}

TEST_F(MessageStoreTest, DatesStandInUniversalTimeInTheTable)
{
    const cMessagePtr message = MakeMessage(QStringLiteral("s"));
    message->SetSent(Date(2026, 7, 1, 13, 0, 0));
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_NEAR(Column(1, u"Sent").toDouble(), Date(2026, 7, 1, 12, 0, 0).DayNumber(), 1e-9);
    EXPECT_FALSE(Column(1, u"SendAfter").isValid());
}

TEST_F(MessageStoreTest, AMessageWithoutReceivedGetsThePresentTime)
{
    const cMessagePtr message = MakeMessage(QStringLiteral("s"));
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(message->ReceivedString(), QStringLiteral("21/11/2026 14:05:09"));
    EXPECT_EQ(Station->GetMessage(1)->ReceivedString(), QStringLiteral("21/11/2026 14:05:09"));
    EXPECT_TRUE(Station->GetMessage(1)->Sent().IsNone());
}

TEST_F(MessageStoreTest, TheDerivedColumnsAreWritten)
{
    const cMessagePtr message = MakeMessage(QString(300, QLatin1Char('s')), QStringLiteral("Ann <Ann@example.com>"));
    message->CDOMessage()->SetCC(QStringLiteral("Bob <bob@example.com>"));
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(Column(1, u"FromKey").toString(), QStringLiteral("|Ann@example.com|"));
    EXPECT_EQ(Column(1, u"ToKey").toString(), QStringLiteral("|studio@example.org|"));
    EXPECT_EQ(Column(1, u"CcKey").toString(), QStringLiteral("|bob@example.com|"));
    EXPECT_EQ(Column(1, u"Subject").toString().size(), 255);
    EXPECT_FALSE(Column(1, u"MessageStatus").isValid());
    EXPECT_EQ(Station->GetMessage(1)->CDOMessage()->Subject().size(), 300);
}

TEST_F(MessageStoreTest, ASubjectIsNeverCutInsideACharacter)
{
    const cMessagePtr message = MakeMessage(QString(254, QLatin1Char('s')) + QStringLiteral("🎉 party"));
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(Column(1, u"Subject").toString(), QString(254, QLatin1Char('s')));
}

TEST_F(MessageStoreTest, FiveHundredRecipientsAreNoReasonToRefuseAMessage)
{
    QStringList recipients;
    for (int i = 0; i < 500; ++i)
        recipients.append(QStringLiteral("Listener <listener%1@example.com>").arg(i));
    const cMessagePtr message = MakeMessage(QStringLiteral("s"));
    message->CDOMessage()->SetTo(recipients.join(QStringLiteral(", ")));
    ASSERT_TRUE(Station->SaveMessage(message));
    const QString key = Column(1, u"ToKey").toString();
    EXPECT_LE(key.size(), 255);
    EXPECT_TRUE(key.startsWith(QStringLiteral("|listener0@example.com|")));
    EXPECT_TRUE(key.endsWith(QStringLiteral("@example.com|")));
}

TEST_F(MessageStoreTest, TrimmedTextLosesItsBlanksAndNothingElse)
{
    const cMessagePtr message = MakeMessage(QStringLiteral("s"));
    message->CDOMessage()->SetOctets("  Subject: s\r\n\r\nbody\t\r\n\x00\xa0  ");
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(Station->GetMessage(1)->CDOMessage()->Octets(), QByteArray("Subject: s\r\n\r\nbody\t\r\n"));
}

TEST_F(MessageStoreTest, AMailOfNoTextIsStoredAsNull)
{
    auto message = std::make_shared<cMessage>();
    message->CDOMessage()->SetOctets("   ");
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_FALSE(Column(1, u"Message").isValid());
    EXPECT_EQ(Station->GetMessage(1)->CDOMessage()->Octets(), QByteArray());
}

TEST_F(MessageStoreTest, NullColumnsReadAsTheirDefaults)
{
    const auto recordset = OpenTable(QStringLiteral("Messages"));
    recordset->AddNew();
    recordset->Update();
    const cMessagePtr message = Station->GetMessage(1);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->MessageType(), emtEmail);
    EXPECT_EQ(message->Category(), tmcInbox);
    EXPECT_EQ(message->Priority(), 0);
    EXPECT_TRUE(message->Received().IsNone());
    EXPECT_TRUE(message->Sent().IsNone());
    EXPECT_FALSE(message->HasHighlightWords());
    EXPECT_EQ(message->CDOMessage()->Octets(), QByteArray());
}

TEST_F(MessageStoreTest, TextBeyondOctetsThatOtherSoftwareWroteIsRead)
{
    const auto recordset = OpenTable(QStringLiteral("Messages"));
    recordset->AddNew();
    recordset->SetCollect(QStringLiteral("Message"), QStringLiteral("Subject: s\n\n\u20ac"));
    recordset->Update();
    EXPECT_EQ(Station->GetMessage(1)->CDOMessage()->TextBody().trimmed(), QStringLiteral("\u20ac"));
}

TEST_F(MessageStoreTest, NothingIsFetchedForZeroOrAnAbsentReference)
{
    EXPECT_EQ(Station->GetMessage(0), nullptr);
    EXPECT_EQ(Station->GetMessage(-1), nullptr);
    EXPECT_EQ(Station->GetMessage(1), nullptr);
}

TEST_F(MessageStoreTest, SavingANewMessageRaisesStampsAndAudits)
{
    const cMessagePtr message = MakeMessage(QStringLiteral("Request"));
    message->SetCategory(tmcInbox);
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(Spy->Events, QStringList{QStringLiteral("saved 1 1 1")});
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("6 Message Added: Request (1)")});
    EXPECT_NEAR(Station->LastMessageChanged().DayNumber(), Date(2026, 11, 21, 14, 5, 9).DayNumber(), 1e-7);
}

TEST_F(MessageStoreTest, TheEventCarriesEditedAsItWasBeforeTheWrite)
{
    const cMessagePtr message = MakeMessage(QStringLiteral("Request"));
    message->SetReceived(Date(46347.5)); // a missing one would be filled in, which marks
    message->SetEdited(false);
    ASSERT_TRUE(Station->SaveMessage(message));
    ASSERT_EQ(Spy->Events, QStringList{QStringLiteral("saved 1 6 0")});
    message->SetFlags(mfRead);
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(Spy->Events.last(), QStringLiteral("saved 1 6 1"));
    EXPECT_EQ(Audit().last(), QStringLiteral("7 Message Edited: Request (1)"));
    EXPECT_EQ(Rows(), 1);
}

TEST_F(MessageStoreTest, WithoutEventsTheStampIsSetAllTheSame)
{
    Station->SetRaiseEvents(false);
    SaveNew(QStringLiteral("Request"));
    EXPECT_TRUE(Spy->Events.isEmpty());
    EXPECT_FALSE(Station->LastMessageChanged().IsNone());
}

TEST_F(MessageStoreTest, AnnouncingIgnoresTheEventSwitch)
{
    Station->SetRaiseEvents(false);
    const cMessagePtr message = MakeMessage(QStringLiteral("s"));
    Station->RaiseSaveMessageEvent(message, true);
    Station->RaiseDeleteMessageEvent(message);
    EXPECT_EQ(Spy->Events, (QStringList{QStringLiteral("saved 0 6 1"), QStringLiteral("deleted 0 6")}));
}

TEST_F(MessageStoreTest, AMessageWhoseRowIsGoneIsWrittenAsANewOneUnderItsOldNumber)
{
    const cMessagePtr message = MakeMessage(QStringLiteral("Request"));
    message->SetReference(40);
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(message->Reference(), 40);
    EXPECT_EQ(Station->GetMessage(40), nullptr);
    EXPECT_NE(Station->GetMessage(1), nullptr);
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("7 Message Edited: Request (1)")});
}

TEST_F(MessageStoreTest, SavingWithoutADatabaseIsReported)
{
    Station->CloseTolvaDatabase();
    Ui.ExpectWarning(QStringLiteral("There was a problem saving a Message because no Tolva Database has been opened"));
    EXPECT_FALSE(Station->SaveMessage(MakeMessage(QStringLiteral("s"))));
    Station->SetSilentMode(true);
    EXPECT_FALSE(Station->SaveMessage(MakeMessage(QStringLiteral("s"))));
    EXPECT_EQ(Station->GetMessage(1), nullptr);
    EXPECT_EQ(Station->GetMessages(QString()), nullptr);
}

TEST_F(MessageStoreTest, SavingNothingIsReported)
{
    Ui.ExpectWarning(QStringLiteral("There was a problem saving a Message because no Message was supplied to save"));
    EXPECT_FALSE(Station->SaveMessage(nullptr));
}

TEST_F(MessageStoreTest, AnEmptyQueryReadsTheWholeTableInItsOrder)
{
    SaveNew(QStringLiteral("one"));
    SaveNew(QStringLiteral("two"), tmcSaved);
    const auto messages = Station->GetMessages(QString());
    ASSERT_NE(messages, nullptr);
    ASSERT_EQ(messages->Count(), 2);
    EXPECT_EQ(messages->Message(1)->CDOMessage()->Subject(), QStringLiteral("one"));
    EXPECT_EQ(messages->Message(2)->CDOMessage()->Subject(), QStringLiteral("two"));
    EXPECT_EQ(messages->Message(2)->CDOMessage()->TextBody().trimmed(), QStringLiteral("Please play it again."));
}

TEST_F(MessageStoreTest, AQueryMayBringItsWhereInAnyCaseOrLeaveItOut)
{
    SaveNew(QStringLiteral("one"));
    SaveNew(QStringLiteral("two"), tmcSaved);
    for (const QString& query : {QStringLiteral("where [Category]=3"), QStringLiteral("  [Category]=3 "),
                                 QStringLiteral("WHERE [Category]=3 ORDER BY [Sent] DESC, [Reference]")}) {
        const auto messages = Station->GetMessages(query);
        ASSERT_NE(messages, nullptr) << qPrintable(query);
        ASSERT_EQ(messages->Count(), 1);
        EXPECT_EQ(messages->Message(1)->Reference(), 2);
    }
}

TEST_F(MessageStoreTest, AQueryThatStartsWithAnOrderFails)
{
    SaveNew(QStringLiteral("one"));
    EXPECT_EQ(Station->GetMessages(QStringLiteral("ORDER BY [Sent]")), nullptr);
    EXPECT_EQ(Station->LastErrorNumber(), dao::errSyntax);
    EXPECT_EQ(Station->GetMessages(QStringLiteral("[NoSuchField]=1")), nullptr);
}

TEST_F(MessageStoreTest, AQueryWithoutRowsGivesAnEmptyCollection)
{
    const auto messages = Station->GetMessages(QStringLiteral("[Category]=77"));
    ASSERT_NE(messages, nullptr);
    EXPECT_EQ(messages->Count(), 0);
}

TEST_F(MessageStoreTest, ACopyGetsANewReferenceAndKeepsTextAndFlags)
{
    const cMessagePtr message = MakeMessage(QStringLiteral("Request"));
    message->SetFlags(mfRead);
    ASSERT_TRUE(Station->SaveMessage(message));
    Spy->Events.clear();
    ASSERT_TRUE(Station->CopyMessage(1, tmcSaved));
    EXPECT_EQ(Spy->Events, QStringList{QStringLiteral("saved 2 3 1")});
    const cMessagePtr copy = Station->GetMessage(2);
    EXPECT_EQ(copy->Category(), tmcSaved);
    EXPECT_EQ(copy->Flags(), mfRead);
    EXPECT_EQ(copy->CDOMessage()->Octets(), message->CDOMessage()->Octets());
    EXPECT_EQ(Station->GetMessage(1)->Category(), tmcDrafts);
}

TEST_F(MessageStoreTest, MovingChangesTheFolderAloneAndLeavesTheStamp)
{
    const qint32 reference = SaveNew(QStringLiteral("Request"));
    const Date stamp = Station->LastMessageChanged();
    Now.Advance(60);
    Spy->Events.clear();
    Directory.User.Log.clear();
    ASSERT_TRUE(Station->MoveMessage(reference, tmcSaved));
    EXPECT_EQ(Station->GetMessage(reference)->Category(), tmcSaved);
    EXPECT_EQ(Station->LastMessageChanged(), stamp);
    EXPECT_EQ(Spy->Events, QStringList{QStringLiteral("saved 1 3 1")});
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("7 Message Edited: Request Moved to Category Saved (1)")});
}

TEST_F(MessageStoreTest, WhatWaitsNoLongerIsNotMarkedSentAndLeavesTheStamp)
{
    const cMessagePtr message = MakeMessage(QStringLiteral("An answer"));
    message->SetCategory(tmcOutbox);
    message->SetFlags(mfSendPending);
    ASSERT_TRUE(Station->SaveMessage(message));
    const Date saved = Station->LastMessageChanged();
    Now.Advance(60);
    ASSERT_TRUE(Station->MarkMessageSent(1, Date(46000)));
    const Date stamp = Station->LastMessageChanged();
    EXPECT_NE(stamp, saved);
    EXPECT_EQ(Station->GetMessage(1)->Category(), tmcSent);
    EXPECT_EQ(Station->GetMessage(1)->Flags(), 0);
    Now.Advance(60);
    Spy->Events.clear();
    Directory.User.Log.clear();
    EXPECT_FALSE(Station->MarkMessageSent(1, Date(46001)));
    EXPECT_EQ(Station->LastErrorNumber(), 0);
    EXPECT_EQ(Station->LastMessageChanged(), stamp) << "no list has anything to read";
    EXPECT_EQ(Spy->Events, QStringList());
    EXPECT_EQ(Audit(), QStringList());
}

TEST_F(MessageStoreTest, MovingOrCopyingToAFolderThatIsNotThereChangesNothing)
{
    const qint32 reference = SaveNew(QStringLiteral("Request"));
    Directory.User.Log.clear();
    for (const int category : {0, -1, 32767}) {
        EXPECT_FALSE(Station->MoveMessage(reference, static_cast<enTolvaMessageCategories>(category))) << category;
        EXPECT_FALSE(Station->CopyMessage(reference, static_cast<enTolvaMessageCategories>(category))) << category;
    }
    EXPECT_FALSE(Station->MoveMessage(reference, AbsentCategory));
    EXPECT_FALSE(Station->CopyMessage(reference, AbsentCategory));
    EXPECT_FALSE(Station->MoveMessage(0, tmcSaved));
    EXPECT_FALSE(Station->MoveMessage(99, tmcSaved));
    EXPECT_EQ(Station->GetMessage(reference)->Category(), tmcInbox);
    EXPECT_EQ(Rows(), 1);
    EXPECT_TRUE(Audit().isEmpty());
}

TEST_F(MessageStoreTest, DeletingMovesToTheBinAndSucceedsThereAgain)
{
    const qint32 reference = SaveNew(QStringLiteral("Request"));
    Spy->Events.clear();
    Directory.User.Log.clear();
    EXPECT_TRUE(Station->DeleteMessage(reference, false));
    EXPECT_TRUE(Station->DeleteMessage(reference, false));
    EXPECT_EQ(Station->GetMessage(reference)->Category(), tmcDeleted);
    EXPECT_EQ(Spy->Events, (QStringList{QStringLiteral("deleted 1 5"), QStringLiteral("deleted 1 5")}));
    EXPECT_EQ(Audit().first(), QStringLiteral("8 Message Deleted: Request (1)"));
}

TEST_F(MessageStoreTest, DeletingPermanentlyErasesTheRow)
{
    const qint32 reference = SaveNew(QStringLiteral("Request"));
    Spy->Events.clear();
    EXPECT_TRUE(Station->DeleteMessage(reference, true));
    EXPECT_EQ(Station->GetMessage(reference), nullptr);
    EXPECT_EQ(Spy->Events, QStringList{QStringLiteral("deleted 1 0")});
    EXPECT_EQ(Rows(), 0);
}

TEST_F(MessageStoreTest, DeletingAnAbsentMessageRaisesNothing)
{
    EXPECT_FALSE(Station->DeleteMessage(5, false));
    EXPECT_FALSE(Station->DeleteMessage(0, true));
    EXPECT_TRUE(Spy->Events.isEmpty());
}

TEST_F(MessageStoreTest, ADeletedMessagesNumberIsNotGivenAgain)
{
    const qint32 reference = SaveNew(QStringLiteral("one"));
    ASSERT_TRUE(Station->DeleteMessage(reference, true));
    EXPECT_GT(SaveNew(QStringLiteral("two")), reference);
}

TEST_F(MessageStoreTest, WithoutAUserNothingIsChanged)
{
    const qint32 reference = SaveNew(QStringLiteral("Request"));
    for (clsKVDirectory* directory :
         {static_cast<clsKVDirectory*>(nullptr), static_cast<clsKVDirectory*>(&Directory)}) {
        Station->SetDirectoryDatabase(directory);
        Directory.SignedIn = nullptr;
        EXPECT_FALSE(Station->MoveMessage(reference, tmcSaved));
        EXPECT_FALSE(Station->CopyMessage(reference, tmcSaved));
        EXPECT_FALSE(Station->DeleteMessage(reference, true));
    }
    EXPECT_EQ(Station->GetMessage(reference)->Category(), tmcInbox);
}

TEST_F(MessageStoreTest, MessagesOfOthersAndOfNobodyGoByOneRightPersonalOnesByAnother)
{
    const auto mayMove = [this](qint32 contact, DirectoryRight right) {
        const cMessagePtr message = MakeMessage(QStringLiteral("s"));
        message->SetPersonalToContact(contact);
        EXPECT_TRUE(Station->SaveMessage(message));
        Directory.User.Rights = static_cast<int>(right);
        return Station->MoveMessage(message->Reference(), tmcSaved);
    };
    EXPECT_TRUE(mayMove(7, DirectoryRight::CanEditPersonalMessages));
    EXPECT_FALSE(mayMove(7, DirectoryRight::CanEditMessages));
    EXPECT_FALSE(mayMove(8, DirectoryRight::CanEditPersonalMessages));
    EXPECT_TRUE(mayMove(8, DirectoryRight::CanEditMessages));
    EXPECT_FALSE(mayMove(0, DirectoryRight::CanEditPersonalMessages));
    EXPECT_TRUE(mayMove(0, DirectoryRight::CanEditMessages));
}

TEST_F(MessageStoreTest, SavingNeedsNoRight)
{
    Directory.User.Rights = 0;
    EXPECT_TRUE(Station->SaveMessage(MakeMessage(QStringLiteral("s"))));
}

TEST_F(MessageStoreTest, TheStampCanBeSetAndCleared)
{
    Station->SetLastMessageChanged(Date(46347.123456789));
    EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("Messages.LastChanged"), QString()).toString(),
              QStringLiteral("46347.12345679"));
    Station->SetLastMessageChanged(Date());
    EXPECT_TRUE(Station->LastMessageChanged().IsNone());
    EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("Messages.LastChanged"), QString()).toString(),
              QStringLiteral("0"));
}

TEST_F(MessageStoreTest, AnotherComputersChangeSinceTheReadIsOverwrittenByASaveButNotWithinOne)
{
    const qint32 reference = SaveNew(QStringLiteral("Request"));
    cTolvaDatabase other;
    other.SetDirectoryDatabase(&Directory);
    ASSERT_EQ(other.OpenTolvaDatabase(Folder.path()), 0);
    ASSERT_TRUE(other.MoveMessage(reference, tmcSaved));
    EXPECT_EQ(Station->GetMessage(reference)->Category(), tmcSaved);
}

TEST_F(MessageStoreTest, FlagsChangeAloneAndOnTopOfWhatOthersChanged)
{
    OpenStation();
    Station->SetDatabaseSetting(QStringLiteral("Messages.HighlightWords"), QStringLiteral("rain"), QString());
    Station->ReadDatabaseSettings();
    const cMessagePtr message = MakeMessage(QStringLiteral("A card"));
    message->CDOMessage()->SetHTMLBody(QStringLiteral("<p>It may rain.</p>"));
    ASSERT_TRUE(Station->SaveMessage(message));
    const QByteArray octets = Station->GetMessage(message->Reference())->CDOMessage()->Octets();
    // Another computer moves it and marks it while this one still holds the old record.
    ASSERT_TRUE(Station->MoveMessage(message->Reference(), tmcSaved));
    const Date stamp = Station->LastMessageChanged();
    Now.Advance(60);
    Directory.User.Log.clear();
    cMessagePtr told;
    QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, Station.get(),
                     [&](const cMessagePtr& saved, bool) { told = saved; });

    ASSERT_TRUE(Station->ChangeMessageFlags(message->Reference(), mfRead | mfAutomatic, 0));
    ASSERT_TRUE(Station->ChangeMessageFlags(message->Reference(), mfSendPending, mfAutomatic));
    const cMessagePtr stored = Station->GetMessage(message->Reference());
    EXPECT_EQ(stored->Flags(), mfRead | mfSendPending);
    EXPECT_EQ(stored->Category(), tmcSaved);
    EXPECT_EQ(stored->CDOMessage()->Octets(), octets) << "no second marks";
    EXPECT_NE(Station->LastMessageChanged(), stamp);
    EXPECT_EQ(Audit(), QStringList(2, QStringLiteral("7 Message Edited: A card (1)")));
    ASSERT_TRUE(told);
    EXPECT_EQ(told->Flags(), mfRead | mfSendPending);
}

TEST_F(MessageStoreTest, FlagsChangeOnlyWithTheRightAndOnMessagesThatAreThere)
{
    OpenStation();
    const qint32 reference = SaveNew(QStringLiteral("A card"));
    EXPECT_FALSE(Station->ChangeMessageFlags(reference + 1, mfRead, 0));
    EXPECT_FALSE(Station->ChangeMessageFlags(0, mfRead, 0));
    Directory.User.Rights = 0;
    EXPECT_FALSE(Station->ChangeMessageFlags(reference, mfRead, 0));
    EXPECT_EQ(Station->GetMessage(reference)->Flags() & mfRead, 0);
}

TEST_F(MessageStoreTest, WhereTheHostWantsItEveryChangeMovesTheStamp)
{
    Station->SetStampsEveryChange(true);
    const qint32 reference = SaveNew(QStringLiteral("Hello"));
    Date stamp;
    const auto isStamped = [&](bool isDone) {
        EXPECT_TRUE(isDone);
        const Date before = std::exchange(stamp, Station->LastMessageChanged());
        return stamp != before;
    };
    isStamped(true);
    Now.Advance(60);
    EXPECT_TRUE(isStamped(Station->MoveMessage(reference, tmcSaved)));
    Now.Advance(60);
    EXPECT_TRUE(isStamped(Station->DeleteMessage(reference, false)));
    Now.Advance(60);
    EXPECT_TRUE(isStamped(Station->DeleteMessagesOfCategory(tmcDeleted)));
}

TEST_F(MessageStoreTest, WhatWentOutStandsInSentWithoutItsMarkAndWithTheSameMail)
{
    OpenStation();
    Station->SetDatabaseSetting(QStringLiteral("Messages.HighlightWords"), QStringLiteral("card"), QString());
    ASSERT_TRUE(Station->ReadDatabaseSettings());
    const cMessagePtr message = MakeMessage(QStringLiteral("A card"));
    message->CDOMessage()->SetHTMLBody(QStringLiteral("<p>A card</p>"));
    message->SetCategory(tmcOutbox);
    message->SetFlags(mfSendPending | mfRead);
    ASSERT_TRUE(Station->SaveMessage(message));
    const QByteArray octets = Station->GetMessage(message->Reference())->CDOMessage()->Octets();
    const Date stamp = Station->LastMessageChanged();
    Now.Advance(60);
    Directory.User.Log.clear();
    cMessagePtr told;
    QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, Station.get(),
                     [&](const cMessagePtr& saved, bool) { told = saved; });

    ASSERT_TRUE(Station->MarkMessageSent(message->Reference(), Date(2026, 11, 21, 14, 6, 0)));
    const cMessagePtr stored = Station->GetMessage(message->Reference());
    EXPECT_EQ(stored->Category(), tmcSent);
    EXPECT_EQ(stored->Flags(), mfRead);
    EXPECT_EQ(stored->SentString(), QStringLiteral("21/11/2026 14:06:00"));
    EXPECT_EQ(stored->CDOMessage()->Octets(), octets) << "no second marks";
    EXPECT_NE(Station->LastMessageChanged(), stamp);
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("7 Message Edited: A card Sent (1)")});
    ASSERT_TRUE(told);
    EXPECT_EQ(told->Category(), tmcSent);
    EXPECT_FALSE(Station->MarkMessageSent(message->Reference(), Date(2026, 11, 21, 14, 7, 0))) << "it waits no more";
}

TEST_F(MessageStoreTest, OnlyWhatWaitsIsMarkedAsSentAndOnlyWithTheRight)
{
    OpenStation();
    const cMessagePtr message = MakeMessage(QStringLiteral("A card"));
    message->SetCategory(tmcOutbox);
    ASSERT_TRUE(Station->SaveMessage(message));
    const Date sent(2026, 11, 21, 14, 6, 0);
    EXPECT_FALSE(Station->MarkMessageSent(message->Reference(), sent)) << "being written";
    ASSERT_TRUE(Station->ChangeMessageFlags(message->Reference(), mfSendPending, 0));
    Directory.User.Rights = 0;
    EXPECT_FALSE(Station->MarkMessageSent(message->Reference(), sent));
    Directory.User.Rights = 31;
    ASSERT_TRUE(Station->MoveMessage(message->Reference(), tmcDrafts));
    EXPECT_FALSE(Station->MarkMessageSent(message->Reference(), sent)) << "taken back";
    EXPECT_EQ(Station->LastErrorNumber(), 0);
    EXPECT_EQ(Station->GetMessage(message->Reference())->Category(), tmcDrafts);
    EXPECT_FALSE(Station->MarkMessageSent(99, sent));
}
