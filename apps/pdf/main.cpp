// SPDX-License-Identifier: Apache-2.0

// tolva-pdf: an HTML page as a PDF file. Nothing on the page runs and nothing is fetched for it. Needs no display.

#include "FileOutput.h"
#include "StandardStreams.h"
#include "Terminal.h"
#include "common/FileHelper.h"
#include "platform/widgets/PrintedPages.h"

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>

#include <cmath>
#include <csignal>
#include <cstdio>

namespace
{
constexpr double LargestMargin = 80;                // millimetres
const QString StandardOutput = QStringLiteral("-"); // or input

/// What is written from here on is written to its end, so that no half-made file stays behind.
void HoldSignals()
{
#ifndef Q_OS_WIN
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
#endif
}

QByteArray ReadPage(const QString& name)
{
    QFile file(name);
    const bool isOpen = name == StandardOutput ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!isOpen)
        throw Failure(exitNoInput, QStringLiteral("%1 cannot be read: %2").arg(name, file.errorString()));
    QByteArray page = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw Failure(exitInputOutput, QStringLiteral("%1 could not be read: %2").arg(name, file.errorString()));
    return page;
}

QSizeF PaperOf(const QString& name)
{
    if (name.compare(u"A4", Qt::CaseInsensitive) == 0)
        return PaperSetup::A4;
    if (name.compare(u"Letter", Qt::CaseInsensitive) == 0)
        return PaperSetup::Letter;
    throw Failure(exitUsage, QStringLiteral("--paper takes \"A4\" or \"Letter\"."));
}

/// One number for all sides, or top, right, bottom and left.
QMarginsF MarginsOf(const QString& text)
{
    QList<double> numbers;
    for (const QString& word : text.split(u',')) {
        bool isNumber = false;
        numbers.append(word.trimmed().toDouble(&isNumber));
        if (!isNumber || !std::isfinite(numbers.last()) || numbers.last() < 0 || numbers.last() > LargestMargin)
            numbers.clear();
        if (numbers.isEmpty())
            break;
    }
    if (numbers.size() == 1)
        return {numbers[0], numbers[0], numbers[0], numbers[0]};
    if (numbers.size() == 4)
        return {numbers[3], numbers[0], numbers[1], numbers[2]};
    throw Failure(exitUsage, QStringLiteral("--margins takes one number of millimetres, or four with commas between "
                                            "them (top, right, bottom, left), up to 80."));
}

int Run(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes an HTML page to a PDF file. Nothing on the page runs and nothing is fetched for it."));
    const QCommandLineOption output({QStringLiteral("o"), QStringLiteral("output")},
                                    QStringLiteral("The PDF file; it appears when it is whole. \"-\" is standard "
                                                   "output."),
                                    QStringLiteral("FILE"));
    const QCommandLineOption paper(QStringLiteral("paper"), QStringLiteral("A4 (the default) or Letter."),
                                   QStringLiteral("SIZE"), QStringLiteral("A4"));
    const QCommandLineOption margins(QStringLiteral("margins"),
                                     QStringLiteral("Millimetres: one number, or top,right,bottom,left. Otherwise 15."),
                                     QStringLiteral("MM"), QStringLiteral("15"));
    const QCommandLineOption unnumbered(QStringLiteral("no-page-numbers"),
                                        QStringLiteral("Without \"Page 1 of 2\" below."));
    parser.addOptions({output, paper, margins, unnumbered});
    parser.addPositionalArgument(QStringLiteral("PAGE"),
                                 QStringLiteral("The page's file, or \"-\" for standard input."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    if (!parser.parse(arguments))
        throw Failure(exitUsage, parser.errorText());
    if (parser.isSet(help) || parser.isSet(version)) {
        const QString text = parser.isSet(help) ? parser.helpText()
                                                : QStringLiteral("tolva-pdf %1\n").arg(QStringLiteral(TOLVA_VERSION));
        Terminal::Print(text);
        return exitOK;
    }
    if (parser.positionalArguments().size() != 1 || parser.value(output).isEmpty())
        throw Failure(exitUsage, QStringLiteral("One page and -o FILE are needed. See: tolva-pdf --help"));
    PaperSetup setup;
    setup.Paper = PaperOf(parser.value(paper));
    setup.Margins = MarginsOf(parser.value(margins));
    setup.NumbersPages = !parser.isSet(unnumbered);
    const QString html = FileHelper::DecodeText(ReadPage(parser.positionalArguments().first()));
    const PrintedPages pages(MakeDocumentSafe(html), setup);
    if (pages.HasPlainText())
        Terminal::Complain(
            QStringLiteral("The page is too long to be laid out whole; a line says where it goes on as plain text."));
    QString problem;
    const QByteArray pdf = pages.Pdf(problem);
    if (pdf.isEmpty())
        throw Failure(exitSoftware, problem);
    HoldSignals();
    if (parser.value(output) == StandardOutput)
        Terminal::PrintOctets(pdf);
    else
        FileOutput::Write(parser.value(output), pdf, IfThere::Replace);
    return exitOK;
}
} // namespace

int main(int argc, char** argv)
{
    StandardStreams::HoldPlaces();
#ifndef Q_OS_WIN
    // It shows nothing, so it needs no display and asks none.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
    // Before the application, which may have something to tell itself.
    QGuiApplication::setApplicationName(QStringLiteral("tolva-pdf"));
    Terminal::TakeMessagesOfQt();
    const QGuiApplication application(argc, argv);
    try {
        const int code = Run(QGuiApplication::arguments());
        if (!Terminal::Flush())
            throw Failure(exitInputOutput, QStringLiteral("The output could not be written."));
        return code;
    } catch (...) {
        const Failure failure = UnexpectedFailure();
        Terminal::Complain(failure.Words());
        return failure.Code();
    }
}
