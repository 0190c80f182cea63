// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"

#include <QString>

namespace dao
{
class Database;
}

/// How one save moved a change stamp: from the stamp that it found to its own. Nobody else's save lies between the two.
/// After is none when there was no such save.
struct StampMove
{
    Date Before;
    Date After;
};

/// Stores now as the stamp under that setting, or a moment behind the stamp that is there, where that is not older: two
/// saves never leave the same stamp, or lists that have seen the first would miss the second. dao::Error when it cannot
/// be stored.
StampMove MoveStamp(dao::Database& database, const QString& setting, Date now);

/// The stamp with which a list read its rows. As long as it is the station's, the rows on show are those of the file.
/// Starts as the stamp of nothing that was ever read, which no station has. A plain value.
class TOLVA_EXPORT ReadStamp
{
public:
    /// The stamp as it was before the rows were read: what others stored meanwhile has moved it. opening: the
    /// station's, for another file may have the same stamp (cTolvaDatabase::Openings).
    void Take(Date stamp, int opening);
    /// The rows on show are not those of the file.
    void Forget() { Opening_ = 0; }
    bool IsStill(Date stamp, int opening) const { return Opening_ != 0 && Opening_ == opening && Stamp_ == stamp; }
    /// After a save whose row is on show: takes its stamp over where the one before was the stamp that was read.
    /// Otherwise somebody else has stored something that is not on show, and the stamp stays, so that it is read.
    void Follow(const StampMove& save);

private:
    Date Stamp_;
    int Opening_ = 0;
};
