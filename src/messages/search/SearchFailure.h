// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <exception>

/// Why the search index cannot be used at the moment. Thrown by SearchIndex, caught by whoever keeps one: the station
/// itself is not concerned.
class SearchFailure : public std::exception
{
public:
    enum class Reason
    {
        Damaged,    ///< Not what was written: it has to be made anew.
        Busy,       ///< Another program of this computer has it for too long.
        Full,       ///< No room on the disk.
        NoAccess,   ///< This account may not write there.
        Interrupted ///< Whoever asked does not want to know any more.
    };

    SearchFailure(Reason reason, const QString& words) : Reason_(reason), Words_(words), What_(words.toUtf8()) {}

    Reason Why() const { return Reason_; }
    /// What is wrong and what to do.
    const QString& Words() const { return Words_; }
    const char* what() const noexcept override { return What_.constData(); }

private:
    Reason Reason_;
    QString Words_;
    QByteArray What_;
};
