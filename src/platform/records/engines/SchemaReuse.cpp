// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/SchemaReuse.h"

#include <optional>
#include <utility>

namespace dao::engine
{

namespace
{

struct Kept
{
    SchemaReuse::State State;
    SchemaPtr Schema;
};

thread_local bool isReusing = false;
/// The file that is being opened; others come only in between.
thread_local std::optional<Kept> kept;

} // namespace

SchemaReuse::SchemaReuse()
{
    isReusing = true;
}

SchemaReuse::~SchemaReuse()
{
    isReusing = false;
    kept.reset();
}

SchemaPtr SchemaReuse::Find(const State& state)
{
    return kept && kept->State == state ? kept->Schema : nullptr;
}

void SchemaReuse::Keep(const State& state, const SchemaPtr& schema)
{
    if (isReusing)
        kept = Kept{state, schema};
}

} // namespace dao::engine
