// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QVariant>

/// The settings of a station: under which key all its computers find a value, and what it is where none is stored. A
/// value equal to its default is not stored, so whoever reads or writes one takes both from here. Those that are read
/// with one default and written with an empty one say so.
namespace StationSettings
{

template <typename Type>
struct Setting
{
    QString Key;
    Type Default;
};

using NumberSetting = Setting<qint32>;
using FlagSetting = Setting<bool>;
using TextSetting = Setting<QString>;

/// Minutes: 60 or 1440.
inline const NumberSetting BackupInterval{QStringLiteral("Backups.Interval"), 1440};
inline const FlagSetting EnableAutoBackup{QStringLiteral("Backups.EnableAutoBackup"), true};
/// Days; 0 keeps every backup.
inline const NumberSetting BackupExpiryDays{QStringLiteral("Backups.ExpiryDays"), 7};
/// Who makes a backup at present, and since when; who made the last one. Key-value texts.
inline const TextSetting BackupRunning{QStringLiteral("Backups.BackupRunning"), QString()};
inline const TextSetting LastBackup{QStringLiteral("Backups.LastBackup"), QString()};

/// Red in the low byte.
inline const NumberSetting HighlightColour{QStringLiteral("Messages.HighLightTextColour"), 255};
/// These four are 0 or 1.
inline const NumberSetting HighlightBold{QStringLiteral("Messages.HighLightBold"), 1};
inline const NumberSetting HighlightItalic{QStringLiteral("Messages.HighLightItalic"), 0};
inline const NumberSetting HighlightUnderline{QStringLiteral("Messages.HighLightUnderLine"), 0};
inline const NumberSetting HighlightStrikethrough{QStringLiteral("Messages.HighLightStrikeThru"), 0};
/// As in a page's font element.
inline const NumberSetting HighlightSize{QStringLiteral("Messages.HighLightSize"), 3};
inline const TextSetting HighlightFont{QStringLiteral("Messages.HighlightFont"), QStringLiteral("Tahoma")};
inline const TextSetting HighlightWords{QStringLiteral("Messages.HighlightWords"), QString()};

/// The change stamps, see database/watch/ChangeStamp.h.
inline const TextSetting MessagesLastChanged{QStringLiteral("Messages.LastChanged"), QString()};
inline const TextSetting PrizesLastChanged{QStringLiteral("Prizes.LastChanged"), QString()};

/// 0 or 1.
inline const NumberSetting AwardNeedsRight{QStringLiteral("Prizes.AwardNeedsRight"), 0};
inline const NumberSetting EligibleDays{QStringLiteral("Prizes.EligibleDays"), 30};
/// What the key of a hotlist of hours begins with; the name that its user gave follows.
inline const QString HotlistPrefix = QStringLiteral("HR.");

/// Written with an empty default: an emptied name reads as this one again.
inline const TextSetting StationName{QStringLiteral("Station.Name"), QStringLiteral("Radio Station")};
inline const TextSetting StationAddress{QStringLiteral("Station.Address"), QString()};
inline const TextSetting StationPhoneNumber{QStringLiteral("Station.PhoneNumber"), QString()};
inline const TextSetting StationSMSPhoneNumber{QStringLiteral("Station.SMSPhoneNumber"), QString()};
inline const TextSetting StationEmailAddress{QStringLiteral("Station.EmailAddress"), QString()};
/// Until one is stored, the machine's (MachineSettings::Country).
inline const TextSetting StationCountry{QStringLiteral("Station.Country"), QString()};
inline const TextSetting StationCompanyNumber{QStringLiteral("Station.CompanyNumber"), QString()};
inline const TextSetting StationVATNumber{QStringLiteral("Station.VATNumber"), QString()};

/// Both written with an empty default: an emptied keyword reads as this one again.
inline const TextSetting SMSCurrentSong{QStringLiteral("SMS.CurrentSong"), QStringLiteral("SONG")};
inline const TextSetting SMSBuyCurrentSong{QStringLiteral("SMS.BuyCurrentSong"), QStringLiteral("BUY")};
inline const TextSetting AmazonID{QStringLiteral("BuyNow.AmazonID"), QString()};

/// The sheet of address labels: counts and millimetres.
inline const NumberSetting LabelColumns{QStringLiteral("AddressLabels.NumberColumns"), 2};
inline const NumberSetting LabelRows{QStringLiteral("AddressLabels.NumberRows"), 4};
inline const NumberSetting LabelColumnWidth{QStringLiteral("AddressLabels.ColumnWidth"), 104};
inline const NumberSetting LabelRowHeight{QStringLiteral("AddressLabels.RowHeight"), 68};
inline const NumberSetting LabelTopMargin{QStringLiteral("AddressLabels.TopMargin"), 20};
inline const NumberSetting LabelBottomMargin{QStringLiteral("AddressLabels.BottomMargin"), 10};
inline const NumberSetting LabelLeftMargin{QStringLiteral("AddressLabels.LeftMargin"), 20};
inline const NumberSetting LabelRightMargin{QStringLiteral("AddressLabels.RightMargin"), 10};

/// All of them but the hotlists, whose keys users make, subject by subject.
const QList<Setting<QVariant>>& All();

} // namespace StationSettings
