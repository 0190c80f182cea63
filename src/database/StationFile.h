// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Database.h"

#include <QString>

class PendingError;
class StationContext;

/// The file of a station: the steps from its name to a database that is open and in today's form, and back. What it
/// opens it puts into the station's context. A short-lived helper of one opening or closing.
class StationFile
{
public:
    /// What a file says that it is, so that no other system's passes for one.
    static constexpr qint32 Type = 31;
    inline static const QString Title = QStringLiteral("Kelvarin Tolva Database");

    explicit StationFile(StationContext& station) : Station_(station) {}

    /// Opens "Tolva.mdb" in the folder, making a missing file, and brings its structure and templates up to date. 0, or
    /// what cTolvaDatabase::OpenTolvaDatabase answers. dao::Error as there.
    qint32 Open(const QString& location, const QString& connect);
    /// Notes the last access and closes the database.
    void Close();
    /// Forgets what the file said of itself.
    void Forget();

    /// An entry in the user log about an opening.
    void LogOpening(const QString& text, bool isDone) const;
    void LogClosing() const;
    QString NameAndPath() const;

private:
    qint32 FailOpen(const QString& text, qint32 result) const;
    qint32 ReadInformation(const QString& fileName, const QString& connect);
    void OpenWithLockingMode(const QString& fileName, PendingError& pending);
    void AskForStationName(PendingError& pending);
    void CheckSettingsIndex() const;
    void BringUpToDate(const QString& location);
    void WriteStructureVersion();

    StationContext& Station_;
};
