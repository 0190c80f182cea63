// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

#include <functional>

class DeskSettings;
class QListWidget;
class QPushButton;

/// Asks which station to open: one of the recent ones, or a folder.
class StartDialog : public QDialog
{
    Q_OBJECT

public:
    explicit StartDialog(DeskSettings& settings, QWidget* parent = nullptr);

    /// The chosen folder after the dialog was accepted.
    const QString& Folder() const { return Folder_; }

    /// Where a folder is asked for: empty when cancelled. Tests answer here.
    using FolderChooser = std::function<QString(QWidget* parent)>;
    static void SetFolderChooser(FolderChooser chooser);
    /// Asks for a folder without the list of recent stations.
    static QString ChooseFolder(QWidget* parent);

private:
    void Fill();
    void OpenChosen();
    void Choose();
    void Forget();

    DeskSettings& Settings_;
    QListWidget* List_;
    QPushButton* Open_;
    QPushButton* Forget_;
    QString Folder_;
};
