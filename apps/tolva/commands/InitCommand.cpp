// SPDX-License-Identifier: Apache-2.0

// tolva init: makes a station.

#include "Failure.h"
#include "Station.h"
#include "StationMaking.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "common/GeneralHelper.h"
#include "common/TerminalUserInterface.h"

namespace
{
const QString NameOption = QStringLiteral("name");
const QString PhoneOption = QStringLiteral("phone");
const QString CountryOption = QStringLiteral("country");
const QString FormatOption = QStringLiteral("format");

/// One more computer of a station that is on a server.
int Join(const Arguments& arguments)
{
    StationMaking::Join(arguments.Folder(), arguments.Value(ConnectOption));
    Terminal::PrintLine(QStringLiteral("%1 stands for the station on the server now.").arg(arguments.Folder()));
    return exitOK;
}

int RunInit(const Arguments& arguments)
{
    if (arguments.Has(ConnectOption) && !arguments.Has(NameOption) && !arguments.Has(PhoneOption))
        return Join(arguments);
    for (const QString& option : {NameOption, PhoneOption}) {
        if (arguments.Value(option).trimmed().isEmpty())
            throw Failure(exitUsage, QStringLiteral("A station needs --name NAME and --phone NUMBER."));
    }
    const QString country = arguments.Value(CountryOption, GeneralHelper::DefaultPhoneRegion());
    if (GeneralHelper::ToPhoneRegion(country).isEmpty())
        throw Failure(
            exitUsage,
            QStringLiteral("--country takes a country's two letters, such as GB; \"%1\" is none.").arg(country));
    if (arguments.Has(FormatOption) && arguments.Has(ConnectOption))
        throw Failure(exitUsage,
                      QStringLiteral("--format is that of a file, and --connect makes none. Give one of them."));
    const QString& folder = arguments.Folder();
    const QString user = Station::UserName(arguments);
    TerminalUserInterface terminal;
    StationMaking::Make(folder, arguments.Value(NameOption), arguments.Value(PhoneOption), user, terminal, country,
                        {arguments.Value(FormatOption), arguments.Value(ConnectOption)});
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
        {QStringLiteral("init FOLDER --name NAME --phone NUMBER [--country CODE] [--format FORMAT]"),
         QStringLiteral("init FOLDER --name NAME --phone NUMBER [--country CODE] --connect STRING"),
         QStringLiteral("init FOLDER --connect STRING")},
        QStringLiteral(
            "The folder is made when it is not there. With the station comes a directory of users, in\n"
            "FOLDER/Directory, with one user who has all rights. A station that stands already is left alone.\n"
            "With --connect the station and its directory are made on a PostgreSQL server, and the folder says where;\n"
            "without a name and a number the folder is one more computer's, for a station that is there already."),
        {{NameOption, QStringLiteral("NAME"), QStringLiteral("What the station is called.")},
         {PhoneOption, QStringLiteral("NUMBER"), QStringLiteral("Its telephone number.")},
         {CountryOption, QStringLiteral("CODE"),
          QStringLiteral("In whose form numbers are read (else what this computer is set to, else GB).")},
         {FormatOption, QStringLiteral("FORMAT"),
          QStringLiteral("Of its file: sqlite, or jet, which office programs read (else what\nthis computer is set to, "
                         "else sqlite).")},
         {ConnectOption, QStringLiteral("STRING"),
          QStringLiteral("The server, such as \"host=server dbname=radio schema=harbour\"; no password in it.")},
         {QStringLiteral("user"), QStringLiteral("NAME"),
          QStringLiteral("The first user (else $TOLVA_USER, else Technician).")}},
        QStringLiteral("tolva init /srv/station --name \"Harbour FM\" --phone \"01632 960100\""),
        1,
        1,
        RunInit,
    };
}
