// SPDX-License-Identifier: Apache-2.0

// What a station is called and where it is reached, and what it plays: properties of cTolvaDatabase.

#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/cTolvaDatabase.h"

namespace
{
const QString NameKey = QStringLiteral("Station.Name");
const QString AddressKey = QStringLiteral("Station.Address");
const QString PhoneNumberKey = QStringLiteral("Station.PhoneNumber");
const QString SMSPhoneNumberKey = QStringLiteral("Station.SMSPhoneNumber");
const QString CountryKey = QStringLiteral("Station.Country");
const QString CompanyNumberKey = QStringLiteral("Station.CompanyNumber");
const QString VATNumberKey = QStringLiteral("Station.VATNumber");
const QString CurrentSongKey = QStringLiteral("CurrentSongFullName");

QString SongFile(const QString& databasePath)
{
    return FileHelper::WithoutExtension(databasePath) + QStringLiteral(".oar");
}
} // namespace

// The name is read with a default that it is not written with: an emptied name reads as the default again.
QString cTolvaDatabase::StationName() const
{
    return DatabaseSetting(NameKey, QStringLiteral("Radio Station")).toString();
}

void cTolvaDatabase::SetStationName(const QString& name)
{
    SetDatabaseSetting(NameKey, name, QString());
}

QString cTolvaDatabase::StationAddress() const
{
    return DatabaseSetting(AddressKey, QString()).toString();
}

void cTolvaDatabase::SetStationAddress(const QString& address)
{
    SetDatabaseSetting(AddressKey, address, QString());
}

QString cTolvaDatabase::StationPhoneNumber() const
{
    return DatabaseSetting(PhoneNumberKey, QString()).toString();
}

void cTolvaDatabase::SetStationPhoneNumber(const QString& number)
{
    SetDatabaseSetting(PhoneNumberKey, number, QString());
}

QString cTolvaDatabase::StationSMSPhoneNumber() const
{
    return DatabaseSetting(SMSPhoneNumberKey, QString()).toString();
}

void cTolvaDatabase::SetStationSMSPhoneNumber(const QString& number)
{
    SetDatabaseSetting(SMSPhoneNumberKey, number, QString());
}

QString cTolvaDatabase::StationCompanyNumber() const
{
    return DatabaseSetting(CompanyNumberKey, QString()).toString();
}

void cTolvaDatabase::SetStationCompanyNumber(const QString& number)
{
    SetDatabaseSetting(CompanyNumberKey, number, QString());
}

QString cTolvaDatabase::StationVATNumber() const
{
    return DatabaseSetting(VATNumberKey, QString()).toString();
}

void cTolvaDatabase::SetStationVATNumber(const QString& number)
{
    SetDatabaseSetting(VATNumberKey, number, QString());
}

QString cTolvaDatabase::StationCountry() const
{
    const QString country = GeneralHelper::ToPhoneRegion(DatabaseSetting(CountryKey, QString()).toString());
    return country.isEmpty() ? GeneralHelper::DefaultPhoneRegion() : country;
}

void cTolvaDatabase::SetStationCountry(const QString& country)
{
    const QString region = GeneralHelper::ToPhoneRegion(country);
    if (!region.isEmpty())
        SetDatabaseSetting(CountryKey, region, QString());
}

/// The country for the keys of a message of that type. The first text message stores it, so that computers with other
/// defaults write the same keys.
QString cTolvaDatabase::KeyCountry(enMsgType type)
{
    if (type != emtSMS)
        return QString();
    const QString country = StationCountry();
    if (DatabaseSetting(CountryKey, QString()).toString().isEmpty()) {
        PendingError ignored; // somebody else may store his at this moment; whoever comes first, it is read again
        ignored.Try([&] {
            const auto settings = OpenedDatabase().OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
            DAO_DatabaseFunctions::WriteSettingValue(settings.get(), CountryKey, country, QString(), true);
        });
    }
    return StationCountry();
}

QString cTolvaDatabase::StationAddressString(const QString& separator) const
{
    QString address = StationAddress();
    address.replace(QLatin1String("\r\n"), QLatin1String("\r")).replace(QLatin1Char('\n'), QLatin1Char('\r'));
    QStringList lines;
    const QStringList typed = address.split(QLatin1Char('\r'));
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

QString cTolvaDatabase::CurrentSongFullName() const
{
    if (!Database_)
        return QString();
    const QString file = SongFile(Information_.Path);
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

void cTolvaDatabase::SetCurrentSongFullName(const QString& song)
{
    if (!Database_)
        return;
    FileHelper::WriteTextFile(SongFile(Information_.Path),
                              GeneralHelper::SetLineKeyValue(QString(), CurrentSongKey, song));
}
