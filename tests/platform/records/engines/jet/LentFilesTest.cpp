// SPDX-License-Identifier: Apache-2.0
#include "platform/records/DBEngine.h"
#include "platform/records/TextCodec.h"
#include "platform/records/engines/jet/Catalogue.h"
#include "platform/records/engines/jet/FileCheck.h"
#include "platform/records/engines/jet/IndexTree.h"
#include "platform/records/engines/jet/KeyForm.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/RowCells.h"
#include "platform/records/engines/jet/TableScan.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QTextStream>

#include <gtest/gtest.h>

#include <cmath>
#include <set>

// Files that other programs wrote, which the project does not hold: those in the folder "jet" of the folder that
// TOLVA_CORPUS names. Beside each stands a text of what an independent reader finds in it.

using namespace dao;
using namespace dao::jet;

namespace
{

QString Quoted(const QString& text)
{
    QString shown(u'"');
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        if (unit == u'\\' || unit == u'"')
            shown += QStringLiteral("\\") + character;
        else if (unit == u'\r' || unit == u'\n' || unit == u'\t')
            shown += unit == u'\r'   ? QStringLiteral("\\r")
                     : unit == u'\n' ? QStringLiteral("\\n")
                                     : QStringLiteral("\\t");
        else if (unit < 32 || unit == 127)
            shown += QStringLiteral("\\u%1").arg(int(unit), 4, 16, QLatin1Char('0'));
        else
            shown += character;
    }
    return shown + u'"';
}

QString ShownOctets(const QByteArray& octets)
{
    if (octets.size() <= 64)
        return QStringLiteral("0x") + QString::fromLatin1(octets.toHex());
    return QStringLiteral("bin[%1]sha256:%2")
        .arg(octets.size())
        .arg(QString::fromLatin1(QCryptographicHash::hash(octets, QCryptographicHash::Sha256).toHex().left(16)));
}

QString ShownDate(double day)
{
    // Days before the first one count backwards, their times forwards.
    const double whole = std::trunc(day);
    const qint64 milliseconds = std::llround(std::abs(day - whole) * 86400000);
    const QDateTime first(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC);
    return first.addDays(static_cast<qint64>(whole))
        .addMSecs(milliseconds)
        .toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
}

QString TextOfUtf8(const QByteArray& utf8)
{
    return TextFromUtf8({utf8.constData(), static_cast<std::size_t>(utf8.size())});
}

QString ShownReal(double number)
{
    const QString text = QString::number(number, 'g', 17);
    const QString shortest = QString::number(number, 'g', QLocale::FloatingPointShortest);
    return number == std::trunc(number) && std::abs(number) < 1e7 ? QString::number(number, 'f', 1)
           : shortest.isEmpty()                                   ? text
                                                                  : shortest;
}

QString Shown(const ColumnDefinition& column, const StoredValue& value)
{
    if (std::holds_alternative<std::monostate>(value))
        return QStringLiteral("NULL");
    if (column.Is(ColumnType::Boolean))
        return std::get<qint64>(value) != 0 ? QStringLiteral("true") : QStringLiteral("false");
    if (const qint64* whole = std::get_if<qint64>(&value))
        return QString::number(*whole);
    if (const double* real = std::get_if<double>(&value)) {
        if (column.Is(ColumnType::Date))
            return ShownDate(*real);
        return column.Is(ColumnType::Currency) ? QString::number(*real, 'f', 4) : ShownReal(*real);
    }
    const QByteArray utf8 = std::get<QByteArray>(value);
    if (column.Is(ColumnType::Text) || column.Is(ColumnType::Memo) || column.Is(ColumnType::Guid))
        return Quoted(TextOfUtf8(utf8));
    if (column.Is(ColumnType::Numeric))
        return QString::fromLatin1(utf8);
    return ShownOctets(QByteArray::fromHex(utf8.mid(2)));
}

const char* NameOfType(const ColumnDefinition& column)
{
    switch (static_cast<ColumnType>(column.Type)) {
    case ColumnType::Boolean:
        return "BOOLEAN";
    case ColumnType::Byte:
        return "BYTE";
    case ColumnType::Integer:
        return "INT";
    case ColumnType::Long:
        return "LONG";
    case ColumnType::Currency:
        return "MONEY";
    case ColumnType::Single:
        return "FLOAT";
    case ColumnType::Double:
        return "DOUBLE";
    case ColumnType::Date:
        return "SHORT_DATE_TIME";
    case ColumnType::Binary:
        return "BINARY";
    case ColumnType::Text:
        return "TEXT";
    case ColumnType::Ole:
        return "OLE";
    case ColumnType::Memo:
        return "MEMO";
    case ColumnType::Guid:
        return "GUID";
    case ColumnType::Numeric:
        return "NUMERIC";
    }
    return "UNKNOWN_11";
}

/// One table of a file, said as the independent reader says it.
class TableText
{
public:
    TableText(PageFile& file, const CatalogueObject& object, QStringList& lines)
        : File_(file), Object_(object), Table_(ReadTableDefinition(file, object.Definition())), Lines_(lines)
    {
    }

    void Add()
    {
        Lines_ += QStringLiteral("TABLE %1 tdef=%2 rowsInTdef=%3 cols=%4 logicalIdx=%5 realIdx=%6")
                      .arg(Object_.Name)
                      .arg(Table_.Page())
                      .arg(Table_.RowCount)
                      .arg(Table_.Columns.size())
                      .arg(Table_.IndexNames.size())
                      .arg(Table_.Indexes.size());
        AddColumns();
        AddRows();
        for (std::size_t i = 0; i < Table_.Indexes.size(); ++i)
            AddIndex(Table_.Indexes[i]);
    }

    int KeysMade() const { return KeysMade_; }
    int KeysUnknown() const { return KeysUnknown_; }

private:
    void AddColumns()
    {
        const QHash<QString, ColumnProperties> properties = PropertiesOf(File_, Object_);
        for (const ColumnDefinition& column : Table_.Columns) {
            QString line = QStringLiteral("  COL %1 %2 %3 len=%4")
                               .arg(column.Number)
                               .arg(column.Name, QLatin1String(NameOfType(column)))
                               .arg(column.Length);
            if ((column.Flags & CounterColumn) != 0 || (column.Flags & 0x40) != 0)
                line += QStringLiteral(" AUTO");
            if (column.Is(ColumnType::Text) && (column.FurtherFlags & CompressedColumn) != 0)
                line += QStringLiteral(" comp");
            const auto found = properties.constFind(column.Name.toCaseFolded());
            if (found != properties.constEnd())
                line += QStringLiteral(" required=%1").arg(found->IsRequired);
            Lines_ += line;
        }
    }

    void AddRows()
    {
        TableScan scan(File_, Table_);
        for (auto place = scan.Next({}); place; place = scan.Next(place)) {
            const auto row = FindRow(File_, Table_, *place);
            ASSERT_TRUE(row.has_value());
            const RowCells cells(row->Octets(), Table_);
            QString line = QStringLiteral("  ROW ");
            std::vector<StoredValue>& values = Rows_[*place];
            for (const ColumnDefinition& column : Table_.Columns) {
                const auto stored = column.IsLong() ? cells.Octets(column) : std::nullopt;
                values.push_back(stored ? StoredValue(ShownLongValue(column, ReadLongValue(File_, *stored)))
                                        : cells.Value(column));
                line += column.Name + u'=' + Shown(column, values.back()) + u' ';
            }
            Lines_ += line;
        }
    }

    void AddIndex(const IndexDefinition& index)
    {
        IndexTree tree(File_, index.Root);
        int entries = 0;
        int repeated = 0;
        QByteArray before;
        for (auto place = tree.First(); place; place = tree.Next(*place)) {
            const QByteArray key = IndexPage(File_, place->Leaf).At(place->Entry).Key;
            repeated += static_cast<int>(entries > 0 && key == before);
            ++entries;
            before = key;
            CompareKey(index, *place, key);
        }
        QStringList columns;
        for (const IndexDefinition::KeyColumn& key : index.Columns)
            columns += Table_.ColumnOf(key.Number)->Name + (key.IsAscending ? u'+' : u'-');
        Lines_ += QStringLiteral("  INDEX cols=%1 flags=0x%2 entries=%3 dupKeys=%4 uniqueCount=%5")
                      .arg(columns.join(u' '))
                      .arg(int(index.Flags), 0, 16)
                      .arg(entries)
                      .arg(repeated)
                      .arg(index.DistinctKeys);
    }

    void CompareKey(const IndexDefinition& index, const IndexPlace& place, const QByteArray& key)
    {
        const auto row = Rows_.find(place.Row);
        ASSERT_NE(row, Rows_.end()) << "an entry of a row that is not there";
        std::vector<StoredValue> values;
        for (const IndexDefinition::KeyColumn& column : index.Columns) {
            const auto at = Table_.ColumnOf(column.Number) - Table_.Columns.data();
            values.push_back(row->second[static_cast<std::size_t>(at)]);
        }
        const std::optional<QByteArray> made = MakeKey(Table_, index, values);
        if (!made) {
            ++KeysUnknown_;
            return;
        }
        ++KeysMade_;
        EXPECT_EQ(made->toHex().toStdString(), key.toHex().toStdString()) << qPrintable(Object_.Name);
    }

    PageFile& File_;
    const CatalogueObject& Object_;
    TableDefinition Table_;
    QStringList& Lines_;
    std::map<RowPlace, std::vector<StoredValue>> Rows_;
    int KeysMade_ = 0;
    int KeysUnknown_ = 0;
};

/// What of the independent reader's text is compared, in our words.
QStringList Expected(const QString& textFile)
{
    QFile file(textFile);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines;
    const QStringList read = QString::fromUtf8(file.readAll()).split(u'\n');
    static const QRegularExpression sizes(
        QStringLiteral("^  COL (\\d+) (.*) (\\w+) (?:var|fix) len=(\\d+)( AUTO)?( comp)?(.*)$"));
    static const QRegularExpression index(QStringLiteral(
        "^  INDEX .* cols=(.*) unique=.* flags=(\\w+) entries=(\\d+) .* dupKeys=(\\d+) uniqueCount=(\\d+)"));
    for (const QString& line : read) {
        if (line.startsWith(QStringLiteral("TABLE "))) {
            lines += line.left(line.indexOf(QStringLiteral(" ownedPages")));
        } else if (line.startsWith(QStringLiteral("  ROW "))) {
            lines += line;
        } else if (const auto column = sizes.match(line); column.hasMatch()) {
            QString said = QStringLiteral("  COL %1 %2 %3 len=%4")
                               .arg(column.captured(1), column.captured(2), column.captured(3), column.captured(4));
            said += column.captured(5);
            if (column.captured(3) == QStringLiteral("TEXT"))
                said += column.captured(6);
            if (!column.captured(7).trimmed().isEmpty())
                said += QStringLiteral(" required=%1")
                            .arg(column.captured(7).contains(QStringLiteral("Required[BOOLEAN:ddl]=true")));
            lines += said;
        } else if (const auto tree = index.match(line); tree.hasMatch()) {
            lines += QStringLiteral("  INDEX cols=%1 flags=%2 entries=%3 dupKeys=%4 uniqueCount=%5")
                         .arg(tree.captured(1), tree.captured(2), tree.captured(3), tree.captured(4), tree.captured(5));
        }
    }
    return lines;
}

class LentJetFiles : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!qEnvironmentVariableIsSet("TOLVA_CORPUS"))
            GTEST_SKIP() << "TOLVA_CORPUS names no folder of lent files.";
        const QDir folder(qEnvironmentVariable("TOLVA_CORPUS") + QStringLiteral("/jet"));
        Files_ = folder.entryInfoList({QStringLiteral("*.mdb")}, QDir::Files, QDir::Name);
        ASSERT_FALSE(Files_.isEmpty()) << "There are no Jet files in " << folder.path().toStdString();
    }

    QFileInfoList Files_;
};

} // namespace

TEST_F(LentJetFiles, ReadAsAnIndependentReaderSaysAndEveryKeyIsMadeAgain)
{
    int keys = 0;
    int unknown = 0;
    for (const QFileInfo& info : Files_) {
        SCOPED_TRACE(qPrintable(info.fileName()));
        PageFile file(info.filePath());
        QStringList lines;
        for (const CatalogueObject& object : ReadCatalogue(file)) {
            if (!object.IsTable())
                continue;
            TableText text(file, object, lines);
            text.Add();
            keys += text.KeysMade();
            unknown += text.KeysUnknown();
        }
        QStringList expected = Expected(info.path() + u'/' + info.completeBaseName() + QStringLiteral(".txt"));
        ASSERT_FALSE(expected.isEmpty());
        // Neither the tables nor the indexes of a table stand in the same order in both.
        lines.sort();
        expected.sort();
        ASSERT_EQ(lines.size(), expected.size());
        for (qsizetype i = 0; i < lines.size(); ++i)
            EXPECT_EQ(lines[i].toStdString(), expected[i].toStdString());
    }
    EXPECT_EQ(unknown, 0) << "keys whose text has a character without a known weight";
    EXPECT_GT(keys, 0);
    RecordProperty("keys", keys);
}

TEST_F(LentJetFiles, AreFoundSoundAsTheyAre)
{
    for (const QFileInfo& info : Files_) {
        const FileReport report = ExamineFile(info.filePath(), {});
        EXPECT_EQ(report.Verdict, FileReport::State::Sound)
            << qPrintable(info.fileName()) << ": " << qPrintable(report.Faults.join(u'\n'));
    }
}

TEST_F(LentJetFiles, AreCompactedWithAllTheyHold)
{
    const QTemporaryDir folder;
    for (const QFileInfo& info : Files_) {
        SCOPED_TRACE(qPrintable(info.fileName()));
        const QString compacted = folder.filePath(info.fileName());
        DBEngine::CompactDatabase(info.filePath(), compacted);
        EXPECT_EQ(ExamineFile(compacted, {}).Verdict, FileReport::State::Sound);
        EXPECT_LE(QFileInfo(compacted).size(), info.size());
        PageFile before(info.filePath());
        PageFile after(compacted);
        QStringList lines[2];
        for (PageFile* file : {&before, &after}) {
            for (const CatalogueObject& object : ReadCatalogue(*file)) {
                if (object.IsTable())
                    TableText(*file, object, lines[file == &after]).Add();
            }
            lines[file == &after].replaceInStrings(
                QRegularExpression(QStringLiteral("^(TABLE .*) rowsInTdef=\\d+|^(  COL )\\d+| uniqueCount=\\d+$")),
                QStringLiteral("\\1\\2"));
            lines[file == &after].sort();
        }
        EXPECT_EQ(lines[1].size(), lines[0].size());
        for (qsizetype i = 0; i < lines[0].size(); ++i)
            EXPECT_EQ(lines[1].value(i).toStdString(), lines[0].at(i).toStdString());
    }
}
