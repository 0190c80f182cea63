// SPDX-License-Identifier: Apache-2.0
#include "database/StationSettings.h"

namespace
{
using StationSettings::Setting;

template <typename... Types>
QList<Setting<QVariant>> ListOf(const Setting<Types>&... settings)
{
    return {Setting<QVariant>{settings.Key, QVariant(settings.Default)}...};
}
} // namespace

const QList<Setting<QVariant>>& StationSettings::All()
{
    static const QList<Setting<QVariant>> settings = ListOf(
        BackupInterval, EnableAutoBackup, BackupExpiryDays, BackupRunning, LastBackup, HighlightColour, HighlightBold,
        HighlightItalic, HighlightUnderline, HighlightStrikethrough, HighlightSize, HighlightFont, HighlightWords,
        MessagesLastChanged, AwardNeedsRight, EligibleDays, PrizesLastChanged, StationName, StationAddress,
        StationPhoneNumber, StationSMSPhoneNumber, StationEmailAddress, StationCountry, StationCompanyNumber,
        StationVATNumber, SMSCurrentSong, SMSBuyCurrentSong, AmazonID, LabelColumns, LabelRows, LabelColumnWidth,
        LabelRowHeight, LabelTopMargin, LabelBottomMargin, LabelLeftMargin, LabelRightMargin);
    return settings;
}
