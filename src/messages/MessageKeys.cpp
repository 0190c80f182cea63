// SPDX-License-Identifier: Apache-2.0

// MessageStore::RewriteMessageKeys: search keys in the form of today for messages that were saved in another one.

#include "common/ClockHelper.h"
#include "database/Collision.h"
#include "database/StationContext.h"
#include "database/StationDetails.h"
#include "messages/MessageStore.h"
#include "platform/records/Transaction.h"

namespace
{
QString ConditionOf(qint32 first, qint32 last)
{
    return QStringLiteral("[Reference]>=%1 AND [Reference]<=%2").arg(first).arg(last);
}

/// What a read leaves out of a row that is deleted at that moment.
bool IsGone(const dao::Error& error)
{
    return error.Number() == dao::errRecordDeleted;
}

void WriteKeys(dao::Recordset& row, const QMap<QString, QString>& keys)
{
    row.Edit();
    for (auto key = keys.begin(); key != keys.end(); ++key)
        row.SetCollect(key.key(), key.value());
    row.Update();
}
} // namespace

/// Nobody waits for this: it only reads.
QList<qint32> MessageStore::MessagesWithWrongKeys(qint32 first, qint32 last, const QString& country) const
{
    const QStringList columns = {QStringLiteral("Reference"), QStringLiteral("MessageType"), QStringLiteral("FromKey"),
                                 QStringLiteral("ToKey"),     QStringLiteral("CcKey"),       QStringLiteral("Message")};
    QList<qint32> references;
    const auto rows = OpenMessageRows(columns, ConditionOf(first, last), QStringLiteral("[Reference]"));
    for (; !rows->AtEOF(); rows->MoveNext()) {
        try {
            if (!cMessage::WrongAddressKeys(*rows, country).isEmpty())
                references.append(rows->Collect(QStringLiteral("Reference")).toInt());
        } catch (const dao::Error& error) {
            if (!IsGone(error))
                throw;
        }
    }
    return references;
}

int MessageStore::RewriteMessageKeys(qint32 first, qint32 last)
{
    const QString country = Details_.KeyCountry(emtSMS);
    // As the row stands now: somebody may have saved or deleted it since it was looked at.
    const auto rewrite = [&](qint32 reference) {
        const auto row = Station_.OpenedDatabase().OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
        row->SetIndex(QStringLiteral("Main"));
        row->Seek(dao::SeekComparison::Equal, {reference});
        const QMap<QString, QString> keys =
            row->NoMatch() ? QMap<QString, QString>() : cMessage::WrongAddressKeys(*row, country);
        if (!keys.isEmpty())
            WriteKeys(*row, keys);
        return !keys.isEmpty();
    };
    int changed = 0;
    UntilNobodyInterferes([&] {
        changed = 0;
        const QList<qint32> references = MessagesWithWrongKeys(first, last, country);
        if (references.isEmpty())
            return;
        dao::Transaction transaction;
        for (const qint32 reference : references)
            changed += rewrite(reference) ? 1 : 0;
        if (changed > 0)
            SetLastChanged(ClockHelper::NowUTC());
        transaction.Commit();
    });
    return changed;
}
