// SPDX-License-Identifier: Apache-2.0
#include "PrizePictures.h"

#include "common/ClockHelper.h"
#include "common/dialogs/DialogUserInterface.h"
#include "prizes/PresenterView.h"
#include "prizes/PrizeChooser.h"
#include "prizes/PrizeDesk.h"
#include "prizes/PrizeSettingsDialog.h"
#include "prizes/PrizeWindow.h"
#include "prizes/PrizesPage.h"
#include "prizes/WinnerWindow.h"
#include "prizes/WinnersView.h"
#include "prizes/controls/uPrizesList.h"
#include "window/Appearance.h"
#include "window/MainWindow.h"
#include "window/NoticeBar.h"

#include <QApplication>
#include <QLineEdit>
#include <QTabWidget>
#include <QTimer>

namespace
{
constexpr QSize SmallWindow(800, 600);
constexpr int WaitMilliseconds = 300;

class PrizeTour
{
public:
    PrizeTour(MainWindow& window, const std::function<void(QWidget&, const char*, int)>& save,
              const std::function<void()>& settle)
        : Window_(window), Save_(save), Settle_(settle)
    {
    }

    void Go()
    {
        Window_.Prizes().ShowPage(true);
        Settle_();
        Save_(Window_, "prizes-empty", 1);
        File();
        ThePage();
        Windows();
        Dialogs();
        Window_.Prizes().ShowPage(false);
    }

private:
    cTolvaDatabase& Database() { return Window_.Station().Database(); }

    qint32 Contact(const QString& name, const QString& mobile)
    {
        clsKVContact contact;
        contact.Name = name;
        contact.Mobile = mobile;
        Window_.Station().Directory().SaveContact(contact);
        return contact.Reference;
    }

    qint32 Prize(const QString& title, qint32 supplied, const std::function<void(cPrize&)>& change)
    {
        const auto prize = std::make_shared<cPrize>();
        prize->SetTitle(title);
        prize->SetNumberSupplied(supplied);
        change(*prize);
        Database().SavePrize(prize);
        return prize->Reference();
    }

    void Award(qint32 prize, qint32 contact)
    {
        const cPrizeWinnerPtr winner = Database().GetNewPrizeWinner(Database().GetPrize(prize, true));
        if (!winner)
            return;
        winner->SetWinnerReference(contact);
        Database().SavePrizeWinner(winner);
    }

    void File()
    {
        Listener_ = Contact(QStringLiteral("Merryn Kessell"), QStringLiteral("07700 900456"));
        const qint32 other = Contact(QStringLiteral("Jory Nankivell"), QStringLiteral("07700 900457"));
        Tickets_ = Prize(QStringLiteral("Two tickets for the harbour concert"), 5, [](cPrize& prize) {
            prize.SetScript(QStringLiteral("This Saturday the whole harbour sings, and we have two tickets for you! "
                                           "Tell us the name of the boat that opens the regatta, and you are in.\n\n"
                                           "The lines close at the top of the hour."));
            prize.SetNotes(QStringLiteral("The boat is the Morwenna. Ask for a postal address: the tickets are sent."));
            prize.SetNotesToSupplier(QStringLiteral("Names by Friday noon."));
            prize.SetStartDate(Date(2026, 1, 1));
            for (qint16 hour = 0; hour < 6; ++hour)
                for (qint16 day = 1; day <= 7; ++day)
                    prize.SetAvailableForHour(day, hour, false);
        });
        Award(Tickets_, Listener_);
        Award(Tickets_, other);
        Prize(QStringLiteral("A mug of the station"), 40,
              [](cPrize& prize) { prize.SetScript(QStringLiteral("Our mug keeps your tea warm until the news.")); });
        Long_ =
            Prize(QStringLiteral("A weekend for four at the Old Lifeboat House with breakfast, boat trip, dinner at "
                                 "the quay and a signed print of the harbour at dawn by a painter of the town"),
                  1, [](cPrize& prize) {
                      prize.SetScript(QStringLiteral("A whole weekend! ").repeated(40));
                      prize.SetNotes(QStringLiteral("Only once a year.\n").repeated(12));
                  });
        Settle_();
    }

    void Select(qint32 prize)
    {
        Window_.Prizes().Page().List().Select(prize);
        Settle_();
    }

    void ThePage()
    {
        Window_.Prizes().Page().List().SetCategory(plcAllAvailable);
        Select(Long_);
        Save_(Window_, "prizes-long", 1);
        Select(Tickets_);
        Save_(Window_, "prizes", 1);
        Save_(Window_, "prizes-200", 2);
        Appearance::Apply(QStringLiteral("dark"));
        Settle_();
        Save_(Window_, "prizes-dark", 1);
        Appearance::Apply(QStringLiteral("light"));
        NoticeBar& notice = Window_.Prizes().Notice();
        notice.Show(QStringLiteral("Awarded \u201CTwo tickets for the harbour concert\u201D to Jory Nankivell."));
        Settle_();
        Save_(Window_, "prizes-awarded", 1);
        notice.Show(QString());
        const QSize size = Window_.size();
        Window_.resize(SmallWindow);
        Settle_();
        Save_(Window_, "prizes-small", 1);
        Window_.resize(size);
    }

    void Windows()
    {
        Window_.Prizes().OpenPrize(Tickets_);
        PrizeWindow* prize = Window_.Prizes().PrizeWindows().constLast();
        auto* pages = prize->findChild<QTabWidget*>(QStringLiteral("pages"));
        Settle_();
        Save_(*prize, "prize", 1);
        pages->setCurrentIndex(1);
        Settle_();
        Save_(*prize, "prize-when", 1);
        Save_(*prize, "prize-when-200", 2);
        Appearance::Apply(QStringLiteral("dark"));
        Settle_();
        Save_(*prize, "prize-when-dark", 1);
        pages->setCurrentIndex(2);
        Settle_();
        Save_(*prize, "prize-winners-dark", 1);
        Appearance::Apply(QStringLiteral("light"));
        WinnersView& winners = Window_.Prizes().Page().Presenter().Winners();
        winners.setCurrentItem(winners.topLevelItem(0));
        Window_.Prizes().OpenWinner(winners.Selected());
        WinnerWindow* winner = Window_.Prizes().WinnerWindows().constLast();
        winner->SetSentNow();
        Settle_();
        Save_(*winner, "winner", 1);
        Save_(*winner, "winner-200", 2);
        Appearance::Apply(QStringLiteral("dark"));
        Settle_();
        Save_(*winner, "winner-dark", 1);
        Appearance::Apply(QStringLiteral("light"));
        delete winner;
        Hotlists(*prize);
        delete prize;
        Window_.Prizes().OpenPrize(Long_);
        PrizeWindow* longOne = Window_.Prizes().PrizeWindows().constLast();
        Settle_();
        Save_(*longOne, "prize-long", 1);
        delete longOne;
    }

    /// The dialog of named hours, over a prize's window, empty at first.
    void Hotlists(PrizeWindow& prize)
    {
        DialogUserInterface dialogs;
        UserInterface& before = UserInterface::Current();
        UserInterface::SetCurrent(&dialogs);
        const auto picture = [&](const char* name, const std::function<void()>& open) {
            QTimer::singleShot(WaitMilliseconds, &prize, [this, name] {
                QWidget* dialog = QApplication::activeModalWidget();
                if (!dialog)
                    return;
                Save_(*dialog, name, 1);
                dialog->close();
            });
            open();
        };
        const auto load = [&] { Database().LoadAvailableHoursHotlist(&prize); };
        picture("hotlist-empty", load);
        for (const char* name : {"Breakfast", "Drive time", "Weekend nights"})
            Database().SetDatabaseSetting(QStringLiteral("HR.") + QLatin1String(name), QStringLiteral("A"), QString());
        picture("hotlist-load", load);
        picture("hotlist-save", [&] { Database().SaveAvailableHoursHotlist(QStringLiteral("A"), &prize); });
        Appearance::Apply(QStringLiteral("dark"));
        picture("hotlist-load-dark", load);
        Appearance::Apply(QStringLiteral("light"));
        UserInterface::SetCurrent(&before);
    }

    void Dialogs()
    {
        const auto show = [this](QDialog& dialog, const char* name) {
            dialog.show();
            Settle_();
            Save_(dialog, name, 1);
            dialog.close();
        };
        const clsKVContactPtr contact = Window_.Station().Directory().GetContact(Listener_);
        PrizeChooser chooser(Window_.Station(), *contact, &Window_);
        show(chooser, "prize-chooser");
        PrizeChooser none(Window_.Station(), *contact, &Window_);
        none.findChild<QLineEdit*>(QStringLiteral("findPrize"))->setText(QStringLiteral("castle"));
        show(none, "prize-chooser-empty");
        PrizeSettingsDialog settings(Window_.Station(), &Window_);
        show(settings, "prize-settings");
    }

    MainWindow& Window_;
    const std::function<void(QWidget&, const char*, int)>& Save_;
    const std::function<void()>& Settle_;
    qint32 Listener_ = 0;
    qint32 Tickets_ = 0;
    qint32 Long_ = 0;
};
} // namespace

void PrizePictures::Take(MainWindow& window, const std::function<void(QWidget&, const char*, int)>& save,
                         const std::function<void()>& settle)
{
    PrizeTour(window, save, settle).Go();
}
