// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <array>
#include <optional>

/// What a style attribute says of the look of one element, as far as a mail may say it. Everything else of a style
/// sheet's language (addresses, positions, effects, expressions) has no place here, so that a page written from these
/// values cannot carry it on.
struct PageStyle
{
    enum Side
    {
        Top,
        Right,
        Bottom,
        Left
    };

    std::optional<quint32> Colour;
    std::optional<quint32> Background;
    std::optional<double> FontPoints; ///< An absolute size.
    std::optional<double> FontTimes;  ///< A size relative to the surroundings.
    std::optional<bool> Bold;
    std::optional<bool> Italic;
    std::optional<bool> Underline;
    std::optional<bool> StrikeOut;
    QString FontFamily; ///< Names in single quotes, separated by commas.
    QString Align;      ///< left, right, center or justify.
    QString VerticalAlign;
    std::array<std::optional<int>, 4> Margin;  ///< Pixels, by Side.
    std::array<std::optional<int>, 4> Padding; ///< Pixels, by Side.
    QString Width;                             ///< "120" or "50%".
    std::optional<int> BorderWidth;
    std::optional<quint32> BorderColour;
    QString ListStyle;
    std::optional<bool> KeepsBlanks;
    bool IsHidden = false;
    bool RightToLeft = false;

    bool HasRemoteContent = false; ///< It names something to fetch.
    bool HasActiveContent = false; ///< It tries to run something.
};

/// Reads the declarations of a style attribute; what is not understood, or out of all proportion, is left out.
PageStyle ReadStyle(const QString& declarations);
/// Whether a whole style sheet names something to fetch.
bool NamesRemoteContent(const QString& styleSheet);

/// "120", "120px" or "50%" as PageStyle::Width has it; empty for anything else.
QString ReadWidth(const QString& text);
/// Font names as PageStyle::FontFamily has them.
QString ReadFontFamily(const QString& text);
