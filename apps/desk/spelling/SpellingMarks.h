// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Speller.h"

#include <QObject>
#include <QSet>
#include <QTextCursor>
#include <QTimer>

class QTextBlock;
class SpellingEdit;

/// The waves under words of a text that its dictionary does not know. Only what is on show is looked at, so that a text
/// of any length costs the same; the word that is just being typed waits until the caret leaves it. Belongs to the box;
/// the speller outlives it.
class SpellingMarks : public QObject
{
    Q_OBJECT

public:
    SpellingMarks(SpellingEdit& edit, Speller& speller);

    /// From this line on the text is another's and nobody corrects it.
    void SetForeignLine(const QString& line);
    /// Names of people and places that this text is about.
    void SetNames(const QStringList& names);
    /// Known from now on, in this box.
    void Ignore(const QString& word);

    /// What counts here: names, ignored words, then the dictionary.
    Speller::Verdict VerdictOn(QStringView word) const;
    /// Quoted, or below the foreign line.
    bool IsForeign(const QTextBlock& block) const;
    /// The unknown word at that position of the text, selected; without a selection where there is none.
    QTextCursor UnknownAt(int position) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Refresh();
    void TakeChange(int position, int removed, int added);
    QList<QTextCursor> UnknownOnShow() const;
    void Find(const QTextBlock& block, int first, int last, QList<QTextCursor>& words) const;
    bool IsBeingTyped(int from, int to) const;
    bool HasLeftTypedWord() const;

    SpellingEdit& Edit_;
    Speller& Speller_;
    QSet<QString> Names_;
    QSet<QString> Ignored_;
    QString ForeignLine_;
    QTextCursor Foreign_; ///< In that line; null while there is none.
    int Typed_ = -1;      ///< Where something was typed last.
    QTimer Timer_;
};
