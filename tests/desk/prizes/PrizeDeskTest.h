// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "WindowTest.h"
#include "common/ClockHelper.h"
#include "platform/widgets/FlexGrid.h"
#include "prizes/PresenterView.h"
#include "prizes/PrizeDesk.h"
#include "prizes/PrizeRows.h"
#include "prizes/PrizeWindow.h"
#include "prizes/PrizesPage.h"
#include "prizes/WinnerWindow.h"
#include "prizes/WinnersView.h"
#include "prizes/controls/uPrizesList.h"
#include "support/FixedClock.h"
#include "window/NoticeBar.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

/// The desk's window on its page of prizes. The station of the fixture is the other computer. It is Saturday, 21
/// November 2026, 14:05.
class PrizeDeskTest : public WindowTest
{
protected:
    void TearDown() override
    {
        // A test that failed may leave changes that the windows ask about.
        QTimer discard;
        QObject::connect(&discard, &QTimer::timeout, &discard, [] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            for (QAbstractButton* button : box ? box->buttons() : QList<QAbstractButton*>()) {
                if (button->text() == u"&Discard")
                    button->click();
            }
        });
        if (HasFailure())
            discard.start(5);
        WindowTest::TearDown();
    }
    qint32 AddPrize(const QString& title, qint32 supplied = 1, const std::function<void(cPrize&)>& change = {})
    {
        const auto prize = std::make_shared<cPrize>();
        prize->SetTitle(title);
        prize->SetNumberSupplied(supplied);
        if (change)
            change(*prize);
        EXPECT_TRUE(Station.Database().SavePrize(prize));
        return prize->Reference();
    }
    qint32 AddContact(const QString& name, const QString& mobile = {}, const QString& email = {})
    {
        clsKVContact contact{0, name, mobile, {}, email, {}, {}};
        Station.Directory().SaveContact(contact);
        return contact.Reference;
    }
    /// An award on the other computer; the winner.
    qint32 AwardElsewhere(qint32 prize, qint32 contact, Date won = {})
    {
        cTolvaDatabase& database = Station.Database();
        const cPrizeWinnerPtr winner = database.GetNewPrizeWinner(database.GetPrize(prize, true));
        EXPECT_TRUE(winner);
        if (!winner)
            return 0;
        winner->SetWinnerReference(contact);
        winner->SetWonDate(won);
        EXPECT_TRUE(database.SavePrizeWinner(winner));
        return winner->Reference();
    }
    cPrizePtr Stored(qint32 prize) { return Station.Database().GetPrize(prize, true); }
    QList<PrizeRows::Winner> WinnersOf(qint32 prize) { return PrizeRows::WinnersOf(Station, prize); }

    void OpenPrizes(const QString& user = QStringLiteral("Technician"))
    {
        OpenWindow(user);
        QTest::keyClick(Window.get(), Qt::Key_2, Qt::AltModifier);
        ASSERT_TRUE(Prizes().IsOnShow());
        ASSERT_TRUE(WaitUntil([this] { return List().TolvaDatabase() && !List().IsFilling(); }));
    }
    PrizeDesk& Prizes() { return Window->Prizes(); }
    PrizesPage& Page() { return Prizes().Page(); }
    uPrizesList& List() { return Page().List(); }
    PresenterView& Presenter() { return Page().Presenter(); }
    FlexGrid& Grid() { return *List().findChild<FlexGrid*>(QStringLiteral("grdPrizes")); }
    template <typename Widget>
    Widget& Get(const QWidget& parent, const char* name)
    {
        auto* found = parent.findChild<Widget*>(QLatin1String(name));
        EXPECT_TRUE(found) << name;
        return *found;
    }
    QString Text(const char* label) { return Get<QLabel>(*Window, label).text(); }
    NoticeBar& AwardNotice() { return Prizes().Notice(); }
    /// Selects as the arrow keys do.
    void Select(qint32 prize)
    {
        Grid().setFocus();
        for (int row = 1; row < Grid().Rows(); ++row) {
            if (Grid().TextMatrix(row, 0).toInt() == prize) {
                Grid().SetRow(row);
                Grid().SetCol(1);
            }
        }
        ASSERT_EQ(List().SelectedReference(), prize);
    }
    void ClickAward() { QTest::mouseClick(&Get<QPushButton>(*Window, "presenterAward"), Qt::LeftButton); }
    /// The platform of the tests does not give a window its focus back after a dialog.
    static void Activate(QWidget& window)
    {
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    /// Chooses a contact in the dialog by typing the name.
    static std::function<void(QDialog&)> Choosing(const QString& name)
    {
        return [name](QDialog& dialog) {
            auto* box = dialog.findChild<QLineEdit*>(QStringLiteral("contactSearch"));
            ASSERT_TRUE(box);
            box->selectAll();
            QTest::keyClicks(box, name);
            QTest::keyClick(box, Qt::Key_Return);
        };
    }
    /// The page's way of an award: the button, a name, Enter.
    void AwardOnPage(const QString& name)
    {
        DialogVisitor chooser("contactChooser", Choosing(name));
        ClickAward();
    }
    PrizeWindow* OnlyPrizeWindow()
    {
        EXPECT_EQ(Prizes().PrizeWindows().size(), 1);
        return Prizes().PrizeWindows().value(0);
    }
    WinnerWindow* OnlyWinnerWindow()
    {
        EXPECT_EQ(Prizes().WinnerWindows().size(), 1);
        return Prizes().WinnerWindows().value(0);
    }
    static void Type(QLineEdit& box, const QString& text)
    {
        box.setFocus();
        box.selectAll();
        if (text.isEmpty())
            QTest::keyClick(&box, Qt::Key_Delete);
        QTest::keyClicks(&box, text);
    }
    static void Type(QPlainTextEdit& box, const QString& text)
    {
        box.setFocus();
        box.selectAll();
        QTest::keyClicks(&box, text);
    }

    FixedClock Now;
};
