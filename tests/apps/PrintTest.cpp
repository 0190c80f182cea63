// SPDX-License-Identifier: Apache-2.0

// tolva print and tolva-pdf.

#include "CommandLineTest.h"

#include <QElapsedTimer>

#ifndef Q_OS_WIN
#include <arpa/inet.h>
#include <csignal>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace
{
const QString Single = QStringLiteral("Message-Single message");
const QString Whole = QStringLiteral("MessageList-Whole messages");
const QString Output = QStringLiteral("-o");

QByteArray HtmlMail(const QByteArray& html)
{
    return "From: Ann <ann@example.com>\r\nTo: studio@example.org\r\nSubject: A page\r\n"
           "Date: Fri, 20 Nov 2026 09:00:00 +0000\r\nMIME-Version: 1.0\r\n"
           "Content-Type: text/html; charset=utf-8\r\n\r\n" +
           html + "\r\n";
}

/// One red pixel.
const QByteArray Pixel = "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVR4nGP4z8AAAAMBAQDJ/pLvAAAAAElFTkSuQmCC";

qsizetype Pages(const QByteArray& pdf)
{
    return pdf.count("/Type /Page\n");
}

#ifndef Q_OS_WIN
/// A server that notes whether anybody called.
class SilentServer
{
public:
    SilentServer()
    {
        Socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        EXPECT_EQ(::bind(Socket_, reinterpret_cast<const sockaddr*>(&address), size), 0);
        EXPECT_EQ(::listen(Socket_, 8), 0);
        EXPECT_EQ(::getsockname(Socket_, reinterpret_cast<sockaddr*>(&address), &size), 0);
        Port_ = ntohs(address.sin_port);
    }
    ~SilentServer() { ::close(Socket_); }
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;

    QByteArray Address() const { return "http://127.0.0.1:" + QByteArray::number(Port_); }
    bool WasCalled() const
    {
        const int caller = ::accept(Socket_, nullptr, nullptr);
        if (caller >= 0)
            ::close(caller);
        return caller >= 0;
    }

private:
    int Socket_ = -1;
    int Port_ = 0;
};
#endif
} // namespace

class PrintTest : public CommandLineTest
{
protected:
    QString Page() const { return Path(QStringLiteral("out.html")); }
    QString Pdf() const { return Path(QStringLiteral("out.pdf")); }
    QString PrintPage(const QStringList& words) const
    {
        Expect("print", words + QStringList{Output, Page(), QStringLiteral("--force")});
        return QString::fromUtf8(Read(Page()));
    }
    QByteArray PrintPdf(const QStringList& words) const
    {
        Expect("print", words + QStringList{Output, Pdf(), QStringLiteral("--force")});
        return Read(Pdf());
    }
    /// Runs tolva-pdf.
    Outcome RunPdf(const QStringList& words, const QByteArray& input = {}) const
    {
        QProcess process;
        Prepare(process, words);
        process.setProgram(QStringLiteral(TOLVA_PDF_PROGRAM));
        process.start();
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
};

TEST_F(PrintTest, APageHoldsWhoWroteWhenAndTheWholeText)
{
    const QString reference = FileMail("From: Ann Other <ann@example.com>\r\nTo: studio@example.org\r\n"
                                       "Subject: The <ferry> song\r\nDate: Fri, 20 Nov 2026 09:00:00 +0000\r\n"
                                       "Content-Type: text/plain; charset=utf-8\r\n\r\n"
                                       "First line\r\n  & a second with \xE2\x80\x9Cquotes\xE2\x80\x9D\r\n");
    const QString page = PrintPage({Single, reference});
    EXPECT_TRUE(page.contains(QStringLiteral("Ann Other &lt;ann@example.com&gt;")));
    EXPECT_TRUE(page.contains(QStringLiteral("studio@example.org")));
    EXPECT_TRUE(page.contains(QStringLiteral("The &lt;ferry&gt; song")));
    EXPECT_TRUE(page.contains(QStringLiteral("20 Nov 2026 09:00:00")));
    EXPECT_TRUE(page.contains(QStringLiteral("First line\n  &amp; a second with \u201Cquotes\u201D")));
    EXPECT_TRUE(page.contains(QStringLiteral("white-space: pre-wrap")));
    EXPECT_FALSE(page.contains(QStringLiteral("ZRT_"), Qt::CaseInsensitive));
}

TEST_F(PrintTest, NothingInAHostileMailRunsOrFetches)
{
    const QString reference = FileMail(HtmlMail(
        "<html><head><style>@import 'http://evil.example/a.css'; body{background:url(http://evil.example/b)}"
        ".body{display:none}</style><base href='http://evil.example/'><meta http-equiv=refresh content='0;url=x'>"
        "</head><body onload=alert(1)><script>alert(1)</script><p>Words that stay</p>"
        "<img src='http://evil.example/c.png' onerror=alert(1)><img srcset='http://evil.example/d 2x'>"
        "<div style='background:url(//evil.example/e);position:fixed;top:0'>over</div>"
        "<iframe srcdoc='<script>1</script>'></iframe><svg><script>alert(1)</script></svg>"
        "<form action='http://evil.example/'><input name=a></form><a href='javascript:alert(1)'>x</a>"
        "<object data='http://evil.example/f'></object><video poster='http://evil.example/g'></video>"
        "</div></body></html><script>alert(2)</script>"));
    const Outcome outcome = OnStation("print", {Single, reference, Output, Page()});
    EXPECT_EQ(outcome.Code, 0);
    EXPECT_EQ(outcome.Problems,
              "tolva: Pictures of one message would have been fetched from elsewhere and were left out.\n");
    const QByteArray page = Read(Page()).toLower();
    EXPECT_TRUE(page.contains("words that stay"));
    for (const char* harmful :
         {"//evil.example", "=\"evil", "<script", "alert(", "onload", "onerror", "javascript:", "<iframe", "<svg",
          "<form", "<input", "<object", "<video", "<base", "refresh", "@import", "url(", "position", "display: none"})
        EXPECT_FALSE(page.contains(harmful)) << harmful;
    EXPECT_TRUE(page.contains("content=\"default-src 'none'; style-src 'unsafe-inline'; img-src data:;"));
    // The policy stands in front of whatever it is to judge.
    EXPECT_LT(page.indexOf("content-security-policy"), page.indexOf("<title"));
}

TEST_F(PrintTest, AMailsPageCannotLeaveItsPlaceOnTheTemplate)
{
    const QString reference =
        FileMail(HtmlMail("</div></td></tr></table></body></html><h1>Message 1 of the boss</h1>"));
    const QString page = PrintPage({Single, reference});
    // What stands behind the body on the template stands behind it on the page, outside it.
    EXPECT_GT(page.indexOf(QStringLiteral("<p class=\"number\">")), page.indexOf(QStringLiteral("of the boss")));
    EXPECT_EQ(page.count(QStringLiteral("<body")), 1);
    EXPECT_EQ(page.count(QStringLiteral("<h1")), 1);
}

TEST_F(PrintTest, AListShowsTheFirstLinesOfAMailInHtmlAlone)
{
    const QString reference = FileMail(HtmlMail("<p>First <b>part</b><p><font color=red>Second</font> part<p>Third"));
    const QString page = PrintPage({QStringLiteral("MessageList-List"), reference});
    EXPECT_TRUE(page.contains(QStringLiteral("<div class=\"short\">First part\nSecond part</div>")))
        << page.toStdString();
    EXPECT_FALSE(page.contains(QStringLiteral("Third")));
}

TEST_F(PrintTest, APictureWithinTheMailIsOnThePage)
{
    const QString reference = FileMail(
        "From: Ann <ann@example.com>\r\nSubject: A picture\r\nMIME-Version: 1.0\r\n"
        "Content-Type: multipart/related; boundary=x\r\n\r\n--x\r\nContent-Type: text/html\r\n\r\n"
        "<p>Look: <img src=\"cid:pixel@here\"></p>\r\n--x\r\nContent-Type: image/png\r\nContent-ID: <pixel@here>\r\n"
        "Content-Transfer-Encoding: base64\r\n\r\n" +
        Pixel + "\r\n--x--\r\n");
    EXPECT_TRUE(PrintPage({Single, reference}).contains(QStringLiteral("src=\"data:image/png;base64,")));
    EXPECT_TRUE(PrintPdf({Single, reference}).contains("/Subtype /Image"));
}

TEST_F(PrintTest, AnUnknownTemplateIsRefusedWithTheNamesOfThoseThereAre)
{
    const QString reference = FileMail(Mail("A card"));
    const Outcome outcome = OnStation("print", {QStringLiteral("Message-Nothing"), reference, Output, Page()});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_EQ(outcome.Problems,
              "tolva: There is no template \"Message-Nothing\". There are: Message-Single message, MessageList-List, "
              "MessageList-One message a page, MessageList-Studio list, MessageList-Whole messages.\n");
    EXPECT_FALSE(QFile::exists(Page()));
    EXPECT_EQ(OnStation("print", {QStringLiteral("../../../etc/passwd"), reference, Output, Page()}).Code, 65);
}

TEST_F(PrintTest, AMissingMessageIsAnErrorBeforeAnythingIsWritten)
{
    const QString reference = FileMail(Mail("A card"));
    const Outcome outcome = OnStation("print", {Single, reference, QStringLiteral("4711"), Output, Page()});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_TRUE(outcome.Problems.startsWith("tolva: There is no message 4711 in the station in "));
    EXPECT_FALSE(QFile::exists(Page()));
}

TEST_F(PrintTest, AFileThatExistsIsReplacedOnlyWhenAskedFor)
{
    const QString reference = FileMail(Mail("A card"));
    Write(QStringLiteral("out.html"), "precious");
    EXPECT_EQ(OnStation("print", {Single, reference, Output, Page()}).Code, 73);
    EXPECT_EQ(Read(Page()), "precious");
    EXPECT_TRUE(PrintPage({Single, reference}).contains(QStringLiteral("A card")));
}

TEST_F(PrintTest, WhatTheCommandDoesNotTakeIsToldBeforeTheStationIsOpened)
{
    const auto codeOf = [this](const QStringList& words) {
        return Run(QStringList{QStringLiteral("print"), Path(QStringLiteral("no station"))} + words).Code;
    };
    EXPECT_EQ(codeOf({Single, QStringLiteral("1")}), 64);
    EXPECT_EQ(codeOf({Single, Output, Page()}), 64);
    EXPECT_EQ(
        codeOf({Single, QStringLiteral("1"), QStringLiteral("--category"), QStringLiteral("Inbox"), Output, Page()}),
        64);
    EXPECT_EQ(codeOf({Single, QStringLiteral("one"), Output, Page()}), 64);
    EXPECT_EQ(codeOf({Single, QStringLiteral("1"), Output, Path(QStringLiteral("out.txt"))}), 64);
    EXPECT_EQ(codeOf({Single, QStringLiteral("1"), Output, Pdf(), QStringLiteral("--paper"), QStringLiteral("A5")}),
              64);
    EXPECT_EQ(codeOf({Single, QStringLiteral("1"), Output, Page()}), 66);
}

TEST_F(PrintTest, AFolderIsPrintedTheNewestFirst)
{
    FileMail("Date: Fri, 20 Nov 2026 09:00:00 +0000\r\nSubject: Older\r\nFrom: a@example.com\r\n\r\nOne\r\n");
    FileMail("Date: Fri, 20 Nov 2026 10:00:00 +0000\r\nSubject: Newer\r\nFrom: a@example.com\r\n\r\nTwo\r\n");
    const QString page = PrintPage({QStringLiteral("list"), QStringLiteral("--category"), QStringLiteral("Inbox")});
    EXPECT_TRUE(page.contains(QStringLiteral("Number of messages: 2")));
    EXPECT_LT(page.indexOf(QStringLiteral("Newer")), page.indexOf(QStringLiteral("Older")));
}

TEST_F(PrintTest, AnEmptyFolderIsAPageWithoutMessages)
{
    const QString page =
        PrintPage({QStringLiteral("MessageList-List"), QStringLiteral("--category"), QStringLiteral("Saved")});
    EXPECT_TRUE(page.contains(QStringLiteral("Number of messages: 0")));
}

TEST_F(PrintTest, UnreadBodiesAreBoldAndThoseThatWaitItalicWhenAskedFor)
{
    const QString reference = FileMail(Mail("A card", "Plain words\r\n"));
    const QString bold = QStringLiteral("<b>Plain words");
    EXPECT_FALSE(PrintPage({Single, reference}).contains(bold));
    EXPECT_TRUE(PrintPage({Single, reference, QStringLiteral("--unread-bold")}).contains(bold));
    Expect("mark", {reference, QStringLiteral("read")});
    EXPECT_FALSE(PrintPage({Single, reference, QStringLiteral("--unread-bold")}).contains(bold));
}

TEST_F(PrintTest, EachMessageBeginsAPageWhenAskedFor)
{
    QStringList references;
    for (const char* subject : {"One", "Two", "Three"})
        references.append(FileMail(Mail(subject)));
    EXPECT_EQ(Pages(PrintPdf(QStringList(Whole) + references)), 1);
    EXPECT_EQ(Pages(PrintPdf(QStringList(Whole) + references + QStringList(QStringLiteral("--page-each")))), 3);
    EXPECT_EQ(Pages(PrintPdf(QStringList(QStringLiteral("One message a page")) + references)), 3);
}

TEST_F(PrintTest, ALongMessageGoesOnToTheNextPage)
{
    const QString reference = FileMail(Mail("Long", QByteArray("A line of the message.\r\n").repeated(70)));
    EXPECT_EQ(Pages(PrintPdf({Single, reference})), 2);
}

TEST_F(PrintTest, ThePaperIsA4OrLetter)
{
    const QString reference = FileMail(Mail("A card"));
    EXPECT_TRUE(PrintPdf({Single, reference}).contains("/MediaBox [0 0 595.000000 842.000000]"));
    EXPECT_TRUE(PrintPdf({Single, reference, QStringLiteral("--paper"), QStringLiteral("Letter")})
                    .contains("/MediaBox [0 0 612.000000 792.000000]"));
}

TEST_F(PrintTest, TheStationsOwnTemplateAndOneByItsPathAreFilled)
{
    const QString reference = FileMail(Mail("A card"));
    Write(QStringLiteral("station/HTMLDocs/Message-Ours.htm"),
          "<p>Ours: <ZRT_MESSAGE_SUBJECT></p><script src='http://evil.example/'></script>");
    const QString ours = PrintPage({QStringLiteral("ours"), reference});
    EXPECT_TRUE(ours.contains(QStringLiteral("<p>Ours: A card</p>")));
    EXPECT_FALSE(ours.contains(QStringLiteral("evil")));
    const QString path = Write(QStringLiteral("elsewhere.htm"), "<p>Elsewhere: <ZRT_MESSAGE_SUBJECT></p>");
    EXPECT_TRUE(PrintPage({path, reference}).contains(QStringLiteral("<p>Elsewhere: A card</p>")));
}

TEST_F(PrintTest, APageOnStandardOutput)
{
    const QString reference = FileMail(Mail("A card"));
    EXPECT_TRUE(Expect("print", {Single, reference, Output, QStringLiteral("-")}).contains("A card"));
}

TEST_F(PrintTest, WhereNothingCanBeMadeIsAnError)
{
    const QString reference = FileMail(Mail("A card"));
    EXPECT_EQ(OnStation("print", {Single, reference, Output, Path(QStringLiteral("no/folder/x.html"))}).Code, 73);
    const Outcome outcome = OnStation("print", {Single, reference, Output, Path(QStringLiteral("no/folder/x.pdf"))});
    EXPECT_EQ(outcome.Code, 73);
    EXPECT_TRUE(outcome.Problems.contains("x.pdf could not be written: there is no such file or folder."))
        << outcome.Problems.constData();
}

TEST_F(PrintTest, WithoutTheProgramForPdfFilesItSaysWhatIsMissing)
{
    const QString reference = FileMail(Mail("A card"));
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("alone"))));
    const QString program = Path(QStringLiteral("alone/tolva"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(TOLVA_PROGRAM), program));
    QProcess process;
    Prepare(process, {QStringLiteral("print"), Station(), Single, reference, Output, Pdf()});
    process.setProgram(program);
    process.start();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 69);
    EXPECT_EQ(process.readAllStandardError(), "tolva: PDF files need the program " +
                                                  Path(QStringLiteral("alone/tolva-pdf")).toUtf8() +
                                                  ", which is not there. Install it, or name a file that ends in "
                                                  ".html.\n");
    EXPECT_FALSE(QFile::exists(Pdf()));
}

#ifndef Q_OS_WIN
TEST_F(PrintTest, APdfFetchesNothingAndReadsNoFileOfTheMachine)
{
    const SilentServer server;
    const QString picture = Write(QStringLiteral("private.png"), QByteArray::fromBase64(Pixel));
    const QByteArray address = server.Address();
    const QByteArray page = "<html><head><link rel=stylesheet href='" + address + "/a.css'><style>@import '" + address +
                            "/b.css'; body{background:url(" + address + "/c)}</style></head><body background='" +
                            address + "/d'><img src='" + address + "/e.png'><img src='file://" + picture.toUtf8() +
                            "'><img src='" + picture.toUtf8() + "'><p style=\"background:url('" + address +
                            "/f')\">Words</p></body></html>";
    EXPECT_EQ(RunPdf({QStringLiteral("-"), Output, Pdf()}, page).Code, 0);
    EXPECT_FALSE(server.WasCalled());
    EXPECT_EQ(Pages(Read(Pdf())), 1);
    EXPECT_FALSE(Read(Pdf()).contains("/Subtype /Image"));
    const QString reference = FileMail(HtmlMail(page));
    OnStation("print", {Single, reference, Output, Pdf(), QStringLiteral("--force")});
    EXPECT_FALSE(server.WasCalled());
}
#endif

TEST_F(PrintTest, ThePdfProgramNeedsNoDisplay)
{
    const QString page = Write(QStringLiteral("page.html"), "<title>A title</title><p>Words</p>");
    QProcess process;
    Prepare(process, {page, Output, Pdf(), QStringLiteral("--margins"), QStringLiteral("10,20,10,20")});
    QProcessEnvironment environment = process.processEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(name));
    process.setProcessEnvironment(environment);
    process.setProgram(QStringLiteral(TOLVA_PDF_PROGRAM));
    process.start();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    EXPECT_TRUE(Read(Pdf()).startsWith("%PDF-"));
}

TEST_F(PrintTest, ThePdfProgramRefusesWhatItDoesNotTakeAndLeavesTheFile)
{
    Write(QStringLiteral("out.pdf"), "precious");
    EXPECT_EQ(RunPdf({Output, Pdf()}).Code, 64);
    EXPECT_EQ(RunPdf({QStringLiteral("-")}).Code, 64);
    EXPECT_EQ(RunPdf({QStringLiteral("-"), Output, Pdf(), QStringLiteral("--margins"), QStringLiteral("wide")}).Code,
              64);
    EXPECT_EQ(RunPdf({QStringLiteral("-"), Output, Pdf(), QStringLiteral("--margins"), QStringLiteral("1,2")}).Code,
              64);
    EXPECT_EQ(RunPdf({QStringLiteral("-"), Output, Pdf(), QStringLiteral("--paper"), QStringLiteral("A3")}).Code, 64);
    EXPECT_EQ(RunPdf({Path(QStringLiteral("absent.html")), Output, Pdf()}).Code, 66);
    EXPECT_EQ(Read(Pdf()), "precious");
}

TEST_F(PrintTest, ATagInAMailIsNeverFilled)
{
    const QString template_ = Write(QStringLiteral("t.htm"), "<p>S <ZRT_MESSAGE_SUBJECT></p><p>F <ZRT_MESSAGE_FROM></p>"
                                                             "<div>B <ZRT_MESSAGE_BODY></div>");
    const QString text = FileMail("From: \"<ZRT_MESSAGE_TO>\" <a@example.org>\r\nTo: secret@example.org\r\n"
                                  "Subject: see <ZRT_MESSAGE_TO> and <ZRT_MESSAGE_BODY>\r\n\r\n"
                                  "words <ZRT_MESSAGE_TO> <ZRT_MESSAGE_TEXTBODYSHORT>\r\n");
    const QString page = PrintPage({template_, text});
    EXPECT_FALSE(page.contains(QStringLiteral("secret@example.org")));
    EXPECT_TRUE(page.contains(QStringLiteral("S see &lt;ZRT_MESSAGE_TO&gt; and &lt;ZRT_MESSAGE_BODY&gt;")))
        << page.toStdString();
    EXPECT_TRUE(page.contains(QStringLiteral("words &lt;ZRT_MESSAGE_TO&gt; &lt;ZRT_MESSAGE_TEXTBODYSHORT&gt;")))
        << page.toStdString();
}

TEST_F(PrintTest, ATemplateBuiltToOverflowPrintsItsText)
{
    const QByteArray page = "<!-->" + QByteArray("<table><tr><td>").repeated(3000) + "the end <ZRT_MESSAGE_SUBJECT>";
    const QString reference = FileMail(Mail("Hostile"));
    const QString path = Write(QStringLiteral("nested.htm"), page);
    const Outcome outcome = OnStation("print", {path, reference, Output, Pdf()});
    EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("holds the text alone")) << outcome.Problems.constData();
    EXPECT_TRUE(Read(Pdf()).startsWith("%PDF-"));
    QFile::remove(Pdf());
    EXPECT_EQ(RunPdf({QStringLiteral("-"), Output, Pdf()}, page).Code, 0);
    EXPECT_TRUE(Read(Pdf()).startsWith("%PDF-"));
}

#ifdef Q_OS_LINUX
TEST_F(PrintTest, TwentyTablesInOneAnotherAndANewsletterTakeNoMoreThanFiveSeconds)
{
    const QByteArray inner =
        "<table width=\"100%\" cellpadding=0><tr><td style=\"font-size: 13px\">Offer of the day: a "
        "kettle</td><td width=120>12.50</td></tr></table>";
    const QByteArray row = "<tr><td><table width=560 align=center><tr><td><table width=\"100%\"><tr><td>" + inner +
                           "</td><td>" + inner + "</td></tr></table></td></tr></table></td></tr>";
    const QByteArray around =
        QByteArray("<table width=\"100%\"><tr><td align=center><table width=600><tr><td>").repeated(2);
    const QByteArray newsletter = around + "<table>" + row.repeated(44'000 / row.size()) + "</table>";
    const QByteArray tables = QByteArray("<table><tr><td>a word or two ").repeated(20);
    for (const QByteArray& page : {newsletter, tables}) {
        rusage before = {};
        rusage after = {};
        ::getrusage(RUSAGE_CHILDREN, &before);
        EXPECT_EQ(RunPdf({QStringLiteral("-"), Output, Pdf()}, page).Code, 0);
        ::getrusage(RUSAGE_CHILDREN, &after);
        EXPECT_LT(after.ru_utime.tv_sec - before.ru_utime.tv_sec, 5) << page.left(40).constData();
    }
}

/// The process that this one started; 0 for none.
static pid_t ChildOf(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/task/%1/children").arg(process));
    return file.open(QIODevice::ReadOnly) ? file.readAll().simplified().split(' ').first().toInt() : 0;
}

/// How long a process has worked, in hundredths of a second; 0 for one that is gone.
static int WorkOf(pid_t process)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    const QList<QByteArray> words = file.open(QIODevice::ReadOnly) ? file.readAll().split(' ') : QList<QByteArray>();
    return words.value(13).toInt() + words.value(14).toInt();
}

TEST_F(PrintTest, EndingTheCommandEndsItsHelperAndLeavesNoFile)
{
    // Many seconds of work, of which the helper has begun the first when the command is ended.
    const QString reference = FileMail(Mail("Long", QByteArray("words that fill a line \n").repeated(200'000)));
    for (const int signal : {SIGKILL, SIGTERM}) {
        QProcess process;
        Prepare(process, {QStringLiteral("print"), Station(), Single, reference, Output, Pdf()});
        process.start();
        ASSERT_TRUE(process.waitForStarted());
        pid_t helper = 0;
        while (process.state() == QProcess::Running && WorkOf(helper) < 50) {
            process.waitForFinished(10);
            helper = ChildOf(process.processId());
        }
        ASSERT_NE(helper, 0) << signal;
        ::kill(static_cast<pid_t>(process.processId()), signal);
        ASSERT_TRUE(process.waitForFinished());
        // It was never this process's child: its end shows in the list of processes.
        const QString program = QStringLiteral("/proc/%1/exe").arg(helper);
        QElapsedTimer waited;
        waited.start();
        while (!QFile::symLinkTarget(program).isEmpty() && waited.elapsed() < 2000)
            ::usleep(10'000);
        EXPECT_TRUE(QFile::symLinkTarget(program).isEmpty()) << signal;
        EXPECT_EQ(QDir(Path(QString())).entryList({QStringLiteral("out*")}, QDir::Files), QStringList()) << signal;
    }
}
#endif
