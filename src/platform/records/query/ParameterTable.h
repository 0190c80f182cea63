// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/query/BoundTree.h"

namespace dao::query
{

/// The values of a query's parameters in one run, converted to the forms in which the query takes them. Immutable.
class ParameterTable
{
public:
    /// Errors: 3061 a parameter without a value, 3421 a value that cannot be stored, or a text that is no number where
    /// one is needed.
    ParameterTable(const BoundParameters& parameters, const engine::ParameterValues& values);

    const StoredValue& At(const BoundParameter& parameter) const;

private:
    struct Forms
    {
        StoredValue AsIs;
        StoredValue AsNumber;
        StoredValue AsText;
    };
    std::vector<Forms> Values_;
};

} // namespace dao::query
