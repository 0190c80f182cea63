// SPDX-License-Identifier: Apache-2.0
#include "intake/FiledMails.h"

#include "database/RowValues.h"
#include "database/cTolvaDatabase.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
constexpr double SecondsOfADay = 24.0 * 60 * 60;

size_t KeyOf(Date sent, const QString& subject)
{
    return qHashMulti(0, std::llround(sent.DayNumber() * SecondsOfADay),
                      QStringView(subject).left(SameMails::SubjectLength));
}

size_t KeyOf(const cMessage& message)
{
    return KeyOf(message.Sent(), message.CDOMessage()->Subject());
}
} // namespace

bool FiledMails::Hold(const cMessage& message)
{
    const auto isSame = [&](qint32 reference) { return IsSame(message, reference); };
    // A mail server hands over one mail a run: reading all rows for it would cost more than filing it.
    if (!std::exchange(IsAsked_, true)) {
        const QList<qint32> alike = SameMails::Alike(Database_, message);
        return std::any_of(alike.begin(), alike.end(), isSame);
    }
    if (!IsRead_)
        ReadAll();
    const auto [begin, end] = std::as_const(References_).equal_range(KeyOf(message));
    return std::any_of(begin, end, isSame);
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

bool FiledMails::IsSame(const cMessage& message, qint32 reference) const
{
    return SameMails::IsSame(Database_, message, reference, Sameness_);
}
