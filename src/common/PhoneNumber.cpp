#include "common/GeneralHelper.h"
#include "common/ProfileHelper.h"

#include <phonenumbers/logger.h>
#include <phonenumbers/phonenumber.pb.h>
#include <phonenumbers/phonenumberutil.h>

#include <algorithm>
#include <optional>
#include <string>

using i18n::phonenumbers::PhoneNumber;
using i18n::phonenumbers::PhoneNumberUtil;

namespace
{
const QString DefaultRegion = QStringLiteral("GB");

/// The library reads its tables at the first call, so nobody pays for them who handles no number.
PhoneNumberUtil& Numbers()
{
    static PhoneNumberUtil* const numbers = [] {
        PhoneNumberUtil* const instance = PhoneNumberUtil::GetInstance();
        instance->SetLogger(
            new i18n::phonenumbers::NullLogger); // it owns its logger; the usual one writes to the terminal
        return instance;
    }();
    return *numbers;
}

bool IsSupported(const QString& region)
{
    return Numbers().GetCountryCodeForRegion(region.toStdString()) != 0;
}

/// The digits behind the country code and the national prefix; nothing for a text that is no full number. Letters make
/// a sender's name, even where a keypad would turn them into digits.
std::optional<QString> NationalNumber(const QString& text)
{
    const auto isLetter = [](QChar character) { return character.isLetter(); };
    if (text.isEmpty() || std::any_of(text.begin(), text.end(), isLetter))
        return std::nullopt;
    PhoneNumber number;
    const std::string region = GeneralHelper::PhoneRegion().toStdString();
    if (Numbers().Parse(text.toStdString(), region, &number) != PhoneNumberUtil::NO_PARSING_ERROR)
        return std::nullopt;
    // Possible, not valid: the tables of ranges in use age, lengths do not. Local numbers and short codes are too
    // short.
    if (Numbers().IsPossibleNumberWithReason(number) != PhoneNumberUtil::IS_POSSIBLE)
        return std::nullopt;
    std::string digits;
    Numbers().GetNationalSignificantNumber(number, &digits);
    return QString::fromStdString(digits);
}
} // namespace

QString GeneralHelper::NormalisePhoneNumber(const QString& number, int)
{
    const QString text = number.trimmed();
    return NationalNumber(text).value_or(text);
}

QString GeneralHelper::PhoneNumberKey(const QString& number)
{
    QString key = NationalNumber(number.trimmed()).value_or(QString());
    while (key.startsWith(u'0'))
        key.remove(0, 1);
    return key;
}

QString GeneralHelper::PhoneRegion()
{
    const QString country =
        ProfileHelper::ReadRegistryValue(QLatin1String(ProfileHelper::LocalMachine),
                                         QStringLiteral("SOFTWARE\\Kelvarin"), QStringLiteral("Country"), DefaultRegion)
            .toString()
            .trimmed()
            .toUpper();
    return country == DefaultRegion || IsSupported(country) ? country : DefaultRegion;
}
