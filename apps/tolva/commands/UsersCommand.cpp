// SPDX-License-Identifier: Apache-2.0

// tolva users: who may do what at the station.

#include "DisplayText.h"
#include "Station.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace
{
const QString RightsOption = QStringLiteral("rights");
const QString All = QStringLiteral("all");
const QString None = QStringLiteral("none");

constexpr int UserWidth = 30;

struct NamedRight
{
    QString Name;
    DirectoryRight Right;
};

const QList<NamedRight>& NamedRights()
{
    static const QList<NamedRight> rights = {
        {QStringLiteral("messages"), DirectoryRight::CanEditMessages},
        {QStringLiteral("personal"), DirectoryRight::CanEditPersonalMessages},
        {QStringLiteral("folders"), DirectoryRight::CanEditCategories},
        {QStringLiteral("prizes"), DirectoryRight::ManagePrizes},
        {QStringLiteral("settings"), DirectoryRight::ChangeSettings},
    };
    return rights;
}

QStringList NamesOf(int rights)
{
    QStringList names;
    for (const NamedRight& right : NamedRights()) {
        if ((rights & static_cast<int>(right.Right)) != 0)
            names.append(right.Name);
    }
    return names;
}

/// Failure (usage) for what names no right.
int ParseRights(const QString& typed)
{
    const QString words = typed.trimmed().toLower();
    if (words == All)
        return StationPlace::AllRights;
    if (words == None)
        return 0;
    int rights = 0;
    for (const QString& word : words.split(u',')) {
        const auto right = std::find_if(NamedRights().begin(), NamedRights().end(),
                                        [&](const NamedRight& candidate) { return candidate.Name == word.trimmed(); });
        if (right == NamedRights().end()) {
            throw Failure(exitUsage,
                          QStringLiteral("\"%1\" is not a right. Rights are messages, personal, folders, prizes and "
                                         "settings, with commas between them, or all, or none.")
                              .arg(word.trimmed()));
        }
        rights |= static_cast<int>(right->Right);
    }
    return rights;
}

/// A refusal of the directory tells its reason in words for the user; other errors are those of its file.
Failure FailureOfUsers(const Station& station, const dao::Error& error)
{
    switch (error.Number()) {
    case dao::errDuplicateValue:
        return Failure(exitCannotCreate, error.Description());
    case dao::errInvalidUseOfNull:
    case dao::errFieldTooSmall:
        return Failure(exitUsage, error.Description());
    case dao::errNotSupported:
        return Failure(exitData, error.Description());
    default:
        return FailureOf(QStringLiteral("The directory in %1").arg(StationPlace::DirectoryIn(station.Folder())),
                         StationPlace::DirectoryFileIn(station.Folder()), error.Number(), error.Description());
    }
}

template <typename Work>
decltype(auto) InDirectory(const Station& station, Work&& work)
{
    try {
        return std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        throw FailureOfUsers(station, error);
    }
}

DirectoryUser FindUser(Station& station, const QString& name)
{
    for (const DirectoryUser& user : station.Directory().Users()) {
        if (user.Name.compare(name.simplified(), Qt::CaseInsensitive) == 0)
            return user;
    }
    throw Failure(exitNoUser, QStringLiteral("\"%1\" is not a user of the directory in %2.")
                                  .arg(name, StationPlace::DirectoryIn(station.Folder())));
}

int ListUsers(const Arguments& arguments, Station& station)
{
    const QList<DirectoryUser> users = InDirectory(station, [&] { return station.Directory().Users(); });
    for (const DirectoryUser& user : users) {
        const QStringList names = NamesOf(user.Rights);
        if (arguments.Has(JsonOption)) {
            const QJsonObject object{{QStringLiteral("reference"), user.Reference},
                                     {QStringLiteral("name"), user.Name},
                                     {QStringLiteral("rights"), QJsonArray::fromStringList(names)}};
            Terminal::PrintJson(object);
            continue;
        }
        const QString rights = names.isEmpty() ? None : names.size() == NamedRights().size() ? All : names.join(u',');
        const QString name = OneLine(user.Name);
        // A longer name is not cut: it is what the other commands take.
        Terminal::PrintLine((DisplayWidth(name) < UserWidth ? Cell(name, UserWidth) : name) + u' ' + rights);
    }
    return exitOK;
}

void Change(const Arguments& arguments, Station& station)
{
    EmbeddedDirectory& directory = station.Directory();
    const QStringList& words = arguments.Words();
    const QString& name = words.at(2);
    if (words.at(1) == u"add")
        directory.AddUser(name, ParseRights(arguments.Value(RightsOption, None)));
    else if (words.at(1) == u"rights")
        directory.SetRights(FindUser(station, name).Reference, ParseRights(words.at(3)));
    else if (words.at(1) == u"rename")
        directory.RenameUser(FindUser(station, name).Reference, words.at(3));
    else
        directory.DeleteUser(FindUser(station, name).Reference);
}

/// Failure (usage) for what is no form of the command.
void CheckFormOfUsers(const Arguments& arguments)
{
    static const QHash<QString, qsizetype> forms = {{QStringLiteral("add"), 3},
                                                    {QStringLiteral("rights"), 4},
                                                    {QStringLiteral("rename"), 4},
                                                    {QStringLiteral("remove"), 3}};
    const QStringList& words = arguments.Words();
    if (words.size() != forms.value(words.at(1))) {
        throw Failure(exitUsage,
                      QStringLiteral("Behind the folder comes nothing, \"add NAME\", \"rights NAME RIGHTS\", \"rename "
                                     "NAME NEW\" or \"remove NAME\"."));
    }
    // Wrong rights are told before anything is opened.
    if (words.at(1) == u"rights")
        ParseRights(words.at(3));
    ParseRights(arguments.Value(RightsOption, None));
}

int RunUsers(const Arguments& arguments)
{
    if (arguments.Words().size() == 1) {
        Station station(arguments);
        return ListUsers(arguments, station);
    }
    CheckFormOfUsers(arguments);
    Station station(arguments);
    station.Require(DirectoryRight::ChangeSettings, QStringLiteral("change users"));
    InDirectory(station, [&] { Change(arguments, station); });
    return exitOK;
}
} // namespace

CommandDefinition UsersCommand()
{
    return {
        QStringLiteral("users"),
        QStringLiteral("Lists the users of the station's directory, or changes them."),
        {QStringLiteral("users FOLDER [--json]"), QStringLiteral("users FOLDER add NAME [--rights RIGHTS]"),
         QStringLiteral("users FOLDER rights NAME RIGHTS"), QStringLiteral("users FOLDER rename NAME NEW"),
         QStringLiteral("users FOLDER remove NAME")},
        QStringLiteral(
            "RIGHTS are some of messages, personal, folders, prizes and settings, with commas between them, or all, "
            "or\n"
            "none (what a new user has): editing messages, editing messages personal to oneself, changing folders,\n"
            "managing prizes, changing settings and users. Changes need the right to change settings. The last user "
            "who\n"
            "has it keeps it, and the user who acts cannot be removed."),
        {{RightsOption, QStringLiteral("RIGHTS"), QStringLiteral("What the new user may do.")},
         {JsonOption, QString(), QStringLiteral("One JSON object a line.")},
         Station::UserOption()},
        QStringLiteral("tolva users /srv/station add \"Loveday Tregenza\" --rights messages,personal"),
        1,
        4,
        RunUsers,
    };
}
