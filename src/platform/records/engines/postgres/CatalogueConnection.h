// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DBEngine.h"
#include "platform/records/engines/postgres/ConnectString.h"

namespace dao::postgres
{

/// A connection to a server apart from any station. Its statements are the server's own; its one question is that for
/// the list of databases, "Select * from master..sysdatabases WHERE Name='...'", which the server's catalogue answers
/// with rows of one column, Name. Any other question is error 3251. Where the database of the connect string is not
/// there yet, it connects to the server's own one.
std::unique_ptr<dao::Connection> MakeCatalogueConnection(ConnectString connect);

} // namespace dao::postgres
