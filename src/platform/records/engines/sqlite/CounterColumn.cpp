// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/CounterColumn.h"

namespace dao::sqlite
{

qint64 CounterColumn::Mark(qint64 table)
{
    if (!Read_)
        Read_ = Statement(Connection_, "SELECT Counter FROM \"~Tables\" WHERE Id = ?");
    StatementUse use(Read_);
    use.Bind(1, table);
    return use.Step() ? use.Integer(0) : 0;
}

void CounterColumn::SetMark(qint64 table, qint64 mark)
{
    if (!Write_)
        Write_ = Statement(Connection_, "UPDATE \"~Tables\" SET Counter = ?2 WHERE Id = ?1");
    StatementUse use(Write_);
    use.Bind(1, table);
    use.Bind(2, mark);
    use.Run();
}

} // namespace dao::sqlite
