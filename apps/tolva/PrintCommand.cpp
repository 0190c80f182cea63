// tolva print: messages on pages, as an HTML page or a PDF file.

#include "Commands.h"
#include "FolderNames.h"
#include "PagePrinting.h"
#include "Station.h"
#include "Terminal.h"
#include "common/FileHelper.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>

namespace
{
const QString OutputOption = QStringLiteral("output");
const QString CategoryOption = QStringLiteral("category");
const QString BoldOption = QStringLiteral("unread-bold");
const QString ItalicOption = QStringLiteral("pending-italic");
const QString PageEachOption = QStringLiteral("page-each");
const QString PaperOption = QStringLiteral("paper");
const QString ForceOption = QStringLiteral("force");
const QString StandardOutput = QStringLiteral("-");
const QString PdfExtension = QStringLiteral(".pdf");

/// What turns pages into PDF files. It stands beside this program, which knows nothing of fonts and paper.
QString PdfProgram()
{
    QString name = QStringLiteral("tolva-pdf");
#ifdef Q_OS_WIN
    name += QStringLiteral(".exe");
#endif
    return FileHelper::Join(QCoreApplication::applicationDirPath(), name);
}

bool IsPdf(const QString& path)
{
    return path.endsWith(PdfExtension, Qt::CaseInsensitive);
}

/// All that can be told before the station is opened.
void CheckUsage(const Arguments& arguments)
{
    const QString path = arguments.Value(OutputOption);
    if (path.isEmpty())
        throw Failure(exitUsage, QStringLiteral("-o FILE is missing: the .html or .pdf file to write. "
                                                "See: tolva print --help"));
    const bool isPage = path == StandardOutput || path.endsWith(u".html", Qt::CaseInsensitive) ||
                        path.endsWith(u".htm", Qt::CaseInsensitive);
    if (!isPage && !IsPdf(path))
        throw Failure(exitUsage, QStringLiteral("%1 must end in .html or .pdf.").arg(path));
    const QString paper = arguments.Value(PaperOption, QStringLiteral("A4")).toLower();
    if (paper != u"a4" && paper != u"letter")
        throw Failure(exitUsage, QStringLiteral("--paper takes \"A4\" or \"Letter\"."));
    const bool hasReferences = arguments.Words().size() > 2;
    if (hasReferences == arguments.Has(CategoryOption))
        throw Failure(exitUsage, hasReferences
                                     ? QStringLiteral("Numbers of messages and --category exclude each other.")
                                     : QStringLiteral("Name messages by their numbers, or a folder with "
                                                      "--category. See: tolva print --help"));
    for (const QString& words : arguments.Words().mid(2))
        ToReference(words);
    if (path != StandardOutput && QFileInfo::exists(path) && !arguments.Has(ForceOption))
        throw Failure(exitCannotCreate, QStringLiteral("%1 exists; --force replaces it.").arg(path));
    if (IsPdf(path) && !FileHelper::FileExists(PdfProgram()))
        throw Failure(exitUnavailable, QStringLiteral("PDF files need the program %1, which is not there. Install it, "
                                                      "or name a file that ends in .html.")
                                           .arg(PdfProgram()));
}

QList<qint32> ReferencesOfFolder(Station& station, const QString& folder)
{
    const qint32 category = FindFolder(station.Folders(), folder);
    return station.Try([&] {
        const auto rows = station.Database().OpenMessageRows({QStringLiteral("Reference")},
                                                             QStringLiteral("[Category]=%1").arg(category),
                                                             QStringLiteral("[Sent] DESC, [Reference]"));
        QList<qint32> references;
        for (; !rows->AtEOF(); rows->MoveNext())
            references.append(rows->Collect(QStringLiteral("Reference")).toInt());
        return references;
    });
}

/// False when Ctrl-C ended it early. A message of the folder that is deleted meanwhile is left out.
bool PrepareFolder(PagePrinting::PreparedMessages& prepared, Station& station, const QList<qint32>& references)
{
    const auto progress = station.Terminal().Progress(QStringLiteral("Reading messages"));
    qint64 done = 0;
    for (const qint32 reference : references) {
        if (!progress->Advance(done++, references.size()))
            return false;
        const cMessagePtr message = station.Try([&] { return station.Database().GetMessage(reference); });
        if (message && !prepared.Add(message))
            throw Failure(exitData, QStringLiteral("These are more messages than one page takes (32,767)."));
    }
    return true;
}

void WritePage(const QString& path, const QByteArray& page)
{
    if (path == StandardOutput)
        return Terminal::PrintOctets(page);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw Failure(exitCannotCreate, QStringLiteral("%1 cannot be made: %2").arg(path, file.errorString()));
    if (file.write(page) != page.size() || !file.commit())
        throw Failure(exitInputOutput, QStringLiteral("%1 could not be written: %2").arg(path, file.errorString()));
}

void WritePdf(const QString& path, const QByteArray& page, const QString& paper)
{
    QProcess process;
    process.start(PdfProgram(), {QStringLiteral("--paper"), paper, QStringLiteral("--output"),
                                 QFileInfo(path).absoluteFilePath(), StandardOutput});
    if (!process.waitForStarted(-1))
        throw Failure(exitUnavailable,
                      QStringLiteral("%1 cannot be started: %2").arg(PdfProgram(), process.errorString()));
    process.write(page);
    process.closeWriteChannel();
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit)
        throw Failure(
            exitSoftware,
            QStringLiteral("%1 ended in the middle of its work; %2 was not written.").arg(PdfProgram(), path));
    if (process.exitCode() == exitOK)
        return;
    // What it says last is why it ended.
    const QString words = QString::fromUtf8(process.readAllStandardError()).trimmed().section(u'\n', -1);
    throw Failure(static_cast<ExitCode>(process.exitCode()),
                  QStringLiteral("%1 was not written: %2").arg(path, words.section(QStringLiteral("tolva-pdf: "), -1)));
}

int Run(const Arguments& arguments)
{
    CheckUsage(arguments);
    const QString path = arguments.Value(OutputOption);
    Station station(arguments);
    const PagePrinting::PageTemplate pageTemplate =
        PagePrinting::FindTemplate(station.Database(), arguments.Words().at(1));
    PagePrinting::PreparedMessages prepared;
    if (arguments.Has(CategoryOption)) {
        const QList<qint32> references = ReferencesOfFolder(station, arguments.Value(CategoryOption));
        if (!PrepareFolder(prepared, station, references)) {
            Terminal::Complain(QStringLiteral("Ended early by Ctrl-C; nothing was written."));
            return exitInterrupted;
        }
    }
    for (const QString& words : arguments.Words().mid(2))
        prepared.Add(station.Message(words));

    PagePrinting::PageOptions options;
    options.UnreadIsBold = arguments.Has(BoldOption);
    options.PendingIsItalic = arguments.Has(ItalicOption);
    options.PageEach = arguments.Has(PageEachOption);
    const SafeDocument document = prepared.Fill(pageTemplate, options);
    if (document.IsTextOnly)
        Terminal::Complain(QStringLiteral("The page is too large to be laid out; it holds the text alone."));
    if (const QString words = PagePrinting::WithheldWords(prepared.CountWithheld()); !words.isEmpty())
        Terminal::Complain(words);
    if (IsPdf(path))
        WritePdf(path, document.Html.toUtf8(), arguments.Value(PaperOption, QStringLiteral("A4")));
    else
        WritePage(path, document.Html.toUtf8());
    return exitOK;
}
} // namespace

CommandDefinition PrintCommand()
{
    return {
        QStringLiteral("print"),
        QStringLiteral("Writes messages to an HTML page or a PDF file."),
        {QStringLiteral("print FOLDER TEMPLATE REF... -o FILE"),
         QStringLiteral("print FOLDER TEMPLATE --category C -o FILE")},
        QStringLiteral(
            "TEMPLATE is one of the station's page templates by its name, such as \"Message-Single message\" or\n"
            "\"Studio list\", or the path of a template file. FILE ends in .html or .pdf and appears when it is "
            "whole;\n"
            "\"-\" is an HTML page on standard output. Nothing in a message runs on the page, and nothing is fetched "
            "for\n"
            "it; what was left out for that is said on standard error."),
        {{OutputOption, QStringLiteral("FILE"), QStringLiteral("The file to write; also -o FILE."),
          QStringLiteral("o")},
         {CategoryOption, QStringLiteral("C"), QStringLiteral("All messages of a folder, the newest first.")},
         {BoldOption, QString(), QStringLiteral("Bodies of unread messages in bold.")},
         {ItalicOption, QString(), QStringLiteral("Bodies of messages that wait to be sent in italics.")},
         {PageEachOption, QString(), QStringLiteral("Each message begins a page.")},
         {PaperOption, QStringLiteral("SIZE"), QStringLiteral("A4 (the default) or Letter, of a PDF file.")},
         {ForceOption, QString(), QStringLiteral("Replaces a file that exists.")},
         Station::UserOption()},
        QStringLiteral("tolva print /srv/station \"Studio list\" --category Requests -o tonight.pdf"),
        2,
        -1,
        Run,
    };
}
