// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/postgres/ServerConnection.h"

/// A station's structure on the server: its own lists of tables, fields and indexes, and the tables that they speak of.
/// The functions that change something belong into a transaction that has the writer's lock.
namespace dao::postgres
{

/// What the station's one row tells.
struct StationState
{
    qint64 Format = 0;
    qint64 Identity = 0;  ///< Another one once a backup was put back.
    qint64 Structure = 0; ///< Counts the changes of the structure.

    bool operator==(const StationState&) const = default;
};

inline constexpr qint64 FormatVersion = 1;

/// Told by the format, so that programs which know nothing of it open only what is open.
enum class StationStanding : qint64
{
    Open = FormatVersion,
    MovedAway = -1, ///< Into a file; what is here was left.
    Arriving = -2   ///< Copied from a file that is still in its place.
};

inline StationStanding StandingOf(const StationState& state)
{
    return static_cast<StationStanding>(state.Format);
}

/// Makes the schema where it is not there, and what a station needs in it. Of several that do so at once each finds it
/// made.
void CreateStation(ServerConnection& connection);
/// A row where the schema holds a station.
Command HasStationCommand(const ServerConnection& connection);

/// What reads the state, as the columns Format, Identity, Structure.
Command StateCommand(const QByteArray& quotedSchema);
/// Error 3343 for a format that is not known here.
StationState StateIn(const Result& result, const ServerConnection& connection);

/// The structure as it stands; isInTransaction: of the caller, who keeps writers out. Tables that are as in previous
/// are the same objects.
engine::SchemaPtr ReadStructure(ServerConnection& connection, const QByteArray& quotedSchema, bool isInTransaction,
                                const engine::SchemaPtr& previous, StationState& state);

/// 3251 for a name that no engine takes.
void RequireName(const QString& name);
void WriteTable(ServerConnection& connection, const QByteArray& quotedSchema, const engine::Table& table);
void WriteColumn(ServerConnection& connection, const QByteArray& quotedSchema, const engine::Table& table,
                 const engine::Column& column);
void WriteIndex(ServerConnection& connection, const QByteArray& quotedSchema, const engine::Table& table,
                const engine::IndexKey& index);
/// So that everybody reads the structure anew.
void CountChange(ServerConnection& connection, const QByteArray& quotedSchema);
void WriteStanding(ServerConnection& connection, const QByteArray& quotedSchema, StationStanding standing);
/// Takes all tables of the user away and gives the station another identity.
void ClearStation(ServerConnection& connection, const QByteArray& quotedSchema, const engine::Schema& schema);

} // namespace dao::postgres
