// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

/// How MakeSafe writes a page.
struct SafeHtmlOptions
{
    /// Colours as the mail has them; without them the page takes all its colours from where it is shown.
    bool KeepsColours = true;
    /// Where the page is shown, 0xRRGGBB. With it, colours of font elements, which the marks of words are, are shown in
    /// a shade that reads well; without KeepsColours as well, while greys take the colour of all text then.
    std::optional<quint32> MarkGround;
    /// Paragraphs and fonts are p and font as in the mail, for who looks for its first lines by them; else they are
    /// written as div and span.
    bool KeepsParagraphs = false;
    /// The size of text that gives no size, in points.
    double BasePoints = 10.5;
    /// All sizes of text times this.
    double Scale = 1;
    /// About how many characters to write; the page then ends early, but whole. 0 for all of it.
    qsizetype MaxCharacters = 0;
    /// Whether the message has a picture with this content id. Without it, all are taken to be there.
    std::function<bool(const QString& contentID)> HasPicture;
};

/// A page that a rich-text pane may show: nothing on it runs and nothing is fetched for it.
struct SafePage
{
    QString Html;
    /// Pictures that stood within the page itself; Html names the first one "embedded:0".
    QList<QByteArray> EmbeddedPictures;

    /// What was left out, in numbers.
    qsizetype RemoteContent = 0; ///< Pictures, style sheets, fonts, sound and film to fetch from elsewhere.
    qsizetype ActiveContent = 0; ///< Scripts, event attributes, forms, frames, objects, drawings, links that run code.
    qsizetype UnsafeLinks = 0;   ///< Other links that are not http, https or mailto.
    qsizetype MissingPictures = 0; ///< Pictures that the message refers to and does not have, or of unsafe kinds.
    bool IsCutShort = false;       ///< MaxCharacters was reached, or a part does not fit the pane's limits.
    bool IsTextOnly = false;       ///< The page is built to be too much work; its text alone is here.
};

/// The page of a mail as it may be shown. Nothing of the input is passed through: the page is parsed as HTML5 and
/// written anew from an allow-list of elements, attributes and style values; all text is escaped. Links keep http,
/// https and mailto addresses; pictures are "cid:" ones of the message and small PNG, JPEG and GIF pictures within the
/// page. Never throws on any input, and takes time proportional to its length.
SafePage MakeSafe(const QString& html, const SafeHtmlOptions& options = {});
