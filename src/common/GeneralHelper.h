// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

#include <functional>

/// Text, number and phone number work that several subjects share.
namespace GeneralHelper
{

/// Level of the diagnostics log: 0 off, -1 everything, otherwise lines up to that level. Starts at 0.
TOLVA_EXPORT int DebugMode();
TOLVA_EXPORT void SetDebugMode(int level);
/// Folder of the log with its closing separator; empty until the log has been asked for one.
TOLVA_EXPORT QString DebugPath();
TOLVA_EXPORT void SetDebugPath(const QString& folder);

/// Adds or replaces one key in a key-value text (entries key=value, one blank between them). A value that holds blanks,
/// or is empty, stands in double quotes. The form cannot hold a double quote or a control character within a value:
/// they become a single quote and a blank. GetKeyValue then gives that value for key, whatever else the text holds.
/// key: letters, digits and dots.
TOLVA_EXPORT QString SetKeyValue(const QString& text, const QString& key, const QString& value);
/// The same for a text of lines, one entry a line, the value always in double quotes; the key without regard to case.
TOLVA_EXPORT QString SetLineKeyValue(const QString& text, const QString& key, const QString& value);

/// The text from position start (0 is the first character) up to the next delimiter, trimmed as asked. next: the
/// position behind that delimiter, or -1 when the text ended.
TOLVA_EXPORT QString NextToken(const QString& text, qsizetype start, const QString& delimiter, qsizetype& next,
                               bool trimLeft = false, bool trimRight = false);

/// The parts of a colour value with red in its low byte, 0 to 255. A system colour (0x8000....) counts as black.
TOLVA_EXPORT int RedOf(qint32 colour);
TOLVA_EXPORT int GreenOf(qint32 colour);
TOLVA_EXPORT int BlueOf(qint32 colour);

/// One form for every way of writing a phone number, in digits: a number of the region is its national significant
/// number, a number of another country has its country code in front, and what is no full number (short codes, local
/// numbers) is the digits that it holds. A sender's name, which has letters or no digit at all, is the text as it
/// stands (trimmed). option 1 is the form of the address keys. region: that of the station
/// (cTolvaDatabase::StationCountry); empty for PhoneRegion.
TOLVA_EXPORT QString NormalisePhoneNumber(const QString& number, int option, const QString& region = QString());
/// The form in which an address key holds this number (no leading zeros); empty when it is no phone number.
TOLVA_EXPORT QString PhoneNumberKey(const QString& number, const QString& region = QString());
/// Two-letter region (ISO 3166) in whose form a program compares numbers without a country code: the one that it set
/// for its station, otherwise DefaultPhoneRegion.
TOLVA_EXPORT QString PhoneRegion();
/// Empty: none from now on. A text that is no region counts as empty.
TOLVA_EXPORT void SetPhoneRegion(const QString& region);
/// This machine's setting "Country", "GB" without one: the first default of a station's country.
TOLVA_EXPORT QString DefaultPhoneRegion();
/// The text as a region, in capitals without blanks around it; empty for what is none.
TOLVA_EXPORT QString ToPhoneRegion(const QString& text);

/// The key when a numeric field takes it, otherwise 0: digits, and editing keys such as backspace. mode 1: whole
/// numbers. Other modes take a sign and the decimal point too.
TOLVA_EXPORT int FilterNumericKey(int key, int mode);
/// Whether two points are no further than distance from each other, in each direction.
TOLVA_EXPORT bool PointsAreClose(double x1, double y1, double x2, double y2, double distance);
/// The text, or its beginning with an ellipsis, so that it is never wider than width. measure gives a text's width on
/// the surface it is drawn on. Empty when not even the ellipsis fits. Never ends inside a character.
TOLVA_EXPORT QString FitTextToWidth(const std::function<double(const QString&)>& measure, const QString& text,
                                    double width);

TOLVA_EXPORT qint64 Limit(qint64 value, qint64 lowest, qint64 highest);
TOLVA_EXPORT qint64 Maximum(qint64 a, qint64 b);

} // namespace GeneralHelper
