// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Station.h"

/// The forms of "tolva prize", each in the file of its subject. They run on an open station and return the exit code.
namespace PrizeForms
{
/// The right to change prizes, in the words of who lacks it.
inline const QString ManageWords = QStringLiteral("manage prizes");

// PrizeEditing.cpp.
int Show(Station& station, const Arguments& arguments);
int Add(Station& station, const Arguments& arguments);
int Edit(Station& station, const Arguments& arguments);
int Delete(Station& station, const Arguments& arguments);
/// Failure (usage) for values that are none, before a station is opened.
void CheckFields(const Arguments& arguments);

// PrizeHoursCommand.cpp.
int Hours(Station& station, const Arguments& arguments);
void CheckHours(const Arguments& arguments);

// PrizeAwardCommand.cpp.
int Award(Station& station, const Arguments& arguments);
void CheckAward(const Arguments& arguments);
int Winners(Station& station, const Arguments& arguments);
int RemoveWinner(Station& station, const Arguments& arguments);
int Recount(Station& station, const Arguments& arguments);

// PrizePrintCommand.cpp.
int PrintSheet(Station& station, const Arguments& arguments);
void CheckSheet(const Arguments& arguments);

} // namespace PrizeForms

/// The options of those forms.
namespace PrizeOptions
{
inline const QString Title = QStringLiteral("title");
inline const QString Script = QStringLiteral("script");
inline const QString ScriptFile = QStringLiteral("script-file");
inline const QString Notes = QStringLiteral("notes");
inline const QString SupplierNotes = QStringLiteral("supplier-notes");
inline const QString Supplier = QStringLiteral("supplier");
inline const QString Supplied = QStringLiteral("supplied");
inline const QString Start = QStringLiteral("start");
inline const QString End = QStringLiteral("end");
inline const QString Hours = QStringLiteral("hours");
inline const QString Day = QStringLiteral("day");
inline const QString Set = QStringLiteral("set");
inline const QString Contact = QStringLiteral("contact");
inline const QString Name = QStringLiteral("name");
inline const QString Number = QStringLiteral("number");
inline const QString Template = QStringLiteral("template");
inline const QString Yes = QStringLiteral("yes");
inline const QString Json = QStringLiteral("json");
} // namespace PrizeOptions
