// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

/// A web or mail address within a text.
struct TextLink
{
    qsizetype Position = 0;
    qsizetype Length = 0;
    QString Address; ///< Encoded; http, https or mailto.
};

/// The addresses that a text names: "http://...", "https://...", "mailto:...", "www...." and "name@host". The full
/// stop, comma, quote or bracket that ends a sentence or encloses an address is outside. In order; in time
/// proportional to the text's length.
QList<TextLink> FindLinks(const QString& text);

/// The text for use in HTML: & < > and double quotes encoded. Characters that no text has, or that a rich-text pane
/// uses for itself, are left out.
QString EscapedText(const QString& text);

/// A text as an HTML fragment that shows it as it stands, with line ends and blanks, and with its addresses as links.
QString HtmlOfPlainText(const QString& text);

/// The text without the characters that EscapedText leaves out, with "\n" as line ends.
QString CleanText(const QString& text);

/// The text with an invisible place to break the line in words that are longer than any: a pane takes time with the
/// square of a word's length. wordLength is how long the word before the text is, and then the last one in it.
QString BreakLongWords(const QString& text, qsizetype* wordLength);
