// SPDX-License-Identifier: Apache-2.0
#include "platform/directory/Processes.h"
#include "platform/directory/TemporaryDirectory.h"
#include "platform/records/DBEngine.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace
{
class EmbeddedDirectoryTest : public TemporaryDirectory
{
protected:
    clsKVContact SavedContact(const QString& name, const QString& email = QString(), const QString& second = QString())
    {
        clsKVContact contact;
        contact.Name = name;
        contact.Email = email;
        contact.SecondEmail = second;
        Directory.SaveContact(contact);
        return contact;
    }

    QStringList NamesByAddress(const QString& address)
    {
        QStringList names;
        for (const clsKVContactPtr& contact : Directory.ContactsByAddress(address))
            names.append(contact->Name);
        return names;
    }
};
} // namespace

TEST_F(EmbeddedDirectoryTest, OpeningMakesTheFolderWithItsParentsAndTheFile)
{
    EmbeddedDirectory directory;
    EXPECT_FALSE(directory.IsOpen());
    directory.Open(Folder.filePath(QStringLiteral("some/new/place")));
    EXPECT_TRUE(directory.IsOpen());
    EXPECT_TRUE(QFileInfo::exists(Folder.filePath(QStringLiteral("some/new/place/Directory.mdb"))));
}

TEST_F(EmbeddedDirectoryTest, AFolderThatCannotBeMadeIsNotAValidPath)
{
    QFile file(Folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EmbeddedDirectory directory;
    EXPECT_EQ(ErrorNumber([&] { directory.Open(Folder.filePath(QStringLiteral("file/below"))); }),
              dao::errNotAValidPath);
    EXPECT_EQ(ErrorNumber([&] { directory.Open(QString()); }), dao::errNotAValidPath);
    EXPECT_FALSE(directory.IsOpen());
}

TEST_F(EmbeddedDirectoryTest, AFileThatIsNoDatabaseIsRefusedAndLeftAlone)
{
    const QString folder = Folder.filePath(QStringLiteral("other"));
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile file(folder + QStringLiteral("/Directory.mdb"));
    const QByteArray octets("This is a letter to the technician and no database at all.\n");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(octets);
    file.close();
    EmbeddedDirectory directory;
    EXPECT_EQ(ErrorNumber([&] { directory.Open(folder); }), dao::errUnrecognisedFormat);
    EXPECT_FALSE(directory.IsOpen());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), octets);
}

TEST_F(EmbeddedDirectoryTest, ANewDirectoryIsEmpty)
{
    EXPECT_TRUE(Directory.Users().isEmpty());
    EXPECT_TRUE(Directory.Contacts().isEmpty());
    EXPECT_TRUE(Directory.LogEntries(10).isEmpty());
    EXPECT_EQ(Directory.CurrentUser(), nullptr);
}

TEST_F(EmbeddedDirectoryTest, AllIsThereAfterReopening)
{
    const DirectoryUser user = SavedUser(Directory, QStringLiteral("Megan"), 31);
    const clsKVContact contact = SavedContact(QStringLiteral("Ivy Fitch"));
    Directory.Open(FolderName());
    ASSERT_EQ(Directory.Users().size(), 1);
    EXPECT_EQ(Directory.Users().first().Reference, user.Reference);
    EXPECT_EQ(Directory.Users().first().Rights, 31);
    ASSERT_NE(Directory.GetContact(contact.Reference), nullptr);
    EXPECT_EQ(Directory.GetContact(contact.Reference)->Name, QStringLiteral("Ivy Fitch"));
}

TEST_F(EmbeddedDirectoryTest, OpeningAddsWhatAnOlderFileLacksAndKeepsWhatItHas)
{
    const QString folder = Folder.filePath(QStringLiteral("old"));
    ASSERT_TRUE(QDir().mkpath(folder));
    {
        const auto old = dao::DBEngine::CreateDatabase(folder + QStringLiteral("/Directory.mdb"), QString());
        auto table = old->CreateTableDef(QStringLiteral("Contacts"));
        auto counter = table->CreateField(QStringLiteral("Reference"), dao::dbLong);
        counter->SetAttributes(dao::dbAutoIncrField);
        table->Fields().Append(std::move(counter));
        table->Fields().Append(table->CreateField(QStringLiteral("Name"), dao::dbText));
        table->Fields().Append(table->CreateField(QStringLiteral("ShoeSize"), dao::dbLong));
        old->TableDefs().Append(std::move(table));
        const auto rows = old->OpenRecordset(QStringLiteral("Contacts"), dao::dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Name"), QStringLiteral("Graham"));
        rows->SetCollect(QStringLiteral("ShoeSize"), 44);
        rows->Update();
        old->Close();
    }
    EmbeddedDirectory directory;
    directory.Open(folder);
    ASSERT_EQ(directory.Contacts().size(), 1);
    clsKVContact graham = *directory.Contacts().first();
    EXPECT_EQ(graham.Name, QStringLiteral("Graham"));
    EXPECT_TRUE(graham.Email.isEmpty());
    graham.Email = QStringLiteral("graham@example.net");
    directory.SaveContact(graham);
    EXPECT_EQ(directory.ContactsByAddress(QStringLiteral("graham@example.net")).size(), 1);
    directory.Close();

    const auto database = dao::DBEngine::OpenDatabase(folder + QStringLiteral("/Directory.mdb"));
    const auto rows = database->OpenRecordset(QStringLiteral("Contacts"), dao::dbOpenTable);
    EXPECT_EQ(rows->Collect(QStringLiteral("ShoeSize")).toInt(), 44);
}

TEST_F(EmbeddedDirectoryTest, ManyProcessesThatMakeTheSameDirectoryAtOnceAllSucceed)
{
    Directory.Close();
    for (int round = 0; round < 5; ++round) {
        const QString folder = Folder.filePath(QStringLiteral("shared%1").arg(round));
        const int failed = FailedProcesses(4, [&folder] {
            EmbeddedDirectory directory;
            directory.Open(folder);
            clsKVContact contact;
            contact.Name = QStringLiteral("of process %1").arg(getpid());
            directory.SaveContact(contact);
            DirectoryUser user{0, contact.Name, 0};
            directory.SaveUser(user);
        });
        EXPECT_EQ(failed, 0);
        EmbeddedDirectory directory;
        directory.Open(folder);
        EXPECT_EQ(directory.Contacts().size(), 4);
        EXPECT_EQ(directory.Users().size(), 4);
    }
}

TEST_F(EmbeddedDirectoryTest, WithoutAnOpenFileOperationsRaiseObjectInvalid)
{
    EmbeddedDirectory closed;
    clsKVContact contact;
    EXPECT_EQ(ErrorNumber([&] { closed.Users(); }), dao::errObjectInvalid);
    EXPECT_EQ(ErrorNumber([&] { closed.GetContact(1); }), dao::errObjectInvalid);
    EXPECT_EQ(ErrorNumber([&] { closed.SaveContact(contact); }), dao::errObjectInvalid);
    EXPECT_EQ(ErrorNumber([&] { closed.SignIn(QStringLiteral("Megan")); }), dao::errObjectInvalid);
    closed.Close();
}

TEST_F(EmbeddedDirectoryTest, ClosingSignsTheUserOut)
{
    SignedIn(QStringLiteral("Megan"));
    Directory.Close();
    EXPECT_EQ(Directory.CurrentUser(), nullptr);
    EXPECT_FALSE(Directory.IsOpen());
}

TEST_F(EmbeddedDirectoryTest, SigningInTakesTheNameInAnyCase)
{
    const DirectoryUser user = SavedUser(Directory, QStringLiteral("Megan Tüll"));
    ASSERT_TRUE(Directory.SignIn(QStringLiteral("MEGAN TÜLL")));
    EXPECT_EQ(Directory.CurrentUser()->Reference(), user.Reference);
    EXPECT_EQ(Directory.CurrentUser()->Name(), QStringLiteral("Megan Tüll"));
}

TEST_F(EmbeddedDirectoryTest, AnUnknownNameLeavesTheUserBeforeSignedIn)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    EXPECT_FALSE(Directory.SignIn(QStringLiteral("Idris")));
    EXPECT_FALSE(Directory.SignIn(QString()));
    EXPECT_EQ(Directory.CurrentUser(), &user);
    Directory.SignOut();
    EXPECT_EQ(Directory.CurrentUser(), nullptr);
}

TEST_F(EmbeddedDirectoryTest, SigningInAgainKeepsTheUserObjectThatControlsHold)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    EXPECT_TRUE(Directory.SignIn(QStringLiteral("megan")));
    EXPECT_EQ(Directory.CurrentUser(), &user);
}

TEST_F(EmbeddedDirectoryTest, UsersStandByName)
{
    SavedUser(Directory, QStringLiteral("megan"));
    SavedUser(Directory, QStringLiteral("Dot"));
    SavedUser(Directory, QStringLiteral("Idris"));
    QStringList names;
    for (const DirectoryUser& user : Directory.Users())
        names.append(user.Name);
    EXPECT_EQ(names, QStringList({QStringLiteral("Dot"), QStringLiteral("Idris"), QStringLiteral("megan")}));
}

TEST_F(EmbeddedDirectoryTest, TwoUsersCannotHaveTheSameNameInWhateverCase)
{
    SavedUser(Directory, QStringLiteral("Megan"));
    DirectoryUser second{0, QStringLiteral("MEGAN"), 0};
    EXPECT_EQ(ErrorNumber([&] { Directory.SaveUser(second); }), dao::errDuplicateValue);
    EXPECT_EQ(second.Reference, 0);
    EXPECT_EQ(Directory.Users().size(), 1);
}

TEST_F(EmbeddedDirectoryTest, AUserNeedsAName)
{
    DirectoryUser user;
    EXPECT_EQ(ErrorNumber([&] { Directory.SaveUser(user); }), dao::errInvalidUseOfNull);
}

TEST_F(EmbeddedDirectoryTest, SavingAUserThatWasDeletedMeanwhileDoesNotBringItBack)
{
    DirectoryUser user = SavedUser(Directory, QStringLiteral("Megan"));
    Directory.DeleteUser(user.Reference);
    EXPECT_EQ(ErrorNumber([&] { Directory.SaveUser(user); }), dao::errRecordDeleted);
    EXPECT_TRUE(Directory.Users().isEmpty());
    Directory.DeleteUser(user.Reference);
}

TEST_F(EmbeddedDirectoryTest, AContactKeepsItsNameAndFiveDetails)
{
    clsKVContact contact;
    contact.Name = QStringLiteral("Siân Prŷs 🌊");
    contact.Mobile = QStringLiteral("07700 900123");
    contact.Telephone = QStringLiteral("01632 960100");
    contact.Email = QStringLiteral("sian@example.org");
    contact.SecondEmail = QStringLiteral("prys@example.com");
    contact.Other = QString(4000, QLatin1Char('x'));
    Directory.SaveContact(contact);
    EXPECT_GT(contact.Reference, 0);
    const clsKVContactPtr read = Directory.GetContact(contact.Reference, 0, 0);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->Reference, contact.Reference);
    EXPECT_EQ(read->Name, contact.Name);
    EXPECT_EQ(read->Mobile, contact.Mobile);
    EXPECT_EQ(read->Telephone, contact.Telephone);
    EXPECT_EQ(read->Email, contact.Email);
    EXPECT_EQ(read->SecondEmail, contact.SecondEmail);
    EXPECT_EQ(read->Other, contact.Other);
}

TEST_F(EmbeddedDirectoryTest, ThereIsNoContactForAnUnknownReference)
{
    EXPECT_EQ(Directory.GetContact(0), nullptr);
    EXPECT_EQ(Directory.GetContact(-1), nullptr);
    EXPECT_EQ(Directory.GetContact(4711), nullptr);
}

TEST_F(EmbeddedDirectoryTest, ADetailThatDoesNotFitIsRefusedAndNothingIsStored)
{
    clsKVContact contact;
    contact.Name = QString(256, QLatin1Char('n'));
    EXPECT_EQ(ErrorNumber([&] { Directory.SaveContact(contact); }), dao::errFieldTooSmall);
    EXPECT_EQ(contact.Reference, 0);
    EXPECT_TRUE(Directory.Contacts().isEmpty());
}

TEST_F(EmbeddedDirectoryTest, SavingAContactAgainChangesItAndADetailCanBeTakenOut)
{
    clsKVContact contact = SavedContact(QStringLiteral("Col"), QStringLiteral("col@example.com"));
    contact.Name = QStringLiteral("Big Col");
    contact.Email.clear();
    Directory.SaveContact(contact);
    ASSERT_EQ(Directory.Contacts().size(), 1);
    EXPECT_EQ(Directory.Contacts().first()->Name, QStringLiteral("Big Col"));
    EXPECT_TRUE(Directory.Contacts().first()->Email.isEmpty());
}

TEST_F(EmbeddedDirectoryTest, SavingAContactThatWasDeletedMeanwhileDoesNotBringItBack)
{
    clsKVContact contact = SavedContact(QStringLiteral("Col"));
    Directory.DeleteContact(contact.Reference);
    EXPECT_EQ(ErrorNumber([&] { Directory.SaveContact(contact); }), dao::errRecordDeleted);
    EXPECT_EQ(Directory.GetContact(contact.Reference), nullptr);
    Directory.DeleteContact(contact.Reference);
}

TEST_F(EmbeddedDirectoryTest, ADeletedReferenceIsNeverGivenAgain)
{
    const clsKVContact first = SavedContact(QStringLiteral("Col"));
    Directory.DeleteContact(first.Reference);
    EXPECT_GT(SavedContact(QStringLiteral("Terry")).Reference, first.Reference);
}

TEST_F(EmbeddedDirectoryTest, ContactsAreFoundByEitherAddressInAnyCaseByName)
{
    SavedContact(QStringLiteral("Wendy"), QStringLiteral("Chapel@Example.com"));
    SavedContact(QStringLiteral("Arthur"), QStringLiteral("other@example.com"), QStringLiteral("chapel@EXAMPLE.COM"));
    SavedContact(QStringLiteral("Keith"), QStringLiteral("chapel@example.com.example.net"));
    EXPECT_EQ(NamesByAddress(QStringLiteral("chapel@example.com")),
              QStringList({QStringLiteral("Arthur"), QStringLiteral("Wendy")}));
}

TEST_F(EmbeddedDirectoryTest, CaseIsDisregardedBeyondAsciiToo)
{
    SavedContact(QStringLiteral("Jürgen"), QStringLiteral("jürgen@example.net"));
    EXPECT_EQ(NamesByAddress(QStringLiteral("JÜRGEN@example.net")), QStringList(QStringLiteral("Jürgen")));
}

TEST_F(EmbeddedDirectoryTest, TheEmptyAddressFindsNobody)
{
    SavedContact(QStringLiteral("No Address"));
    EXPECT_TRUE(NamesByAddress(QString()).isEmpty());
    EXPECT_TRUE(NamesByAddress(QStringLiteral("")).isEmpty());
}

TEST_F(EmbeddedDirectoryTest, EachCharacterOfAnAddressMeansItself)
{
    SavedContact(QStringLiteral("Plain"), QStringLiteral("anna@example.com"));
    for (const QString& wild :
         {QStringLiteral("*"), QStringLiteral("anna?example.com"), QStringLiteral("[a-z]nna@example.com"),
          QStringLiteral("anna@example*"), QStringLiteral("%"), QStringLiteral("_nna@example.com"),
          QStringLiteral("' OR ''='"), QStringLiteral("\" OR \"\"=\""), QStringLiteral("[Email]"),
          QStringLiteral("#1/1/2026#"), QStringLiteral("x'; DELETE FROM [Contacts]; --")})
        EXPECT_TRUE(NamesByAddress(wild).isEmpty()) << qPrintable(wild);
    EXPECT_EQ(Directory.Contacts().size(), 1);

    for (const QString& odd : {QStringLiteral("o'brien@example.com"), QStringLiteral("\"a b\"@example.com"),
                               QStringLiteral("[*?#]@example.com"), QStringLiteral("a%_b@example.com")}) {
        SavedContact(odd, odd);
        EXPECT_EQ(NamesByAddress(odd), QStringList(odd));
    }
}

TEST_F(EmbeddedDirectoryTest, ContactsAreReadInStepsByReference)
{
    EXPECT_TRUE(Directory.ContactsAfter(0, 10).isEmpty());
    QList<qint32> saved;
    for (const char* name : {"Wella", "Ann", "Megan", "Ann", "Ivy"})
        saved.append(SavedContact(QLatin1String(name)).Reference);
    Directory.DeleteContact(saved.takeAt(2));
    QList<qint32> read;
    for (qint32 last = 0;;) {
        const QList<clsKVContactPtr> step = Directory.ContactsAfter(last, 3);
        if (step.isEmpty())
            break;
        EXPECT_LE(step.size(), 3);
        for (const clsKVContactPtr& contact : step)
            read.append(contact->Reference);
        last = read.last();
    }
    EXPECT_EQ(read, saved);
    EXPECT_EQ(Directory.ContactsAfter(saved.first(), 1).first()->Name, QStringLiteral("Ann"));
    EXPECT_TRUE(Directory.ContactsAfter(0, 0).isEmpty());
    EXPECT_TRUE(Directory.ContactsAfter(saved.last(), 10).isEmpty());
}

TEST_F(EmbeddedDirectoryTest, TwoComputersSeeEachOthersContactsAndUsers)
{
    EmbeddedDirectory other;
    other.Open(FolderName());
    clsKVContact contact = SavedContact(QStringLiteral("Priya"), QStringLiteral("priya@example.org"));
    ASSERT_NE(other.GetContact(contact.Reference), nullptr);
    EXPECT_EQ(other.ContactsByAddress(QStringLiteral("priya@example.org")).size(), 1);

    clsKVContact changed = *other.GetContact(contact.Reference);
    changed.Mobile = QStringLiteral("07700 900284");
    other.SaveContact(changed);
    EXPECT_EQ(Directory.GetContact(contact.Reference)->Mobile, QStringLiteral("07700 900284"));

    SavedUser(other, QStringLiteral("Idris"));
    EXPECT_TRUE(Directory.SignIn(QStringLiteral("Idris")));
    Directory.DeleteContact(contact.Reference);
    EXPECT_EQ(other.GetContact(contact.Reference), nullptr);
}

TEST_F(EmbeddedDirectoryTest, AChangeIsStoredWhileTheContactIsWhatItWas)
{
    const clsKVContact before = SavedContact(QStringLiteral("Wella"));
    clsKVContact after = before;
    after.Mobile = QStringLiteral("07700 900123");
    after.Other = QString(100'000, u'x');
    Directory.ChangeContact(before, after);
    EXPECT_EQ(*Directory.GetContact(before.Reference), after);
}

TEST_F(EmbeddedDirectoryTest, AChangeOfWhatSomebodyElseChangedIsRefusedInWords)
{
    const clsKVContact before = SavedContact(QStringLiteral("Wella"));
    EmbeddedDirectory other;
    other.Open(FolderName());
    clsKVContact theirs = before;
    theirs.Name = QStringLiteral("Wella Rowe");
    other.SaveContact(theirs);
    clsKVContact mine = before;
    mine.Mobile = QStringLiteral("07700 900123");
    try {
        Directory.ChangeContact(before, mine);
        ADD_FAILURE() << "their change was overwritten";
    } catch (const dao::Error& error) {
        EXPECT_EQ(error.Number(), dao::errChangedByAnother);
        EXPECT_EQ(error.Description(), QStringLiteral("Somebody else has changed the contact meanwhile."));
    }
    EXPECT_EQ(*Directory.GetContact(before.Reference), theirs);
    other.DeleteContact(before.Reference);
    EXPECT_EQ(ErrorNumber([&] { Directory.ChangeContact(theirs, mine); }), dao::errRecordDeleted);
}

TEST_F(EmbeddedDirectoryTest, AStepStoresAllOfItOrNothing)
{
    Directory.InOneStep([&] {
        SavedContact(QStringLiteral("Wella"));
        SavedContact(QStringLiteral("Jory"));
    });
    EXPECT_EQ(Directory.Contacts().size(), 2);
    EXPECT_EQ(ErrorNumber([&] {
                  Directory.InOneStep([&] {
                      SavedContact(QStringLiteral("Demelza"));
                      SavedContact(QString(300, u'x'));
                  });
              }),
              dao::errFieldTooSmall);
    EXPECT_EQ(Directory.Contacts().size(), 2);
    Directory.Close();
    EXPECT_EQ(ErrorNumber([&] { Directory.InOneStep([] {}); }), dao::errObjectInvalid);
}
