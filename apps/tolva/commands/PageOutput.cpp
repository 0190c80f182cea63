// SPDX-License-Identifier: Apache-2.0
#include "commands/PageOutput.h"

#include "FileOutput.h"
#include "Terminal.h"
#include "common/FileHelper.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>
#endif

namespace
{
const QString OutputName = QStringLiteral("output");
const QString PaperName = QStringLiteral("paper");
const QString ForceName = QStringLiteral("force");
const QString StandardOutput = QStringLiteral("-");
const QString PdfExtension = QStringLiteral(".pdf");

QString PaperOf(const Arguments& arguments)
{
    return arguments.Value(PaperName, QStringLiteral("A4"));
}

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

/// The program for PDF files ends with this one, however this one ends: nobody would take what it makes.
void EndWithThisProgram(QProcess& process)
{
#ifdef Q_OS_LINUX
    const pid_t self = ::getpid();
    process.setChildProcessModifier([self] {
        if (::prctl(PR_SET_PDEATHSIG, SIGTERM) != 0 || ::getppid() != self)
            ::_exit(exitTemporary);
    });
#else
    Q_UNUSED(process);
#endif
}

/// What the program for PDF files said of the page.
QStringList WordsOf(QProcess& process)
{
    static const QString name = QStringLiteral("tolva-pdf: ");
    QStringList words;
    const QStringList lines = QString::fromUtf8(process.readAllStandardError()).split(u'\n');
    for (const QString& line : lines) {
        // What the toolkit notices beside the work is nobody's concern.
        if (line.startsWith(name) && !line.startsWith(name + QStringLiteral("Qt: ")))
            words.append(line.sliced(name.size()).trimmed());
    }
    return words;
}

/// The PDF file of a page. path: what is to be written, for the words of a failure.
QByteArray PdfOf(const QString& path, const QByteArray& page, const QString& paper)
{
    QProcess process;
    EndWithThisProgram(process);
    process.start(PdfProgram(),
                  {QStringLiteral("--paper"), paper, QStringLiteral("--output"), StandardOutput, StandardOutput});
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
    const QStringList words = WordsOf(process);
    if (process.exitCode() != exitOK) {
        throw Failure(static_cast<ExitCode>(process.exitCode()),
                      QStringLiteral("%1 was not written: %2").arg(path, words.join(u' ')));
    }
    for (const QString& line : words)
        Terminal::Complain(line);
    return process.readAllStandardOutput();
}
} // namespace

OptionDefinition PageOutput::FileOption()
{
    return {OutputName, QStringLiteral("FILE"), QStringLiteral("The file to write; also -o FILE."),
            QStringLiteral("o")};
}

OptionDefinition PageOutput::PaperOption()
{
    return {PaperName, QStringLiteral("SIZE"), QStringLiteral("A4 (the default) or Letter, of a PDF file.")};
}

OptionDefinition PageOutput::ForceOption()
{
    return {ForceName, QString(), QStringLiteral("Replaces a file that exists.")};
}

void PageOutput::CheckUsage(const Arguments& arguments, const QString& command)
{
    const QString path = arguments.Value(OutputName);
    if (path.isEmpty())
        throw Failure(exitUsage, QStringLiteral("-o FILE is missing: the .html or .pdf file to write. "
                                                "See: tolva %1 --help")
                                     .arg(command));
    const bool isPage = path == StandardOutput || path.endsWith(u".html", Qt::CaseInsensitive) ||
                        path.endsWith(u".htm", Qt::CaseInsensitive);
    if (!isPage && !IsPdf(path))
        throw Failure(exitUsage, QStringLiteral("%1 must end in .html or .pdf.").arg(path));
    const QString paper = PaperOf(arguments).toLower();
    if (paper != u"a4" && paper != u"letter")
        throw Failure(exitUsage, QStringLiteral("--paper takes \"A4\" or \"Letter\"."));
}

void PageOutput::CheckFile(const Arguments& arguments)
{
    const QString path = arguments.Value(OutputName);
    if (path != StandardOutput && QFileInfo::exists(path) && !arguments.Has(ForceName))
        throw Failure(exitCannotCreate, QStringLiteral("%1 exists; --force replaces it.").arg(path));
    if (IsPdf(path) && !FileHelper::FileExists(PdfProgram()))
        throw Failure(exitUnavailable, QStringLiteral("PDF files need the program %1, which is not there. Install it, "
                                                      "or name a file that ends in .html.")
                                           .arg(PdfProgram()));
}

void PageOutput::Write(const Arguments& arguments, const SafeDocument& document)
{
    const QString path = arguments.Value(OutputName);
    if (document.IsTextOnly)
        Terminal::Complain(QStringLiteral("The page is too large to be laid out; it holds the text alone."));
    QByteArray content = document.Html.toUtf8();
    if (path == StandardOutput)
        return Terminal::PrintOctets(content);
    if (IsPdf(path))
        content = PdfOf(path, content, PaperOf(arguments));
    FileOutput::Write(path, content, arguments.Has(ForceName) ? IfThere::Replace : IfThere::Refuse);
}
