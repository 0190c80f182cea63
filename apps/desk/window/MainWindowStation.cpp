// SPDX-License-Identifier: Apache-2.0

// The main window's menu "Station": settings, backups, the file and labels.

#include "MainWindow.h"
#include "ReportDialog.h"
#include "StationCheck.h"
#include "StationPlace.h"
#include "common/UserInterface.h"
#include "database/LastError.h"
#include "messages/MessageUndo.h"
#include "messages/PreviewPane.h"
#include "messages/dialogs/frmHighlightSettings.h"
#include "messageslist/uMessagesList.h"
#include "printing/LabelsDialog.h"
#include "prizes/PrizeDesk.h"
#include "station/BackupsDialog.h"
#include "station/MailAddressDialog.h"

#include <QAction>
#include <QLocale>
#include <QMenuBar>
#include <QStatusBar>

namespace
{

bool IsSame(const cPageSetup& a, const cPageSetup& b)
{
    return a.TopMargin() == b.TopMargin() && a.LeftMargin() == b.LeftMargin() &&
           a.NumberColumns() == b.NumberColumns() && a.NumberRows() == b.NumberRows() &&
           a.ColumnWidth() == b.ColumnWidth() && a.RowHeight() == b.RowHeight();
}

QString SizeWords(qint64 octets)
{
    return QLocale().formattedDataSize(octets, 1, QLocale::DataSizeTraditionalFormat);
}

/// What the old file is called now, when there was one.
QString KeptWords(const StationReplacing::Result& result)
{
    return result.KeepName.isEmpty()
               ? QString()
               : MainWindow::tr("\n\nThe file as it was before is kept as %1.").arg(result.KeepName);
}

/// What a check has found, problems first.
QString DetailsOf(const StationCheck::Report& report, QStringList problems)
{
    if (!problems.isEmpty())
        problems.append(QString());
    for (const StationCheck::FolderCount& folder : report.Folders)
        problems.append(QStringLiteral("%1: %2").arg(folder.Path, QLocale().toString(folder.Messages)));
    if (report.IsRead)
        problems.append(MainWindow::tr("Messages in all: %1").arg(QLocale().toString(report.Messages())));
    return problems.join(u'\n');
}
} // namespace

void MainWindow::MakeStationMenu()
{
    auto* menu = menuBar()->addMenu(tr("&Station"));
    menu->setObjectName(QStringLiteral("stationMenu"));
    menu->setToolTipsVisible(true);
    QList<QAction*> ofTechnician;
    const auto add = [&](const char* name, const QString& text, const QString& tip, bool needsRight,
                         void (MainWindow::*work)()) {
        QAction* action = AddAction(menu, name, QString(), text);
        action->setStatusTip(tip);
        connect(action, &QAction::triggered, this, work);
        if (needsRight)
            ofTechnician.append(action);
    };
    add("settings", tr("Se&ttings..."), tr("The station's name, its numbers and its backups"), true,
        &MainWindow::ChangeSettings);
    add("mailAddress", tr("&E-mail address..."), tr("The address from which the station's mail goes out"), true,
        &MainWindow::ChangeMailAddress);
    add("highlightWords", tr("&Highlight words..."), tr("The words that are marked in messages"), true,
        &MainWindow::ChangeHighlightWords);
    ofTechnician.append(Prizes_->MakeSettingsAction());
    menu->addAction(ofTechnician.last());
    menu->addSeparator();
    add("backUpNow", tr("&Back up now"), tr("Copies the station into a folder of its own"), false,
        &MainWindow::BackUpNow);
    add("backups", tr("Back&ups..."), tr("The backups there are, and restoring one"), false, &MainWindow::ShowBackups);
    add("checkFile", tr("&Check the file"), tr("Reads the whole station and says whether it is sound"), false,
        &MainWindow::CheckFile);
    add("compact", tr("C&ompact..."), tr("Writes the station's file anew, smaller"), true, &MainWindow::CompactFile);
    menu->addSeparator();
    add("labelSetup", tr("&Label sheet set-up..."), tr("The measures of a sheet of address labels"), true,
        &MainWindow::ChangeLabels);
    add("printLabels", tr("&Print labels..."), tr("Address labels of contacts or winners"), false,
        &MainWindow::PrintLabels);
    for (QAction* action : ofTechnician)
        action->setData(action->statusTip());
    connect(menu, &QMenu::aboutToShow, this, [this, ofTechnician] {
        const bool mayChange = MayChangeSettings();
        const QString why = tr("Needs the right to change settings");
        for (QAction* action : ofTechnician) {
            action->setEnabled(mayChange);
            action->setStatusTip(mayChange ? action->data().toString() : why);
            action->setToolTip(action->statusTip());
        }
    });
}

bool MainWindow::MayChangeSettings() const
{
    const clsKVUser* user = Station_->Directory().CurrentUser();
    return user && user->ChangeSettings();
}

void MainWindow::ChangeSettings()
{
    Run([this] {
        Station_->Database().DisplaySettings();
        ShowTitle();
    });
}

void MainWindow::ChangeMailAddress()
{
    Run([this] {
        MailAddressDialog dialog(*Station_, this);
        dialog.exec();
    });
}

void MainWindow::ChangeHighlightWords()
{
    Run([this] {
        if (DisplayHighlightSettings(Station_->Database(), this))
            RefreshAll();
    });
}

/// The settings are stored together, so they are read anew before.
void MainWindow::ChangeLabels()
{
    Run([this] {
        cTolvaDatabase& database = Station_->Database();
        // What could not be read must not be written back.
        if (!database.ReadDatabaseSettings())
            RaiseLastError(database);
        const cPageSetup before = database.AddressLabelsPageSetup();
        database.AddressLabelsPageSetup().DisplayPageSetupLabels();
        if (!IsSame(before, database.AddressLabelsPageSetup()))
            database.WriteDatabaseSettings();
    });
}

/// What went wrong stays on show until something else is said.
void MainWindow::BackUpNow()
{
    try {
        const StationBackup::Result made = Station_->BackUp();
        statusBar()->showMessage(tr("Backed up to %1").arg(made.Name));
    } catch (const Failure& failure) {
        statusBar()->showMessage(failure.Words());
    } catch (const dao::Error& error) {
        statusBar()->showMessage(Station_->Words(error.Number(), error.Description()));
    }
}

void MainWindow::ShowBackups()
{
    Run([this] {
        BackupsDialog dialog(StationPlace::FileIn(Station_->Folder()), MayChangeSettings(), this);
        if (dialog.exec() == QDialog::Accepted)
            Restore(dialog.Chosen());
    });
}

void MainWindow::Restore(const BackupFolders::Backup& backup)
{
    const QString folder = Station_->Folder();
    const auto result = ReplaceFile([&] { return StationReplacing::Restore(folder, backup); });
    if (!result)
        return;
    const Date made = backup.CreatedDate;
    Words::Tell(tr("The station was restored from the backup of %1: %2.%3")
                    .arg(made.IsNone() ? backup.Name : made.Format(QStringLiteral("dddddd hh:nn")),
                         result->AfterWords(), KeptWords(*result)));
}

void MainWindow::CheckFile()
{
    Run([this] {
        QStringList problems;
        const StationCheck::Report report =
            StationCheck::Run(Station_->Folder(), [&](const QString& words) { problems.append(words); });
        if (!report.IsWhole) {
            statusBar()->showMessage(tr("Ended early; the rest was not checked."), MessageMilliseconds);
            return;
        }
        const auto counts = StationReplacing::CountsOf(StationPlace::FileIn(Station_->Folder()));
        const QString headline =
            report.IsSound() ? tr("The station is sound: %1.").arg(counts ? counts->Words() : tr("in use by others"))
                             : tr("The station is not sound: %1. \u201CBackups...\u201D in the menu "
                                  "\u201CStation\u201D restores an earlier state.")
                                   .arg(report.Summary);
        ReportDialog dialog(tr("Check the file"), headline, DetailsOf(report, problems), this);
        dialog.exec();
    });
}

void MainWindow::CompactFile()
{
    const QString question = tr("Do you want to write the station's file anew? The present file is kept beside it.\n\n"
                                "Other computers may stay at work; for a moment they wait.");
    if (!UserInterface::Confirm(question))
        return;
    const QString folder = Station_->Folder();
    const auto result = ReplaceFile([&] { return StationReplacing::Compact(folder); });
    if (!result)
        return;
    Words::Tell(tr("The station was compacted: %1, as before. Its file takes %2; before it took %3.%4")
                    .arg(result->AfterWords(), SizeWords(result->SizeAfter), SizeWords(result->SizeBefore),
                         KeptWords(*result)));
}

std::optional<StationReplacing::Result> MainWindow::ReplaceFile(const std::function<StationReplacing::Result()>& work)
{
    // What is being written comes first: any of these windows may want to stay.
    for (const QPointer<QMainWindow>& window : QList<QPointer<QMainWindow>>(Windows_)) {
        if (window && !window->close()) {
            statusBar()->showMessage(tr("Nothing was changed, because something is still being written."));
            return std::nullopt;
        }
    }
    const enTolvaMessageCategories category = List_->Category();
    WatchTimer_.stop();
    Undo_->Forget();
    TakeSelection(nullptr);
    List_->SetTolvaDatabase(nullptr);
    Prizes_->Disconnect();
    Station_->Suspend();
    std::optional<StationReplacing::Result> result;
    QString problem;
    try {
        result = work();
    } catch (const Failure& failure) {
        problem = failure.Words();
    } catch (const dao::Error& error) {
        problem = Station_->Words(error.Number(), error.Description());
    }
    const bool isOpen = OpenAgain(category);
    WatchTimer_.start();
    if (!problem.isEmpty()) {
        Words::Warn(isOpen ? tr("%1\n\nThe station is open again.").arg(problem)
                           : tr("%1\n\nThe station could not be opened again; trying.").arg(problem));
    }
    return result;
}

void MainWindow::PrintLabels()
{
    Run([this] {
        LabelsDialog dialog(*Station_, this);
        dialog.exec();
    });
}
