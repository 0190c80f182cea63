// SPDX-License-Identifier: Apache-2.0

// tolva show: one message.

#include "DisplayText.h"
#include "FolderPaths.h"
#include "Station.h"
#include "Terminal.h"
#include "TextOfHtml.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "commands/FieldLines.h"
#include "commands/JsonDate.h"
#include "commands/MessageRow.h"
#include "common/ClockHelper.h"
#include "common/HarmlessText.h"
#include "platform/mail/MessageReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

namespace
{
const QString RawOption = QStringLiteral("raw");
constexpr qsizetype MostBlanks = 1000;
constexpr qsizetype LongestPage = 4'000'000;
/// Of a mail of more parts the first are shown.
constexpr int MostParts = 1000;
/// Characters of a field in JSON.
constexpr qsizetype LongestField = 100'000;
/// Characters of a field in the plain form.
constexpr qsizetype LongestLine = 10'000;

void PrintHeader(const cdo::MessageReader& reader, const char* name)
{
    bool isWhole = true;
    const QString value = reader.Header(name, LongestLine, &isWhole);
    FieldLines::Print(QLatin1String(name), isWhole ? value : value + QStringLiteral(" [It goes on.]"));
}

QString FlagWords(const cMessage& message)
{
    QStringList words = {message.Flags() & mfRead ? QStringLiteral("read") : QStringLiteral("unread")};
    if (message.Flags() & mfSendPending)
        words.append(QStringLiteral("waiting to be sent"));
    if (message.Flags() & mfAutomatic)
        words.append(QStringLiteral("automatic"));
    if (message.PersonalToContact() != 0)
        words.append(QStringLiteral("personal"));
    if (message.HasHighlightWords())
        words.append(QStringLiteral("highlighted"));
    if (message.Priority() > 0)
        words.append(QStringLiteral("urgent"));
    if (message.MessageType() == emtSMS)
        words.append(QStringLiteral("text message"));
    return words.join(QStringLiteral(", "));
}

QString AttachmentWords(const cdo::Attachment& attachment)
{
    const QString name = attachment.FileName.isEmpty() ? QStringLiteral("(no name)") : attachment.FileName;
    return QStringLiteral("%1, %2, %3")
        .arg(name, attachment.ContentType, QLocale::c().formattedDataSize(attachment.Size));
}

/// Prints the text as it is decoded, so that one of megabytes takes no room. False, with nothing printed, for one of
/// blanks alone.
bool PrintText(cdo::MessageReader& reader)
{
    QString blanks;
    QString held; // half a line end
    bool hasWords = false;
    bool endsLine = false;
    reader.ReadText([&](const QString& piece) {
        if (!hasWords && piece.trimmed().isEmpty()) {
            // More than these nobody wants to see.
            blanks = (blanks + piece).left(MostBlanks);
            return;
        }
        QString words = held + (hasWords ? piece : blanks + piece);
        held = words.endsWith(u'\r') ? QStringLiteral("\r") : QString();
        words.chop(held.size());
        hasWords = true;
        if (words.isEmpty())
            return;
        endsLine = words.endsWith(u'\n');
        Terminal::Print(words);
    });
    if (hasWords && !endsLine)
        Terminal::PrintLine(QString());
    return hasWords;
}

void PrintBody(cdo::MessageReader& reader, qint32 reference)
{
    if (PrintText(reader))
        return;
    bool isWhole = true;
    const QString html = reader.HtmlBeginning(LongestPage, &isWhole);
    if (html.isEmpty())
        return;
    Terminal::Print(QStringLiteral("[This message is a web page; here are its words alone. The whole of it: tolva "
                                   "export FOLDER %1 FILE]\n\n")
                        .arg(reference));
    const QString body = TextOfHtml(html);
    Terminal::Print(body.endsWith(u'\n') ? body : body + u'\n');
    if (!isWhole)
        Terminal::PrintLine(QStringLiteral("[The page goes on.]"));
}

void PrintPlain(Station& station, const cMessage& message)
{
    const cdo::Message& mail = *message.CDOMessage();
    cdo::MessageReader reader(mail, MostParts);
    FieldLines::Print(QStringLiteral("Message"), QString::number(message.Reference()));
    FieldLines::Print(QStringLiteral("Folder"), FolderPath(FolderPaths(station.Folders()), message.Category()));
    FieldLines::Print(QStringLiteral("Flags"), FlagWords(message));
    for (const char* name : {"From", "To", "Cc", "Reply-To", "Subject"})
        PrintHeader(reader, name);
    FieldLines::Print(QStringLiteral("Sent"), message.Sent().Format(FieldLines::DateFormat));
    FieldLines::Print(QStringLiteral("Received"), message.Received().Format(FieldLines::DateFormat));
    const QList<cdo::Attachment> attachments = reader.Files();
    for (const cdo::Attachment& attachment : attachments)
        FieldLines::Print(QStringLiteral("Attachment"), AttachmentWords(attachment));
    if (reader.HasMoreParts()) {
        FieldLines::Print(QStringLiteral("Attachment"),
                          QStringLiteral("[There are more. All of them: tolva export FOLDER %1 "
                                         "FILE]")
                              .arg(message.Reference()));
    }
    Terminal::PrintLine(QString());
    PrintBody(reader, message.Reference());
}

QJsonArray JsonAttachments(cdo::MessageReader& reader)
{
    QJsonArray array;
    bool isWhole = true;
    const QList<cdo::Attachment> attachments = reader.Files(reader.HtmlBeginning(LongestPage, &isWhole));
    for (const cdo::Attachment& attachment : attachments) {
        array.append(QJsonObject{{QStringLiteral("name"), attachment.FileName},
                                 {QStringLiteral("type"), attachment.ContentType},
                                 {QStringLiteral("size"), attachment.Size},
                                 {QStringLiteral("contentId"), attachment.ContentID},
                                 {QStringLiteral("inline"), attachment.IsInline}});
    }
    return array;
}

/// Of a text between its quotation marks.
void PrintJsonPiece(const QString& piece)
{
    const QByteArray array = QJsonDocument(QJsonArray{piece}).toJson(QJsonDocument::Compact);
    constexpr qsizetype Frame = 2; // bracket and quotation mark
    Terminal::PrintOctets(HarmlessText::Json(array.sliced(Frame, array.size() - 2 * Frame)));
}

/// The bodies are printed as they are decoded, so that one of megabytes takes no room; fields and attachments beyond
/// any use are cut, which "shortened" names.
void PrintJson(Station& station, const cMessage& message)
{
    cdo::MessageReader reader(*message.CDOMessage(), MostParts);
    QJsonArray shortened;
    const auto header = [&](const char* name, const QString& member) {
        bool isWhole = true;
        QString value = reader.Header(name, LongestField, &isWhole);
        if (!isWhole)
            shortened.append(member);
        return std::pair<QString, QJsonValue>(member, value);
    };
    const auto date = [](Date local) { return JsonDate(ClockHelper::LocalToUTC(local)); };
    QJsonObject object{
        {QStringLiteral("reference"), message.Reference()},
        {QStringLiteral("category"), FolderPath(FolderPaths(station.Folders()), message.Category())},
        header("From", QStringLiteral("from")),
        header("To", QStringLiteral("to")),
        header("Cc", QStringLiteral("cc")),
        header("Reply-To", QStringLiteral("replyTo")),
        header("Subject", QStringLiteral("subject")),
        header("Message-ID", QStringLiteral("messageId")),
        {QStringLiteral("sent"), date(message.Sent())},
        {QStringLiteral("received"), date(message.Received())},
        {QStringLiteral("sendAfter"), date(message.SendAfter())},
        {QStringLiteral("flags"), JsonFlags(message.Flags())},
        {QStringLiteral("type"), TypeName(message.MessageType() == emtSMS)},
        {QStringLiteral("highlighted"), message.HasHighlightWords()},
        {QStringLiteral("priority"), message.Priority()},
        {QStringLiteral("personalToContact"), message.PersonalToContact()},
        {QStringLiteral("damaged"), message.IsDamaged()},
        {QStringLiteral("attachments"), JsonAttachments(reader)},
    };
    if (reader.HasMoreParts())
        shortened.append(QStringLiteral("attachments"));
    object.insert(QStringLiteral("shortened"), shortened);
    QByteArray members = HarmlessText::Json(QJsonDocument(object).toJson(QJsonDocument::Compact));
    members.chop(1); // its closing bracket
    Terminal::PrintOctets(members + ",\"html\":\"");
    reader.ReadHtml(PrintJsonPiece);
    Terminal::PrintOctets("\",\"text\":\"");
    reader.ReadText(PrintJsonPiece);
    Terminal::PrintOctets("\"}\n");
}

int RunShow(const Arguments& arguments)
{
    if (arguments.Has(RawOption) && arguments.Has(JsonOption))
        throw Failure(exitUsage, QStringLiteral("--raw and --json exclude each other."));
    ToReference(arguments.Words().at(1)); // a wrong one is told before anything is opened
    Station station(arguments);
    const cMessagePtr message = station.Message(arguments.Words().at(1));
    if (arguments.Has(RawOption))
        Terminal::PrintOctets(message->CDOMessage()->Octets());
    else if (arguments.Has(JsonOption))
        PrintJson(station, *message);
    else
        PrintPlain(station, *message);
    return station.TellDamage(*message);
}
} // namespace

CommandDefinition ShowCommand()
{
    return {
        QStringLiteral("show"),
        QStringLiteral("Shows one message."),
        {QStringLiteral("show FOLDER REF [--raw|--json]")},
        QStringLiteral(
            "REF is the message's number in the list. The message stays unread. Of a message that is only a web page\n"
            "the words are shown, as well as that goes without laying the page out. Of a damaged message what there is "
            "of it\n"
            "is shown, and what to do is told; the exit code is 65."),
        {{RawOption, QString(), QStringLiteral("The message as it arrived, octet by octet.")},
         {JsonOption, QString(), QStringLiteral("All of it as one JSON object.")},
         Station::UserOption()},
        QStringLiteral("tolva show /srv/station 27"),
        2,
        2,
        RunShow,
    };
}
