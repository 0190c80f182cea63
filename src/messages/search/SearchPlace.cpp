// SPDX-License-Identifier: Apache-2.0
#include "messages/search/SearchPlace.h"

#include "common/FileHelper.h"
#include "common/MachineSettings.h"
#include "database/cTolvaDatabase.h"
#include "messages/search/SearchFollowing.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QSysInfo>

bool SearchPlace::IsWanted()
{
    return MachineSettings::KeepsSearchIndex();
}

QString SearchPlace::Folder()
{
    QString cache = qEnvironmentVariable("XDG_CACHE_HOME");
    if (!QDir::isAbsolutePath(cache))
        cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return FileHelper::Join(cache, QStringLiteral("Tolva/Search"));
}

QByteArray SearchPlace::PlaceOf(const cTolvaDatabase& station)
{
    return QFileInfo(station.Information().Path).canonicalFilePath().toUtf8();
}

QString SearchPlace::FileFor(const cTolvaDatabase& station)
{
    return FileOf(SearchFollowing::IdentityOf(station));
}

/// Of this computer too: the cache folder of an account may be one that several computers share.
QString SearchPlace::FileOf(const QByteArray& identity)
{
    constexpr qsizetype Digits = 24;
    const QByteArray name =
        QCryptographicHash::hash(identity + ' ' + QSysInfo::machineUniqueId(), QCryptographicHash::Sha1).toHex();
    return FileHelper::Join(Folder(), QString::fromLatin1(name.left(Digits)) + QStringLiteral(".index"));
}
