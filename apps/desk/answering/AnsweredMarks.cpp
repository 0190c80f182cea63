// SPDX-License-Identifier: Apache-2.0
#include "AnsweredMarks.h"

#include "ShortWait.h"
#include "common/ClockHelper.h"
#include "database/RowCondition.h"
#include "messages/AddressKey.h"
#include "messages/MessageArrivals.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/LockPatience.h"
#include "platform/records/Recordset.h"
#include "station/DeskStation.h"

#include <cmath>

namespace
{
/// What is read again with each look: the clocks of the desks may differ by so much.
constexpr double OverlapDays = 1;
constexpr double SecondsADay = 86400;
/// Of one person's text messages; more are not waiting for an answer.
constexpr qsizetype MostTexts = 200;

bool IsSameMoment(Date a, Date b)
{
    return std::abs(a.DayNumber() - b.DayNumber()) * SecondsADay < 1;
}
} // namespace

AnsweredMarks::AnsweredMarks(DeskStation& station, QObject* parent) : QObject(parent), Station_(station)
{
    LookUpTimer_.setSingleShot(true);
    LookUpTimer_.setInterval(0);
    connect(&LookUpTimer_, &QTimer::timeout, this, &AnsweredMarks::LookUp);
    WriteTimer_.setSingleShot(true);
    WriteTimer_.setInterval(ShortWait::AgainMilliseconds);
    connect(&WriteTimer_, &QTimer::timeout, this, [this] {
        const dao::LockPatience patience(ShortWait::Milliseconds);
        WriteFiled();
    });
}

void AnsweredMarks::Refresh()
{
    if (!Station_.Directory().IsOpen())
        return;
    if (const int opening = Station_.Database().Openings(); opening != Opening_) {
        Opening_ = opening;
        Answers_.clear();
        Known_.clear();
        Latest_ = Date();
    }
    try {
        const dao::LockPatience patience(ShortWait::Milliseconds);
        const Date since = Latest_.IsNone() ? Date() : Date(Latest_.DayNumber() - OverlapDays);
        Take(AnswerLedger(Station_.Directory().File()).Since(since));
    } catch (const dao::Error&) {
        // A mark is missing until the next look; the window says when the station itself cannot be reached.
    }
}

void AnsweredMarks::Take(const QList<FiledAnswer>& answers)
{
    bool isOther = false;
    for (const FiledAnswer& answer : answers) {
        const qint32 message = answer.Original.Message;
        const auto before = Answers_.constFind(message);
        if (before != Answers_.constEnd() && answer.When <= before->When)
            continue;
        if (before == Answers_.constEnd() || !(before->Original == answer.Original))
            Known_.remove(message);
        Answers_.insert(message, answer);
        if (Latest_.IsNone() || answer.When > Latest_)
            Latest_ = answer.When;
        isOther = true;
    }
    if (isOther)
        Q_EMIT Changed();
}

std::optional<FiledAnswer> AnsweredMarks::Of(qint32 message)
{
    const auto answer = Answers_.constFind(message);
    if (answer == Answers_.constEnd())
        return std::nullopt;
    if (Known_.contains(message))
        return *answer;
    Wanted_.insert(message);
    LookUpTimer_.start();
    return std::nullopt;
}

/// Behind the painting that asked.
void AnsweredMarks::LookUp()
{
    QSet<qint32> others = std::exchange(Wanted_, {});
    if (others.isEmpty() || !Station_.Database().IsOpen())
        return;
    try {
        const QList<AnsweredMessage> stored = MessagesWhere(RowCondition::HasOneOf(others));
        for (const AnsweredMessage& message : stored) {
            const auto answer = Answers_.constFind(message.Message);
            if (answer == Answers_.constEnd() || !IsSameMoment(answer->Original.Arrived, message.Arrived))
                continue;
            Known_.insert(message.Message);
            others.remove(message.Message);
        }
        // Another message has the number now, or none.
        for (const qint32 other : std::as_const(others))
            Answers_.remove(other);
        Q_EMIT Changed();
    } catch (const dao::Error&) {
        // Asked for again when the rows are painted next.
    }
}

QList<AnsweredMessage> AnsweredMarks::MessagesWhere(const QString& condition) const
{
    QList<AnsweredMessage> messages;
    const QMap<qint32, Date> arrivals = MessageArrivals::Where(Station_.Database(), condition);
    for (auto arrival = arrivals.cbegin(); arrival != arrivals.cend(); ++arrival)
        messages.append({arrival.key(), arrival.value()});
    return messages;
}

/// What somebody wrote by text message is one conversation: an answer is to all of it that came before.
QList<AnsweredMessage> AnsweredMarks::TextsAnsweredBy(qint32 answer) const
{
    const auto row = Station_.Database().OpenMessageRows({QStringLiteral("MessageType"), QStringLiteral("ToKey")},
                                                         QStringLiteral("[Reference]=%1").arg(answer));
    if (row->AtEOF() || row->Collect(QStringLiteral("MessageType")).toInt() != emtSMS)
        return {};
    QString key = row->Collect(QStringLiteral("ToKey")).toString();
    if (key.isEmpty())
        return {};
    key.replace(u'\'', QStringLiteral("''"));
    QList<AnsweredMessage> texts =
        MessagesWhere(QStringLiteral("[MessageType]=%1 AND [FromKey]='%2' AND [Category] NOT IN (%3,%4,%5)")
                          .arg(QString::number(emtSMS), key, QString::number(tmcOutbox), QString::number(tmcSent),
                               QString::number(tmcDrafts)));
    texts.removeIf([this](const AnsweredMessage& text) { return Answers_.contains(text.Message); });
    return texts.mid(std::max<qsizetype>(0, texts.size() - MostTexts));
}

void AnsweredMarks::Note(qint32 original, qint32 answer, bool goesOut)
{
    const clsKVUser* user = Station_.Directory().CurrentUser();
    if (!user || answer == 0)
        return;
    const dao::LockPatience patience(ShortWait::Milliseconds);
    Unwritten_.append({original, answer, goesOut, user->Name(), goesOut ? ClockHelper::NowUTC() : Date()});
    WriteFiled();
}

void AnsweredMarks::Finish()
{
    WriteFiled();
    WriteTimer_.stop();
}

void AnsweredMarks::WriteFiled()
{
    bool goesOut = false;
    while (!Unwritten_.isEmpty()) {
        try {
            Write(Unwritten_.first());
        } catch (const dao::Error& error) {
            if (error.Number() == dao::errLocked) {
                WriteTimer_.start();
                break;
            }
            // The message itself is filed; a directory that takes no mark must not look like one that was not.
        }
        goesOut = goesOut || Unwritten_.first().GoesOut;
        Unwritten_.removeFirst();
    }
    if (goesOut)
        Refresh();
}

void AnsweredMarks::Write(const Filed& filed)
{
    AnswerLedger ledger(Station_.Directory().File());
    QList<AnsweredMessage> originals = filed.Original != 0
                                           ? MessagesWhere(QStringLiteral("[Reference]=%1").arg(filed.Original))
                                           : ledger.OriginalsOf(filed.Answer);
    if (filed.GoesOut) {
        for (const AnsweredMessage& text : TextsAnsweredBy(filed.Answer)) {
            if (!originals.contains(text))
                originals.append(text);
        }
    }
    ledger.Note(originals, filed.Answer, filed.Name, filed.When);
}

std::optional<qint32> AnsweredMarks::OriginalOf(qint32 draft) const
{
    try {
        const dao::LockPatience patience(ShortWait::Milliseconds);
        const QList<AnsweredMessage> originals = AnswerLedger(Station_.Directory().File()).OriginalsOf(draft);
        return originals.isEmpty() ? 0 : originals.first().Message;
    } catch (const dao::Error& error) {
        return error.Number() == dao::errLocked ? std::nullopt : std::optional<qint32>(0);
    }
}
