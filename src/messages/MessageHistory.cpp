// SPDX-License-Identifier: Apache-2.0
#include "messages/MessageHistory.h"

#include "common/ClockHelper.h"
#include "common/GeneralHelper.h"
#include "common/ListViewObject.h"
#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/RowCondition.h"
#include "database/StationContext.h"
#include "database/StationDetails.h"
#include "database/cTolvaDatabase.h"
#include "platform/directory/clsCategory.h"
#include "platform/records/Recordset.h"

#include <QHash>

namespace
{
/// An address in a pattern's double quotes: each of its characters means itself there.
QString Literally(const QString& address)
{
    QString text;
    for (const QChar character : address) {
        switch (character.unicode()) {
        case u'*':
        case u'?':
        case u'#':
        case u'[':
            text += QLatin1Char('[') + character + QLatin1Char(']');
            break;
        case u'"':
            text += QStringLiteral("\"\"");
            break;
        default:
            text += character;
        }
    }
    return text;
}

void AppendAddress(QString& where, const QString& address)
{
    const QString pattern = QStringLiteral("LIKE \"*|") + Literally(address) + QStringLiteral("|*\"");
    if (!where.isEmpty())
        where += QStringLiteral(" OR");
    where += QStringLiteral(" [FromKey] ") + pattern + QStringLiteral(" OR [ToKey] ") + pattern +
             QStringLiteral(" OR [CcKey] ") + pattern;
}

QStringList Entries(const QString& list)
{
    return list.isEmpty() ? QStringList() : list.split(QLatin1Char('|'));
}

/// The condition as after the table's name; empty when nothing is asked for, which is everything. Entries that nothing
/// can be found by, such as a name among the numbers, find nothing.
QString WhereClause(const QStringList& emailAddresses, const QStringList& phoneNumbers, const QString& country)
{
    QString where;
    for (const QString& address : emailAddresses)
        AppendAddress(where, address);
    for (const QString& number : phoneNumbers) {
        const QString key = GeneralHelper::PhoneNumberKey(number, country);
        if (!key.isEmpty())
            AppendAddress(where, key);
    }
    if (where.isEmpty() && phoneNumbers.isEmpty())
        return where;
    if (where.isEmpty())
        where = QStringLiteral("[Reference] IS NULL");
    return QStringLiteral(" WHERE (") + where + QStringLiteral(")");
}

/// What a list shows of a field: its text, and for numbers and dates what it is sorted by.
struct CellContent
{
    QString Text;
    QVariant SortValue;
};

CellContent FieldContent(const dao::Field& field)
{
    const QVariant value = field.Value();
    if (!value.isValid())
        return {};
    switch (field.Type()) {
    case dao::dbText:
    case dao::dbMemo:
        return {value.toString(), QVariant()};
    case dao::dbBoolean:
        return {value.toBool() ? QStringLiteral("True") : QStringLiteral("False"), QVariant()};
    case dao::dbDate:
        return {Date(value.toDouble()).GeneralDate(), value};
    default:
        return {value.toString(), value};
    }
}

/// Gives the cells of one column, row by row. Fields and names of folders are looked up once for all rows.
class HistoryColumn
{
public:
    enum class Place
    {
        First,
        Further
    };

    HistoryColumn(const QString& key, Place place, const dao::Recordset& rows, const clsCategory& folders)
        : Folders_(folders)
    {
        // The first column's key is always a field's name.
        const QString upper = place == Place::Further ? key.toUpper() : QString();
        QString fieldName = key;
        if (upper == QLatin1String("FOLDER")) {
            Kind_ = Kind::Folder;
            fieldName = QStringLiteral("Category");
        } else if (upper == QLatin1String("SENT")) {
            Kind_ = Kind::Sent;
        }
        PendingError noSuchField;
        noSuchField.Try([&] { Field_ = &rows[fieldName]; });
    }

    CellContent Content()
    {
        if (Field_ == nullptr)
            return {};
        switch (Kind_) {
        case Kind::Folder:
            return {FolderName(Field_->Value().toInt()), QVariant()};
        case Kind::Sent:
            return SentContent(Field_->Value());
        default:
            return FieldContent(*Field_);
        }
    }

private:
    enum class Kind
    {
        Field,
        Folder,
        Sent
    };

    static CellContent SentContent(const QVariant& sent)
    {
        const Date universal(sent.toDouble());
        if (universal.IsNone())
            return {};
        return {ClockHelper::UTCToLocal(universal).Format(QStringLiteral("ddd ddddd hh:nn")), sent};
    }

    const QString& FolderName(qint32 category)
    {
        const auto known = FolderNames_.constFind(category);
        if (known != FolderNames_.constEnd())
            return *known;
        const clsCategory* folder = category > 0 ? Folders_.FindCategory(category) : nullptr;
        QString name = folder ? folder->Description() : QString();
        if (name.isEmpty())
            name = QStringLiteral("(Unknown)");
        return *FolderNames_.insert(category, name);
    }

    Kind Kind_ = Kind::Field;
    const dao::Field* Field_ = nullptr; ///< Null: the table has no such field, and the cells stay empty.
    const clsCategory& Folders_;
    QHash<qint32, QString> FolderNames_;
};

std::vector<HistoryColumn> ColumnsOf(const ListViewObject& list, const dao::Recordset& rows, const clsCategory& folders)
{
    std::vector<HistoryColumn> columns;
    for (int i = 0; i < list.ColumnCount(); ++i) {
        const auto place = i == 0 ? HistoryColumn::Place::First : HistoryColumn::Place::Further;
        columns.emplace_back(list.ColumnKey(i), place, rows, folders);
    }
    return columns;
}

/// A snapshot packs the rows without the mails; their text is read only for a column that shows it.
QString QueryOf(const QString& where)
{
    return QStringLiteral("SELECT * FROM [Messages] ") + where + QStringLiteral(" ORDER BY [Sent] DESC");
}

void AddRow(ListViewObject& list, const QString& key, std::vector<HistoryColumn>& columns)
{
    QStringList texts;
    QVariantList sortValues;
    for (HistoryColumn& column : columns) {
        CellContent content;
        // A cell that cannot be read stays empty, and the fill goes on.
        PendingError pending;
        pending.Try([&] { content = column.Content(); });
        texts.append(content.Text);
        sortValues.append(content.SortValue);
    }
    list.AddListItem(key, texts, sortValues);
}

void AddRows(ListViewObject& list, dao::Recordset& rows, const clsCategory& folders)
{
    std::vector<HistoryColumn> columns = ColumnsOf(list, rows, folders);
    const dao::Field& reference = rows[QStringLiteral("Reference")];
    for (; !rows.AtEOF(); rows.MoveNext())
        AddRow(list, QStringLiteral("m%1").arg(reference.Value().toInt()), columns);
}
} // namespace

void MessageHistory::Fill(StationContext& station, const clsCategory& folders, const StationDetails& details,
                          ListViewObject* list, const QString& emailAddresses, const QString& phoneNumbers)
{
    if (!station.Database || !list || list->TypeName() != QLatin1String("ListView"))
        return;
    if (list->ColumnCount() <= 0)
        return;
    list->ClearItems();
    PendingError pending;
    pending.Try([&] {
        const QString where = WhereClause(Entries(emailAddresses), Entries(phoneNumbers), details.Country());
        AddRows(*list, *station.OpenSnapshot(QueryOf(where)), folders);
    });
    station.LastError = pending;
    if (pending)
        WriteDebugLog(QStringLiteral("FillMessagesListView: ") + pending.Description());
}

void MessageHistory::FillAmong(cTolvaDatabase& station, ListViewObject& list, const QString& emailAddresses,
                               const QString& phoneNumbers, const QList<qint32>& references)
{
    list.ClearItems();
    if (references.isEmpty())
        return;
    const QString among = RowCondition::HasOneOf(references);
    const QString where = WhereClause(Entries(emailAddresses), Entries(phoneNumbers), station.StationCountry());
    AddRows(list,
            *station.OpenSnapshot(
                QueryOf(where.isEmpty() ? QStringLiteral(" WHERE ") + among : where + QStringLiteral(" AND ") + among)),
            station.MessageCategories());
}
