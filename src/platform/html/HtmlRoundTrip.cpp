// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlRoundTrip.h"

#include <QHash>

#include <algorithm>
#include <vector>

namespace
{
/// Elements that the parser treats alike.
enum class ParsedAs
{
    Unknown,
    Body,
    Phrase,
    Link,
    Block,
    Paragraph,
    Heading,
    List,
    Item,
    Table,
    RowGroup,
    Row,
    Cell
};

struct Surroundings
{
    ParsedAs Parent = ParsedAs::Body;
    bool IsInParagraph = false;
    bool IsInLink = false;
    bool IsInHeading = false;
};

/// Deeper trees are left to the parser, which has its own opinion of depth.
constexpr std::size_t DeepestTree = 100;

const QHash<QString, ParsedAs>& ParsingByName()
{
    static const QHash<QString, ParsedAs> roles = [] {
        QHash<QString, ParsedAs> made;
        const auto add = [&made](ParsedAs role, std::initializer_list<const char*> names) {
            for (const char* name : names)
                made.insert(QLatin1String(name), role);
        };
        add(ParsedAs::Phrase,
            {"abbr", "b",     "big",  "br",   "cite", "code", "del",    "em",  "font", "i", "img", "ins", "kbd",
             "mark", "small", "samp", "span", "s",    "sub",  "strike", "sup", "tt",   "u", "var", "wbr", "strong"});
        add(ParsedAs::Link, {"a"});
        add(ParsedAs::Block, {"address", "article", "aside", "blockquote", "center", "div", "footer", "header", "hr",
                              "main", "nav", "section"});
        add(ParsedAs::Paragraph, {"p"});
        add(ParsedAs::Heading, {"h1", "h2", "h3", "h4", "h5", "h6"});
        add(ParsedAs::List, {"ol", "ul"});
        add(ParsedAs::Item, {"li"});
        add(ParsedAs::Table, {"table"});
        add(ParsedAs::RowGroup, {"tbody", "thead", "tfoot"});
        add(ParsedAs::Row, {"tr"});
        add(ParsedAs::Cell, {"td", "th"});
        return made;
    }();
    return roles;
}

ParsedAs RoleOf(const HtmlNode* node)
{
    return node->Namespace == HtmlNamespace::Html ? ParsingByName().value(node->Name, ParsedAs::Unknown)
                                                  : ParsedAs::Unknown;
}

/// What may only stand within its own kind of parent has that parent here; Unknown for all others.
ParsedAs ParentOf(ParsedAs role)
{
    switch (role) {
    case ParsedAs::Item:
        return ParsedAs::List;
    case ParsedAs::RowGroup:
        return ParsedAs::Table;
    case ParsedAs::Row:
        return ParsedAs::RowGroup;
    case ParsedAs::Cell:
        return ParsedAs::Row;
    default:
        return ParsedAs::Unknown;
    }
}

bool IsTablePart(ParsedAs role)
{
    return role == ParsedAs::Table || role == ParsedAs::RowGroup || role == ParsedAs::Row;
}

bool MayStand(ParsedAs role, const Surroundings& place)
{
    const ParsedAs parent = ParentOf(role);
    if (parent != ParsedAs::Unknown ? place.Parent != parent : IsTablePart(place.Parent))
        return false;
    switch (role) {
    case ParsedAs::Unknown:
        return false;
    case ParsedAs::Phrase:
        return true;
    case ParsedAs::Link:
        return !place.IsInLink;
    case ParsedAs::Heading:
        return !place.IsInParagraph && !place.IsInHeading;
    default:
        return !place.IsInParagraph;
    }
}

/// A reference gives characters that the parser reads as others, or not at all, where they stand by themselves: other
/// line ends, controls, those that are no characters, and the mark of the byte order.
bool IsReadAlike(QChar character)
{
    const char16_t unit = character.unicode();
    if (unit < u' ')
        return unit == u'\t' || unit == u'\n' || unit == u'\f';
    if (unit >= 0x7F && unit <= 0x9F)
        return false;
    // The second halves of those at the end of each plane, and of a few others.
    if (unit >= 0xD800)
        return unit != 0xDFFE && unit != 0xDFFF && unit != QChar::ByteOrderMark && unit < 0xFFFE &&
               (unit < 0xFDD0 || unit > 0xFDEF);
    return true;
}

bool IsReadAlike(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar character) { return IsReadAlike(character); });
}

bool IsBlank(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar character) {
        return character == u' ' || character == u'\n' || character == u'\t' || character == u'\f';
    });
}

bool IsKept(const HtmlNode* node, const Surroundings& place)
{
    switch (node->Kind) {
    case HtmlNodeKind::Element:
        return MayStand(RoleOf(node), place) && (node->First == nullptr || !node->Has(HtmlTrait::Void)) &&
               std::all_of(node->Attributes.begin(), node->Attributes.end(),
                           [](const HtmlAttribute& attribute) { return IsReadAlike(attribute.Value); });
    case HtmlNodeKind::Text:
        return IsReadAlike(node->Text) && (!IsTablePart(place.Parent) || IsBlank(node->Text));
    default:
        return false;
    }
}

Surroundings Within(const HtmlNode* node, const Surroundings& outer)
{
    const ParsedAs role = RoleOf(node);
    return {role, outer.IsInParagraph || role == ParsedAs::Paragraph, outer.IsInLink || role == ParsedAs::Link,
            outer.IsInHeading || role == ParsedAs::Heading};
}
} // namespace

bool ParsesToItself(const HtmlNode* body)
{
    if (!body->Is(QLatin1String("body")))
        return false;
    std::vector<Surroundings> places{Surroundings()};
    const HtmlNode* node = body->First;
    while (node != nullptr) {
        if (!IsKept(node, places.back()) || places.size() > DeepestTree)
            return false;
        if (node->First != nullptr) {
            places.push_back(Within(node, places.back()));
            node = node->First;
            continue;
        }
        while (node->Next == nullptr && node->Parent != body) {
            node = node->Parent;
            places.pop_back();
        }
        node = node->Next;
    }
    return true;
}
