// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>
#include <QList>

class QLineEdit;
class QListWidget;
class QListWidgetItem;
class clsCategory;

/// Asks for a folder of messages, which is found by typing any part of its path: the folders that were chosen last
/// stand first. Lives as long as it is shown.
class FolderChoice : public QDialog
{
    Q_OBJECT

public:
    /// root: the tree of the station's folders. last: the folders chosen before, the last one first.
    FolderChoice(const QString& title, const clsCategory& root, const QList<qint32>& last, QWidget* parent);

    /// 0 where none matches.
    qint32 Folder() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry
    {
        qint32 Reference = 0;
        QString Path;
    };

    void Show(const QString& typed);

    QList<Entry> Entries_;
    QLineEdit* Typed_;
    QListWidget* List_;
};
