// SPDX-License-Identifier: Apache-2.0
#include "prizes/RowWriter.h"

#include "common/kvGeneral.h"
#include "platform/records/Recordset.h"

namespace
{
const QString MainIndex = QStringLiteral("Main");
const QString ReferenceColumn = QStringLiteral("Reference");
} // namespace

/// The first error is the one to tell: those that follow from it say nothing new.
template <class F>
void RowWriter::Step(F&& statement)
{
    if (!Pending_)
        Pending_.Try(std::forward<F>(statement));
}

RowWriter::RowWriter(dao::Recordset& recordset, PendingError& pending, const QString& what)
    : Recordset_(recordset), Pending_(pending), What_(what)
{
    Step([this] { Recordset_.SetIndex(MainIndex); });
}

qint32 RowWriter::Begin(qint32 reference)
{
    if (reference > 0) {
        WriteDebugLog(QStringLiteral("Seek for existing %1 record").arg(What_));
        Step([&] {
            Recordset_.Seek(dao::SeekComparison::Equal, {reference});
            if (Recordset_.NoMatch())
                reference = 0;
            else
                Recordset_.Edit();
        });
    }
    if (reference <= 0) {
        WriteDebugLog(QStringLiteral("Create new %1 record").arg(What_));
        Step([&] {
            Recordset_.AddNew();
            reference = Recordset_.Collect(ReferenceColumn).toInt();
        });
    }
    return reference;
}

void RowWriter::Set(const QString& column, const QVariant& value)
{
    Step([&] { Recordset_.SetCollect(column, value); });
}

bool RowWriter::Update()
{
    WriteDebugLog(QStringLiteral("Saving %1 in database (Recordset.Update)").arg(What_));
    Step([this] { Recordset_.Update(); });
    if (!Pending_)
        return true;
    WriteDebugLog(QStringLiteral("Couldn't save %1 - ").arg(What_) + Pending_.Description());
    return false;
}
