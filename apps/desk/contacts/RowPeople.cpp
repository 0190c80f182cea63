// SPDX-License-Identifier: Apache-2.0
#include "contacts/RowPeople.h"

#include "messageslist/uMessagesList.h"
#include "station/DeskStation.h"

namespace
{
/// A server is not asked more often; what a directory's file says is seen at once.
constexpr qint64 ServerMilliseconds = 60'000;
} // namespace

RowPeople::RowPeople(DeskStation& station, uMessagesList& list) : QObject(&list), Station_(station)
{
    setObjectName(QStringLiteral("rowPeople"));
    list.SetShowsPeople([this](const QString& header) { return Names_.PersonOf(header); });
    connect(&list, qOverload<QString&>(&uMessagesList::UpdateDisplay), this, [this](const QString&) { Refresh(); });
}

void RowPeople::Refresh()
{
    if (!Station_.Directory().IsOpen())
        return;
    try {
        const bool mayHaveChanged =
            File_.MayHaveChanged(Station_.Directory().File().Name(), Station_.Database().Openings());
        const bool isDue = !File_.IsOnServer() || !SinceRead_.isValid() || SinceRead_.elapsed() > ServerMilliseconds;
        if (!mayHaveChanged || !isDue)
            return;
        Names_ = ContactNames(Station_.Directory().Contacts());
        File_.WasRead();
        SinceRead_.start();
    } catch (const dao::Error&) {
        // Rows show the names that were known, or those that stand in the messages.
        SinceRead_.start();
    }
}
