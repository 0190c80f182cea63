// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>

/// The lines of business card files, taken apart but not yet understood. The helper of VCard; nobody else needs it.
namespace VCardLines
{
/// One property of a card.
struct Property
{
    QString Name;         ///< Upper case, without its group: "EMAIL".
    QStringList Types;    ///< Upper case: "CELL", "PREF".
    int Preference = 100; ///< 1 is the most preferred, 100 what says nothing.
    QString Value;        ///< Decoded to text, its escapes still in it.
    bool IsOld = false;   ///< Of a card of version 2.1, which escapes less.
};

struct Card
{
    QList<Property> Properties;
    int Line = 0;         ///< Where it begins, from 1.
    bool IsWhole = false; ///< Its END is there.
};

/// The cards of a file in any of the versions. Cards within a card (of somebody's agent) are left out.
QList<Card> Read(const QByteArray& octets);

/// The parts of a value between its semicolons, or another divider, without escapes.
QStringList Parts(const Property& property, QChar divider = u';');
/// The whole value without escapes.
QString Text(const Property& property);
} // namespace VCardLines
