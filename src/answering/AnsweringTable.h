// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/Database.h"

#include <QList>
#include <QString>
#include <QStringList>

/// One window of some desk in which somebody answers a message, or has it open.
struct AnsweringEntry
{
    QString Entry; ///< A name of its own, for as long as the window stands.
    qint32 Message = 0;
    QString Name;       ///< Who it is.
    qint32 Seconds = 0; ///< Since the window was opened, as its desk counted when it wrote last.

    friend bool operator==(const AnsweringEntry&, const AnsweringEntry&) = default;
};

/// Who is answering which message at this moment: the table "Answering" in the directory's file, which all desks of a
/// station see. It is made when somebody answers for the first time. Whoever made this owns it; the file outlives it.
/// Raises dao::Error.
class TOLVA_EXPORT AnsweringTable
{
public:
    explicit AnsweringTable(dao::Database& directoryFile) : File_(directoryFile) {}

    /// All entries, those of desks that died included; none where nobody has answered yet.
    QList<AnsweringEntry> Read() const;
    /// Stores or brings up to date those, and removes these, whether they are there or not; in one transaction.
    void Write(const QList<AnsweringEntry>& present, const QStringList& gone);

private:
    dao::Database& File_;
};
