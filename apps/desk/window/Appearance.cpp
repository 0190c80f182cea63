// SPDX-License-Identifier: Apache-2.0
#include "Appearance.h"

#include <QApplication>
#include <QPalette>

namespace
{
struct Colours
{
    QColor Window;
    QColor Base;
    QColor Alternate;
    QColor Text;
    QColor Hint; ///< What an empty box or page says: to be read.
    QColor Faint;
    QColor Button;
    QColor Highlight;
    QColor Link;
};

const Colours LightColours = {QColor(0xF3F4F5), QColor(0xFFFFFF), QColor(0xF7F8F9), QColor(0x1D2126), QColor(0x626A73),
                              QColor(0x9AA1A8), QColor(0xECEEF0), QColor(0x1F6F8B), QColor(0x17607A)};
const Colours DarkColours = {QColor(0x26292D), QColor(0x1D2023), QColor(0x23262A), QColor(0xE6E8EA), QColor(0x98A0A8),
                             QColor(0x7C848C), QColor(0x31353A), QColor(0x2E7D99), QColor(0x6CC4DE)};

QPalette PaletteOf(const Colours& colours)
{
    QPalette palette;
    const auto set = [&palette](QPalette::ColorRole role, const QColor& colour) { palette.setColor(role, colour); };
    set(QPalette::Window, colours.Window);
    set(QPalette::WindowText, colours.Text);
    set(QPalette::Base, colours.Base);
    set(QPalette::AlternateBase, colours.Alternate);
    set(QPalette::Text, colours.Text);
    set(QPalette::PlaceholderText, colours.Hint);
    set(QPalette::Button, colours.Button);
    set(QPalette::ButtonText, colours.Text);
    set(QPalette::BrightText, Qt::white);
    set(QPalette::Highlight, colours.Highlight);
    set(QPalette::HighlightedText, Qt::white);
    set(QPalette::ToolTipBase, colours.Base);
    set(QPalette::ToolTipText, colours.Text);
    set(QPalette::Link, colours.Link);
    set(QPalette::LinkVisited, colours.Link);
    const bool isDark = colours.Window.lightness() < colours.Text.lightness();
    set(QPalette::Light, isDark ? colours.Button.lighter(120) : QColor(Qt::white));
    set(QPalette::Midlight, isDark ? colours.Button.lighter(110) : QColor(0xF7F8F9));
    set(QPalette::Mid, isDark ? colours.Window.darker(125) : QColor(0xC3C8CD));
    set(QPalette::Dark, isDark ? colours.Window.darker(150) : QColor(0xA5ACB3));
    set(QPalette::Shadow, isDark ? QColor(Qt::black) : QColor(0x70777E));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, colours.Faint);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, colours.Faint);
    return palette;
}
} // namespace

void Appearance::Apply(const QString& appearance)
{
    if (appearance == u"dark")
        QApplication::setPalette(PaletteOf(DarkColours));
    else if (appearance == u"light")
        QApplication::setPalette(PaletteOf(LightColours));
    else
        QApplication::setPalette(QPalette());
}
