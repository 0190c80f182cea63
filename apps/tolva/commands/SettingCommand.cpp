// SPDX-License-Identifier: Apache-2.0

// tolva setting: the named values of the station.

#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "common/GeneralHelper.h"
#include "database/SettingText.h"
#include "database/StationSettings.h"

#include <optional>

namespace
{
using KnownSetting = StationSettings::Setting<QVariant>;

std::optional<KnownSetting> Find(const QString& key)
{
    for (const KnownSetting& setting : StationSettings::All()) {
        if (setting.Key.compare(key, Qt::CaseInsensitive) == 0)
            return setting;
    }
    return std::nullopt;
}

/// The text in which a value of that setting is stored. Failure (data) for what its readers would not understand.
QString CheckedValue(const KnownSetting& setting, const QString& typed)
{
    const QString value = typed.trimmed();
    if (setting.Key == StationSettings::StationCountry.Key) {
        const QString country = GeneralHelper::ToPhoneRegion(value);
        if (country.isEmpty())
            throw Failure(
                exitData,
                QStringLiteral("%1 is a country's two letters, such as GB; \"%2\" is none.").arg(setting.Key, typed));
        return country;
    }
    if (setting.Default.typeId() == QMetaType::Int) {
        bool isNumber = false;
        const int number = value.toInt(&isNumber);
        if (!isNumber)
            throw Failure(exitData, QStringLiteral("%1 is a number; \"%2\" is none.").arg(setting.Key, typed));
        return QString::number(number);
    }
    if (setting.Default.typeId() == QMetaType::Bool) {
        const QString lower = value.toLower();
        if (lower != u"true" && lower != u"false")
            throw Failure(exitData, QStringLiteral("%1 is True or False, not \"%2\".").arg(setting.Key, typed));
        return SettingText(lower == u"true");
    }
    return typed;
}

void Store(Station& station, const KnownSetting& setting, const QString& typed)
{
    const QString value = typed.isEmpty() ? SettingText(setting.Default) : CheckedValue(setting, typed);
    station.Terminal().TakeProblems();
    station.Database().SetDatabaseSetting(setting.Key, value, setting.Default);
    const QStringList problems = station.Terminal().TakeProblems();
    if (!problems.isEmpty())
        throw station.FailureOfStation(ErrorNumberIn(problems.last()), problems.join(u' '));
    // A station that this account may only read takes no setting and says nothing of it.
    if (SettingText(station.Database().DatabaseSetting(setting.Key, setting.Default)) != value) {
        throw station.FailureOfStation(dao::errCannotOpen,
                                       QStringLiteral("The setting %1 could not be stored.").arg(setting.Key));
    }
}

QString ValueInForce(Station& station, const KnownSetting& setting)
{
    if (setting.Key == StationSettings::StationCountry.Key)
        return station.Database().StationCountry();
    return SettingText(station.Database().DatabaseSetting(setting.Key, setting.Default));
}

int RunSetting(const Arguments& arguments)
{
    const QString key = arguments.Words().at(1).trimmed();
    if (key.isEmpty())
        throw Failure(exitUsage, QStringLiteral("The setting's key is empty."));
    const std::optional<KnownSetting> known = Find(key);
    const KnownSetting setting = known.value_or(KnownSetting{key, QString()});
    Station station(arguments);
    if (!known)
        Terminal::Complain(QStringLiteral("warning: \"%1\" is not a setting of this program.").arg(key));
    if (arguments.Words().size() == 2) {
        Terminal::Print(ValueInForce(station, setting) + u'\n');
        return exitOK;
    }
    station.Require(DirectoryRight::ChangeSettings, QStringLiteral("change settings"));
    const QString country = station.Database().StationCountry();
    Store(station, setting, arguments.Words().at(2));
    if (station.Database().StationCountry() != country) {
        Terminal::Complain(QStringLiteral("Numbers are read in the form of another country now. For the text messages "
                                          "that stand already: tolva rekey %1")
                               .arg(station.Folder()));
    }
    return exitOK;
}
} // namespace

CommandDefinition SettingCommand()
{
    return {
        QStringLiteral("setting"),
        QStringLiteral("Shows or stores a setting of the station."),
        {QStringLiteral("setting FOLDER KEY [VALUE]")},
        QStringLiteral(
            "Without VALUE the value in force is printed, with an empty VALUE (\"\") the setting goes back to its "
            "default.\n"
            "Settings count for every computer that opens the station. Storing needs the right to change settings."),
        {Station::UserOption()},
        QStringLiteral("tolva setting /srv/station Messages.HighlightWords \"competition|urgent\""),
        2,
        3,
        RunSetting,
    };
}
