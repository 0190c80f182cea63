// SPDX-License-Identifier: Apache-2.0

// What the pages tell their readers to type, typed in order: the lines in their blocks of code that need no root. The
// list of those that are tried elsewhere, or cannot be, is at the end.

#include "CommandLineTest.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <iterator>

namespace
{
/// The lines of a page's blocks of shell commands, without remarks; scripts are left out whole.
QStringList LinesOfShell(const QString& page)
{
    static const QRegularExpression remark(QStringLiteral("\\s+# .*$"));
    const QString fence = QStringLiteral("```");
    QStringList lines;
    QStringList block;
    QString language;
    bool isInside = false;
    for (QString line : page.split(u'\n')) {
        if (!line.startsWith(fence)) {
            block.append(line.remove(remark));
            continue;
        }
        const bool isScript = block.value(0).startsWith(QStringLiteral("#!"));
        if (isInside && (language == QStringLiteral("sh") || language == QStringLiteral("bash")) && !isScript)
            lines += block;
        isInside = !isInside;
        language = line.mid(fence.size());
        block.clear();
    }
    lines.removeAll(QString());
    return lines;
}

/// What the page on backups says between its lines: whole commands on the station.
QStringList CommandsInText(const QString& page)
{
    static const QRegularExpression command(QStringLiteral("`(tolva [a-z]+ /srv/station[^`]*)`"));
    QStringList commands;
    auto matches = command.globalMatch(page);
    while (matches.hasNext())
        commands.append(matches.next().captured(1));
    return commands;
}

bool BeginsWithOneOf(const QString& line, const QStringList& beginnings)
{
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&line](const QString& beginning) { return line.startsWith(beginning); });
}

/// What an account without rights can type anywhere.
bool CanBeTyped(const QString& line)
{
    return BeginsWithOneOf(line, {QStringLiteral("tolva "), QStringLiteral("sudo -u tolva tolva "),
                                  QStringLiteral("chmod "), QStringLiteral("find "), QStringLiteral("printf ")});
}

QString PageNamed(const QString& name)
{
    return QStringLiteral(TOLVA_DOCUMENTS "/") + name;
}
} // namespace

class DocumentedCommandsTest : public CommandLineTest
{
protected:
    /// What the pages take for granted: mails in ~/Maildir, a mail, and a file of business cards.
    void SetUp() override
    {
        CommandLineTest::SetUp();
        for (int i = 1; i <= 30; ++i)
            Write(QStringLiteral("Maildir/new/%1").arg(i), Mail("The lighthouse, " + QByteArray::number(i)));
        for (const char* folder : {"cur", "tmp"})
            ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("Maildir/") + QLatin1String(folder))));
        Write(QStringLiteral("telephone.vcf"), "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Loveday Tregenza\r\n"
                                               "TEL;TYPE=CELL:07700 900123\r\nEND:VCARD\r\n");
        Write(QStringLiteral("some-mail.eml"), Mail("The lighthouse"));
    }

    /// By the shell, as readers do it. The page's station is one of this test's, and this account is the one that the
    /// page takes.
    Outcome Type(QString command, const QString& station) const
    {
        QProcess process;
        Prepare(process, {});
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("PATH"), QFileInfo(QStringLiteral(TOLVA_PROGRAM)).absolutePath() + u':' +
                                                       environment.value(QStringLiteral("PATH")));
        environment.insert(QStringLiteral("number"), QStringLiteral("07700 900123"));
        environment.insert(QStringLiteral("text"), QStringLiteral("Play the lighthouse song"));
        process.setProcessEnvironment(environment);
        command.remove(QStringLiteral("sudo -u tolva "));
        command.replace(QStringLiteral("/srv/station"), station);
        process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command});
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished()) << command.toStdString();
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
    void TypeSuccessfully(const QString& command, const QString& station) const
    {
        const Outcome outcome = Type(command, station);
        EXPECT_EQ(outcome.Code, 0) << command.toStdString() << '\n' << outcome.Problems.constData();
    }

    void TypeAllOf(const char* name) const
    {
        const QStringList lines = LinesOfShell(QString::fromUtf8(Read(PageNamed(QLatin1String(name)))));
        QStringList commands;
        std::copy_if(lines.begin(), lines.end(), std::back_inserter(commands), CanBeTyped);
        ASSERT_FALSE(commands.isEmpty());
        const bool makesStation = commands.first().startsWith(QStringLiteral("tolva init "));
        const QString station = makesStation ? Path(QStringLiteral("documented")) : Station();
        for (const QString& command : std::as_const(commands)) {
            TypeSuccessfully(command, station);
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

TEST_F(DocumentedCommandsTest, ThePageOnHookingUpCanBeTyped)
{
    TypeAllOf("hookups.md");
    QStringList subjects;
    for (const QJsonObject& message : Messages({QStringLiteral("--category"), QStringLiteral("Inbox")}))
        subjects.append(message.value(QStringLiteral("subject")).toString());
    subjects.sort();
    EXPECT_EQ(subjects, (QStringList{QStringLiteral("Play the lighthouse song"), QStringLiteral("SONG"),
                                     QStringLiteral("The lighthouse")}));
    EXPECT_EQ(Messages({QStringLiteral("--category"), QStringLiteral("Outbox")}).size(), 1) << "the answer to SONG";
    // Nobody outside the group reads, and what is made in the folder belongs to the group.
    const QFileInfo folder(Station());
    EXPECT_FALSE(folder.permissions() & (QFile::ReadOther | QFile::ExeOther));
    EXPECT_NE(Type(QStringLiteral("test -g /srv/station"), Station()).Code, 1);
}

TEST_F(DocumentedCommandsTest, ThePageOnBackupsCanBeTyped)
{
    FileMail(Mail("Kept"));
    const QStringList commands = CommandsInText(QString::fromUtf8(Read(PageNamed(QStringLiteral("backup.md")))));
    ASSERT_GE(commands.size(), 6);
    const QDir backups(Station() + QStringLiteral("/Backups/Tolva"));
    for (const QString& command : commands) {
        TypeSuccessfully(command, Station());
        const QStringList names = backups.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        ASSERT_FALSE(names.isEmpty());
        if (command == QStringLiteral("tolva backup /srv/station")) {
            EXPECT_TRUE(QDir(backups).rename(names.last(), QStringLiteral("2026-11-21 14.05")));
        }
    }
    EXPECT_EQ(Messages().size(), 1);
}

TEST_F(DocumentedCommandsTest, AStationComesBackFromTheCopyOnAnotherMachine)
{
    if (QStandardPaths::findExecutable(QStringLiteral("rsync")).isEmpty())
        GTEST_SKIP() << "there is no rsync here";
    FileMail(Mail("Kept"));
    Expect("backup");
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("elsewhere"))));
    int copied = 0;
    for (QString line : LinesOfShell(QString::fromUtf8(Read(PageNamed(QStringLiteral("backup.md")))))) {
        if (!line.startsWith(QStringLiteral("rsync ")))
            continue;
        TypeSuccessfully(line.replace(QStringLiteral("backup@elsewhere:station"), Path(QStringLiteral("elsewhere"))),
                         Station());
        ++copied;
    }
    EXPECT_EQ(copied, 2);
    ASSERT_TRUE(QDir(Station()).removeRecursively());
    ASSERT_TRUE(QFile::rename(Path(QStringLiteral("elsewhere")), Station()));
    TypeSuccessfully(QStringLiteral("tolva restore /srv/station"), Station());
    EXPECT_EQ(Messages().size(), 1);
}

TEST_F(DocumentedCommandsTest, EveryOtherCommandOfThePagesIsTriedElsewhereOrKnownNotToBe)
{
    const QStringList known = {
        // These make what the tests run, or are how they are run.
        QStringLiteral("./run"), QStringLiteral("./test"), QStringLiteral("cmake --preset "),
        QStringLiteral("ctest --preset "), QStringLiteral("packaging/make-packages.sh"),
        // packaging/test-packages.sh types them as root in a system of its own.
        QStringLiteral("apt-get install ./build/release/packages/"), QStringLiteral("groupadd "),
        QStringLiteral("useradd "), QStringLiteral("usermod "), QStringLiteral("chown "), QStringLiteral("install "),
        // ReceivingTest does what the page on hooking up says, with the real programs.
        QStringLiteral("newaliases"), QStringLiteral("postmap "), QStringLiteral("postfix "),
        QStringLiteral("update-exim4.conf"), QStringLiteral("umask 0007; sudo -u tolva tolva file "),
        // AStationComesBackFromTheCopyOnAnotherMachine.
        QStringLiteral("rsync "),
        // RecoverTest.
        QStringLiteral("tolva recover /srv/station "),
        // RepairTest.
        QStringLiteral("tolva repair /srv/station"),
        // ServerSetUpTest, with a server of its own.
        QStringLiteral("sudo -u postgres "), QStringLiteral("psql --host=db.example.org "),
        QStringLiteral("tolva init /srv/station --name \"Harbour FM\" --phone \"01632 960100\" "
                       "--connect "),
        QStringLiteral("tolva init /srv/desk --connect "), QStringLiteral("tolva list /srv/desk"),
        QStringLiteral("sudo apt-get install postgresql"),
        // They need a running systemd; BackupUnitsTest checks the units that they name.
        QStringLiteral("systemctl "), QStringLiteral("journalctl ")};
    const QStringList typed = {QStringLiteral("../README.md"), QStringLiteral("command-line.md"),
                               QStringLiteral("hookups.md")};
    QStringList names = QDir(PageNamed(QString())).entryList({QStringLiteral("*.md")});
    ASSERT_GT(names.size(), 10);
    names.append(QStringLiteral("../README.md"));
    for (const QString& name : std::as_const(names)) {
        for (const QString& line : LinesOfShell(QString::fromUtf8(Read(PageNamed(name))))) {
            if (typed.contains(name) && CanBeTyped(line))
                continue;
            EXPECT_TRUE(BeginsWithOneOf(line, known)) << name.toStdString() << ": " << line.toStdString();
        }
    }
}
