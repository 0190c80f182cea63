// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

class DeskStation;
struct clsKVContact;

/// What can stand on address labels: contacts of the directory, all of them or the winners of a prize. dao::Error when
/// a file cannot be read.
namespace LabelTexts
{
struct Entry
{
    QString Name;
    QString Text; ///< The label's lines.
    bool HasAddress = false;
};

struct Prize
{
    qint32 Reference = 0;
    QString Title;
};

struct Winners
{
    QList<Entry> Entries; ///< By name, each contact once.
    int Missing = 0;      ///< Winners that the directory does not know any more.
};

/// The name, and below it the lines of the detail Other, which is the one that takes several lines and so a postal
/// address; what stands there below two empty lines is left out. Telephone numbers and e-mail addresses have no
/// business on an envelope.
Entry EntryOf(const clsKVContact& contact);
/// By name.
QList<Entry> Contacts(DeskStation& station);
/// By title.
QList<Prize> Prizes(DeskStation& station);
Winners WinnersOf(DeskStation& station, qint32 prize);
} // namespace LabelTexts
