// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>

/// The two files that make a dictionary, and what language they are of.
struct DictionaryFiles
{
    QString Language;  ///< As the files are named: "en_GB", "de_DE_frami".
    QString RulesFile; ///< ".aff"
    QString WordsFile; ///< ".dic"
    QString Problem;   ///< Why it cannot be used, as a sentence; empty when it can.

    /// What its speakers call it: "Deutsch (Deutschland)".
    QString Name() const;
    friend bool operator==(const DictionaryFiles&, const DictionaryFiles&) = default;
};

/// The dictionaries that this machine has, for spelling. Nothing here belongs to a station.
namespace InstalledDictionaries
{
/// Where they are looked for: the account's own folder first. The environment variable DICPATH names others in their
/// place, as it does for other programs.
QStringList Folders();
/// The account's own folder among them, where a user may put one.
QString OwnFolder();
/// All in those folders by their names; of one language the first. Damaged ones too, with their problem.
QList<DictionaryFiles> In(const QStringList& folders);
/// The best one for who works in that locale: of its country, or of its language; empty when there is none.
QString LanguageFor(const QList<DictionaryFiles>& dictionaries, const QLocale& locale);
} // namespace InstalledDictionaries
