// SPDX-License-Identifier: Apache-2.0
#include "database/watch/RowChanges.h"

#include "platform/records/Recordset.h"
#include "platform/records/RowMark.h"

#include <QHash>

namespace
{
/// The rows between those that are the same at both ends.
struct Middle
{
    std::size_t First;
    std::size_t ShownEnd;
    std::size_t NowEnd;
};

Middle MiddleOf(const std::vector<ReadRow>& shown, const std::vector<ReadRow>& now)
{
    Middle middle{0, shown.size(), now.size()};
    while (middle.First < middle.ShownEnd && middle.First < middle.NowEnd &&
           shown[middle.First].Reference == now[middle.First].Reference)
        ++middle.First;
    while (middle.ShownEnd > middle.First && middle.NowEnd > middle.First &&
           shown[middle.ShownEnd - 1].Reference == now[middle.NowEnd - 1].Reference) {
        --middle.ShownEnd;
        --middle.NowEnd;
    }
    return middle;
}

std::vector<int> SourcesOf(const std::vector<ReadRow>& shown, const std::vector<ReadRow>& now, const Middle& middle)
{
    QHash<qint32, int> places;
    for (std::size_t i = middle.First; i < middle.ShownEnd; ++i)
        places.insert(shown[i].Reference, static_cast<int>(i));
    std::vector<int> sources(now.size());
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (i < middle.First)
            sources[i] = static_cast<int>(i);
        else if (i >= middle.NowEnd)
            sources[i] = static_cast<int>(i - middle.NowEnd + middle.ShownEnd);
        else
            sources[i] = places.value(now[i].Reference, -1);
    }
    return sources;
}
} // namespace

LightColumns::LightColumns(const dao::Recordset& rows, const QStringList& columns)
{
    for (const QString& column : columns)
        Fields_.push_back(&rows[column]);
}

ReadRow LightColumns::Read() const
{
    dao::RowMark mark;
    for (const dao::Field* field : Fields_)
        mark.Add(field->Hash());
    return {Fields_.front()->Value().toInt(), mark.Number()};
}

std::vector<ReadRow> ReadLightRows(dao::Recordset& rows, const QStringList& columns)
{
    const LightColumns light(rows, columns);
    std::vector<ReadRow> read;
    read.reserve(static_cast<std::size_t>(rows.RecordCount()));
    for (; !rows.AtEOF(); rows.MoveNext())
        read.push_back(light.Read());
    return read;
}

RowChanges CompareRows(const std::vector<ReadRow>& shown, const std::vector<ReadRow>& now)
{
    RowChanges changes;
    const Middle middle = MiddleOf(shown, now);
    changes.AreArranged = middle.First < middle.ShownEnd || middle.First < middle.NowEnd;
    if (changes.AreArranged)
        changes.Sources = SourcesOf(shown, now, middle);
    for (std::size_t i = 0; i < now.size(); ++i) {
        const int source = changes.AreArranged ? changes.Sources[i] : static_cast<int>(i);
        if (source < 0 || shown[static_cast<std::size_t>(source)].Signature != now[i].Signature)
            changes.Differing.push_back(static_cast<int>(i));
    }
    return changes;
}
