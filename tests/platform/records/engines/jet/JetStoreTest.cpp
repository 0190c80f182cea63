// SPDX-License-Identifier: Apache-2.0
#include "platform/files/FileSystem.h"
#include "platform/records/engines/jet/Header.h"
#include "platform/records/engines/jet/JetFixture.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>

using namespace dao;

namespace
{

/// What a program of the independent reader says; nothing where it is not installed.
std::optional<QStringList> SaidBy(const QString& program, const QStringList& words)
{
    const QString reader = QStandardPaths::findExecutable(program);
    if (reader.isEmpty())
        return std::nullopt;
    QProcess process;
    process.start(reader, words);
    if (!process.waitForFinished() || process.exitCode() != 0)
        return QStringList();
    return QString::fromUtf8(process.readAllStandardOutput()).simplified().split(u' ');
}

/// As the independent reader names it.
QString NameOfType(const Field& field)
{
    switch (field.Type()) {
    case dbBoolean:
        return QStringLiteral("Boolean NOT NULL");
    case dbByte:
        return QStringLiteral("Byte");
    case dbInteger:
        return QStringLiteral("Integer");
    case dbLong:
        return QStringLiteral("Long Integer");
    case dbSingle:
        return QStringLiteral("Single");
    case dbDouble:
        return QStringLiteral("Double");
    case dbDate:
        return QStringLiteral("DateTime");
    case dbText:
        return QStringLiteral("Text (%1)").arg(field.Size());
    case dbMemo:
        return QStringLiteral("Memo/Hyperlink (255)");
    default:
        return QStringLiteral("a type that is not known here");
    }
}

class JetStore : public JetFixture
{
protected:
    /// Texts and few values, so that both engines put them in the same order and many are equal.
    void AddPlain(int count)
    {
        static const QStringList words{QStringLiteral("alpha"),  QStringLiteral("Beta"), QStringLiteral("beta"),
                                       QStringLiteral("gamma9"), QStringLiteral("g"),    QStringLiteral("zeta 1")};
        const auto recordset = Source().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        const auto below = [this](int limit) { return static_cast<int>(Random_() % static_cast<unsigned>(limit)); };
        DBEngine::BeginTrans();
        for (int i = 0; i < count; ++i) {
            recordset->AddNew();
            if (below(10) != 0)
                recordset->SetCollect(QStringLiteral("Subject"), words.at(below(6)));
            recordset->SetCollect(QStringLiteral("Key"), QStringLiteral("key%1 %2").arg(i * 7 % count).arg(count));
            if (below(10) != 0)
                recordset->SetCollect(QStringLiteral("When"), below(20) / 4.0 - 2);
            if (below(10) != 0)
                recordset->SetCollect(QStringLiteral("Number"), below(20) - 10);
            recordset->SetCollect(QStringLiteral("Read"), below(2) == 0);
            recordset->SetCollect(QStringLiteral("Body"), QStringLiteral("Body of %1").arg(i));
            recordset->Update();
        }
        DBEngine::CommitTrans();
    }

    QString Place(Recordset& recordset)
    {
        return recordset.NoMatch() || recordset.AtEOF() || recordset.AtBOF()
                   ? QStringLiteral("none")
                   : recordset.Collect(QStringLiteral("Ref")).toString();
    }
    QStringList Answer(Database& database, const QString& query)
    {
        const auto recordset = database.OpenRecordset(query, dbOpenSnapshot);
        QStringList rows;
        for (; !recordset->AtEOF(); recordset->MoveNext()) {
            QStringList values;
            for (int i = 0; i < recordset->Fields().Count(); ++i)
                values += recordset->Fields().Item(i).Value().toString();
            rows += values.join(u'|');
        }
        return rows;
    }

    /// The words of the error that a statement raises, with its number in front.
    static QString Words(const std::function<void()>& statement)
    {
        try {
            statement();
        } catch (const Error& error) {
            return QStringLiteral("%1 %2").arg(error.Number()).arg(error.Description());
        }
        return {};
    }
    QByteArray WithHeader(const std::function<void(char* page)>& change)
    {
        QByteArray octets = OctetsOf(JetName());
        jet::Mask(octets.data() + jet::MaskedAt);
        change(octets.data());
        jet::Mask(octets.data() + jet::MaskedAt);
        return octets;
    }
};

} // namespace

TEST_F(JetStore, FindsTheRowsThatTheOtherEngineFindsByEveryComparison)
{
    MakeMessages();
    AddPlain(200);
    WriteJet();
    const auto source = Source().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    const auto jet = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    static const QStringList texts{QStringLiteral("ALPHA"),  QStringLiteral("beta"), QStringLiteral("c"),
                                   QStringLiteral("zeta 1"), QStringLiteral("zz"),   QStringLiteral("")};
    for (const auto comparison : {SeekComparison::Equal, SeekComparison::GreaterOrEqual, SeekComparison::Greater,
                                  SeekComparison::LessOrEqual, SeekComparison::Less}) {
        const auto compare = [&](const QString& index, const std::initializer_list<QVariant>& keys) {
            source->SetIndex(index);
            jet->SetIndex(index);
            source->Seek(comparison, keys);
            jet->Seek(comparison, keys);
            const std::string told =
                QStringLiteral("%1 %2 %3").arg(index).arg(int(comparison)).arg(keys.begin()->toString()).toStdString();
            EXPECT_EQ(Place(*jet), Place(*source)) << told;
            for (int step = 0; step < 5 && Place(*source) != QStringLiteral("none"); ++step) {
                const bool isForward = Random_() % 2 == 0;
                isForward ? source->MoveNext() : source->MovePrevious();
                isForward ? jet->MoveNext() : jet->MovePrevious();
                EXPECT_EQ(Place(*jet), Place(*source)) << told;
            }
        };
        for (const QString& text : texts)
            compare(QStringLiteral("Subject"), {text});
        for (int number = -11; number < 12; ++number) {
            compare(QStringLiteral("Main"), {number * 20});
            compare(QStringLiteral("When"), {number / 4.0});
            compare(QStringLiteral("When"), {number / 4.0, number});
            compare(QStringLiteral("When"), {QVariant(), number});
        }
    }
}

TEST_F(JetStore, AnswersQueriesAsTheOtherEngineDoes)
{
    MakeMessages();
    AddPlain(200);
    AddMessages(50);
    WriteJet();
    for (const char* query :
         {"SELECT * FROM Messages", "SELECT Ref FROM Messages WHERE Subject = 'BETA' ORDER BY Ref DESC",
          "SELECT Ref, Body FROM Messages WHERE Body LIKE '*of 1?'", "SELECT Ref FROM Messages WHERE Key = 'KEY7 200'",
          "SELECT COUNT(*), MAX([Number]), MIN([When]), SUM([Number]) FROM Messages WHERE Read",
          "SELECT TOP 5 Ref FROM Messages ORDER BY [When] DESC, Ref",
          "SELECT A.Ref, B.Ref FROM Messages AS A LEFT JOIN Messages AS B ON A.[Number] = B.Ref ORDER BY A.Ref, B.Ref",
          "SELECT Ref FROM Messages WHERE Ref IN (3, 5, 1000) OR [Number] BETWEEN -3 AND -1 ORDER BY Ref",
          "SELECT Ref FROM Messages WHERE [When] IS NULL ORDER BY Ref",
          "SELECT Ref FROM Messages WHERE Subject = 'nobody'"}) {
        const QString text = QString::fromLatin1(query);
        EXPECT_EQ(Answer(Jet(), text), Answer(Source(), text)) << query;
    }
    EXPECT_EQ(Words([&] { Answer(Jet(), QStringLiteral("SELECT Nothing FROM Nowhere")); }).left(4),
              QStringLiteral("3078"));
}

TEST_F(JetStore, ShowsTheStructureOfItsTables)
{
    MakeMessages();
    WriteJet();
    EXPECT_TRUE(Jet().Updatable());
    ASSERT_EQ(Jet().TableDefs().Count(), 1);
    const TableDef& table = Jet().TableDefs().Item(0);
    const TableDef& source = Source().TableDefs().Item(0);
    ASSERT_EQ(table.Fields().Count(), source.Fields().Count());
    for (int i = 0; i < table.Fields().Count(); ++i) {
        const Field& field = table.Fields().Item(i);
        const Field& wanted = source.Fields().Item(i);
        EXPECT_EQ(field.Name(), wanted.Name());
        EXPECT_EQ(field.Type(), wanted.Type());
        EXPECT_EQ(field.Size(), wanted.Size());
        EXPECT_EQ(field.Attributes(), wanted.Attributes());
        EXPECT_EQ(field.AllowZeroLength(), wanted.AllowZeroLength()) << qPrintable(field.Name());
    }
    ASSERT_EQ(table.Indexes().Count(), source.Indexes().Count());
    for (int i = 0; i < table.Indexes().Count(); ++i) {
        EXPECT_EQ(table.Indexes().Item(i).Name(), source.Indexes().Item(i).Name());
        EXPECT_EQ(table.Indexes().Item(i).Primary(), source.Indexes().Item(i).Primary());
        EXPECT_EQ(table.Indexes().Item(i).Unique(), source.Indexes().Item(i).Unique());
    }
}

TEST_F(JetStore, OnlyReadsWhileAnOfficeProgramHasTheFileOpen)
{
    MakeMessages();
    AddPlain(5);
    WriteJet();
    const QByteArray before = OctetsOf(JetName());
    const auto openedBefore = DBEngine::OpenDatabase(JetName());
    const QString users = Path(QStringLiteral("Jet.ldb"));
    SetOctets(users, "DESK1");
    Jet_ = DBEngine::OpenDatabase(JetName());
    EXPECT_FALSE(Jet().Updatable());
    const auto recordset = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    EXPECT_EQ(recordset->RecordCount(), 5);
    EXPECT_EQ(::ErrorNumberOf([&] { recordset->AddNew(); }), errReadOnly);
    EXPECT_EQ(::ErrorNumberOf([&] { recordset->Edit(); }), errReadOnly);
    EXPECT_EQ(::ErrorNumberOf([&] { recordset->Delete(); }), errReadOnly);
    for (Database* database : {&Jet(), openedBefore.get()}) {
        const QString words = Words([&] { database->Execute(QStringLiteral("DELETE FROM Messages")); });
        EXPECT_TRUE(words.startsWith(QStringLiteral("3027"))) << qPrintable(words);
        EXPECT_TRUE(words.contains(users)) << qPrintable(words);
    }
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("A"), dbLong));
    EXPECT_EQ(::ErrorNumberOf([&] { AddTable(Jet(), QStringLiteral("New"), std::move(fields)); }), errReadOnly);
    EXPECT_EQ(OctetsOf(JetName()), before);
    ASSERT_TRUE(QFile::remove(users));
    openedBefore->Execute(QStringLiteral("DELETE FROM Messages"));
    EXPECT_EQ(recordset->RecordCount(), 0);
}

TEST_F(JetStore, ShowsOfficeProgramsThatTheFileIsOpenUntilTheLastOneHasClosedIt)
{
    MakeMessages();
    AddPlain(1);
    WriteJet();
    Jet_.reset();
    const QString users = Path(QStringLiteral("Jet.ldb"));
    {
        const auto reader = DBEngine::OpenDatabase(JetName(), dbDriverNoPrompt, true);
        EXPECT_FALSE(QFile::exists(users));
    }
    auto first = DBEngine::OpenDatabase(JetName());
    auto second = DBEngine::OpenDatabase(JetName());
    first->Execute(QStringLiteral("UPDATE Messages SET Subject='A'"));
    second->Execute(QStringLiteral("UPDATE Messages SET Subject='B'"));
    EXPECT_EQ(OctetsOf(users).size() % 64, 0);
    EXPECT_EQ(OctetsOf(users).mid(32, 6), QByteArray("Tolva\0", 6));
    FileStatus status;
    const auto office = FileSystem::Current().Open(users, FileAccess::Change, status);
    ASSERT_TRUE(office);
    // Who wants it for himself alone asks for all of them.
    EXPECT_EQ(office->Lock(FileLock::Exclusive, 0x10000001, 255).Error(), FileError::Locked);
    first.reset();
    EXPECT_TRUE(QFile::exists(users));
    EXPECT_EQ(office->Lock(FileLock::Exclusive, 0x10000001, 255).Error(), FileError::Locked);
    second.reset();
    EXPECT_FALSE(QFile::exists(users));
}

TEST_F(JetStore, IsChangedAgainOnceTheOfficeProgramThatCameLaterHasGone)
{
    MakeMessages();
    AddPlain(1);
    WriteJet();
    Jet().Execute(QStringLiteral("UPDATE Messages SET Subject='A'"));
    const QString users = Path(QStringLiteral("Jet.ldb"));
    FileStatus status;
    auto office = FileSystem::Current().Open(users, FileAccess::Change, status);
    ASSERT_TRUE(office);
    ASSERT_TRUE(office->Lock(FileLock::Exclusive, 0x10000002, 1).IsDone());
    const QByteArray note = QByteArray("DESK1").leftJustified(32, '\0') + QByteArray("Admin").leftJustified(32, '\0');
    ASSERT_TRUE(office->WriteAt(64, note.constData(), note.size()).IsDone());
    EXPECT_EQ(::ErrorNumberOf([&] { Jet().Execute(QStringLiteral("UPDATE Messages SET Subject='B'")); }), errReadOnly);
    office.reset();
    Jet().Execute(QStringLiteral("UPDATE Messages SET Subject='C'"));
    Jet_.reset();
    EXPECT_FALSE(QFile::exists(users));
}

TEST_F(JetStore, IsNotHinderedByTheNoteOfAProgramOfOursThatWasKilled)
{
    MakeMessages();
    AddPlain(1);
    WriteJet();
    const QString users = Path(QStringLiteral("Jet.ldb"));
    const QByteArray note = OctetsOf(users);
    Jet_.reset();
    SetOctets(users, note);
    Jet_ = DBEngine::OpenDatabase(JetName());
    EXPECT_TRUE(Jet().Updatable());
    Jet().Execute(QStringLiteral("UPDATE Messages SET Subject='A'"));
    // Somebody takes it away as what a program left behind: the next change is shown again.
    ASSERT_TRUE(QFile::remove(users));
    Jet().Execute(QStringLiteral("UPDATE Messages SET Subject='B'"));
    EXPECT_EQ(OctetsOf(users), note);
    Jet_.reset();
    EXPECT_FALSE(QFile::exists(users));
}

TEST_F(JetStore, RefusesFormatsThatItDoesNotReadEachInItsOwnWords)
{
    MakeMessages();
    WriteJet();
    Jet_.reset();
    const QString other = Path(QStringLiteral("Other.mdb"));
    const auto opened = [&](const QByteArray& octets) {
        SetOctets(other, octets);
        return Words([&] { DBEngine::OpenDatabase(other); });
    };
    EXPECT_TRUE(opened(WithHeader([](char* page) { page[0x14] = 0; })).contains(QStringLiteral("Jet 3")));
    EXPECT_TRUE(opened(WithHeader([](char* page) { page[0x14] = 0; }).left(2048)).contains(QStringLiteral("Jet 3")));
    EXPECT_TRUE(opened(WithHeader([](char* page) {
                    std::memcpy(page + 4, "Standard ACE DB", 16);
                    page[0x14] = 2;
                })).contains(QStringLiteral(".accdb")));
    EXPECT_TRUE(opened(WithHeader([](char* page) { page[0x3E] = 9; })).contains(QStringLiteral("encoded")));
    EXPECT_TRUE(opened(WithHeader([](char* page) { page[0x42] ^= 'p'; })).contains(QStringLiteral("password")));
    EXPECT_TRUE(opened(OctetsOf(JetName()).left(100)).startsWith(QStringLiteral("3049")));
    EXPECT_EQ(opened(OctetsOf(JetName())), QString());
}

TEST_F(JetStore, DoesNotGoOnInAFileThatAnotherOneTookTheNameOf)
{
    MakeMessages();
    AddPlain(5);
    WriteJet();
    const auto recordset = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    EXPECT_EQ(recordset->RecordCount(), 5);
    AddPlain(3);
    const QString other = Path(QStringLiteral("Other.mdb"));
    WriteAsJet(Path(QStringLiteral("Source.mdb")), other);
    ASSERT_EQ(std::rename(qPrintable(other), qPrintable(JetName())), 0);
    EXPECT_EQ(::ErrorNumberOf([&] { recordset->MoveLast(); }), errFileReplaced);
    EXPECT_EQ(::ErrorNumberOf([&] { Jet().Execute(QStringLiteral("DELETE FROM Messages")); }), errFileReplaced);
    Jet_ = DBEngine::OpenDatabase(JetName());
    EXPECT_EQ(Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable)->RecordCount(), 8);
}

TEST_F(JetStore, GivesUpNoRowForAMemoThatIsDamaged)
{
    MakeMessages();
    const auto recordset = Source().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    recordset->AddNew();
    recordset->SetCollect(QStringLiteral("Subject"), QStringLiteral("kept"));
    recordset->SetCollect(QStringLiteral("Body"), QStringLiteral("\u20ACmemo of some length ").repeated(100));
    recordset->Update();
    WriteJet();
    Jet_.reset();
    QByteArray octets = OctetsOf(JetName());
    // The one page of long values of the field: its row is said to be deleted.
    const QByteArray owner = QByteArray::fromHex("01010000").left(2);
    for (qsizetype page = 1; page < octets.size() / 4096; ++page) {
        char* at = octets.data() + page * 4096;
        if (QByteArray::fromRawData(at, 2) == owner && QByteArray::fromRawData(at + 4, 4) == "LVAL" && at[12] == 1 &&
            QByteArray::fromRawData(at, 4096).contains(QByteArray("m\0e\0m\0o", 7)))
            at[15] = static_cast<char>(at[15] | 0xC0);
    }
    SetOctets(JetName(), octets);
    Jet_ = DBEngine::OpenDatabase(JetName());
    const auto jet = Jet().OpenRecordset(QStringLiteral("SELECT Ref, Subject, Body FROM Messages"), dbOpenSnapshot);
    EXPECT_EQ(jet->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("kept"));
    EXPECT_EQ(::ErrorNumberOf([&] { jet->Collect(QStringLiteral("Body")); }), errMemoDamaged);
}

TEST_F(JetStore, IsReadAlikeByAnIndependentReader)
{
    const QString reader = QStandardPaths::findExecutable(QStringLiteral("mdb-json"));
    if (reader.isEmpty())
        GTEST_SKIP() << "The package mdbtools is not installed.";
    MakeMessages();
    AddPlain(300);
    WriteJet();
    QProcess process;
    process.start(reader, {JetName(), QStringLiteral("Messages")});
    ASSERT_TRUE(process.waitForFinished());
    const QList<QByteArray> lines = process.readAllStandardOutput().trimmed().split('\n');
    ASSERT_EQ(lines.size(), 300);
    const auto recordset = Source().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    for (const QByteArray& line : lines) {
        for (const char* field : {"Ref", "Subject", "Key", "Number", "Body"}) {
            const QVariant value = recordset->Collect(QString::fromLatin1(field));
            const QByteArray name = QByteArray("\"") + field + "\":";
            const QByteArray said = value.typeId() == QMetaType::QString ? '"' + value.toString().toUtf8() + '"'
                                                                         : value.toString().toUtf8();
            EXPECT_EQ(line.contains(name + said), value.isValid())
                << line.constData() << " lacks " << name.constData() << said.constData();
            EXPECT_EQ(line.contains(name), value.isValid()) << line.constData();
        }
        recordset->MoveNext();
    }
}

TEST_F(JetStore, ShowsAnIndependentReaderItsTablesTheirFieldsAndTheirProperties)
{
    MakeMessages();
    WriteJet();
    // One that the file was written with, and one that was added to it.
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Number"), dbLong, 0, dbAutoIncrField));
    fields.push_back(MakeField(QStringLiteral("Filled"), dbText, 30));
    fields.back()->SetAllowZeroLength(false);
    fields.push_back(MakeField(QStringLiteral("Free"), dbMemo));
    fields.back()->SetAllowZeroLength(true);
    AddTable(Jet(), QStringLiteral("Added"), std::move(fields));
    auto tables = SaidBy(QStringLiteral("mdb-tables"), {QStringLiteral("-1"), JetName()});
    if (!tables)
        GTEST_SKIP() << "The package mdbtools is not installed.";
    tables->sort();
    EXPECT_EQ(*tables, QStringList({QStringLiteral("Added"), QStringLiteral("Messages")}));
    for (const QString& name : *tables) {
        QString schema = QStringLiteral("CREATE TABLE [%1] (").arg(name);
        QString properties;
        TableDef& table = Jet().TableDefs().Item(name);
        for (int i = 0; i < table.Fields().Count(); ++i) {
            const Field& field = table.Fields().Item(i);
            schema += QStringLiteral(" [%1] %2").arg(field.Name(), NameOfType(field));
            schema += i + 1 < table.Fields().Count() ? QStringLiteral(",") : QStringLiteral(" );");
            properties +=
                QStringLiteral("name: %1 AllowZeroLength: %2 Required: no ")
                    .arg(field.Name(), field.AllowZeroLength() ? QStringLiteral("yes") : QStringLiteral("no"));
        }
        const auto said = SaidBy(QStringLiteral("mdb-schema"),
                                 {QStringLiteral("-T"), name, QStringLiteral("--no-indexes"), JetName()});
        EXPECT_TRUE(said->join(u' ').contains(schema)) << qPrintable(schema) << '\n' << qPrintable(said->join(u' '));
        EXPECT_EQ(SaidBy(QStringLiteral("mdb-prop"), {JetName(), name})->join(u' '), properties.trimmed());
    }
}
