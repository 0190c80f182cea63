// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// What reading a database file to its last page found. There is one notion of a sound file: checking, copying and
/// compacting all go by this.
namespace dao
{

/// A memo that is not what was saved, or cannot be read to its end.
struct DamagedMemo
{
    QString Table;
    QString Field;
    qint64 Row = 0; ///< The counter's value where the table has one, else the place in order of entry.
    bool IsReadable = false;
};

struct FileReport
{
    enum class State
    {
        Sound,
        /// Indexes alone do not match their tables: no row is lost, and compacting builds them anew.
        Repairable,
        Damaged
    };

    State Verdict = State::Sound;
    /// Whether every page holds what it should: then nothing but single memos is damaged, and they may be replaced.
    bool IsStructureSound = true;
    QStringList Faults; ///< In words; the first ones where there are many.
    QList<DamagedMemo> Memos;
};

} // namespace dao
