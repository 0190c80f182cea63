// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

class QMenu;
class Speller;

/// The languages that the spelling may have, in a menu: those that are installed, and none. Looks anew each time it is
/// opened. Belongs to the menu; the speller outlives it.
class SpellingMenu : public QObject
{
    Q_OBJECT

public:
    /// Below what stands in the menu.
    SpellingMenu(QMenu& menu, Speller& speller);

private:
    void Fill();
    void AddLanguages();
    void AddAdvice();
    void AddWords(const QString& words);

    QMenu& Menu_;
    Speller& Speller_;
    QObject* Entries_; ///< Owns those that this has added.
};
