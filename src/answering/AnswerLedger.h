// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"
#include "platform/records/Database.h"

#include <QHash>
#include <QList>
#include <QString>

/// A message that an answer is about. Arrived is its field Received as it is stored: numbers may be given a second time
/// when a backup is put back, and then it tells one message from the other.
struct AnsweredMessage
{
    qint32 Message = 0;
    Date Arrived;

    friend bool operator==(const AnsweredMessage&, const AnsweredMessage&) = default;
};

/// What became of it.
struct FiledAnswer
{
    AnsweredMessage Original;
    QString Name; ///< Who answered.
    Date When;    ///< Universal time.
};

/// Who answered which message, and when: the table "Answers" in the directory's file, written when an answer is filed.
/// Made when the first is. Whoever made this owns it; the file outlives it. Raises dao::Error.
class TOLVA_EXPORT AnswerLedger
{
public:
    explicit AnswerLedger(dao::Database& directoryFile) : File_(directoryFile) {}

    /// The message answer is the answer to these: sent at that moment, or a draft still where there is none.
    void Note(const QList<AnsweredMessage>& originals, qint32 answer, const QString& name, Date when);
    /// What a draft answers.
    QList<AnsweredMessage> OriginalsOf(qint32 answer) const;
    /// What was answered at that moment or after it, in no order; everything for none.
    QList<FiledAnswer> Since(Date when) const;

private:
    dao::Database& File_;
};
