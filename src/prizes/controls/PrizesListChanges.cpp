// SPDX-License-Identifier: Apache-2.0

// Keeping the prizes list in step with what other computers change.

#include "common/ClockHelper.h"
#include "database/RowValues.h"
#include "database/watch/StationWatch.h"
#include "platform/records/Recordset.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/ListPanes.h"
#include "prizes/controls/uPrizesList.h"

#include <QScopeGuard>

namespace
{
/// Beyond this a fill is quicker to answer: it gives the window time between the rows.
constexpr std::size_t MostRowsDrawn = 500;
const QString NoneOfTable = QStringLiteral("SELECT [Reference] FROM [Prizes] WHERE ([Reference]=0) ");
} // namespace
bool uPrizesList::TakeChanges()
{
    // A fill would take half a find text. It comes with the tick behind.
    if (!HasDatabase() || comboFind_->IsBeingTyped())
        return false;
    const QPointer<uPrizesList> self(this);
    const Date stamp = clsTolvaDatabase_->Watch().PrizeStamp();
    if (stamp.IsNone()) {
        // No stamp, or no answer: a station that cannot be reached must say so rather than be written to.
        clsTolvaDatabase_->OpenSnapshot(NoneOfTable);
        clsTolvaDatabase_->SetLastPrizeChanged(ClockHelper::CurrentTime());
    }
    if (IsBehind(stamp))
        Display(Reading::ChangedRows);
    return self && HasDatabase() && !IsBehind(stamp);
}

/// Draws the rows that differ from what is stored, and leaves the others and the user's place as they are. False, with
/// nothing done, for so many changes that all rows are to be read.
bool uPrizesList::DrawChanges(dao::Recordset& light, RowsRead& read)
{
    const std::vector<Line> lines = ReadLines(light);
    std::vector<ReadRow> now;
    now.reserve(lines.size());
    for (const Line& line : lines)
        now.push_back(AsShown(line));
    const RowChanges changes = CompareRows(ShownRows_, now);
    if (changes.Differing.size() > MostRowsDrawn)
        return false;

    grdList_->SetRedraw(false);
    const auto redraw = qScopeGuard([this] { grdList_->SetRedraw(true); });
    ShownRows_ = std::move(now);
    if (changes.AreArranged)
        Arrange(changes.Sources, read);
    for (const int place : changes.Differing)
        DrawLine(place + 1, lines[static_cast<std::size_t>(place)]);
    ShowRowsOrNone(read);
    ShowUnread(*lblUnread_, 0);
    read.IsRead = true;
    return true;
}

std::vector<uPrizesList::Line> uPrizesList::ReadLines(dao::Recordset& light)
{
    const dao::Field& reference = light[QStringLiteral("Reference")];
    const dao::Field& title = light[QStringLiteral("Title")];
    const dao::Field& supplied = light[QStringLiteral("NumberSupplied")];
    const dao::Field& winners = light[QStringLiteral("NumberWinners")];
    const dao::Field& lastWon = light[QStringLiteral("LastWonDate")];
    std::vector<Line> lines;
    lines.reserve(static_cast<std::size_t>(light.RecordCount()));
    for (; !light.AtEOF(); light.MoveNext()) {
        lines.push_back({reference.Value().toInt(), title.Value().toString(), supplied.Value().toInt(),
                         winners.Value().toInt(), RowValues::LocalDateOrNone(lastWon.Value())});
    }
    return lines;
}
