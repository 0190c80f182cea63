// SPDX-License-Identifier: Apache-2.0
#include "messages/HighlightSettings.h"

#include "database/SettingsStore.h"

using namespace StationSettings;

namespace
{
struct NumberToStore
{
    const NumberSetting& Setting;
    qint32 Value;
};

/// Stores one after the other while goesOn says so of the answers.
template <typename GoesOn>
bool StoreAll(SettingsStore& settings, const clsFont& font, const QString& words, GoesOn&& goesOn)
{
    const NumberToStore numbers[] = {{HighlightColour, font.Colour},
                                     {HighlightBold, font.Bold ? 1 : 0},
                                     {HighlightItalic, font.Italic ? 1 : 0},
                                     {HighlightUnderline, font.Underline ? 1 : 0},
                                     {HighlightStrikethrough, font.Strikethrough ? 1 : 0},
                                     {HighlightSize, font.Size}};
    for (const NumberToStore& number : numbers) {
        if (!goesOn(settings.Write(number.Setting, number.Value)))
            return false;
    }
    return goesOn(settings.Write(HighlightFont, font.Name)) && goesOn(settings.Write(HighlightWords, words));
}
} // namespace

void HighlightSettings::Read()
{
    Font_.Colour = Settings_.Read(HighlightColour);
    Font_.Bold = Settings_.Read(HighlightBold) != 0;
    Font_.Italic = Settings_.Read(HighlightItalic) != 0;
    Font_.Underline = Settings_.Read(HighlightUnderline) != 0;
    Font_.Strikethrough = Settings_.Read(HighlightStrikethrough) != 0;
    Font_.Size = Settings_.Read(HighlightSize);
    Font_.Name = Settings_.Read(HighlightFont);
    Words_ = Settings_.Read(HighlightWords);
}

void HighlightSettings::Write()
{
    StoreAll(Settings_, Font_, Words_, [](int) { return true; });
}

bool HighlightSettings::Store(const clsFont& font, const QString& words)
{
    if (!StoreAll(Settings_, font, words, [](int error) { return error == 0; }))
        return false;
    Font_ = font;
    Words_ = words;
    return true;
}
