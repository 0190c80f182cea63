// SPDX-License-Identifier: Apache-2.0

// The messages to and from one contact, filled into a host's list.

#include "messages/MessageHistory.h"

#include "common/ClockHelper.h"
#include "common/ListViewObject.h"
#include "core/support/StationTest.h"

namespace
{
/// A host's list that writes down what it is told.
class RecordingList : public ListViewObject
{
public:
    struct Item
    {
        QString Key;
        QStringList Texts;
        QVariantList SortValues;
    };

    explicit RecordingList(const QStringList& keys) : Keys(keys) {}

    QString TypeName() const override { return Type; }
    int ColumnCount() const override { return static_cast<int>(Keys.size()); }
    QString ColumnKey(int column) const override { return Keys.at(column); }
    void ClearItems() override
    {
        ++Clears;
        Items.clear();
    }
    bool AddListItem(const QString& key, const QStringList& texts, const QVariantList& sortValues) override
    {
        Items.append({key, texts, sortValues});
        return true;
    }
    QStringList Column(int column) const
    {
        QStringList texts;
        for (const Item& item : Items)
            texts.append(item.Texts.value(column));
        return texts;
    }

    QStringList Keys;
    QString Type = QStringLiteral("ListView");
    int Clears = 0;
    QList<Item> Items;
};

class MessageHistoryTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }

    /// Saves a message that was sent that many hours after noon of the first of July.
    qint32 Save(const QString& subject, const QString& from, int hour = 0, const QString& to = {},
                const QString& cc = {}, enMsgType type = emtEmail, qint32 category = tmcInbox)
    {
        const cMessagePtr message = MakeMessage(subject, from);
        message->CDOMessage()->SetTo(to);
        message->CDOMessage()->SetCC(cc);
        message->SetMessageType(type);
        message->SetCategory(static_cast<enTolvaMessageCategories>(category));
        message->SetSent(hour < 0 ? Date() : Date(2026, 7, 1, 12 + hour));
        EXPECT_TRUE(Station->SaveMessage(message));
        return message->Reference();
    }
    QStringList Subjects(const QString& addresses, const QString& numbers = {})
    {
        RecordingList list({QStringLiteral("Subject")});
        Station->FillMessagesListView(&list, addresses, numbers);
        return list.Column(0);
    }
    RecordingList Filled(const QStringList& keys)
    {
        RecordingList list(keys);
        Station->FillMessagesListView(&list, {}, {});
        return list;
    }
};

const QString Ann = QStringLiteral("Ann <ann@example.com>");
} // namespace

TEST_F(MessageHistoryTest, MessagesFromToAndInCopyAreThereTheNewestSentFirst)
{
    Save(QStringLiteral("from"), Ann, 1);
    Save(QStringLiteral("to"), QStringLiteral("studio@example.org"), 3,
         QStringLiteral("bob@example.org, Ann <ann@example.com>"));
    Save(QStringLiteral("copy"), QStringLiteral("studio@example.org"), 2, {}, Ann);
    Save(QStringLiteral("other"), QStringLiteral("bob@example.org"), 4);
    EXPECT_EQ(Subjects(QStringLiteral("ann@example.com")),
              QStringList({QStringLiteral("to"), QStringLiteral("copy"), QStringLiteral("from")}));
}

TEST_F(MessageHistoryTest, AnAddressMatchesWholeAndInAnyCase)
{
    Save(QStringLiteral("case"), QStringLiteral("ANN@Example.com"));
    Save(QStringLiteral("longer"), QStringLiteral("joann@example.com"));
    Save(QStringLiteral("further"), QStringLiteral("ann@example.com.au"));
    EXPECT_EQ(Subjects(QStringLiteral("ann@EXAMPLE.com")), QStringList(QStringLiteral("case")));
    EXPECT_TRUE(Subjects(QStringLiteral("ann")).isEmpty());
}

TEST_F(MessageHistoryTest, SeveralAddressesAndNumbersAddUp)
{
    Save(QStringLiteral("first"), Ann, 1);
    Save(QStringLiteral("second"), QStringLiteral("ann@work.example"), 2);
    Save(QStringLiteral("text"), QStringLiteral("+447700900123"), 3, {}, {}, emtSMS);
    Save(QStringLiteral("other"), QStringLiteral("07700900124"), 4, {}, {}, emtSMS);
    EXPECT_EQ(Subjects(QStringLiteral("ann@example.com|ann@work.example"), QStringLiteral("07700 900123|01632 960123")),
              QStringList({QStringLiteral("text"), QStringLiteral("second"), QStringLiteral("first")}));
}

TEST_F(MessageHistoryTest, AnEntryThatIsNoNumberIsPassedOver)
{
    Save(QStringLiteral("text"), QStringLiteral("07700900123"), 0, {}, {}, emtSMS);
    Save(QStringLiteral("other"), QStringLiteral("82211"), 0, {}, {}, emtSMS);
    EXPECT_EQ(Subjects({}, QStringLiteral("07700900123|no number|000|")), QStringList(QStringLiteral("text")));
}

TEST_F(MessageHistoryTest, ShortCodesLocalNumbersAndNumbersOfOtherCountriesAreFound)
{
    for (const char* number : {"82211", "960 100", "+49 7700 900123", "07700 900123", "999", "12345678901234567890"})
        Save(QLatin1String(number), QLatin1String(number), 0, {}, {}, emtSMS);
    for (const char* number : {"82211", "960 100", "+49 7700 900123", "07700 900123", "999", "12345678901234567890"})
        EXPECT_EQ(Subjects({}, QLatin1String(number)), QStringList(QLatin1String(number)));
    EXPECT_EQ(Subjects({}, QStringLiteral("8-22 11")), QStringList(QStringLiteral("82211")));
    EXPECT_EQ(Subjects({}, QStringLiteral("00497700900123")), QStringList(QStringLiteral("+49 7700 900123")));
}

TEST_F(MessageHistoryTest, ASendersNameIsFoundAsAnAddress)
{
    Save(QStringLiteral("bank"), QStringLiteral("MyBank"), 0, {}, {}, emtSMS);
    Save(QStringLiteral("other"), QStringLiteral("82211"), 0, {}, {}, emtSMS);
    EXPECT_EQ(Subjects(QStringLiteral("MyBank")), QStringList(QStringLiteral("bank")));
}

TEST_F(MessageHistoryTest, NumbersAreReadInTheFormOfTheStationsCountryOnEveryComputer)
{
    Station->SetStationCountry(QStringLiteral("de"));
    EXPECT_EQ(Station->StationCountry(), u"DE");
    Save(QStringLiteral("here"), QStringLiteral("0171 1234567"), 1, {}, {}, emtSMS);
    Save(QStringLiteral("there"), QStringLiteral("+44 7700 900123"), 0, {}, {}, emtSMS);
    Machine.Set(QStringLiteral("SOFTWARE\\Kelvarin"), QStringLiteral("Country"), QStringLiteral("FR"));
    EXPECT_EQ(Subjects({}, QStringLiteral("+49 171 1234567")), QStringList(QStringLiteral("here")));
    EXPECT_EQ(Subjects({}, QStringLiteral("0044 7700 900123")), QStringList(QStringLiteral("there")));
    EXPECT_EQ(Subjects({}, QStringLiteral("07700 900123")), QStringList());
}

TEST_F(MessageHistoryTest, WithoutAddressesAndNumbersEveryMessageIsThere)
{
    Save(QStringLiteral("late"), QStringLiteral("bob@example.org"), 5);
    Save(QStringLiteral("early"), Ann, 1);
    Save(QStringLiteral("text"), QStringLiteral("82211"), 3, {}, {}, emtSMS);
    const QStringList all{QStringLiteral("late"), QStringLiteral("text"), QStringLiteral("early")};
    EXPECT_EQ(Subjects({}), all);
}

TEST_F(MessageHistoryTest, NoEntryTurnsIntoEveryMessage)
{
    Save(QStringLiteral("text"), QStringLiteral("82211"), 3, {}, {}, emtSMS);
    Save(QStringLiteral("mail"), Ann, 1);
    for (const char* entries : {"none", "MyBank", "0", "000|none", "|", "?", "+"})
        EXPECT_EQ(Subjects({}, QLatin1String(entries)), QStringList()) << entries;
}

TEST_F(MessageHistoryTest, AnEmptyAddressMatchesNeighbouringBarsAlone)
{
    Save(QStringLiteral("neighbours"), QStringLiteral("studio@example.org"), 0,
         QStringLiteral("a@example.org,,b@example.org"));
    Save(QStringLiteral("ordinary"), Ann);
    EXPECT_EQ(Subjects(QStringLiteral("nobody@example.org|")), QStringList(QStringLiteral("neighbours")));
    EXPECT_EQ(Subjects(QStringLiteral("|")), QStringList(QStringLiteral("neighbours")));
}

TEST_F(MessageHistoryTest, EachCharacterOfAnAddressMeansItself)
{
    Save(QStringLiteral("plain"), Ann);
    const QStringList odd{
        QStringLiteral("a*@example.com"),     QStringLiteral("a?n@example.com"),     QStringLiteral("a#1@example.com"),
        QStringLiteral("a[n]n@example.com"),  QStringLiteral("\"a n\"@example.com"), QStringLiteral("a]b@example.com"),
        QStringLiteral("o'hara@example.com"), QStringLiteral("a!b-c@example.com"),   QStringLiteral("*")};
    for (const QString& address : odd)
        EXPECT_TRUE(Subjects(address).isEmpty()) << address.toStdString();
    for (const QString& address : odd)
        Save(address, QStringLiteral("X <%1>").arg(address));
    for (const QString& address : odd) {
        if (address.contains(u' '))
            continue; // A key has no blanks.
        EXPECT_EQ(Subjects(address), QStringList(address));
    }
}

TEST_F(MessageHistoryTest, ADoubleQuoteNeitherEndsThePatternNorBreaksTheQuery)
{
    Save(QStringLiteral("plain"), Ann);
    EXPECT_TRUE(Subjects(QStringLiteral("x|*\" OR [FromKey] LIKE \"*")).isEmpty());
    Save(QStringLiteral("quoted"), QStringLiteral("X <\"ann\"@example.com>"));
    EXPECT_EQ(Subjects(QStringLiteral("\"ann\"@example.com")), QStringList(QStringLiteral("quoted")));
}

TEST_F(MessageHistoryTest, TheColumnsKeysSayWhatIsShownAndTheItemsAreKnownByReference)
{
    const qint32 reference = Save(QStringLiteral("Hello"), Ann);
    const RecordingList list = Filled(
        {QStringLiteral("Subject"), QStringLiteral("FromKey"), QStringLiteral("folder"), QStringLiteral("Sent")});
    ASSERT_EQ(list.Items.size(), 1);
    EXPECT_EQ(list.Items.first().Key, QStringLiteral("m%1").arg(reference));
    EXPECT_EQ(list.Items.first().Texts,
              QStringList({QStringLiteral("Hello"), QStringLiteral("|ann@example.com|"), QStringLiteral("Inbox"),
                           Date(2026, 7, 1, 12).Format(QStringLiteral("ddd ddddd hh:nn"))}));
}

TEST_F(MessageHistoryTest, SentIsLocalTimeAndSortsByItsDate)
{
    Save(QStringLiteral("winter"), Ann);
    const RecordingList list = Filled({QStringLiteral("Subject"), QStringLiteral("SENT")});
    ASSERT_EQ(list.Items.size(), 1);
    EXPECT_EQ(list.Items.first().Texts.at(1), Date(2026, 7, 1, 12).Format(QStringLiteral("ddd ddddd hh:nn")));
    ASSERT_EQ(list.Items.first().SortValues.size(), 2);
    EXPECT_FALSE(list.Items.first().SortValues.first().isValid());
    EXPECT_NEAR(list.Items.first().SortValues.at(1).toDouble(), Date(2026, 7, 1, 11).DayNumber(), 1e-6);
}

TEST_F(MessageHistoryTest, AMessageThatWasNeverSentShowsNoDateAndStandsLast)
{
    Save(QStringLiteral("unsent"), Ann, -1);
    Save(QStringLiteral("sent"), Ann, 1);
    const RecordingList list = Filled({QStringLiteral("Subject"), QStringLiteral("Sent")});
    EXPECT_EQ(list.Column(0), QStringList({QStringLiteral("sent"), QStringLiteral("unsent")}));
    EXPECT_EQ(list.Column(1).last(), QString());
    EXPECT_FALSE(list.Items.last().SortValues.at(1).isValid());
}

TEST_F(MessageHistoryTest, AFolderThatTheTreeDoesNotHaveIsUnknown)
{
    Save(QStringLiteral("lost"), Ann, 2, {}, {}, emtEmail, 4711);
    Save(QStringLiteral("nowhere"), Ann, 1, {}, {}, emtEmail, 0);
    const RecordingList list = Filled({QStringLiteral("Subject"), QStringLiteral("Folder")});
    EXPECT_EQ(list.Column(1), QStringList({QStringLiteral("(Unknown)"), QStringLiteral("(Unknown)")}));
}

TEST_F(MessageHistoryTest, AFolderOfTheUsersStandsUnderItsName)
{
    clsCategory folder;
    folder.SetDescription(QStringLiteral("Competitions"));
    ASSERT_TRUE(Station->SaveMessageCategory(folder));
    Station->UpdateCategoryTree();
    Save(QStringLiteral("entry"), Ann, 0, {}, {}, emtEmail, folder.Reference());
    EXPECT_EQ(Filled({QStringLiteral("Subject"), QStringLiteral("FOLDER")}).Column(1),
              QStringList(QStringLiteral("Competitions")));
}

TEST_F(MessageHistoryTest, AnUnknownColumnStaysEmptyAndTheFillGoesOn)
{
    Save(QStringLiteral("one"), Ann, 2);
    Save(QStringLiteral("two"), Ann, 1);
    const RecordingList list = Filled({QStringLiteral("Nonsense"), QStringLiteral("Subject"), QString()});
    EXPECT_EQ(list.Column(0), QStringList({QString(), QString()}));
    EXPECT_EQ(list.Column(1), QStringList({QStringLiteral("one"), QStringLiteral("two")}));
    EXPECT_EQ(list.Column(2), QStringList({QString(), QString()}));
}

TEST_F(MessageHistoryTest, TheFirstColumnsKeyAlwaysNamesAField)
{
    Save(QStringLiteral("one"), Ann);
    EXPECT_EQ(Filled({QStringLiteral("FOLDER")}).Column(0), QStringList(QString()));
    // The field as it is stored, in universal time.
    EXPECT_EQ(Filled({QStringLiteral("SENT")}).Column(0), QStringList(Date(2026, 7, 1, 11).GeneralDate()));
}

TEST_F(MessageHistoryTest, OtherFieldsShowTheirValuesAsTexts)
{
    const qint32 reference = Save(QStringLiteral("one"), Ann);
    const RecordingList list =
        Filled({QStringLiteral("Reference"), QStringLiteral("HasHighlightWords"), QStringLiteral("Received"),
                QStringLiteral("SendAfter"), QStringLiteral("Message")});
    ASSERT_EQ(list.Items.size(), 1);
    const QStringList texts = list.Items.first().Texts;
    EXPECT_EQ(texts.at(0), QString::number(reference));
    EXPECT_EQ(texts.at(1), QStringLiteral("0"));
    EXPECT_EQ(texts.at(2), Date(ClockHelper::LocalToUTC(ClockHelper::CurrentTime())).GeneralDate());
    EXPECT_EQ(texts.at(3), QString());
    EXPECT_TRUE(texts.at(4).contains(QStringLiteral("ann@example.com"))) << texts.at(4).toStdString();
    EXPECT_EQ(list.Items.first().SortValues.first(), QVariant(reference));
}

TEST_F(MessageHistoryTest, WhatStoodInTheListGoes)
{
    RecordingList list({QStringLiteral("Subject")});
    list.AddListItem(QStringLiteral("old"), {QStringLiteral("old")}, {});
    Station->FillMessagesListView(&list, QStringLiteral("ann@example.com"), {});
    EXPECT_EQ(list.Clears, 1);
    EXPECT_TRUE(list.Items.isEmpty());
}

TEST_F(MessageHistoryTest, AListOfAnotherKindOrWithoutColumnsIsLeftAlone)
{
    Save(QStringLiteral("one"), Ann);
    RecordingList other({QStringLiteral("Subject")});
    other.Type = QStringLiteral("ListBox");
    Station->FillMessagesListView(&other, {}, {});
    EXPECT_EQ(other.Clears, 0);
    EXPECT_TRUE(other.Items.isEmpty());
    RecordingList bare({});
    Station->FillMessagesListView(&bare, {}, {});
    EXPECT_EQ(bare.Clears, 0);
    EXPECT_TRUE(bare.Items.isEmpty());
    Station->FillMessagesListView(nullptr, {}, {});
}

TEST_F(MessageHistoryTest, AClosedStationLeavesTheListAlone)
{
    RecordingList list({QStringLiteral("Subject")});
    list.AddListItem(QStringLiteral("old"), {QStringLiteral("old")}, {});
    cTolvaDatabase closed;
    closed.FillMessagesListView(&list, {}, {});
    EXPECT_EQ(list.Clears, 0);
    EXPECT_EQ(list.Items.size(), 1);
}

TEST_F(MessageHistoryTest, AmongSomeMessagesThoseOfTheContactAreShownAsAmongAll)
{
    const qint32 oldest = Save(QStringLiteral("oldest"), Ann, 1);
    const qint32 newest = Save(QStringLiteral("newest"), QStringLiteral("studio@example.org"), 3, Ann);
    Save(QStringLiteral("not among them"), Ann, 2);
    const qint32 other = Save(QStringLiteral("other"), QStringLiteral("bob@example.org"), 4);
    const qint32 text = Save(QStringLiteral("text"), QStringLiteral("+447700900123"), 5, {}, {}, emtSMS);
    const QStringList keys{QStringLiteral("Subject"), QStringLiteral("FOLDER"), QStringLiteral("SENT")};
    const auto among = [&](const QString& addresses, const QString& numbers, const QList<qint32>& references) {
        RecordingList list(keys);
        list.AddListItem(QStringLiteral("old"), {QStringLiteral("old")}, {});
        MessageHistory::FillAmong(*Station, list, addresses, numbers, references);
        return list;
    };
    const QString address = QStringLiteral("ann@example.com");
    EXPECT_EQ(among(address, {}, {oldest, newest, other, text, 99999}).Column(0),
              QStringList({QStringLiteral("newest"), QStringLiteral("oldest")}));
    EXPECT_EQ(among(address, QStringLiteral("07700 900123"), {other, text}).Column(0),
              QStringList(QStringLiteral("text")));
    EXPECT_TRUE(among(address, {}, {}).Items.isEmpty());
    RecordingList all(keys);
    Station->FillMessagesListView(&all, QStringLiteral("bob@example.org"), {});
    const RecordingList one = among(QStringLiteral("bob@example.org"), {}, {other});
    for (int column = 0; column < keys.size(); ++column)
        EXPECT_EQ(one.Column(column), all.Column(column));
}
