// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QTimer>

class QTextCursor;
class Speller;
class SpellingEdit;
class SpellingMarks;

/// Finds the next unknown word of a text from its caret on, round its end, in steps that nobody notices. Belongs to the
/// box, whose marks know what counts; the speller outlives it.
class SpellingWalk : public QObject
{
    Q_OBJECT

public:
    SpellingWalk(SpellingEdit& edit, const SpellingMarks& marks, Speller& speller);

    /// Begins, or begins anew. One of the signals follows, unless the text changes or the spelling goes off before.
    void Start();

    /// Of a step, in words and paragraphs.
    static constexpr int StepSize = 2000;

Q_SIGNALS:
    void Found(const QTextCursor& word);
    void NoneFound();

private:
    void Step();
    void GoOn(int place);

    SpellingEdit& Edit_;
    const SpellingMarks& Marks_;
    bool IsWalking_ = false;
    int Begin_ = 0; ///< Where it ends as well.
    int Place_ = 0; ///< Words that end there or further on are looked at.
    bool HasWrapped_ = false;
    QTimer Timer_;
};
