#include "Station.h"

#include "common/FileHelper.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/DBEngine.h"

namespace
{
constexpr char UserVariable[] = "TOLVA_USER";

constexpr int OpenAttempts = 5;

/// An open that finds a fixed folder missing or changed puts it right, so two at the same moment may meet there; one of
/// them goes through, and the other finds it right when it opens again.
bool IsCollision(int errorNumber)
{
    return errorNumber == dao::errChangedByAnother || errorNumber == dao::errRecordDeleted ||
           errorNumber == dao::errDuplicateValue;
}

QString SubjectOf(const QString& folder)
{
    return QStringLiteral("The station in %1").arg(folder);
}
} // namespace

QString Station::FileIn(const QString& folder)
{
    return FileHelper::Join(folder, QStringLiteral("Tolva.mdb"));
}

QString Station::DirectoryIn(const QString& folder)
{
    return FileHelper::Join(folder, QStringLiteral("Directory"));
}

QString Station::UserName(const Arguments& arguments)
{
    const QString fromEnvironment = qEnvironmentVariable(UserVariable);
    return arguments.Value(QStringLiteral("user"),
                           fromEnvironment.isEmpty() ? QStringLiteral("Technician") : fromEnvironment);
}

QString Station::DirectoryFileIn(const QString& folder)
{
    return FileHelper::Join(DirectoryIn(folder), QStringLiteral("Directory.mdb"));
}

OptionDefinition Station::UserOption()
{
    return {QStringLiteral("user"), QStringLiteral("NAME"),
            QStringLiteral("Acts as this user of the directory (else $TOLVA_USER, else Technician).")};
}

Station::Station(const Arguments& arguments) : Folder_(arguments.Folder())
{
    // Opening makes what is missing, which is for init alone.
    if (FileHelper::FileSize(FileIn(Folder_)) <= 0) {
        throw Failure(
            exitNoInput,
            QStringLiteral("There is no station in %1. Make one with: tolva init %1 --name NAME --phone NUMBER")
                .arg(Folder_));
    }
    Try([&] { SignIn(UserName(arguments)); });
    Try([&] { OpenDatabase(); });
}

void Station::SignIn(const QString& name)
{
    const QString folder = DirectoryIn(Folder_);
    const QString file = DirectoryFileIn(Folder_);
    if (!FileHelper::FileExists(file)) {
        throw Failure(exitNoUser, QStringLiteral("The station in %1 has no directory, so nobody is a user of it. "
                                                 "Its directory belongs into %2.")
                                      .arg(Folder_, folder));
    }
    try {
        Directory_.Open(folder);
        if (Directory_.SignIn(name))
            return;
    } catch (const dao::Error& error) {
        throw FailureOf(QStringLiteral("The directory in %1").arg(folder), file, error.Number(), error.Description());
    }
    throw Failure(exitNoUser,
                  QStringLiteral("\"%1\" is not a user of the directory in %2. Name a user with --user or in "
                                 "the environment variable TOLVA_USER.")
                      .arg(name, folder));
}

void Station::OpenDatabase()
{
    Database_.SetDirectoryDatabase(&Directory_);
    int result = TryOpen();
    for (int attempt = 1; attempt < OpenAttempts && IsCollision(result); ++attempt)
        result = TryOpen();
    if (result != 0)
        FailOpen(result);
    Terminal_.TakeProblems();
}

/// 0, or the number of the error that stopped it, 1 for none in particular.
int Station::TryOpen()
{
    Terminal_.TakeProblems();
    try {
        const int result = Database_.OpenTolvaDatabase(Folder_);
        // Incomplete station details keep no message out: -1 with an open database counts as opened.
        return result == -1 && Database_.IsOpen() ? 0 : qAbs(result);
    } catch (const dao::Error& error) {
        return error.Number();
    }
}

/// The open itself does not always say which error stopped it; opening the file once more does.
void Station::FailOpen(int errorNumber)
{
    const QStringList problems = Terminal_.TakeProblems();
    const QString words = problems.isEmpty() ? QStringLiteral("The open failed.") : problems.last();
    if (errorNumber == 1 || errorNumber == dao::errObjectInvalid) {
        try {
            const auto database = dao::DBEngine::OpenDatabase(FileIn(Folder_));
            database->OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable)->SetIndex(QStringLiteral("Main"));
        } catch (const dao::Error& error) {
            throw FailureOfStation(error.Number(), error.Description());
        }
        throw Failure(exitSoftware, QStringLiteral("The station in %1 cannot be opened: %2").arg(Folder_, words));
    }
    throw FailureOfStation(errorNumber, words);
}

Failure Station::FailureOfStation(int errorNumber, const QString& description) const
{
    return FailureOf(SubjectOf(Folder_), FileIn(Folder_), errorNumber, description);
}

cMessagePtr Station::Message(const QString& words)
{
    const qint32 reference = ToReference(words);
    const cMessagePtr message = Try([&] { return Database_.GetMessage(reference); });
    if (!message)
        throw Failure(exitData, QStringLiteral("There is no message %1 in the station in %2.").arg(words, Folder_));
    return message;
}

void Station::Require(DirectoryRight right, const QString& words)
{
    const clsKVUser* user = Directory_.CurrentUser();
    if (!user || !user->HasRight(right)) {
        throw Failure(
            exitNoPermission,
            QStringLiteral("%1 has no right to %2 here.").arg(user ? user->Name() : QStringLiteral("Nobody"), words));
    }
}

Failure Station::WhyNot(qint32 reference, const QString& words)
{
    if (Database_.LastErrorNumber() != 0)
        return FailureOfStation(Database_.LastErrorNumber(), Database_.LastErrorDescription());
    try {
        const cMessagePtr message = Try([&] { return Database_.GetMessage(reference); });
        if (!message) {
            return Failure(exitData,
                           QStringLiteral("There is no message %1 in the station in %2.").arg(reference).arg(Folder_));
        }
        const clsKVUser* user = Directory_.CurrentUser();
        const bool isOwn = user && message->PersonalToContact() == user->Reference();
        Require(isOwn ? DirectoryRight::CanEditPersonalMessages : DirectoryRight::CanEditMessages, words);
    } catch (const Failure& failure) {
        return failure;
    }
    return Failure(
        exitTemporary,
        QStringLiteral("Message %1 changed or went while it was being worked on. Try again.").arg(reference));
}

qint32 ToReference(const QString& words)
{
    bool isNumber = false;
    const int reference = words.toInt(&isNumber);
    if (!isNumber || reference <= 0)
        throw Failure(exitUsage, QStringLiteral("\"%1\" is not a message's number.").arg(words));
    return reference;
}
