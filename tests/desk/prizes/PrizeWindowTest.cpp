// SPDX-License-Identifier: Apache-2.0
#include "PrizeDeskTest.h"
#include "prizes/PrizeHotlist.h"
#include "prizes/controls/WeekHours.h"

#include <QAction>
#include <QCalendarWidget>
#include <QHeaderView>
#include <QMenu>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolButton>

namespace
{
class PrizeWindowTest : public PrizeDeskTest
{
protected:
    /// Opens the prize from the list, as a double click does.
    PrizeWindow& Open(qint32 prize)
    {
        Prizes().OpenPrize(prize);
        PrizeWindow* window = OnlyPrizeWindow();
        Activate(*window);
        return *window;
    }
    PrizeWindow& OpenNew()
    {
        QTest::mouseClick(&Get<QPushButton>(List(), "cmdNewPrize"), Qt::LeftButton);
        PrizeWindow* window = OnlyPrizeWindow();
        Activate(*window);
        return *window;
    }
    static void Save(PrizeWindow& window)
    {
        Activate(window);
        QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
    }
    QLineEdit& Title(PrizeWindow& window) { return Get<QLineEdit>(window, "title"); }
    QPlainTextEdit& Script(PrizeWindow& window) { return Get<QPlainTextEdit>(window, "script"); }
    QString Notice(PrizeWindow& window) { return Get<NoticeBar>(window, "storedNotice").Text(); }
    static void Page(PrizeWindow& window, int page)
    {
        window.findChild<QTabWidget*>(QStringLiteral("pages"))->setCurrentIndex(page);
    }
    /// On the other computer.
    void ChangeElsewhere(qint32 prize, const std::function<void(cPrize&)>& change)
    {
        const cPrizePtr stored = Stored(prize);
        change(*stored);
        ASSERT_TRUE(Station.Database().SavePrize(stored));
    }
};
} // namespace

TEST_F(PrizeWindowTest, EverythingThatIsTypedIsStored)
{
    const qint32 supplier = AddContact(QStringLiteral("The Regal"));
    OpenPrizes();
    PrizeWindow& window = OpenNew();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("New prize"));
    Type(Title(window), QStringLiteral("Two tickets"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Two tickets – Prize"));
    Type(Script(window), QStringLiteral("Call us now!"));
    Type(Get<QPlainTextEdit>(window, "notes"), QStringLiteral("Not on air"));
    Type(Get<QPlainTextEdit>(window, "notesToSupplier"), QStringLiteral("Thanks"));
    auto& number = Get<QSpinBox>(window, "numberSupplied");
    number.setFocus();
    number.selectAll();
    QTest::keyClicks(&number, QStringLiteral("5"));
    {
        DialogVisitor chooser("contactChooser", Choosing(QStringLiteral("Regal")));
        QTest::mouseClick(&Get<QPushButton>(window, "supplierChoose"), Qt::LeftButton);
    }
    Page(window, 1);
    Type(Get<QLineEdit>(window, "start"), QStringLiteral("22/11/2026 06:30"));
    Type(Get<QLineEdit>(window, "end"), QStringLiteral("30/11/2026"));
    auto& hours = Get<WeekHours>(window, "hours");
    hours.setFocus();
    hours.setCurrentIndex(hours.model()->index(0, 10));
    QTest::keyClick(&hours, Qt::Key_Space);
    Save(window);
    ASSERT_GT(window.Reference(), 0);
    const cPrizePtr stored = Stored(window.Reference());
    EXPECT_EQ(stored->Title(), QStringLiteral("Two tickets"));
    EXPECT_EQ(stored->Script(), QStringLiteral("Call us now!"));
    EXPECT_EQ(stored->Notes(), QStringLiteral("Not on air"));
    EXPECT_EQ(stored->NotesToSupplier(), QStringLiteral("Thanks"));
    EXPECT_EQ(stored->NumberSupplied(), 5);
    EXPECT_EQ(stored->SupplierReference(), supplier);
    EXPECT_EQ(stored->StartDateString(), Date(2026, 11, 22, 6, 30).GeneralDate());
    EXPECT_EQ(stored->EndDateString(), Date(2026, 11, 30, 23, 59, 59).GeneralDate());
    EXPECT_FALSE(stored->AvailableForHour(1, 10));
    EXPECT_TRUE(stored->AvailableForHour(1, 11));
    EXPECT_TRUE(stored->AvailableForHour(2, 10));
    EXPECT_EQ(stored->AddedByReference(), Window->Station().Directory().CurrentUser()->Reference());
    EXPECT_FALSE(window.IsChanged());
    EXPECT_TRUE(window.close());
}

TEST_F(PrizeWindowTest, ANewPrizeHasOneUnitSoThatTheListsShowItWithoutMore)
{
    OpenPrizes();
    PrizeWindow& window = OpenNew();
    EXPECT_EQ(Get<QSpinBox>(window, "numberSupplied").value(), 1);
    EXPECT_FALSE(window.IsChanged()) << "nothing was typed yet";
    Type(Title(window), QStringLiteral("Two tickets"));
    Save(window);
    ASSERT_GT(window.Reference(), 0);
    EXPECT_EQ(Stored(window.Reference())->NumberSupplied(), 1);
    EXPECT_EQ(Notice(window), QString());
    EXPECT_TRUE(WaitUntil([&] { return List().References().contains(window.Reference()); }));
    window.close();
}

TEST_F(PrizeWindowTest, APrizeThatIsInNoListSaysWhyWhenItIsSaved)
{
    OpenPrizes();
    PrizeWindow& window = OpenNew();
    Type(Title(window), QStringLiteral("Two tickets"));
    auto& number = Get<QSpinBox>(window, "numberSupplied");
    const auto supply = [&](const char* count) {
        number.setFocus();
        number.selectAll();
        QTest::keyClicks(&number, QLatin1String(count));
    };
    supply("0");
    EXPECT_EQ(Notice(window), QString()) << "while it is typed nothing is said";
    Save(window);
    EXPECT_EQ(Notice(window), QStringLiteral("“Two tickets” is in no list of available prizes, because none is "
                                             "supplied: enter how many there are."));
    supply("3");
    Page(window, 1);
    Type(Get<QLineEdit>(window, "start"), QStringLiteral("22/11/2026 06:30"));
    Save(window);
    EXPECT_EQ(Notice(window), QStringLiteral("“Two tickets” is in no list of available prizes yet, because it starts "
                                             "on 22 November 2026, 06:30. It is listed from 23 November 2026 on."));
    // The lists begin with a universal day.
    Type(Get<QLineEdit>(window, "start"), QStringLiteral("22/06/2027 06:30"));
    Save(window);
    EXPECT_EQ(Notice(window), QStringLiteral("“Two tickets” is in no list of available prizes yet, because it starts "
                                             "on 22 June 2027, 06:30. It is listed from 23 June 2027, 01:00 on."));
    Type(Get<QLineEdit>(window, "start"), QString());
    Type(Get<QLineEdit>(window, "end"), QStringLiteral("20/11/2026"));
    Save(window);
    EXPECT_EQ(Notice(window), QStringLiteral("“Two tickets” is in no list of available prizes any more, because its "
                                             "time ended on 20 November 2026, 23:59."));
    Type(Get<QLineEdit>(window, "end"), QString());
    auto& hours = Get<WeekHours>(window, "hours");
    WeekOfHours none;
    none.fill(QString(24, QLatin1Char(' ')));
    hours.SetHours(none);
    Save(window);
    EXPECT_EQ(Notice(window),
              QStringLiteral("“Two tickets” is in no list of an hour, because no hour of the week is marked for it."));
    window.close();
    // Who only opens it is told of its hours, dates and units by the window itself.
    ASSERT_TRUE(WaitUntil([this] { return Prizes().PrizeWindows().isEmpty(); }));
}

TEST_F(PrizeWindowTest, TheHoursAreSaidInWordsWhileTheyArePainted)
{
    OpenPrizes();
    PrizeWindow& window = OpenNew();
    Page(window, 1);
    auto& hours = Get<WeekHours>(window, "hours");
    EXPECT_EQ(Get<QLabel>(window, "hoursInWords").text(), QStringLiteral("At any time"));
    const QString before = hours.Words();
    hours.setFocus();
    hours.setCurrentIndex(hours.model()->index(2, 0));
    QTest::keyClick(&hours, Qt::Key_Space);
    EXPECT_NE(hours.Words(), before);
    EXPECT_EQ(Get<QLabel>(window, "hoursInWords").text(), hours.Words());
    BoxAnswer discard(QStringLiteral("Discard"));
    window.close();
}

TEST_F(PrizeWindowTest, TheMousePaintsHoursAndTurnsWholeDaysAndTheyAreStored)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    Page(window, 1);
    auto& hours = Get<WeekHours>(window, "hours");
    const auto cell = [&](int weekDay, int hour) {
        return hours.visualRect(hours.model()->index(weekDay - 1, hour)).center();
    };
    const auto moveTo = [&](QPoint at) {
        QMouseEvent move(QEvent::MouseMove, at, hours.viewport()->mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(hours.viewport(), &move);
    };
    QTest::mousePress(hours.viewport(), Qt::LeftButton, {}, cell(1, 9));
    for (const QPoint at : {cell(1, 11), cell(2, 11), cell(2, 9)})
        moveTo(at);
    QTest::mouseRelease(hours.viewport(), Qt::LeftButton, {}, cell(2, 9));
    QHeaderView& days = *hours.verticalHeader();
    QTest::mouseClick(days.viewport(), Qt::LeftButton, {},
                      QPoint(days.width() / 2, days.sectionViewportPosition(6) + days.sectionSize(6) / 2));
    EXPECT_EQ(Get<QLabel>(window, "hoursInWords").text(),
              QStringLiteral("Monday and Tuesday 00:00 to 09:00 and 12:00 to midnight; Wednesday to Saturday all day"));
    Save(window);
    for (qint16 hour = 0; hour < 24; ++hour) {
        const bool isPainted = hour >= 9 && hour <= 11;
        EXPECT_EQ(Stored(prize)->AvailableForHour(1, hour), !isPainted) << hour;
        EXPECT_EQ(Stored(prize)->AvailableForHour(2, hour), !isPainted) << hour;
        EXPECT_TRUE(Stored(prize)->AvailableForHour(3, hour)) << hour;
        EXPECT_FALSE(Stored(prize)->AvailableForHour(7, hour)) << hour;
    }
    EXPECT_TRUE(window.close());
}

TEST_F(PrizeWindowTest, NonsenseIsRefusedInWords)
{
    OpenPrizes();
    PrizeWindow& window = OpenNew();
    Ui.ExpectWarning(QStringLiteral("The prize has no title. Type one, so that presenters can find it."));
    Save(window);
    EXPECT_TRUE(Title(window).hasFocus());
    Type(Title(window), QStringLiteral("Two tickets"));
    Page(window, 1);
    Type(Get<QLineEdit>(window, "start"), QStringLiteral("soon"));
    Page(window, 0);
    Ui.ExpectWarning(QStringLiteral("“soon” is no date. Write it like 21/11/2026 14:05, or leave the box empty for no "
                                    "limit."));
    Save(window);
    EXPECT_TRUE(Get<QLineEdit>(window, "start").hasFocus());
    Type(Get<QLineEdit>(window, "start"), QStringLiteral("18:00"));
    Ui.ExpectWarning(QStringLiteral("“18:00” is no date. Write it like 21/11/2026 14:05, or leave the box empty for no "
                                    "limit."));
    Save(window);
    Type(Get<QLineEdit>(window, "start"), QStringLiteral("30/11/2026"));
    Type(Get<QLineEdit>(window, "end"), QStringLiteral("29/11/2026 12:00"));
    Ui.ExpectWarning(QStringLiteral("The prize ends (29 November 2026, 12:00) before it starts (30 November 2026, "
                                    "00:00), so it could never go out. Change one of the dates."));
    Save(window);
    EXPECT_EQ(window.Reference(), 0);
    BoxAnswer discard(QStringLiteral("Discard"));
    EXPECT_TRUE(window.close());
}

TEST_F(PrizeWindowTest, TheCalendarChoosesTheDayAndKeepsTheTime)
{
    const qint32 prize =
        AddPrize(QStringLiteral("Two tickets"), 1, [](cPrize& made) { made.SetEndDate(Date(2026, 11, 25, 18, 0)); });
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    Page(window, 1);
    QTimer::singleShot(0, &window, [&window] {
        auto* calendar = window.findChild<QCalendarWidget*>(QStringLiteral("calendar"));
        ASSERT_TRUE(calendar);
        EXPECT_EQ(calendar->selectedDate(), QDate(2026, 11, 25));
        calendar->setSelectedDate(QDate(2026, 11, 27));
        Q_EMIT calendar->activated(QDate(2026, 11, 27));
    });
    QTest::mouseClick(&Get<QToolButton>(window, "endCalendar"), Qt::LeftButton);
    EXPECT_EQ(Get<QLineEdit>(window, "end").text(), Date(2026, 11, 27, 18, 0).GeneralDate());
    Save(window);
    EXPECT_EQ(Stored(prize)->EndDateString(), Date(2026, 11, 27, 18, 0).GeneralDate());
    window.close();
}

TEST_F(PrizeWindowTest, SavingKeepsWhatWasAwardedElsewhereMeanwhile)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"), 3);
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    AwardElsewhere(prize, ann);
    Type(Script(window), QStringLiteral("Read this"));
    Save(window);
    EXPECT_EQ(Stored(prize)->Script(), QStringLiteral("Read this"));
    EXPECT_EQ(Stored(prize)->NumberWinners(), 1);
    EXPECT_FALSE(Stored(prize)->LastWonDate().IsNone());
    EXPECT_EQ(Get<QLabel>(window, "stock").text(), QStringLiteral("1 awarded, 2 left"));
    window.close();
}

TEST_F(PrizeWindowTest, ChangesInOtherFieldsOfTwoComputersAreBothKept)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    Type(Script(window), QStringLiteral("Mine"));
    ChangeElsewhere(prize, [](cPrize& other) { other.SetNotes(QStringLiteral("Theirs")); });
    {
        BoxAnswer answer(QStringLiteral("Save my changes"));
        Save(window);
        EXPECT_EQ(answer.Text(), QStringLiteral("This prize was changed on another computer while it was open here."));
    }
    EXPECT_EQ(Stored(prize)->Script(), QStringLiteral("Mine"));
    EXPECT_EQ(Stored(prize)->Notes(), QStringLiteral("Theirs"));
    EXPECT_EQ(Get<QPlainTextEdit>(window, "notes").toPlainText(), QStringLiteral("Theirs"));
    EXPECT_FALSE(window.IsChanged());
    window.close();
}

TEST_F(PrizeWindowTest, TheOtherComputersChangeCanBeTaken)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    Type(Script(window), QStringLiteral("Mine"));
    ChangeElsewhere(prize, [](cPrize& other) { other.SetScript(QStringLiteral("Theirs")); });
    {
        BoxAnswer answer(QStringLiteral("Take what is stored"));
        Save(window);
        EXPECT_TRUE(answer.Details().contains(QStringLiteral("Script: Theirs"))) << answer.Details().toStdString();
        EXPECT_TRUE(answer.Details().contains(QStringLiteral("Script: Mine")));
    }
    EXPECT_EQ(Script(window).toPlainText(), QStringLiteral("Theirs"));
    EXPECT_EQ(Stored(prize)->Script(), QStringLiteral("Theirs"));
    window.close();
}

TEST_F(PrizeWindowTest, CancellingAConflictStoresNothingAndKeepsTheText)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    Type(Script(window), QStringLiteral("Mine"));
    ChangeElsewhere(prize, [](cPrize& other) { other.SetScript(QStringLiteral("Theirs")); });
    {
        BoxAnswer answer(QStringLiteral("Cancel"));
        Save(window);
    }
    EXPECT_EQ(Stored(prize)->Script(), QStringLiteral("Theirs"));
    EXPECT_EQ(Script(window).toPlainText(), QStringLiteral("Mine"));
    EXPECT_TRUE(window.IsChanged());
    BoxAnswer discard(QStringLiteral("Discard"));
    window.close();
}

TEST_F(PrizeWindowTest, APrizeDeletedElsewhereCanBeKeptAsANewOne)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    Type(Script(window), QStringLiteral("Mine"));
    ASSERT_TRUE(Station.Database().DeletePrize(prize));
    {
        BoxAnswer answer(QStringLiteral("Save as a new prize"));
        Save(window);
        EXPECT_EQ(answer.Text(), QStringLiteral("This prize was deleted on another computer while it was open here."));
    }
    EXPECT_NE(window.Reference(), prize);
    ASSERT_TRUE(Stored(window.Reference()));
    EXPECT_EQ(Stored(window.Reference())->Script(), QStringLiteral("Mine"));
    EXPECT_EQ(Stored(window.Reference())->NumberWinners(), 0);
    window.close();
}

TEST_F(PrizeWindowTest, APrizeDeletedElsewhereIsSaidWhileItIsOpen)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    EXPECT_EQ(Notice(window), QString());
    ASSERT_TRUE(Station.Database().DeletePrize(prize));
    window.CheckStored();
    EXPECT_EQ(Notice(window), QStringLiteral("This prize was deleted meanwhile. Saving it makes a new prize."));
    window.close();
}

TEST_F(PrizeWindowTest, ClosingAsksAboutChangesAndStaysWhenCancelled)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    Type(Script(window), QStringLiteral("Mine"));
    {
        BoxAnswer cancel(QStringLiteral("Cancel"));
        EXPECT_FALSE(window.close());
        EXPECT_EQ(cancel.Text(), QStringLiteral("Save the changes to this prize?"));
    }
    BoxAnswer save(QStringLiteral("Save"));
    EXPECT_TRUE(window.close());
    EXPECT_EQ(Stored(prize)->Script(), QStringLiteral("Mine"));
}

TEST_F(PrizeWindowTest, AnUntouchedPrizeClosesWithoutAQuestion)
{
    const qint32 prize = AddPrize(QStringLiteral("Two\ttickets"), 1, [](cPrize& made) {
        made.SetScript(QStringLiteral("First line\r\nSecond line"));
        made.SetStartDate(Date(2026, 11, 20, 9, 15, 30));
        made.SetAvailableHours(3, QStringLiteral("short"));
    });
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    EXPECT_FALSE(window.IsChanged());
    EXPECT_TRUE(window.close());
}

TEST_F(PrizeWindowTest, WithoutTheRightThePrizeIsReadOnlyAndSaysWhy)
{
    AddUser(QStringLiteral("Petra"), static_cast<int>(DirectoryRight::CanEditMessages));
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes(QStringLiteral("Petra"));
    EXPECT_TRUE(Get<QPushButton>(List(), "cmdNewPrize").isHidden());
    PrizeWindow& window = Open(prize);
    EXPECT_EQ(Notice(window),
              QStringLiteral("You can read this prize only: changing it needs the right to manage prizes."));
    EXPECT_TRUE(Title(window).isReadOnly());
    EXPECT_TRUE(Script(window).isReadOnly());
    EXPECT_TRUE(Get<WeekHours>(window, "hours").ReadOnly());
    EXPECT_FALSE(window.findChild<QAction*>(QStringLiteral("savePrize"))->isEnabled());
    EXPECT_TRUE(window.close());
}

TEST_F(PrizeWindowTest, HoursAreSavedAsAHotlistAndLoadedForAnotherPrize)
{
    const qint32 first = AddPrize(QStringLiteral("First"), 1, [](cPrize& prize) {
        prize.SetAvailableForHour(1, 10, false);
        prize.SetAvailableForHour(7, 23, false);
    });
    const qint32 second = AddPrize(QStringLiteral("Second"));
    OpenPrizes();
    PrizeWindow& from = Open(first);
    Page(from, 1);
    Ui.ExpectHotlist([](dao::Recordset&, bool saveMode) {
        EXPECT_TRUE(saveMode);
        return QStringLiteral("HR.Breakfast");
    });
    QTest::mouseClick(&Get<QPushButton>(from, "saveHours"), Qt::LeftButton);
    EXPECT_EQ(Get<QLabel>(from, "note").text(), QStringLiteral("The hours were saved as a hotlist."));
    EXPECT_TRUE(from.close());
    ASSERT_TRUE(WaitUntil([this] { return Prizes().PrizeWindows().isEmpty(); }));
    PrizeWindow& to = Open(second);
    Page(to, 1);
    Ui.ExpectHotlist([](dao::Recordset&, bool) { return QStringLiteral("HR.Breakfast"); });
    QTest::mouseClick(&Get<QPushButton>(to, "loadHours"), Qt::LeftButton);
    Save(to);
    EXPECT_FALSE(Stored(second)->AvailableForHour(1, 10));
    EXPECT_FALSE(Stored(second)->AvailableForHour(7, 23));
    EXPECT_TRUE(Stored(second)->AvailableForHour(7, 22));
    to.close();
}

TEST_F(PrizeWindowTest, AMalformedHotlistIsRefusedInWords)
{
    const qint32 prize = AddPrize(QStringLiteral("First"));
    Station.Database().SetDatabaseSetting(QStringLiteral("HR.Broken"), QStringLiteral("ABC"), QString());
    OpenPrizes();
    PrizeWindow& window = Open(prize);
    Page(window, 1);
    Ui.ExpectHotlist([](dao::Recordset&, bool) { return QStringLiteral("HR.Broken"); });
    Ui.ExpectWarning(QStringLiteral("That hotlist does not hold the hours of a week, so nothing was changed. Save the "
                                    "hours that you want under its name, or delete it."));
    QTest::mouseClick(&Get<QPushButton>(window, "loadHours"), Qt::LeftButton);
    EXPECT_FALSE(window.IsChanged());
    window.close();
}

TEST_F(PrizeWindowTest, AHotlistsTextIsReadStrictly)
{
    cPrize prize;
    prize.SetAvailableForHour(2, 5, false);
    const auto hours = PrizeFields::Of(prize).Hours;
    const QString text = PrizeHotlist::TextOf(hours);
    ASSERT_TRUE(PrizeHotlist::Read(text));
    EXPECT_EQ(*PrizeHotlist::Read(text), hours);
    EXPECT_FALSE(PrizeHotlist::Read(QString()));
    EXPECT_FALSE(PrizeHotlist::Read(text + u'|'));
    EXPECT_FALSE(PrizeHotlist::Read(text + u'X'));
    EXPECT_FALSE(PrizeHotlist::Read(text.toLower()));
    EXPECT_FALSE(PrizeHotlist::Read(QString(text).replace(u'B', u'C')));
}

TEST_F(PrizeWindowTest, APrizeThatWasNeverSavedIsNotAwarded)
{
    OpenPrizes();
    PrizeWindow& window = OpenNew();
    Ui.ExpectWarning(QStringLiteral("Save the prize first (Ctrl+S), then award it."));
    QTest::keyClick(&window, Qt::Key_Return, Qt::ControlModifier);
    window.close();
}

TEST_F(PrizeWindowTest, TheCopyOfAPrizeIsANewOneWithoutWinners)
{
    const qint32 ann = AddContact(QStringLiteral("Ann"));
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"), 3);
    AwardElsewhere(prize, ann);
    OpenPrizes();
    Select(prize);
    Q_EMIT List().PrizeMenu()->aboutToShow();
    List().PrizeMenu()->findChild<QAction*>(QStringLiteral("mnuCopy"))->trigger();
    PrizeWindow* window = OnlyPrizeWindow();
    ASSERT_TRUE(window);
    EXPECT_EQ(Title(*window).text(), QStringLiteral("Copy of Two tickets"));
    EXPECT_TRUE(window->IsChanged());
    Save(*window);
    ASSERT_GT(window->Reference(), 0);
    EXPECT_EQ(Stored(window->Reference())->NumberWinners(), 0);
    EXPECT_EQ(Stored(window->Reference())->NumberSupplied(), 3);
    window->close();
}
