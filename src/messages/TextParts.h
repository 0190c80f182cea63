// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

/// How long a text message is for the network that carries it (3GPP TS 23.038 and 23.040): one message, or as many as
/// it is divided into. Texts of the 7-bit alphabet have 160 characters in one message and 153 in each of several, of
/// which some ("{", the euro) count twice; with any other character all of the text counts in 16-bit units, 70 and 67.
/// No character is divided.
struct TextParts
{
    int Units = 0; ///< Used, of both halves of a character that counts twice.
    int Parts = 0; ///< Messages; 0 for an empty text.
    int Left = 0;  ///< Units that still fit into the last one.
    bool Is16Bit = false;
    QString First16Bit; ///< The character that made it so.
};

TOLVA_EXPORT TextParts CountTextParts(const QString& text);
