// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "OwnAnswers.h"
#include "answering/AnswerLedger.h"
#include "answering/AnsweringWatch.h"
#include "messages/cMessage.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <optional>

class AnsweredMarks;
class ComposeWindow;
class DeskStation;
class MessageWindow;
class NoticeBar;
class SentAnswers;
class QMainWindow;
class uMessagesList;

/// Who answers which message: tells the other desks of this desk's windows, and shows in the rows and above the message
/// what they tell, and what was answered. It advises and forbids nothing: where there is no directory, or one that
/// takes no writing, the desk works as if it were alone, silently. Owned by the main window; station and list outlive
/// it.
class AnsweringDesk : public QObject
{
    Q_OBJECT

public:
    AnsweringDesk(DeskStation& station, uMessagesList& list, QMainWindow& window);
    ~AnsweringDesk() override;

    /// For the place above the message.
    NoticeBar& Notice() { return *Notice_; }
    /// The message that is selected; null for none.
    void Show(const cMessagePtr& message);
    /// Asks where somebody else is answering it at this moment. False when the user leaves it to them.
    bool MayAnswer(const cMessage& original);

    /// The window counts as long as it stands: as the answer to what its composition or draft answers, if to anything,
    void Watch(ComposeWindow& window);
    /// and as one in which a message is open.
    void Watch(MessageWindow& window);
    /// What stands in the row of a message; empty for nothing.
    QString NoteOf(qint32 message) const;
    /// Somebody has filed an answer to it.
    bool WasAnswered(qint32 message) const;
    /// The list was read anew: so is what was answered.
    void TakeUpdate();
    /// Takes back what this desk told. For the end, while the directory is open.
    void Leave();

    /// How often it looks what the other desks tell, and how long not after that failed.
    static constexpr int LookMilliseconds = 1000;
    static constexpr int RestMilliseconds = 15000;

public Q_SLOTS:
    void Look();

private:
    bool Resolve(const QObject& window, qint32 draft);
    void Begin(const QObject& window, qint32 message);
    void End(const QObject* window);
    void Tell();
    bool WriteOwn();
    QList<Answering> AnsweringOf(qint32 message) const;
    /// By this desk's ledger, or by what lies in Sent.
    std::optional<FiledAnswer> AnswerTo(qint32 message) const;
    void ShowWords();

    DeskStation& Station_;
    uMessagesList& List_;
    NoticeBar* Notice_;
    AnsweredMarks* Marks_;
    SentAnswers* Sent_;
    OwnAnswers Own_;
    QHash<const QObject*, qint32> Unresolved_; ///< Windows of drafts of which it is not known what they answer.
    AnsweringWatch Others_;
    QHash<qint32, QList<Answering>> Now_; ///< By message.
    QHash<qint32, QString> Words_;        ///< The same, as they stand in the rows.
    qint32 Message_ = 0;                  ///< The selected one.
    QElapsedTimer Clock_;                 ///< Runs forward only, whatever becomes of the time.
    qint64 RestsUntil_ = 0;
    QTimer LookTimer_;
    QTimer BeatTimer_;
    QTimer TellTimer_;
};
