// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"

namespace dao::engine
{

/// The engines of this process, by name. Those that come with the store are registered when it is first used; a host or
/// a test may add more. Which engine opens what is decided here and nowhere else, and never by guess.
class EngineRegistry
{
public:
    static EngineRegistry& Instance();

    /// Takes an engine, behind those that are there. Error 3010 when its name is taken.
    void Register(std::unique_ptr<Engine> engine);
    /// Takes it out again; databases that it opened must be closed. Error 3265.
    void Unregister(const QString& name);

    const std::vector<std::unique_ptr<Engine>>& Engines() const { return Engines_; }
    /// Error 3265.
    Engine& Named(const QString& name) const;
    /// The engine that makes new files: the one of that name in any case, the usual one for an empty name. Errors: 3265
    /// when no engine of that name makes files, with the names of those that do; 3251 when it is not available.
    Engine& ForNewFiles(const QString& name) const;
    /// Error 3343 when no engine recognises the file, 3251 when the one that does is not available.
    Engine& ForFile(const QByteArray& firstOctets) const;
    /// Error 3251 when no engine serves the connect string or the one that does is not available.
    Engine& ForConnect(const QString& connect) const;
    /// Of all engines: a damaged file does not tell whose it is. The locks of those that lock files.
    std::vector<std::unique_ptr<FileLock>> LockOut(const QString& fileName) const;
    /// Those of all engines, for the same reason.
    QStringList CompanionsOf(const QString& fileName) const;

private:
    EngineRegistry();
    QStringList MakersOfFiles() const;

    std::vector<std::unique_ptr<Engine>> Engines_;
};

} // namespace dao::engine
