// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "platform/directory/clsKVContact.h"

#include <QObject>

class DeskStation;
class QWidget;

/// How a prize is given away at this desk: what is asked, what is refused and why, and what happens when two desks gave
/// the last one away. One of it serves the page, the prize windows and the messages. The station outlives it; parents
/// are the windows that the dialogs belong to. No dao::Error leaves it.
class AwardFlow : public QObject
{
    Q_OBJECT

public:
    explicit AwardFlow(DeskStation& station, QObject* parent = nullptr);

    /// Lets the user choose the winner of a prize, and awards it.
    void Award(qint32 prize, QWidget* parent);
    /// Awards the prize to a contact who was chosen. True when it is stored, and not taken back in the end.
    bool AwardTo(qint32 prize, const clsKVContact& contact, QWidget* parent);
    /// Lets the user choose a prize for the sender of a message, who becomes a contact if need be, and awards it.
    void AwardToSender(const cMessagePtr& message, QWidget* parent);
    /// Takes an award back, without a question. Says why when that does not work.
    bool TakeBack(qint32 winner);

Q_SIGNALS:
    /// An award is stored. words: what to tell the user.
    void Awarded(qint32 prize, qint32 winner, const QString& words);
    /// The winners of some prize are not what they were.
    void WinnersChanged();

private:
    bool MayAward(qint32 prize);
    bool AskWhenNotNow(qint32 prize);
    bool OfferTakingBack(qint32 prize, qint32 winner, const QString& name, QWidget* parent);
    clsKVContactPtr SenderOf(const cMessage& message, QWidget* parent);
    template <typename Work>
    void Run(Work&& work);

    DeskStation& Station_;
};
