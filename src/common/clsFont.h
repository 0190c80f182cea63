// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// A font as text on a page is given it. Colours hold red in the low byte; a negative one is a system colour.
struct clsFont
{
    QString Name;
    int Size = 0;
    qint32 Colour = 0;
    bool Bold = false;
    bool Italic = false;
    bool Underline = false;
    bool Strikethrough = false;
};
