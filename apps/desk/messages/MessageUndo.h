// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QList>
#include <QObject>
#include <QTimer>

class DeskStation;
class NoticeBar;
class QAction;
class QWidget;

/// Takes back what this desk deleted or moved, the last first, as long as the window is open: a message goes back to
/// the folder that it came from, unless somebody has moved it on. What was deleted for ever stays deleted. A line
/// across the window offers it for a while, a menu entry for as long as there is something. The station outlives it.
class MoveUndo : public QObject
{
    Q_OBJECT

public:
    MoveUndo(DeskStation& station, QWidget& window);

    NoticeBar& Notice() { return *Notice_; }
    /// "Undo" with its key; the window's menu owns it.
    QAction* Action() { return Action_; }

    /// A message was moved here from another folder.
    void Take(const cMessagePtr& message, enTolvaMessageCategories from);
    void Undo();
    /// Nothing can be taken back any more: the file is another one.
    void Forget();

    static constexpr int NoticeMilliseconds = 15000;

Q_SIGNALS:
    void MovedBack(qint32 reference);
    /// What was done, or why not, in words.
    void Told(const QString& words);

private:
    struct Move
    {
        qint32 Reference = 0;
        enTolvaMessageCategories From = tmcInbox;
        enTolvaMessageCategories To = tmcInbox;
        QString Subject;
    };

    QString FolderName(qint32 reference) const;
    /// Whether the move can be forgotten: taken back, or past it.
    bool TakeBack(const Move& move);
    void ShowState();

    DeskStation& Station_;
    NoticeBar* Notice_;
    QAction* Action_;
    QTimer NoticeTimer_;
    QList<Move> Moves_;
};
