// SPDX-License-Identifier: Apache-2.0
#include "PageChecker.h"
#include "platform/html/HtmlTree.h"
#include "platform/html/PlainText.h"
#include "platform/html/SafeHtml.h"
#include "platform/mail/Message.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>

#include <gtest/gtest.h>

#ifndef Q_OS_WIN
#include <csignal>
#include <sys/time.h>
#include <unistd.h>
#endif

// Whatever comes in, what goes out parses to allowed elements, attributes and values alone, in bounded time.

namespace
{
QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

QStringList FilesIn(const char* folder, const char* pattern)
{
    const QDir directory(QStringLiteral(TOLVA_TEST_DATA) + QLatin1String(folder));
    QStringList files;
    for (const QString& name : directory.entryList({QLatin1String(pattern)}, QDir::Files, QDir::Name))
        files.append(directory.filePath(name));
    EXPECT_FALSE(files.isEmpty()) << folder;
    return files;
}

QStringList AllOptionsFaults(const QString& html)
{
    QStringList faults;
    for (const bool keepsColours : {true, false}) {
        for (const qsizetype most : {0, 1, 50, 300}) {
            SafeHtmlOptions options;
            options.KeepsColours = keepsColours;
            options.MaxCharacters = most;
            faults += PageChecker::Faults(MakeSafe(html, options).Html);
        }
    }
    return faults;
}

/// Well above what it takes on a slow machine under the sanitizers, and well below what the square of it would take.
constexpr qint64 LongEnough = 30'000;

SafePage MadeInTime(const QString& html)
{
    QElapsedTimer timer;
    timer.start();
    SafePage page = MakeSafe(html);
    EXPECT_LT(timer.elapsed(), LongEnough);
    return page;
}

QString Times(const char* text, qsizetype count)
{
    return QString::fromUtf8(text).repeated(count);
}
} // namespace

TEST(HostilePageTest, EveryNastyPageComesOutHarmless)
{
    for (const QString& file : FilesIn("/html", "*.html")) {
        const QString html = QString::fromUtf8(ReadFile(file));
        EXPECT_EQ(AllOptionsFaults(html), QStringList()) << qPrintable(file);
    }
}

TEST(HostilePageTest, APageThatWasMadeSafeStaysAsItIs)
{
    for (const QString& file : FilesIn("/html", "*.html")) {
        const SafePage first = MakeSafe(QString::fromUtf8(ReadFile(file)));
        // The addresses of embedded pictures have a meaning only beside the pictures.
        const QString once = QString(first.Html).remove(QStringLiteral("<img src=\"embedded:0\">"));
        const SafePage twice = MakeSafe(once);
        EXPECT_EQ(PageChecker::TextOf(twice.Html), PageChecker::TextOf(once)) << qPrintable(file);
        EXPECT_EQ(twice.ActiveContent + twice.RemoteContent + twice.UnsafeLinks, 0) << qPrintable(file);
    }
}

TEST(HostilePageTest, EveryMailFileComesOutHarmless)
{
    int pages = 0;
    for (const QString& file : FilesIn("/mail", "*.eml") + FilesIn("/../../samples/mail", "*.eml")) {
        const cdo::Message message(ReadFile(file));
        pages += message.HTMLBody().isEmpty() ? 0 : 1;
        EXPECT_EQ(AllOptionsFaults(message.HTMLBody()), QStringList()) << qPrintable(file);
        EXPECT_EQ(PageChecker::Faults(HtmlOfPlainText(message.TextBody())), QStringList()) << qPrintable(file);
    }
    EXPECT_GT(pages, 5);
}

TEST(HostilePageTest, PiecesOfNastyPagesInAnyOrderComeOutHarmless)
{
    QStringList pieces;
    for (const QString& file : FilesIn("/html", "*.html"))
        pieces += QString::fromUtf8(ReadFile(file)).split(u'<');
    constexpr quint32 seed = 20260214;
    QRandomGenerator random(seed);
    for (int round = 0; round < 400; ++round) {
        QString html;
        for (int i = 0; i < 30; ++i)
            html +=
                (random.bounded(8) == 0 ? QString() : QStringLiteral("<")) + pieces.at(random.bounded(pieces.size()));
        ASSERT_EQ(PageChecker::Faults(MakeSafe(html).Html), QStringList())
            << "seed " << seed << " round " << round << "\n"
            << qPrintable(html);
    }
}

TEST(HostilePageTest, DeepNestingShowsItsTextAndNeitherOverflowsNorHangs)
{
    for (const char* tag :
         {"<div>", "<b>", "<span><div>", "<blockquote>", "<table><tr><td>", "<ul><li>", "<font size=7>"}) {
        const SafePage page = MadeInTime(Times(tag, 200'000) + QStringLiteral("the end"));
        EXPECT_TRUE(PageChecker::TextOf(page.Html).contains(QStringLiteral("the end"))) << tag;
        EXPECT_TRUE(page.IsTextOnly) << tag;
    }
}

TEST(HostilePageTest, DepthThatACommentHidesFromALookAtTheTagsIsBoundedByTheTree)
{
    for (const char* tag : {"<div>", "<b>", "<table><tr><td>", "<ruby><rt>", "<svg>", "<template>", "<rt>"}) {
        const SafePage page = MadeInTime(QStringLiteral("<!-->") + Times(tag, 3000) + QStringLiteral("the end"));
        EXPECT_TRUE(page.IsTextOnly) << tag;
        EXPECT_TRUE(PageChecker::TextOf(page.Html).contains(QStringLiteral("the end"))) << tag;
    }
}

TEST(HostilePageTest, NestingThatThePaneCannotTakeIsFlattenedAndKeepsItsText)
{
    const QString html = Times("<table><tr><td>", 300) + QStringLiteral("the end");
    const SafePage page = MakeSafe(html);
    EXPECT_FALSE(page.IsTextOnly);
    EXPECT_TRUE(PageChecker::TextOf(page.Html).contains(QStringLiteral("the end")));
    EXPECT_LE(page.Html.count(QStringLiteral("<table")), 12);
    EXPECT_LE(MakeSafe(Times("<div>", 900)).Html.count(QStringLiteral("<div")), 100);
}

TEST(HostilePageTest, TablesInTablesAreShownWhileLayingThemOutIsCheap)
{
    const QString nested = Times("<table><tr><td>", 6) + QStringLiteral("%1") + Times("</table>", 6);
    EXPECT_EQ(MakeSafe(nested.arg(Times("word ", 50))).Html.count(QStringLiteral("<table")), 6);
    EXPECT_LE(MakeSafe(nested.arg(Times("word ", 50'000))).Html.count(QStringLiteral("<table")), 3);
}

TEST(HostilePageTest, AMillionAttributesTakeBoundedTime)
{
    QString html = QStringLiteral("<p ");
    for (int i = 0; i < 1'000'000; ++i)
        html += u'a' + QString::number(i) + u' ';
    const SafePage page = MadeInTime(html + QStringLiteral(">the end"));
    EXPECT_TRUE(PageChecker::TextOf(page.Html).contains(QStringLiteral("the end")));
}

TEST(HostilePageTest, TenMegabytesOfAnyKindTakeBoundedTime)
{
    const QList<QString> pages{
        Times("<p>Some words of a mail that goes on and on, <b>bold</b> and plain.</p>\n", 140'000),
        QStringLiteral("<table>") + Times("<br>", 2'500'000),
        Times("<", 10'000'000),
        Times("<!--", 2'500'000),
        Times("</p>", 2'500'000),
        Times("<a b=\"", 1'600'000),
        Times("&amp;", 2'000'000),
        Times("w", 10'000'000),
        QString(10'000'000, QChar(0)),
        Times("<li>", 500'000),
        QStringLiteral("<p style=\"") + Times("color:red;", 1'000'000) + QStringLiteral("\">x"),
        QStringLiteral("<img src=\"data:image/png;base64,") + Times("AAAA", 2'500'000) + QStringLiteral("\">"),
    };
    for (const QString& html : pages)
        EXPECT_EQ(PageChecker::Faults(MadeInTime(html).Html.left(100'000)).size(), 0) << qPrintable(html.left(20));
}

TEST(HostilePageTest, AFormattingBombIsBounded)
{
    QString html;
    for (int i = 0; i < 900; ++i)
        html += QStringLiteral("<font size=%1>").arg(i);
    MadeInTime(html + Times("<p>x</p>", 100'000));
}

TEST(HostilePageTest, SizesOfTextDoNotMultiplyWithDepth)
{
    const QString html = Times("<span style='font-size:4em'><big>", 40) + QStringLiteral("x");
    EXPECT_FALSE(MakeSafe(html).Html.contains(QStringLiteral("font-size:49")));
    EXPECT_TRUE(MakeSafe(html).Html.contains(QStringLiteral("font-size:48.0pt")));
    EXPECT_TRUE(MakeSafe(Times("<small>", 40) + u'x').Html.contains(QStringLiteral("font-size:6.0pt")));
}

#ifndef Q_OS_WIN
namespace
{
volatile std::sig_atomic_t WasHeldUp = 0;

/// What a busy computer does to a program: it stands still.
void HoldUp(int)
{
    ::usleep(300'000);
    WasHeldUp = 1;
}
} // namespace

TEST(HostilePageTest, ABusyComputerTakesNoTimeFromAPage)
{
    const QByteArray page = QByteArray("<p>A word or two</p>").repeated(10'000);
    struct sigaction before = {};
    struct sigaction action = {};
    action.sa_handler = HoldUp;
    action.sa_flags = SA_RESTART;
    ASSERT_EQ(::sigaction(SIGALRM, &action, &before), 0);
    const itimerval soon{{0, 0}, {0, 1000}};
    ASSERT_EQ(::setitimer(ITIMER_REAL, &soon, nullptr), 0);
    const HtmlTree tree(page, HtmlPatience::Little);
    EXPECT_EQ(WasHeldUp, 1);
    ::sigaction(SIGALRM, &before, nullptr);
    EXPECT_NE(tree.Root(), nullptr);
}
#endif
