// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

#include <optional>

/// The Rich Text Format as far as a box of addresses needs it: characters, paragraphs, protected text and colours. What
/// else a text holds (fonts, pictures, styles) is left out, and its characters stay.
namespace RichTextFormat
{
/// Characters that stand in the same form.
struct Piece
{
    QString Text; ///< Lines end with "\n".
    bool Protected = false;
    std::optional<qint32> Colour; ///< Red in the low byte; none for the colour of the box's text.

    friend bool operator==(const Piece&, const Piece&) = default;
};

/// Whether the text says that it is in this format. Any other text is plain text.
bool IsRichText(const QString& text);
/// The pieces of a text; a plain text is one piece. Whatever the text holds, this comes to an end and raises nothing: a
/// damaged one gives what can be read.
QList<Piece> Read(const QString& text);
/// The text in this format, in ASCII. Reading it gives the pieces again, those of the same form joined.
QString Write(const QList<Piece>& pieces);
} // namespace RichTextFormat
