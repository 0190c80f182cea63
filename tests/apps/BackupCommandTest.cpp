// SPDX-License-Identifier: Apache-2.0

// tolva backup, backups, restore and compact.

#include "CommandLineTest.h"
#include "StationCheck.h"

#include <QDateTime>
#include <QHash>
#include <QJsonDocument>

#include <csignal>

class BackupCommandTest : public CommandLineTest
{
protected:
    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }
    QString Root() const { return Station() + QStringLiteral("/Backups/Tolva"); }
    QString Copy(const QString& name) const { return Root() + u'/' + name + QStringLiteral("/Tolva.mdb"); }

    static QJsonObject Object(const QByteArray& line) { return QJsonDocument::fromJson(line).object(); }
    QJsonObject BackUp() const { return Object(Expect("backup", {QStringLiteral("--json")})); }
    /// The names of the backups by what is thought of them.
    QHash<QString, QStringList> NamesByState() const
    {
        QHash<QString, QStringList> names;
        const Outcome outcome = OnStation("backups", {QStringLiteral("--json"), QStringLiteral("--check")});
        for (const QByteArray& line : outcome.Lines()) {
            const QJsonObject entry = Object(line);
            names[entry.value(QStringLiteral("state")).toString()].append(
                entry.value(QStringLiteral("name")).toString());
        }
        return names;
    }
    /// The names of the backups in that state.
    QStringList Names(const char16_t* state) const { return NamesByState().value(QString::fromUtf16(state)); }
    /// Gives a backup another day, so that one made in the same minute does not take its place.
    void Date(const QString& name, const QString& newName) const
    {
        ASSERT_TRUE(QDir(Root()).rename(name, newName));
        const QDateTime date = QDateTime::fromString(newName, QStringLiteral("yyyy-MM-dd hh.mm"));
        Write(QStringLiteral("station/Backups/Tolva/%1/Backup.inf").arg(newName),
              "[Details]\nCreated=" + date.toString(Qt::ISODate).toLatin1() + "\n");
    }
    void TurnAutomaticBackupsOff() const
    {
        Expect("setting", {QStringLiteral("Backups.EnableAutoBackup"), QStringLiteral("False")});
        QDir(Station() + QStringLiteral("/Backups")).removeRecursively();
    }
    /// A text of that many messages for "file".
    static QByteArray Mbox(int messages, int size)
    {
        QByteArray mbox;
        for (int i = 0; i < messages; ++i)
            mbox += "From a@example.org Fri Nov 20 08:00:00 2026\n" +
                    Mail(QByteArray::number(i), QByteArray(size, 'm') + "\n") + '\n';
        return mbox;
    }
    int MessageCount() const { return static_cast<int>(Messages().size()); }
    /// How many messages the station holds; -1 when it is not sound. Looked at in this process: where a station is
    /// looked at behind each of a thousand failures, starting programs is what takes the time.
    int SoundMessages() const
    {
        const StationCheck::Report report =
            StationCheck::Run(Station(), [](const QString& words) { ADD_FAILURE() << words.toStdString(); });
        return report.IsWhole && report.IsSound() ? static_cast<int>(report.Messages()) : -1;
    }
};

TEST_F(BackupCommandTest, ABackupSaysWhereItIsAndWhatItHolds)
{
    FileMail(Mail("a"));
    const QJsonObject made = BackUp();
    const QString name = made.value(QStringLiteral("name")).toString();
    EXPECT_EQ(made.value(QStringLiteral("folder")).toString(), Root() + u'/' + name);
    EXPECT_EQ(made.value(QStringLiteral("size")).toInteger(), QFileInfo(Copy(name)).size());
    EXPECT_EQ(made.value(QStringLiteral("backup")), Object("{\"messages\":1,\"prizes\":0,\"winners\":0}"));
    EXPECT_EQ(made.value(QStringLiteral("before")), made.value(QStringLiteral("after")));
    EXPECT_EQ(Names(u"sound"), QStringList{name});
    EXPECT_TRUE(Expect("backup").endsWith("\n1 message, 0 prizes, 0 winners\n"));
}

TEST_F(BackupCommandTest, TheFirstCommandOfTheDayMakesTheDailyBackup)
{
    EXPECT_EQ(OnStation("backups").Output, "");
    EXPECT_EQ(Expect("file", {}, Mail("a")), "filed 1, failed 0\n");
    EXPECT_EQ(Names(u"sound").size(), 1);
}

TEST_F(BackupCommandTest, ARefusedFolderHarmsNoFiling)
{
    Write(QStringLiteral("station/Backups"), "in the way");
    EXPECT_EQ(Expect("file", {}, Mail("a")), "filed 1, failed 0\n");
    const Outcome outcome = OnStation("backup");
    EXPECT_EQ(outcome.Code, 74);
    EXPECT_TRUE(outcome.Problems.contains("could not be written")) << outcome.Problems.constData();
}

TEST_F(BackupCommandTest, NoStationIsNoInput)
{
    const QString nowhere = Path(QStringLiteral("nowhere"));
    for (const char* command : {"backup", "backups", "restore", "compact"})
        EXPECT_EQ(Run({QString::fromLatin1(command), nowhere}).Code, 66) << command;
}

TEST_F(BackupCommandTest, TheNewestSoundBackupIsRestored)
{
    TurnAutomaticBackupsOff();
    Expect("setting", {QStringLiteral("Backups.ExpiryDays"), QStringLiteral("0")});
    FileMail(Mail("a"));
    Date(BackUp().value(QStringLiteral("name")).toString(), QStringLiteral("2026-01-01 10.00"));
    FileMail(Mail("b"));
    Date(BackUp().value(QStringLiteral("name")).toString(), QStringLiteral("2026-01-02 10.00"));
    FileMail(Mail("c"));
    const QJsonObject restored = Object(Expect("restore", {QStringLiteral("--json")}));
    EXPECT_EQ(restored.value(QStringLiteral("name")).toString(), QStringLiteral("2026-01-02 10.00"));
    EXPECT_EQ(restored.value(QStringLiteral("before")).toObject().value(QStringLiteral("messages")).toInt(), 3);
    EXPECT_EQ(restored.value(QStringLiteral("after")).toObject().value(QStringLiteral("messages")).toInt(), 2);
    EXPECT_EQ(MessageCount(), 2);
    EXPECT_TRUE(QFile::exists(Station() + QStringLiteral("/Tolva-0001.BAK")));

    QFile damaged(Copy(QStringLiteral("2026-01-02 10.00")));
    ASSERT_TRUE(damaged.resize(damaged.size() / 2));
    EXPECT_EQ(OnStation("backups", {QStringLiteral("--check")}).Code, 65);
    EXPECT_EQ(OnStation("restore", {QStringLiteral("2026-01-02 10.00")}).Code, 65);
    EXPECT_EQ(MessageCount(), 2);
    Expect("restore");
    EXPECT_EQ(MessageCount(), 1);
    EXPECT_EQ(OnStation("restore", {QStringLiteral("2026-01-09 10.00")}).Code, 65);
}

TEST_F(BackupCommandTest, AStationIsRestoredWhateverHappenedToItsFile)
{
    TurnAutomaticBackupsOff();
    FileMail(Mail("a"));
    BackUp();
    const QByteArray whole = Read(File());
    QByteArray flipped = whole;
    flipped[18] = '\x7F';
    QByteArray zeroed = whole;
    zeroed.replace(4096, whole.size() / 2, QByteArray(whole.size() / 2, '\0'));
    for (const QByteArray& damaged :
         {QByteArray(), QByteArray("text"), whole.left(whole.size() / 2), flipped, zeroed}) {
        Write(QStringLiteral("station/Tolva.mdb"), QByteArray());
        ASSERT_TRUE(QFile::resize(File(), 0));
        Write(QStringLiteral("station/Tolva.mdb"), damaged);
        const Outcome outcome = OnStation("restore");
        EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
        EXPECT_EQ(MessageCount(), 1);
        EXPECT_EQ(OnStation("check").Code, 0);
    }
    ASSERT_TRUE(QFile::remove(File()));
    EXPECT_EQ(OnStation("restore").Code, 0);
    EXPECT_EQ(MessageCount(), 1);
}

TEST_F(BackupCommandTest, CompactingKeepsEverythingAndTheOldFile)
{
    FileMail(Mail("a", QByteArray(300000, 'x')));
    FileMail(Mail("b"));
    Expect("delete", {QStringLiteral("1"), QStringLiteral("--permanently")});
    const QJsonObject done = Object(Expect("compact", {QStringLiteral("--json")}));
    EXPECT_EQ(done.value(QStringLiteral("before")), done.value(QStringLiteral("after")));
    EXPECT_LT(done.value(QStringLiteral("sizeAfter")).toInteger(),
              done.value(QStringLiteral("sizeBefore")).toInteger());
    EXPECT_TRUE(QFile::exists(done.value(QStringLiteral("kept")).toString()));
    EXPECT_EQ(MessageCount(), 1);
}

TEST_F(BackupCommandTest, ADamagedStationIsNotCompactedAndNotBackedUp)
{
    TurnAutomaticBackupsOff();
    FileMail(Mail("a", QByteArray(300000, 'x')));
    BackUp();
    QFile file(File());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(file.size() - 20 * 4096));
    file.write(QByteArray(10 * 4096, '\x5A'));
    file.close();
    const QByteArray damaged = Read(File());
    EXPECT_EQ(OnStation("compact").Code, 65);
    EXPECT_TRUE(Read(File()) == damaged);
    EXPECT_EQ(OnStation("backup").Code, 65);
    EXPECT_EQ(Names(u"sound").size(), 1);
}

TEST_F(BackupCommandTest, BackupsUnderLoadOpenAndAreSound)
{
    TurnAutomaticBackupsOff();
    const QString large = Write(QStringLiteral("large"), Mbox(40, 1000000)); // above what one lock copies
    Expect("file", {large});
    const QString mbox = Write(QStringLiteral("mbox"), Mbox(5000, 2000));
    QProcess writers[2];
    const auto start = [&](QProcess& writer) {
        Prepare(writer, {QStringLiteral("file"), Station(), mbox});
        writer.start();
        ASSERT_TRUE(writer.waitForStarted());
    };
    for (QProcess& writer : writers)
        start(writer);
    int last = 40;
    for (int i = 0; i < 5; ++i) {
        for (QProcess& writer : writers) {
            if (writer.waitForFinished(0))
                start(writer);
        }
        const Outcome outcome = OnStation("backup", {QStringLiteral("--json")});
        ASSERT_EQ(outcome.Code, 0) << outcome.Problems.constData();
        const QJsonObject made = Object(outcome.Output);
        const auto messages = [&](const char16_t* key) {
            return made.value(QString::fromUtf16(key)).toObject().value(QStringLiteral("messages")).toInt();
        };
        EXPECT_GE(messages(u"backup"), messages(u"before"));
        EXPECT_LE(messages(u"backup"), messages(u"after"));
        EXPECT_GE(messages(u"before"), last);
        last = messages(u"after");
        ASSERT_EQ(Names(u"sound").size(), Names(u"complete").size() + Names(u"sound").size()) << i;
        EXPECT_TRUE(Names(u"damaged").isEmpty());
    }
    EXPECT_GT(last, 40) << "nobody wrote meanwhile";
    for (QProcess& writer : writers) {
        if (const qint64 process = writer.processId())
            ::kill(static_cast<pid_t>(process), SIGINT);
        EXPECT_TRUE(writer.state() == QProcess::NotRunning || writer.waitForFinished());
    }
    EXPECT_FALSE(QFile::exists(File() + QStringLiteral("-copying")));
    EXPECT_EQ(OnStation("check").Code, 0);
}

TEST_F(BackupCommandTest, TwoBackupsAtOnceHarmNeither)
{
    TurnAutomaticBackupsOff();
    Expect("file", {Write(QStringLiteral("large"), Mbox(30, 1000000))});
    for (int i = 0; i < 3; ++i) {
        QProcess programs[2];
        for (QProcess& program : programs) {
            Prepare(program, {QStringLiteral("backup"), Station()});
            program.start();
        }
        for (QProcess& program : programs) {
            ASSERT_TRUE(program.waitForFinished());
            EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().constData();
        }
        EXPECT_TRUE(Names(u"damaged").isEmpty());
        EXPECT_TRUE(Names(u"unfinished").isEmpty());
    }
}

TEST_F(BackupCommandTest, KilledInTheMiddleABackupHarmsNothing)
{
    TurnAutomaticBackupsOff();
    Expect("file", {Write(QStringLiteral("large"), Mbox(60, 1000000))});
    Date(BackUp().value(QStringLiteral("name")).toString(), QStringLiteral("2026-01-01 10.00"));
    Expect("setting", {QStringLiteral("Backups.ExpiryDays"), QStringLiteral("1")});
    QProcess writer;
    Prepare(writer, {QStringLiteral("file"), Station(), Write(QStringLiteral("mbox"), Mbox(20000, 2000))});
    writer.start();
    for (int i = 1; i <= 6; ++i) {
        QProcess backup;
        Prepare(backup, {QStringLiteral("backup"), Station()});
        backup.start();
        ASSERT_TRUE(backup.waitForStarted());
        EXPECT_FALSE(backup.waitForFinished(i * 15));
        backup.kill();
        backup.waitForFinished();
        EXPECT_EQ(Names(u"sound").first(), QStringLiteral("2026-01-01 10.00"));
        EXPECT_TRUE(Names(u"damaged").isEmpty());
    }
    ::kill(static_cast<pid_t>(writer.processId()), SIGINT);
    EXPECT_TRUE(writer.waitForFinished());
    EXPECT_EQ(OnStation("check").Code, 0);
    // And the next one goes through. The old one stays, as one of the newest three.
    const QString name = BackUp().value(QStringLiteral("name")).toString();
    EXPECT_EQ(Names(u"sound"), (QStringList{QStringLiteral("2026-01-01 10.00"), name}));
    EXPECT_FALSE(QFile::exists(File() + QStringLiteral("-copying")));
}

/// Every call that changes a file fails in turn, alone and with all later ones, or is the last thing a process does.
class BackupFaultTest : public BackupCommandTest, public testing::WithParamInterface<const char*>
{
protected:
    void SetUp() override
    {
        BackupCommandTest::SetUp();
        TurnAutomaticBackupsOff();
        FileMail(Mail("a"));
        Date(BackUp().value(QStringLiteral("name")).toString(), QStringLiteral("2026-01-01 10.00"));
        FileMail(Mail("b"));
        Expect("setting", {QStringLiteral("Backups.ExpiryDays"), QStringLiteral("1")});
        ASSERT_TRUE(Keep(Station(), Path(QStringLiteral("template"))));
    }
    static bool Keep(const QString& from, const QString& to)
    {
        QDir(to).removeRecursively();
        return QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-a"), from, to}) == 0;
    }
    /// The exit code, -1 for a process that was killed. calls: how many there were.
    int RunFaulty(const char* command, int number, int& calls) const
    {
        const QString log = Path(QStringLiteral("calls"));
        QFile::remove(log);
        QProcess process;
        Prepare(process, {QString::fromLatin1(command), Station()});
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QString::fromLatin1(GetParam()), QString::number(number));
        environment.insert(QStringLiteral("FAIL_LOG"), log);
        process.setProcessEnvironment(environment);
        process.start();
        EXPECT_TRUE(process.waitForFinished());
        calls = QFile::exists(log) ? Read(log).trimmed().toInt() : number;
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    /// Calls check(exit code) after each failure, each time on a fresh station.
    template <typename Check>
    void FailEverywhere(const char* command, Check&& check)
    {
        int failures = 0;
        for (int number = 1;; ++number) {
            SCOPED_TRACE(testing::Message() << command << ' ' << GetParam() << '=' << number);
            ASSERT_TRUE(Keep(Path(QStringLiteral("template")), Station()));
            int calls = 0;
            const int code = RunFaulty(command, number, calls);
            if (code != -1 && calls < number) {
                EXPECT_EQ(code, 0);
                EXPECT_GT(failures, 5); // those of a restore, which has the fewest
                return;
            }
            ++failures;
            check(code);
            if (HasFatalFailure() || HasNonfatalFailure())
                return;
        }
    }
};

TEST_P(BackupFaultTest, ABackupIsThereWholeOrTheOlderOnesAre)
{
    FailEverywhere("backup", [&](int code) {
        const auto names = NamesByState();
        const QStringList sound = names.value(QStringLiteral("sound"));
        const bool isNew = !sound.isEmpty() && sound.last() > QStringLiteral("2026-01-01 10.00");
        EXPECT_TRUE(isNew || sound == QStringList{QStringLiteral("2026-01-01 10.00")});
        EXPECT_TRUE(isNew || code != 0) << "a backup was reported that is not there";
        EXPECT_TRUE(names.value(QStringLiteral("damaged")).isEmpty());
        EXPECT_EQ(SoundMessages(), 2);
    });
}

TEST_P(BackupFaultTest, ARestoreLeavesTheOldStationOrTheRestoredOne)
{
    FailEverywhere("restore", [&](int code) {
        ASSERT_TRUE(QFile::exists(File()));
        const int messages = SoundMessages();
        EXPECT_TRUE(messages == 1 || messages == 2) << messages;
        EXPECT_TRUE(code != 0 || messages == 1) << "a restore was reported that did not happen";
        EXPECT_EQ(Names(u"sound"), QStringList{QStringLiteral("2026-01-01 10.00")});
    });
}

TEST_P(BackupFaultTest, ACompactionLeavesTheOldStationOrTheCompactedOne)
{
    FailEverywhere("compact", [&](int) {
        ASSERT_TRUE(QFile::exists(File()));
        EXPECT_EQ(SoundMessages(), 2);
    });
}

INSTANTIATE_TEST_SUITE_P(Faults, BackupFaultTest, testing::Values("FAIL_AT", "FAIL_FROM", "KILL_AT"),
                         [](const auto& test) {
                             const std::string name = test.param;
                             return name == "FAIL_AT"     ? std::string("ACallFails")
                                    : name == "FAIL_FROM" ? std::string("TheDiskIsFull")
                                                          : std::string("TheProcessIsKilled");
                         });
