// SPDX-License-Identifier: Apache-2.0
#include "FailingStation.h"

namespace
{
class CountingList final : public ListViewObject
{
public:
    int ColumnCount() const override { return 3; }
    QString ColumnKey(int column) const override
    {
        return QStringList{QStringLiteral("Reference"), QStringLiteral("FOLDER"), QStringLiteral("Notes")}.at(column);
    }
    void ClearItems() override { Items = 0; }
    bool AddListItem(const QString&, const QStringList&, const QVariantList&) override { return ++Items != 0; }

    int Items = 0;
};

/// What an operation may do about an access that fails.
enum class Border
{
    Answers,         ///< Its answer says so, and LastErrorNumber why.
    AnswersByItself, ///< Its answer is an error number, or what it gives where nothing can be read.
    Raises           ///< As it is told: dao::Error, and nothing else.
};

struct Failure
{
    const char* Name;
    std::function<void()> Raise;
};

struct Operation
{
    const char* Name;
    Border Promise;
    /// Makes what the operation needs, anew for each failure, and gives the operation itself: true when it says that it
    /// has done what it was asked for.
    std::function<std::function<bool()>(FailingStation&)> Prepare;
};

std::ostream& operator<<(std::ostream& stream, const Operation& operation)
{
    return stream << operation.Name;
}

/// A station over a failing engine, and what its operations need.
class FailingAccessTest : public FailingStation, public testing::WithParamInterface<Operation>
{
protected:
    void FailEach(const Failure& failure, bool isLasting);
    /// Whether it answered: what came out of it otherwise is judged here.
    bool RunWithFailure(const std::function<bool()>& operation, bool& isDone);
    void ExpectThatTheStationWorks();
};

using T = FailingStation;
using Run = std::function<bool()>;

/// An operation that needs nothing but an open station.
template <typename Work>
auto Opened(Work work)
{
    return [work](T& t) -> Run { return [&t, work] { return work(t.Database()); }; };
}

std::vector<Operation> StationOperations()
{
    return {
        {"Close", Border::AnswersByItself, Opened([](cTolvaDatabase& d) { return d.CloseTolvaDatabase() == 0; })},
        {"Validate", Border::AnswersByItself,
         [](T& t) -> Run { return [&t] { return t.Database().ValidateTolvaDatabase(t.File()) == 0; }; }},
        {"LockingMode", Border::AnswersByItself,
         Opened([](cTolvaDatabase& d) { return d.DatabaseLockingMode() != LockingMode::Unknown; })},
        {"ValidateFile", Border::AnswersByItself,
         [](T& t) -> Run {
             return [&t] {
                 QString title = QStringLiteral("x");
                 return DAO_DatabaseFunctions::ValidateDatabase(t.File(), 31, true, title, QString()) == 0;
             };
         }},
        {"FileInformation", Border::AnswersByItself,
         [](T& t) -> Run {
             return [&t] {
                 DatabaseInformation read;
                 return DAO_DatabaseFunctions::GetDatabaseInformation(t.File(), read, true, QString()) == 0;
             };
         }},
        {"CompactFile", Border::AnswersByItself,
         [](T& t) -> Run {
             t.Database().CloseTolvaDatabase();
             return [&t] { return DAO_DatabaseFunctions::CompactRepairDatabase(t.File(), nullptr, QString(), true); };
         }},
    };
}

std::vector<Operation> SettingOperations()
{
    return {
        {"ReadSettings", Border::Answers, Opened([](cTolvaDatabase& d) { return d.ReadDatabaseSettings(); })},
        {"WriteSettings", Border::AnswersByItself, Opened([](cTolvaDatabase& d) { return d.WriteDatabaseSettings(); })},
        {"Setting", Border::AnswersByItself, Opened([](cTolvaDatabase& d) {
             return d.DatabaseSetting(QStringLiteral("Station.Name"), QStringLiteral("x")) != QStringLiteral("y");
         })},
        {"SetSetting", Border::AnswersByItself, Opened([](cTolvaDatabase& d) {
             d.SetDatabaseSetting(QStringLiteral("Any"), QStringLiteral("value"), QString());
             d.SetDatabaseSetting(QStringLiteral("Any"), QString(), QString());
             return true;
         })},
        {"Backups", Border::AnswersByItself, Opened([](cTolvaDatabase& d) {
             d.SetEnableAutoBackup(!d.EnableAutoBackup());
             d.SetBackupInterval(d.BackupInterval() == 60 ? 1440 : 60);
             d.SetBackupExpiryDays(static_cast<qint16>(d.BackupExpiryDays() + 1));
             return true;
         })},
        {"StationDetails", Border::AnswersByItself, Opened([](cTolvaDatabase& d) {
             d.SetStationName(d.StationName() + QStringLiteral("!"));
             d.SetStationAddress(d.StationAddressString());
             d.SetStationCountry(d.StationCountry());
             return !d.StationPhoneNumber().isNull();
         })},
        {"Backup", Border::Raises,
         [](T& t) -> Run {
             t.TakeAnotherObject();
             return [&t] { return t.Database().BackupDatabase(true); };
         }},
    };
}

std::vector<Operation> MessageOperations()
{
    return {
        {"GetMessage", Border::Answers,
         [](T& t) -> Run {
             return [&t, reference = t.NewMessage()] { return t.Database().GetMessage(reference) != nullptr; };
         }},
        {"ReadMessage", Border::Raises,
         [](T& t) -> Run {
             return [&t, reference = t.NewMessage()] { return t.Database().ReadMessage(reference) != nullptr; };
         }},
        {"GetMessages", Border::Answers,
         [](T& t) -> Run {
             t.NewMessage();
             return [&t] { return t.Database().GetMessages(QStringLiteral("[Category]=1")) != nullptr; };
         }},
        {"SaveMessage.New", Border::Answers,
         [](T& t) -> Run { return [&t, message = T::Unsaved()] { return t.Database().SaveMessage(message); }; }},
        {"SaveMessage.Changed", Border::Answers,
         [](T& t) -> Run {
             const cMessagePtr message = t.Database().GetMessage(t.NewMessage());
             return [&t, message] { return t.Database().SaveMessage(message); };
         }},
        {"SaveMessage.Sms", Border::Answers,
         [](T& t) -> Run { return [&t, message = T::Unsaved(emtSMS)] { return t.Database().SaveMessage(message); }; }},
        {"SaveMessages", Border::Raises,
         [](T& t) -> Run {
             return [&t, messages = std::vector{T::Unsaved(), T::Unsaved()}] {
                 return t.Database().SaveMessages(messages, [] { return true; }).size() == 2;
             };
         }},
        {"CopyMessage", Border::Answers,
         [](T& t) -> Run {
             return [&t, reference = t.NewMessage()] { return t.Database().CopyMessage(reference, tmcSaved); };
         }},
        {"MoveMessage", Border::Answers,
         [](T& t) -> Run {
             return [&t, reference = t.NewMessage()] { return t.Database().MoveMessage(reference, tmcSaved); };
         }},
        {"DeleteMessage.ToTheBin", Border::Answers,
         [](T& t) -> Run {
             return [&t, reference = t.NewMessage()] { return t.Database().DeleteMessage(reference, false); };
         }},
        {"DeleteMessage.ForEver", Border::Answers,
         [](T& t) -> Run {
             t.Database().SetStampsEveryChange(true);
             return [&t, reference = t.NewMessage()] { return t.Database().DeleteMessage(reference, true); };
         }},
        {"ChangeMessageFlags", Border::Answers,
         [](T& t) -> Run {
             return [&t, reference = t.NewMessage()] { return t.Database().ChangeMessageFlags(reference, mfRead, 0); };
         }},
        {"MarkMessageSent", Border::Answers,
         [](T& t) -> Run {
             return [&t, reference = t.NewWaitingMessage()] {
                 return t.Database().MarkMessageSent(reference, ClockHelper::CurrentTime());
             };
         }},
        {"RewriteMessageKeys", Border::Raises,
         [](T& t) -> Run {
             t.NewMessage();
             return [&t] { return t.Database().RewriteMessageKeys(1, 1000) >= 0; };
         }},
        {"EmptyFolder", Border::Answers,
         [](T& t) -> Run {
             t.NewMessage();
             return [&t] { return t.Database().DeleteMessagesOfCategory(tmcInbox); };
         }},
        {"MessageStamp", Border::AnswersByItself, Opened([](cTolvaDatabase& d) {
             d.SetLastMessageChanged(d.LastMessageChanged());
             return true;
         })},
        {"MessageHistory", Border::Answers,
         [](T& t) -> Run {
             t.NewMessage();
             return [&t] {
                 CountingList list;
                 t.Database().FillMessagesListView(&list, QStringLiteral("ann@example.com"), QStringLiteral("07700"));
                 return list.Items >= 1;
             };
         }},
        {"MessageRows", Border::Raises,
         [](T& t) -> Run {
             t.NewMessage();
             return [&t] {
                 return !t.Database()
                             .OpenMessageRows({QStringLiteral("Subject")})
                             ->Collect(QStringLiteral("Subject"))
                             .isNull();
             };
         }},
    };
}

std::vector<Operation> FolderOperations()
{
    return {
        {"GetFolder", Border::Raises,
         Opened([](cTolvaDatabase& d) { return d.GetMessageCategory(tmcInbox) != nullptr; })},
        {"SaveFolder", Border::Raises, Opened([](cTolvaDatabase& d) {
             clsCategory folder;
             folder.SetDescription(QStringLiteral("Requests"));
             return d.SaveMessageCategory(folder, true);
         })},
        {"DeleteFolder", Border::Answers,
         [](T& t) -> Run {
             return [&t, reference = t.NewFolder()] { return t.Database().DeleteMessageCategory(reference); };
         }},
        {"FolderTree", Border::Raises, Opened([](cTolvaDatabase& d) {
             d.UpdateCategoryTree();
             return !d.RefreshCategoryTree();
         })},
        {"LastFolder", Border::Raises,
         Opened([](cTolvaDatabase& d) { return d.LastMessageCategoryReference() >= tmcAutomatic; })},
    };
}

std::vector<Operation> PrizeOperations()
{
    return {
        {"GetPrize", Border::Answers,
         [](T& t) -> Run {
             const cPrizePtr prize = t.NewPrize();
             t.NewWinner(prize);
             return [&t, prize] {
                 const cPrizePtr read = t.Database().GetPrize(prize->Reference(), true);
                 return read && read->WinnersRead();
             };
         }},
        {"GetPrizeWinner", Border::Answers,
         [](T& t) -> Run {
             return [&t, winner = t.NewWinner(t.NewPrize())] {
                 return t.Database().GetPrizeWinner(winner->Reference()) != nullptr;
             };
         }},
        {"GetPrizeWinners", Border::Answers,
         [](T& t) -> Run {
             const cPrizePtr prize = t.NewPrize();
             t.NewWinner(prize);
             return [&t, prize] { return t.Database().GetPrizeWinners(prize); };
         }},
        {"SavePrize.New", Border::Answers,
         [](T& t) -> Run {
             const auto prize = std::make_shared<cPrize>();
             return [&t, prize] { return t.Database().SavePrize(prize); };
         }},
        {"SavePrize.Changed", Border::Answers,
         [](T& t) -> Run { return [&t, prize = t.NewPrize()] { return t.Database().SavePrize(prize); }; }},
        {"DeletePrize", Border::Answers,
         [](T& t) -> Run {
             const cPrizePtr prize = t.NewPrize();
             t.NewWinner(prize);
             return [&t, prize] { return t.Database().DeletePrize(prize->Reference()); };
         }},
        {"SavePrizeWinner.New", Border::Answers,
         [](T& t) -> Run {
             return [&t, winner = t.Unstored(t.NewPrize())] { return t.Database().SavePrizeWinner(winner); };
         }},
        {"SavePrizeWinner.Changed", Border::Answers,
         [](T& t) -> Run {
             return [&t, winner = t.NewWinner(t.NewPrize())] { return t.Database().SavePrizeWinner(winner); };
         }},
        {"DeletePrizeWinner", Border::Answers,
         [](T& t) -> Run {
             return [&t, winner = t.NewWinner(t.NewPrize())] {
                 return t.Database().DeletePrizeWinner(winner->Reference());
             };
         }},
        {"CountWinners", Border::Answers,
         [](T& t) -> Run {
             const cPrizePtr prize = t.NewPrize();
             t.NewWinner(prize);
             return [&t, prize] { return t.Database().StoredWinners(prize->Reference()) == 1; };
         }},
        {"RecountWinners", Border::Answers,
         [](T& t) -> Run {
             const cPrizePtr prize = t.NewPrize();
             t.CountTooMany(prize->Reference());
             return [&t, prize] {
                 return t.Database().CountStoredWinners(prize->Reference()) &&
                        t.Database().RecountWinners(prize->Reference());
             };
         }},
        {"PrizeHistory", Border::Answers,
         [](T& t) -> Run {
             t.NewWinner(t.NewPrize());
             return [&t] {
                 CountingList list;
                 t.Database().FillPrizesListView(&list, 11);
                 return list.Items >= 1;
             };
         }},
        {"NumberWins", Border::Answers,
         [](T& t) -> Run {
             t.NewWinner(t.NewPrize());
             return [&t] { return t.Database().GetNumberWinsForContact(11) >= 1; };
         }},
        {"PrizeStamp", Border::AnswersByItself, Opened([](cTolvaDatabase& d) {
             d.SetLastPrizeChanged(d.LastPrizeChanged());
             return true;
         })},
        {"LoadHotlist", Border::Raises,
         [](T& t) -> Run {
             t.Database().SetDatabaseSetting(QStringLiteral("HR.Morning"), QStringLiteral("ABC"), QString());
             return [&t] { return t.Database().LoadAvailableHoursHotlist(nullptr) == QStringLiteral("ABC"); };
         }},
        {"SaveHotlist", Border::Raises,
         Opened([](cTolvaDatabase& d) { return d.SaveAvailableHoursHotlist(QStringLiteral("A"), nullptr); })},
    };
}

std::vector<Operation> Operations()
{
    std::vector<Operation> all;
    for (const auto& part :
         {StationOperations(), SettingOperations(), MessageOperations(), FolderOperations(), PrizeOperations()})
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

bool FailingAccessTest::RunWithFailure(const std::function<bool()>& operation, bool& isDone)
{
    try {
        isDone = operation();
        return true;
    } catch (const dao::Error& error) {
        EXPECT_EQ(GetParam().Promise, Border::Raises) << qPrintable(error.Description());
    } catch (const std::exception& error) {
        ADD_FAILURE() << "raises what is no error of the store: " << error.what();
    }
    return false;
}

/// Runs the operation with the first access failing, then the second, and so on until none fails any more.
void FailingAccessTest::FailEach(const Failure& failure, bool isLasting)
{
    for (int number = 1; number < MostAccesses; ++number) {
        SCOPED_TRACE(testing::Message() << failure.Name << (isLasting ? " from access " : " at access ") << number);
        if (!Station->IsOpen()) {
            ASSERT_EQ(Station->OpenTolvaDatabase(Location()), 0);
        }
        const auto operation = GetParam().Prepare(*this);
        Now.Advance(60);
        Disk->FailAt(number, failure.Raise, isLasting);
        bool isDone = false;
        const bool isAnswered = RunWithFailure(operation, isDone);
        const bool hasFailed = Disk->HasFailed();
        Disk->Heal();
        if (isAnswered && !isDone && GetParam().Promise == Border::Answers) {
            EXPECT_NE(Station->LastErrorNumber(), 0);
            EXPECT_NE(Station->LastErrorDescription(), QString());
        }
        if (!hasFailed) {
            EXPECT_TRUE(isAnswered && isDone) << "without a failure";
            EXPECT_GT(number, 1) << "nothing was accessed at all";
            return;
        }
        ExpectThatTheStationWorks();
        if (testing::Test::HasFailure())
            return;
    }
    FAIL() << "the failures never ended";
}

/// No transaction was left open, and no lock.
void FailingAccessTest::ExpectThatTheStationWorks()
{
    if (!Station->IsOpen()) {
        ASSERT_EQ(Station->OpenTolvaDatabase(Location()), 0);
    }
    bool isOutside = false;
    dao::Transaction::AfterCommit([&] { isOutside = true; });
    EXPECT_TRUE(isOutside);
    const dao::Transaction change = Station->BeginChange();
    EXPECT_NE(Station->OpenSnapshot(QStringLiteral("SELECT [Item] FROM [Settings]"))->RecordCount(), 0);
}
} // namespace

TEST_P(FailingAccessTest, NothingEscapesWhereAnAnswerIsToldAndTheReasonIsKept)
{
    const std::vector<Failure> failures = {
        {"a disk error", [] { throw dao::Error(dao::errDiskError, Words); }},
        {"a lack of memory", [] { throw std::bad_alloc(); }},
        {"an unknown failure", [] { throw std::runtime_error("unknown"); }},
    };
    for (const Failure& failure : failures) {
        FailEach(failure, false);
        // What is no error of the store is no promise of those that raise.
        if (GetParam().Promise == Border::Raises || HasFailure())
            break;
    }
    FailEach(failures.front(), true);
    if (!Station->IsOpen()) {
        ASSERT_EQ(Station->OpenTolvaDatabase(Location()), 0);
    }
    EXPECT_TRUE(Station->SaveMessage(Unsaved())) << qPrintable(Station->LastErrorDescription());
}

INSTANTIATE_TEST_SUITE_P(Operations, FailingAccessTest, testing::ValuesIn(Operations()), [](const auto& instance) {
    return QString::fromLatin1(instance.param.Name).remove(u'.').toStdString();
});
