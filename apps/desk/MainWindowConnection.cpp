// The main window's watch over its station: what cannot be reached is said, and tried again.

#include "MainWindow.h"
#include "NoticeBar.h"
#include "StationPlace.h"
#include "messageslist/uMessagesList.h"
#include "prizes/PrizeDesk.h"

namespace
{
/// What keeps the desk from its station, as somebody reads it who can only wait or call.
QString ConnectionWords(int errorNumber)
{
    switch (errorNumber) {
    case dao::errLocked:
        return MainWindow::tr("The station is busy on another computer; trying again.");
    case dao::errFileDamaged:
    case dao::errUnrecognisedFormat:
        return MainWindow::tr("The station's file is damaged. Please tell your technician; nothing is written to it.");
    case dao::errSyntax:
    case dao::errTooFewParameters:
        return MainWindow::tr("The text to find cannot be used: it cannot hold a double quote, and a [ needs its ].");
    case dao::errDiskFull:
        return MainWindow::tr("The disk with the station is full; make room on it. Trying again.");
    case dao::errOutOfMemory:
        return MainWindow::tr("There is not enough memory; close other programs. Trying again.");
    default:
        return MainWindow::tr("The station's folder cannot be reached; trying again.");
    }
}
} // namespace

bool MainWindow::TakeRunTimeError(const dao::Error& error)
{
    const bool isOfList = error.Source().startsWith(QStringLiteral("uMessagesList.")) ||
                          error.Source().startsWith(QStringLiteral("uPrizesList."));
    if (isOfList && error.Number() == dao::errTypeMismatch && error.Source().contains(QStringLiteral("Reply"))) {
        Reply();
        return true;
    }
    if (isOfList && (error.Source().endsWith(QStringLiteral(".timerUpdateList")) ||
                     error.Source().endsWith(QStringLiteral(".Category")))) {
        ShowConnectionProblem(error.Number());
        return true;
    }
    return false;
}

void MainWindow::ShowConnectionProblem(int errorNumber)
{
    Connection_->Show(ConnectionWords(errorNumber));
}

void MainWindow::WatchStation()
{
    // A file that was taken away is not seen through one that is open already.
    if (!StationPlace::HoldsStation(Station_->Folder())) {
        MustReopen_ = true;
        ShowConnectionProblem(dao::errFileNotFound);
        return;
    }
    if (MustReopen_) {
        ReopenStation();
        return;
    }
    if (Connection_->isHidden())
        return;
    try {
        Station_->Database().OpenMessageRows({QStringLiteral("Reference")}, QStringLiteral("[Reference]=0"));
        Connection_->Show(QString());
        List_->UpdateDisplay();
    } catch (const dao::Error& error) {
        ShowConnectionProblem(error.Number());
    }
}

/// The folder is back, and what lies in it now may be another file than the one that was open.
void MainWindow::ReopenStation()
{
    const enTolvaMessageCategories category = List_->Category();
    List_->SetTolvaDatabase(nullptr);
    Prizes_->Disconnect();
    OpenAgain(category);
}

/// Failing leaves the words on show, and the watch tries again.
bool MainWindow::OpenAgain(enTolvaMessageCategories category)
{
    MustReopen_ = true;
    try {
        Station_->Reopen();
        MustReopen_ = false;
        Connection_->Show(QString());
        List_->SetTolvaDatabase(&Station_->Database());
        // Another file may lack the folder.
        const bool isThere = Station_->Database().MessageCategories().FindCategory(category) != nullptr;
        List_->SetCategory(isThere ? category : tmcInbox);
        List_->UpdateDisplay();
        if (Prizes_->IsOnShow())
            Prizes_->Connect();
        if (const QString restored = Station_->TakeRestoredWords(); !restored.isEmpty())
            Words::Tell(restored);
        return true;
    } catch (const Failure& failure) {
        Connection_->Show(failure.Words());
    } catch (const dao::Error& error) {
        ShowConnectionProblem(error.Number());
    }
    return false;
}
