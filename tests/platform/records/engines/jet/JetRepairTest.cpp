// SPDX-License-Identifier: Apache-2.0
#include "platform/records/DatabaseRepair.h"
#include "platform/records/engines/jet/FileFormat.h"
#include "platform/records/engines/jet/JetFixture.h"
#include "support/FaultyFileSystem.h"

#include <QFile>
#include <QSet>

#include <cstring>

using namespace dao;
using jet::PageSize;

namespace
{

const QString Messages = QStringLiteral("Messages");
const QString Settings = QStringLiteral("Settings");

/// A file that was filled, changed and thinned out, and another one with the same tables and no rows.
class JetRepair : public JetFixture
{
protected:
    using JetFixture::JetFixture;
    void MakeFile(int rows)
    {
        MakeMessages();
        std::vector<std::unique_ptr<Field>> fields;
        fields.push_back(MakeField(QStringLiteral("Item"), dbText, 250));
        fields.push_back(MakeField(QStringLiteral("Value"), dbMemo));
        fields[1]->SetAllowZeroLength(true);
        AddTable(Source(), Settings, std::move(fields));
        AddIndex(Source(), Settings, QStringLiteral("Main"), {QStringLiteral("Item")}, true, true);
        ConvertToJet(Empty());
        AddMessages(rows);
        Source().Execute(QStringLiteral("DELETE FROM Messages WHERE Ref = 3 OR Ref = 4"));
        ConvertToJet(JetName());
        Jet_ = DBEngine::OpenDatabase(JetName());
        ChangeFile(rows);
        for (const QString& table : {Messages, Settings})
            Rows_[table] = AllRows(Jet(), table);
        Jet_.reset();
        Sound_ = OctetsOf(JetName());
    }
    QString Empty() const { return Path(QStringLiteral("Empty.mdb")); }
    QString Repaired() const { return Path(QStringLiteral("Repaired.mdb")); }

    /// Repairs the octets; what is wrong with the result, empty for nothing.
    QString WrongOf(const QByteArray& octets, RepairReport& report)
    {
        SetOctets(JetName(), octets);
        QFile::remove(Repaired());
        try {
            report = RepairDatabase(JetName(), Repaired(), {Empty()});
        } catch (const Error& error) {
            return QStringLiteral("error %1: %2").arg(error.Number()).arg(error.Description());
        }
        if (OctetsOf(JetName()) != octets)
            return QStringLiteral("the damaged file was changed");
        if (DBEngine::ExamineDatabase(Repaired()).Verdict != FileReport::State::Sound)
            return QStringLiteral("the new file is not sound");
        const auto database = DBEngine::OpenDatabase(Repaired());
        QString wrong;
        for (auto table = Rows_.cbegin(); table != Rows_.cend() && wrong.isEmpty(); ++table)
            wrong = WrongOf(*database, table.key(), *table, report);
        return wrong;
    }

    /// Every row is there as it was, or its loss is told; and none that was not there.
    static QString WrongOf(Database& database, const QString& name, const QStringList& before,
                           const RepairReport& report)
    {
        const auto told = std::find_if(report.Tables.begin(), report.Tables.end(),
                                       [&](const RepairedTable& table) { return table.Name == name; });
        if (told == report.Tables.end()) {
            const bool isNoted = report.Notes.join(u'\n').contains(name);
            return isNoted || before.isEmpty() ? QString() : name + QStringLiteral(" is gone, and nothing says so");
        }
        const QStringList behind = AllRows(database, name);
        if (told->Saved != behind.size())
            return QStringLiteral("%1: %2 rows are said to be saved, and %3 are")
                .arg(name)
                .arg(told->Saved)
                .arg(behind.size());
        // In their order, too; behind them those that had moved and whose old place is lost.
        QSet<QString> left(before.begin(), before.end());
        qsizetype at = 0;
        for (const QString& row : behind) {
            const qsizetype found = at < 0 ? -1 : before.indexOf(row, at);
            if (!left.remove(row))
                return name + QStringLiteral(" has a row that was not there: ") + row.left(300);
            at = found < 0 ? -1 : found + 1;
        }
        const qint64 missing = before.size() - behind.size();
        if (missing > told->Lost && !told->MayLackMore)
            return QStringLiteral("%1: %2 rows are missing, %3 are said to be").arg(name).arg(missing).arg(told->Lost);
        return {};
    }

    QMap<QString, QStringList> Rows_;
    QByteArray Sound_;

private:
    void ConvertToJet(const QString& name) { WriteAsJet(Path(QStringLiteral("Source.mdb")), name); }
    void ChangeFile(int rows)
    {
        const auto recordset = Jet().OpenRecordset(Messages, dbOpenTable);
        for (int i = 0; i < rows / 4; ++i) {
            recordset->AddNew();
            recordset->SetCollect(QStringLiteral("Subject"), QStringLiteral("Later %1").arg(i));
            recordset->SetCollect(QStringLiteral("Key"), QStringLiteral("later %1").arg(i));
            recordset->SetCollect(QStringLiteral("Body"), QStringLiteral("The body of %1. ").arg(i).repeated(i * 7));
            recordset->Update();
        }
        // Some rows become too long for their pages.
        recordset->MoveFirst();
        for (int i = 0; i < rows / 3 && !recordset->AtEOF(); ++i, recordset->MoveNext()) {
            recordset->Edit();
            recordset->SetCollect(QStringLiteral("Subject"),
                                  QStringLiteral("Longer than it was before %1 ").arg(i).repeated(3));
            recordset->Update();
        }
        Jet().Execute(QStringLiteral("DELETE FROM Messages WHERE Ref > 10 AND Ref < 15"));
        const auto settings = Jet().OpenRecordset(Settings, dbOpenTable);
        for (int i = 0; i < 30; ++i) {
            settings->AddNew();
            settings->SetCollect(QStringLiteral("Item"), QStringLiteral("Item.%1").arg(i));
            settings->SetCollect(QStringLiteral("Value"), QStringLiteral("value %1").arg(i));
            settings->Update();
        }
    }
};

QString LineOf(const RepairReport& report)
{
    QString line = report.Notes.join(u' ');
    for (const RepairedTable& table : report.Tables)
        line += QStringLiteral(" | %1: saved %2, lost %3%4, unsealed %5. %6")
                    .arg(table.Name)
                    .arg(table.Saved)
                    .arg(table.Lost)
                    .arg(table.MayLackMore ? QStringLiteral(" or more") : QString())
                    .arg(table.Unsealed)
                    .arg(table.Notes.join(u' '));
    return line;
}

} // namespace

TEST_F(JetRepair, SavesAllOfASoundFile)
{
    MakeFile(200);
    RepairReport report;
    EXPECT_EQ(WrongOf(Sound_, report), QString());
    EXPECT_TRUE(report.IsWhole()) << qPrintable(LineOf(report));
    EXPECT_EQ(LineOf(report).count(QStringLiteral("unsealed 0")), 2) << qPrintable(LineOf(report));
    const auto database = DBEngine::OpenDatabase(Repaired());
    const auto recordset = database->OpenRecordset(Messages, dbOpenTable);
    recordset->AddNew();
    EXPECT_GT(recordset->Collect(QStringLiteral("Ref")).toInt(), 250) << "a number that was given is given again";
}

/// A part of the random damages, so that several run at once.
class JetRepairParts : public JetRepair, public testing::WithParamInterface<int>
{
protected:
    JetRepairParts() : JetRepair(InMemory()) {}
};
INSTANTIATE_TEST_SUITE_P(Jet, JetRepairParts, testing::Range(1, 5));

TEST_P(JetRepairParts, NoDamageChangesARowOrLosesOneInSilence)
{
    MakeFile(80);
    const int all =
        qEnvironmentVariableIsSet("TOLVA_MUTATIONS") ? qEnvironmentVariableIntValue("TOLVA_MUTATIONS") : 200;
    const int rounds = all / 4;
    const auto below = [this](qsizetype limit) {
        return static_cast<qsizetype>(Random_() % static_cast<unsigned long>(limit));
    };
    int whole = 0;
    qint64 saved = 0;
    for (int round = 0; round < rounds; ++round) {
        QByteArray octets = Sound_;
        QString damages;
        const qsizetype pages = Sound_.size() / PageSize;
        for (qsizetype change = 0; change < 1 + round % 4; ++change) {
            const qsizetype page = below(pages);
            char* at = octets.data() + page * PageSize;
            const auto kind = Random_() % 8;
            damages += QStringLiteral("%1 on page %2; ").arg(kind).arg(page);
            switch (kind) {
            case 0: // An octet.
                at[below(PageSize)] = static_cast<char>(Random_());
                break;
            case 1: // Where a page's head and its row slots stand.
                at[below(64)] = static_cast<char>(Random_());
                break;
            case 2: // A bit.
                at[below(PageSize)] ^= static_cast<char>(1 << below(8));
                break;
            case 3: // A sector without content.
                std::memset(at + 512 * below(8), 0, 512);
                break;
            case 4: { // A sector with another one's.
                char* sector = at + 512 * below(8);
                std::memcpy(sector, Sound_.constData() + 512 * below(Sound_.size() / 512), 512);
                break;
            }
            case 5: // A page with any content.
                std::generate(at, at + PageSize, [this] { return static_cast<char>(Random_()); });
                break;
            case 6: // A page in the place of another.
                std::memcpy(at, Sound_.constData() + below(pages) * PageSize, PageSize);
                break;
            default: // Some octets.
                std::generate_n(at + below(PageSize - 40), 1 + below(40),
                                [this] { return static_cast<char>(Random_()); });
                break;
            }
        }
        if (round % 25 == 24) {
            octets.truncate(octets.size() - below(octets.size() / 2));
            damages += QStringLiteral("cut to %1").arg(octets.size());
        }
        RepairReport report;
        const QString wrong = WrongOf(octets, report);
        EXPECT_EQ(wrong, QString()) << "round " << round << ": " << qPrintable(damages) << '\n'
                                    << qPrintable(LineOf(report));
        whole += static_cast<int>(report.IsWhole());
        for (const RepairedTable& table : report.Tables)
            saved += table.Saved;
    }
    const qint64 there = rounds * qint64(Rows_[Messages].size() + Rows_[Settings].size());
    EXPECT_GT(saved, there / 2) << "next to nothing is saved";
    RecordProperty("whole", whole);
    RecordProperty("savedPerMille", static_cast<int>(1000 * saved / there));
}

TEST_F(JetRepair, ADiskThatFailsAtAnyCallLeavesTheOldFileAlone)
{
    MakeFile(30);
    const QString target = Repaired();
    int failures = 0;
    for (int call = 1;; ++call) {
        QFile::remove(target);
        FaultyFileSystem disk;
        disk.FailAt(call, FileError::Full, FaultyFileSystem::Fault::Tears);
        const int error = ::ErrorNumberOf([&] { RepairDatabase(JetName(), target, {Empty()}); });
        const bool isDone = disk.Calls() < call;
        EXPECT_EQ(OctetsOf(JetName()), Sound_);
        if (isDone) {
            EXPECT_EQ(error, 0);
            break;
        }
        failures += static_cast<int>(error != 0);
        // What is told as done is there, and nothing else.
        EXPECT_EQ(QFile::exists(target), error == 0) << "call " << call << ", " << disk.NameOfCall(call).constData();
    }
    EXPECT_GT(failures, 10);
    EXPECT_EQ(DBEngine::ExamineDatabase(target).Verdict, FileReport::State::Sound);
}

TEST_F(JetRepair, IsEndedByWhoeverStartedItAndLeavesNothing)
{
    MakeFile(30);
    int asked = 0;
    for (int last = 1; last < 1000; ++last) {
        asked = 0;
        const int error = ::ErrorNumberOf(
            [&] { RepairDatabase(JetName(), Repaired(), {}, [&](qint64, qint64) { return ++asked < last; }); });
        if (error == 0)
            break;
        EXPECT_EQ(error, errCancelled);
        EXPECT_FALSE(QFile::exists(Repaired()));
    }
    EXPECT_GT(asked, 1);
    EXPECT_TRUE(QFile::exists(Repaired()));
}

TEST_F(JetRepair, RowsOfOtherProgramsAreSavedAndCountedApart)
{
    MakeFile(30);
    // As if another program had stored it: nothing in front of its texts. The last row of its page is the lowest.
    const QByteArray text = QByteArrayLiteral("\xFF\xFEItem.29");
    QByteArray octets = Sound_;
    const qsizetype at = octets.indexOf(text);
    ASSERT_GT(at, 0);
    const qsizetype page = at / PageSize * PageSize;
    const auto word = [&](qsizetype place) {
        return static_cast<quint16>(static_cast<quint8>(octets.at(place)) | static_cast<quint8>(octets.at(place + 1))
                                                                                << 8);
    };
    const auto put = [&](qsizetype place, int number) {
        octets[place] = static_cast<char>(number & 0xFF);
        octets[place + 1] = static_cast<char>(number >> 8);
    };
    int row = 0;
    while (page + (word(page + 14 + 2 * row) & 0x1FFF) > at)
        ++row;
    ASSERT_EQ(row + 1, word(page + 12)) << "not the lowest row";
    const qsizetype start = page + word(page + 14 + 2 * row);
    const qsizetype end = row == 0 ? page + PageSize : page + (word(page + 14 + 2 * (row - 1)) & 0x1FFF);
    const qsizetype gap = at - start - 2;
    ASSERT_GT(gap, 0);
    QByteArray content = octets.mid(start, end - start);
    content.remove(2, gap);
    octets.replace(start + gap, content.size(), content);
    put(page + 14 + 2 * row, static_cast<int>(start + gap - page));
    put(page + 2, word(page + 2) + static_cast<int>(gap));
    const qsizetype table = content.size() - 1 - 2; // In front of the mask: the count, and before it the places.
    for (qsizetype place = table - 6; place < table; place += 2)
        put(start + gap + place, word(start + gap + place) - static_cast<int>(gap));
    ASSERT_EQ(DBEngine::OpenDatabase(JetName())->TableDefs().Count(), 2);
    RepairReport report;
    EXPECT_EQ(WrongOf(octets, report), QString());
    EXPECT_TRUE(report.IsWhole()) << qPrintable(LineOf(report));
    EXPECT_TRUE(LineOf(report).contains(QStringLiteral("Settings: saved 30, lost 0, unsealed 1")))
        << qPrintable(LineOf(report));
}
