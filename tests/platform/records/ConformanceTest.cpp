// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <random>

using namespace dao;

namespace
{

/// A row of the model: what the store has to hold.
struct ModelRow
{
    int Reference = 0;
    QVariant Group;  ///< Null or a number.
    QVariant Name;   ///< Null or a text.
    QVariant Memo;   ///< Null or a text.
    QVariant Amount; ///< Null or a double.
};

/// Null first, then numbers, then texts in the engine's order: the order of an index.
int Compare(const QString& engine, const QVariant& left, const QVariant& right)
{
    if (!left.isValid() || !right.isValid())
        return static_cast<int>(left.isValid()) - static_cast<int>(right.isValid());
    if (left.typeId() == QMetaType::QString) {
        const int order = CompareTexts(engine, left.toString(), right.toString());
        return order < 0 ? -1 : static_cast<int>(order > 0);
    }
    const double difference = left.toDouble() - right.toDouble();
    return difference < 0 ? -1 : static_cast<int>(difference > 0);
}

using Keys = std::vector<QVariant>;

Keys KeysOf(const ModelRow& row, const QString& index)
{
    if (index == QLatin1String("ByGroup"))
        return {row.Group, row.Name};
    if (index == QLatin1String("ByName"))
        return {row.Name};
    return {row.Reference};
}

int CompareKeys(const QString& engine, const Keys& left, const Keys& right)
{
    for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
        const int order = Compare(engine, left[i], right[i]);
        if (order != 0)
            return order;
    }
    return 0;
}

const char* const Words[] = {"", "a", "A", "b", "É", "é", "Ωmega", "ωMEGA", "zz", "o'\"[x]", "10", "😀"};

/// Runs the same random operations on a table and on a vector, and compares after every step.
class Conformance : public RecordsFixture
{
protected:
    Conformance()
    {
        const QByteArray given = qgetenv("TOLVA_TEST_SEED");
        Seed_ = given.isEmpty() ? std::random_device()() : given.toUInt();
        std::cout << "seed (TOLVA_TEST_SEED): " << Seed_ << '\n';
        Random_.seed(Seed_);
        std::vector<std::unique_ptr<Field>> fields;
        fields.push_back(MakeField(QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField));
        fields.push_back(MakeField(QStringLiteral("Group"), dbInteger));
        fields.push_back(MakeField(QStringLiteral("Name"), dbText, 20));
        fields.push_back(MakeField(QStringLiteral("Memo"), dbMemo));
        fields.push_back(MakeField(QStringLiteral("Amount"), dbDouble));
        AddTable(Db(), QStringLiteral("T"), std::move(fields));
        AddIndex(Db(), QStringLiteral("T"), QStringLiteral("Main"), {QStringLiteral("Reference")}, true, true);
        AddIndex(Db(), QStringLiteral("T"), QStringLiteral("ByGroup"),
                 {QStringLiteral("Group"), QStringLiteral("Name")});
        AddIndex(Db(), QStringLiteral("T"), QStringLiteral("ByName"), {QStringLiteral("Name")});
    }

    int Below(int limit) { return static_cast<int>(Random_() % static_cast<unsigned>(limit)); }
    QVariant RandomGroup() { return Below(5) == 0 ? QVariant() : QVariant(Below(4) - 1); }
    QVariant RandomName()
    {
        return Below(6) == 0 ? QVariant() : QVariant(QString::fromUtf8(Words[Below(std::size(Words))]));
    }
    QVariant RandomMemo()
    {
        const int kind = Below(8);
        if (kind == 0)
            return {};
        const int size = kind == 1 ? 70000 + Below(1000) : Below(200);
        return QString(size, QChar(Below(2) == 0 ? u'x' : u'é'));
    }
    QString RandomIndex()
    {
        const char* const names[] = {"Main", "ByGroup", "ByName", ""};
        return QString::fromLatin1(names[Below(4)]);
    }
    Keys RandomKeys(const QString& index)
    {
        if (index == QLatin1String("ByName"))
            return {RandomName()};
        if (index == QLatin1String("ByGroup"))
            return Below(2) == 0 ? Keys{RandomGroup()} : Keys{RandomGroup(), RandomName()};
        return {Below(Highest_ + 3)};
    }

    /// The model's rows in the order of an index.
    std::vector<ModelRow> Ordered(const QString& index) const
    {
        std::vector<ModelRow> rows;
        for (const auto& [reference, row] : Model_)
            rows.push_back(row);
        std::stable_sort(rows.begin(), rows.end(), [&](const ModelRow& left, const ModelRow& right) {
            return CompareKeys(GetParam(), KeysOf(left, index), KeysOf(right, index)) < 0;
        });
        return rows;
    }

    static void Set(Recordset& table, const ModelRow& row)
    {
        table.SetCollect(QStringLiteral("Group"), row.Group);
        table.SetCollect(QStringLiteral("Name"), row.Name);
        table.SetCollect(QStringLiteral("Memo"), row.Memo);
        table.SetCollect(QStringLiteral("Amount"), row.Amount);
    }
    static void ExpectRow(Recordset& table, const ModelRow& row)
    {
        ASSERT_EQ(table.Collect(QStringLiteral("Reference")).toInt(), row.Reference);
        EXPECT_EQ(table.Collect(QStringLiteral("Group")), row.Group);
        EXPECT_EQ(table.Collect(QStringLiteral("Name")), row.Name);
        EXPECT_EQ(table.Collect(QStringLiteral("Memo")), row.Memo);
        EXPECT_EQ(table.Collect(QStringLiteral("Amount")), row.Amount);
    }

    ModelRow RandomRow(int reference)
    {
        return {reference, RandomGroup(), RandomName(), RandomMemo(),
                Below(3) == 0 ? QVariant() : QVariant(Below(9) / 2.0)};
    }

    void AddRow()
    {
        const auto table = OpenTable(QStringLiteral("T"));
        table->AddNew();
        const ModelRow row = RandomRow(table->Collect(QStringLiteral("Reference")).toInt());
        EXPECT_GT(row.Reference, Highest_);
        Highest_ = row.Reference;
        Set(*table, row);
        if (Below(10) == 0) {
            table->CancelUpdate();
            return;
        }
        table->Update();
        Model_[row.Reference] = row;
    }
    void EditRow()
    {
        const auto table = OpenTable(QStringLiteral("T"), RandomIndex());
        if (Model_.empty())
            return;
        const int reference = std::next(Model_.begin(), Below(static_cast<int>(Model_.size())))->first;
        table->SetIndex(QStringLiteral("Main"));
        table->Seek(SeekComparison::Equal, {reference});
        ASSERT_FALSE(table->NoMatch());
        table->Edit();
        ModelRow row = Model_[reference];
        row.Group = RandomGroup();
        table->SetCollect(QStringLiteral("Group"), row.Group);
        if (Below(2) == 0) {
            row = RandomRow(reference);
            Set(*table, row);
        }
        table->Update();
        Model_[reference] = row;
        ExpectRow(*table, row);
    }
    void DeleteRow()
    {
        const auto table = OpenTable(QStringLiteral("T"), QStringLiteral("Main"));
        const int reference = Below(Highest_ + 2);
        table->Seek(SeekComparison::Equal, {reference});
        ASSERT_EQ(table->NoMatch(), !Model_.contains(reference));
        if (!table->NoMatch())
            table->Delete();
        Model_.erase(reference);
    }
    void SeekRow()
    {
        QString index = RandomIndex();
        if (index.isEmpty())
            index = QStringLiteral("ByGroup");
        const auto table = OpenTable(QStringLiteral("T"), index);
        const Keys keys = RandomKeys(index);
        const auto comparison = static_cast<SeekComparison>(Below(5));
        std::vector<ModelRow> rows = Ordered(index);
        if (comparison == SeekComparison::LessOrEqual || comparison == SeekComparison::Less)
            std::reverse(rows.begin(), rows.end());
        const auto wanted = std::find_if(rows.begin(), rows.end(), [&](const ModelRow& row) {
            const int order = CompareKeys(GetParam(), KeysOf(row, index), keys);
            switch (comparison) {
            case SeekComparison::Equal:
                return order == 0;
            case SeekComparison::GreaterOrEqual:
                return order >= 0;
            case SeekComparison::Greater:
                return order > 0;
            case SeekComparison::LessOrEqual:
                return order <= 0;
            case SeekComparison::Less:
                return order < 0;
            }
            return false;
        });
        if (keys.size() == 1)
            table->Seek(comparison, {keys[0]});
        else
            table->Seek(comparison, {keys[0], keys[1]});
        ASSERT_EQ(table->NoMatch(), wanted == rows.end()) << qPrintable(index);
        if (!table->NoMatch())
            ExpectRow(*table, *wanted);
    }
    void Walk()
    {
        const QString index = RandomIndex();
        const auto table = OpenTable(QStringLiteral("T"), index);
        const std::vector<ModelRow> rows = Ordered(index);
        ASSERT_EQ(table->RecordCount(), static_cast<int>(rows.size()));
        if (Below(2) == 0) {
            for (const ModelRow& row : rows) {
                ASSERT_FALSE(table->AtEOF());
                ExpectRow(*table, row);
                table->MoveNext();
            }
            EXPECT_TRUE(table->AtEOF());
        } else if (!rows.empty()) {
            table->MoveLast();
            for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
                ASSERT_FALSE(table->AtBOF());
                ExpectRow(*table, *row);
                table->MovePrevious();
            }
            EXPECT_TRUE(table->AtBOF());
        }
    }
    void WalkQuery()
    {
        const int group = Below(4) - 1;
        const auto rows = Db().OpenRecordset(
            QStringLiteral("SELECT * FROM [T] WHERE [Group]=%1 ORDER BY [Reference] DESC").arg(group),
            Below(2) == 0 ? dbOpenDynaset : dbOpenSnapshot);
        std::vector<ModelRow> wanted = Ordered(QStringLiteral("Main"));
        std::erase_if(wanted, [&](const ModelRow& row) { return row.Group != QVariant(group); });
        std::reverse(wanted.begin(), wanted.end());
        ASSERT_EQ(rows->RecordCount(), static_cast<int>(wanted.size()));
        for (const ModelRow& row : wanted) {
            ASSERT_FALSE(rows->AtEOF());
            ExpectRow(*rows, row);
            rows->MoveNext();
        }
        EXPECT_TRUE(rows->AtEOF());
    }
    void RunQuery()
    {
        const int group = Below(4) - 1;
        if (Below(3) == 0) {
            Db().Execute(QStringLiteral("DELETE FROM [T] WHERE [Group]=%1 AND [Amount]>2").arg(group));
            std::erase_if(Model_, [&](const auto& entry) {
                return entry.second.Group == QVariant(group) && entry.second.Amount.toDouble() > 2;
            });
            return;
        }
        const QString memo = QString(Below(50), QLatin1Char('q'));
        Db().Execute(QStringLiteral("UPDATE [T] SET [Memo]='%1', [Amount]=1.5 WHERE [Group]=%2").arg(memo).arg(group));
        for (auto& [reference, row] : Model_) {
            if (row.Group == QVariant(group)) {
                row.Memo = memo;
                row.Amount = 1.5;
            }
        }
    }
    void Transaction()
    {
        const auto before = Model_;
        DBEngine::BeginTrans();
        for (int i = 0; i < 3; ++i) {
            AddRow();
            EditRow();
        }
        if (Below(2) == 0) {
            DBEngine::CommitTrans(dbForceOSFlush);
            return;
        }
        DBEngine::Rollback();
        Model_ = before;
    }

    unsigned Seed_ = 0;
    std::mt19937 Random_;
    std::map<int, ModelRow> Model_;
    int Highest_ = 0;
};

TEST_P(Conformance, RandomOperationsMatchAPlainModel)
{
    for (int step = 0; step < 400 && !HasFatalFailure(); ++step) {
        SCOPED_TRACE(testing::Message() << "seed " << Seed_ << " step " << step);
        switch (Below(14)) {
        case 0:
        case 1:
        case 2:
        case 3:
            AddRow();
            break;
        case 4:
        case 5:
            EditRow();
            break;
        case 6:
            DeleteRow();
            break;
        case 7:
        case 8:
            SeekRow();
            SeekRow();
            break;
        case 9:
            Walk();
            break;
        case 10:
            WalkQuery();
            break;
        case 11:
            RunQuery();
            break;
        case 12:
            Transaction();
            break;
        default:
            if (Below(4) == 0)
                Reopen();
            break;
        }
    }
    Reopen();
    Walk();
}

INSTANTIATE_FOR_ENGINES(Conformance);

} // namespace
