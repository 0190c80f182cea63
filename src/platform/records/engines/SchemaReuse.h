// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Schema.h"

#include <QString>

namespace dao::engine
{

/// A station is opened in steps that each open its file and close it again, and reading its structure is half of what
/// such a step costs. While one of these lives, a file whose structure its thread has read before is opened with what
/// was read then, where the file says that the structure is still the same. Scopes do not nest.
class SchemaReuse
{
public:
    /// What a file says of its structure: who it is, and how often the structure has changed.
    struct State
    {
        QString FileName;
        qint64 Identity;
        qint64 Changes;
        bool operator==(const State&) const = default;
    };

    SchemaReuse();
    ~SchemaReuse();
    SchemaReuse(const SchemaReuse&) = delete;
    SchemaReuse& operator=(const SchemaReuse&) = delete;

    /// Null when it has to be read.
    static SchemaPtr Find(const State& state);
    /// Does nothing where no scope is open.
    static void Keep(const State& state, const SchemaPtr& schema);
};

} // namespace dao::engine
