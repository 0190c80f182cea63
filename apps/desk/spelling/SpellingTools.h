// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

class QAction;
class QMenu;
class Speller;
class SpellingEdit;
class SpellingMarks;
class SpellingPopup;
class SpellingWalk;

/// What one box for text has of spelling: its marks, the menu of an unknown word, a key to the next one, and the
/// languages in a menu of its window. Belongs to the box; the speller outlives it.
class SpellingTools : public QObject
{
    Q_OBJECT

public:
    SpellingTools(SpellingEdit& edit, Speller& speller, QMenu& menu);

    SpellingMarks& Marks() { return *Marks_; }

public Q_SLOTS:
    /// Selects the next word that is unknown, and opens its menu.
    void GoToNext();

Q_SIGNALS:
    /// For the window's status bar.
    void Told(const QString& words);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    SpellingEdit& Edit_;
    Speller& Speller_;
    SpellingMarks* Marks_;
    SpellingPopup* Popup_;
    SpellingWalk* Walk_;
    QAction* Next_; ///< Off while the box is only read.
};
