// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QWidget>

#include <optional>

class QLabel;
class QPushButton;
class QTreeWidget;

/// The files of one message: name, size and kind, to be saved and never opened. Hidden while the message has none. The
/// names are the senders', cleaned. Of a message of thousands of files the first are listed. Owned by its parent.
class AttachmentList : public QWidget
{
    Q_OBJECT

public:
    explicit AttachmentList(QWidget* parent = nullptr);

    /// Null for no message.
    void SetMessage(const cMessagePtr& message);

public Q_SLOTS:
    /// Asks where to, and saves the selected file.
    void SaveSelected();
    /// Asks for a folder, and saves every file under a name that is free there.
    void SaveAll();

Q_SIGNALS:
    /// What was saved, in words for a status bar.
    void Saved(const QString& words);

private:
    std::optional<int> SelectedIndex() const;
    void UpdateButtons();

    cMessagePtr Message_;
    /// The message, or its first parts, whose files are listed.
    std::shared_ptr<cdo::Message> Listed_;
    QLabel* Caption_;
    QTreeWidget* List_;
    QPushButton* SaveAs_;
    QPushButton* SaveAll_;
};
