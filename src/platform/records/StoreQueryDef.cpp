// SPDX-License-Identifier: Apache-2.0
#include "platform/records/StoreQueryDef.h"

#include "platform/records/StoreDatabase.h"
#include "platform/records/jetsql/Parser.h"

namespace dao
{

StoreQueryDef::StoreQueryDef(SessionPtr session, const QString& sql)
    : Session_(std::move(session)), Text_(sql), Statement_(jetsql::ParseStatement(sql))
{
    const QStringList names = Session_->Required().ParametersOf(Statement_);
    for (const QString& name : names)
        Parameters_.Append(std::make_unique<Parameter>(name));
}

QString StoreQueryDef::SQL() const
{
    Session_->Required();
    return Text_;
}

Collection<Parameter>& StoreQueryDef::Parameters()
{
    Session_->Required();
    return Parameters_;
}

engine::ParameterValues StoreQueryDef::Values() const
{
    engine::ParameterValues values;
    for (int i = 0; i < Parameters_.Count(); ++i) {
        const Parameter& parameter = Parameters_.Item(i);
        if (!parameter.IsSet()) {
            throw Error(errTooFewParameters,
                        QStringLiteral("Too few parameters. '%1' has no value.").arg(parameter.Name()));
        }
        values.push_back({parameter.Name(), parameter.Value()});
    }
    return values;
}

void StoreQueryDef::Execute()
{
    RecordsAffected_ = Session_->Required().Execute(Statement_, Values());
}

std::unique_ptr<Recordset> StoreQueryDef::OpenRecordset(RecordsetTypeEnum type)
{
    Session_->Required();
    const auto* select = std::get_if<jetsql::SelectStatement>(&Statement_);
    if (select == nullptr) {
        throw Error(errNotSupported,
                    QStringLiteral("Operation is not supported for this type of object: the query has no rows."));
    }
    return OpenQuery(Session_, {Text_, *select, Values()}, type);
}

} // namespace dao
