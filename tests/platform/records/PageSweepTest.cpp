// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"

#include <QElapsedTimer>
#include <QFile>

#include <sqlite3.h>

#include <map>
#include <random>

using namespace dao;

namespace
{

constexpr qsizetype PageSize = 4096;
/// More than any part of a station of fifty pages takes, even on a loaded machine.
constexpr qint64 LongMilliseconds = 20000;

/// A small database and files made from it by damaging them.
class PageSweep : public RecordsFixture
{
protected:
    PageSweep()
    {
        MakeMessages();
        AddIndex(Db(), QStringLiteral("Messages"), QStringLiteral("Subjects"), {QStringLiteral("Subject")});
        std::vector<std::unique_ptr<Field>> fields;
        fields.push_back(MakeField(QStringLiteral("Item"), dbText));
        fields.push_back(MakeField(QStringLiteral("Value"), dbMemo));
        AddTable(Db(), QStringLiteral("Settings"), std::move(fields));
        AddIndex(Db(), QStringLiteral("Settings"), QStringLiteral("Main"), {QStringLiteral("Item")}, true);
        DBEngine::BeginTrans();
        for (int i = 0; i < 12; ++i) {
            // One of several pages of its own, and others that lie in the row.
            const int size = i == 3 ? 60000 : i == 7 ? 20000 : 900;
            QString mail = QStringLiteral("Subject: %1\r\n\r\n").arg(i);
            while (mail.size() < size)
                mail += QStringLiteral("line %1 of mail %2\u00E9\r\n").arg(mail.size()).arg(i);
            const QString subject = QStringLiteral("Subject %1").arg(11 - i);
            Mails_[AddMessage(subject, mail)] = mail;
        }
        for (int i = 0; i < 40; ++i) {
            const auto settings = OpenTable(QStringLiteral("Settings"));
            settings->AddNew();
            settings->SetCollect(QStringLiteral("Item"), QStringLiteral("Item %1 ").arg(i).repeated(8));
            settings->SetCollect(QStringLiteral("Value"), QStringLiteral("Value %1").arg(i));
            settings->Update();
        }
        DBEngine::CommitTrans();
        Database_.reset();
        QFile file(FileName());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        Whole_ = file.readAll();
    }

    qsizetype Pages() const { return Whole_.size() / PageSize; }
    QByteArray PageOf(qsizetype page) const { return Whole_.mid(page * PageSize, PageSize); }
    QByteArray With(qsizetype page, const QByteArray& octets) const
    {
        QByteArray damaged = Whole_;
        return damaged.replace(page * PageSize, PageSize, octets);
    }
    QString Write(const QByteArray& octets) const
    {
        const QString name = Path(QStringLiteral("Damaged.mdb"));
        QFile::remove(name + QStringLiteral("-journal"));
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(octets);
        return name;
    }

    static FileReport::State VerdictOf(const QString& name)
    {
        try {
            return DBEngine::ExamineDatabase(name).Verdict;
        } catch (const Error&) {
            return FileReport::State::Damaged;
        }
    }
    /// Whether it made a file that is sound itself.
    bool Makes(void (*make)(const QString&, const QString&), const QString& name)
    {
        const QString target = Path(QStringLiteral("Target.mdb"));
        Refusal_.clear();
        try {
            make(name, target);
        } catch (const Error& error) {
            Refusal_ = error.Description().toStdString();
        }
        const bool isMade = Refusal_.empty();
        EXPECT_EQ(QFile::exists(target), isMade);
        QFile::remove(target);
        return isMade;
    }

    /// Walks all rows by an index; each mail that is handed over is the one that was saved. The number of the error
    /// that ended it.
    int Walk(const QString& name, const QString& index, int& mailsRead) const
    {
        return ErrorNumberOf([&] {
            const auto database = DBEngine::OpenDatabase(name, 0, true);
            const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
            rows->SetIndex(index);
            for (int steps = 0; !rows->AtEOF(); rows->MoveNext()) {
                ASSERT_LT(++steps, 5000) << "the walk does not end";
                ReadMail(*rows, mailsRead);
            }
        });
    }
    int ReadBySnapshot(const QString& name, int& mailsRead) const
    {
        return ErrorNumberOf([&] {
            const auto database = DBEngine::OpenDatabase(name, 0, true);
            const auto rows = database->OpenRecordset(QStringLiteral("SELECT * FROM [Messages]"), dbOpenSnapshot);
            for (; !rows->AtEOF(); rows->MoveNext())
                ReadMail(*rows, mailsRead);
        });
    }
    void ReadMail(const Recordset& rows, int& mailsRead) const
    {
        QString mail;
        const int number = ErrorNumberOf([&] { mail = rows.Collect(QStringLiteral("Message")).toString(); });
        if (number != 0) {
            // A list may name a row that its table has lost.
            EXPECT_TRUE(number == errMemoDamaged || number == errFileDamaged || number == errRecordDeleted) << number;
            return;
        }
        const int reference = rows.Collect(QStringLiteral("Reference")).toInt();
        const auto known = Mails_.find(reference);
        const QString wanted = known == Mails_.end() ? QString() : known->second;
        // A Jet file has no room for a check of each mail: one page of mails copied over another is not noticed.
        EXPECT_EQ(mail == wanted || GetParam() == u"jet", true)
            << "mail " << reference << " was changed and passes for what was saved";
        ++mailsRead;
    }

    /// All that is done with a file goes by one verdict, and ends.
    void ExpectOneVerdict(const QByteArray& octets, const std::string& what)
    {
        SCOPED_TRACE(what);
        QElapsedTimer timer;
        timer.start();
        const QString name = Write(octets);
        const FileReport::State verdict = VerdictOf(name);
        const bool isDamaged = verdict == FileReport::State::Damaged;
        EXPECT_EQ(ErrorNumberOf([&] { DBEngine::CheckDatabase(name); }) != 0, isDamaged);
        EXPECT_EQ(!Makes([](const QString& from, const QString& to) { DBEngine::CopyDatabase(from, to, {}); }, name),
                  isDamaged);
        EXPECT_EQ(!Makes(&DBEngine::CompactDatabase, name), isDamaged) << Refusal_;
        int mails = 0;
        int number = ReadBySnapshot(name, mails);
        for (const char* index : {"", "Main", "Subjects"}) {
            const int ended = Walk(name, QString::fromLatin1(index), mails);
            number = number == 0 ? ended : number;
        }
        if (verdict == FileReport::State::Sound) {
            EXPECT_EQ(number, 0);
            EXPECT_EQ(mails, static_cast<int>(4 * Mails_.size()));
        }
        EXPECT_LT(timer.elapsed(), LongMilliseconds);
        ++Verdicts_[verdict];
    }

    QByteArray Whole_;
    std::map<int, QString> Mails_;
    std::map<FileReport::State, int> Verdicts_;
    std::string Refusal_; ///< Why the last file was not made.
};

TEST_P(PageSweep, TheWholeFileIsSound)
{
    ASSERT_GT(Pages(), 25);
    ExpectOneVerdict(Whole_, "whole");
    EXPECT_EQ(Verdicts_[FileReport::State::Sound], 1);
}

TEST_P(PageSweep, OverwrittenZeroedOrCutAtAnyPageItIsJudgedAlikeByAll)
{
    std::mt19937 random(11);
    QByteArray noise(PageSize, Qt::Uninitialized);
    for (qsizetype page = 0; page < Pages(); ++page) {
        for (char& octet : noise)
            octet = static_cast<char>(random());
        const std::string place = " page " + std::to_string(page);
        ExpectOneVerdict(With(page, noise), "noise on" + place);
        ExpectOneVerdict(With(page, QByteArray(PageSize, '\0')), "zeros on" + place);
        ExpectOneVerdict(Whole_.left(page * PageSize + PageSize / 2), "cut in" + place);
    }
    EXPECT_GT(Verdicts_[FileReport::State::Damaged], Pages());
}

TEST_P(PageSweep, EachPageCopiedOverEachOtherIsJudgedAlikeByAll)
{
    for (qsizetype page = 0; page < Pages(); ++page) {
        for (qsizetype other = page % 3; other < Pages(); other += 3) {
            if (other != page)
                ExpectOneVerdict(With(page, PageOf(other)),
                                 "page " + std::to_string(other) + " over page " + std::to_string(page));
        }
    }
    EXPECT_GT(Verdicts_[FileReport::State::Damaged], Pages());
}

TEST_P(PageSweep, NoMailThatAFaultChangedPassesForWhatWasSaved)
{
    if (GetParam() == u"jet")
        GTEST_SKIP() << "a Jet file has no room for a check of each mail";
    constexpr unsigned Seed = 20;
    std::mt19937 random(Seed);
    const auto any = [&](qsizetype limit) { return static_cast<qsizetype>(random() % static_cast<unsigned>(limit)); };
    for (int i = 0; i < 200; ++i) {
        QByteArray damaged = Whole_;
        switch (i % 3) {
        case 0: {
            const qsizetype at = any(Whole_.size());
            damaged[at] = static_cast<char>(damaged.at(at) ^ static_cast<char>(1U << (random() % 8)));
            break;
        }
        case 1:
            damaged = With(any(Pages()), QByteArray(PageSize, '\0'));
            break;
        default:
            damaged = With(any(Pages()), PageOf(any(Pages())));
        }
        SCOPED_TRACE(i);
        const QString name = Write(damaged);
        int mails = 0;
        ReadBySnapshot(name, mails);
        Walk(name, QStringLiteral("Main"), mails);
    }
}

/// The memo's octets, found in the file, with one bit of them turned.
TEST_P(PageSweep, AFlippedBitInAMailIsNamedWithItsRowAndTheMailIsStillToBeHad)
{
    if (GetParam() == u"jet")
        GTEST_SKIP() << "a Jet file has no room for a check of each mail";
    QByteArray damaged = Whole_;
    const qsizetype at = damaged.indexOf("Subject: 3\r");
    ASSERT_GT(at, 0);
    damaged[at] = 's';
    const QString name = Write(damaged);
    const FileReport report = DBEngine::ExamineDatabase(name);
    EXPECT_EQ(report.Verdict, FileReport::State::Damaged);
    EXPECT_TRUE(report.IsStructureSound);
    ASSERT_EQ(report.Memos.size(), 1);
    EXPECT_EQ(report.Memos.first().Table, QStringLiteral("Messages"));
    EXPECT_EQ(report.Memos.first().Field, QStringLiteral("Message"));
    EXPECT_EQ(report.Memos.first().Row, 4);
    EXPECT_TRUE(report.Memos.first().IsReadable);
    const auto database = DBEngine::OpenDatabase(name);
    for (const auto type : {dbOpenTable, dbOpenDynaset, dbOpenSnapshot}) {
        const auto rows = database->OpenRecordset(
            type == dbOpenTable ? QStringLiteral("Messages") : QStringLiteral("SELECT * FROM [Messages]"), type);
        int refused = 0;
        for (; !rows->AtEOF(); rows->MoveNext()) {
            const Field& field = (*rows)[QStringLiteral("Message")];
            const int reference = rows->Collect(QStringLiteral("Reference")).toInt();
            QByteArray changed = Mails_.at(reference).toLatin1();
            if (reference == 4) {
                ++refused;
                EXPECT_EQ(ErrorNumberOf([&] { static_cast<void>(field.Value()); }), errMemoDamaged);
                EXPECT_EQ(ErrorNumberOf([&] { static_cast<void>(field.Octets()); }), errMemoDamaged);
                changed[0] = 's';
            } else {
                EXPECT_EQ(field.Value().toString(), Mails_.at(reference));
            }
            EXPECT_EQ(field.Octets(MemoTrust::AsStored), changed);
        }
        EXPECT_EQ(refused, 1);
    }
}

TEST_P(PageSweep, OtherFieldsOfADamagedRowCanBeChangedAndANewMailMakesItSound)
{
    if (GetParam() == u"jet")
        GTEST_SKIP() << "a Jet file has no room for a check of each mail";
    QByteArray damaged = Whole_;
    damaged[damaged.indexOf("of mail 5") + 8] = '8';
    const QString name = Write(damaged);
    const auto database = DBEngine::OpenDatabase(name);
    const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    rows->SetIndex(QStringLiteral("Main"));
    rows->Seek(SeekComparison::Equal, {6});
    rows->Edit();
    rows->SetCollect(QStringLiteral("Category"), 5);
    rows->Update();
    EXPECT_EQ(ErrorNumberOf([&] { static_cast<void>(rows->Collect(QStringLiteral("Message"))); }), errMemoDamaged);
    EXPECT_EQ(VerdictOf(name), FileReport::State::Damaged);
    rows->Edit();
    rows->SetCollect(QStringLiteral("Message"), QStringLiteral("as it was"));
    rows->Update();
    EXPECT_EQ(rows->Collect(QStringLiteral("Message")).toString(), QStringLiteral("as it was"));
    EXPECT_EQ(VerdictOf(name), FileReport::State::Sound);
}

TEST_P(PageSweep, MemosThatAQueryWritesAreSoundAsWell)
{
    const auto database = DBEngine::OpenDatabase(FileName());
    database->Execute(QStringLiteral("UPDATE [Messages] SET [Message]=[Subject] & ' again' WHERE [Reference]<4"));
    database->Execute(QStringLiteral("UPDATE [Messages] SET [Message]=NULL WHERE [Reference]=5"));
    database->Execute(QStringLiteral("UPDATE [Settings] SET [Value]='new' WHERE [Item] LIKE 'Item 3*'"));
    const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    EXPECT_EQ(rows->Collect(QStringLiteral("Message")).toString(), QStringLiteral("Subject 11 again"));
    EXPECT_EQ(VerdictOf(FileName()), FileReport::State::Sound);
}

/// Takes from a file what the format before did not have.
void MakeOld(const QString& name)
{
    sqlite3* file = nullptr;
    ASSERT_EQ(sqlite3_open(name.toUtf8().constData(), &file), SQLITE_OK);
    dao::sqlite::RegisterSqlFunctions(file);
    char* words = nullptr;
    EXPECT_EQ(sqlite3_exec(file,
                           "ALTER TABLE Messages DROP COLUMN \"~check.Message\"; ALTER TABLE Settings DROP COLUMN "
                           "\"~check.Value\"; PRAGMA user_version=1",
                           nullptr, nullptr, &words),
              SQLITE_OK)
        << (words != nullptr ? words : "");
    sqlite3_free(words);
    sqlite3_close(file);
}

TEST_P(PageSweep, AFileOfTheFormatBeforeIsReadAndWrittenAndGetsItsChecksWhenItIsCompacted)
{
    if (GetParam() != u"sqlite")
        GTEST_SKIP() << "the format is that engine's";
    MakeOld(FileName());
    {
        const auto database = DBEngine::OpenDatabase(FileName());
        const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        EXPECT_EQ(rows->Collect(QStringLiteral("Message")).toString(), Mails_.at(1));
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Message"), QStringLiteral("added"));
        rows->Update();
        rows->MoveFirst();
        rows->Edit();
        rows->SetCollect(QStringLiteral("Message"), QStringLiteral("edited"));
        rows->Update();
        database->Execute(QStringLiteral("UPDATE [Messages] SET [Message]='by query' WHERE [Reference]=2"));
    }
    EXPECT_EQ(VerdictOf(FileName()), FileReport::State::Sound);
    const QString target = Path(QStringLiteral("Compacted.mdb"));
    DBEngine::CompactDatabase(FileName(), target);
    EXPECT_EQ(VerdictOf(target), FileReport::State::Sound);
    {
        const auto database = DBEngine::OpenDatabase(target);
        const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        EXPECT_EQ(rows->RecordCount(), static_cast<int>(Mails_.size()) + 1);
        EXPECT_EQ(rows->Collect(QStringLiteral("Message")).toString(), QStringLiteral("edited"));
        rows->MoveNext();
        rows->Edit();
        rows->SetCollect(QStringLiteral("Message"), QStringLiteral("edited again"));
        rows->Update();
    }
    EXPECT_EQ(VerdictOf(target), FileReport::State::Sound);
    QFile file(target);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const qsizetype at = file.readAll().indexOf("edited again");
    ASSERT_GT(at, 0);
    ASSERT_TRUE(file.seek(at));
    ASSERT_EQ(file.write("E"), 1);
    file.close();
    EXPECT_EQ(DBEngine::ExamineDatabase(target).Memos.size(), 1);
}

/// An index that lost a row, as a torn write leaves it, says nothing wrong about the rows themselves.
TEST_P(PageSweep, AnIndexThatDoesNotMatchIsNoDamageAndCompactingRepairsIt)
{
    if (GetParam() != u"sqlite")
        GTEST_SKIP() << "the index is broken by the means of that engine's files";
    sqlite3* file = nullptr;
    ASSERT_EQ(sqlite3_open(FileName().toUtf8().constData(), &file), SQLITE_OK);
    dao::sqlite::RegisterSqlFunctions(file);
    // The index is taken for another one's tree while a row goes.
    EXPECT_EQ(sqlite3_exec(file,
                           "PRAGMA writable_schema=ON; CREATE TABLE Aside AS SELECT * FROM sqlite_master WHERE name = "
                           "'~1.Subjects'; DELETE FROM sqlite_master WHERE name = '~1.Subjects'; PRAGMA "
                           "writable_schema=RESET; UPDATE Messages SET Subject = 'Another' WHERE Reference = 5; PRAGMA "
                           "writable_schema=ON; INSERT INTO sqlite_master SELECT * FROM Aside; PRAGMA "
                           "writable_schema=RESET; DROP TABLE Aside",
                           nullptr, nullptr, nullptr),
              SQLITE_OK)
        << sqlite3_errmsg(file);
    sqlite3_close(file);
    const FileReport report = DBEngine::ExamineDatabase(FileName());
    EXPECT_EQ(report.Verdict, FileReport::State::Repairable) << report.Faults.join(u'\n').toStdString();
    EXPECT_FALSE(report.Faults.isEmpty());
    const QString copy = Path(QStringLiteral("Copy.mdb"));
    DBEngine::CopyDatabase(FileName(), copy, {});
    EXPECT_EQ(VerdictOf(copy), FileReport::State::Repairable);
    const QString target = Path(QStringLiteral("Compacted.mdb"));
    DBEngine::CompactDatabase(FileName(), target);
    EXPECT_EQ(VerdictOf(target), FileReport::State::Sound);
    int mails = 0;
    EXPECT_EQ(Walk(target, QStringLiteral("Subjects"), mails), 0);
    EXPECT_EQ(mails, static_cast<int>(Mails_.size()));
}

INSTANTIATE_FOR_FILE_ENGINES(PageSweep);

} // namespace
