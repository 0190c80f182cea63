// tolva file: puts messages that arrived into the station.

#include "Commands.h"
#include "FolderNames.h"
#include "MailSources.h"
#include "Station.h"
#include "Terminal.h"
#include "TextMessage.h"

namespace
{
const QString CategoryOption = QStringLiteral("category");
const QString SMSOption = QStringLiteral("sms");
const QString FromOption = QStringLiteral("from");
const QString ToOption = QStringLiteral("to");
const QString VerboseOption = QStringLiteral("verbose");

/// One run of filing: counts, and says of each message what became of it.
class Filing
{
public:
    Filing(Station& station, const Arguments& arguments)
        : Station_(station),
          IsVerbose_(arguments.Has(VerboseOption)),
          Category_(FindFolder(station.Folders(), arguments.Value(CategoryOption, QString::number(tmcInbox))))
    {
    }

    /// Failure when nothing more can be filed in this run.
    void File(const IncomingMessage& incoming)
    {
        QString problem = incoming.Problem;
        ExitCode code = exitNoInput;
        cMessagePtr message;
        if (problem.isEmpty()) {
            message = MakeMessageOf(incoming, problem);
            code = exitData;
        }
        if (!problem.isEmpty())
            Refuse(incoming.Name, problem, code);
        else
            Save(message, incoming.Name);
    }

    void Save(const cMessagePtr& message, const QString& name)
    {
        message->SetCategory(static_cast<enTolvaMessageCategories>(Category_));
        int number = 0;
        QString description;
        bool isSaved = false;
        try {
            isSaved = Station_.Database().SaveMessage(message);
            number = Station_.Database().LastErrorNumber();
            description = Station_.Database().LastErrorDescription();
        } catch (const dao::Error& error) {
            number = error.Number();
            description = error.Description();
        }
        const QStringList problems = Station_.Terminal().TakeProblems();
        if (!isSaved) {
            FailSaving(name, number, description.isEmpty() ? problems.join(u' ') : description);
            return;
        }
        ++Filed_;
        if (!IsVerbose_)
            return;
        // What went wrong beside the message, such as the stamp that tells other computers of it.
        for (const QString& problem : problems)
            Terminal::Complain(problem);
        Terminal::PrintLine(QStringLiteral("filed %1 as %2").arg(name).arg(message->Reference()));
        Terminal::Flush();
    }

    void Refuse(const QString& name, const QString& problem, ExitCode code)
    {
        ++Failed_;
        Terminal::Complain(QStringLiteral("%1 %2").arg(name, problem));
        if (ExitCode_ != exitNoInput)
            ExitCode_ = code;
    }

    void PrintCounts() const { Terminal::PrintLine(QStringLiteral("filed %1, failed %2").arg(Filed_).arg(Failed_)); }

    ExitCode Code() const { return ExitCode_; }

private:
    cMessagePtr MakeMessageOf(const IncomingMessage& incoming, QString& problem) const
    {
        if (incoming.Kind == IncomingKind::TextMessage) {
            TextMessage text = ReadTextMessageFile(incoming.Octets, problem);
            return problem.isEmpty() ? MakeMessage(text) : nullptr;
        }
        // What a mail server hands over is filed whatever it looks like: nobody else has it.
        problem = incoming.IsHandedOver && !incoming.Octets.isEmpty() ? QString() : WhyNotMail(incoming.Octets);
        if (!problem.isEmpty())
            return nullptr;
        auto message = std::make_shared<cMessage>();
        message->SetMessageType(emtEmail);
        message->SetCDOMessage(std::make_shared<cdo::Message>(incoming.Octets));
        if (incoming.IsRead)
            message->SetFlags(mfRead);
        return message;
    }

    /// An error of the message itself fails the message; one of the station fails the run, because the next message
    /// would meet it too.
    void FailSaving(const QString& name, int number, const QString& description)
    {
        ++Failed_;
        const Failure failure = Station_.FailureOfStation(number, description);
        const bool isOfMessage = number == dao::errOverflow || number == dao::errFieldTooSmall ||
                                 number == dao::errDataTypeConversion || number == dao::errTypeMismatch;
        if (isOfMessage) {
            Terminal::Complain(QStringLiteral("%1 was not filed: %2").arg(name, description));
            if (ExitCode_ == exitOK)
                ExitCode_ = exitData;
            return;
        }
        throw Failure(failure.Code(), QStringLiteral("%1 was not filed. %2").arg(name, failure.Words()));
    }

    Station& Station_;
    bool IsVerbose_;
    qint32 Category_;
    int Filed_ = 0;
    int Failed_ = 0;
    ExitCode ExitCode_ = exitOK;
};

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
    filing.Save(MakeMessage(text), QStringLiteral("The text message from %1").arg(text.From));
}

/// False when Ctrl-C ended it early.
bool FileAll(Filing& filing, MailSources& sources, Station& station)
{
    for (const QString& skipped : sources.Skipped())
        Terminal::Complain(skipped);
    const auto progress = station.Terminal().Progress(QStringLiteral("Filing"));
    IncomingMessage incoming;
    while (sources.Next(incoming)) {
        filing.File(incoming);
        incoming = IncomingMessage();
        const bool goesOn = progress->Advance(sources.Done(), sources.Total());
        if (!goesOn && sources.Done() < sources.Total())
            return false;
    }
    return true;
}

void CheckUsage(const Arguments& arguments)
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
    if (!hasPaths && Terminal::InputIsTerminal())
        throw Failure(exitUsage,
                      QStringLiteral("Name files to file, or send one on standard input. See: tolva file --help"));
}

int Run(const Arguments& arguments)
{
    CheckUsage(arguments);
    QStringList paths = arguments.Words().mid(1);
    if (paths.isEmpty())
        paths.append(QStringLiteral("-"));
    const bool isSMS = arguments.Has(SMSOption);
    Station station(arguments);
    MailSources sources(isSMS ? QStringList() : paths);
    Filing filing(station, arguments);
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
        {QStringLiteral("file FOLDER [--category C] [PATH...|-]"),
         QStringLiteral("file FOLDER --sms --from NUMBER [--to NUMBER]")},
        QStringLiteral(
            "PATH is an .eml file, a folder of .eml files, a maildir or an mbox archive. Without PATH, and for\n"
            "\"-\", one mail comes on standard input; with --sms the text of one text message does.\n"
            "A mail is kept octet by octet. A file that is no mail is named on standard error and passed over.\n"
            "The last line says how many were filed and how many failed."),
        {{CategoryOption, QStringLiteral("C"), QStringLiteral("The folder to file in (Inbox).")},
         {SMSOption, QString(), QStringLiteral("Files a text message (SMS).")},
         {FromOption, QStringLiteral("NUMBER"), QStringLiteral("Who sent the text message: number or name.")},
         {ToOption, QStringLiteral("NUMBER"), QStringLiteral("Where to (the station's SMS number).")},
         {VerboseOption, QString(), QStringLiteral("Says of each message under which number it was filed.")},
         Station::UserOption()},
        QStringLiteral("tolva file /srv/station --category Requests ~/Maildir"),
        1,
        -1,
        Run,
    };
}
