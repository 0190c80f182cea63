// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"

#include <QByteArray>

namespace dao::postgres
{

/// What a server refused, or that it is not to be reached, as an error of the record store.
class ServerFailure : public Error
{
public:
    /// state: the five characters by which the server names its errors; empty when there was no answer.
    ServerFailure(const QByteArray& state, const QString& serverWords, const QString& place);

    const QByteArray& State() const { return State_; }
    /// The connection is gone; a new one may do.
    bool IsConnectionLost() const;
    /// A table or column is not there, which was when the structure was read.
    bool IsOfOldStructure() const;
    /// A number that the server has not come to: that of a transaction which it never saw.
    bool IsOfUnknownTransaction() const { return State_ == "22023"; }

private:
    QByteArray State_;
};

/// The failure of an attempt to connect, told by libpq's words with the server's states in them. place: as in
/// ConnectString::InWords.
ServerFailure ConnectFailure(const QString& libraryWords, const QString& place);

} // namespace dao::postgres
