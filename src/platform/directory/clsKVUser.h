// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QObject>
#include <QVariant>

/// What a user may do.
enum class DirectoryRight
{
    CanEditMessages = 1,
    CanEditPersonalMessages = 2,
    CanEditCategories = 4,
    ManagePrizes = 8,
    ChangeSettings = 16,
};

/// The signed-in user of a directory: who it is, what it may do, its preferences and its log. Owned by the directory;
/// lives as long as the user stays signed in.
class TOLVA_EXPORT clsKVUser : public QObject
{
    Q_OBJECT

public:
    virtual qint32 Reference() const = 0;
    virtual QString Name() const = 0;

    virtual bool HasRight(DirectoryRight right) const = 0;
    bool CanEditMessages() const { return HasRight(DirectoryRight::CanEditMessages); }
    bool CanEditPersonalMessages() const { return HasRight(DirectoryRight::CanEditPersonalMessages); }
    bool CanEditCategories() const { return HasRight(DirectoryRight::CanEditCategories); }
    bool ManagePrizes() const { return HasRight(DirectoryRight::ManagePrizes); }
    bool ChangeSettings() const { return HasRight(DirectoryRight::ChangeSettings); }

    /// The stored preference as text, or defaultValue when it is not stored or cannot be read.
    virtual QVariant Preference(const QString& name, const QVariant& defaultValue) const = 0;
    /// Stores at once; false when that failed. Raises PreferencesChanged when the value is a new one.
    virtual bool SetPreference(const QString& name, const QVariant& value) = 0;

    /// Writes one entry into the user log, durable when it returns true.
    virtual bool LogEvent(int classNumber, int kind, const QString& title, const QString& text, int code,
                          int reference) = 0;

Q_SIGNALS:
    /// flags: 32 for a change of preferences. name: the preference, empty for all.
    void PreferencesChanged(int Flags, const QString& Name);
};
