// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/BackupFolders.h"

#include <QDialog>
#include <QTimer>

class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

/// The backups of a station, newest first: when, by which computer, how large, what is in them, and whether they can be
/// read. Accepted means that the user chose one to restore and confirmed it; the caller restores it.
class BackupsDialog : public QDialog
{
    Q_OBJECT

public:
    /// file: the station's. mayRestore: whether the user has the right to.
    BackupsDialog(const QString& file, bool mayRestore, QWidget* parent = nullptr);

    /// What is to be restored, after Accepted.
    const BackupFolders::Backup& Chosen() const { return Chosen_; }

    /// How long the selection rests before a backup is looked into.
    static constexpr int RestMilliseconds = 150;
    /// Octets up to which a backup is read whole as soon as it is selected. A larger one waits for "Check".
    static constexpr qint64 LargestReadAtOnce = 50'000'000;

private:
    /// What is known of a backup so far.
    struct Entry
    {
        BackupFolders::Backup Backup;
        QString Copy; ///< The database in it.
        QString By;
        qint64 Size = -1;
        QString Content; ///< "12 messages, 3 prizes, 2 winners"; empty until it was counted.
        bool IsFromTheFuture = false;
        bool IsUnfinished = false;
        bool IsDamaged = false;
        bool IsSound = false;
    };

    void MakeParts();
    void Fill();
    void ShowEntry(int index);
    Entry* Selected();
    void TakeSelection();
    void LookInto();
    void Read(Entry& entry);
    void CheckSelected();
    void Restore();
    void EnableButtons();
    QString StateOf(const Entry& entry) const;

    QString File_;
    bool MayRestore_;
    QList<Entry> Entries_;
    BackupFolders::Backup Chosen_;
    QTreeWidget* List_;
    QLabel* Content_;
    QPushButton* Check_;
    QPushButton* Restore_;
    QTimer Rest_;
};
