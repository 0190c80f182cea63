// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <utility>

namespace dao
{

/// Keeps a database file listed as open in this process, with the locking mode that its first opener chose and the
/// engine that serves it. The mode holds until the last lease of the file is gone. One thread.
class FileLease
{
public:
    FileLease() = default;
    /// lockingMode: 0 page, 1 record; what counts is that of the first lease.
    FileLease(const QString& fileName, const QString& engine, int lockingMode);
    ~FileLease() { Release(); }
    FileLease(FileLease&& other) noexcept : Path_(std::exchange(other.Path_, {})) {}
    FileLease& operator=(FileLease&& other) noexcept;

    /// The mode in force.
    int LockingMode() const;
    void Release();

    /// The engine's name, or an empty text when the file is not open in this process.
    static QString EngineOf(const QString& fileName);

private:
    QString Path_; ///< Without symbolic links.
};

} // namespace dao
