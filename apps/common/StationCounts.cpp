// SPDX-License-Identifier: Apache-2.0
#include "StationCounts.h"

#include "database/TableCheck.h"
#include "platform/records/DBEngine.h"

namespace
{
int Count(dao::Database& database, const QString& table)
{
    return database.OpenRecordset(table, dao::dbOpenTable)->RecordCount();
}

QString Number(int count, const char16_t* one, const char16_t* more)
{
    return QStringLiteral("%1 %2").arg(count).arg(QString::fromUtf16(count == 1 ? one : more));
}
} // namespace

StationCounts StationCounts::Of(const QString& file)
{
    constexpr int attempts = 8;
    for (int attempt = 1;; ++attempt) {
        try {
            const auto database = dao::DBEngine::OpenDatabase(file, 0, true);
            return {Count(*database, MessagesTableShape().Name), Count(*database, PrizesTableShape().Name),
                    Count(*database, PrizeWinnersTableShape().Name)};
        } catch (const dao::Error& error) {
            // Somebody else put another file in its place, which is counted instead.
            if (error.Number() != dao::errFileReplaced || attempt == attempts)
                throw;
        }
    }
}

QString StationCounts::Words() const
{
    return Number(Messages, u"message", u"messages") + QStringLiteral(", ") + Number(Prizes, u"prize", u"prizes") +
           QStringLiteral(", ") + Number(Winners, u"winner", u"winners");
}

QJsonObject StationCounts::Json() const
{
    return {{QStringLiteral("messages"), Messages},
            {QStringLiteral("prizes"), Prizes},
            {QStringLiteral("winners"), Winners}};
}
