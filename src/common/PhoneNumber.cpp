// SPDX-License-Identifier: Apache-2.0
#include "common/GeneralHelper.h"
#include "common/MachineSettings.h"
#include "common/MobileNumber.h"

#include <QRegularExpression>

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

QString programRegion;

bool IsName(const QString& text)
{
    const auto isLetter = [](QChar character) { return character.isLetter(); };
    const auto isDigit = [](QChar character) { return character.digitValue() >= 0; };
    return std::any_of(text.begin(), text.end(), isLetter) || std::none_of(text.begin(), text.end(), isDigit);
}

QString DigitsOf(const QString& text)
{
    QString digits;
    for (const QChar character : text) {
        if (character.digitValue() >= 0)
            digits += QChar(u'0' + character.digitValue());
    }
    return digits;
}

/// The digits of a whole number, behind its country code where that is another one than the region's; nothing for what
/// is no whole number.
std::optional<QString> WholeNumber(const QString& text, const QString& region)
{
    PhoneNumber number;
    if (Numbers().Parse(text.toStdString(), region.toStdString(), &number) != PhoneNumberUtil::NO_PARSING_ERROR)
        return std::nullopt;
    // Possible, not valid: the tables of ranges in use age, lengths do not. Local numbers and short codes are too
    // short.
    if (Numbers().IsPossibleNumberWithReason(number) != PhoneNumberUtil::IS_POSSIBLE)
        return std::nullopt;
    std::string digits;
    Numbers().GetNationalSignificantNumber(number, &digits);
    const bool isOfRegion = number.country_code() == Numbers().GetCountryCodeForRegion(region.toStdString());
    return (isOfRegion ? QString() : QString::number(number.country_code())) + QString::fromStdString(digits);
}

/// Letters make a sender's name, even where a keypad would turn them into digits.
std::optional<QString> NumberIn(const QString& text, const QString& region)
{
    if (IsName(text))
        return std::nullopt;
    const std::optional<QString> whole = WholeNumber(text, region.isEmpty() ? GeneralHelper::PhoneRegion() : region);
    return whole ? *whole : DigitsOf(text);
}
} // namespace

QString GeneralHelper::NormalisePhoneNumber(const QString& number, int, const QString& region)
{
    const QString text = number.trimmed();
    return NumberIn(text, region).value_or(text);
}

QString GeneralHelper::PhoneNumberKey(const QString& number, const QString& region)
{
    QString key = NumberIn(number.trimmed(), region).value_or(QString());
    while (key.startsWith(u'0'))
        key.remove(0, 1);
    return key;
}

QString GeneralHelper::PhoneRegion()
{
    return programRegion.isEmpty() ? DefaultPhoneRegion() : programRegion;
}

void GeneralHelper::SetPhoneRegion(const QString& region)
{
    programRegion = ToPhoneRegion(region);
}

QString GeneralHelper::DefaultPhoneRegion()
{
    const QString country = ToPhoneRegion(MachineSettings::Country());
    return country.isEmpty() ? DefaultRegion : country;
}

QString GeneralHelper::ToPhoneRegion(const QString& text)
{
    const QString region = text.trimmed().toUpper();
    // Most need no look into the library's tables, which take a moment to be read.
    if (region == DefaultRegion)
        return region;
    return Numbers().GetCountryCodeForRegion(region.toStdString()) == 0 ? QString() : region;
}

namespace
{
/// One number and nothing else: "," and ";" would make it two where it is sent to.
bool IsOneNumber(const QString& text)
{
    static const QRegularExpression number(QStringLiteral("\\A\\+?[0-9 ()./-]+\\z"));
    return number.match(text).hasMatch();
}

/// Kept free for examples, so that no range in use holds it: whoever tries something out has one of these.
bool IsMobileOfExamples(const PhoneNumber& number)
{
    constexpr int countryCode = 44;
    constexpr std::uint64_t first = 7700900000;
    constexpr std::uint64_t last = 7700900999;
    return number.country_code() == countryCode && number.national_number() >= first &&
           number.national_number() <= last;
}
/// Whether who dials the digits as they stand reaches the number that was read from them. "+44 (0)7700 900123" is read
/// without its 0, which nobody takes out again on the way to the network.
bool IsDialledAsTyped(const QString& text, const QString& region, const PhoneNumber& number)
{
    std::string national;
    Numbers().GetNationalSignificantNumber(number, &national);
    const QString digits = DigitsOf(text);
    const QString significant = QString::fromStdString(national);
    if (!digits.endsWith(significant))
        return false;
    const QString before = digits.chopped(significant.size());
    const QString countryCode = QString::number(number.country_code());
    switch (number.country_code_source()) {
    case PhoneNumber::FROM_NUMBER_WITH_IDD:
        return before.endsWith(countryCode);
    case PhoneNumber::FROM_DEFAULT_COUNTRY: {
        std::string trunk;
        Numbers().GetNddPrefixForRegion(region.toStdString(), true, &trunk);
        return before.isEmpty() || before == QString::fromStdString(trunk);
    }
    default:
        return before == countryCode;
    }
}
} // namespace

bool IsMobileNumber(const QString& number, const QString& region)
{
    const QString text = number.trimmed();
    const QString country = region.isEmpty() ? GeneralHelper::PhoneRegion() : region;
    PhoneNumber parsed;
    if (!IsOneNumber(text) ||
        Numbers().ParseAndKeepRawInput(text.toStdString(), country.toStdString(), &parsed) !=
            PhoneNumberUtil::NO_PARSING_ERROR ||
        parsed.has_extension() || !IsDialledAsTyped(text, country, parsed))
        return false;
    const PhoneNumberUtil::PhoneNumberType type = Numbers().GetNumberType(parsed);
    return type == PhoneNumberUtil::MOBILE || type == PhoneNumberUtil::FIXED_LINE_OR_MOBILE ||
           IsMobileOfExamples(parsed);
}

bool IsNumberOfCountry(const QString& number, const QString& region)
{
    const std::string country = (region.isEmpty() ? GeneralHelper::PhoneRegion() : region).toStdString();
    PhoneNumber parsed;
    return Numbers().Parse(number.trimmed().toStdString(), country, &parsed) == PhoneNumberUtil::NO_PARSING_ERROR &&
           parsed.country_code() == Numbers().GetCountryCodeForRegion(country);
}
