// SPDX-License-Identifier: Apache-2.0
#include "SameMails.h"

#include "common/ClockHelper.h"
#include "database/RowCondition.h"
#include "database/cTolvaDatabase.h"
#include "platform/mail/TraceFields.h"

#include <QStringList>

namespace
{
constexpr double SecondsOfADay = 24.0 * 60 * 60;
constexpr double ToleranceInDays = 1 / SecondsOfADay;

QString OfTheDateOf(const cMessage& message)
{
    if (message.Sent().IsNone())
        return QStringLiteral("([Sent] IS NULL OR [Sent]=0)");
    const double sent = ClockHelper::LocalToUTC(message.Sent()).DayNumber();
    return QStringLiteral("[Sent]>=%1 AND [Sent]<=%2")
        .arg(sent - ToleranceInDays, 0, 'f', 8)
        .arg(sent + ToleranceInDays, 0, 'f', 8);
}
} // namespace

bool SameMails::IsSame(cTolvaDatabase& database, const cMessage& message, qint32 reference, Sameness sameness)
{
    const cMessagePtr stored = database.ReadMessage(reference);
    if (!stored || stored->MessageType() != message.MessageType())
        return false;
    const cdo::Message& theirs = *stored->CDOMessage();
    const cdo::Message& ours = *message.CDOMessage();
    // The mail of a text message is made anew each time, with new boundaries.
    if (message.MessageType() == emtSMS)
        return theirs.From() == ours.From() && theirs.TextBody() == ours.TextBody();
    const auto areSame = [&](const QByteArray& one, const QByteArray& other) {
        return sameness == Sameness::Octets ? one == other : cdo::AreSameButForTrace(one, other);
    };
    return areSame(theirs.Octets(), ours.Octets()) || areSame(theirs.Octets(), database.OctetsToStore(message));
}

QList<qint32> SameMails::Alike(cTolvaDatabase& database, const cMessage& message,
                               const std::optional<QList<qint32>>& among)
{
    QList<qint32> references;
    if (among && among->isEmpty())
        return references;
    const auto rows = database.OpenMessageRows(
        {QStringLiteral("Reference"), QStringLiteral("Subject")},
        (among ? RowCondition::HasOneOf(*among) + QStringLiteral(" AND ") : QString()) + OfTheDateOf(message));
    const QString subject = message.CDOMessage()->Subject().left(SubjectLength);
    for (; !rows->AtEOF(); rows->MoveNext()) {
        if (rows->Collect(QStringLiteral("Subject")).toString().left(SubjectLength) == subject)
            references.append(rows->Collect(QStringLiteral("Reference")).toInt());
    }
    return references;
}
