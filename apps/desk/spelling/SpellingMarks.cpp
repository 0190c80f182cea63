// SPDX-License-Identifier: Apache-2.0
#include "SpellingMarks.h"

#include "SpellingEdit.h"
#include "SpellingWords.h"

#include <QEvent>
#include <QScrollBar>
#include <QTextBlock>

#include <algorithm>

namespace
{
/// Typing comes in steps of that length, and one look serves all of a step.
constexpr int RefreshDelay = 20;
/// More at once was not typed by hand.
constexpr int MostTyped = 40;
/// Beyond both ends of what is on show: lines of two directions do not end at their edges.
constexpr int Margin = 400;
constexpr qsizetype LongestPart = 800;

QString Folded(const QString& plain)
{
    return plain.toCaseFolded();
}

/// "Loveday's" is of Loveday.
QString WithoutGenitive(QString plain)
{
    if (plain.endsWith(QStringLiteral("'s")))
        plain.chop(2);
    return plain;
}

struct TextWord
{
    int Start = 0; ///< In the text.
    int End = 0;
    QString Text;
};

/// Those between the blanks around a position.
QList<TextWord> WordsAround(const QTextBlock& block, int position)
{
    const QString text = block.text();
    const qsizetype inBlock = position - block.position();
    qsizetype from = inBlock;
    while (from > 0 && inBlock - from < Margin && !text.at(from - 1).isSpace())
        --from;
    const QStringView part = QStringView(text).mid(from, LongestPart);
    QList<TextWord> words;
    for (const WordPlace& place : SpellingWords::In(part)) {
        const int start = block.position() + static_cast<int>(from + place.Start);
        words.append({start, start + static_cast<int>(place.Length), part.mid(place.Start, place.Length).toString()});
    }
    return words;
}
} // namespace

SpellingMarks::SpellingMarks(SpellingEdit& edit, Speller& speller) : QObject(&edit), Edit_(edit), Speller_(speller)
{
    setObjectName(QStringLiteral("spellingMarks"));
    Timer_.setSingleShot(true);
    Timer_.setInterval(RefreshDelay);
    connect(&Timer_, &QTimer::timeout, this, &SpellingMarks::Refresh);
    const auto refresh = [this] {
        if (!Timer_.isActive())
            Timer_.start();
    };
    connect(&Speller_, &Speller::Changed, this, refresh);
    connect(Edit_.document(), &QTextDocument::contentsChange, this, &SpellingMarks::TakeChange);
    connect(Edit_.document(), &QTextDocument::contentsChange, this, refresh);
    connect(&Edit_, &SpellingEdit::cursorPositionChanged, this, refresh);
    connect(Edit_.verticalScrollBar(), &QScrollBar::valueChanged, this, refresh);
    Edit_.installEventFilter(this);
    Edit_.viewport()->installEventFilter(this);
    refresh();
}

bool SpellingMarks::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Resize:
    case QEvent::ReadOnlyChange:
    case QEvent::Show:
        Timer_.start();
        break;
    case QEvent::FocusOut:
        Typed_ = -1;
        Timer_.start();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void SpellingMarks::SetForeignLine(const QString& line)
{
    ForeignLine_ = line;
    TakeChange(0, 0, Edit_.document()->characterCount());
    Typed_ = -1;
    Timer_.start();
}

void SpellingMarks::SetNames(const QStringList& names)
{
    Names_.clear();
    for (const QString& name : names) {
        for (const WordPlace& place : SpellingWords::In(name))
            Names_.insert(Folded(SpellingWords::Plain(QStringView(name).mid(place.Start, place.Length))));
    }
    Timer_.start();
}

void SpellingMarks::Ignore(const QString& word)
{
    Ignored_.insert(SpellingWords::Plain(word));
    Timer_.start();
}

Speller::Verdict SpellingMarks::VerdictOn(QStringView word) const
{
    const QString plain = SpellingWords::Plain(word);
    if (Ignored_.contains(plain) || Names_.contains(Folded(plain)) || Names_.contains(Folded(WithoutGenitive(plain))))
        return Speller::Verdict::Known;
    return Speller_.VerdictOn(plain);
}

/// Notes where the foreign line stands, and where was typed.
void SpellingMarks::TakeChange(int position, int removed, int added)
{
    Typed_ = Edit_.hasFocus() && removed + added <= MostTyped ? position + added : -1;
    if (ForeignLine_.isEmpty())
        return;
    const QTextDocument& text = *Edit_.document();
    for (QTextBlock block = text.findBlock(position); block.isValid() && block.position() <= position + added;
         block = block.next()) {
        if (block.text() == ForeignLine_) {
            Foreign_ = QTextCursor(block);
            return;
        }
    }
}

bool SpellingMarks::IsForeign(const QTextBlock& block) const
{
    const auto isQuoted = [](const QTextBlock& line) { return line.isValid() && line.text().startsWith(u'>'); };
    if (isQuoted(block))
        return true;
    // "Loveday wrote:"
    if (block.text().endsWith(u':') && isQuoted(block.next()))
        return true;
    return !Foreign_.isNull() && Foreign_.block().text() == ForeignLine_ &&
           block.position() >= Foreign_.block().position();
}

bool SpellingMarks::IsBeingTyped(int from, int to) const
{
    const int caret = Edit_.textCursor().position();
    return Typed_ > from && Typed_ <= to && caret > from && caret <= to;
}

bool SpellingMarks::HasLeftTypedWord() const
{
    const QTextCursor caret = Edit_.textCursor();
    const QTextBlock block = Edit_.document()->findBlock(Typed_);
    if (!block.isValid() || caret.block() != block)
        return true;
    const QList<TextWord> words = WordsAround(block, Typed_);
    return std::any_of(words.begin(), words.end(), [&](const TextWord& word) {
        const auto holds = [&](int position) { return position > word.Start && position <= word.End; };
        return holds(Typed_) && !holds(caret.position());
    });
}

/// Adds the unknown words of a paragraph between two positions of the text; where these cut a word, without it.
void SpellingMarks::Find(const QTextBlock& block, int first, int last, QList<QTextCursor>& words) const
{
    const QString text = block.text();
    qsizetype from = std::clamp<qsizetype>(first - block.position(), 0, text.size());
    qsizetype to = std::clamp<qsizetype>(last - block.position(), 0, text.size());
    while (from > 0 && from < to && !text.at(from - 1).isSpace())
        ++from;
    while (to < text.size() && to > from && !text.at(to).isSpace())
        --to;
    const QStringView part = QStringView(text).mid(from, to - from);
    for (const WordPlace& place : SpellingWords::In(part)) {
        const int start = block.position() + static_cast<int>(from + place.Start);
        const int end = start + static_cast<int>(place.Length);
        if (VerdictOn(part.mid(place.Start, place.Length)) != Speller::Verdict::Unknown || IsBeingTyped(start, end))
            continue;
        QTextCursor word(Edit_.document());
        word.setPosition(start);
        word.setPosition(end, QTextCursor::KeepAnchor);
        words.append(word);
    }
}

/// Of what is on show.
QList<QTextCursor> SpellingMarks::UnknownOnShow() const
{
    QList<QTextCursor> words;
    if (Speller_.Language().isEmpty() || Edit_.isReadOnly())
        return words;
    const QRect shown = Edit_.viewport()->rect();
    const auto [first, last] = std::minmax({Edit_.cursorForPosition(shown.topLeft()).position(),
                                            Edit_.cursorForPosition(shown.topRight()).position(),
                                            Edit_.cursorForPosition(shown.bottomLeft()).position(),
                                            Edit_.cursorForPosition(shown.bottomRight()).position()});
    for (QTextBlock block = Edit_.document()->findBlock(first); block.isValid() && block.position() <= last;
         block = block.next()) {
        if (!IsForeign(block))
            Find(block, first - Margin, last + Margin, words);
    }
    return words;
}

void SpellingMarks::Refresh()
{
    // Whoever has left the word and comes back to it sees its wave.
    if (Typed_ >= 0 && HasLeftTypedWord())
        Typed_ = -1;
    Edit_.SetMarks(UnknownOnShow());
}

QTextCursor SpellingMarks::UnknownAt(int position) const
{
    const QTextBlock block = Edit_.document()->findBlock(position);
    QTextCursor found(Edit_.document());
    if (!block.isValid() || Speller_.Language().isEmpty() || Edit_.isReadOnly() || IsForeign(block))
        return found;
    for (const TextWord& word : WordsAround(block, position)) {
        if (position < word.Start || position > word.End)
            continue;
        if (VerdictOn(word.Text) != Speller::Verdict::Unknown)
            break;
        found.setPosition(word.Start);
        found.setPosition(word.End, QTextCursor::KeepAnchor);
        break;
    }
    return found;
}
