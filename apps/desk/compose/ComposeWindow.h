// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DraftStore.h"
#include "UnsentText.h"

#include <QMainWindow>
#include <QTimer>

#include <optional>

class AddressBox;
class BodyEdit;
class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QMenu;
class QSplitter;
class PreviewPane;
class Speller;

/// The window in which one message is written. Sending files it in the Outbox for the mailer; nothing is sent from
/// here. It closes itself when the message is filed, and never while what was typed is neither stored nor given up by
/// the writer. Deletes itself on closing. The station outlives it.
class ComposeWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// draft: the stored draft that the composition continues; null for a new message.
    ComposeWindow(DeskStation& station, const Composition& composition, const cMessagePtr& draft = nullptr,
                  QWidget* parent = nullptr);

    /// What stands in the window now.
    Composition Current() const;
    /// Whether something was written since it was opened or last stored.
    bool IsChanged() const { return !(Current() == Stored_); }
    /// 0 for what was never stored.
    qint32 Reference() const { return Store_.Reference(); }

    /// Marks what the dictionary does not know. The speller outlives the window.
    void CheckSpelling(Speller& speller);

    /// Keeps what is written in that file every few seconds, until it is stored or given up.
    void KeepIn(UnsentText file);
    /// Shows what was being written when a desk ended, as something that is not stored.
    void Recover(const Composition& text);
    static constexpr int KeepMilliseconds = 3000;

    /// Adds files by their paths; what cannot go with the message is told in one box. True when all were added.
    bool AddFiles(const QStringList& paths);
    /// The largest file, and the most that all files may have together, in octets.
    static constexpr qint64 LargestFile = 25LL * 1024 * 1024;

public Q_SLOTS:
    /// Both answer false, with the text still in the window, when nothing was stored.
    bool Send();
    bool SaveDraft();
    void ChooseFiles();
    /// The message that is answered, beside what is written.
    void ShowOriginal(bool isShown);
    void RemoveSelectedFiles();

Q_SIGNALS:
    /// It is stored: as a draft, or in the Outbox.
    void Filed(const QString& words);
    /// Before Filed: under what number, and whether it goes out.
    void Stored(qint32 reference, bool goesOut);
    /// The writer asks for the directory's entry of a recipient; the name may be empty.
    void ContactWanted(const QString& name, const QString& address);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void MakeActions();
    QWidget* MakeForm();
    void Show(const Composition& composition);
    void MakeAnswerActions(QMenu& menu);
    void FillTemplates(QMenu& menu);
    void InsertTemplate(const QString& name);
    void ReadContacts();
    void FocusAfter(const QWidget* box);
    void FocusProblem();
    void ShowFiles();
    void UpdateTitle();
    void ShowLength();
    bool ConfirmDoubt();
    bool File(Composing::Filing filing);
    void KeepUnsent();
    DraftStore::Conflict AskAboutConflict(DraftStore::Outcome outcome);
    QString WhyNotAdded(const QString& path, qint64 together, ComposedFile& file) const;

    DeskStation& Station_;
    DraftStore Store_;
    Composition Base_;   ///< What has no box of its own: type and thread.
    Composition Begun_;  ///< As the window opened.
    Composition Stored_; ///< What is not worth asking about when the window closes.
    QList<ComposedFile> Files_;
    std::optional<UnsentText> Unsent_;
    std::optional<UnsentText::Content> Kept_; ///< In the file.
    QTimer KeepTimer_;

    AddressBox* To_;
    AddressBox* CC_;
    AddressBox* BCC_;
    QLineEdit* Subject_;
    BodyEdit* Body_;
    QListWidget* FileList_;
    QLabel* Note_;
    QLabel* Length_; ///< Of a text message.
    QAction* Remove_ = nullptr;
    QSplitter* Sides_;
    PreviewPane* Original_ = nullptr; ///< Made when it is first shown.
    QAction* ShowOriginal_ = nullptr;
};
