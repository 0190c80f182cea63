// SPDX-License-Identifier: Apache-2.0
#include "database/SongFile.h"

#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "common/kvGeneral.h"

namespace
{
const QString CurrentSongKey = QStringLiteral("CurrentSongFullName");
} // namespace

QString SongFile::PathOf(const QString& databasePath)
{
    return FileHelper::WithoutExtension(databasePath) + QStringLiteral(".oar");
}

QString SongFile::Read(const QString& databasePath)
{
    const QString file = PathOf(databasePath);
    if (FileHelper::FileSize(file) <= 0)
        return QString();
    QString text = FileHelper::ReadTextFile(file);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (!line.contains(QLatin1String("=\"")))
            continue;
        const QString song = GetKeyValueCaseInsensitive(line, CurrentSongKey, QStringLiteral(" "));
        if (!song.isEmpty())
            return song;
    }
    // A plain file of one line works too.
    for (const QString& line : lines) {
        if (!line.isEmpty())
            return line;
    }
    return QString();
}

void SongFile::Write(const QString& databasePath, const QString& song)
{
    FileHelper::WriteTextFile(PathOf(databasePath), GeneralHelper::SetLineKeyValue(QString(), CurrentSongKey, song));
}
