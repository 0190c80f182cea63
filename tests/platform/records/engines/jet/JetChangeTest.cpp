// SPDX-License-Identifier: Apache-2.0

// Jet files that are changed in place, beside the same changes in the embedded engine.

#include "platform/records/engines/jet/FileSession.h"
#include "platform/records/engines/jet/IndexEdit.h"
#include "platform/records/engines/jet/IndexTree.h"
#include "platform/records/engines/jet/JetFixture.h"
#include "support/FaultyFileSystem.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include <set>

using namespace dao;

namespace
{

class JetChanges : public JetFixture
{
protected:
    int Below(int limit) { return static_cast<int>(Random_() % static_cast<unsigned>(limit)); }
    void ExpectSound(const QString& told)
    {
        const FileReport report = DBEngine::ExamineDatabase(JetName());
        ASSERT_EQ(report.Verdict, FileReport::State::Sound) << qPrintable(told + report.Faults.join(u'\n'));
    }
    /// Letters and digits alone: both engines put such texts in the same order.
    QString Text(int longest)
    {
        static const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyzABCXYZ0123456789");
        QString text;
        for (int i = Below(longest + 1); i > 0; --i)
            text += letters.at(Below(static_cast<int>(letters.size())));
        return text;
    }
    QString Body()
    {
        const int kind = Below(10);
        const int size = kind < 3 ? Below(30) : kind < 6 ? Below(900) : kind < 9 ? Below(4000) : Below(40000);
        return QString(size, QChar(kind % 2 == 0 ? u'b' : u'\u03B2')) + QString::number(Below(1000));
    }
    /// One random change, in both.
    void ChangeBoth()
    {
        const int kind = Below(20);
        if (kind < 9) {
            const QVariantList values{Text(60),          QStringLiteral("%1 %2").arg(Text(6)).arg(++Made_),
                                      Below(1000) - 500, Below(20) / 4.0,
                                      Below(2) == 0,     Body()};
            OnBoth([&](Database& database) {
                const auto rows = database.OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
                rows->AddNew();
                Fill(*rows, values);
                rows->Update();
            });
        } else if (kind < 15) {
            const int wanted = Below(Made_ + 2);
            const QVariantList values{Text(90),      QStringLiteral("%1 %2").arg(Text(20)).arg(++Made_),
                                      Below(9),      Below(9) / 4.0,
                                      Below(2) == 0, Body()};
            OnBoth([&](Database& database) {
                const auto rows = database.OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
                rows->SetIndex(QStringLiteral("Main"));
                rows->Seek(SeekComparison::GreaterOrEqual, {wanted});
                if (rows->NoMatch())
                    return;
                rows->Edit();
                Fill(*rows, values);
                rows->Update();
            });
        } else if (kind < 18) {
            const int first = Below(Made_ + 2);
            const int last = first + Below(6);
            OnBoth([&](Database& database) {
                database.Execute(
                    QStringLiteral("DELETE FROM Messages WHERE Ref BETWEEN %1 AND %2").arg(first).arg(last));
            });
        } else {
            const int number = Below(20);
            OnBoth([&](Database& database) {
                database.Execute(QStringLiteral("UPDATE Messages SET Note='%1', [Number]=[Number]+1 WHERE Small<%2")
                                     .arg(QString(number * 20, u'n'))
                                     .arg(number));
            });
        }
    }
    static void Fill(Recordset& rows, const QVariantList& values)
    {
        const char* const fields[] = {"Subject", "Key", "Number", "When", "Read", "Body"};
        for (int i = 0; i < 6; ++i)
            rows.SetCollect(QString::fromLatin1(fields[i]), values.at(i));
        rows.SetCollect(QStringLiteral("Small"), std::abs(values.at(2).toInt()) % 40);
    }
    void OnBoth(const std::function<void(Database&)>& change)
    {
        change(Source());
        change(Jet());
    }
    void ExpectSame(const QString& told)
    {
        for (const char* index : {"", "Main", "Subject", "Key", "When"})
            ASSERT_EQ(AllRows(Jet(), QStringLiteral("Messages"), QString::fromLatin1(index)),
                      AllRows(Source(), QStringLiteral("Messages"), QString::fromLatin1(index)))
                << index << ' ' << qPrintable(told);
    }
    void MakeBoth()
    {
        MakeMessages();
        WriteJet();
    }

    int Made_ = 0;
};

} // namespace

TEST_F(JetChanges, GiveTheAnswersOfTheOtherEngineAndASoundFileAfterEachBatch)
{
    MakeBoth();
    const QString reader = QStandardPaths::findExecutable(QStringLiteral("mdb-json"));
    for (int batch = 0; batch < 12; ++batch) {
        const QString told = QStringLiteral("batch %1 ").arg(batch);
        const bool isOne = Below(2) == 0;
        if (isOne)
            DBEngine::BeginTrans();
        for (int change = 0; change < 40; ++change)
            ChangeBoth();
        if (isOne)
            DBEngine::CommitTrans();
        ASSERT_NO_FATAL_FAILURE(ExpectSame(told));
        ASSERT_NO_FATAL_FAILURE(ExpectSound(told));
        if (reader.isEmpty())
            continue;
        QProcess process;
        process.start(reader, {JetName(), QStringLiteral("Messages")});
        ASSERT_TRUE(process.waitForFinished());
        const qsizetype lines = process.readAllStandardOutput().count('\n');
        ASSERT_EQ(lines, Source().OpenRecordset(QStringLiteral("Messages"), dbOpenTable)->RecordCount())
            << "rows that another reader sees " << qPrintable(told);
    }
}

TEST_F(JetChanges, TakeBackWhatARollbackTakesBackAndNothingElse)
{
    MakeBoth();
    for (int i = 0; i < 60; ++i)
        ChangeBoth();
    const QByteArray before = OctetsOf(JetName());
    for (int round = 0; round < 6; ++round) {
        const QStringList rows = AllRows(Jet(), QStringLiteral("Messages"));
        DBEngine::BeginTrans();
        Jet().Execute(QStringLiteral("DELETE FROM Messages WHERE Ref > %1").arg(Below(40)));
        DBEngine::BeginTrans();
        Jet().Execute(QStringLiteral("UPDATE Messages SET Body='%1'").arg(QString(9000, u'x')));
        DBEngine::Rollback();
        Jet().Execute(QStringLiteral("UPDATE Messages SET Subject='other'"));
        DBEngine::Rollback();
        ASSERT_EQ(AllRows(Jet(), QStringLiteral("Messages")), rows);
    }
    EXPECT_EQ(OctetsOf(JetName()), before);
}

TEST_F(JetChanges, UseTheRoomThatIsGivenUp)
{
    MakeBoth();
    const auto fill = [&] {
        for (int i = 0; i < 40; ++i) {
            const auto rows = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
            rows->AddNew();
            rows->SetCollect(QStringLiteral("Body"), QString(30000, u'x'));
            rows->Update();
        }
    };
    fill();
    const qsizetype size = OctetsOf(JetName()).size();
    for (int round = 0; round < 4; ++round) {
        Jet().Execute(QStringLiteral("DELETE FROM Messages"));
        fill();
    }
    EXPECT_LT(OctetsOf(JetName()).size(), size + size / 10);
    ExpectSound({});
}

TEST_F(JetChanges, GiveNoNewRowThePlaceOfOneThatIsGone)
{
    MakeBoth();
    const QString body(70000, u'x');
    const auto add = [&] {
        const auto rows = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Body"), body);
        rows->Update();
    };
    for (int round = 0; round < 5; ++round) {
        add();
        const auto old = Jet().OpenRecordset(QStringLiteral("SELECT * FROM Messages"), dbOpenSnapshot);
        Jet().Execute(QStringLiteral("DELETE FROM Messages"));
        for (int i = 0; i < 3; ++i)
            add();
        EXPECT_EQ(::ErrorNumberOf([&] { old->Collect(QStringLiteral("Body")); }), errRecordDeleted)
            << "another row passes for it";
        Jet().Execute(QStringLiteral("DELETE FROM Messages"));
    }
    ExpectSound({});
}

TEST_F(JetChanges, SeeAMemoThatChangedAndHasTheLengthAndThePlaceThatItHad)
{
    MakeBoth();
    const auto rows = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    rows->AddNew();
    // Alone on its page, whose place the next but one takes again.
    rows->SetCollect(QStringLiteral("Body"), QString(1500, u'\u03B1'));
    rows->Update();
    rows->MoveFirst();
    rows->Edit();
    rows->SetCollect(QStringLiteral("Number"), 1);
    for (const char16_t letter : {u'\u03B2', u'\u03B3', u'\u03B4', u'\u03B5'}) {
        Jet().Execute(QStringLiteral("UPDATE Messages SET Body='%1'").arg(QString(1500, letter)));
        EXPECT_EQ(::ErrorNumberOf([&] { rows->Update(); }), errChangedByAnother) << int(letter);
    }
}

TEST_F(JetChanges, GoOnInAFileWhoseCounterIsBehindItsRows)
{
    MakeMessages();
    AddMessages(20);
    WriteJet();
    Jet_.reset();
    QByteArray octets = OctetsOf(JetName());
    int changed = 0;
    for (qsizetype page = 0; page < octets.size() / 4096; ++page) {
        char* at = octets.data() + page * 4096;
        if (at[0] == 2 && at[1] == 1 && qFromLittleEndian<quint32>(at + 20) >= 20) {
            qToLittleEndian<quint32>(7, at + 20);
            ++changed;
        }
    }
    ASSERT_EQ(changed, 1);
    SetOctets(JetName(), octets);
    Jet_ = DBEngine::OpenDatabase(JetName());
    const auto rows = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    rows->AddNew();
    EXPECT_EQ(rows->Collect(QStringLiteral("Ref")).toInt(), 21);
    rows->Update();
    Jet_.reset();
    ExpectSound({});
}

TEST_F(JetChanges, StoreAndFindTextsOfEveryScript)
{
    MakeBoth();
    const QStringList texts{QStringLiteral("\u03A9\u03BC\u03AD\u03B3\u03B1"),
                            QStringLiteral("\u00A350"),
                            QStringLiteral("\u0416\u0443\u0440\u043D\u0430\u043B"),
                            QStringLiteral("\u65E5\u672C"),
                            QStringLiteral("plain"),
                            QStringLiteral("\U0001F600 smile"),
                            QString(QChar(0xD800)),
                            QStringLiteral("\u05E9\u05DC\u05D5\u05DD")};
    for (const QString& text : texts) {
        const auto rows = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Subject"), text);
        rows->SetCollect(QStringLiteral("Key"), text);
        rows->Update();
    }
    ExpectSound({});
    const auto rows = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    for (const QString& text : texts) {
        rows->SetIndex(QStringLiteral("Subject"));
        rows->Seek(SeekComparison::Equal, {text.toLower()});
        ASSERT_FALSE(rows->NoMatch()) << qPrintable(text);
        EXPECT_EQ(rows->Collect(QStringLiteral("Subject")).toString(), text);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Key"), text.toUpper());
        EXPECT_EQ(::ErrorNumberOf([&] { rows->Update(); }), errDuplicateValue) << qPrintable(text);
        rows->CancelUpdate();
    }
    rows->SetIndex(QStringLiteral("Subject"));
    QSet<QString> walked;
    for (rows->MoveFirst(); !rows->AtEOF(); rows->MoveNext())
        walked.insert(rows->Collect(QStringLiteral("Subject")).toString());
    EXPECT_EQ(walked.size(), texts.size());
    Jet().Execute(QStringLiteral("DELETE FROM Messages"));
    ExpectSound({});
}

TEST_F(JetChanges, AreRefusedInTimeAndInWordsWhereTheFileWouldOutgrowItsFormat)
{
    MakeBoth();
    for (int i = 0; i < 10; ++i)
        ChangeBoth();
    Jet_.reset();
    // Room that nobody uses, up to the greatest size.
    QFile file(JetName());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.resize(qint64(1) << 31));
    file.close();
    Jet_ = DBEngine::OpenDatabase(JetName());
    const QStringList before = AllRows(Jet(), QStringLiteral("Messages"));
    const auto rows = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    rows->AddNew();
    rows->SetCollect(QStringLiteral("Body"), QString(3000000, u'x'));
    try {
        rows->Update();
        ADD_FAILURE() << "stored beyond the end";
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), errNotSupported);
        EXPECT_TRUE(error.Description().contains(QStringLiteral("2 GB"))) << qPrintable(error.Description());
    }
    rows->CancelUpdate();
    EXPECT_EQ(AllRows(Jet(), QStringLiteral("Messages")), before);
    rows->AddNew();
    rows->SetCollect(QStringLiteral("Body"), QStringLiteral("what still fits"));
    rows->Update();
    EXPECT_EQ(AllRows(Jet(), QStringLiteral("Messages")).size(), before.size() + 1);
}

TEST_F(JetChanges, LeaveTheFileAsItWasWhenAnyCallFails)
{
    MakeBoth();
    for (int i = 0; i < 5; ++i) {
        const auto rows = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Body"), Body());
        rows->Update();
    }
    Jet_.reset();
    const QByteArray before = OctetsOf(JetName());
    const QString added = QString(5000, u'a');
    for (const FileError kind : {FileError::Full, FileError::Failed}) {
        for (int number = 1;; ++number) {
            SetOctets(JetName(), before);
            QFile::remove(JetName() + QStringLiteral("-commit"));
            int calls = 0;
            bool isStored = false;
            QByteArray name;
            {
                FaultyFileSystem files;
                const auto database = DBEngine::OpenDatabase(JetName());
                files.FailAt(number, kind, FaultyFileSystem::Fault::Tears, true);
                const int begun = files.Calls();
                isStored = ::ErrorNumberOf([&] {
                               database->Execute(QStringLiteral("UPDATE Messages SET Body='%1'").arg(added));
                           }) == 0;
                calls = files.Calls() - begun;
                name = files.NameOfCall(begun + number);
                if (calls >= number && Below(2) == 0)
                    files.LosePower();
                files.StopFailing();
            }
            SCOPED_TRACE(testing::Message() << "call " << number << ' ' << name.constData());
            if (calls < number) {
                EXPECT_TRUE(isStored);
                EXPECT_GT(number, 6);
                break;
            }
            Jet_ = DBEngine::OpenDatabase(JetName());
            const auto rows = Jet().OpenRecordset(
                QStringLiteral("SELECT COUNT(*) FROM Messages WHERE Body='%1'").arg(added), dbOpenSnapshot);
            const int changed = rows->Fields().Item(0).Value().toInt();
            const auto all = Jet().OpenRecordset(QStringLiteral("SELECT COUNT(*) FROM Messages"), dbOpenSnapshot);
            const int wanted = all->Fields().Item(0).Value().toInt();
            EXPECT_TRUE(changed == 0 || changed == wanted) << changed << " of " << wanted;
            EXPECT_TRUE(!isStored || changed == wanted);
            Jet_.reset();
            ASSERT_NO_FATAL_FAILURE(ExpectSound({}));
        }
    }
}

TEST_F(JetChanges, AreNeverMadeToAnotherOrAnOlderFileThanTheirJournalBelongsTo)
{
    MakeBoth();
    for (int i = 0; i < 30; ++i)
        ChangeBoth();
    Jet_.reset();
    const QString journal = JetName() + QStringLiteral("-commit");
    const QByteArray older = OctetsOf(JetName());
    Jet_ = DBEngine::OpenDatabase(JetName());
    Jet().Execute(QStringLiteral("UPDATE Messages SET Subject='first'"));
    Jet_.reset();
    const QByteArray before = OctetsOf(JetName());
    // A commit that stands in its journal alone: the file cannot be written any more.
    {
        FaultyFileSystem files;
        const auto database = DBEngine::OpenDatabase(JetName());
        int syncs = 0;
        for (int number = 1; syncs == 0; ++number) {
            files.FailAt(number, FileError::Failed, FaultyFileSystem::Fault::Fails, true);
            const int begun = files.Calls();
            const int error =
                ::ErrorNumberOf([&] { database->Execute(QStringLiteral("UPDATE Messages SET Subject='second'")); });
            files.StopFailing();
            const QByteArray left = OctetsOf(journal);
            syncs = left.startsWith("Tolva commit") && files.NameOfCall(begun + number) == "write" ? 1 : 0;
            if (syncs != 0) {
                EXPECT_EQ(error, 0) << "what is done was called a failure, and would be done once more";
            }
            ASSERT_LT(number, 60);
            if (syncs == 0) {
                SetOctets(JetName(), before);
                QFile::remove(journal);
            }
        }
    }
    const QByteArray pending = OctetsOf(journal);
    ASSERT_TRUE(pending.startsWith("Tolva commit"));
    const auto subjects = [&] {
        const auto database = DBEngine::OpenDatabase(JetName());
        const auto rows = database->OpenRecordset(QStringLiteral("SELECT Subject FROM Messages"), dbOpenSnapshot);
        QSet<QString> found;
        for (; !rows->AtEOF(); rows->MoveNext())
            found.insert(rows->Collect(QStringLiteral("Subject")).toString());
        return found;
    };
    SetOctets(JetName(), before);
    EXPECT_EQ(subjects(), QSet<QString>{QStringLiteral("second")}) << "its own";
    ExpectSound({});
    const auto expectUntouched = [&](const QByteArray& octets, const char* told) {
        SetOctets(JetName(), octets);
        SetOctets(journal, pending);
        EXPECT_FALSE(subjects().contains(QStringLiteral("second"))) << told;
        EXPECT_EQ(OctetsOf(JetName()), octets) << told;
        EXPECT_EQ(OctetsOf(journal + QStringLiteral("-of-another")), pending) << told;
    };
    expectUntouched(older, "an older state");
    WriteAsJet(Path(QStringLiteral("Source.mdb")), JetName());
    expectUntouched(OctetsOf(JetName()), "another file");
    // What is not whole was never a commit.
    SetOctets(JetName(), before);
    SetOctets(journal, pending.left(pending.size() - 1));
    EXPECT_EQ(subjects(), QSet<QString>{QStringLiteral("first")});
    EXPECT_EQ(OctetsOf(JetName()), before);
}

TEST_F(JetChanges, KeepTreesInOrderWhateverComesAndGoes)
{
    MakeBoth();
    Jet_.reset();
    jet::FileSession session(JetName(), jet::PageFile::Use::Change);
    session.BeginWriting();
    jet::PageFile& file = session.Pages();
    jet::PageAllocation pages(file);
    constexpr quint32 Owner = 99;
    using Entry = std::pair<QByteArray, jet::RowPlace>;
    for (const int longest : {8, 60, 700, 1790}) {
        jet::IndexDefinition index;
        index.Map = pages.AddMap(0);
        index.Root = jet::IndexEdit::MakeRoot(file, pages, Owner, index.Map);
        jet::IndexEdit edit(file, pages, index);
        std::set<Entry> model;
        const int most = longest > 500 ? 60 : 900;
        for (int step = 0; step < 3 * most; ++step) {
            // Alike in front, so that pages hold many until one comes that is not.
            QByteArray key(Below(3) == 0 ? Below(longest) : longest / 2, static_cast<char>('a' + Below(2)));
            for (int i = 0; i < 4; ++i)
                key += static_cast<char>(Below(256));
            if (step < 2 * most && Below(5) != 0) {
                const Entry entry{key, {static_cast<quint32>(step + 1), static_cast<quint8>(Below(200))}};
                edit.Add(entry.first, entry.second);
                model.insert(entry);
            } else if (!model.empty()) {
                auto victim = model.lower_bound({key, {}});
                victim = victim == model.end() ? model.begin() : victim;
                edit.Delete(victim->first, victim->second);
                model.erase(victim);
            }
            if (step % (most / 3) != 0 && step + 1 < 3 * most)
                continue;
            jet::IndexTree tree(file, index.Root);
            auto wanted = model.begin();
            auto place = tree.First();
            for (; place && wanted != model.end(); place = tree.Next(*place), ++wanted) {
                ASSERT_EQ(jet::IndexPage(file, place->Leaf).At(place->Entry).Key, wanted->first);
                ASSERT_EQ(place->Row, wanted->second);
            }
            ASSERT_EQ(place.has_value(), false);
            ASSERT_EQ(wanted == model.end(), true);
            for (const Entry& entry : model) {
                const auto found = tree.FirstFrom(entry.first, false, entry.second);
                ASSERT_TRUE(found && found->Row == entry.second);
            }
        }
        while (!model.empty()) {
            edit.Delete(model.begin()->first, model.begin()->second);
            model.erase(model.begin());
        }
        EXPECT_EQ(jet::IndexPage(file, index.Root).IsLeaf(), true);
        EXPECT_EQ(jet::IndexPage(file, index.Root).Count(), 0);
        EXPECT_EQ(pages.LastOf(index.Map), index.Root) << "pages of an empty tree are given back";
    }
    session.Abandon();
}
