// SPDX-License-Identifier: Apache-2.0
#include "database/StationDetails.h"

#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/SettingsStore.h"
#include "database/SongFile.h"
#include "database/StationContext.h"

using StationSettings::StationCountry;

QString StationDetails::Country() const
{
    const QString country = GeneralHelper::ToPhoneRegion(Settings_.Read(StationCountry));
    return country.isEmpty() ? GeneralHelper::DefaultPhoneRegion() : country;
}

void StationDetails::SetCountry(const QString& country)
{
    const QString region = GeneralHelper::ToPhoneRegion(country);
    if (!region.isEmpty())
        Settings_.Write(StationCountry, region);
}

QString StationDetails::KeyCountry(enMsgType type)
{
    if (type != emtSMS)
        return QString();
    const QString country = Country();
    if (Settings_.Read(StationCountry).isEmpty()) {
        PendingError ignored; // somebody else may store his at this moment; whoever comes first, it is read again
        ignored.Try([&] {
            const auto settings = Station_.OpenedDatabase().OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
            DAO_DatabaseFunctions::WriteSettingValue(settings.get(), StationCountry.Key, country,
                                                     StationCountry.Default, true);
        });
    }
    return Country();
}

QString StationDetails::OnOneLine(const QString& address, const QString& separator)
{
    QString text = address;
    text.replace(QLatin1String("\r\n"), QLatin1String("\r")).replace(QLatin1Char('\n'), QLatin1Char('\r'));
    QStringList lines;
    const QStringList typed = text.split(QLatin1Char('\r'));
    for (const QString& typedLine : typed) {
        QString line = typedLine.trimmed();
        // A comma typed at a line's end is not doubled.
        while (!line.isEmpty() && !separator.isEmpty() && line.endsWith(separator)) {
            line.chop(1);
            line = line.trimmed();
        }
        if (!line.isEmpty())
            lines.append(line);
    }
    return lines.join(separator + QLatin1Char(' '));
}

QString StationDetails::CurrentSong() const
{
    return Station_.Database ? SongFile::Read(Station_.Information.Path) : QString();
}

void StationDetails::SetCurrentSong(const QString& song)
{
    if (Station_.Database)
        SongFile::Write(Station_.Information.Path, song);
}
