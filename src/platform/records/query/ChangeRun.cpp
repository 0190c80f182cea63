// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/CurrentRows.h"
#include "platform/records/query/KeyCondition.h"
#include "platform/records/query/QueryRun.h"
#include "platform/records/query/StoredValues.h"

namespace dao::query
{

std::vector<ChangedRow> PlanChange(const BoundChange& change, const engine::ParameterValues& parameters,
                                   TableRows& rows)
{
    const ParameterTable values(change.Parameters, parameters);
    CurrentRows current({change.Source.Table}, rows);
    const Evaluator evaluator(current, values);
    std::vector<ChangedRow> plan;
    ForEachCandidate(change.Source, change.Where, evaluator, rows, [&](const Row& row) {
        current.Set(0, &row);
        if (change.Where && !evaluator.Holds(*change.Where))
            return true;
        ChangedRow& changed = plan.emplace_back();
        changed.Id = row.Id;
        changed.Version = row.Version;
        for (const BoundAssignment& assignment : change.Assignments) {
            const auto& column = change.Source.Table->Columns[static_cast<std::size_t>(assignment.Column)];
            changed.Values.push_back(Kept(AsHeldBy(column, evaluator.Value(assignment.Value))));
        }
        return true;
    });
    return plan;
}

int ApplyChange(const BoundChange& change, const std::vector<ChangedRow>& plan, engine::Store& store)
{
    std::vector<engine::Assignment> assignments(change.Assignments.size());
    for (const ChangedRow& row : plan) {
        if (change.Assignments.empty()) {
            store.Delete(change.Source.Table, row.Id);
            continue;
        }
        for (std::size_t i = 0; i < assignments.size(); ++i)
            assignments[i] = {change.Assignments[i].Column, &row.Values[i]};
        store.Update(change.Source.Table, row.Id, row.Version, assignments);
    }
    return static_cast<int>(plan.size());
}

} // namespace dao::query
