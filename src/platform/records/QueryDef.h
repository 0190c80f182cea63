// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/Collection.h"
#include "platform/records/Recordset.h"

namespace dao
{

/// A named value of a query: "[LastBackupDate]" in its text where no column has that name.
class TOLVA_EXPORT Parameter
{
public:
    explicit Parameter(const QString& name) : Name_(name) {}

    const QString& Name() const { return Name_; }
    QVariant Value() const { return Value_; }
    void SetValue(const QVariant& value)
    {
        Value_ = value;
        IsSet_ = true;
    }
    bool IsSet() const { return IsSet_; }

private:
    QString Name_;
    QVariant Value_;
    bool IsSet_ = false;
};

/// A query with parameters. Made by Database::CreateQueryDef and owned by the caller; not stored in the file.
class TOLVA_EXPORT QueryDef
{
public:
    virtual ~QueryDef() = default;

    virtual QString SQL() const = 0;
    virtual Collection<Parameter>& Parameters() = 0;
    /// Runs an UPDATE or DELETE, all or nothing, durable when it returns. 3061 when a parameter has no value.
    virtual void Execute() = 0;
    /// Rows that the last Execute changed.
    virtual int RecordsAffected() const = 0;
    virtual std::unique_ptr<Recordset> OpenRecordset(RecordsetTypeEnum type = dbOpenDefault) = 0;
};

} // namespace dao
