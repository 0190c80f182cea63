// SPDX-License-Identifier: Apache-2.0

// The settings of a station that cTolvaDatabase reads and writes.

#include "common/ClockHelper.h"
#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/SettingText.h"
#include "database/cTolvaDatabase.h"

namespace
{
// Keys. A value equal to its default is not stored, so a reader and a writer must use the same default.
const QString BackupIntervalKey = QStringLiteral("Backups.Interval");
constexpr qint32 BackupIntervalDefault = 1440;
const QString EnableAutoBackupKey = QStringLiteral("Backups.EnableAutoBackup");
constexpr bool EnableAutoBackupDefault = true;
const QString BackupExpiryDaysKey = QStringLiteral("Backups.ExpiryDays");
constexpr qint32 BackupExpiryDaysDefault = 7;

const QString HighlightColourKey = QStringLiteral("Messages.HighLightTextColour");
constexpr qint32 HighlightColourDefault = 255;
const QString HighlightBoldKey = QStringLiteral("Messages.HighLightBold");
const QString HighlightItalicKey = QStringLiteral("Messages.HighLightItalic");
const QString HighlightUnderlineKey = QStringLiteral("Messages.HighLightUnderLine");
const QString HighlightStrikeKey = QStringLiteral("Messages.HighLightStrikeThru");
const QString HighlightSizeKey = QStringLiteral("Messages.HighLightSize");
constexpr qint32 HighlightSizeDefault = 3;
const QString HighlightFontKey = QStringLiteral("Messages.HighlightFont");
const QString HighlightFontDefault = QStringLiteral("Tahoma");
const QString HighlightWordsKey = QStringLiteral("Messages.HighlightWords");

struct NamedSetting
{
    QString Key;
    QVariant Value;
    QVariant Default;
};

/// In the order in which they are stored.
QList<NamedSetting> HighlightSettings(const clsFont& font, const QString& words)
{
    return {{HighlightColourKey, font.Colour, HighlightColourDefault},
            {HighlightBoldKey, font.Bold ? 1 : 0, 1},
            {HighlightItalicKey, font.Italic ? 1 : 0, 0},
            {HighlightUnderlineKey, font.Underline ? 1 : 0, 0},
            {HighlightStrikeKey, font.Strikethrough ? 1 : 0, 0},
            {HighlightSizeKey, font.Size, HighlightSizeDefault},
            {HighlightFontKey, font.Name, HighlightFontDefault},
            {HighlightWordsKey, words, QString()}};
}

const QString LabelsPrefix = QStringLiteral("AddressLabels");

std::unique_ptr<dao::Recordset> OpenSettings(dao::Database& database)
{
    auto recordset = database.OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
    recordset->SetIndex(QStringLiteral("Main"));
    return recordset;
}
} // namespace

QVariant cTolvaDatabase::DatabaseSetting(const QString& itemName, const QVariant& defaultValue) const
{
    // Reading a setting never fails: its caller goes on with the default.
    QVariant value = defaultValue;
    PendingError ignored;
    ignored.Try([&] {
        const auto recordset = OpenSettings(OpenedDatabase());
        value = DAO_DatabaseFunctions::ReadSettingValue(recordset.get(), itemName, defaultValue);
    });
    return value;
}

void cTolvaDatabase::SetDatabaseSetting(const QString& itemName, const QVariant& value, const QVariant& defaultValue)
{
    StoreSetting(itemName, value, defaultValue);
}

int cTolvaDatabase::StoreSetting(const QString& itemName, const QVariant& value, const QVariant& defaultValue,
                                 bool silent)
{
    int number = 0;
    PendingError pending;
    const bool isLocated = pending.Try([&] {
        const auto recordset = OpenSettings(OpenedDatabase());
        number = DAO_DatabaseFunctions::WriteSettingValue(recordset.get(), itemName, value, defaultValue, silent);
    });
    if (isLocated)
        return number;
    ReportProblem(QStringLiteral("locating the database setting : ") + itemName, pending.Number(), silent,
                  pending.Description());
    return pending.Number();
}

/// Moves a change stamp in the transaction of its change, and commits. Where every change is stamped, what closing
/// notes of the last access goes along, so that a program that closes at once has nothing more to write. A stamp that
/// cannot be stored does not take the change with it: it is tried once more behind the commit, when the user may be
/// told without keeping the station locked.
bool cTolvaDatabase::CommitWithStamp(dao::Transaction& transaction, const QString& stamp, PendingError& pending)
{
    CommittedMove_ = {};
    StampMove move;
    PendingError ofStamp;
    const bool isStamped = ofStamp.Try([&] { move = MoveStamp(OpenedDatabase(), stamp, ClockHelper::NowUTC()); });
    if (StampsEveryChange_)
        WriteLastAccess();
    if (!pending.Try([&] { transaction.Commit(); }))
        return false;
    if (isStamped)
        CommittedMove_ = move;
    else
        StoreSetting(stamp, StampText(ClockHelper::NowUTC()), QString());
    return true;
}

bool cTolvaDatabase::ReadDatabaseSettings()
{
    KeepLastError(PendingError());
    if (!Database_)
        return false;
    BackupInterval_ = SettingNumber(DatabaseSetting(BackupIntervalKey, BackupIntervalDefault), BackupIntervalDefault);
    EnableAutoBackup_ =
        SettingFlag(DatabaseSetting(EnableAutoBackupKey, EnableAutoBackupDefault), EnableAutoBackupDefault);
    ReadHighlightSettings();
    bool areLabelsRead = false;
    AddressLabelsPageSetup_.ReadSettings(this, LabelsPrefix, areLabelsRead);
    PendingError pending;
    const bool areFoldersRead = pending.Try([this] {
        UpdateCategoryTree();
        SaveFixedCategories();
        UpdateCategoryTree();
    });
    KeepLastError(pending);
    if (areFoldersRead)
        UpdateBackupTimer();
    return areFoldersRead;
}

void cTolvaDatabase::ReadHighlightSettings()
{
    const auto number = [this](const QString& key, qint32 defaultValue) {
        return SettingNumber(DatabaseSetting(key, defaultValue), defaultValue);
    };
    MessageHighlightFont_.Colour = number(HighlightColourKey, HighlightColourDefault);
    MessageHighlightFont_.Bold = number(HighlightBoldKey, 1) != 0;
    MessageHighlightFont_.Italic = number(HighlightItalicKey, 0) != 0;
    MessageHighlightFont_.Underline = number(HighlightUnderlineKey, 0) != 0;
    MessageHighlightFont_.Strikethrough = number(HighlightStrikeKey, 0) != 0;
    MessageHighlightFont_.Size = number(HighlightSizeKey, HighlightSizeDefault);
    MessageHighlightFont_.Name = DatabaseSetting(HighlightFontKey, HighlightFontDefault).toString();
    HighlightWords_ = DatabaseSetting(HighlightWordsKey, QString()).toString();
}

bool cTolvaDatabase::WriteDatabaseSettings()
{
    SetDatabaseSetting(BackupIntervalKey, BackupInterval_, BackupIntervalDefault);
    SetDatabaseSetting(EnableAutoBackupKey, EnableAutoBackup_, EnableAutoBackupDefault);
    for (const NamedSetting& setting : HighlightSettings(MessageHighlightFont_, HighlightWords_))
        SetDatabaseSetting(setting.Key, setting.Value, setting.Default);
    bool areLabelsWritten = false;
    AddressLabelsPageSetup_.WriteSettings(this, LabelsPrefix, areLabelsWritten);
    return true;
}

bool cTolvaDatabase::StoreHighlightSettings(const clsFont& font, const QString& words)
{
    for (const NamedSetting& setting : HighlightSettings(font, words)) {
        if (StoreSetting(setting.Key, setting.Value, setting.Default) != 0)
            return false;
    }
    MessageHighlightFont_ = font;
    HighlightWords_ = words;
    return true;
}

void cTolvaDatabase::SetHighlightWords(const QString& words)
{
    HighlightWords_ = words;
    SetDatabaseSetting(HighlightWordsKey, words, QString());
}

void cTolvaDatabase::SetEnableAutoBackup(bool enable)
{
    EnableAutoBackup_ = enable;
    SetDatabaseSetting(EnableAutoBackupKey, enable, EnableAutoBackupDefault);
}

void cTolvaDatabase::SetBackupInterval(qint32 minutes)
{
    BackupInterval_ = minutes;
    SetDatabaseSetting(BackupIntervalKey, minutes, BackupIntervalDefault);
}

qint16 cTolvaDatabase::BackupExpiryDays() const
{
    const qint32 days =
        SettingNumber(DatabaseSetting(BackupExpiryDaysKey, BackupExpiryDaysDefault), BackupExpiryDaysDefault);
    return static_cast<qint16>(days);
}

void cTolvaDatabase::SetBackupExpiryDays(qint16 days)
{
    SetDatabaseSetting(BackupExpiryDaysKey, days, BackupExpiryDaysDefault);
}
