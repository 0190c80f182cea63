// SPDX-License-Identifier: Apache-2.0
#include "Desk.h"

#include "DeskUserInterface.h"
#include "Failure.h"
#include "StationMaking.h"
#include "StationPlace.h"
#include "Words.h"
#include "common/FileHelper.h"
#include "platform/directory/clsKVUser.h"
#include "station/DamagedStation.h"
#include "station/DeskStation.h"
#include "station/SignInDialog.h"
#include "station/StartDialog.h"
#include "window/MainWindow.h"

#include <QDir>
#include <QTimer>

namespace
{
const QString UserOption = QStringLiteral("--user");
const QString PicturesOption = QStringLiteral("--pictures");
constexpr int LongestAnswer = 250;

QString Ask(const QString& prompt)
{
    QString answer;
    if (UserInterface::Current().InputBox({prompt, QObject::tr("New station"), QString(), LongestAnswer, QString()},
                                          answer) != 0)
        return QString();
    return answer.trimmed();
}
} // namespace

DeskOptions DeskOptions::Parse(const QStringList& arguments)
{
    DeskOptions options;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& word = arguments.at(i);
        const auto takeValue = [&](QString& value, const QString& name) {
            if (i + 1 < arguments.size())
                value = arguments.at(++i);
            else
                options.Problem = QStringLiteral("%1 needs a value.").arg(name);
        };
        if (word == UserOption)
            takeValue(options.User, UserOption);
        else if (word == PicturesOption)
            takeValue(options.Pictures, PicturesOption);
        else if (word == u"--large")
            options.IsLarge = true;
        else if (word == u"--help" || word == u"-h")
            options.WantsHelp = true;
        else if (word == u"--version")
            options.WantsVersion = true;
        else if (word.startsWith(u'-') && word != u"-")
            options.Problem = QStringLiteral("There is no option %1.").arg(word);
        else if (!options.Folder.isEmpty())
            options.Problem = QStringLiteral("Only one folder can be opened.");
        else
            options.Folder = word;
    }
    return options;
}

QString DeskOptions::Help()
{
    return QStringLiteral("Usage: tolva-desk [--user NAME] [FOLDER]\n"
                          "       tolva-desk --pictures DIR [--large] [FOLDER]\n"
                          "\n"
                          "Opens the station in FOLDER; without it the desk asks for one.\n"
                          "\n"
                          "  --user NAME     signs this user of the station's directory in (else $TOLVA_USER,\n"
                          "                  else the last one here, else the desk asks)\n"
                          "  --pictures DIR  goes through the desk by itself and saves pictures of it in DIR\n"
                          "  --large         also one of a station with 100,000 messages, which it makes first\n"
                          "  --version       says which version this is\n");
}

Desk::Desk(DeskSettings& settings, DeskUserInterface* userInterface)
    : Settings_(settings), Places_(settings), UserInterface_(userInterface)
{
    if (UserInterface_) {
        UserInterface_->SetErrorHandler(
            [this](const dao::Error& error) { return Window_ && Window_->TakeRunTimeError(error); });
    }
}

Desk::~Desk()
{
    if (UserInterface_)
        UserInterface_->SetErrorHandler({});
}

bool Desk::Start(const DeskOptions& options)
{
    QString folder = options.Folder;
    for (;;) {
        if (folder.isEmpty())
            folder = AskForFolder();
        if (folder.isEmpty())
            return false;
        if (OpenStation(folder, options.User))
            return true;
        // What was named on the command line is not asked for again.
        if (!options.Folder.isEmpty())
            return false;
        folder.clear();
    }
}

QString Desk::AskForFolder()
{
    StartDialog dialog(Settings_);
    return dialog.exec() == QDialog::Accepted ? dialog.Folder() : QString();
}

bool Desk::OpenStation(const QString& folder, const QString& user)
{
    const QString path = QDir(QDir::fromNativeSeparators(folder)).absolutePath();
    try {
        if (FileHelper::FolderExists(path) && !StationPlace::HoldsStation(path) && !OfferNewStation(path, user))
            return false;
        const QString chosen = ChooseUser(path, user);
        if (chosen.isEmpty())
            return false;
        auto station = std::make_unique<DeskStation>();
        station->Open(path, chosen);
        Settings_.RememberStation(path);
        Settings_.RememberUser(path, chosen);
        const QString restored = station->TakeRestoredWords();
        Show(std::make_unique<MainWindow>(std::move(station), Settings_));
        if (!restored.isEmpty())
            Words::Tell(restored);
        return true;
    } catch (const Failure& failure) {
        if (failure.Code() == exitData)
            return OpenRestored(path, user, DamagedStation::OfferBackup(path, failure.Words()));
        Words::Warn(failure.Words());
    } catch (const dao::Error& error) {
        const Failure failure = FailureOf(tr("The station in %1").arg(path), StationPlace::FileIn(path), error.Number(),
                                          error.Description());
        if (failure.Code() == exitData)
            return OpenRestored(path, user, DamagedStation::OfferBackup(path, failure.Words()));
        Words::Warn(failure.Words());
    }
    return false;
}

/// Opens a station that a backup took the place of, and says so. words: of the restore; empty when there was none.
bool Desk::OpenRestored(const QString& folder, const QString& user, const QString& words)
{
    if (words.isEmpty() || !OpenStation(folder, user))
        return false;
    Words::Tell(words);
    return true;
}

/// A station is made where the user says so, and not by looking into a wrong folder.
bool Desk::OfferNewStation(const QString& folder, const QString& user)
{
    const QString question = tr("There is no station in %1. Do you want to make a new one there?").arg(folder);
    if (!UserInterface::Confirm(question))
        return false;
    const QString name = Ask(tr("The station's name:"));
    if (name.isEmpty())
        return false;
    const QString number = Ask(tr("The station's telephone number:"));
    if (number.isEmpty())
        return false;
    StationMaking::Make(folder, name, number, user.isEmpty() ? StationPlace::DefaultUserName() : user,
                        UserInterface::Current());
    return true;
}

/// The named user; else the only one; else the user chooses, with the last one here proposed.
QString Desk::ChooseUser(const QString& folder, const QString& wanted)
{
    const QStringList users = DeskStation::UsersIn(folder);
    if (!wanted.isEmpty())
        return wanted;
    if (users.isEmpty()) {
        throw Failure(exitNoUser, tr("The directory of the station in %1 has no users. Its technician adds the first "
                                     "one.")
                                      .arg(folder));
    }
    const QString fromEnvironment = qEnvironmentVariable("TOLVA_USER");
    if (users.contains(fromEnvironment, Qt::CaseInsensitive))
        return fromEnvironment;
    if (users.size() == 1)
        return users.first();
    const QString last = Settings_.LastUser(folder);
    SignInDialog dialog(users, last.isEmpty() ? StationPlace::DefaultUserName() : last, Window_.get());
    return dialog.exec() == QDialog::Accepted ? dialog.User() : QString();
}

void Desk::TakeStationWanted(const QString& folder)
{
    const QString chosen = folder.isEmpty() ? StartDialog::ChooseFolder(Window_.get()) : folder;
    if (!chosen.isEmpty())
        OpenStation(chosen, QString());
}

/// Another user of the same station sits down here: the desk opens it anew for that user.
void Desk::TakeUserWanted()
{
    const QString folder = Window_->Station().Folder();
    const clsKVUser* user = Window_->Station().Directory().CurrentUser();
    const QString present = user ? user->Name() : QString();
    try {
        SignInDialog dialog(DeskStation::UsersIn(folder), present, Window_.get());
        if (dialog.exec() == QDialog::Accepted && dialog.User() != present)
            OpenStation(folder, dialog.User());
    } catch (const Failure& failure) {
        Words::Warn(failure.Words());
    }
}

void Desk::Listen()
{
    connect(Window_.get(), &MainWindow::StationWanted, this, &Desk::TakeStationWanted);
    connect(Window_.get(), &MainWindow::UserWanted, this, &Desk::TakeUserWanted);
    connect(Window_.get(), &MainWindow::Closed, this, &Desk::Finished);
}

void Desk::Show(std::unique_ptr<MainWindow> window)
{
    if (Window_) {
        Window_->disconnect(this);
        if (!Window_->close()) {
            // Something is still being written there.
            Listen();
            return;
        }
        // It may be the one that is asking just now.
        Window_.release()->deleteLater();
    }
    Window_ = std::move(window);
    Listen();
    Window_->show();
}
