// SPDX-License-Identifier: Apache-2.0

// Files that commands write on a disk that fails: the code is 74, the words say which file and why, and what was there
// before is there.

#include "CommandLineTest.h"
#include "platform/records/DBEngine.h"

namespace
{
// As messages hold them.
constexpr int OutboxFolder = 2;
constexpr int PendingFlag = 2;
const QByteArray Precious = "precious";
} // namespace

class FullDiskTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        Expect("setting", {QStringLiteral("Backups.EnableAutoBackup"), QStringLiteral("False")});
        Reference_ = FileMail(Mail("A card"));
        Expect("contacts", {QStringLiteral("add"), QStringLiteral("Ann"), QStringLiteral("--email"),
                            QStringLiteral("ann@example.com")});
        Prize_ = QString::fromUtf8(
            Expect("prize", {QStringLiteral("add"), QStringLiteral("--title"), QStringLiteral("Hamper")}).trimmed());
    }

    struct Writing
    {
        const char* Command;
        QStringList Words;
        QString File;
    };
    /// Each command that writes a file, told to replace one.
    QList<Writing> Writings() const
    {
        const auto out = [this](const char* name) { return Path(QStringLiteral("out/") + QLatin1String(name)); };
        const QString output = QStringLiteral("-o");
        const QString force = QStringLiteral("--force");
        const QString single = QStringLiteral("Message-Single message");
        return {
            {"export", {Reference_, out("a.eml"), force}, out("a.eml")},
            {"print", {single, Reference_, output, out("a.html"), force}, out("a.html")},
            {"print", {single, Reference_, output, out("a.pdf"), force}, out("a.pdf")},
            {"prize", {QStringLiteral("print"), Prize_, output, out("p.html"), force}, out("p.html")},
            {"prize", {QStringLiteral("print"), Prize_, output, out("p.pdf"), force}, out("p.pdf")},
            {"contacts", {QStringLiteral("export"), output, out("a.vcf"), force}, out("a.vcf")},
        };
    }
    /// Which of the calls on files in "out" fails is said by how, such as FAIL_AT, and number.
    Outcome RunFailing(const Writing& writing, const char* how, int number, int& calls) const
    {
        const QString log = Path(QStringLiteral("calls"));
        QFile::remove(log);
        QProcess process;
        Prepare(process, QStringList{QString::fromLatin1(writing.Command), Station()} + writing.Words);
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QString::fromLatin1(how), QString::number(number));
        environment.insert(QStringLiteral("FAIL_NAMES"), Path(QStringLiteral("out")));
        environment.insert(QStringLiteral("FAIL_LOG"), log);
        process.setProcessEnvironment(environment);
        process.start();
        EXPECT_TRUE(process.waitForFinished());
        calls = Read(log).trimmed().toInt();
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
    QStringList Out() const
    {
        return QDir(Path(QStringLiteral("out"))).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    Outcome InShell(const QString& script, const QStringList& words) const
    {
        QProcess process;
        Prepare(process, {});
        process.setProgram(QStringLiteral("sh"));
        process.setArguments(QStringList{QStringLiteral("-c"), script, QStringLiteral(TOLVA_PROGRAM)} + words);
        process.start();
        EXPECT_TRUE(process.waitForFinished());
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    QString Reference_;
    QString Prize_;
};

TEST_F(FullDiskTest, WhateverCallFailsTheCodeIs74AndTheOldFileStands)
{
    for (const Writing& writing : Writings()) {
        for (int number = 1;; ++number) {
            SCOPED_TRACE(testing::Message() << writing.File.toStdString() << ", call " << number);
            QDir(Path(QStringLiteral("out"))).removeRecursively();
            Write(QStringLiteral("out/") + QFileInfo(writing.File).fileName(), Precious);
            int calls = 0;
            const Outcome outcome = RunFailing(writing, "FAIL_AT", number, calls);
            if (calls < number) {
                EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
                EXPECT_GT(Read(writing.File).size(), Precious.size());
                EXPECT_EQ(Out().size(), 1);
                EXPECT_GE(calls, 6) << "a write, two syncs, a close, a link and a rename";
                break;
            }
            // Behind the last sync only the old file's second name is taken away.
            if (outcome.Code == 0) {
                EXPECT_GT(Read(writing.File).size(), Precious.size());
                EXPECT_EQ(Out().size(), 2);
                continue;
            }
            EXPECT_EQ(outcome.Code, 74);
            EXPECT_TRUE(outcome.Problems.contains(writing.File.toUtf8() + " could not be written: the disk is full"))
                << outcome.Problems.constData();
            EXPECT_EQ(Read(writing.File), Precious);
            EXPECT_EQ(Out().size(), 1);
            if (HasFailure())
                return;
        }
    }
}

TEST_F(FullDiskTest, ADiskThatStaysFullGivesNoFileWhereThereWasNone)
{
    for (const Writing& writing : Writings()) {
        for (int number = 1; number <= 3; ++number) {
            SCOPED_TRACE(testing::Message() << writing.File.toStdString() << ", from call " << number);
            QDir(Path(QStringLiteral("out"))).removeRecursively();
            ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("out"))));
            int calls = 0;
            EXPECT_EQ(RunFailing(writing, "FAIL_FROM", number, calls).Code, 74);
            EXPECT_FALSE(QFile::exists(writing.File));
        }
    }
}

TEST_F(FullDiskTest, MessagesForTheMailerAreWrittenWholeOrNamed)
{
    const Writing writing{"pending", {QStringLiteral("--export"), Path(QStringLiteral("out"))}, {}};
    const QString pending = FileMail(Mail("Waits"));
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        database->Execute(QStringLiteral("UPDATE [Messages] SET [Category]=%1, [Flags]=%2, [SendAfter]=0, [Sent]=0 "
                                         "WHERE [Reference]=%3")
                              .arg(OutboxFolder)
                              .arg(PendingFlag)
                              .arg(pending));
    }
    const QString file = Path(QStringLiteral("out/") + pending + QStringLiteral(".eml"));
    for (int number = 1;; ++number) {
        QDir(Path(QStringLiteral("out"))).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("out"))));
        int calls = 0;
        const Outcome outcome = RunFailing(writing, "FAIL_AT", number, calls);
        if (calls < number) {
            EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
            EXPECT_EQ(Read(file), Mail("Waits"));
            EXPECT_GE(calls, 4);
            return;
        }
        EXPECT_EQ(outcome.Code, 74) << number;
        EXPECT_TRUE(outcome.Problems.contains(file.toUtf8() + " could not be written: the disk is full")) << number;
        EXPECT_TRUE(Out().isEmpty()) << number;
    }
}

TEST_F(FullDiskTest, AFullDeviceOrAClosedOutputIsNeverTakenForWritten)
{
    const QList<QStringList> commands = {
        {QStringLiteral("list"), Station()},
        {QStringLiteral("show"), Station(), Reference_},
        {QStringLiteral("export"), Station(), Reference_, QStringLiteral("-")},
        {QStringLiteral("contacts"), Station(), QStringLiteral("export")},
        {QStringLiteral("print"), Station(), QStringLiteral("Message-Single message"), Reference_, QStringLiteral("-o"),
         QStringLiteral("-")},
        {QStringLiteral("--help")},
    };
    const QByteArray station = Read(Station() + QStringLiteral("/Tolva.mdb"));
    for (const QStringList& words : commands) {
        for (const char* where : {"exec \"$0\" \"$@\" >/dev/full", "exec \"$0\" \"$@\" >&-"}) {
            const Outcome outcome = InShell(QString::fromLatin1(where), words);
            EXPECT_EQ(outcome.Code, 74) << words.first().toStdString() << ' ' << where;
            EXPECT_TRUE(outcome.Problems.contains("could not be written")) << outcome.Problems.constData();
        }
    }
    EXPECT_EQ(InShell(QStringLiteral("exec \"$0\" \"$@\" <&- 2>&-"), commands.first()).Code, 0);
    EXPECT_EQ(OnStation("check").Code, 0);
    EXPECT_EQ(Read(Station() + QStringLiteral("/Tolva.mdb")).size(), station.size());
}

TEST_F(FullDiskTest, APipeThatIsNamedGetsTheContentAndStaysOne)
{
    const QString pipe = Path(QStringLiteral("pipe"));
    ASSERT_EQ(QProcess::execute(QStringLiteral("mkfifo"), {pipe}), 0);
    QProcess reader;
    reader.start(QStringLiteral("cat"), {pipe});
    EXPECT_EQ(OnStation("export", {Reference_, pipe, QStringLiteral("--force")}).Code, 0);
    EXPECT_TRUE(reader.waitForFinished());
    EXPECT_EQ(reader.readAllStandardOutput(), Mail("A card"));
    EXPECT_FALSE(QFileInfo(pipe).isFile());
}

TEST_F(FullDiskTest, ThePdfProgramSaysTheSameOfItsOwnFile)
{
    const QString page = Write(QStringLiteral("page.html"), "<p>Words</p>");
    const auto run = [&](const QString& output) {
        QProcess process;
        Prepare(process, {QStringLiteral("-o"), output, page});
        process.setProgram(QStringLiteral(TOLVA_PDF_PROGRAM));
        process.start();
        EXPECT_TRUE(process.waitForFinished());
        return Outcome{process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    };
    EXPECT_EQ(run(Path(QStringLiteral("missing/a.pdf"))).Code, 73);
    EXPECT_EQ(run(Path(QStringLiteral("a.pdf"))).Code, 0);
    EXPECT_TRUE(Read(Path(QStringLiteral("a.pdf"))).startsWith("%PDF-"));
    const Outcome printed = run(QStringLiteral("-"));
    EXPECT_EQ(printed.Code, 0) << printed.Problems.constData();
    EXPECT_TRUE(printed.Output.startsWith("%PDF-"));
}

TEST_F(FullDiskTest, PdfAndHtmlFailWithTheSameCodeAndWords)
{
    const QStringList print{QStringLiteral("Message-Single message"), Reference_, QStringLiteral("-o")};
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("folder.html"))));
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("folder.pdf"))));
    ASSERT_TRUE(QFile::link(Write(QStringLiteral("victim"), Precious), Path(QStringLiteral("link.html"))));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("victim")), Path(QStringLiteral("link.pdf"))));
    for (const char* name : {"missing/a", "folder", "link"}) {
        QByteArrayList words;
        for (const char* extension : {".html", ".pdf"}) {
            const QString file = Path(QLatin1String(name) + QLatin1String(extension));
            const Outcome outcome = OnStation("print", print + QStringList{file, QStringLiteral("--force")});
            EXPECT_EQ(outcome.Code, 73) << file.toStdString();
            words.append(QByteArray(outcome.Problems).replace(file.toUtf8(), "FILE"));
        }
        EXPECT_EQ(words.first(), words.last());
        EXPECT_TRUE(words.first().contains("FILE could not be written: ")) << words.first().constData();
    }
    EXPECT_EQ(Read(Path(QStringLiteral("victim"))), Precious);
}
