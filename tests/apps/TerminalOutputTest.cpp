// SPDX-License-Identifier: Apache-2.0

// Nothing that others wrote steers a terminal: every command, on a station each text of which tries to.

#include "CommandLineTest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTextStream>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>
#endif

namespace
{
/// A sequence for the window's title, one that erases the screen in its one-character form, a line to spoof, and every
/// mark that changes the writing direction.
const QString Hostile =
    QString::fromUtf8("a\x1B]0;owned\x07"
                      "b\xC2\x9B"
                      "2Jc\x08\x7F\xC2\x85"
                      "d\u202A\u202B\u202C\u202D\u202Ee\u2066\u2067\u2068f\u2069\u200E\u200F\u061Cg");
const QByteArray HostileMail =
    "From: \x1B[1mLo\xC2\x9Bve " + Hostile.toUtf8().replace('\x07', "") +
    " <lo@example.org>\r\nTo: " + Hostile.toUtf8() +
    "@example.org\r\nCc: \x1B[2J@example.org\r\n"
    "Reply-To: =?utf-8?q?=1B=5D0=3Bx=07=E2=80=AE?= <r@example.org>\r\nSubject: " +
    Hostile.toUtf8() +
    "\r\nMessage-ID: <\x1B[1m@example.org>\r\nMIME-Version: 1.0\r\n"
    "Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n"
    "Content-Type: text/plain; charset=utf-8\r\n\r\nfirst\tline\x1B[2J\r\n" +
    Hostile.toUtf8() + "\r\n--b\r\nContent-Type: text/html; charset=utf-8\r\n\r\n<p>\x1B[2J" + Hostile.toUtf8() +
    "</p>\r\n--b\r\nContent-Type: application/x\x1B[2J; name=\"\x1B[2J\xE2\x80\xAE.exe\"\r\n\r\nx"
    "\r\n--b--\r\n";

enum class Form
{
    Text,
    Json
};

/// What a terminal would take as an order; empty for a harmless text.
QString OrdersIn(const QByteArray& octets, Form form)
{
    QString orders;
    int open = 0;
    for (const QChar character : QString::fromUtf8(octets)) {
        const char16_t code = character.unicode();
        const bool isControl = code < 0x20 || (code >= 0x7F && code <= 0x9F);
        const bool isLineForm = code == u'\n' || (code == u'\t' && form == Form::Text);
        const bool isDirection = code == 0x061C || code == 0x200E || code == 0x200F ||
                                 (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
        // The program's own isolates end before their line does.
        const bool isOwn = form == Form::Text && (code == 0x2068 || code == 0x2069);
        if (isOwn)
            open += code == 0x2068 ? 1 : -1;
        if ((isControl && !isLineForm) || (isDirection && !isOwn) || open < 0 || open > 1 || (code == u'\n' && open))
            orders += QStringLiteral("U+%1 ").arg(code, 4, 16, QLatin1Char('0'));
    }
    return orders;
}
} // namespace

class TerminalOutputTest : public CommandLineTest
{
protected:
    using Runs = QList<QStringList>;

    /// Makes a station whose folder, name, users, folders, contacts, prizes and messages hold such characters.
    void MakeHostileStation()
    {
        Folder_ = Path(QStringLiteral("st") + Hostile.left(12));
        Check({{QStringLiteral("init"), Folder_, QStringLiteral("--name"), Hostile, QStringLiteral("--phone"),
                QStringLiteral("0163\x1B[2J")}});
        const QString eml = Write(QStringLiteral("in/") + Hostile.left(10) + QStringLiteral(".eml"), HostileMail);
        const QString bad = Write(QStringLiteral("in/bad") + Hostile.left(10) + QStringLiteral(".eml"), "");
        const QString sms = Write(QStringLiteral("in/t") + Hostile.left(10) + QStringLiteral(".sms"),
                                  "From: \x1B[2J" + Hostile.toUtf8() + "\nTo: \x9B\n\n\x1B[2Jtext\n");
        const QString cards =
            Write(QStringLiteral("cards.vcf"), "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:" + Hostile.toUtf8() +
                                                   "\r\nTEL:\x1B[2J0770\r\nEMAIL:\x1B[1m@example.org\r\nEND:VCARD\r\n"
                                                   "BEGIN:VCARD\r\nFN:\x1B[2J\r\n");
        const QString script = Write(QStringLiteral("script"), Hostile.toUtf8() + "\nline two\x1B[2J\n");
        Runs runs;
        const auto run = [&](const char* command, const QStringList& words) {
            runs.append(QStringList{QString::fromLatin1(command), Folder_} + words);
        };
        run("file", {QStringLiteral("--verbose"), eml, bad, sms, Path(QStringLiteral("in"))});
        run("file", {QStringLiteral("--sms"), QStringLiteral("--from"), Hostile, QStringLiteral("--verbose")});
        run("folders", {QStringLiteral("add"), Hostile});
        run("folders", {QStringLiteral("add"), Hostile}); // refused: it stands
        run("users", {QStringLiteral("add"), Hostile, QStringLiteral("--rights"), QStringLiteral("all")});
        run("contacts", {QStringLiteral("add"), Hostile, QStringLiteral("--mobile"), Hostile, QStringLiteral("--email"),
                         Hostile, QStringLiteral("--other"), Hostile + QStringLiteral("\nline\x1B[2J")});
        run("contacts", {QStringLiteral("import"), cards});
        run("prize", {QStringLiteral("add"), QStringLiteral("--title"), Hostile, QStringLiteral("--notes"), Hostile,
                      QStringLiteral("--script-file"), script, QStringLiteral("--supplier-notes"), Hostile,
                      QStringLiteral("--supplied"), QStringLiteral("3")});
        run("prize", {QStringLiteral("award"), QStringLiteral("1"), QStringLiteral("--contact"), QStringLiteral("1"),
                      QStringLiteral("--notes"), Hostile, QStringLiteral("--user"), Hostile});
        run("prize", {QStringLiteral("award"), QStringLiteral("1"), QStringLiteral("--contact"), QStringLiteral("1")});
        run("setting", {QStringLiteral("Station.Address"), Hostile + QStringLiteral("\nTwo\x1B[2J")});
        run("setting", {Hostile, Hostile});
        Check(runs);
    }

    /// Each command of the program on that station, in all of its forms, with good and with wrong words.
    QHash<QString, Runs> RunsOfAll() const
    {
        const QStringList bad = {Hostile};
        const QString one = QStringLiteral("1");
        const auto option = [](const char* name, const QString& value = QString()) {
            const QString word = QStringLiteral("--") + QLatin1String(name);
            return value.isNull() ? QStringList{word} : QStringList{word, value};
        };
        const QStringList json = option("json");
        const auto verb = [](const char* word, const QStringList& rest = {}) {
            return QStringList{QString::fromLatin1(word)} + rest;
        };
        return {
            {QStringLiteral("init"), {option("name", Hostile) + option("phone", Hostile), option("name", Hostile)}},
            {QStringLiteral("file"),
             {bad, option("category", Hostile) + bad, option("sms") + option("from", Hostile),
              option("sms") + option("answer") + option("verbose") + option("from", QStringLiteral("07700 900123"))}},
            {QStringLiteral("list"),
             {{},
              json,
              option("category", Hostile),
              option("find", Hostile),
              option("where", Hostile),
              option("sort", Hostile),
              option("user", Hostile),
              bad}},
            {QStringLiteral("show"),
             {{one},
              QStringList{one} + json,
              {QStringLiteral("2")},
              QStringList{QStringLiteral("2")} + json,
              {QStringLiteral("3")},
              QStringList{QStringLiteral("3")} + json,
              bad}},
            {QStringLiteral("export"), {{one, Path(QStringLiteral("in"))}, {one, Hostile + u'/' + Hostile}, bad + bad}},
            {QStringLiteral("print"),
             {{QStringLiteral("Studio list"), one, QStringLiteral("-o"), Hostile},
              {Hostile, one, QStringLiteral("-o"), QStringLiteral("x.html")},
              {QStringLiteral("Studio list"), one, QStringLiteral("-o"), Hostile + QStringLiteral("/x.pdf")},
              {QStringLiteral("Studio list"), Hostile, QStringLiteral("-o"), QStringLiteral("x.html")}}},
            {QStringLiteral("move"), {{one, Hostile}, {one, QStringLiteral("no") + Hostile}, bad + bad}},
            {QStringLiteral("copy"), {{one, Hostile}, {one, QStringLiteral("no") + Hostile}, bad + bad}},
            {QStringLiteral("delete"), {{QStringLiteral("3")}, {QStringLiteral("3")}, bad}},
            {QStringLiteral("mark"), {{one, Hostile}, {one, QStringLiteral("read")}, bad + bad}},
            {QStringLiteral("pending"),
             {{}, json, option("type", Hostile), option("export", Hostile), verb("sent", bad), verb("sent", {one})}},
            {QStringLiteral("folders"),
             {{},
              json,
              verb("rename", bad + bad),
              verb("delete", {QStringLiteral("no") + Hostile}),
              bad,
              verb("add", {Hostile + u'/'}),
              verb("add", bad + option("parent", Hostile)),
              verb("delete", bad)}},
            {QStringLiteral("prizes"),
             {{}, json, option("all"), option("all") + json, option("recent"), option("find", Hostile), bad}},
            {QStringLiteral("prize"),
             {verb("show", {one}), verb("show", QStringList{one} + json), verb("hours", QStringList{one} + json),
              verb("hours", {one}), verb("hours", QStringList{one} + option("day", Hostile)), verb("winners", {one}),
              verb("winners", QStringList{one} + json), verb("edit", QStringList{one} + option("start", Hostile)),
              verb("edit", QStringList{one} + option("title", Hostile + u'2')),
              verb("award", QStringList{one} + option("name", Hostile)),
              verb("award", QStringList{one} + option("number", Hostile)),
              verb("print", {one, QStringLiteral("-o"), Hostile}), verb("recount", {one}), bad + bad, verb("show", bad),
              verb("remove-winner", {one}), verb("remove-winner", {one}), verb("delete", {one}),
              verb("delete", {one})}},
            {QStringLiteral("setting"),
             {{QStringLiteral("Station.Address")},
              {QStringLiteral("Station.Name")},
              bad,
              {QStringLiteral("Backups.Interval"), Hostile},
              {QStringLiteral("Station.Country"), Hostile}}},
            {QStringLiteral("users"),
             {{},
              json,
              verb("add", bad),
              verb("rights", bad + bad),
              verb("rename", bad + bad),
              verb("remove", {QStringLiteral("no") + Hostile}),
              verb("remove", bad),
              bad}},
            {QStringLiteral("contacts"),
             {{},
              json,
              verb("show", {one}),
              verb("show", QStringList{one} + json),
              verb("list", bad),
              verb("show", bad),
              verb("import", bad),
              verb("export", option("output", Hostile + u'/')),
              verb("export", option("vcard", Hostile)),
              verb("import", QStringList{Path(QStringLiteral("cards.vcf"))} + option("duplicates", Hostile)),
              verb("edit", QStringList{one} + option("name", Hostile)),
              verb("delete", {one}),
              bad}},
            {QStringLiteral("send"),
             {{},
              json,
              option("dry-run"),
              option("dry-run") + json,
              verb("state"),
              verb("state", json),
              verb("again", bad),
              verb("again", {one}),
              verb("went", bad),
              option("sendmail", Hostile) + option("from", Hostile),
              option("message", Hostile),
              bad}},
            {QStringLiteral("doctor"), {{}, json, option("quick"), bad}},
            {QStringLiteral("setup"), {{}, bad, option("with", Hostile)}},
            {QStringLiteral("repair"), {{}, json, option("dry-run"), bad}},
            {QStringLiteral("check"), {{}, json, bad}},
            {QStringLiteral("backup"), {{}, json, bad}},
            {QStringLiteral("backups"), {{}, json, option("check"), bad}},
            {QStringLiteral("restore"), {bad, {}, option("yes"), option("yes") + json}},
            {QStringLiteral("recover"),
             {{QStringLiteral("1")},
              bad,
              QStringList{QStringLiteral("1")} + json,
              verb("prize", {one}),
              verb("winner", {one}),
              verb("prize", QStringList{one} + json)}},
            {QStringLiteral("compact"), {{}, option("yes"), option("yes") + json, bad}},
            {QStringLiteral("convert"), {{}, option("yes") + json, option("to", Hostile), bad}},
            {QStringLiteral("rekey"), {{}, json, bad}},
            {QStringLiteral("search"),
             {{Hostile}, QStringList{Hostile} + json, {QStringLiteral("x")}, bad, option("limit", Hostile)}},
            {QStringLiteral("index"), {{}, json, bad}},
        };
    }

    /// The commands that the program says it has.
    QStringList Commands() const
    {
        static const QRegularExpression line(QStringLiteral("^  ([a-z]+) {2,}"), QRegularExpression::MultilineOption);
        const QString help = QString::fromUtf8(Run({QStringLiteral("--help")}).Output);
        QStringList commands;
        auto matches =
            line.globalMatch(help.section(QStringLiteral("Commands:"), 1).section(QStringLiteral("Options:"), 0, 0));
        while (matches.hasNext())
            commands.append(matches.next().captured(1));
        return commands;
    }

    void Check(const Runs& runs) const
    {
        for (const QStringList& words : runs) {
            const Outcome outcome = Run(words, "typed\x1B[2J\xC2\x9B\n");
            const bool isJson = words.contains(QStringLiteral("--json"));
            const std::string name = words.join(u' ').toUtf8().toPercentEncoding(" ").toStdString();
            EXPECT_EQ(OrdersIn(outcome.Output, isJson ? Form::Json : Form::Text), QString()) << name;
            EXPECT_EQ(OrdersIn(outcome.Problems, Form::Text), QString()) << name;
            EXPECT_FALSE(outcome.Problems.contains('\t')) << name;
            EXPECT_NE(outcome.Code, 70) << name << ": " << outcome.Problems.constData();
            for (const QByteArray& line : isJson ? outcome.Lines() : QList<QByteArray>())
                EXPECT_TRUE(line.isEmpty() || QJsonDocument::fromJson(line).isObject()) << line.constData();
        }
    }

    QString Folder_;
};

TEST_F(TerminalOutputTest, NoCommandHandsOnAnOrderToTheTerminal)
{
    MakeHostileStation();
    const QHash<QString, Runs> known = RunsOfAll();
    const QStringList commands = Commands();
    ASSERT_GE(commands.size(), 20);
    for (const QString& command : commands) {
        ASSERT_TRUE(known.contains(command)) << "the test lacks " << command.toStdString();
        Runs runs;
        for (const QStringList& words : known.value(command))
            runs.append(QStringList{command, Folder_} + words);
        // No station there, no such option, and the help.
        runs.append({command, Path(Hostile)});
        runs.append({command, Folder_, QStringLiteral("--") + Hostile});
        runs.append({command, Folder_, QStringLiteral("--help"), Hostile});
        Check(runs);
    }
    Check({{Hostile}, {QStringLiteral("--") + Hostile}, {QString()}});
    // Its subject stands in front of the folder.
    const auto setUp = [this](const QString& way, const QString& output) {
        return QStringList{QStringLiteral("setup"),
                           QStringLiteral("mail"),
                           Folder_,
                           QStringLiteral("--with"),
                           way,
                           QStringLiteral("--address"),
                           Hostile,
                           QStringLiteral("--host"),
                           Hostile,
                           QStringLiteral("--login"),
                           Hostile,
                           QStringLiteral("--output"),
                           output};
    };
    Check({setUp(Hostile, Path(Hostile)), setUp(QStringLiteral("fetchmail"), Path(QStringLiteral("out") + Hostile)),
           setUp(QStringLiteral("postfix"), Path(QStringLiteral("out")))});
}

TEST_F(TerminalOutputTest, ThePdfProgramHandsOnNoOrder)
{
    for (const QStringList& words :
         {QStringList{Hostile}, QStringList{Hostile, QStringLiteral("-o"), QStringLiteral("x.pdf")},
          QStringList{QStringLiteral("--") + Hostile}, QStringList{QStringLiteral("--help")},
          QStringList{QStringLiteral("-"), QStringLiteral("-o"), Hostile + u'/' + Hostile},
          QStringList{QStringLiteral("-"), QStringLiteral("-o"), QStringLiteral("x.pdf"), QStringLiteral("--paper"),
                      Hostile}}) {
        QProcess process;
        Prepare(process, words);
        process.setProgram(QStringLiteral(TOLVA_PDF_PROGRAM));
        process.start();
        process.write("<p>x</p>");
        process.closeWriteChannel();
        ASSERT_TRUE(process.waitForFinished());
        EXPECT_EQ(OrdersIn(process.readAllStandardOutput(), Form::Text), QString());
        const QByteArray problems = process.readAllStandardError();
        EXPECT_EQ(OrdersIn(problems, Form::Text), QString());
        EXPECT_TRUE(process.exitCode() == 0 || !problems.isEmpty()) << process.exitCode();
    }
}

TEST_F(TerminalOutputTest, JsonGivesBackEveryCharacterThatItEscapes)
{
    FileMail(HostileMail);
    const QByteArray json = Expect("show", {QStringLiteral("1"), QStringLiteral("--json")});
    EXPECT_TRUE(json.contains("\\u001b") && json.contains("\\u009b") && json.contains("\\u202e")) << json.constData();
    const QString text = QJsonDocument::fromJson(json).object().value(QStringLiteral("text")).toString();
    EXPECT_TRUE(text.contains(Hostile)) << json.constData();
}

TEST_F(TerminalOutputTest, ABodyKeepsItsLinesAndTabs)
{
    FileMail(Mail("x", "one\ttwo\r\nthree\x1B[2J\r\n"));
    EXPECT_TRUE(Expect("show", {QStringLiteral("1")}).endsWith("\none\ttwo\nthree\xEF\xBF\xBD[2J\n"));
}

TEST_F(TerminalOutputTest, RawOctetsReachAPipeAsTheyAre)
{
    FileMail(HostileMail);
    const QByteArray raw = Expect("show", {QStringLiteral("1"), QStringLiteral("--raw")});
    EXPECT_EQ(raw.trimmed(), HostileMail.trimmed());
    EXPECT_EQ(Expect("export", {QStringLiteral("1"), QStringLiteral("-")}), raw);
}

#ifndef Q_OS_WIN
TEST_F(TerminalOutputTest, RawOctetsOnATerminalAreShownAsText)
{
    FileMail(Mail("x\x1B[2J", "body\x1B[2J\xE2\x80\xAE\r\n"));
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(master >= 0 && ::grantpt(master) == 0 && ::unlockpt(master) == 0);
    const QByteArray terminal = ::ptsname(master);
    for (const QStringList& words :
         {QStringList{QStringLiteral("show"), Station(), QStringLiteral("1"), QStringLiteral("--raw")},
          QStringList{QStringLiteral("export"), Station(), QStringLiteral("1"), QStringLiteral("-")}}) {
        QProcess process;
        Prepare(process, words);
        process.setStandardOutputFile(QString::fromLocal8Bit(terminal));
        process.start();
        ASSERT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), 0);
        QByteArray shown(65536, '\0');
        shown.truncate(::read(master, shown.data(), static_cast<size_t>(shown.size())));
        shown.replace("\r\n", "\n"); // the terminal's line ends
        EXPECT_TRUE(shown.contains("body\xEF\xBF\xBD[2J")) << shown.constData();
        EXPECT_EQ(OrdersIn(shown, Form::Text), QString());
    }
    ::close(master);
}
#endif
