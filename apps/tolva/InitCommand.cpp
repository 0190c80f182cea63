// tolva init: makes a station.

#include "Commands.h"
#include "Station.h"
#include "Terminal.h"
#include "common/FileHelper.h"

#include <QDir>
#include <QTemporaryDir>

namespace
{
const QString NameOption = QStringLiteral("name");
const QString PhoneOption = QStringLiteral("phone");

constexpr int AllRights =
    static_cast<int>(DirectoryRight::CanEditMessages) | static_cast<int>(DirectoryRight::CanEditPersonalMessages) |
    static_cast<int>(DirectoryRight::CanEditCategories) | static_cast<int>(DirectoryRight::ManagePrizes) |
    static_cast<int>(DirectoryRight::ChangeSettings);

Failure AlreadyThere(const QString& folder)
{
    return Failure(
        exitCannotCreate,
        QStringLiteral("There is a station in %1 already; nothing was changed. Its name and telephone number "
                       "are changed with: tolva setting %1 Station.Name NAME and tolva setting %1 "
                       "Station.PhoneNumber NUMBER")
            .arg(folder));
}

/// A new directory gets its first user, with all rights. In one that stands already nobody is added: who may do what
/// there is its technician's affair.
void MakeDirectory(const QString& folder, const QString& user)
{
    EmbeddedDirectory directory;
    directory.Open(Station::DirectoryIn(folder));
    if (directory.Users().isEmpty()) {
        DirectoryUser first;
        first.Name = user;
        first.Rights = AllRights;
        directory.SaveUser(first);
    } else if (!directory.SignIn(user)) {
        throw Failure(exitNoUser,
                      QStringLiteral("There is a directory in %1 already, and \"%2\" is not a user of it. No "
                                     "station was made.")
                          .arg(Station::DirectoryIn(folder), user));
    }
}

/// Makes the station's file whole in a folder where nobody looks for one.
void MakeStation(const QString& folder, const Arguments& arguments)
{
    CommandLineUserInterface terminal;
    bool isStored = false;
    terminal.SetSettingsDialog([&](cTolvaDatabase& database) {
        database.SetStationName(arguments.Value(NameOption));
        database.SetStationPhoneNumber(arguments.Value(PhoneOption));
        isStored = database.StationName() == arguments.Value(NameOption) &&
                   database.StationPhoneNumber() == arguments.Value(PhoneOption);
        return isStored;
    });
    cTolvaDatabase database;
    const qint32 result = database.OpenTolvaDatabase(folder);
    const QStringList problems = terminal.TakeProblems();
    database.CloseTolvaDatabase();
    if (result != 0 || !isStored) {
        const int number = problems.isEmpty() ? 0 : ErrorNumberIn(problems.last());
        const ExitCode code = number == 0 ? exitCannotCreate : ExitCodeOf(number);
        throw Failure(code, QStringLiteral("The station could not be made: %1").arg(problems.join(u' ')));
    }
}

int Run(const Arguments& arguments)
{
    for (const QString& option : {NameOption, PhoneOption}) {
        if (arguments.Value(option).trimmed().isEmpty())
            throw Failure(exitUsage, QStringLiteral("A station needs --name NAME and --phone NUMBER."));
    }
    const QString& folder = arguments.Folder();
    if (QFileInfo::exists(Station::FileIn(folder)))
        throw AlreadyThere(folder);
    if (!FileHelper::CreateFolder(folder))
        throw Failure(exitCannotCreate, QStringLiteral("The folder %1 cannot be made.").arg(folder));
    const QString user = Station::UserName(arguments);
    try {
        MakeDirectory(folder, user);
        // The file gets its name when it is whole, so that an interrupted init leaves no half station behind.
        const QTemporaryDir unfinished(FileHelper::Join(folder, QStringLiteral(".unfinished-XXXXXX")));
        if (!unfinished.isValid())
            throw Failure(exitCannotCreate,
                          QStringLiteral("Nothing can be written into %1: %2").arg(folder, unfinished.errorString()));
        MakeStation(unfinished.path(), arguments);
        if (!FileHelper::RenameWithProgress(Station::FileIn(unfinished.path()), Station::FileIn(folder), QString()))
            throw QFileInfo::exists(Station::FileIn(folder))
                ? AlreadyThere(folder)
                : Failure(exitInputOutput, QStringLiteral("The station could not be put into %1.").arg(folder));
    } catch (const dao::Error& error) {
        throw FailureOf(QStringLiteral("The station in %1").arg(folder), QString(), error.Number(),
                        error.Description());
    }
    Terminal::PrintLine(QStringLiteral("Made the station \"%1\" in %2; its first user is %3.")
                            .arg(arguments.Value(NameOption), folder, user));
    return exitOK;
}
} // namespace

CommandDefinition InitCommand()
{
    return {
        QStringLiteral("init"),
        QStringLiteral("Makes a new station."),
        {QStringLiteral("init FOLDER --name NAME --phone NUMBER")},
        QStringLiteral(
            "The folder is made when it is not there. With the station comes a directory of users, in\n"
            "FOLDER/Directory, with one user who has all rights. A station that stands already is left alone."),
        {{NameOption, QStringLiteral("NAME"), QStringLiteral("What the station is called.")},
         {PhoneOption, QStringLiteral("NUMBER"), QStringLiteral("Its telephone number.")},
         {QStringLiteral("user"), QStringLiteral("NAME"),
          QStringLiteral("The first user (else $TOLVA_USER, else Technician).")}},
        QStringLiteral("tolva init /srv/station --name \"Harbour FM\" --phone \"01632 960100\""),
        1,
        1,
        Run,
    };
}
