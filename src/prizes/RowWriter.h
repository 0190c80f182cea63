// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/PendingError.h"

#include <QVariant>

namespace dao
{
class Recordset;
}

/// Writes one record into its row: the steps that a prize and a winner share, with their lines in the diagnostics log.
/// After the first error nothing more is done to the row, which then stays as it was, or is not made. A plain helper of
/// one operation, which keeps the recordset and the error.
class RowWriter
{
public:
    /// what: the record's name in the log, such as "Prize Winner".
    RowWriter(dao::Recordset& recordset, PendingError& pending, const QString& what);

    /// Begins to edit the row of that reference, or a new one for 0 and for a row that is gone. The row's reference.
    qint32 Begin(qint32 reference);
    void Set(const QString& column, const QVariant& value);
    /// Stores the row; false when an error stands.
    bool Update();

private:
    template <class F>
    void Step(F&& statement);

    dao::Recordset& Recordset_;
    PendingError& Pending_;
    QString What_;
};
