// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "answering/AnswerLedger.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <optional>

class DeskStation;

/// Which of the messages that are looked at were answered, by whom and when. What the directory holds of answers is
/// read once for an opening of the station and from then on only what is new; that a message is still the one that was
/// answered is looked up for all rows of a screen in one statement. Where there is no directory, nothing was answered.
/// The station outlives it.
class AnsweredMarks : public QObject
{
    Q_OBJECT

public:
    AnsweredMarks(DeskStation& station, QObject* parent);

    /// Reads what was filed since it looked last.
    void Refresh();
    /// None also for one that is only being looked up: Changed follows then.
    std::optional<FiledAnswer> Of(qint32 message);

    /// That the desk's user has filed the answer to what was begun as an answer to original (0: what the draft answered
    /// that it was), or keeps it as a draft. Of a text message, all that its recipient wrote before are answered.
    /// Written at once, or where somebody else has the directory locked as soon as it is free; nobody waits for that.
    void Note(qint32 original, qint32 answer, bool goesOut);
    /// Writes what was not written yet, and waits as long as usual. For the end.
    void Finish();
    bool HasUnwritten() const { return !Unwritten_.isEmpty(); }
    /// What a draft answers; 0 for nothing. None where somebody else has the directory locked.
    std::optional<qint32> OriginalOf(qint32 draft) const;

Q_SIGNALS:
    void Changed();

private:
    /// What the desk's user filed.
    struct Filed
    {
        qint32 Original = 0;
        qint32 Answer = 0;
        bool GoesOut = false;
        QString Name;
        Date When;
    };

    void WriteFiled();
    void Write(const Filed& filed);
    void Take(const QList<FiledAnswer>& answers);
    void LookUp();
    QList<AnsweredMessage> TextsAnsweredBy(qint32 answer) const;
    QList<AnsweredMessage> MessagesWhere(const QString& condition) const;

    DeskStation& Station_;
    QHash<qint32, FiledAnswer> Answers_; ///< The last of each message.
    QSet<qint32> Known_;                 ///< Of these the one that was answered has that number.
    QSet<qint32> Wanted_;                ///< To be looked up.
    Date Latest_;
    int Opening_ = 0;
    QTimer LookUpTimer_;
    QList<Filed> Unwritten_; ///< In their order.
    QTimer WriteTimer_;
};
