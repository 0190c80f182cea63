// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "StationBackup.h"
#include "database/cTolvaDatabase.h"
#include "platform/directory/EmbeddedDirectory.h"

#include <QObject>
#include <QStringList>

class CollectingUserInterface;

/// A station that is open on this desk, with the user of its directory who is signed in. Owned by the program; windows
/// that work on it are closed before it.
class DeskStation : public QObject
{
    Q_OBJECT

public:
    DeskStation() = default;
    ~DeskStation() override;

    /// The users of the station in the folder, by name. Failure in words when there is no station or directory or it
    /// cannot be read.
    static QStringList UsersIn(const QString& folder);

    /// Opens the station for the user. Failure in words when that does not work; nothing is open then.
    void Open(const QString& folder, const QString& user);
    /// Closes and opens again, after the file was out of reach. Failure as Open; then it is closed, and stays the
    /// station of that folder.
    void Reopen();
    void Close();
    /// Closes the file alone, for work that replaces it. Reopen is next.
    void Suspend();
    /// Makes a backup now, whatever backups this object has made by itself. Failure in words, code exitInterrupted when
    /// the user cancelled.
    StationBackup::Result BackUp();
    /// For a desk that runs for days: the automatic backup of the hour or day, when the station wants one and no
    /// computer has made it yet. True when one was made; a failure is silent, as that of every automatic backup.
    bool BackUpWhenDue();
    /// Opening may have put a backup in the place of a damaged file, when the user wanted that: what was restored, in
    /// words, once. Empty when nothing was.
    QString TakeRestoredWords() { return std::exchange(RestoredWords_, {}); }

    const QString& Folder() const { return Folder_; }
    cTolvaDatabase& Database() { return Database_; }
    EmbeddedDirectory& Directory() { return Directory_; }
    /// "Harbour FM"; the folder's name for a station that has none.
    QString Name() const;

    /// Marks a message that is on show as read, if it is not and the user may change it: in its row as it is at this
    /// moment, so that nobody's change is lost. An empty text, or why it could not be done.
    QString MarkAsRead(qint32 reference);
    /// Gives a message another priority, in its row as it is at this moment. False when it could not be done: then
    /// LastErrorNumber of the database tells why, 0 for a message that is gone or that the user may not change.
    bool ChangePriority(qint32 reference, qint32 priority);
    /// Whether the user may change a message that is personal to this contact, 0 for one that is everybody's.
    bool MayEditMessage(qint32 personalToContact) const;
    /// What a record store's error means for this station, in words.
    QString Words(int errorNumber, const QString& description) const;

private:
    void OpenForBackup(cTolvaDatabase& database, CollectingUserInterface& collecting);

    QString Folder_;
    QString User_;
    QString RestoredWords_;
    EmbeddedDirectory Directory_;
    // After the directory, which its closing writes to.
    cTolvaDatabase Database_;
};
