// SPDX-License-Identifier: Apache-2.0

// The manual page and the page on the command line against what the program says of itself.

#include "CommandLineTest.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

namespace
{
/// A command's own options, and "--user" and "--help", which all commands share.
QStringList OptionsOf(const QByteArray& helpPage)
{
    static const QRegularExpression line(QStringLiteral("^  (--[a-z-]+)"), QRegularExpression::MultilineOption);
    QStringList options;
    auto matches = line.globalMatch(QString::fromUtf8(helpPage));
    while (matches.hasNext())
        options.append(matches.next().captured(1));
    return options;
}

/// What stands for itself behind the folder in the forms of a command: "add", "remove-winner", "read".
QStringList SubcommandsOf(const QByteArray& helpPage)
{
    static const QRegularExpression form(QStringLiteral("^  tolva [a-z]+ FOLDER (.*)$"),
                                         QRegularExpression::MultilineOption);
    static const QRegularExpression word(QStringLiteral("^[a-z-]{2,}$"));
    QStringList words;
    const QString usage = QString::fromUtf8(helpPage).section(QStringLiteral("\n\n"), 0, 1);
    auto matches = form.globalMatch(usage);
    while (matches.hasNext()) {
        const QString first = matches.next().captured(1).section(u' ', 0, 0).remove(u'[');
        if (word.match(first).hasMatch() && !first.startsWith(u'-'))
            words.append(first);
    }
    return words;
}

bool HasWord(const QString& text, const QString& word)
{
    return text.contains(QRegularExpression(QStringLiteral("(?<![\\w-])%1(?![\\w-])").arg(word)));
}

/// The manual page without its escapes and typefaces.
QString Plain(QString manual)
{
    manual.replace(QStringLiteral("\\-"), QStringLiteral("-"));
    manual.remove(QStringLiteral("\\c"));
    return manual.remove(QRegularExpression(QStringLiteral("\\\\f[BIRP]")));
}

/// What stands under each ".SS" heading of the manual page, by its name.
QHash<QString, QString> Sections(const QString& manual)
{
    static const QRegularExpression heading(QStringLiteral("^\\.(SS|SH) "), QRegularExpression::MultilineOption);
    QHash<QString, QString> sections;
    for (const QString& piece : manual.split(heading)) {
        const qsizetype end = piece.indexOf(u'\n');
        sections.insert(piece.left(end), piece.mid(end));
    }
    return sections;
}
} // namespace

class ManualTest : public CommandLineTest
{
protected:
    QStringList Commands() const
    {
        const QString help = QString::fromUtf8(Run({QStringLiteral("--help")}).Output);
        const QString list =
            help.section(QStringLiteral("\nCommands:\n"), 1).section(QStringLiteral("\nOptions:\n"), 0, 0);
        QStringList names;
        for (const QString& line : list.split(u'\n', Qt::SkipEmptyParts))
            names.append(line.trimmed().section(u' ', 0, 0));
        return names;
    }
    QByteArray HelpOf(const QString& command) const { return Run({command, QStringLiteral("--help")}).Output; }
    static QString Page(const char* name)
    {
        return QString::fromUtf8(Read(QStringLiteral(TOLVA_DOCUMENTS "/") + QLatin1String(name)));
    }
};

TEST_F(ManualTest, EveryCommandHasASectionThatNamesItsFormsAndOptions)
{
    const QString manual = Plain(Page("man/tolva.1"));
    const QHash<QString, QString> sections = Sections(manual);
    const QStringList commands = Commands();
    ASSERT_GT(commands.size(), 20);
    const QSet<QString> shared = {QStringLiteral("--user"), QStringLiteral("--help")};
    for (const QString& command : commands) {
        ASSERT_TRUE(sections.contains(command)) << command.toStdString();
        const QByteArray help = HelpOf(command);
        for (const QString& word : SubcommandsOf(help))
            EXPECT_TRUE(HasWord(sections[command], word)) << command.toStdString() << ' ' << word.toStdString();
        const QStringList options = OptionsOf(help);
        EXPECT_GE(options.size(), 2) << command.toStdString();
        for (const QString& option : options) {
            const QString& place = shared.contains(option) ? manual : sections[command];
            EXPECT_TRUE(HasWord(place, option)) << command.toStdString() << ' ' << option.toStdString();
        }
    }
}

TEST_F(ManualTest, NoSectionOfTheManualNamesWhatTheProgramDoesNotTake)
{
    const QHash<QString, QString> sections = Sections(Plain(Page("man/tolva.1")));
    static const QRegularExpression named(QStringLiteral("(?<![\\w-])--[a-z][a-z-]*"));
    for (const QString& command : Commands()) {
        const QStringList options = OptionsOf(HelpOf(command));
        auto matches = named.globalMatch(sections[command]);
        while (matches.hasNext()) {
            const QString option = matches.next().captured();
            EXPECT_TRUE(options.contains(option)) << command.toStdString() << ' ' << option.toStdString();
        }
    }
}

TEST_F(ManualTest, ThePageOnTheCommandLineNamesEveryCommandFormAndOption)
{
    const QString page = Page("command-line.md");
    for (const QString& command : Commands()) {
        // "setup mail FOLDER" says first what is set up.
        EXPECT_TRUE(page.contains(QRegularExpression(QStringLiteral("`%1( mail)? FOLDER").arg(command))))
            << command.toStdString();
        const QByteArray help = HelpOf(command);
        for (const QString& word : SubcommandsOf(help) + OptionsOf(help))
            EXPECT_TRUE(HasWord(page, word)) << command.toStdString() << ' ' << word.toStdString();
    }
}

TEST_F(ManualTest, BothNameEveryExitCode)
{
    const QString manual = Page("man/tolva.1");
    const QString page = Page("command-line.md");
    for (const int code : {0, 1, 64, 65, 66, 67, 69, 70, 73, 74, 75, 77, 130}) {
        EXPECT_TRUE(manual.contains(QStringLiteral(".B %1\n").arg(code))) << code;
        EXPECT_TRUE(page.contains(QStringLiteral("| %1 |").arg(code))) << code;
    }
}

TEST_F(ManualTest, ThePageOfThePdfProgramNamesItsFormsAndOptions)
{
    QProcess process;
    process.start(QStringLiteral(TOLVA_PDF_PROGRAM), {QStringLiteral("--help")});
    ASSERT_TRUE(process.waitForFinished());
    static const QRegularExpression named(QStringLiteral("--[a-z-]+"));
    const QString manual = Plain(Page("man/tolva-pdf.1"));
    auto matches = named.globalMatch(QString::fromUtf8(process.readAllStandardOutput()));
    int count = 0;
    for (; matches.hasNext(); ++count) {
        const QString option = matches.next().captured();
        EXPECT_TRUE(HasWord(manual, option)) << option.toStdString();
    }
    EXPECT_GE(count, 6);
}
