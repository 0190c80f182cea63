// SPDX-License-Identifier: Apache-2.0
#include "platform/html/PageElements.h"

#include "platform/html/Colours.h"

#include <QHash>
#include <QSet>

#include <gumbo.h>

using namespace PageElements;

namespace
{
const QHash<QString, Element>& PageElementsByName()
{
    static const QHash<QString, Element> elements = [] {
        QHash<QString, Element> hash;
        const auto add = [&hash](Role role, std::initializer_list<const char*> names, const char* written = nullptr) {
            for (const char* name : names)
                hash.insert(QLatin1String(name), {role, written == nullptr ? name : written});
        };
        add(Role::Block,
            {"p",        "div",    "center",  "address",    "article",   "aside", "section", "header", "footer",
             "main",     "nav",    "figure",  "figcaption", "h1",        "h2",    "h3",      "h4",     "h5",
             "h6",       "pre",    "listing", "xmp",        "plaintext", "dl",    "dt",      "dd",     "form",
             "fieldset", "legend", "details", "summary",    "hgroup",    "dir",   "menu",    "caption"},
            "div");
        add(Role::Block, {"ul", "ol", "li", "blockquote"});
        add(Role::Inline, {"b", "i", "u", "s", "sub", "sup", "a"});
        add(Role::Inline, {"strong"}, "b");
        add(Role::Inline, {"em", "cite", "dfn", "var"}, "i");
        add(Role::Inline, {"ins"}, "u");
        add(Role::Inline, {"del", "strike"}, "s");
        add(Role::Inline, {"span",    "font", "big", "small", "code",  "kbd",  "samp", "tt",   "mark",   "abbr",
                           "acronym", "bdi",  "bdo", "q",     "label", "nobr", "time", "data", "output", "button"},
            "span");
        add(Role::Table, {"table"});
        add(Role::Row, {"tr"});
        add(Role::Cell, {"td", "th"});
        add(Role::Withheld,
            {"script",   "style",    "template", "title",    "head",    "iframe", "frame",    "frameset",
             "noframes", "noembed",  "object",   "embed",    "applet",  "param",  "audio",    "video",
             "source",   "track",    "canvas",   "svg",      "math",    "link",   "meta",     "base",
             "bgsound",  "input",    "select",   "textarea", "isindex", "keygen", "datalist", "map",
             "area",     "colgroup", "col",      "portal",   "dialog"});
        return hash;
    }();
    return elements;
}

double HeadingTimes(const QString& name)
{
    constexpr double times[] = {1.7, 1.4, 1.2, 1, 0.9, 0.85};
    return times[name.at(1).digitValue() - 1];
}

bool IsHeading(const QString& name)
{
    return name.size() == 2 && name.at(0) == u'h' && name.at(1) >= u'1' && name.at(1) <= u'6';
}
} // namespace

Element PageElements::ElementOf(const QString& name)
{
    return PageElementsByName().value(name, {Role::Through, nullptr});
}

bool PageElements::IsActiveElement(const QString& name)
{
    static const QSet<QString> names = [] {
        QSet<QString> set;
        for (const char* word : {"script", "iframe", "frame",   "frameset", "object",   "embed",  "applet",
                                 "canvas", "svg",    "math",    "base",     "input",    "select", "textarea",
                                 "form",   "button", "isindex", "keygen",   "template", "portal", "dialog"})
            set.insert(QLatin1String(word));
        return set;
    }();
    return names.contains(name);
}

QString PageElements::NameOf(const GumboInternalNode* node)
{
    const GumboElement& element = node->v.element;
    if (element.tag_namespace != GUMBO_NAMESPACE_HTML)
        return element.tag_namespace == GUMBO_NAMESPACE_SVG ? QStringLiteral("svg") : QStringLiteral("math");
    return QLatin1String(gumbo_normalized_tagname(element.tag));
}

QString PageElements::Attribute(const GumboInternalNode* node, const char* name)
{
    const GumboAttribute* attribute = gumbo_get_attribute(&node->v.element.attributes, name);
    return attribute == nullptr ? QString() : QString::fromUtf8(attribute->value);
}

int PageElements::WholeNumber(const QString& text, int smallest, int largest, int otherwise)
{
    bool isNumber = false;
    const int number = text.trimmed().toInt(&isNumber);
    return isNumber ? std::clamp(number, smallest, largest) : otherwise;
}

int PageElements::SpanOf(const GumboInternalNode* cell, const char* attribute)
{
    constexpr int WidestSpan = 50;
    return WholeNumber(Attribute(cell, attribute), 1, WidestSpan, 1);
}

PageStyle PageElements::StyleOf(const GumboInternalNode* node, const QString& name, double basePoints)
{
    PageStyle style = ReadStyle(Attribute(node, "style"));
    if (!style.Background)
        style.Background = Colours::ReadAttribute(Attribute(node, "bgcolor"));
    if (!style.Colour)
        style.Colour = Colours::ReadAttribute(Attribute(node, name == QLatin1String("body") ? "text" : "color"));
    if (style.Align.isEmpty()) {
        const QString align = Attribute(node, "align").trimmed().toLower();
        if (align == QLatin1String("right") || align == QLatin1String("center") || align == QLatin1String("justify"))
            style.Align = align;
        else if (name == QLatin1String("center"))
            style.Align = QStringLiteral("center");
    }
    if (name == QLatin1String("font")) {
        if (style.FontFamily.isEmpty())
            style.FontFamily = ReadFontFamily(Attribute(node, "face"));
        const QString size = Attribute(node, "size").trimmed();
        if (!size.isEmpty() && !style.FontPoints && !style.FontTimes) {
            constexpr double times[] = {0.7, 0.85, 1, 1.15, 1.5, 2, 2.6};
            const bool isRelative = size.startsWith(u'+') || size.startsWith(u'-');
            const int index = WholeNumber(size, -6, 7, 0) + (isRelative ? 3 : 0);
            style.FontPoints = times[std::clamp(index, 1, 7) - 1] * basePoints;
        }
    }
    const QString direction = Attribute(node, "dir").trimmed().toLower();
    style.RightToLeft |= direction == QLatin1String("rtl");

    if (IsHeading(name)) {
        style.Bold = style.Bold.value_or(true);
        if (!style.FontPoints && !style.FontTimes)
            style.FontTimes = HeadingTimes(name);
    } else if (name == QLatin1String("th") || name == QLatin1String("dt") || name == QLatin1String("legend")) {
        style.Bold = style.Bold.value_or(true);
    } else if ((name == QLatin1String("big") || name == QLatin1String("small")) && !style.FontTimes) {
        style.FontTimes = name == QLatin1String("big") ? 1.2 : 1 / 1.2;
    } else if (name == QLatin1String("mark") && !style.Background) {
        style.Background = 0xFFF3A3;
        style.Colour = 0x000000;
    }
    static const QSet<QString> typewritten{QStringLiteral("pre"), QStringLiteral("code"),     QStringLiteral("tt"),
                                           QStringLiteral("kbd"), QStringLiteral("samp"),     QStringLiteral("listing"),
                                           QStringLiteral("xmp"), QStringLiteral("plaintext")};
    if (typewritten.contains(name) && style.FontFamily.isEmpty())
        style.FontFamily = QStringLiteral("'monospace'");
    static const QSet<QString> keeping{QStringLiteral("pre"), QStringLiteral("listing"), QStringLiteral("xmp"),
                                       QStringLiteral("plaintext")};
    if (keeping.contains(name))
        style.KeepsBlanks = style.KeepsBlanks.value_or(true);
    static const QSet<QString> apart{QStringLiteral("p"),     QStringLiteral("h1"),  QStringLiteral("h2"),
                                     QStringLiteral("h3"),    QStringLiteral("h4"),  QStringLiteral("h5"),
                                     QStringLiteral("h6"),    QStringLiteral("pre"), QStringLiteral("dl"),
                                     QStringLiteral("figure")};
    if (apart.contains(name)) {
        style.Margin[PageStyle::Top] = style.Margin[PageStyle::Top].value_or(12);
        style.Margin[PageStyle::Bottom] = style.Margin[PageStyle::Bottom].value_or(12);
    }
    if (name == QLatin1String("dd"))
        style.Margin[PageStyle::Left] = style.Margin[PageStyle::Left].value_or(30);
    return style;
}
