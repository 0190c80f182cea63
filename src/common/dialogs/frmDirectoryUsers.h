// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/EmbeddedDirectory.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QGroupBox;
class QLabel;
class QListWidget;
class QPushButton;

/// The users of the program's directory and what each may do. Every change is stored at once, by whoever is signed in
/// with the right to change settings; to others everything is shown and nothing can be changed, and the dialog says
/// why. Names, questions and refusals go through UserInterface. The directory is the program's, is open, and outlives
/// the dialog. On the user interface thread.
class frmDirectoryUsers final : public QDialog
{
    Q_OBJECT

public:
    explicit frmDirectoryUsers(EmbeddedDirectory& directory, QWidget* owner = nullptr);

    /// Reads the users anew; the selected one stays selected.
    void Reload();

private:
    struct RightBox
    {
        int Right;
        QCheckBox* Box;
    };

    void MakeControls();
    void LayOut();
    bool MayChange() const;
    /// The selected user; null when there is none.
    const DirectoryUser* Selected() const;
    void ShowSelected();
    /// Does it when the user may, tells what went wrong, and shows what is stored then.
    void Change(const std::function<void()>& change);
    void AddUser();
    void RenameUser();
    void RemoveUser();
    void StoreRights();

    EmbeddedDirectory& Directory_;
    QList<DirectoryUser> Users_;
    /// The reference of the user to be selected by the next Reload.
    qint32 SelectedReference_ = 0;
    QLabel* lblExplanation_ = nullptr;
    QListWidget* listUsers_ = nullptr;
    QGroupBox* grpRights_ = nullptr;
    QList<RightBox> Rights_;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdRename_ = nullptr;
    QPushButton* cmdRemove_ = nullptr;
    QPushButton* cmdClose_ = nullptr;
};
