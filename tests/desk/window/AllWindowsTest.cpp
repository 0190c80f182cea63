// SPDX-License-Identifier: Apache-2.0

// Every window and dialog of the desk by the keyboard alone, and as those hear it who do not see it.

#include "AccessKeys.h"
#include "PrizeSheet.h"
#include "StationPlace.h"
#include "common/dialogs/frmDirectoryUsers.h"
#include "common/dialogs/frmPageSetupLabels.h"
#include "compose/ComposeWindow.h"
#include "contacts/ContactChooser.h"
#include "contacts/ContactDesk.h"
#include "contacts/ContactDialog.h"
#include "contacts/ContactImportDialog.h"
#include "contacts/ContactsWindow.h"
#include "database/dialogs/frmDatabaseSettings.h"
#include "messages/FolderChoice.h"
#include "messages/MessageWindow.h"
#include "messages/PictureWindow.h"
#include "messages/PreviewPane.h"
#include "messages/dialogs/frmHighlightSettings.h"
#include "onair/OnAirDesk.h"
#include "printing/LabelsDialog.h"
#include "printing/PrintDialog.h"
#include "prizes/PrizeChooser.h"
#include "prizes/PrizeDeskTest.h"
#include "prizes/PrizeSettingsDialog.h"
#include "search/SearchDesk.h"
#include "search/SearchWindow.h"
#include "station/BackupsDialog.h"
#include "station/MailAddressDialog.h"
#include "station/SignInDialog.h"
#include "station/StartDialog.h"
#include "window/ReportDialog.h"
#include "window/ShortcutsDialog.h"

#include <QAbstractSpinBox>
#include <QAccessible>
#include <QComboBox>
#include <QRadioButton>
#include <QTabWidget>

namespace
{
constexpr QSize SmallScreen(1280, 720);
constexpr int TitleHeight = 40;

/// What Tab is to reach: of a box that is made of several widgets the one that takes the keys, of a group of choices
/// the chosen one.
QList<QWidget*> Controls(const QWidget& window)
{
    QList<QWidget*> controls;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const QWidget* parent = widget->parentWidget();
        const bool isPart = qobject_cast<const QAbstractSpinBox*>(parent) || qobject_cast<const QComboBox*>(parent) ||
                            widget->focusProxy();
        const auto* radio = qobject_cast<const QRadioButton*>(widget);
        if (widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) && !isPart &&
            widget->window() == &window && !(radio && !radio->isChecked()))
            controls.append(widget);
    }
    return controls;
}

std::string NameOf(const QWidget& widget)
{
    return QStringLiteral("%1 %2 in %3")
        .arg(QLatin1String(widget.metaObject()->className()), widget.objectName(), widget.window()->objectName())
        .toStdString();
}

class AllWindowsTest : public PrizeDeskTest
{
protected:
    void SetUp() override
    {
        PrizeDeskTest::SetUp();
        Message = FileMail(Mail("Hello", "Hello.\r\n", "Ann <a@b.org>"));
        Contact = AddContact(QStringLiteral("Ann"), {}, QStringLiteral("a@b.org"));
        Prize = AddPrize(QStringLiteral("Tickets"), 3);
        Winner = AwardElsewhere(Prize, Contact, Date(2026, 11, 20));
    }
    void TearDown() override
    {
        Dialogs.clear();
        PrizeDeskTest::TearDown();
    }
    QList<QWidget*> OpenWindows()
    {
        OpenWindow();
        Window->OpenInWindow(Window->Station().Database().GetMessage(Message));
        Window->Compose({});
        Window->Contacts().ShowContacts();
        Window->Contacts().Window()->ShowContact(Contact);
        Prizes().OpenPrize(Prize);
        Prizes().OpenWinner(Winner);
        Window->OnAir().PutMessages({Message});
        Window->OnAir().ShowWindow();
        const QList<QWidget*> windows = {Window.get(),
                                         Window->MessageWindows().value(0),
                                         Window->ComposeWindows().value(0),
                                         Window->Contacts().Window(),
                                         OnlyPrizeWindow(),
                                         OnlyWinnerWindow(),
                                         Window->OnAir().Window()};
        EXPECT_FALSE(windows.contains(nullptr));
        const PreviewPane* message = Window->MessageWindows().value(0)->findChild<PreviewPane*>();
        EXPECT_TRUE(WaitUntil([message] { return message->IsLoaded(); }));
        return windows;
    }
    void MakeDialogs()
    {
        Settings->RememberStation(Folder());
        Station.BackUp();
        const clsKVContactPtr contact = Station.Directory().GetContact(Contact);
        PrintJob prize;
        prize.Prize = PrizeSheet::Read(Station.Database(), Station.Directory(), Prize);
        const auto add = [this](QDialog* dialog) { Dialogs.emplace_back(dialog); };
        add(new StartDialog(*Settings));
        add(new SignInDialog({QStringLiteral("Petra"), QStringLiteral("Ravi")}, QStringLiteral("Ravi")));
        add(new ShortcutsDialog(nullptr));
        add(new ReportDialog(QStringLiteral("Title"), QStringLiteral("Headline"), QStringLiteral("Details")));
        add(new BackupsDialog(StationPlace::FileIn(Folder()), true));
        add(new LabelsDialog(Station, nullptr));
        add(new PrintDialog(Station, *Settings, {{Message}, nullptr}));
        add(new PrintDialog(Station, *Settings, std::move(prize)));
        add(new ContactChooser(Station.Directory()));
        add(new ContactDialog(Station.Directory(), *contact));
        add(new ContactImportDialog(ContactImport::Plan(Station.Directory(), {*contact}),
                                    {QStringLiteral("A card is cut off.")}));
        add(new PrizeChooser(Station, *contact));
        add(new PrizeSettingsDialog(Station));
        add(new MailAddressDialog(Station));
        add(new frmDirectoryUsers(Station.Directory()));
        add(new FolderChoice(QStringLiteral("Move"), Station.Database().MessageCategories(), {}, nullptr));
        add(new frmHighlightSettings(Station.Database()));
        add(new frmPageSetupLabels(nullptr));
        auto* picture = new PictureWindow(std::make_shared<cdo::Message>(), {0, 1}, 0, nullptr);
        picture->setAttribute(Qt::WA_DeleteOnClose, false);
        add(picture);
        auto* settings = new frmDatabaseSettings(nullptr);
        settings->SetTolvaDatabase(&Station.Database());
        add(settings);
    }
    static void Show(QWidget& window)
    {
        window.show();
        Activate(window);
        if (auto* print = qobject_cast<PrintDialog*>(&window)) {
            ASSERT_TRUE(WaitUntil([print] { return print->IsLaidOut(); }));
        }
    }
    /// Does it with each dialog while it is up.
    void WithDialogs(const std::function<void(QDialog&)>& work)
    {
        MakeDialogs();
        for (const auto& dialog : Dialogs) {
            Show(*dialog);
            work(*dialog);
            dialog->close();
        }
    }
    /// Does it with each window, and with each page of those that have pages.
    void WithWindows(const std::function<void(QWidget&)>& work)
    {
        for (QWidget* window : OpenWindows()) {
            Activate(*window);
            auto* pages = window->findChild<QTabWidget*>();
            for (int page = 0; page < (pages ? pages->count() : 1); ++page) {
                if (pages)
                    pages->setCurrentIndex(page);
                work(*window);
            }
            if (pages)
                pages->setCurrentIndex(0);
        }
    }
    static void ExpectNames(const QWidget& window)
    {
        for (QWidget* control : Controls(window)) {
            QAccessibleInterface* heard = QAccessible::queryAccessibleInterface(control);
            ASSERT_TRUE(heard) << NameOf(*control);
            EXPECT_FALSE(heard->text(QAccessible::Name).trimmed().isEmpty()) << NameOf(*control);
        }
    }
    /// From any control Tab leads through all of them, and back.
    static void ExpectTabReachesAll(QWidget& window)
    {
        QList<QWidget*> left = Controls(window);
        ASSERT_FALSE(left.isEmpty()) << NameOf(window);
        const qsizetype count = left.size();
        left.first()->setFocus(Qt::TabFocusReason);
        for (qsizetype step = 0; step < 2 * count && !left.isEmpty(); ++step) {
            QWidget* focus = window.focusWidget();
            ASSERT_TRUE(focus) << NameOf(window);
            left.removeAll(focus);
            left.removeAll(focus->parentWidget());
            QTest::keyClick(focus, Qt::Key_Tab);
        }
        for (const QWidget* control : std::as_const(left))
            ADD_FAILURE() << "Tab does not reach " << NameOf(*control);
    }

    qint32 Message = 0;
    qint32 Contact = 0;
    qint32 Prize = 0;
    qint32 Winner = 0;
    std::vector<std::unique_ptr<QDialog>> Dialogs;
};
} // namespace

TEST_F(AllWindowsTest, EveryControlOfAWindowHasAName)
{
    WithWindows([](QWidget& window) { ExpectNames(window); });
    Prizes().ShowPage(true);
    ExpectNames(*Window);
}

TEST_F(AllWindowsTest, EveryControlOfADialogHasAName)
{
    WithDialogs([](QDialog& dialog) { ExpectNames(dialog); });
}

TEST_F(AllWindowsTest, TabReachesEveryControlOfAWindow)
{
    WithWindows([](QWidget& window) { ExpectTabReachesAll(window); });
}

TEST_F(AllWindowsTest, TabReachesEveryControlOfADialog)
{
    WithDialogs([](QDialog& dialog) { ExpectTabReachesAll(dialog); });
}

TEST_F(AllWindowsTest, NoUnderlinedLetterMeansTwoThingsInADialog)
{
    WithDialogs([](QDialog& dialog) {
        auto* pages = dialog.findChild<QTabWidget*>();
        for (int page = 0; page < (pages ? pages->count() : 1); ++page) {
            if (pages)
                pages->setCurrentIndex(page);
            const QStringList clashes = AccessKeys(dialog).Clashes();
            EXPECT_TRUE(clashes.isEmpty())
                << NameOf(dialog) << ", page " << page << ": " << clashes.join(u'\n').toStdString();
        }
    });
}

TEST_F(AllWindowsTest, NoUnderlinedLetterMeansTwoThingsInAMenu)
{
    // The list's own; the key goes from one to the other.
    const QStringList given = {QStringLiteral("Alt+F: &Forward Message\tCtrl+L / Export to &File"),
                               QStringLiteral("Alt+R: Mark as &Read / &Reply to Message\tCtrl+R")};
    size_t menus = 0;
    const std::function<void(QMenu&)> look = [&](QMenu& menu) {
        Q_EMIT menu.aboutToShow();
        QStringList clashes = AccessKeys(menu).Clashes();
        clashes.removeIf([&](const QString& clash) { return given.contains(clash); });
        EXPECT_TRUE(clashes.isEmpty()) << menu.title().toStdString() << ": " << clashes.join(u'\n').toStdString();
        ++menus;
        for (const QAction* entry : menu.actions()) {
            if (entry->menu())
                look(*entry->menu());
        }
        Q_EMIT menu.aboutToHide();
    };
    QList<QWidget*> windows = OpenWindows();
    // With a message selected, and with none.
    windows.append(&Window->Search().Window());
    for (const QWidget* window : windows) {
        for (const auto* bar : window->findChildren<QMenuBar*>()) {
            for (const QAction* entry : bar->actions()) {
                ASSERT_TRUE(entry->menu());
                look(*entry->menu());
            }
        }
    }
    SelectByKeys(*Window, Message);
    look(*Window->List().MessageMenu());
    look(*Window->List().CategoryMenu());
    EXPECT_GE(menus, 20u);
}

TEST_F(AllWindowsTest, EachWindowOpensWithTheFocusInIt)
{
    for (const QWidget* window : OpenWindows()) {
        const QWidget* focus = window->focusWidget();
        EXPECT_TRUE(focus && focus->isVisible() && focus->isEnabled()) << NameOf(*window);
    }
}

TEST_F(AllWindowsTest, EachDialogOpensWithTheFocusOnWhatIsUsedFirstAndEnterDestroysNothing)
{
    const QStringList destroying = {QStringLiteral("restore"), QStringLiteral("cmdRemove"), QStringLiteral("forget")};
    WithDialogs([&](QDialog& dialog) {
        const QWidget* focus = dialog.focusWidget();
        EXPECT_TRUE(focus && focus->isVisible() && focus->isEnabled()) << NameOf(dialog);
        for (const auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->isDefault() || button == focus) {
                EXPECT_FALSE(destroying.contains(button->objectName())) << NameOf(*button);
            }
        }
    });
}

TEST_F(AllWindowsTest, EscapeClosesEachDialog)
{
    WithDialogs([](QDialog& dialog) {
        QTest::keyClick(dialog.focusWidget() ? dialog.focusWidget() : &dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible()) << NameOf(dialog);
        EXPECT_EQ(dialog.result(), QDialog::Rejected) << NameOf(dialog);
    });
}

TEST_F(AllWindowsTest, NothingNeedsALargerScreenThanASmallOne)
{
    const auto expectFits = [](const QWidget& window) {
        const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
        EXPECT_LE(least.width(), SmallScreen.width()) << NameOf(window);
        EXPECT_LE(least.height(), SmallScreen.height() - TitleHeight) << NameOf(window);
    };
    WithWindows(expectFits);
    WithDialogs(expectFits);
}
