// SPDX-License-Identifier: Apache-2.0

// tolva setup: writes the settings of the programs that bring a station its mail, or send what it writes, into a folder
// to look at.

#include "Failure.h"
#include "FileOutput.h"
#include "Station.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "setup/MailSetup.h"

#include <QDir>

#include <algorithm>

namespace
{
const QString WithOption = QStringLiteral("with");
const QString AddressOption = QStringLiteral("address");
const QString HostOption = QStringLiteral("host");
const QString LoginOption = QStringLiteral("login");
const QString PortOption = QStringLiteral("port");
const QString TlsOption = QStringLiteral("tls");

QString NamesOfWays()
{
    QStringList names;
    for (const MailWay& way : MailSetup::Ways({}))
        names.append(way.Name);
    return names.join(QStringLiteral(", "));
}

/// The value of the option, or the answer of who sits at the terminal.
QString ValueOrAnswer(const Arguments& arguments, const QString& option, const QString& question)
{
    QString value = arguments.Value(option).trimmed();
    if (!value.isEmpty())
        return value;
    if (Terminal::CanAsk()) {
        InputBoxRequest request;
        request.Prompt = question;
        TerminalUserInterface().InputBox(request, value);
    }
    if (value.trimmed().isEmpty())
        throw Failure(exitUsage, QStringLiteral("--%1 is missing. %2").arg(option, question));
    return value.trimmed();
}

/// The option's word; starttls where there is none.
MailSetupValues::Safety SafetyOf(const Arguments& arguments)
{
    using Safety = MailSetupValues::Safety;
    const QString word = arguments.Value(TlsOption);
    if (word.isEmpty() || word == u"starttls")
        return Safety::StartTls;
    if (word == u"yes")
        return Safety::Tls;
    if (word == u"no")
        return Safety::None;
    throw Failure(exitUsage, QStringLiteral("--%1 takes starttls, yes or no; \"%2\" is none.").arg(TlsOption, word));
}

MailWay WayNamed(const QString& name, const MailSetupValues& values)
{
    const std::vector<MailWay> ways = MailSetup::Ways(values);
    const auto way = std::find_if(ways.begin(), ways.end(), [&](const MailWay& one) { return one.Name == name; });
    if (way == ways.end())
        throw Failure(exitUsage, QStringLiteral("--with takes one of %1; \"%2\" is none.").arg(NamesOfWays(), name));
    return *way;
}

MailSetupValues ValuesFor(const Arguments& arguments, const MailWay& way, const QString& station)
{
    MailSetupValues values;
    values.Station = station;
    if (way.NeedsAddress)
        values.Address = ValueOrAnswer(arguments, AddressOption, QStringLiteral("The station's mail address:"));
    if (way.AtProvider == MailWay::Provider::Mailbox)
        values.Host = ValueOrAnswer(arguments, HostOption, QStringLiteral("The provider's IMAP server:"));
    if (way.AtProvider == MailWay::Provider::SmtpServer) {
        values.Host = ValueOrAnswer(arguments, HostOption, QStringLiteral("The provider's SMTP server:"));
        values.Port = arguments.Value(PortOption).trimmed();
        values.How = SafetyOf(arguments);
    }
    if (way.AtProvider != MailWay::Provider::None && values.How != MailSetupValues::Safety::None)
        values.Login = ValueOrAnswer(arguments, LoginOption, QStringLiteral("The login there:"));
    const QString problem = MailSetup::WhyNot(values);
    if (!problem.isEmpty())
        throw Failure(exitUsage, problem);
    return values;
}

/// Only into a folder with nothing in it: nobody installs what an earlier run left.
void MakeFolder(const QString& name)
{
    const QDir folder(name);
    if (folder.exists() && !folder.isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        throw Failure(exitCannotCreate,
                      QStringLiteral("There is something in %1 already. Name a new folder with --output.").arg(name));
    }
    if (!QDir().mkpath(name))
        throw Failure(exitCannotCreate, QStringLiteral("The folder %1 cannot be made.").arg(name));
}

void WriteFiles(const QString& folder, const MailWay& way, const MailSetupValues& values)
{
    for (const MailSetupFile& file : way.Files) {
        const QString name = folder + file.Path;
        if (!QDir().mkpath(name.section(u'/', 0, -2)))
            throw Failure(exitCannotCreate, QStringLiteral("The folder of %1 cannot be made.").arg(name));
        FileOutput::Write(name, file.Content.toUtf8(), IfThere::Refuse);
    }
    FileOutput::Write(folder + QStringLiteral("/install.sh"), MailSetup::InstallationOf(way, values).toUtf8(),
                      IfThere::Refuse);
}

void TellWhatIsNext(const QString& folder, const MailWay& way)
{
    Terminal::PrintLine(QStringLiteral("Wrote the settings for %1 into %2:").arg(way.Summary, folder));
    for (const MailSetupFile& file : way.Files)
        Terminal::PrintLine(QStringLiteral("  %1").arg(file.Path));
    Terminal::PrintLine(QStringLiteral("Look at them, then install them as root with: sh %1/install.sh").arg(folder));
    for (const QString& sentence : way.Next)
        Terminal::PrintLine(sentence);
}

int RunSetup(const Arguments& arguments)
{
    if (arguments.Words().first() != u"mail")
        throw Failure(exitUsage, QStringLiteral("Only mail can be set up: tolva setup mail FOLDER"));
    const QString station = QDir(arguments.Words().at(1)).absolutePath();
    if (!StationPlace::HoldsStation(station)) {
        throw Failure(exitNoInput,
                      QStringLiteral("There is no station in %1. One is made with: tolva init %1").arg(station));
    }
    const QString name =
        ValueOrAnswer(arguments, WithOption,
                      QStringLiteral("What brings the messages, or sends them? One of %1:").arg(NamesOfWays()));
    const MailSetupValues values = ValuesFor(arguments, WayNamed(name, {}), station);
    const MailWay way = WayNamed(name, values);
    const QString folder =
        QDir(ValueOrAnswer(arguments, OutputOption, QStringLiteral("The folder to write the settings into:")))
            .absolutePath();
    MakeFolder(folder);
    WriteFiles(folder, way, values);
    TellWhatIsNext(folder, way);
    return exitOK;
}
} // namespace

CommandDefinition SetupCommand()
{
    return {
        QStringLiteral("setup"),
        QStringLiteral("Writes the settings of the programs that bring a station its mail and send its answers."),
        {QStringLiteral("setup mail FOLDER --with WAY [--address ADDRESS] [--host HOST --login NAME] [--port PORT] "
                        "[--tls HOW] --output DIR")},
        QStringLiteral("WAY is one of %1.\n"
                       "The settings are written into the new folder DIR and nowhere else, with a script that installs "
                       "them for root\n"
                       "and may be run again. On a terminal what is missing is asked. docs/hookups.md explains each "
                       "way.\n"
                       "--user is taken for the sake of scripts and not used.")
            .arg(NamesOfWays()),
        {{WithOption, QStringLiteral("WAY"), QStringLiteral("What brings the messages, or sends them.")},
         {AddressOption, QStringLiteral("ADDRESS"),
          QStringLiteral("Where the station gets mail, for mail servers of this computer, or from where it sends.")},
         {HostOption, QStringLiteral("HOST"),
          QStringLiteral("The IMAP server of a mailbox at a provider, or the SMTP server for msmtp.")},
         {LoginOption, QStringLiteral("NAME"), QStringLiteral("The login there; its password is never asked.")},
         {PortOption, QStringLiteral("PORT"), QStringLiteral("Of the SMTP server (587, 465 or 25, after --tls).")},
         {TlsOption, QStringLiteral("HOW"),
          QStringLiteral("For the SMTP server: starttls, yes for TLS at once, or no, without a login (starttls).")},
         {OutputOption, QStringLiteral("DIR"), QStringLiteral("The folder to write into; a new or an empty one."),
          QStringLiteral("o")},
         Station::UserOption()},
        QStringLiteral("tolva setup mail /srv/station --with postfix --address studio@harbourfm.example.org "
                       "--output mail-setup"),
        2,
        2,
        RunSetup,
    };
}
