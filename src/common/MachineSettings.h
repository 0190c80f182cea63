// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The settings of this machine, which the system's Registry keeps: their keys and defaults in one place. Each answers
/// what is in force at the moment, the default where nothing stands.
namespace MachineSettings
{

/// Folder of the diagnostics log; empty for the usual one.
QString DebugPath();
/// Two letters of a country as they stand there, the first default of a station's; "GB".
QString Country();
/// Whether pages and views hide a sender's phone number; no.
bool MasksPhoneNumbers();
/// Whether each opening of a station checks all its tables; no.
bool AlwaysValidatesDatabases();
/// Whether a station is opened with locks on records; yes.
bool UsesRecordLevelLocking();
/// Whether the words of a station's messages are kept in an index on this machine, so that they are found at once;
/// yes.
bool KeepsSearchIndex();
/// The name of the engine that new files are made with; empty for the usual one.
QString EngineOfNewDatabases();

} // namespace MachineSettings
