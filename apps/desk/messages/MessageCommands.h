// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MessageUndo.h"
#include "messageslist/uMessagesList.h"

#include <QObject>

#include <functional>

class DeskSettings;
class DeskStation;
class MessageUndo;

/// What the desk does with the messages that are selected in its list, be it one or many: deleting, moving, copying,
/// marking, priorities, files. Everything that changes them can be undone, apart from what is deleted for ever; what
/// cannot be done is said. Owned by its window, as the others.
class MessageCommands : public QObject
{
    Q_OBJECT

public:
    MessageCommands(DeskStation& station, DeskSettings& settings, uMessagesList& list, MessageUndo& undo,
                    QWidget& window);

    /// Does a command of the list. False for those that the list, or the window, does.
    bool Do(MessagesListCommand command, const QList<qint32>& references);
    void MoveTo(const QList<qint32>& references, enTolvaMessageCategories folder);
    /// Files mails out of files into a folder, all of them; those that hold none are named.
    void Import(const QStringList& files, enTolvaMessageCategories folder);
    /// Asks for the files.
    void ImportInto(enTolvaMessageCategories folder);

public Q_SLOTS:
    /// Of the selected messages; the folder is chosen by typing.
    void MoveToFolder();
    void CopyToFolder();
    void ExportSelected();

Q_SIGNALS:
    /// What was done, in words.
    void Told(const QString& words);
    /// Files were written there.
    void Exported(const QString& words, const QString& folder);

private:
    /// What one of several messages is before it is changed.
    struct Row
    {
        qint32 Reference = 0;
        qint32 Category = 0;
        qint32 Flags = 0;
        qint32 Priority = 0;
        qint32 PersonalToContact = 0;
    };
    /// What became of several.
    struct Result
    {
        QList<Row> Done;
        qsizetype Refused = 0; ///< Without the right to it.
        int ErrorNumber = 0;   ///< What ended it.
        QString Error;
        bool IsCancelled = false;
    };

    QList<Row> RowsOf(const QList<qint32>& references) const;
    QString SubjectOf(qint32 reference) const;
    /// Goes through the messages with their progress on show; change answers whether it was done.
    Result ForEach(const QString& caption, const QList<Row>& rows, const std::function<bool(const Row&)>& change);
    void TellProblems(const Result& result, qsizetype wanted, const QString& rightWords);
    void Delete(const QList<qint32>& references);
    void Mark(const QList<qint32>& references, bool isRead);
    void MarkAll(const QList<qint32>& references, bool isRead);
    void SetPriority(const QList<qint32>& references, qint32 priority);
    void CopyTo(const QList<qint32>& references, enTolvaMessageCategories folder);
    void Export(const QList<qint32>& references);
    /// Nothing when the user chose none.
    enTolvaMessageCategories ChooseFolder(const QString& title);
    QString FolderName(qint32 folder) const;

    DeskStation& Station_;
    DeskSettings& Settings_;
    uMessagesList& List_;
    MessageUndo& Undo_;
    QWidget& Window_;
};
