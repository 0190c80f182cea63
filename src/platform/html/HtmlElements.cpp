// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlElements.h"

#include <QSet>

#include <array>
#include <initializer_list>

namespace
{
struct Entry
{
    QString Name;
    HtmlTraits Traits;
};

using EntryTable = std::array<Entry, GUMBO_TAG_LAST>;

void Add(EntryTable* table, HtmlTraits traits, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        const GumboTag tag = gumbo_tag_enum(name);
        if (tag < GUMBO_TAG_UNKNOWN)
            (*table)[static_cast<std::size_t>(tag)].Traits |= traits;
    }
}

/// As browsers show them when no style sheet says otherwise.
EntryTable MakeTable()
{
    EntryTable table;
    for (std::size_t i = 0; i < GUMBO_TAG_UNKNOWN; ++i)
        table[i].Name = QString::fromLatin1(gumbo_normalized_tagname(static_cast<GumboTag>(i)));
    Add(&table, HtmlTrait::Void,
        {"area", "base", "basefont", "bgsound", "br", "col", "embed", "frame", "hr", "img", "input", "keygen", "link",
         "meta", "param", "source", "track", "wbr"});
    Add(&table, HtmlTrait::RawText, {"style", "script", "xmp", "iframe", "noembed", "noframes", "plaintext"});
    Add(&table, HtmlTrait::DropsFirstLine, {"pre", "textarea", "listing"});
    Add(&table, HtmlTrait::Preserves, {"pre", "textarea", "listing", "xmp", "plaintext"});
    Add(&table, HtmlTrait::Hidden,
        {"area", "base", "basefont", "datalist", "head", "link", "meta", "noembed", "noframes", "param", "rp", "script",
         "style", "source", "title", "template", "track", "col", "colgroup"});
    Add(&table, HtmlTrait::Replaced,
        {"audio", "canvas", "embed", "iframe", "img", "input", "textarea", "video", "progress", "meter", "applet"});
    Add(&table, HtmlTrait::Box, {"button", "marquee"});
    Add(&table, HtmlTrait::Block,
        {"address", "article", "aside",    "blockquote", "body",     "caption",  "center", "dd",
         "details", "dir",     "div",      "dl",         "dt",       "fieldset", "figure", "figcaption",
         "footer",  "form",    "frameset", "h1",         "h2",       "h3",       "h4",     "h5",
         "h6",      "header",  "hgroup",   "hr",         "html",     "legend",   "li",     "listing",
         "main",    "menu",    "nav",      "ol",         "optgroup", "option",   "p",      "plaintext",
         "pre",     "section", "summary",  "table",      "ul",       "xmp"});
    Add(&table, HtmlTrait::Paragraph, {"p"});
    Add(&table, HtmlTrait::Table, {"table"});
    Add(&table, HtmlTrait::RowGroup, {"tbody", "thead", "tfoot"});
    Add(&table, HtmlTrait::Row, {"tr"});
    Add(&table, HtmlTrait::Cell, {"td", "th"});
    Add(&table, HtmlTrait::Break, {"br"});
    Add(&table, HtmlTrait::Choice, {"select"});
    Add(&table, HtmlTrait::ChoiceGroup, {"optgroup"});
    Add(&table, HtmlTrait::Option, {"option"});
    Add(&table, HtmlTrait::Template, {"template"});
    return table;
}

const EntryTable& Elements()
{
    static const EntryTable table = MakeTable();
    return table;
}
} // namespace

const QString& HtmlElements::NameOf(GumboTag tag)
{
    return Elements()[static_cast<std::size_t>(tag)].Name;
}

HtmlTraits HtmlElements::TraitsOf(GumboTag tag)
{
    return Elements()[static_cast<std::size_t>(tag)].Traits;
}

HtmlTraits HtmlElements::TraitsOf(const QString& name)
{
    if (name == QLatin1String("dialog"))
        return HtmlTrait::Block | HtmlTrait::NeedsOpen;
    return name == QLatin1String("search") ? HtmlTraits(HtmlTrait::Block) : HtmlTraits();
}

HtmlTraits HtmlElements::ForeignTraitsOf(const QString& name)
{
    static const QSet<QString> hidden{
        QStringLiteral("clipPath"),       QStringLiteral("defs"),           QStringLiteral("desc"),
        QStringLiteral("filter"),         QStringLiteral("linearGradient"), QStringLiteral("marker"),
        QStringLiteral("mask"),           QStringLiteral("metadata"),       QStringLiteral("pattern"),
        QStringLiteral("radialGradient"), QStringLiteral("script"),         QStringLiteral("stop"),
        QStringLiteral("style"),          QStringLiteral("symbol"),         QStringLiteral("title")};
    return hidden.contains(name) ? HtmlTraits(HtmlTrait::Hidden) : HtmlTraits();
}
