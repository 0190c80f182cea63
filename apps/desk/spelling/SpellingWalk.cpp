// SPDX-License-Identifier: Apache-2.0
#include "SpellingWalk.h"

#include "Speller.h"
#include "SpellingEdit.h"
#include "SpellingMarks.h"
#include "SpellingWords.h"

#include <QTextBlock>

#include <algorithm>
#include <optional>

SpellingWalk::SpellingWalk(SpellingEdit& edit, const SpellingMarks& marks, Speller& speller)
    : QObject(&edit), Edit_(edit), Marks_(marks)
{
    Timer_.setSingleShot(true);
    connect(&Timer_, &QTimer::timeout, this, &SpellingWalk::Step);
    connect(&speller, &Speller::Changed, this, [this, &speller] {
        // A dictionary that turned out to be damaged has been told; without one every word counts as known.
        if (speller.Language().isEmpty())
            IsWalking_ = false;
        if (IsWalking_)
            Timer_.start();
    });
    connect(Edit_.document(), &QTextDocument::contentsChange, this, [this] { IsWalking_ = false; });
}

void SpellingWalk::Start()
{
    const QTextCursor caret = Edit_.textCursor();
    // The word at the caret counts, but not the selected one, which was found before.
    Begin_ = caret.hasSelection() ? caret.selectionEnd() + 1 : caret.position();
    Place_ = Begin_;
    HasWrapped_ = false;
    IsWalking_ = true;
    Step();
}

void SpellingWalk::GoOn(int place)
{
    Place_ = place;
    Timer_.start();
}

void SpellingWalk::Step()
{
    if (!IsWalking_)
        return;
    std::optional<int> awaited; // The first word without an answer.
    int looks = 0;              // At words, and at paragraphs: many of these may have none.
    for (QTextBlock block = Edit_.document()->findBlock(Place_); block.isValid(); block = block.next()) {
        if (HasWrapped_ && block.position() >= Begin_)
            break;
        if (++looks >= StepSize)
            return awaited ? static_cast<void>(Place_ = *awaited) : GoOn(std::max(Place_, block.position()));
        if (Marks_.IsForeign(block))
            continue;
        const QString text = block.text();
        for (const WordPlace& place : SpellingWords::In(text)) {
            const int start = block.position() + static_cast<int>(place.Start);
            const int end = block.position() + static_cast<int>(place.End());
            if (end < Place_ || (HasWrapped_ && start >= Begin_))
                continue;
            if (++looks >= StepSize)
                return awaited ? static_cast<void>(Place_ = *awaited) : GoOn(end);
            const Speller::Verdict verdict = Marks_.VerdictOn(QStringView(text).mid(place.Start, place.Length));
            if (verdict == Speller::Verdict::Awaited && !awaited)
                awaited = end;
            if (verdict != Speller::Verdict::Unknown || awaited)
                continue;
            IsWalking_ = false;
            QTextCursor word(Edit_.document());
            word.setPosition(start);
            word.setPosition(end, QTextCursor::KeepAnchor);
            Q_EMIT Found(word);
            return;
        }
    }
    if (awaited) {
        Place_ = *awaited; // Changed comes.
        return;
    }
    if (!HasWrapped_ && Begin_ > 0) {
        HasWrapped_ = true;
        return GoOn(0);
    }
    IsWalking_ = false;
    Q_EMIT NoneFound();
}
