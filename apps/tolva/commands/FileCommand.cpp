// SPDX-License-Identifier: Apache-2.0

// tolva file: puts messages that arrived into the station.

#include "FolderPaths.h"
#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "intake/Filing.h"
#include "intake/FolderClaim.h"
#include "intake/MailSources.h"
#include "messages/TextMessage.h"

namespace
{
const QString SMSOption = QStringLiteral("sms");
const QString SkipFiledOption = QStringLiteral("skip-filed");
const QString OnceOption = QStringLiteral("once");
const QString TakeOption = QStringLiteral("take");
const QString AnswerOption = QStringLiteral("answer");
const QString VerboseOption = QStringLiteral("verbose");

QByteArray InputForTextMessage()
{
    QByteArray octets;
    if (!Terminal::ReadInput(octets))
        throw Failure(exitInputOutput, QStringLiteral("Standard input cannot be read."));
    return octets;
}

void FileTextMessage(Filing& filing, Station& station, const Arguments& arguments)
{
    TextMessage text;
    text.From = arguments.Value(FromOption).trimmed();
    text.To = arguments.Value(ToOption, station.Database().StationSMSPhoneNumber()).trimmed();
    text.Text = DecodeTextMessage(InputForTextMessage());
    IncomingMessage incoming;
    incoming.Name = QStringLiteral("The text message from %1").arg(text.From);
    filing.Save(MakeMessage(text), incoming);
}

/// False when Ctrl-C ended it early.
bool FileAll(Filing& filing, MailSources& sources, Station& station)
{
    for (const QString& skipped : sources.Skipped())
        Terminal::Complain(skipped);
    const auto progress = station.Terminal().Progress(QStringLiteral("Filing"));
    IncomingMessage incoming;
    while (sources.Next(incoming)) {
        filing.Add(incoming);
        incoming = IncomingMessage();
        const bool goesOn = progress->Advance(sources.Done(), sources.Total());
        if (!goesOn && sources.Done() < sources.Total()) {
            filing.Finish();
            return false;
        }
    }
    filing.Finish();
    return true;
}

void CheckUsageOfFile(const Arguments& arguments)
{
    const bool hasPaths = arguments.Words().size() > 1;
    if (arguments.Has(SMSOption)) {
        if (arguments.Value(FromOption).trimmed().isEmpty())
            throw Failure(exitUsage, QStringLiteral("--sms needs --from NUMBER."));
        if (hasPaths && arguments.Words().mid(1) != QStringList(QStringLiteral("-")))
            throw Failure(exitUsage, QStringLiteral("With --sms the text comes on standard input; no path is taken."));
    } else if (arguments.Has(FromOption) || arguments.Has(ToOption)) {
        throw Failure(exitUsage, QStringLiteral("--from and --to belong to --sms."));
    }
    if (arguments.Has(TakeOption) && !hasPaths)
        throw Failure(exitUsage, QStringLiteral("--take needs the folder that it takes messages out of."));
    if (arguments.Has(OnceOption) && arguments.Has(SMSOption))
        throw Failure(exitUsage, QStringLiteral("--once is for mails: two text messages may well be the same."));
    if (!hasPaths && Terminal::InputIsTerminal())
        throw Failure(exitUsage,
                      QStringLiteral("Name files to file, or send one on standard input. See: tolva file --help"));
}

Filing::Options FilingOptionsOf(const Arguments& arguments)
{
    Filing::Options options;
    options.setFlag(Filing::Option::Verbose, arguments.Has(VerboseOption));
    options.setFlag(Filing::Option::SkipsFiled, arguments.Has(SkipFiledOption));
    options.setFlag(Filing::Option::FilesOnce, arguments.Has(OnceOption));
    options.setFlag(Filing::Option::Takes, arguments.Has(TakeOption));
    options.setFlag(Filing::Option::Answers, arguments.Has(AnswerOption));
    return options;
}

std::vector<std::unique_ptr<FolderClaim>> ClaimsOf(const Arguments& arguments)
{
    std::vector<std::unique_ptr<FolderClaim>> claims;
    if (!arguments.Has(TakeOption))
        return claims;
    for (const QString& path : arguments.Words().mid(1))
        claims.push_back(std::make_unique<FolderClaim>(path));
    return claims;
}

int RunFile(const Arguments& arguments)
{
    CheckUsageOfFile(arguments);
    QStringList paths = arguments.Words().mid(1);
    if (paths.isEmpty())
        paths.append(QStringLiteral("-"));
    const bool isSMS = arguments.Has(SMSOption);
    // Before the folders are looked through: what another program has taken meanwhile is not there any more.
    const std::vector<std::unique_ptr<FolderClaim>> claims = ClaimsOf(arguments);
    Station station(arguments);
    MailSources sources(isSMS ? QStringList() : paths,
                        arguments.Has(TakeOption) ? MailSources::Purpose::Take : MailSources::Purpose::Read);
    Filing filing(station, FindFolder(station.Folders(), arguments.Value(CategoryOption, QString::number(tmcInbox))),
                  FilingOptionsOf(arguments));
    bool isWhole = true;
    try {
        if (isSMS)
            FileTextMessage(filing, station, arguments);
        else
            isWhole = FileAll(filing, sources, station);
    } catch (const Failure&) {
        filing.PrintCounts();
        throw;
    }
    if (!isWhole)
        Terminal::Complain(QStringLiteral("Ended early by Ctrl-C; the messages behind this point were not filed."));
    filing.PrintCounts();
    return isWhole ? filing.Code() : exitInterrupted;
}
} // namespace

CommandDefinition FileCommand()
{
    return {
        QStringLiteral("file"),
        QStringLiteral("Files messages that arrived: mails, or a text message."),
        {QStringLiteral("file FOLDER [--category C] [--skip-filed|--once] [PATH...|-]"),
         QStringLiteral("file FOLDER [--category C] --take PATH... [--answer]"),
         QStringLiteral("file FOLDER --sms --from NUMBER [--to NUMBER] [--answer]")},
        QStringLiteral(
            "PATH is an .eml file, a folder of .eml files, a maildir or an mbox archive. Without PATH, and for\n"
            "\"-\", one mail comes on standard input; with --sms the text of one text message does.\n"
            "A mail is kept octet by octet. A file that is no mail is named on standard error and passed over.\n"
            "Mails are filed in batches of up to 500; what was told as filed is on the disk. After a run that\n"
            "broke off, the same with --skip-filed files the rest, and nothing twice.\n"
            "The last line says how many were filed and how many failed."),
        {{CategoryOption, QStringLiteral("C"), QStringLiteral("The folder to file in (Inbox).")},
         {SMSOption, QString(), QStringLiteral("Files a text message (SMS).")},
         {FromOption, QStringLiteral("NUMBER"), QStringLiteral("Who sent the text message: number or name.")},
         {ToOption, QStringLiteral("NUMBER"), QStringLiteral("Where to (the station's SMS number).")},
         {SkipFiledOption, QString(),
          QStringLiteral("Passes over mails that are in the station already, by whatever\nroute they came.")},
         {OnceOption, QString(),
          QStringLiteral("Passes over a mail that is in the station octet by octet: one that a\nmail server hands over "
                         "again because it was not told the end.")},
         {TakeOption, QString(),
          QStringLiteral("Removes each file of the folders PATH once its message is in the\nstation; files it once, "
                         "also when it was killed in between.")},
         {AnswerOption, QString(),
          QStringLiteral("Answers a text message that asks for the song that plays, or how to\nbuy it, by a text "
                         "message that waits in the Outbox.")},
         {VerboseOption, QString(), QStringLiteral("Says of each message under which number it was filed.")},
         Station::UserOption()},
        QStringLiteral("tolva file /srv/station --category Requests ~/Maildir"),
        1,
        -1,
        RunFile,
    };
}
