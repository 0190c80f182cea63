// SPDX-License-Identifier: Apache-2.0

// A contact's messages: sooner by the search index, in the end by the station's query.

#include "contacts/ContactHistory.h"

#include "StationPlace.h"
#include "WindowTest.h"
#include "contacts/ContactDesk.h"
#include "contacts/ContactsWindow.h"
#include "platform/widgets/ListView.h"
#include "search/SearchDesk.h"
#include "search/SearchService.h"

#include <QLabel>

namespace
{
class ContactHistoryTest : public WindowTest
{
protected:
    qint32 Add(const QString& name, const QString& mobile, const QString& email)
    {
        clsKVContact contact{0, name, mobile, {}, email, {}, {}};
        Station.Directory().SaveContact(contact);
        return contact.Reference;
    }
    void FileText(const QByteArray& from)
    {
        const auto message = std::make_shared<cMessage>();
        message->SetMessageType(emtSMS);
        message->SetCDOMessage(std::make_shared<cdo::Message>(Mail("Text", "Hello.\r\n", from)));
        message->SetCategory(tmcInbox);
        ASSERT_TRUE(Station.Database().SaveMessage(message));
    }
    /// Opens the desk with its contacts; the query for a history waits until RunQuery.
    void Open()
    {
        OpenWindow();
        Window->Contacts().ShowContacts();
        Wait().setInterval(3'600'000);
    }
    void OpenWithIndex()
    {
        Open();
        Window->Search().Service().Start();
        ASSERT_TRUE(WaitUntil([this] { return Window->Search().Service().IsComplete(); }, 20'000));
    }
    void RunQuery()
    {
        Wait().start(0);
        ASSERT_TRUE(WaitUntil([this] { return History().IsFilled(); }));
    }
    ContactsWindow& Contacts() { return *Window->Contacts().Window(); }
    ContactHistory& History() { return Contacts().History(); }
    QTimer& Wait() { return *History().findChild<QTimer*>(QStringLiteral("contactHistoryWait")); }
    ListView& Messages() { return *History().findChild<ListView*>(QStringLiteral("contactMessages")); }
    QString Note() { return History().findChild<QLabel*>(QStringLiteral("contactMessagesNote"))->text(); }
    QStringList Subjects()
    {
        QStringList subjects;
        for (const QString& key : Messages().Keys())
            subjects.append(Messages().SubItem(key, 0));
        return subjects;
    }
    /// Whether the index's answer has come and shows no more than that.
    bool Shows(const QStringList& subjects, int milliseconds = 20'000)
    {
        return WaitUntil([&] { return Subjects() == subjects; }, milliseconds) && !History().IsFilled();
    }
};

QByteArray OnDay(QByteArray mail, const QByteArray& day)
{
    return mail.replace("20 Nov", day + " Nov");
}

const QString Older = QStringLiteral("Older");
const QString Newer = QStringLiteral("Newer");
} // namespace

TEST_F(ContactHistoryTest, TheIndexShowsTheMessagesBeforeTheQueryRuns)
{
    FileMail(OnDay(Mail("Older", "Hello.\r\n", "Ann <ann@example.org>"), "02"), tmcSaved);
    FileMail(OnDay(Mail("Newer", "Hello.\r\n", "ANN@example.org"), "12"));
    FileMail(Mail("Other", "ann@example.org\r\n", "Bob <bob@example.org>"));
    const qint32 ann = Add(QStringLiteral("Ann"), {}, QStringLiteral("ann@example.org"));
    OpenWithIndex();
    Contacts().ShowContact(ann);
    ASSERT_TRUE(Shows({Newer, Older}));
    EXPECT_EQ(Messages().SubItem(Messages().Keys().last(), 2), QStringLiteral("Saved"));
    EXPECT_TRUE(Note().isEmpty()) << "how many there are only the query knows";
    Messages().SelectKey(Messages().Keys().last());
    const QStringList shown = Messages().Keys();
    RunQuery();
    EXPECT_EQ(Messages().Keys(), shown);
    EXPECT_EQ(Messages().SelectedKey(), shown.last()) << "what is the same already is left alone";
    EXPECT_EQ(Note(), QStringLiteral("2 messages"));
}

TEST_F(ContactHistoryTest, WhatTheIndexCannotKnowIsAddedByTheQueryInItsOrder)
{
    FileMail(OnDay(Mail("Newer", "Hello.\r\n", "Ann <ann@example.org>"), "12"));
    FileText("82211"); // a short code, which the index does not know from any other figure
    FileMail(OnDay(Mail("Older", "Hello.\r\n", "Ann <ann@example.org>"), "02"));
    const qint32 ann = Add(QStringLiteral("Ann"), QStringLiteral("82211"), QStringLiteral("ann@example.org"));
    OpenWithIndex();
    Contacts().ShowContact(ann);
    ASSERT_TRUE(Shows({Newer, Older}));
    Messages().SelectKey(Messages().Keys().last());
    const QString selected = Messages().SelectedKey();
    RunQuery();
    EXPECT_EQ(Subjects(), (QStringList{QStringLiteral("Text"), Newer, Older}));
    EXPECT_EQ(Messages().SelectedKey(), selected);
    EXPECT_EQ(Note(), QStringLiteral("3 messages"));
}

TEST_F(ContactHistoryTest, WhatTheIndexFindsButTheQueryDoesNotIsNeverShown)
{
    FileMail(Mail("Newer", "Hello.\r\n", "Ann <ann@example.org>"));
    FileMail(Mail("Answers elsewhere", "Hello.\r\n", "Bob <bob@example.org>\r\nReply-To: ann@example.org"));
    const qint32 ann = Add(QStringLiteral("Ann"), {}, QStringLiteral("ann@example.org"));
    OpenWithIndex();
    Contacts().ShowContact(ann);
    ASSERT_TRUE(WaitUntil([this] { return Messages().ItemCount() > 0; }, 20'000));
    EXPECT_EQ(Subjects(), QStringList(Newer));
    RunQuery();
    EXPECT_EQ(Subjects(), QStringList(Newer));
}

TEST_F(ContactHistoryTest, ATextMessagesNumberIsKnownToTheIndexInAnyForm)
{
    FileText("+447700900123");
    FileText("07700900124");
    const qint32 ann = Add(QStringLiteral("Ann"), QStringLiteral("07700 900123"), {});
    OpenWithIndex();
    Contacts().ShowContact(ann);
    EXPECT_TRUE(Shows({QStringLiteral("Text")}));
}

TEST_F(ContactHistoryTest, TheAnswerForOneWhoIsPassedByIsNotShown)
{
    FileMail(Mail("Older", "Hello.\r\n", "Ann <ann@example.org>"));
    FileMail(Mail("Newer", "Hello.\r\n", "Bob <bob@example.org>"));
    const qint32 ann = Add(QStringLiteral("Ann"), {}, QStringLiteral("ann@example.org"));
    const qint32 bob = Add(QStringLiteral("Bob"), {}, QStringLiteral("bob@example.org"));
    OpenWithIndex();
    Contacts().ShowContact(ann);
    Contacts().ShowContact(bob);
    EXPECT_TRUE(Shows({Newer}));
    Contacts().ShowContact(ann);
    RunQuery();
    EXPECT_EQ(Subjects(), QStringList(Older));
    QTest::qWait(50);
    EXPECT_EQ(Subjects(), QStringList(Older));
}

TEST_F(ContactHistoryTest, WithoutAnIndexTheQueryAloneShowsThem)
{
    FileMail(Mail("Newer", "Hello.\r\n", "Ann <ann@example.org>"));
    const qint32 ann = Add(QStringLiteral("Ann"), {}, QStringLiteral("ann@example.org"));
    Open();
    Contacts().ShowContact(ann);
    EXPECT_FALSE(Shows({Newer}, 200));
    RunQuery();
    EXPECT_EQ(Subjects(), QStringList(Newer));
}

TEST_F(ContactHistoryTest, AHistoryThatCannotBeReadToItsEndSaysSoAndIsWholeTheNextTime)
{
    for (int i = 0; i < 40; ++i)
        FileMail(Mail("Many", QByteArray(3000, 'm'), "Ann <ann@example.org>"));
    const qint32 ann = Add(QStringLiteral("Ann"), {}, QStringLiteral("ann@example.org"));
    OpenWithIndex();
    Contacts().ShowContact(ann);
    ASSERT_TRUE(WaitUntil([this] { return Messages().ItemCount() == 40; }, 20'000));
    const QString file = StationPlace::FileIn(Folder());
    const QByteArray whole = Read(file);
    QByteArray damaged = whole;
    constexpr qsizetype PageSize = 4096;
    damaged.replace(PageSize, whole.size() - PageSize, QByteArray(whole.size() - PageSize, '\x5A'));
    ++damaged[27]; // the count of changes: what was read before is read again
    const auto put = [&](const QByteArray& content) {
        QFile station(file);
        ASSERT_TRUE(station.open(QIODevice::ReadWrite));
        ASSERT_EQ(station.write(content), content.size());
    };
    put(damaged);
    RunQuery();
    EXPECT_TRUE(Note().contains(QStringLiteral("damaged"))) << qPrintable(Note());
    EXPECT_LT(Messages().ItemCount(), 40);
    put(whole);
    History().Refresh();
    RunQuery();
    EXPECT_EQ(Note(), QStringLiteral("40 messages"));
    EXPECT_EQ(Messages().ItemCount(), 40);
}

TEST_F(ContactHistoryTest, TheHistoryDoesNotEndASearchOfTheSearchWindow)
{
    FileMail(Mail("Newer", "ferry\r\n", "Ann <ann@example.org>"));
    const qint32 ann = Add(QStringLiteral("Ann"), {}, QStringLiteral("ann@example.org"));
    OpenWithIndex();
    SearchService& service = Window->Search().Service();
    QList<int> answered;
    QObject::connect(&service, &SearchService::Found, &service,
                     [&answered](int search, const SearchResult&) { answered.append(search); });
    const int asked =
        service.Search(SearchService::Asker::SearchWindow,
                       SearchQuestion::Of(QStringLiteral("ferry"), SearchQuestion::Reading::Finished), {});
    Contacts().ShowContact(ann);
    ASSERT_TRUE(Shows({Newer}));
    EXPECT_TRUE(answered.contains(asked));
}
