// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"
#include "platform/records/Database.h"

#include <QString>

/// Which telephone numbers were answered by themselves a moment ago: the table "AutomaticAnswers" in the directory's
/// file, which all computers of a station see. It is made with the first answer. A number that is older than a day goes
/// with the next claim. Whoever made this owns it; the file outlives it. Raises dao::Error.
class TOLVA_EXPORT AnsweredNumbers
{
public:
    explicit AnsweredNumbers(dao::Database& directoryFile) : File_(directoryFile) {}

    /// For so long after an answer the number gets no other.
    static constexpr int Seconds = 300;

    /// In one step: of all who claim a number within that time one is answered true, and answers it. Whoever dies
    /// behind that leaves the number without an answer, not with two. The time is that of the computers which claim;
    /// it counts from now, or from asked (universal time) where that lies ahead. number: in the form of
    /// GeneralHelper::PhoneNumberKey.
    bool Claim(const QString& number, Date asked);
    /// Behind a claim: it was not answered after all.
    void TakeBack(const QString& number);

private:
    dao::Database& File_;
};
