// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "answering/AnswerLedger.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <optional>

class DeskStation;

/// Which messages were answered by what the station sent, whatever program wrote it: a mail by the identity of the one
/// that it answers, a text message by its number. Sent counts, and what is from the station's own address or number and
/// lies in Saved or in a folder of the station's own. All that is read once for an opening of the station, in steps
/// between the events of the window, and from then on only what is new there; what a row of a screen is called is
/// looked up for all of them in one statement. The station outlives it.
class SentAnswers : public QObject
{
    Q_OBJECT

public:
    SentAnswers(DeskStation& station, QObject* parent);

    /// Begins to read what came into Sent since it looked last.
    void Refresh();
    /// None also for one that is only being looked up: Changed follows then, if it was answered.
    std::optional<FiledAnswer> Of(qint32 message);
    bool IsReading() const { return ReadTimer_.isActive() || LookUpTimer_.isActive(); }

Q_SIGNALS:
    void Changed();

private:
    /// What an answer names the message by that it answers.
    struct Identity
    {
        quint64 Key = 0; ///< 0: nothing can answer it.
        Date Arrived;
        bool IsText = false;
    };
    struct Answer
    {
        QString Name;
        Date When;
    };

    void Forget();
    void ReadSome();
    void LookUp();
    static Identity IdentityOf(dao::Recordset& row);
    void TakeSent(dao::Recordset& row);
    void TakeAnswer(quint64 key, const Answer& answer);

    DeskStation& Station_;
    QHash<quint64, Answer> Answers_; ///< The last to each.
    QHash<qint32, Identity> Identities_;
    QSet<qint32> Wanted_; ///< To be looked up.
    QSet<qint32> Sent_;   ///< Read, or to be.
    QList<qint32> ToRead_;
    qint32 Last_ = 0; ///< The highest of Sent_.
    bool HasNew_ = false;
    QString Condition_; ///< Of what counts as sent.
    int Opening_ = 0;
    Date Stamp_;
    QElapsedTimer SinceAll_; ///< Since all of Sent was listed.
    QTimer ReadTimer_;
    QTimer LookUpTimer_;
};
