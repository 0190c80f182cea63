// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactsWindow.h"

#include "AccessKeys.h"
#include "WindowTest.h"
#include "contacts/ContactDesk.h"
#include "contacts/ContactForm.h"
#include "contacts/ContactHistory.h"
#include "platform/widgets/ListView.h"
#include "support/ScriptedFileDialog.h"
#include "window/SavedNotice.h"

#include <QAbstractItemModelTester>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>

namespace
{
class ContactsWindowTest : public DeskTest
{
protected:
    void TearDown() override
    {
        if (Contacts) {
            EXPECT_TRUE(Contacts->close());
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        DeskTest::TearDown();
    }
    EmbeddedDirectory& Directory() { return Station.Directory(); }
    qint32 Add(const QString& name, const QString& mobile = {}, const QString& email = {}, const QString& other = {})
    {
        clsKVContact contact{0, name, mobile, {}, email, {}, other};
        Directory().SaveContact(contact);
        return contact.Reference;
    }
    ContactsWindow& Open()
    {
        Contacts = new ContactsWindow(Station);
        Contacts->show();
        Contacts->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(Contacts));
        return *Contacts;
    }
    /// On another computer.
    void ChangeThere(qint32 reference, const QString& name, const QString& mobile)
    {
        OtherComputer("contacts", {QStringLiteral("edit"), QString::number(reference), QStringLiteral("--name"), name,
                                   QStringLiteral("--mobile"), mobile});
    }
    template <class Widget>
    Widget& Find(const char* name)
    {
        return *Contacts->findChild<Widget*>(QLatin1String(name));
    }
    ListView& List() { return Find<ListView>("contacts"); }
    QLineEdit& Box(const char* name) { return Find<QLineEdit>(name); }
    QString Note() { return Find<QLabel>("contactsNote").text(); }
    QString Status() { return Contacts->statusBar()->currentMessage(); }
    void Click(const char* name) { QTest::mouseClick(&Find<QPushButton>(name), Qt::LeftButton); }
    void Type(const char* box, const QString& text)
    {
        Box(box).setFocus();
        Box(box).selectAll();
        QTest::keyClicks(&Box(box), text);
    }
    QStringList Names()
    {
        QStringList names;
        for (const QString& key : List().Keys())
            names.append(List().SubItem(key, 0));
        return names;
    }

    QPointer<ContactsWindow> Contacts;
};

QStringList Column(const ListView& list, int column)
{
    QStringList texts;
    for (const QString& key : list.Keys())
        texts.append(list.SubItem(key, column));
    return texts;
}
} // namespace

TEST_F(ContactsWindowTest, WithoutContactsItSaysSoAndOffersANewOne)
{
    Open();
    EXPECT_EQ(Note(), QStringLiteral("There are no contacts yet. \u201CNew\u201D takes in the first one, "
                                     "\u201CImport...\u201D in the menu \u201CContact\u201D a file of them."));
    EXPECT_FALSE(Contacts->Form().isEnabled());
    EXPECT_TRUE(Find<QPushButton>("newContact").isEnabled());
    for (const char* name : {"saveContact", "revertContact", "deleteContact"})
        EXPECT_FALSE(Find<QPushButton>(name).isEnabled()) << name;
}

TEST_F(ContactsWindowTest, TheFindBoxNarrowsTheListAndTheArrowKeysWalkIt)
{
    Add(QStringLiteral("Demelza"));
    Add(QStringLiteral("Zoë Penrose"), QStringLiteral("07700 900123"));
    Add(QStringLiteral("Wella"), {}, QStringLiteral("wella@example.org"));
    Open();
    const QAbstractItemModelTester tester(List().model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(Names(),
              QStringList({QStringLiteral("Demelza"), QStringLiteral("Wella"), QStringLiteral("Zoë Penrose")}));
    EXPECT_EQ(Note(), QStringLiteral("3 of 3"));
    Type("findContact", QStringLiteral("ZOE"));
    EXPECT_EQ(Names(), QStringList(QStringLiteral("Zoë Penrose")));
    EXPECT_EQ(Note(), QStringLiteral("1 of 3"));
    Type("findContact", QStringLiteral("e"));
    QTest::keyClick(&Box("findContact"), Qt::Key_Down);
    QTest::keyClick(&Box("findContact"), Qt::Key_Down);
    EXPECT_EQ(Box("contactName").text(), List().SubItem(List().SelectedKey(), 0));
    EXPECT_FALSE(Box("contactName").text().isEmpty());
    EXPECT_TRUE(Box("findContact").hasFocus());
}

TEST_F(ContactsWindowTest, NamesStandWithTheirAccentsWhereTheyAreLookedFor)
{
    for (const char* name : {"Zoe", "Élise", "emma", "Eve", "Zachary O’Neill"})
        Add(QString::fromUtf8(name));
    Open();
    EXPECT_EQ(Names(), QStringList({QStringLiteral("Élise"), QStringLiteral("emma"), QStringLiteral("Eve"),
                                    QStringLiteral("Zachary O’Neill"), QStringLiteral("Zoe")}));
    Type("findContact", QStringLiteral("ELISE"));
    EXPECT_EQ(Names(), QStringList(QStringLiteral("Élise")));
    Box("findContact").setText(QStringLiteral("éVE"));
    EXPECT_EQ(Names(), QStringList(QStringLiteral("Eve")));
    Type("findContact", QStringLiteral("o'n"));
    EXPECT_EQ(Names(), QStringList(QStringLiteral("Zachary O’Neill")));
}

TEST_F(ContactsWindowTest, ANewContactIsTypedSavedAndSelected)
{
    Open();
    Click("newContact");
    EXPECT_TRUE(Box("contactName").hasFocus());
    QTest::keyClicks(&Box("contactName"), QStringLiteral("  Zoe   Penrose "));
    Type("contactMobile", QStringLiteral("07700 900123"));
    EXPECT_EQ(Contacts->windowTitle(), QStringLiteral("Zoe Penrose – Contacts[*]"));
    QTest::keyClick(Contacts, Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Status(), QStringLiteral("Saved."));
    ASSERT_EQ(Directory().Contacts().size(), 1);
    const clsKVContactPtr stored = Directory().Contacts().first();
    EXPECT_EQ(stored->Name, QStringLiteral("Zoe Penrose"));
    EXPECT_EQ(stored->Mobile, QStringLiteral("07700 900123"));
    EXPECT_EQ(List().SelectedKey(), QString::number(stored->Reference));
    EXPECT_FALSE(Contacts->IsChanged());
}

TEST_F(ContactsWindowTest, AContactWithoutANameIsNotSavedAndStays)
{
    Open();
    Click("newContact");
    Type("contactMobile", QStringLiteral("07700 900123"));
    Ui.ExpectWarning(QStringLiteral("A contact needs a name."));
    Click("saveContact");
    EXPECT_TRUE(Directory().Contacts().isEmpty());
    EXPECT_EQ(Box("contactMobile").text(), QStringLiteral("07700 900123"));
    Click("revertContact");
    EXPECT_TRUE(Box("contactMobile").text().isEmpty());
}

TEST_F(ContactsWindowTest, WhoIsKnownAlreadyIsAskedAbout)
{
    Add(QStringLiteral("Wella"), QStringLiteral("07700 900123"));
    Open();
    Click("newContact");
    QTest::keyClicks(&Box("contactName"), QStringLiteral("W Rowe"));
    Type("contactTelephone", QStringLiteral("+447700900123"));
    Ui.ExpectConfirmation(QStringLiteral("Wella has +447700900123 already. Save another contact with it?"),
                          MessageBoxAnswer::No);
    Click("saveContact");
    EXPECT_EQ(Directory().Contacts().size(), 1);
    Ui.ExpectConfirmation(QStringLiteral("Wella has +447700900123 already. Save another contact with it?"),
                          MessageBoxAnswer::Yes);
    Click("saveContact");
    EXPECT_EQ(Directory().Contacts().size(), 2);
}

TEST_F(ContactsWindowTest, UnsavedChangesAreAskedAboutBeforeAnotherContactShows)
{
    const qint32 demelza = Add(QStringLiteral("Demelza"));
    const qint32 wella = Add(QStringLiteral("Wella"));
    Open().ShowContact(demelza);
    Type("contactMobile", QStringLiteral("1"));
    {
        const BoxAnswer box(QStringLiteral("Cancel"));
        List().SelectKey(QString::number(wella));
        EXPECT_EQ(box.Text(), QStringLiteral("Save the changes to Demelza?"));
    }
    EXPECT_EQ(List().SelectedKey(), QString::number(demelza));
    EXPECT_EQ(Box("contactMobile").text(), QStringLiteral("1"));
    {
        const BoxAnswer box(QStringLiteral("Save"));
        List().SelectKey(QString::number(wella));
    }
    EXPECT_EQ(Directory().GetContact(demelza)->Mobile, QStringLiteral("1"));
    EXPECT_EQ(Box("contactName").text(), QStringLiteral("Wella"));
    Type("contactMobile", QStringLiteral("2"));
    {
        const BoxAnswer box(QStringLiteral("Discard"));
        List().SelectKey(QString::number(demelza));
    }
    EXPECT_TRUE(Directory().GetContact(wella)->Mobile.isEmpty());
    EXPECT_EQ(Box("contactName").text(), QStringLiteral("Demelza"));
}

TEST_F(ContactsWindowTest, ClosingAsksAndStaysWhenToldSo)
{
    Open().ShowContact(Add(QStringLiteral("Demelza")));
    Type("contactMobile", QStringLiteral("1"));
    {
        const BoxAnswer box(QStringLiteral("Cancel"));
        EXPECT_FALSE(Contacts->close());
    }
    EXPECT_TRUE(Contacts->isVisible());
    const BoxAnswer box(QStringLiteral("Discard"));
    EXPECT_TRUE(Contacts->close());
}

TEST_F(ContactsWindowTest, AFormThatWasOnlyShownIsUnchangedWhateverTheContactHolds)
{
    const qint32 reference =
        Add(QStringLiteral(" Two\nlines "), QStringLiteral(" 07700 900123 "), {}, QStringLiteral("\n\nNote \n"));
    Open().ShowContact(reference);
    EXPECT_FALSE(Contacts->IsChanged());
    Type("contactEmail", QStringLiteral("two@example.org"));
    EXPECT_TRUE(Contacts->Save());
    const clsKVContactPtr stored = Directory().GetContact(reference);
    EXPECT_EQ(stored->Name, QStringLiteral(" Two\nlines "));
    EXPECT_EQ(stored->Mobile, QStringLiteral(" 07700 900123 "));
    EXPECT_EQ(stored->Other, QStringLiteral("\n\nNote \n"));
    EXPECT_EQ(stored->Email, QStringLiteral("two@example.org"));
}

TEST_F(ContactsWindowTest, AChangeOnAnotherComputerIsShownAndBothChangesAreKept)
{
    const qint32 reference = Add(QStringLiteral("Wella"), QStringLiteral("1"));
    Open().ShowContact(reference);
    Type("contactEmail", QStringLiteral("w@example.org"));
    ChangeThere(reference, QStringLiteral("Wella"), QStringLiteral("2"));
    const BoxAnswer box(QStringLiteral("Save my changes"));
    EXPECT_TRUE(Contacts->Save());
    EXPECT_EQ(box.Text(), QStringLiteral("Wella was changed on another computer while you changed it here."));
    const clsKVContactPtr stored = Directory().GetContact(reference);
    EXPECT_EQ(stored->Mobile, QStringLiteral("2"));
    EXPECT_EQ(stored->Email, QStringLiteral("w@example.org"));
    EXPECT_EQ(Box("contactMobile").text(), QStringLiteral("2"));
}

TEST_F(ContactsWindowTest, TheirChangeCanBeTakenAndAConflictLeftOpen)
{
    const qint32 reference = Add(QStringLiteral("Wella"), QStringLiteral("1"));
    Open().ShowContact(reference);
    Type("contactMobile", QStringLiteral("3"));
    ChangeThere(reference, QStringLiteral("Wella"), QStringLiteral("2"));
    {
        const BoxAnswer box(QStringLiteral("Cancel"));
        EXPECT_FALSE(Contacts->Save());
    }
    EXPECT_EQ(Box("contactMobile").text(), QStringLiteral("3"));
    EXPECT_EQ(Directory().GetContact(reference)->Mobile, QStringLiteral("2"));
    const BoxAnswer box(QStringLiteral("Take theirs"));
    EXPECT_TRUE(Contacts->Save());
    EXPECT_EQ(Box("contactMobile").text(), QStringLiteral("2"));
    EXPECT_EQ(Status(), QStringLiteral("What the other computer saved is on show."));
}

TEST_F(ContactsWindowTest, WhoWasDeletedElsewhereCanBeSavedAsNew)
{
    const qint32 reference = Add(QStringLiteral("Wella"));
    Open().ShowContact(reference);
    Type("contactMobile", QStringLiteral("07700 900123"));
    OtherComputer("contacts", {QStringLiteral("delete"), QString::number(reference)});
    const BoxAnswer box(QStringLiteral("Save as new"));
    EXPECT_TRUE(Contacts->Save());
    EXPECT_EQ(box.Text(), QStringLiteral("Wella was deleted on another computer while you changed it here."));
    ASSERT_EQ(Directory().Contacts().size(), 1);
    EXPECT_NE(Directory().Contacts().first()->Reference, reference);
    EXPECT_EQ(Directory().Contacts().first()->Mobile, QStringLiteral("07700 900123"));
}

TEST_F(ContactsWindowTest, DeletingAsksFirst)
{
    Open().ShowContact(Add(QStringLiteral("Wella")));
    const QString question = QStringLiteral("Delete Wella from the contacts? The messages stay.");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    Click("deleteContact");
    EXPECT_EQ(Directory().Contacts().size(), 1);
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    Click("deleteContact");
    EXPECT_TRUE(Directory().Contacts().isEmpty());
    EXPECT_EQ(Status(), QStringLiteral("Wella was deleted."));
    EXPECT_FALSE(Contacts->Form().isEnabled());
}

TEST_F(ContactsWindowTest, TheMessagesOfAContactAreListedAndOpened)
{
    const qint32 first = FileMail(Mail("First", "Hello.\r\n", "Loveday <Loveday@example.org>"));
    FileMail(Mail("Other", "Hello.\r\n", "Wella <wella@example.org>"));
    const qint32 loveday = Add(QStringLiteral("Loveday"), {}, QStringLiteral("loveday@example.org"));
    Open().ShowContact(loveday);
    auto& messages = Find<ListView>("contactMessages");
    ASSERT_TRUE(WaitUntil([&] { return Contacts->History().IsFilled(); }));
    EXPECT_EQ(Column(messages, 0), QStringList(QStringLiteral("First")));
    EXPECT_EQ(Column(messages, 1), QStringList(QStringLiteral("Loveday@example.org")));
    EXPECT_EQ(Column(messages, 2), QStringList(QStringLiteral("Inbox")));
    EXPECT_EQ(Find<QLabel>("contactMessagesNote").text(), QStringLiteral("1 message"));
    const QSignalSpy spy(Contacts, &ContactsWindow::MessageWanted);
    const QRect row = messages.visualItemRect(messages.topLevelItem(0));
    QTest::mouseClick(messages.viewport(), Qt::LeftButton, {}, row.center());
    QTest::mouseDClick(messages.viewport(), Qt::LeftButton, {}, row.center());
    ASSERT_EQ(spy.size(), 1);
    EXPECT_EQ(spy.first().first().toInt(), first);
}

TEST_F(ContactsWindowTest, WhoHasNoAddressAndNoNumberHasNoMessagesRatherThanAll)
{
    FileMail(Mail("First"));
    // What holds letters may be the name that a text message came from.
    Open().ShowContact(Add(QStringLiteral("Loveday"), QStringLiteral("no number"), {}, QStringLiteral("Sings")));
    ASSERT_TRUE(WaitUntil([&] { return Contacts->History().IsFilled(); }));
    EXPECT_EQ(Find<ListView>("contactMessages").ItemCount(), 0);
    EXPECT_EQ(Find<QLabel>("contactMessagesNote").text(), QStringLiteral("No messages to or from this contact."));
    Contacts->ShowContact(Add(QStringLiteral("Wella"), {}, {}, {}));
    ASSERT_TRUE(WaitUntil([&] { return Contacts->History().IsFilled(); }));
    EXPECT_EQ(Find<ListView>("contactMessages").ItemCount(), 0);
    EXPECT_EQ(Find<QLabel>("contactMessagesNote").text(),
              QStringLiteral("There is no address and no number to look for."));
}

TEST_F(ContactsWindowTest, AnAddressThatLooksLikeTwoOrLikeAPatternFindsNobodyElsesMessages)
{
    FileMail(Mail("Other", "Hello.\r\n", "Demelza <b@example.org>"));
    const QStringList addresses{QStringLiteral("a|b@example.org"),
                                QStringLiteral("*"),
                                QStringLiteral("?@example.org"),
                                QStringLiteral("[b]@example.org"),
                                QStringLiteral("%"),
                                QStringLiteral("_@example.org"),
                                QStringLiteral("\" OR \"1\"=\"1"),
                                QStringLiteral("b@example.org' OR '1'='1")};
    Open();
    for (const QString& address : addresses) {
        const qint32 reference = Add(QStringLiteral("Odd"), {}, address);
        ASSERT_TRUE(Contacts->ShowContact(reference));
        const QLabel& note = Find<QLabel>("contactMessagesNote");
        EXPECT_TRUE(WaitUntil([&] { return !note.text().isEmpty(); })) << address.toStdString();
        EXPECT_EQ(Find<ListView>("contactMessages").ItemCount(), 0) << address.toStdString();
        EXPECT_EQ(note.text(), address.contains(u'|') ? QStringLiteral("There is no address and no number to look for.")
                                                      : QStringLiteral("No messages to or from this contact."));
    }
}

TEST_F(ContactsWindowTest, PassingByFillsNothing)
{
    FileMail(Mail("First", "Hello.\r\n", "a@example.org"));
    const qint32 one = Add(QStringLiteral("A"), {}, QStringLiteral("a@example.org"));
    const qint32 two = Add(QStringLiteral("B"), {}, QStringLiteral("b@example.org"));
    Open();
    const int before = Ui.BusyCount();
    Contacts->ShowContact(one);
    Contacts->ShowContact(two);
    EXPECT_EQ(Ui.BusyCount(), before);
    ASSERT_TRUE(WaitUntil([&] { return Contacts->History().IsFilled(); }));
    EXPECT_EQ(Ui.BusyCount(), before + 1);
    EXPECT_EQ(Find<QLabel>("contactMessagesNote").text(), QStringLiteral("No messages to or from this contact."));
}

TEST_F(ContactsWindowTest, ThePrizesOfAContactAreListedWithTheirWins)
{
    const auto prize = std::make_shared<cPrize>();
    prize->SetTitle(QStringLiteral("Cream tea"));
    prize->SetNumberSupplied(2);
    ASSERT_TRUE(Station.Database().SavePrize(prize));
    const qint32 loveday = Add(QStringLiteral("Loveday"));
    const cPrizeWinnerPtr winner = Station.Database().GetNewPrizeWinner(prize);
    ASSERT_TRUE(winner);
    winner->SetWinnerReference(loveday);
    winner->SetWonDate(Date(2026, 5, 12, 10));
    ASSERT_TRUE(Station.Database().SavePrizeWinner(winner));
    Open().ShowContact(loveday);
    Contacts->History().setCurrentIndex(1);
    ASSERT_TRUE(WaitUntil([&] { return Contacts->History().IsFilled(); }));
    auto& prizes = Find<ListView>("contactPrizes");
    EXPECT_EQ(Column(prizes, 0), QStringList(QStringLiteral("Cream tea")));
    EXPECT_EQ(Column(prizes, 1), QStringList(QStringLiteral("Winner")));
    EXPECT_EQ(Column(prizes, 2), QStringList(Date(2026, 5, 12, 10).GeneralDate()));
    EXPECT_EQ(Find<QLabel>("contactPrizesNote").text(), QStringLiteral("Has won once: “Cream tea” on 12 May 2026."));
    const QSignalSpy spy(Contacts, &ContactsWindow::WinnerWanted);
    prizes.setFocus();
    prizes.SelectKey(prizes.Keys().first());
    QTest::keyClick(&prizes, Qt::Key_Return);
    ASSERT_EQ(spy.size(), 1);
    EXPECT_EQ(spy.first().first().toInt(), winner->Reference());
}

TEST_F(ContactsWindowTest, TheMomentOfAMessageIsSeenWholeInLargeType)
{
    FileMail(Mail("Hello", "Hello.\r\n", "Loveday <loveday@example.org>"));
    const qint32 loveday = Add(QStringLiteral("Loveday"), {}, QStringLiteral("loveday@example.org"));
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSize(18);
    QApplication::setFont(large);
    Open().ShowContact(loveday);
    ASSERT_TRUE(WaitUntil([&] { return Contacts->History().IsFilled(); }));
    auto& messages = Find<ListView>("contactMessages");
    ASSERT_EQ(messages.ItemCount(), 1);
    const int sent = messages.ColumnNamed(QStringLiteral("SENT"));
    EXPECT_TRUE(WaitUntil([&] {
        return messages.sizeHintForIndex(messages.model()->index(0, sent)).width() <= messages.columnWidth(sent);
    }));
    QApplication::setFont(usual);
}

TEST_F(ContactsWindowTest, CardsAreImportedAfterTheirPlanWasShown)
{
    const qint32 wella = Add(QStringLiteral("Wella"), QStringLiteral("07700 900123"));
    const QString file =
        Write(QStringLiteral("cards.vcf"),
              "BEGIN:VCARD\nVERSION:3.0\nFN:W Rowe\nTEL;TYPE=CELL:+447700900123\nEMAIL:w@example.org\nEND:VCARD\n"
              "BEGIN:VCARD\nVERSION:3.0\nFN:Jory\nEND:VCARD\nBEGIN:VCARD\nFN:Lost\n");
    Open();
    ScriptedFileDialog files;
    files.ExpectOpen(file);
    {
        const DialogVisitor visitor("contactImportDialog", [](QDialog& dialog) {
            EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("importSummary"))->text(),
                      QStringLiteral("2 contacts in the file; 1 known already by an address or number."));
            auto* list = dialog.findChild<ListView*>(QStringLiteral("importList"));
            EXPECT_EQ(Column(*list, 2),
                      QStringList({QStringLiteral("Wella has +447700900123"), QStringLiteral("New")}));
            EXPECT_EQ(dialog.findChild<QPlainTextEdit*>(QStringLiteral("importProblems"))->toPlainText(),
                      QStringLiteral("Card 3, line 11, \"Lost\": is cut off."));
            QTest::mouseClick(dialog.findChild<QRadioButton*>(QStringLiteral("importUpdate")), Qt::LeftButton, {},
                              QPoint(8, 8));
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("importContacts")), Qt::LeftButton);
        });
        Contacts->Import();
    }
    EXPECT_EQ(Status(), QStringLiteral("Imported: 1 new, 1 filled in, 0 left as they are."));
    EXPECT_EQ(Names(), QStringList({QStringLiteral("Jory"), QStringLiteral("Wella")}));
    EXPECT_EQ(Directory().GetContact(wella)->Email, QStringLiteral("w@example.org"));
}

TEST_F(ContactsWindowTest, AFileWithoutCardsIsRefusedInWords)
{
    const QString file = Write(QStringLiteral("letter.vcf"), "Dear station\n");
    Open();
    ScriptedFileDialog files;
    files.ExpectOpen(file);
    Ui.ExpectWarning(QStringLiteral("No contact can be taken over from letter.vcf.\nThere is no business card in it."));
    Contacts->Import();
}

TEST_F(ContactsWindowTest, ContactsAreExported)
{
    const qint32 wella = Add(QStringLiteral("Wella"), QStringLiteral("07700 900123"));
    Add(QStringLiteral("Jory"));
    Open().ShowContact(wella);
    ScriptedFileDialog files;
    files.ExpectSave(Path(QStringLiteral("one.vcf")));
    Contacts->ExportShown();
    EXPECT_EQ(Read(Path(QStringLiteral("one.vcf"))).count("BEGIN:VCARD"), 1);
    EXPECT_TRUE(Read(Path(QStringLiteral("one.vcf"))).contains("FN:Wella\r\n"));
    files.ExpectSave(Path(QStringLiteral("all.vcf")));
    Contacts->ExportAll();
    EXPECT_EQ(Read(Path(QStringLiteral("all.vcf"))).count("BEGIN:VCARD"), 2);
    EXPECT_EQ(Status(), QStringLiteral("Saved 2 contacts as %1").arg(Path(QStringLiteral("all.vcf"))));
    auto* saved = Contacts->findChild<SavedNotice*>(QStringLiteral("savedNotice"));
    ASSERT_TRUE(saved);
    EXPECT_TRUE(saved->isVisible());
    EXPECT_EQ(saved->Text(), QStringLiteral("Saved as %1").arg(Path(QStringLiteral("all.vcf"))));
    EXPECT_EQ(AccessKeys(*Contacts).Clashes(), QStringList());
}
