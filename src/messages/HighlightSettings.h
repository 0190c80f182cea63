// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/clsFont.h"

#include <QString>

class SettingsStore;

/// The words that a station highlights in its messages, and in which font: read with the station's settings and kept,
/// since every message that is saved needs them. Owned by cTolvaDatabase, over its settings, which outlive it.
class HighlightSettings
{
public:
    explicit HighlightSettings(SettingsStore& settings) : Settings_(settings) {}

    const QString& Words() const { return Words_; }
    const clsFont& Font() const { return Font_; }
    /// A host's changes to it are stored by Write.
    clsFont& Font() { return Font_; }

    void Read();
    /// Goes on after what cannot be stored, which the user is shown.
    void Write();
    /// Stores a font and words and takes them over; false at the first that could not be stored, which the user has
    /// been shown.
    bool Store(const clsFont& font, const QString& words);

private:
    SettingsStore& Settings_;
    clsFont Font_;
    QString Words_;
};
