// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/CounterBlocks.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

namespace dao::sqlite
{

/// The column of the list of tables that keeps their counters.
class CounterColumn final : public engine::CounterMarks
{
public:
    explicit CounterColumn(Connection& connection) : Connection_(connection) {}

    qint64 Mark(qint64 table) override;
    void SetMark(qint64 table, qint64 mark) override;

private:
    Connection& Connection_;
    Statement Read_;
    Statement Write_;
};

} // namespace dao::sqlite
