// SPDX-License-Identifier: Apache-2.0
#include "platform/directory/Processes.h"
#include "platform/directory/TemporaryDirectory.h"
#include "platform/records/DBEngine.h"
#include "platform/records/Transaction.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>

#include <sqlite3.h>

#include <stdexcept>
#include <unistd.h>

namespace
{
class EmbeddedDirectoryUserTest : public TemporaryDirectory
{
protected:
    /// Keeps what the user's notification says, as "flags name".
    void Listen(clsKVUser& user)
    {
        QObject::connect(&user, &clsKVUser::PreferencesChanged, &user, [this](int flags, const QString& name) {
            Notes.append(QStringLiteral("%1 %2").arg(flags).arg(name));
        });
    }

    static qsizetype Stored(const EmbeddedDirectory& directory) { return directory.LogEntries(50).size(); }
    /// Looks from another computer.
    static bool IsStoredByTheEventLoop(const EmbeddedDirectory& other, qsizetype entries)
    {
        const QDeadlineTimer deadline(5000);
        while (Stored(other) < entries && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return Stored(other) == entries;
    }

    /// One whose log takes kinds up to 255 only, with Megan signed in.
    void OpenNarrow(EmbeddedDirectory& narrow) const
    {
        const QString folder = Folder.filePath(QStringLiteral("narrow"));
        ASSERT_TRUE(QDir().mkpath(folder));
        // Kept as it is when the directory is opened.
        const auto old = dao::DBEngine::CreateDatabase(folder + QStringLiteral("/Directory.mdb"), QString());
        auto table = old->CreateTableDef(QStringLiteral("UserLog"));
        table->Fields().Append(table->CreateField(QStringLiteral("Kind"), dao::dbByte));
        old->TableDefs().Append(std::move(table));
        old->Close();
        narrow.Open(folder);
        SavedUser(narrow, QStringLiteral("Megan"));
        ASSERT_TRUE(narrow.SignIn(QStringLiteral("Megan")));
    }

    QStringList Notes;
};

/// What another program does to the file, or has of it while this stands.
class ForeignAccess
{
public:
    ForeignAccess(const QString& file, const char* statements)
    {
        EXPECT_EQ(sqlite3_open(file.toUtf8().constData(), &Handle_), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(Handle_, statements, nullptr, nullptr, nullptr), SQLITE_OK);
    }
    ~ForeignAccess() { sqlite3_close(Handle_); }
    ForeignAccess(const ForeignAccess&) = delete;
    ForeignAccess& operator=(const ForeignAccess&) = delete;

private:
    sqlite3* Handle_ = nullptr;
};

const QString key = QStringLiteral("SelectedMessageCategory");
} // namespace

TEST_F(EmbeddedDirectoryUserTest, EachRightStandsForItself)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"), static_cast<int>(DirectoryRight::CanEditMessages) +
                                                            static_cast<int>(DirectoryRight::ManagePrizes));
    EXPECT_TRUE(user.CanEditMessages());
    EXPECT_FALSE(user.CanEditPersonalMessages());
    EXPECT_FALSE(user.CanEditCategories());
    EXPECT_TRUE(user.ManagePrizes());
    EXPECT_FALSE(user.ChangeSettings());
}

TEST_F(EmbeddedDirectoryUserTest, AUserWithoutRightsHasNone)
{
    const clsKVUser& user = SignedIn(QStringLiteral("Guest"));
    EXPECT_FALSE(user.CanEditMessages() || user.CanEditPersonalMessages() || user.CanEditCategories() ||
                 user.ManagePrizes() || user.ChangeSettings());
}

TEST_F(EmbeddedDirectoryUserTest, RightsAndNameChangedAtAnotherComputerHoldAtOnce)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    EmbeddedDirectory other;
    other.Open(FolderName());
    DirectoryUser changed = other.Users().first();
    changed.Rights = static_cast<int>(DirectoryRight::ChangeSettings);
    changed.Name = QStringLiteral("Megan Tull");
    other.SaveUser(changed);
    EXPECT_TRUE(user.ChangeSettings());
    EXPECT_EQ(user.Name(), QStringLiteral("Megan Tull"));
}

TEST_F(EmbeddedDirectoryUserTest, AUserDeletedWhileSignedInStaysWithoutRights)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"), 31);
    EmbeddedDirectory other;
    other.Open(FolderName());
    SavedUser(other, QStringLiteral("Technician"), 31);
    other.DeleteUser(user.Reference());
    EXPECT_EQ(Directory.CurrentUser(), &user);
    EXPECT_FALSE(user.CanEditMessages());
    EXPECT_EQ(user.Name(), QStringLiteral("Megan"));
    EXPECT_FALSE(Directory.SignIn(QStringLiteral("Megan")));
}

TEST_F(EmbeddedDirectoryUserTest, APreferenceThatIsNotStoredIsTheDefault)
{
    const clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    EXPECT_EQ(user.Preference(key, 1), QVariant(1));
    EXPECT_FALSE(user.Preference(key, QVariant()).isValid());
}

TEST_F(EmbeddedDirectoryUserTest, APreferenceIsKeptAsTextForThatUserAlone)
{
    SavedUser(Directory, QStringLiteral("Idris"));
    clsKVUser& megan = SignedIn(QStringLiteral("Megan"));
    EXPECT_TRUE(megan.SetPreference(key, 12));
    EXPECT_TRUE(megan.SetPreference(QStringLiteral("Wide"), true));
    EXPECT_TRUE(megan.SetPreference(QStringLiteral("Split"), 0.25));
    EXPECT_EQ(megan.Preference(key, 1), QVariant(QStringLiteral("12")));
    EXPECT_TRUE(megan.Preference(QStringLiteral("Wide"), false).toBool());
    EXPECT_EQ(megan.Preference(QStringLiteral("Split"), 0).toDouble(), 0.25);
    Directory.Open(FolderName());
    ASSERT_TRUE(Directory.SignIn(QStringLiteral("Idris")));
    EXPECT_EQ(Directory.CurrentUser()->Preference(key, 1), QVariant(1));
    ASSERT_TRUE(Directory.SignIn(QStringLiteral("Megan")));
    EXPECT_EQ(Directory.CurrentUser()->Preference(key, 1).toInt(), 12);
}

TEST_F(EmbeddedDirectoryUserTest, PreferenceNamesAreFoundInAnyCase)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    EXPECT_TRUE(user.SetPreference(key, 12));
    EXPECT_TRUE(user.SetPreference(key.toLower(), 13));
    EXPECT_EQ(user.Preference(key.toUpper(), 1).toInt(), 13);
}

TEST_F(EmbeddedDirectoryUserTest, AnEmptyPreferenceIsNoMissingOne)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    EXPECT_TRUE(user.SetPreference(key, QStringLiteral("")));
    EXPECT_EQ(user.Preference(key, QStringLiteral("default")).toString(), QString());
}

TEST_F(EmbeddedDirectoryUserTest, ALongPreferenceIsKeptWhole)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    const QString value(100'000, QLatin1Char('w'));
    EXPECT_TRUE(user.SetPreference(key, value));
    EXPECT_EQ(user.Preference(key, QString()).toString(), value);
}

TEST_F(EmbeddedDirectoryUserTest, ANewValueRaisesTheChangeOnceAndTheSameValueDoesNot)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    Listen(user);
    const QString change = QStringLiteral("32 SelectedMessageCategory");
    EXPECT_TRUE(user.SetPreference(key, 12));
    EXPECT_EQ(Notes, QStringList(change));
    EXPECT_TRUE(user.SetPreference(key, 12));
    EXPECT_TRUE(user.SetPreference(key, QStringLiteral("12")));
    EXPECT_EQ(Notes, QStringList(change));
    EXPECT_TRUE(user.SetPreference(key, 13));
    EXPECT_EQ(Notes, QStringList({change, change}));
}

TEST_F(EmbeddedDirectoryUserTest, TheNewValueCanBeReadWhileTheChangeIsRaised)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    QString seen;
    QObject::connect(&user, &clsKVUser::PreferencesChanged, &user,
                     [&](int, const QString& name) { seen = user.Preference(name, QString()).toString(); });
    EXPECT_TRUE(user.SetPreference(key, 12));
    EXPECT_EQ(seen, QStringLiteral("12"));
}

TEST_F(EmbeddedDirectoryUserTest, AnInvalidValueRemovesThePreferenceAndRaisesTheChangeIfThereWasOne)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    Listen(user);
    EXPECT_TRUE(user.SetPreference(key, QVariant()));
    EXPECT_TRUE(Notes.isEmpty());
    EXPECT_TRUE(user.SetPreference(key, 12));
    EXPECT_TRUE(user.SetPreference(key, QVariant()));
    EXPECT_EQ(Notes.size(), 2);
    EXPECT_EQ(user.Preference(key, 1), QVariant(1));
}

TEST_F(EmbeddedDirectoryUserTest, APreferenceThatCannotBeStoredIsRefusedWithoutAChange)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    Listen(user);
    EXPECT_FALSE(user.SetPreference(QString(), 1));
    EXPECT_FALSE(user.SetPreference(QString(256, QLatin1Char('n')), 1));
    EXPECT_FALSE(user.SetPreference(key, QVariantMap{{key, 1}}));
    EXPECT_TRUE(Notes.isEmpty());
}

TEST_F(EmbeddedDirectoryUserTest, APreferenceStoredAtAnotherComputerIsSeenAndCanBeChangedHere)
{
    clsKVUser& here = SignedIn(QStringLiteral("Megan"));
    EmbeddedDirectory other;
    other.Open(FolderName());
    ASSERT_TRUE(other.SignIn(QStringLiteral("Megan")));
    EXPECT_TRUE(other.CurrentUser()->SetPreference(key, 5));
    EXPECT_EQ(here.Preference(key, 1).toInt(), 5);
    EXPECT_TRUE(here.SetPreference(key, 6));
    EXPECT_EQ(other.CurrentUser()->Preference(key, 1).toInt(), 6);
}

TEST_F(EmbeddedDirectoryUserTest, ProcessesThatStoreTheSamePreferenceAtOnceAllSucceedAndOneValueStays)
{
    SavedUser(Directory, QStringLiteral("Megan"));
    Directory.Close();
    const int failed = FailedProcesses(4, [this] {
        EmbeddedDirectory directory;
        directory.Open(FolderName());
        if (!directory.SignIn(QStringLiteral("Megan")))
            throw std::runtime_error("not signed in");
        for (int i = 0; i < 5; ++i) {
            const QVariant value = static_cast<int>(getpid()) * 10 + i;
            if (!directory.CurrentUser()->SetPreference(QStringLiteral("Key%1").arg(i), value))
                throw std::runtime_error("not stored");
        }
    });
    EXPECT_EQ(failed, 0);
    const auto database = dao::DBEngine::OpenDatabase(FileName());
    EXPECT_EQ(database->OpenRecordset(QStringLiteral("Preferences"), dao::dbOpenTable)->RecordCount(), 5);
}

TEST_F(EmbeddedDirectoryUserTest, DeletingAUserTakesItsPreferencesAlongAndNoOthers)
{
    clsKVUser& megan = SignedIn(QStringLiteral("Megan"));
    EXPECT_TRUE(megan.SetPreference(key, 12));
    const qint32 reference = megan.Reference();
    clsKVUser& idris = SignedIn(QStringLiteral("Idris"));
    EXPECT_TRUE(idris.SetPreference(key, 13));
    Directory.DeleteUser(reference);
    EXPECT_EQ(idris.Preference(key, 1).toInt(), 13);
    const auto database = dao::DBEngine::OpenDatabase(FileName());
    EXPECT_EQ(database->OpenRecordset(QStringLiteral("Preferences"), dao::dbOpenTable)->RecordCount(), 1);
}

TEST_F(EmbeddedDirectoryUserTest, ALogEntryKeepsAllItIsGivenAndTheTimeAndTheUser)
{
    const QDateTime moment(QDate(2026, 11, 20), QTime(8, 33, 20, 125), Qt::UTC);
    Directory.SetClock([moment] { return moment; });
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    EXPECT_TRUE(user.LogEvent(3, 6, QStringLiteral("Message Added"), QStringLiteral("\"Cân i Mam-gu\""), 1, 4711));
    const QList<DirectoryLogEntry> entries = Directory.LogEntries(10);
    ASSERT_EQ(entries.size(), 1);
    const DirectoryLogEntry& entry = entries.first();
    EXPECT_GT(entry.Reference, 0);
    EXPECT_EQ(entry.When, moment);
    EXPECT_EQ(entry.UserReference, user.Reference());
    EXPECT_EQ(entry.ClassNumber, 3);
    EXPECT_EQ(entry.Kind, 6);
    EXPECT_EQ(entry.Title, QStringLiteral("Message Added"));
    EXPECT_EQ(entry.Text, QStringLiteral("\"Cân i Mam-gu\""));
    EXPECT_EQ(entry.Code, 1);
    EXPECT_EQ(entry.EventReference, 4711);
}

TEST_F(EmbeddedDirectoryUserTest, TheClocksLocalTimeIsStoredAsUniversalTime)
{
    const QDateTime summer(QDate(2026, 7, 1), QTime(12, 0), Qt::LocalTime);
    Directory.SetClock([summer] { return summer; });
    EXPECT_TRUE(SignedIn(QStringLiteral("Megan")).LogEvent(1, 1, QString(), QString(), 0, 0));
    EXPECT_EQ(Directory.LogEntries(1).first().When, summer.toUTC());
    EXPECT_EQ(Directory.LogEntries(1).first().When.timeSpec(), Qt::UTC);
}

TEST_F(EmbeddedDirectoryUserTest, TheNewestEntriesComeFirstAndNoMoreThanAskedFor)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    for (int code = 1; code <= 5; ++code)
        EXPECT_TRUE(user.LogEvent(1, 1, QString(), QString(), code, 0));
    QList<int> codes;
    for (const DirectoryLogEntry& entry : Directory.LogEntries(3))
        codes.append(entry.Code);
    EXPECT_EQ(codes, QList<int>({5, 4, 3}));
    EXPECT_EQ(Directory.LogEntries(100).size(), 5);
    EXPECT_TRUE(Directory.LogEntries(0).isEmpty());
    EXPECT_TRUE(Directory.LogEntries(-1).isEmpty());
}

TEST_F(EmbeddedDirectoryUserTest, ATitleLongerThanItsFieldIsCutAndTheTextIsKeptWhole)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    const QString title = QString(300, QLatin1Char('t'));
    const QString text = QString(70'000, QLatin1Char('x'));
    EXPECT_TRUE(user.LogEvent(1, 1, title, text, 0, 0));
    EXPECT_EQ(Directory.LogEntries(1).first().Title, title.left(255));
    EXPECT_EQ(Directory.LogEntries(1).first().Text, text);
}

TEST_F(EmbeddedDirectoryUserTest, ACutTitleDoesNotEndWithHalfACharacter)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    const QString before(254, QLatin1Char('t'));
    EXPECT_TRUE(user.LogEvent(1, 1, before + QStringLiteral("🎸🎸"), QString(), 0, 0));
    EXPECT_EQ(Directory.LogEntries(1).first().Title, before);
}

TEST_F(EmbeddedDirectoryUserTest, ALogThatCannotBeWrittenAnswersFalseAndNeverThrows)
{
    EmbeddedDirectory narrow;
    ASSERT_NO_FATAL_FAILURE(OpenNarrow(narrow));
    EXPECT_TRUE(narrow.CurrentUser()->LogEvent(1, 255, QString(), QString(), 0, 0));
    EXPECT_FALSE(narrow.CurrentUser()->LogEvent(1, 256, QString(), QString(), 0, 0));
    EXPECT_EQ(narrow.LogEntries(10).size(), 1);

    Directory.SetClock([]() -> QDateTime { throw std::runtime_error("the clock has stopped"); });
    EXPECT_FALSE(SignedIn(QStringLiteral("Megan")).LogEvent(1, 1, QString(), QString(), 0, 0));
}

TEST_F(EmbeddedDirectoryUserTest, CollectedEntriesAreStoredTogetherAndInOrder)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    EmbeddedDirectory other;
    other.Open(FolderName());
    const auto titles = [](const EmbeddedDirectory& directory) {
        QStringList found;
        for (const DirectoryLogEntry& entry : directory.LogEntries(10))
            found.append(entry.Title);
        return found;
    };
    Directory.SetCollectsLog(true);
    EXPECT_TRUE(user.LogEvent(32, 1, QStringLiteral("first"), QString(), 1, 0));
    EXPECT_TRUE(user.LogEvent(32, 2, QStringLiteral("second"), QString(), 1, 0));
    EXPECT_EQ(titles(other), QStringList());
    EXPECT_EQ(titles(Directory).size(), 2) << "reading the log stores what waits";
    EXPECT_EQ(titles(other).size(), 2);
    EXPECT_TRUE(user.LogEvent(32, 3, QStringLiteral("third"), QString(), 1, 0));
    EXPECT_EQ(titles(other).size(), 2);
    Directory.Close();
    EXPECT_EQ(titles(other).size(), 3);
    EXPECT_TRUE(titles(other).contains(QStringLiteral("third")));
}

TEST_F(EmbeddedDirectoryUserTest, AnEntryThatGivesWayWaitsForNobodysLockAndIsStoredBehindIt)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    Directory.SetLogGivesWay(true);
    EmbeddedDirectory other;
    other.Open(FolderName());
    EXPECT_TRUE(user.LogEvent(32, 1, QStringLiteral("free"), QString(), 1, 0));
    QCoreApplication::processEvents();
    EXPECT_EQ(Stored(other), 1) << "nothing waits while nobody has the lock";
    {
        const ForeignAccess writer(FileName(), "BEGIN IMMEDIATE");
        QElapsedTimer since;
        since.start();
        for (int i = 0; i < 20; ++i) {
            EXPECT_TRUE(user.LogEvent(32, 1, QString::number(i), QString(), 1, 0));
            QCoreApplication::processEvents();
        }
        EXPECT_LT(since.elapsed(), 250) << "one look, not one an entry";
        EXPECT_EQ(Directory.LogEntries(50).size(), 1);
        EXPECT_LT(since.elapsed(), 1000) << "a lock is waited for 5 seconds otherwise";
    }
    EXPECT_TRUE(IsStoredByTheEventLoop(other, 21));
    {
        const ForeignAccess writer(FileName(), "BEGIN IMMEDIATE");
        EXPECT_TRUE(user.LogEvent(32, 1, QStringLiteral("last"), QString(), 1, 0));
    }
    EXPECT_EQ(Stored(other), 21);
    Directory.Close();
    EXPECT_EQ(Stored(other), 22) << "what still waits is stored when the directory is closed";
}

TEST_F(EmbeddedDirectoryUserTest, AnEntryThatGivesWayInATransactionIsKeptWhileAnotherReadsTheDirectory)
{
    clsKVUser& user = SignedIn(QStringLiteral("Megan"));
    Directory.SetLogGivesWay(true);
    EmbeddedDirectory other;
    other.Open(FolderName());
    {
        // Whoever reads keeps nobody from writing, but the commit waits for him.
        const ForeignAccess reader(FileName(), "BEGIN; SELECT COUNT(*) FROM UserLog");
        QElapsedTimer since;
        since.start();
        dao::Transaction transaction;
        dao::Transaction::AfterCommit(
            [&user] { EXPECT_TRUE(user.LogEvent(32, 1, QStringLiteral("behind"), QString(), 1, 0)); });
        EXPECT_TRUE(user.LogEvent(32, 1, QStringLiteral("within"), QString(), 1, 0));
        transaction.Commit();
        QCoreApplication::processEvents();
        EXPECT_LT(since.elapsed(), 1000) << "a lock is waited for 5 seconds otherwise";
        EXPECT_EQ(Stored(other), 0);
    }
    EXPECT_TRUE(IsStoredByTheEventLoop(other, 2));
}

TEST_F(EmbeddedDirectoryUserTest, EntriesThatWaitedAndCannotBeStoredAreToldWithTheCause)
{
    QStringList problems;
    EmbeddedDirectory narrow;
    ASSERT_NO_FATAL_FAILURE(OpenNarrow(narrow));
    narrow.SetLogProblemHandler([&problems](const QString& problem) { problems.append(problem); });
    narrow.SetLogGivesWay(true);
    EXPECT_TRUE(narrow.CurrentUser()->LogEvent(1, 255, QString(), QString(), 0, 0));
    EXPECT_TRUE(narrow.CurrentUser()->LogEvent(1, 256, QString(), QString(), 0, 0));
    QCoreApplication::processEvents();
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.first().startsWith(QStringLiteral("Entries of the user log that could not be stored: 2. ")));
    EXPECT_GT(problems.first().size(), 60) << "with the cause: " << qPrintable(problems.first());
    EXPECT_TRUE(narrow.CurrentUser()->LogEvent(1, 254, QString(), QString(), 0, 0));
    EXPECT_EQ(narrow.LogEntries(10).size(), 1) << "what comes behind it is stored";
}

TEST_F(EmbeddedDirectoryUserTest, LogsOfTwoComputersMeetInOneListByTime)
{
    QDateTime now(QDate(2026, 11, 20), QTime(8, 0), Qt::UTC);
    const auto clock = [&now] { return now = now.addSecs(1); };
    clsKVUser& here = SignedIn(QStringLiteral("Megan"));
    EmbeddedDirectory other;
    other.Open(FolderName());
    SavedUser(other, QStringLiteral("Idris"));
    ASSERT_TRUE(other.SignIn(QStringLiteral("Idris")));
    Directory.SetClock(clock);
    other.SetClock(clock);
    for (int code = 1; code <= 6; code += 2) {
        EXPECT_TRUE(here.LogEvent(1, 1, QString(), QString(), code, 0));
        EXPECT_TRUE(other.CurrentUser()->LogEvent(1, 1, QString(), QString(), code + 1, 0));
    }
    for (const EmbeddedDirectory* const directory : {&Directory, &other}) {
        QList<int> codes;
        for (const DirectoryLogEntry& entry : directory->LogEntries(10)) {
            codes.append(entry.Code);
            const bool isHere = entry.Code % 2 == 1;
            EXPECT_EQ(entry.UserReference, isHere ? here.Reference() : other.CurrentUser()->Reference());
        }
        EXPECT_EQ(codes, QList<int>({6, 5, 4, 3, 2, 1}));
    }
}
