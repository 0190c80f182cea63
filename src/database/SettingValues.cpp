// SPDX-License-Identifier: Apache-2.0

// The rows of a Settings table.

#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/Collision.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/SettingText.h"
#include "database/TableCheck.h"

namespace
{
const QString Item = QStringLiteral("Item");
const QString Value = QStringLiteral("Value");
constexpr int DefaultItemSize = 250;

QString CutName(const dao::Recordset& recordset, const QString& itemName)
{
    const int size = recordset[Item].Size();
    return itemName.left(size == 0 ? DefaultItemSize : size);
}

void SetMainIndex(dao::Recordset& recordset)
{
    PendingError pending;
    if (!pending.Try([&] { recordset.SetIndex(QStringLiteral("Main")); }))
        recordset.SetIndex(recordset.Name() + QStringLiteral("Main"));
}

/// Whether a row of that name became current.
bool Find(dao::Recordset& recordset, const QString& name)
{
    if (recordset.Type() == dao::dbOpenTable) {
        SetMainIndex(recordset);
        recordset.Seek(dao::SeekComparison::Equal, {name});
        return !recordset.NoMatch();
    }
    if (recordset.RecordCount() < 1)
        return false;
    recordset.FindFirst(QStringLiteral("Item=\"%1\"").arg(name.trimmed()));
    return !recordset.NoMatch();
}

enum class Collision
{
    Kept, ///< Nothing is said: the write is done anew.
    Told
};

/// One writing step; its failure is told with the words and the setting's name.
class SettingWrite
{
public:
    SettingWrite(const QString& name, bool silent, Collision collision)
        : Name_(name), Silent_(silent), Collision_(collision)
    {
    }

    template <typename Statement>
    bool Step(const QString& words, Statement&& statement)
    {
        if (Pending_.Try(statement))
            return true;
        if (Collision_ == Collision::Told || !IsCollision(Number()))
            ReportProblem(words + Name_, Pending_.Number(), Silent_, Pending_.Description());
        return false;
    }
    int Number() const { return Pending_.Number(); }

private:
    QString Name_;
    bool Silent_;
    Collision Collision_;
    PendingError Pending_;
};

bool StoreValue(dao::Recordset& recordset, const QString& name, const QString& text, bool exists, SettingWrite& write)
{
    if (exists) {
        if (!write.Step(QStringLiteral("starting to edit an existing setting : "), [&] { recordset.Edit(); }))
            return false;
    } else if (!write.Step(QStringLiteral("starting to add a new setting : "), [&] { recordset.AddNew(); }) ||
               !write.Step(QStringLiteral("setting the item name for a new setting : "),
                           [&] { recordset.SetCollect(Item, name); })) {
        return false;
    }
    return write.Step(QStringLiteral("setting the value for a setting : "), [&] {
        recordset.SetCollect(Value, text);
    }) && write.Step(QStringLiteral("updating the database setting : "), [&] { recordset.Update(); });
}

/// 0, or the number of the error that stopped it.
int WriteOnce(dao::Recordset& recordset, const QString& itemName, const QVariant& value, const QVariant& defaultValue,
              SettingWrite& write)
{
    QString name = itemName;
    bool exists = false;
    const bool located = write.Step(QStringLiteral("locating the database setting : "), [&] {
        name = CutName(recordset, itemName);
        exists = Find(recordset, name);
    });
    if (!located)
        return write.Number();
    const QString text = SettingText(value);
    if (text != SettingText(defaultValue)) {
        StoreValue(recordset, name, text, exists, write);
    } else if (exists) {
        write.Step(QStringLiteral("clearing the database setting : "), [&] {
            recordset.Delete();
            if (!recordset.AtEOF())
                recordset.MoveNext();
        });
    }
    return write.Number();
}
} // namespace

QVariant DAO_DatabaseFunctions::ReadSettingValue(dao::Recordset* recordset, const QString& itemName,
                                                 const QVariant& defaultValue)
{
    if (!recordset || itemName.isEmpty())
        return defaultValue;
    QVariant result = defaultValue;
    PendingError pending;
    pending.Try([&] {
        if (Find(*recordset, CutName(*recordset, itemName)))
            result = recordset->Collect(Value);
    });
    return result;
}

int DAO_DatabaseFunctions::WriteSettingValue(dao::Recordset* recordset, const QString& itemName, const QVariant& value,
                                             const QVariant& defaultValue, bool silent)
{
    if (!recordset || itemName.isEmpty() || !recordset->Updatable())
        return 0;
    // Another computer may store the same setting between the look for its row and the write; then there is one to look
    // for, or none any more.
    constexpr int mostTries = 20;
    int number = 0;
    for (int tries = 1; tries <= mostTries; ++tries) {
        SettingWrite write(itemName, silent, tries == mostTries ? Collision::Told : Collision::Kept);
        number = WriteOnce(*recordset, itemName, value, defaultValue, write);
        if (!IsCollision(number))
            break;
    }
    return number;
}

int DAO_DatabaseFunctions::CheckSettingsTable(dao::Database& database)
{
    return CheckTable(database, SettingsTableShape(),
                      {.FirstIndexIsPrimary = false, .AcceptsOutOfMemoryAsAbsent = true, .QuotesIndexName = true});
}
