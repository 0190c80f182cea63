// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DatabaseSession.h"
#include "platform/records/QueryDef.h"

namespace dao
{

class StoreQueryDef final : public QueryDef
{
public:
    StoreQueryDef(SessionPtr session, const QString& sql);

    QString SQL() const override;
    Collection<Parameter>& Parameters() override;
    void Execute() override;
    int RecordsAffected() const override { return RecordsAffected_; }
    std::unique_ptr<Recordset> OpenRecordset(RecordsetTypeEnum type) override;

private:
    /// 3061 when one is missing.
    engine::ParameterValues Values() const;

    SessionPtr Session_;
    QString Text_;
    jetsql::Statement Statement_;
    Collection<Parameter> Parameters_;
    int RecordsAffected_ = 0;
};

} // namespace dao
