// SPDX-License-Identifier: Apache-2.0
#include "intake/Maildir.h"

#include <QDir>

#include <algorithm>

namespace
{
/// The flags stand behind ":2,"; where file names take no colon, programs write ";" or "!" for it.
bool HasSeenFlag(const QString& name)
{
    for (const QString& mark : {QStringLiteral(":2,"), QStringLiteral(";2,"), QStringLiteral("!2,")}) {
        const qsizetype position = name.lastIndexOf(mark);
        if (position >= 0)
            return name.indexOf(u'S', position + mark.size()) >= 0;
    }
    return false;
}
} // namespace

bool IsMaildir(const QString& folder)
{
    const QDir directory(folder);
    return QFileInfo(directory.filePath(QStringLiteral("cur"))).isDir() &&
           QFileInfo(directory.filePath(QStringLiteral("new"))).isDir();
}

QList<MaildirFile> MaildirFiles(const QString& folder, MaildirEntries entries)
{
    const QDir::Filters filters = entries == MaildirEntries::Files
                                      ? QDir::Filters(QDir::Files)
                                      : QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
    QList<MaildirFile> files;
    for (const QString& part : {QStringLiteral("new"), QStringLiteral("cur")}) {
        const QDir directory(QDir(folder).filePath(part));
        const QStringList names = directory.entryList(filters, QDir::NoSort);
        for (const QString& name : names) {
            if (!name.startsWith(u'.'))
                files.append({directory.filePath(name), HasSeenFlag(name)});
        }
    }
    // Names begin with the second of the delivery.
    std::sort(files.begin(), files.end(), [](const MaildirFile& a, const MaildirFile& b) {
        return QFileInfo(a.Path).fileName() < QFileInfo(b.Path).fileName();
    });
    return files;
}
