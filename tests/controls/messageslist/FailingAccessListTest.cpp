// SPDX-License-Identifier: Apache-2.0

// A station that fails at any single access while the user works in the list: no exception crosses the event loop, what
// was not done is told, and the next tick shows what is stored.

#include "core/support/FaultyEngine.h"
#include "core/support/PatientUser.h"
#include "messageslist/FilledListTest.h"

#include <QLabel>

#include <functional>

namespace
{
constexpr int MostAccesses = 500;

class FailingAccessListTest;
/// One thing that a user or a host does.
struct Deed
{
    const char* Name;
    bool IsOfHost; ///< An operation of the list: the host gets the error (dao::Error).
    /// Puts the list and its station where the deed begins, and gives the deed.
    std::function<std::function<void()>(FailingAccessListTest&)> Prepare;
    /// Whether all of it was done; none where there is nothing to be done but to show.
    std::function<bool(FailingAccessListTest&)> IsDone;
};

std::ostream& operator<<(std::ostream& stream, const Deed& deed)
{
    return stream << deed.Name;
}

class FailingAccessListTest : public FilledListTest, public testing::WithParamInterface<Deed>
{
public:
    uMessagesList& Shown() { return *List; }
    FlexGrid& Rows() { return *Grid; }
    using FilledListTest::ClickNode;
    using FilledListTest::ClickRow;
    using FilledListTest::Tick;
    void Trigger(const char* entry) { Entry(entry).trigger(); }
    cTolvaDatabase& Database() { return *Station; }
    /// What lies in a folder.
    int Stored(qint32 category, const QString& condition = QString()) const
    {
        const QString query = QStringLiteral("[Category]=%1").arg(category) + condition;
        return Station->OpenMessageRows({QStringLiteral("Reference")}, query)->RecordCount();
    }
    /// Saves without telling the list, as another computer does.
    void SaveUntold(enTolvaMessageCategories category = tmcInbox)
    {
        Now.Advance(1);
        Station->SetRaiseEvents(false);
        SaveIn(QStringLiteral("Hello"), category);
        Station->SetRaiseEvents(true);
    }

protected:
    void SetUp() override
    {
        Disk = std::make_unique<FaultyEngine>();
        SaveMany(3);
        Attach();
        UserInterface::SetCurrent(&Patient);
        Patient.Answer = MessageBoxAnswer::Yes;
        // Ticks come when the test wants them.
        List->SetAutoUpdate(false);
    }
    void TearDown() override
    {
        Disk->Heal();
        List->SetTolvaDatabase(nullptr);
        Station.reset();
        UserInterface::SetCurrent(&Ui);
        Disk.reset();
    }
    void RunWithFailure(const std::function<void()>& deed)
    {
        try {
            deed();
        } catch (const dao::Error& error) {
            EXPECT_TRUE(GetParam().IsOfHost) << qPrintable(error.Description());
        }
    }
    void ExpectThatTheNextTickShowsWhatIsStored()
    {
        List->SetAutoUpdate(true);
        Tick();
        List->SetAutoUpdate(false);
        EXPECT_EQ(List->NumberItems(), Stored(List->Category()));
        EXPECT_FALSE(Column(0).contains(QString()));
        EXPECT_FALSE(Child<QLabel>("lblUnread").isVisible());
        EXPECT_TRUE(Tree->isEnabled());
        EXPECT_FALSE(List->IsFilling());
    }

    std::unique_ptr<FaultyEngine> Disk;
    PatientUser Patient;
};

std::vector<Deed> Deeds()
{
    using T = FailingAccessListTest;
    using Run = std::function<void()>;
    const auto isShown = [](T&) { return true; };
    const auto inbox = [](T& t) { t.Shown().SetCategory(tmcInbox); };
    return {
        {"Tick", false,
         [](T& t) -> Run {
             t.SaveUntold();
             return [&t] {
                 t.Shown().SetAutoUpdate(true);
                 t.Tick();
                 t.Shown().SetAutoUpdate(false);
             };
         },
         isShown},
        {"UpdateDisplay", true,
         [](T& t) -> Run {
             t.SaveUntold();
             return [&t] { t.Shown().UpdateDisplay(); };
         },
         isShown},
        {"Refresh", true, [](T& t) -> Run { return [&t] { t.Shown().RefreshDisplay(); }; }, isShown},
        {"F5", false,
         [](T& t) -> Run {
             t.SaveUntold();
             return [&t] { QTest::keyClick(&t.Rows(), Qt::Key_F5); };
         },
         isShown},
        {"Category", false,
         [inbox](T& t) -> Run {
             inbox(t);
             t.SaveUntold(tmcSaved);
             return [&t] { t.Shown().SetCategory(tmcSaved); };
         },
         isShown},
        {"ClickOnAFolder", false,
         [inbox](T& t) -> Run {
             inbox(t);
             return [&t] { t.ClickNode(tmcSaved); };
         },
         isShown},
        {"TwoLines", false,
         [](T& t) -> Run { return [&t] { t.Shown().SetDoubleHeightRows(!t.Shown().DoubleHeightRows()); }; }, isShown},
        {"ClickOnARow", false,
         [](T& t) -> Run {
             t.ClickRow(1);
             return [&t] { t.ClickRow(2); };
         },
         isShown},
        {"SavedHere", false,
         [](T& t) -> Run {
             const cMessagePtr message = t.Database().GetMessage(t.Shown().SelectedReference());
             return [&t, message] { t.Database().SaveMessage(message); };
         },
         isShown},
        {"MarkAsRead", false,
         [](T& t) -> Run {
             t.ClickRow(1);
             t.Trigger("mnuMarkasUnread");
             return [&t] { t.Trigger("mnuMarkAsRead"); };
         },
         [](T& t) { return t.Stored(tmcInbox, QStringLiteral(" AND [Flags]=1")) == 1; }},
        {"MarkAll", false,
         [](T& t) -> Run {
             t.Trigger("mnuMarkAllRead2");
             return [&t] { t.Trigger("mnuMarkAllRead1"); };
         },
         [](T& t) { return t.Stored(tmcInbox, QStringLiteral(" AND [Flags]=0")) == 0; }},
        {"Delete", false,
         [](T& t) -> Run {
             t.SaveUntold();
             t.Shown().UpdateDisplay();
             t.ClickRow(1);
             return [&t] { QTest::keyClick(&t.Rows(), Qt::Key_Delete); };
         },
         [before = std::make_shared<int>(0)](T& t) {
             return t.Stored(tmcDeleted) > std::exchange(*before, t.Stored(tmcDeleted));
         }},
        {"EmptyTheBin", false,
         [](T& t) -> Run {
             t.SaveUntold(tmcDeleted);
             t.Shown().SetCategory(tmcDeleted);
             return [&t] { t.Trigger("mnuEmpty"); };
         },
         [](T& t) { return t.Stored(tmcDeleted) == 0; }},
        {"NewFolder", false,
         [inbox](T& t) -> Run {
             inbox(t);
             return [&t] { t.Trigger("mnuNewFolder"); };
         },
         isShown},
    };
}
} // namespace

TEST_P(FailingAccessListTest, NothingIsThrownNothingIsLostInSilenceAndTheNextTickShowsWhatIsStored)
{
    for (int number = 1; number < MostAccesses; ++number) {
        SCOPED_TRACE(number);
        const auto deed = GetParam().Prepare(*this);
        Patient.RunTimeErrors.clear();
        Disk->FailAt(number, [] { throw dao::Error(dao::errDiskError, QStringLiteral("The cable was pulled.")); });
        RunWithFailure(deed);
        const bool hasFailed = Disk->HasFailed();
        Disk->Heal();
        if (!GetParam().IsDone(*this)) {
            EXPECT_TRUE(hasFailed) << "not done without a failure";
            EXPECT_FALSE(Patient.RunTimeErrors.isEmpty()) << "not done in silence";
        }
        ExpectThatTheNextTickShowsWhatIsStored();
        if (!hasFailed) {
            EXPECT_GT(number, 1) << "nothing was accessed at all";
            return;
        }
        if (HasFailure())
            return;
    }
    FAIL() << "the failures never ended";
}

INSTANTIATE_TEST_SUITE_P(Deeds, FailingAccessListTest, testing::ValuesIn(Deeds()),
                         [](const auto& instance) { return std::string(instance.param.Name); });
