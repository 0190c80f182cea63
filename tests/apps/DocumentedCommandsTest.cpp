// What the pages tell their readers to type, typed: the lines that begin with "tolva" in their blocks of code, in
// order.

#include "CommandLineTest.h"

#include <QFileInfo>

namespace
{
/// The lines of a page's blocks that call the program.
QStringList CommandsOf(const QString& page)
{
    QStringList commands;
    bool isCode = false;
    for (const QString& line : page.split(u'\n')) {
        if (line.startsWith(QStringLiteral("```")))
            isCode = !isCode;
        else if (isCode && line.startsWith(QStringLiteral("tolva ")))
            commands.append(line);
    }
    return commands;
}
} // namespace

class DocumentedCommandsTest : public CommandLineTest
{
protected:
    /// What the pages take for granted: mails in ~/Maildir, and a file of business cards.
    void SetUp() override
    {
        CommandLineTest::SetUp();
        for (int i = 1; i <= 30; ++i)
            Write(QStringLiteral("Maildir/new/%1").arg(i), Mail("The lighthouse, " + QByteArray::number(i)));
        for (const char* folder : {"cur", "tmp"})
            ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("Maildir/") + QLatin1String(folder))));
        Write(QStringLiteral("telephone.vcf"), "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Loveday Tregenza\r\n"
                                               "TEL;TYPE=CELL:07700 900123\r\nEND:VCARD\r\n");
    }

    /// By the shell, as readers do it. The page's station is one of this test's.
    Outcome Type(QString command, const QString& station) const
    {
        QProcess process;
        Prepare(process, {});
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("PATH"), QFileInfo(QStringLiteral(TOLVA_PROGRAM)).absolutePath() + u':' +
                                                       environment.value(QStringLiteral("PATH")));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral("/bin/sh"),
                      {QStringLiteral("-c"), command.replace(QStringLiteral("/srv/station"), station)});
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished()) << command.toStdString();
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    void TypeAllOf(const char* name) const
    {
        const QString page = QStringLiteral(TOLVA_DOCUMENTS "/") + QLatin1String(name);
        const QStringList commands = CommandsOf(QString::fromUtf8(Read(page)));
        ASSERT_FALSE(commands.isEmpty());
        const bool makesStation = commands.first().startsWith(QStringLiteral("tolva init "));
        const QString station = makesStation ? Path(QStringLiteral("documented")) : Station();
        for (const QString& command : commands) {
            const Outcome outcome = Type(command, station);
            EXPECT_EQ(outcome.Code, 0) << command.toStdString() << '\n' << outcome.Problems.constData();
            if (command.startsWith(QStringLiteral("tolva init ")))
                MakeWinner(station);
        }
    }

private:
    /// Somebody to whom the pages award a prize.
    void MakeWinner(const QString& station) const
    {
        const Outcome made =
            Run({QStringLiteral("contacts"), station, QStringLiteral("add"), QStringLiteral("Loveday Tregenza"),
                 QStringLiteral("--mobile"), QStringLiteral("07700 900123")});
        EXPECT_EQ(made.Code, 0) << made.Problems.constData();
    }
};

TEST_F(DocumentedCommandsTest, TheFirstPageCanBeTyped)
{
    TypeAllOf("../README.md");
}

TEST_F(DocumentedCommandsTest, ThePageOnTheCommandLineCanBeTyped)
{
    TypeAllOf("command-line.md");
    EXPECT_TRUE(Read(Path(QStringLiteral("card.pdf"))).startsWith("%PDF-"));
    EXPECT_TRUE(Read(Path(QStringLiteral("contacts.vcf"))).contains("FN:Loveday Tregenza"));
}
