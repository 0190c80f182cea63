// SPDX-License-Identifier: Apache-2.0

// Who is answering: this window, and a desk in a process of its own that begins to answer, closes and is killed.

#include "answering/AnsweringDesk.h"

#include "answering/AnsweredMarks.h"
#include "answering/AnsweringTable.h"
#include "answering/ShortWait.h"
#include "desk/HeldFile.h"
#include "desk/LongestGap.h"
#include "desk/window/MainWindowTest.h"
#include "platform/widgets/FlexGridModel.h"

#include <QAccessible>
#include <QPlainTextEdit>

#include <csignal>

namespace
{
constexpr int Patience = 60000;
/// Within which every desk has to show it.
constexpr int ShownMilliseconds = 2000;

class AnsweringDeskTest : public MainWindowTest
{
protected:
    void TearDown() override
    {
        if (Other.state() != QProcess::NotRunning) {
            Other.kill();
            Other.waitForFinished();
        }
        MainWindowTest::TearDown();
    }
    void StartOther()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("TOLVA_USER"));
        environment.insert(QStringLiteral("TOLVA_REGISTRY"), Path(QStringLiteral("Tolva.ini")));
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), Path(QStringLiteral("cache")));
        Other.setProcessEnvironment(environment);
        Other.start(QStringLiteral(TOLVA_SOAK_DESK), {Folder(), Path(QStringLiteral("other.ini"))});
        ASSERT_TRUE(Other.waitForStarted());
    }
    void Tell(const QByteArray& words) { Other.write(words + '\n'); }
    NoticeBar& Pane() { return Notice("answeringNotice"); }
    /// What a screen reader says of the message's row.
    QString Spoken(qint32 reference)
    {
        const auto row = static_cast<int>(List().References().indexOf(reference));
        return Grid().model()->index(row, 2).data(Qt::AccessibleTextRole).toString();
    }
    QList<AnsweringEntry> Table() { return AnsweringTable(Station.Directory().File()).Read(); }
    AnsweringDesk& Answering() { return *Window->findChild<AnsweringDesk*>(); }

    QProcess Other;
};

/// By a lock that only a file has.
class LockedDirectoryTest : public AnsweringDeskTest
{
};

const QString JustNow = QStringLiteral("Technician is answering, for less than a minute");
} // namespace

TEST_F(AnsweringDeskTest, AReplyThatIsBegunAtAnotherDeskStandsInRowAndPaneWithinTwoSecondsAndEndsWithItsWindow)
{
    const qint32 first = FileMail(Mail("Lighthouse"));
    const qint32 second = FileMail(Mail("Harbour"));
    OpenWindow();
    Select(first);
    StartOther();
    Tell("reply " + QByteArray::number(first));
    ASSERT_TRUE(WaitUntil([this] { return !Table().isEmpty(); }, Patience)) << "the other desk answers";
    QElapsedTimer since;
    since.start();
    EXPECT_TRUE(WaitUntil([this] { return Pane().Text() == JustNow + u'.'; }, ShownMilliseconds))
        << Pane().Text().toStdString();
    EXPECT_TRUE(Spoken(first).contains(JustNow)) << Spoken(first).toStdString();
    EXPECT_FALSE(Spoken(second).contains(QStringLiteral("answering")));
    Select(second);
    EXPECT_TRUE(Pane().isHidden());
    Select(first);
    EXPECT_TRUE(Pane().isVisible());
    Tell("close");
    ASSERT_TRUE(WaitUntil([this] { return Table().isEmpty(); }, Patience));
    EXPECT_TRUE(WaitUntil([this] { return Pane().isHidden(); }, ShownMilliseconds));
    EXPECT_FALSE(Spoken(first).contains(QStringLiteral("answering")));
}

TEST_F(AnsweringDeskTest, ASecondReplyAsksFirstAndNobodyIsLockedOut)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    AnsweringTable(Station.Directory().File())
        .Write({{QStringLiteral("other"), reference, QStringLiteral("Petra"), 150}}, {});
    const QString question = QStringLiteral("Petra is answering, for 2 minutes. Do you want to answer as well?");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    Key(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(Window->ComposeWindows().isEmpty());
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    Key(Qt::Key_R, Qt::ControlModifier);
    ASSERT_NE(OnlyCompose(), nullptr);
    EXPECT_TRUE(WaitUntil([this] { return Table().size() == 2; }));
    OnlyCompose()->close();
    EXPECT_TRUE(WaitUntil([this] { return Table().size() == 1; })) << "Petra's is left alone";
}

TEST_F(AnsweringDeskTest, AMessageWindowAndADraftThatIsGoneOnWithAreSeenToo)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    MessageWindow* open = Window->OpenInWindow(Database().GetMessage(reference));
    ASSERT_TRUE(WaitUntil([this] { return Table().size() == 1; }));
    EXPECT_EQ(Table().first().Message, reference);
    EXPECT_EQ(Table().first().Name, QStringLiteral("Technician"));
    Answering().Look();
    EXPECT_TRUE(Pane().isHidden()) << "one's own windows are no news";
    open->close();
    ASSERT_TRUE(WaitUntil([this] { return Table().isEmpty(); }));

    Window->Reply();
    ComposeWindow* reply = OnlyCompose();
    QTest::keyClicks(reply->findChild<QPlainTextEdit*>(QStringLiteral("body")), QStringLiteral("Gladly."));
    ASSERT_TRUE(reply->SaveDraft());
    reply->close();
    ASSERT_TRUE(WaitUntil([this] { return Table().isEmpty(); }));
    const cMessagePtr draft = Database().GetMessage(MessagesIn(tmcDrafts).value(0));
    ASSERT_NE(draft, nullptr);
    Window->Compose(Composing::Continue(*draft), draft);
    ASSERT_TRUE(WaitUntil([this] { return Table().size() == 1; }));
    EXPECT_EQ(Table().first().Message, reference);
    CloseWindow();
    EXPECT_TRUE(Table().isEmpty()) << "the desk takes back what it told when it ends";
}

TEST_F(AnsweringDeskTest, ALockedDirectoryHoldsNoWindowAndNothingOfItIsLost)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    StartOther();
    Tell("lock 3000");
    ASSERT_TRUE(WaitUntil([this] { return Other.readAllStandardOutput().contains("locked"); }, Patience));
    QElapsedTimer since;
    since.start();
    Window->Reply();
    ASSERT_NE(OnlyCompose(), nullptr);
    AnsweredMarks marks(Station, nullptr);
    QElapsedTimer noting;
    noting.start();
    marks.Note(reference, reference, true);
    EXPECT_LT(noting.elapsed(), 100);
    EXPECT_TRUE(marks.HasUnwritten());
    LongestGap gap;
    WaitUntil([&] { return since.elapsed() > 2000; });
    EXPECT_LT(gap.Passed, 100);
    EXPECT_TRUE(marks.HasUnwritten()) << "the lock is held still";
    EXPECT_TRUE(WaitUntil([&] { return !marks.HasUnwritten() && Table().size() == 1; }, Patience));
    EXPECT_EQ(AnswerLedger(Station.Directory().File()).Since({}).size(), 1);
}

TEST_F(LockedDirectoryTest, WhatADraftAnswersIsToldAsSoonAsItCanBeRead)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    Window->Reply();
    ComposeWindow* reply = OnlyCompose();
    QTest::keyClicks(reply->findChild<QPlainTextEdit*>(QStringLiteral("body")), QStringLiteral("Gladly."));
    ASSERT_TRUE(reply->SaveDraft());
    reply->close();
    ASSERT_TRUE(WaitUntil([this] { return Table().isEmpty() && Window->ComposeWindows().isEmpty(); }));
    const cMessagePtr draft = Database().GetMessage(MessagesIn(tmcDrafts).value(0));
    ASSERT_NE(draft, nullptr);
    {
        const HeldFile held(StationPlace::DirectoryFileIn(Folder()));
        QElapsedTimer since;
        since.start();
        Window->Compose(Composing::Continue(*draft), draft);
        EXPECT_LT(since.elapsed(), 1500);
        QTest::qWait(2 * ShortWait::AgainMilliseconds);
    }
    ASSERT_TRUE(WaitUntil([this] { return Table().size() == 1; }));
    EXPECT_EQ(Table().first().Message, reference);
}

TEST_F(AnsweringDeskTest, SendingWaitsForNobodyWhoHasTheDirectoryLockedAndNothingIsLost)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    Key(Qt::Key_R, Qt::ControlModifier);
    const QPointer<ComposeWindow> reply = OnlyCompose();
    ASSERT_TRUE(reply);
    ASSERT_TRUE(WaitUntil([this] { return Table().size() == 1; }));
    auto* body = reply->findChild<QPlainTextEdit*>(QStringLiteral("body"));
    body->insertPlainText(QStringLiteral("Gladly."));
    StartOther();
    Tell("lock 4000");
    ASSERT_TRUE(WaitUntil([this] { return Other.readAllStandardOutput().contains("locked"); }, Patience));
    QElapsedTimer since;
    since.start();
    LongestGap gap;
    QTest::keyClick(reply, Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(WaitUntil([&] { return reply.isNull(); }));
    // 30 ms for the log and 30 for the mark; a machine that is at work beside this adds its own.
    EXPECT_LT(gap.Passed, 1000);
    EXPECT_LT(since.elapsed(), 2500) << "the lock is held still";
    EXPECT_EQ(MessagesIn(tmcOutbox).size(), 1);
    EXPECT_EQ(AnswerLedger(Station.Directory().File()).Since({}).size(), 0);
    const auto isLogged = [this] {
        const QList<DirectoryLogEntry> entries = Station.Directory().LogEntries(5);
        return std::any_of(entries.begin(), entries.end(), [](const DirectoryLogEntry& entry) {
            return entry.Title == u"Message Added" && entry.Text.contains(u"RE: Lighthouse");
        });
    };
    EXPECT_FALSE(isLogged());
    EXPECT_TRUE(WaitUntil([&] { return isLogged(); }, Patience));
    EXPECT_TRUE(WaitUntil([this] { return AnswerLedger(Station.Directory().File()).Since({}).size() == 1; }));
}

TEST_F(AnsweringDeskTest, WhatAKilledDeskLeftIsGoneAfterAMinute)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    StartOther();
    Tell("reply " + QByteArray::number(reference));
    ASSERT_TRUE(WaitUntil([this] { return Pane().isVisible(); }, Patience));
    ::kill(static_cast<pid_t>(Other.processId()), SIGKILL);
    ASSERT_TRUE(Other.waitForFinished());
    QElapsedTimer since;
    since.start();
    EXPECT_TRUE(WaitUntil([this] { return Pane().isHidden(); }, 63000));
    EXPECT_GT(since.elapsed(), 30000) << "one who only was held up is not taken for dead at once";
    EXPECT_EQ(Table().size(), 1) << "and nobody has written since";
}

TEST_F(AnsweringDeskTest, WithoutTheTableAndWhereItCannotBeWrittenTheDeskWorksAsBefore)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    // Another table has the name: neither reading nor writing works.
    dao::Database& file = Station.Directory().File();
    auto table = file.CreateTableDef(QStringLiteral("Answering"));
    table->Fields().Append(table->CreateField(QStringLiteral("Entry"), dao::dbDate));
    file.TableDefs().Append(std::move(table));
    Answering().Look();
    Key(Qt::Key_R, Qt::ControlModifier);
    ASSERT_NE(OnlyCompose(), nullptr);
    QTest::qWait(50);
    OnlyCompose()->findChild<QPlainTextEdit*>(QStringLiteral("body"))->insertPlainText(QStringLiteral("Gladly."));
    EXPECT_TRUE(OnlyCompose()->Send());
    EXPECT_EQ(MessagesIn(tmcOutbox).size(), 1);
}
