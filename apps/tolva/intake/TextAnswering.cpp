// SPDX-License-Identifier: Apache-2.0
#include "intake/TextAnswering.h"

#include "Terminal.h"

namespace
{
/// Why a text that asks is not answered; empty for the other outcomes.
QString WhyNotAnswered(SongAnswers::Outcome outcome)
{
    switch (outcome) {
    case SongAnswers::Outcome::NotRecent:
        return QStringLiteral("it did not come within the last five minutes");
    case SongAnswers::Outcome::OwnNumber:
        return QStringLiteral("it comes from a number of the station");
    case SongAnswers::Outcome::NotMobile:
        return QStringLiteral("its sender is no mobile number");
    case SongAnswers::Outcome::Repeated:
        return QStringLiteral("its number was answered within the last five minutes");
    case SongAnswers::Outcome::NoWords:
        return QStringLiteral("the station's template for it is empty");
    case SongAnswers::Outcome::Abroad:
        return QStringLiteral("its sender's number is of another country than the station");
    default:
        return QString();
    }
}
} // namespace

QString TextAnswering::Take(const cMessage& message, const QString& name)
{
    if (IsOver_)
        return QString();
    SongAnswers::Result result;
    if (!Answers_)
        Answers_.emplace(Station_.Database(), Station_.Directory().File());
    try {
        result = Answers_->Answer(message);
    } catch (const dao::Error& error) {
        IsOver_ = true;
        Station_.Terminal().TakeProblems();
        Complain(name, QStringLiteral("was filed, but no answer to it could be stored, nor will one be to the texts "
                                      "behind it in this run: ") +
                           error.Description());
        return QString();
    }
    // Taken here, so that none is told of the message behind it.
    for (const QString& problem : Station_.Terminal().TakeProblems())
        Complain(name, QStringLiteral("was filed; beside its answer: ") + problem);
    if (result.What == SongAnswers::Outcome::Failed)
        Complain(name, QStringLiteral("was filed, but not answered: ") + result.Problem);
    if (result.What == SongAnswers::Outcome::Answered) {
        ++Answered_;
        if (!result.Problem.isEmpty())
            Complain(name, QStringLiteral("was answered, but not marked as answered: ") + result.Problem);
        return QStringLiteral("answered %1 with %2").arg(name).arg(result.Answer);
    }
    const QString reason = WhyNotAnswered(result.What);
    return reason.isEmpty() ? QString() : QStringLiteral("did not answer %1: %2").arg(name, reason);
}

void TextAnswering::Complain(const QString& name, const QString& words) const
{
    Terminal::Complain(name + u' ' + words);
}
