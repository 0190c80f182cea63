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

/// Takes back what this desk did to messages, the last first, as long as the window is open: moving and deleting,
/// marking as read and unread, and priorities. Each goes back to what it was, unless somebody has changed the same
/// meanwhile. What was deleted for ever stays deleted. A line across the window offers it for a while, a menu entry for
/// as long as there is something. The station outlives it.
class MessageUndo : public QObject
{
    Q_OBJECT

public:
    enum class Kind
    {
        Move, ///< Values are folders.
        Mark, ///< mfRead or 0.
        Priority
    };
    /// What happened to one message.
    struct Change
    {
        qint32 Reference = 0;
        qint32 Before = 0;
        qint32 After = 0;
    };

    MessageUndo(DeskStation& station, QWidget& window);

    NoticeBar& Notice() { return *Notice_; }
    /// "Undo" with its key; the window's menu owns it.
    QAction* Action() { return Action_; }

    /// One step, of changes of one kind. subject: of the only message; it is not used for several.
    void Take(Kind kind, const QList<Change>& changes, const QString& subject = QString());
    void Undo();
    /// Nothing can be taken back any more: the file is another one.
    void Forget();

    static constexpr int NoticeMilliseconds = 15000;

Q_SIGNALS:
    /// These were put back as they were, as far as they could be.
    void TakenBack(const QList<qint32>& references);
    /// What was done, or why not, in words.
    void Told(const QString& words);

private:
    struct Step
    {
        Kind What = Kind::Move;
        QList<Change> Changes;
        QString Subject; ///< Of a single message, or "3 messages".
    };
    enum class Outcome
    {
        Back,
        Gone,     ///< Deleted for ever meanwhile.
        MovedOn,  ///< Somebody did something else with it.
        NoFolder, ///< Where it came from is no folder any more.
        Refused   ///< Could not be stored; tried again when the user does.
    };

    Outcome TakeBack(Kind kind, const Change& change);
    void TellOne(const Step& step, Outcome outcome);
    void TellSeveral(const Step& step, qsizetype back, qsizetype others);
    QString NoticeOf(const Step& step) const;
    QString FolderName(qint32 reference) const;
    QString RefusedWords(const Step& step) const;
    void ShowState();

    DeskStation& Station_;
    NoticeBar* Notice_;
    QAction* Action_;
    QTimer NoticeTimer_;
    QList<Step> Steps_;
    qint32 FolderNow_ = 0; ///< Where the message is that was moved on.
};
