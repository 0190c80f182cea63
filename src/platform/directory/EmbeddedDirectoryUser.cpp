// SPDX-License-Identifier: Apache-2.0
#include "platform/directory/EmbeddedDirectoryUser.h"

#include "platform/directory/DirectoryTables.h"

namespace
{
constexpr int preferencesFlag = 32;
constexpr int attempts = 5;

std::unique_ptr<dao::Recordset> OpenPreferences(dao::Database& database)
{
    return DirectoryTables::OpenTable(database, QStringLiteral("Preferences"), QStringLiteral("Main"));
}

/// Another computer stored the same preference between our look and our write: look again.
bool IsCollision(const dao::Error& error)
{
    return error.Number() == dao::errDuplicateValue || error.Number() == dao::errChangedByAnother ||
           error.Number() == dao::errRecordDeleted;
}
} // namespace

EmbeddedDirectory::User::User(EmbeddedDirectory& directory, qint32 reference, const QString& name)
    : Directory_(directory), Reference_(reference), Name_(name)
{
}

QString EmbeddedDirectory::User::Name() const
{
    try {
        const auto rows =
            DirectoryTables::OpenTable(Directory_.Opened(), QStringLiteral("Users"), QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {Reference_});
        if (!rows->NoMatch())
            Name_ = rows->Collect(QStringLiteral("Name")).toString();
    } catch (const dao::Error&) {
        // The last known name stands.
    }
    return Name_;
}

bool EmbeddedDirectory::User::HasRight(DirectoryRight right) const
{
    try {
        const auto rows =
            DirectoryTables::OpenTable(Directory_.Opened(), QStringLiteral("Users"), QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {Reference_});
        return !rows->NoMatch() && (rows->Collect(QStringLiteral("Rights")).toInt() & static_cast<int>(right)) != 0;
    } catch (const dao::Error&) {
        return false;
    }
}

QVariant EmbeddedDirectory::User::Preference(const QString& name, const QVariant& defaultValue) const
{
    try {
        const auto rows = OpenPreferences(Directory_.Opened());
        rows->Seek(dao::SeekComparison::Equal, {Reference_, name});
        if (rows->NoMatch())
            return defaultValue;
        return rows->Collect(QStringLiteral("Value")).toString();
    } catch (const dao::Error&) {
        return defaultValue;
    }
}

bool EmbeddedDirectory::User::SetPreference(const QString& name, const QVariant& value)
{
    if (name.isEmpty() || (value.isValid() && !value.canConvert<QString>()))
        return false;
    bool isNew = false;
    if (!StorePreference(name, value, isNew))
        return false;
    if (isNew)
        Q_EMIT PreferencesChanged(preferencesFlag, name);
    return true;
}

bool EmbeddedDirectory::User::StorePreference(const QString& name, const QVariant& value, bool& isNew)
{
    for (int attempt = 1;; ++attempt) {
        try {
            const auto rows = OpenPreferences(Directory_.Opened());
            rows->Seek(dao::SeekComparison::Equal, {Reference_, name});
            const bool isStored = !rows->NoMatch();
            isNew = isStored ? !value.isValid() || rows->Collect(QStringLiteral("Value")).toString() != value.toString()
                             : value.isValid();
            if (!isNew)
                return true;
            if (!value.isValid()) {
                rows->Delete();
                return true;
            }
            if (isStored) {
                rows->Edit();
            } else {
                rows->AddNew();
                rows->SetCollect(QStringLiteral("UserReference"), Reference_);
                rows->SetCollect(QStringLiteral("Name"), name);
            }
            rows->SetCollect(QStringLiteral("Value"), value.toString());
            rows->Update();
            return true;
        } catch (const dao::Error& error) {
            if (!IsCollision(error) || attempt == attempts)
                return false;
        }
    }
}

bool EmbeddedDirectory::User::LogEvent(int classNumber, int kind, const QString& title, const QString& text, int code,
                                       int reference)
{
    try {
        return Directory_.Log({0, Directory_.UtcNow_(), Reference_, classNumber, kind, title, text, code, reference});
    } catch (const std::exception&) {
        return false; // what is logged is done already, and its caller is told of nothing else
    }
}
