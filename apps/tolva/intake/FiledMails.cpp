// SPDX-License-Identifier: Apache-2.0
#include "intake/FiledMails.h"

#include "database/RowValues.h"
#include "database/cTolvaDatabase.h"

#include <algorithm>
#include <cmath>

namespace
{
/// Less than a row keeps of a subject.
constexpr qsizetype SubjectLength = 200;
constexpr double SecondsOfADay = 24.0 * 60 * 60;

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
    return theirs.Octets() == ours.Octets() || theirs.Octets() == Database_.OctetsToStore(message);
}
