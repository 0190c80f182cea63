// SPDX-License-Identifier: Apache-2.0
#include "FolderPaths.h"

#include "Failure.h"
#include "platform/directory/clsCategory.h"

#include <QStringList>

#include <functional>

namespace
{
using Visitor = std::function<void(const clsCategory& category, const QString& path)>;

/// All folders below the root, parents first. No recursion: a file may hold a tree of any depth.
void Visit(const clsCategory& root, const Visitor& visitor)
{
    struct Entry
    {
        const clsCategory* Category;
        QString Path;
    };
    std::vector<Entry> waiting = {{&root, QString()}};
    while (!waiting.empty()) {
        const Entry entry = waiting.back();
        waiting.pop_back();
        if (entry.Category != &root)
            visitor(*entry.Category, entry.Path);
        for (int i = entry.Category->SubCategoryCount(); i >= 1; --i) {
            const clsCategory* child = entry.Category->SubCategory(i);
            const QString path = entry.Path.isEmpty() ? child->Description() : entry.Path + u'/' + child->Description();
            waiting.push_back({child, path});
        }
    }
}

QString Comparable(const QString& name)
{
    return name.trimmed().normalized(QString::NormalizationForm_C).toCaseFolded();
}

struct Candidate
{
    qint32 Reference;
    QString Path;
};

qint32 OnlyOne(const std::vector<Candidate>& candidates, const QString& name)
{
    if (candidates.size() == 1)
        return candidates.front().Reference;
    QStringList places;
    for (const Candidate& candidate : candidates)
        places.append(QStringLiteral("%1 (%2)").arg(candidate.Reference).arg(candidate.Path));
    throw Failure(exitData, QStringLiteral("\"%1\" is the name of several folders: %2. Give the number or the path.")
                                .arg(name, places.join(QStringLiteral(", "))));
}
} // namespace

qint32 FindFolder(const clsCategory& root, const QString& name)
{
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    if (isNumber && number > 0 && root.FindCategory(number))
        return number;

    const QString wanted = Comparable(name);
    std::vector<Candidate> paths;
    std::vector<Candidate> names;
    qint32 fixed = 0;
    Visit(root, [&](const clsCategory& category, const QString& path) {
        if (Comparable(path) == wanted)
            paths.push_back({category.Reference(), path});
        if (Comparable(category.Description()) != wanted)
            return;
        names.push_back({category.Reference(), path});
        if (category.UserLong() != 0)
            fixed = category.Reference();
    });
    if (fixed != 0)
        return fixed;
    if (!names.empty())
        return OnlyOne(names, name);
    if (!paths.empty())
        return OnlyOne(paths, name);
    throw Failure(exitData, QStringLiteral("There is no folder \"%1\". \"tolva folders\" lists them.").arg(name));
}

QHash<qint32, QString> FolderPaths(const clsCategory& root)
{
    QHash<qint32, QString> paths;
    Visit(root, [&](const clsCategory& category, const QString& path) { paths.insert(category.Reference(), path); });
    return paths;
}

QString FolderPath(const QHash<qint32, QString>& paths, qint32 reference)
{
    return paths.value(reference, QStringLiteral("(%1)").arg(reference));
}
