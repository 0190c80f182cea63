// SPDX-License-Identifier: Apache-2.0
#include "BodyEdit.h"

#include <QMimeData>
#include <QUrl>

QStringList BodyEdit::FilesIn(const QMimeData* source)
{
    QStringList paths;
    if (!source || !source->hasUrls())
        return paths;
    for (const QUrl& url : source->urls()) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    return paths;
}

bool BodyEdit::canInsertFromMimeData(const QMimeData* source) const
{
    return !FilesIn(source).isEmpty() || SpellingEdit::canInsertFromMimeData(source);
}

void BodyEdit::insertFromMimeData(const QMimeData* source)
{
    const QStringList paths = FilesIn(source);
    if (paths.isEmpty())
        SpellingEdit::insertFromMimeData(source);
    else
        Q_EMIT FilesOffered(paths);
}
