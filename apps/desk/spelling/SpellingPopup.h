// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTextCursor>
#include <QTimer>

class QAction;
class QMenu;
class Speller;
class SpellingEdit;
class SpellingMarks;

/// The menu of an unknown word: what may have been meant, then what the box has anyway. It comes up when the dictionary
/// has answered, or a moment later without waiting for it. Belongs to the box; the speller outlives it.
class SpellingPopup : public QObject
{
    Q_OBJECT

public:
    SpellingPopup(SpellingEdit& edit, SpellingMarks& marks, Speller& speller);

    /// word: selected, and unknown. Below the word, with its first suggestion chosen, for who uses the keys.
    void OpenByKey(const QTextCursor& word);

    /// How long it waits for the suggestions.
    static constexpr int PatienceMilliseconds = 150;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Open(const QTextCursor& word, QPoint place, bool byKey);
    void TakeSuggestions(const QString& plain, const QStringList& suggestions);
    void Show();
    void Replace(const QString& suggestion);

    SpellingEdit& Edit_;
    SpellingMarks& Marks_;
    Speller& Speller_;
    QPointer<QMenu> Menu_;
    QList<QAction*> Lines_;   ///< Of the menu, for suggestions.
    bool IsAwaiting_ = false; ///< Until these have come.
    QTextCursor Word_;
    QString Text_; ///< Of the word.
    QPoint Place_;
    bool IsByKey_ = false;
    QTimer Timer_;
};
