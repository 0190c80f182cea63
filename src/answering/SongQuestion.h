// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

/// What a text message asks a machine.
enum class SongQuestion
{
    None,
    Song, ///< What is playing.
    Buy   ///< How to buy it.
};

/// A text asks when it begins with a key word of the station and says hardly more: at most three words behind it. Case,
/// accents, blanks and punctuation make no difference, and the key word counts as a whole: "songs" and "what is this
/// song?" ask nothing, and neither does "Song for my mother's birthday, please", which is meant for people. Where both
/// key words fit, the longer one counts, of twins the song's. One of nothing but blanks is never asked.
TOLVA_EXPORT SongQuestion QuestionIn(const QString& text, const QString& songWord, const QString& buyWord);
