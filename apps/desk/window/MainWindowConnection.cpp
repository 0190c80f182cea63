// SPDX-License-Identifier: Apache-2.0

// The main window's watch over its station: what cannot be reached is said, and tried again.

#include "MainWindow.h"
#include "NoticeBar.h"
#include "StationPlace.h"
#include "messages/MessageUndo.h"
#include "messageslist/uMessagesList.h"
#include "prizes/PrizeDesk.h"

#include <QDir>

namespace
{
/// How long it is said that the station is another state now.
constexpr int PutBackMilliseconds = 60 * 1000;

/// What keeps the desk from its station, as somebody reads it who can only wait or call.
QString ConnectionWords(int errorNumber)
{
    switch (errorNumber) {
    case dao::errLocked:
        return MainWindow::tr("The station is busy on another computer; trying again.");
    case dao::errFileReplaced:
        return MainWindow::tr("The station was put back from a backup; opening it anew.");
    case dao::errFileDamaged:
    case dao::errUnrecognisedFormat:
        return MainWindow::tr("The station's file is damaged. Please tell your technician; nothing is written to it.");
    case dao::errSyntax:
    case dao::errTooFewParameters:
        return MainWindow::tr("The text to find cannot be used: it cannot hold a double quote, and a [ needs its ].");
    case dao::errDiskFull:
        return MainWindow::tr("The disk with the station is full; make room on it. Trying again.");
    case dao::errServer:
        return MainWindow::tr("The station's server does not answer, or does not let this computer in; trying again.");
    case dao::errOutOfMemory:
        return MainWindow::tr("There is not enough memory; close other programs. Trying again.");
    default:
        return MainWindow::tr("The station's folder cannot be reached; trying again.");
    }
}
} // namespace

bool MainWindow::TakeRunTimeError(const dao::Error& error)
{
    if (error.Number() != dao::errFileReplaced)
        return false;
    TakePutBack();
    return true;
}

/// What a list reads by itself is tried again: a notice does, and no box.
void MainWindow::TakeFailedReading(int errorNumber, bool& isTold)
{
    isTold = true;
    if (errorNumber == dao::errFileReplaced)
        TakePutBack();
    else
        ShowConnectionProblem(errorNumber);
}

void MainWindow::ShowConnectionProblem(int errorNumber)
{
    PutBackWords_ = QDeadlineTimer();
    Connection_->Show(ConnectionWords(errorNumber));
}

/// Somebody put a backup in the place of what is open here. The watch opens it anew; what is being written stays.
void MainWindow::TakePutBack()
{
    MustReopen_ = true;
    WasPutBack_ = true;
    ShowConnectionProblem(dao::errFileReplaced);
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
    const bool isQuiet = Connection_->isHidden();
    try {
        Station_->Database().OpenMessageRows({QStringLiteral("Reference")}, QStringLiteral("[Reference]=0"));
        if (isQuiet || !PutBackWords_.hasExpired())
            return;
        Connection_->Show(QString());
        List_->UpdateDisplay();
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errFileReplaced)
            TakePutBack();
        // What nothing was said of so far is the list's to find out when it reads the next time.
        else if (!isQuiet)
            ShowConnectionProblem(error.Number());
    }
}

/// Where nothing can be stored, that is said before somebody tries.
void MainWindow::SayIfReadOnly()
{
    QString words;
    try {
        const dao::Transaction probe = Station_->Database().BeginChange();
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errReadOnly || error.Number() == dao::errCannotOpen)
            words = tr("This station can only be read here: nothing can be filed, marked, moved or deleted. Its "
                       "technician can give this account the right to write in %1.")
                        .arg(QDir::toNativeSeparators(Station_->Folder()));
    }
    ReadOnly_->Show(words);
}

/// The folder is back, and what lies in it now may be another file than the one that was open.
void MainWindow::ReopenStation()
{
    const enTolvaMessageCategories category = List_->Category();
    // Moves that could be taken back are of messages that may not be there any more.
    Undo_->Forget();
    List_->SetTolvaDatabase(nullptr);
    Prizes_->Disconnect();
    if (OpenAgain(category) && std::exchange(WasPutBack_, false)) {
        PutBackWords_.setRemainingTime(PutBackMilliseconds);
        Connection_->Show(
            tr("The station was put back from a backup and has been opened anew. What was filed after that "
               "backup may be missing."));
    }
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
        SayIfReadOnly();
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
