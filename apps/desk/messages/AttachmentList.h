// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class PictureLoader;
class QLabel;
class QPushButton;
class QTreeWidget;

/// The files of one message: name, size and kind, to be saved. Pictures are shown small, and large in a window of the
/// desk; sound is handed to the system when the user wants that; nothing else is opened. Hidden while the message has
/// none. The names are the senders', cleaned. Of a message of thousands of files the first are listed. Owned by its
/// parent.
class AttachmentList : public QWidget
{
    Q_OBJECT

public:
    explicit AttachmentList(QWidget* parent = nullptr);

    /// Null for no message.
    void SetMessage(const cMessagePtr& message);
    /// Asks where to, and saves that file of the mail. What was saved, in words; empty for nothing.
    static QString Save(const std::shared_ptr<cdo::Message>& mail, int index);
    /// What plays a file of sound; empty for the system's own way. For tests.
    static void SetSoundPlayer(std::function<bool(const QString& path)> player);

public Q_SLOTS:
    /// Asks where to, and saves the selected file.
    void SaveSelected();
    /// Shows the selected picture large; has the selected sound played, after a question.
    void OpenSelected();
    /// Asks for a folder, and saves every file under a name that is free there.
    void SaveAll();

Q_SIGNALS:
    /// What was saved, in words for a status bar.
    void Saved(const QString& words);

private:
    std::optional<int> SelectedIndex() const;
    QString SelectedType() const;
    void Activate();
    void LoadPictures(const QList<cdo::Attachment>& files);
    void Play(int index, const QString& ending);
    void UpdateButtons();

    cMessagePtr Message_;
    /// The message, or its first parts, whose files are listed.
    std::shared_ptr<cdo::Message> Listed_;
    QLabel* Caption_;
    QTreeWidget* List_;
    QList<int> Pictures_; ///< Places of those files that say so.
    QStringList Types_;
    PictureLoader* Loader_;
    QPushButton* Open_;
    QPushButton* SaveAs_;
    QPushButton* SaveAll_;
};
