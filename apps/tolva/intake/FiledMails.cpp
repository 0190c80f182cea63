// SPDX-License-Identifier: Apache-2.0
#include "intake/FiledMails.h"

#include "database/RowValues.h"
#include "database/cTolvaDatabase.h"
#include "platform/mail/TraceFields.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
/// Less than a row keeps of a subject.
constexpr qsizetype SubjectLength = 200;
constexpr double SecondsOfADay = 24.0 * 60 * 60;
constexpr double ToleranceInDays = 1 / SecondsOfADay;

size_t KeyOf(Date sent, const QString& subject)
{
    return qHashMulti(0, std::llround(sent.DayNumber() * SecondsOfADay), QStringView(subject).left(SubjectLength));
}

size_t KeyOf(const cMessage& message)
{
    return KeyOf(message.Sent(), message.CDOMessage()->Subject());
}
} // namespace

bool FiledMails::Hold(const cMessage& message)
{
    if (!std::exchange(IsAsked_, true))
        return HoldAmongThoseOfItsDate(message);
    if (!IsRead_)
        ReadAll();
    const auto [begin, end] = std::as_const(References_).equal_range(KeyOf(message));
    return std::any_of(begin, end, [&](qint32 reference) { return IsSame(message, reference); });
}

void FiledMails::Add(const cMessage& message)
{
    if (IsRead_)
        References_.insert(KeyOf(message), message.Reference());
}

/// A mail server hands over one mail a run: reading all rows for it would cost more than filing it.
bool FiledMails::HoldAmongThoseOfItsDate(const cMessage& message)
{
    const double sent = ClockHelper::LocalToUTC(message.Sent()).DayNumber();
    const QString condition = message.Sent().IsNone() ? QStringLiteral("[Sent] IS NULL OR [Sent]=0")
                                                      : QStringLiteral("[Sent]>=%1 AND [Sent]<=%2")
                                                            .arg(sent - ToleranceInDays, 0, 'f', 8)
                                                            .arg(sent + ToleranceInDays, 0, 'f', 8);
    QList<qint32> references;
    const auto rows = Database_.OpenMessageRows({QStringLiteral("Reference"), QStringLiteral("Subject")}, condition);
    const QString subject = message.CDOMessage()->Subject().left(SubjectLength);
    for (; !rows->AtEOF(); rows->MoveNext()) {
        if (rows->Collect(QStringLiteral("Subject")).toString().left(SubjectLength) == subject)
            references.append(rows->Collect(QStringLiteral("Reference")).toInt());
    }
    return std::any_of(references.begin(), references.end(),
                       [&](qint32 reference) { return IsSame(message, reference); });
}

void FiledMails::ReadAll()
{
    const QString reference = QStringLiteral("Reference");
    const QString sent = QStringLiteral("Sent");
    const QString subject = QStringLiteral("Subject");
    const auto rows = Database_.OpenMessageRows({reference, sent, subject});
    for (; !rows->AtEOF(); rows->MoveNext()) {
        References_.insert(KeyOf(RowValues::LocalDate(rows->Collect(sent)), rows->Collect(subject).toString()),
                           rows->Collect(reference).toInt());
    }
    IsRead_ = true;
}

bool FiledMails::AreSame(const QByteArray& one, const QByteArray& other) const
{
    return Sameness_ == Sameness::Octets ? one == other : cdo::AreSameButForTrace(one, other);
}

bool FiledMails::IsSame(const cMessage& message, qint32 reference)
{
    const cMessagePtr stored = Database_.ReadMessage(reference);
    if (!stored || stored->MessageType() != message.MessageType())
        return false;
    const cdo::Message& theirs = *stored->CDOMessage();
    const cdo::Message& ours = *message.CDOMessage();
    // The mail of a text message is made anew each time, with new boundaries.
    if (message.MessageType() == emtSMS)
        return theirs.From() == ours.From() && theirs.TextBody() == ours.TextBody();
    return AreSame(theirs.Octets(), ours.Octets()) || AreSame(theirs.Octets(), Database_.OctetsToStore(message));
}
