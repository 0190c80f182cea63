// SPDX-License-Identifier: Apache-2.0
#include "AwardCheck.h"

#include "DisplayText.h"

namespace
{
QString Numbered(qint32 number, const QString& one, const QString& many)
{
    return QStringLiteral("%1 %2").arg(QString::number(number), number == 1 ? one : many);
}
} // namespace

QString AwardCheck::Warning(const AwardStanding& standing)
{
    if (!standing.IsPrizeThere && standing.Stored > 0) {
        return QStringLiteral("The prize was deleted at the same moment; %1 without it.")
            .arg(Numbered(standing.Stored, QStringLiteral("winner stands"), QStringLiteral("winners stand")));
    }
    if (!standing.IsPrizeThere || !standing.IsOverdrawn())
        return {};
    return QStringLiteral(
               "\"%1\" has %2, but %3: it was awarded elsewhere at the same moment, or the number supplied was "
               "lowered since. Take winners back, or put the number supplied right.")
        .arg(OneLine(standing.Title), Numbered(standing.Units, QStringLiteral("unit"), QStringLiteral("units")),
             Numbered(standing.Stored, QStringLiteral("winner"), QStringLiteral("winners")));
}
