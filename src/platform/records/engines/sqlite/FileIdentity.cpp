// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/FileIdentity.h"

#include <QRandomGenerator>

namespace dao::sqlite
{

qint64 ReadIdentity(Connection& connection)
{
    if (connection.Number("SELECT EXISTS (SELECT 1 FROM sqlite_schema WHERE type='table' AND name='~Identity')") == 0)
        return 0;
    return connection.Number("SELECT Value FROM \"~Identity\"");
}

void WriteNewIdentity(Connection& connection)
{
    const quint64 drawn = QRandomGenerator::system()->generate64();
    const auto value = static_cast<qint64>(drawn >> 1U) | 1; // positive, and never the 0 of a file that has none
    connection.Execute("CREATE TABLE IF NOT EXISTS \"~Identity\" (Value INTEGER NOT NULL)");
    connection.Execute("DELETE FROM \"~Identity\"");
    connection.Execute("INSERT INTO \"~Identity\" VALUES (" + QByteArray::number(value) + ')');
}

} // namespace dao::sqlite
