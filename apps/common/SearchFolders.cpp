// SPDX-License-Identifier: Apache-2.0
#include "SearchFolders.h"

#include "common/SearchFold.h"

#include <algorithm>

namespace
{
bool IsMeant(const QString& path, const QStringList& wanted)
{
    const QString folded = SearchFold::Folded(path).remove(u' ');
    const QString name = folded.mid(folded.lastIndexOf(u'/') + 1);
    return std::any_of(wanted.begin(), wanted.end(),
                       [&](const QString& begin) { return name.startsWith(begin) || folded.startsWith(begin); });
}
} // namespace

std::optional<QSet<qint32>> FoldersMeant(const SearchQuestion& question, const QHash<qint32, QString>& paths)
{
    if (question.Folders.isEmpty())
        return std::nullopt;
    QSet<qint32> folders;
    for (auto path = paths.constBegin(); path != paths.constEnd(); ++path) {
        if (IsMeant(path.value(), question.Folders))
            folders.insert(path.key());
    }
    return folders;
}
