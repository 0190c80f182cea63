// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "answering/SongQuestion.h"
#include "platform/Export.h"

#include <QString>

/// What the station says to whoever asks for the song that plays.
namespace SongAnswerText
{
/// What is known at that moment. Song comes from other software, whatever it wrote.
struct Known
{
    QString StationName;
    QString Song; ///< Empty where nobody says what is playing.
    QString Time; ///< As people read it.
    QString AmazonID;
};

/// The file in the station's template folder that says it: "Automatic-Song.txt", "Automatic-Buy.txt", or, where no song
/// is known, "Automatic-No song.txt".
TOLVA_EXPORT QString TemplateName(SongQuestion question, const Known& known);
/// What is said where the station has no such file.
TOLVA_EXPORT QString OwnWords(SongQuestion question, const Known& known);

/// The template filled in, on as few text messages as it needs with the first 30 characters of the song; a song that
/// needs more is cut. Nothing of the song but letters that show on one line goes in. A template that speaks of the
/// shop's identifier gives way to OwnWords while the station has none. Empty for an empty template.
TOLVA_EXPORT QString Of(SongQuestion question, const QString& words, const Known& known);
} // namespace SongAnswerText
