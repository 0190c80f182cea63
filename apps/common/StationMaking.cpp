// SPDX-License-Identifier: Apache-2.0
#include "StationMaking.h"

#include "CollectingUserInterface.h"
#include "Failure.h"
#include "LinkedDatabases.h"
#include "StationPlace.h"
#include "common/DurableFile.h"
#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "database/cTolvaDatabase.h"
#include "platform/directory/EmbeddedDirectory.h"
#include "platform/records/FileConversion.h"

#include <QDir>
#include <QTemporaryDir>

namespace
{
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
    directory.Open(StationPlace::DirectoryIn(folder));
    if (directory.Users().isEmpty()) {
        DirectoryUser first;
        first.Name = user;
        first.Rights = StationPlace::AllRights;
        directory.SaveUser(first);
    } else if (!directory.SignIn(user)) {
        throw Failure(exitNoUser,
                      QStringLiteral("There is a directory in %1 already, and \"%2\" is not a user of it. No "
                                     "station was made.")
                          .arg(StationPlace::DirectoryIn(folder), user));
    }
}

/// Makes the station's file whole in a folder where nobody looks for one.
void MakeFile(const QString& folder, const QString& name, const QString& phoneNumber, const QString& country,
              UserInterface& under)
{
    CollectingUserInterface userInterface(under);
    bool isStored = false;
    userInterface.SetSettingsDialog([&](cTolvaDatabase& database) {
        database.SetStationName(name);
        database.SetStationPhoneNumber(phoneNumber);
        database.SetStationCountry(country.isEmpty() ? GeneralHelper::DefaultPhoneRegion() : country);
        isStored = database.StationName() == name && database.StationPhoneNumber() == phoneNumber;
        return isStored;
    });
    cTolvaDatabase database;
    database.SetMakesAutomaticBackups(false); // it would stand in the folder that goes
    const qint32 result = database.OpenTolvaDatabase(folder);
    const QStringList problems = userInterface.TakeProblems();
    database.CloseTolvaDatabase();
    if (result != 0 || !isStored) {
        const int number = problems.isEmpty() ? database.LastErrorNumber() : ErrorNumberIn(problems.last());
        const ExitCode code = number == 0 ? exitCannotCreate : ExitCodeOf(number);
        throw Failure(code, QStringLiteral("The station could not be made: %1")
                                .arg(problems.isEmpty() ? database.LastErrorDescription() : problems.join(u' ')));
    }
}

void GiveFormat(const QString& file, const QString& format)
{
    if (format.isEmpty() || dao::HasFormat(file, format))
        return;
    const QString converted = file + QStringLiteral("-converted");
    dao::ConvertDatabase(file, converted, format, {});
    if (!DurableFile::RenameOver(converted, file))
        throw Failure(exitInputOutput, QStringLiteral("%1 cannot be renamed.").arg(converted));
}

} // namespace

void StationMaking::Make(const QString& folder, const QString& name, const QString& phoneNumber, const QString& user,
                         UserInterface& under, const QString& country, const Storage& storage)
{
    if (QFileInfo::exists(StationPlace::FileIn(folder)))
        throw AlreadyThere(folder);
    if (!FileHelper::CreateFolder(folder))
        throw Failure(exitCannotCreate, QStringLiteral("The folder %1 cannot be made.").arg(folder));
    try {
        LinkedDatabases linked;
        const QString directory = StationPlace::DirectoryFileIn(folder);
        if (!storage.Connect.isEmpty() && !QFileInfo::exists(directory)) {
            FileHelper::CreateFolder(StationPlace::DirectoryIn(folder));
            linked.Create(directory, storage.Connect, LinkedDatabases::DirectoryPart());
        }
        MakeDirectory(folder, user);
        // The file gets its name when it is whole, so that an interruption leaves no half station behind.
        const QTemporaryDir unfinished(FileHelper::Join(folder, QStringLiteral(".unfinished-XXXXXX")));
        if (!unfinished.isValid())
            throw Failure(exitCannotCreate,
                          QStringLiteral("Nothing can be written into %1: %2").arg(folder, unfinished.errorString()));
        if (!storage.Connect.isEmpty())
            linked.Create(StationPlace::FileIn(unfinished.path()), storage.Connect, QString());
        MakeFile(unfinished.path(), name, phoneNumber, country, under);
        GiveFormat(StationPlace::FileIn(unfinished.path()), storage.Format);
        if (!FileHelper::RenameWithProgress(StationPlace::FileIn(unfinished.path()), StationPlace::FileIn(folder),
                                            QString()))
            throw QFileInfo::exists(StationPlace::FileIn(folder))
                ? AlreadyThere(folder)
                : Failure(exitInputOutput, QStringLiteral("The station could not be put into %1.").arg(folder));
        linked.Keep();
    } catch (const dao::Error& error) {
        throw FailureOf(QStringLiteral("The station in %1").arg(folder), QString(), error.Number(),
                        error.Description());
    }
}

void StationMaking::Join(const QString& folder, const QString& connect)
{
    if (QFileInfo::exists(StationPlace::FileIn(folder)))
        throw AlreadyThere(folder);
    if (!FileHelper::CreateFolder(folder) || !FileHelper::CreateFolder(StationPlace::DirectoryIn(folder)))
        throw Failure(exitCannotCreate, QStringLiteral("The folder %1 cannot be made.").arg(folder));
    try {
        if (!QFileInfo::exists(StationPlace::DirectoryFileIn(folder)))
            dao::DBEngine::LinkDatabase(StationPlace::DirectoryFileIn(folder), connect,
                                        LinkedDatabases::DirectoryPart());
        dao::DBEngine::LinkDatabase(StationPlace::FileIn(folder), connect);
    } catch (const dao::Error& error) {
        throw FailureOf(QStringLiteral("The station in %1").arg(folder), QString(), error.Number(),
                        error.Description());
    }
}
