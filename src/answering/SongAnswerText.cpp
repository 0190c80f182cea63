// SPDX-License-Identifier: Apache-2.0
#include "answering/SongAnswerText.h"

#include "answering/TextTemplate.h"
#include "common/HarmlessText.h"
#include "common/SearchFold.h"
#include "messages/TextParts.h"

#include <QTextBoundaryFinder>
#include <QUrl>

#include <algorithm>

namespace
{
const QString AmazonTag = QStringLiteral("AMAZON_ID");
constexpr qsizetype LeastOfSong = 30;
constexpr qsizetype LongestSong = 300;
const QString Cut = QStringLiteral("...");

/// No longer than that, and no character divided.
QString Beginning(const QString& text, qsizetype length)
{
    if (text.size() <= length)
        return text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(length);
    const qsizetype end = finder.isAtBoundary() ? length : std::max<qsizetype>(0, finder.toPreviousBoundary());
    return text.left(end).trimmed();
}

/// Makes one character of its neighbours: parts of some scripts' letters, and of pictures.
bool IsJoiner(char32_t character)
{
    return character == 0x200C || character == 0x200D;
}

/// Without the characters that nobody sees: each would make the text one of 70 characters, and a song of nothing else
/// would be a blank.
QString Visible(const QString& text)
{
    QString visible;
    bool holdsMore = false; // than joiners, which have nothing to join then
    for (const char32_t character : text.toUcs4()) {
        if (!IsJoiner(character) && QChar::category(character) == QChar::Other_Format)
            continue;
        visible += QChar::fromUcs4(character);
        holdsMore = holdsMore || !(IsJoiner(character) || QChar::isSpace(character));
    }
    return holdsMore ? visible : QString();
}

/// On one line, without what steers a screen. Typesetters' marks become the keyboard's: one of them would halve what a
/// text message holds.
QString Shown(const QString& text)
{
    QString plain = Beginning(Visible(text), LongestSong);
    for (QChar& character : plain)
        character = character.category() == QChar::Other_Control ? QChar(u' ') : SearchFold::KeyboardMark(character);
    return HarmlessText::Words(plain);
}

/// The words with as much of the song.
QString WithSong(const QString& words, const SongAnswerText::Known& known, const QString& song, qsizetype length)
{
    const QString part = Beginning(song, length);
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(part));
    return TextTemplate::Filled(words, {{QStringLiteral("STATION_NAME"), Shown(known.StationName)},
                                        {QStringLiteral("SONG"), part.size() < song.size() ? part + Cut : part},
                                        {QStringLiteral("SONG_IN_LINK"), encoded},
                                        {QStringLiteral("TIME"), known.Time},
                                        {AmazonTag, Shown(known.AmazonID)}})
        .trimmed();
}
} // namespace

QString SongAnswerText::TemplateName(SongQuestion question, const Known& known)
{
    if (Shown(known.Song).isEmpty())
        return QStringLiteral("Automatic-No song.txt");
    return question == SongQuestion::Buy ? QStringLiteral("Automatic-Buy.txt") : QStringLiteral("Automatic-Song.txt");
}

/// The time stands in them because a text may take a while to arrive.
QString SongAnswerText::OwnWords(SongQuestion question, const Known& known)
{
    if (Shown(known.Song).isEmpty())
        return QStringLiteral("Sorry, <ZRT_STATION_NAME> cannot tell what was playing at <ZRT_TIME>.");
    return question == SongQuestion::Buy
               ? QStringLiteral("To buy what <ZRT_STATION_NAME> played at <ZRT_TIME>, ask for: <ZRT_SONG>")
               : QStringLiteral("Playing on <ZRT_STATION_NAME> at <ZRT_TIME>: <ZRT_SONG>");
}

QString SongAnswerText::Of(SongQuestion question, const QString& words, const Known& known)
{
    const bool lacksShop = TextTemplate::Holds(words, AmazonTag) && Shown(known.AmazonID).isEmpty();
    const QString used = lacksShop ? OwnWords(question, known) : words;
    const QString song = Shown(known.Song);
    const int parts = CountTextParts(WithSong(used, known, song, LeastOfSong)).Parts;
    qsizetype length = song.size();
    while (length > LeastOfSong && CountTextParts(WithSong(used, known, song, length)).Parts > parts)
        --length;
    return WithSong(used, known, song, length);
}
