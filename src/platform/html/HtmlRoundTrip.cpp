// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlRoundTrip.h"

#include <QHash>

#include <algorithm>
#include <vector>

namespace
{
/// Elements that the parser treats alike.
enum class Role
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

struct Place
{
    Role Parent = Role::Body;
    bool IsInParagraph = false;
    bool IsInLink = false;
    bool IsInHeading = false;
};

/// Deeper trees are left to the parser, which has its own opinion of depth.
constexpr std::size_t DeepestTree = 100;

const QHash<QString, Role>& Roles()
{
    static const QHash<QString, Role> roles = [] {
        QHash<QString, Role> made;
        const auto add = [&made](Role role, std::initializer_list<const char*> names) {
            for (const char* name : names)
                made.insert(QLatin1String(name), role);
        };
        add(Role::Phrase,
            {"abbr", "b",     "big",  "br",   "cite", "code", "del",    "em",  "font", "i", "img", "ins", "kbd",
             "mark", "small", "samp", "span", "s",    "sub",  "strike", "sup", "tt",   "u", "var", "wbr", "strong"});
        add(Role::Link, {"a"});
        add(Role::Block, {"address", "article", "aside", "blockquote", "center", "div", "footer", "header", "hr",
                          "main", "nav", "section"});
        add(Role::Paragraph, {"p"});
        add(Role::Heading, {"h1", "h2", "h3", "h4", "h5", "h6"});
        add(Role::List, {"ol", "ul"});
        add(Role::Item, {"li"});
        add(Role::Table, {"table"});
        add(Role::RowGroup, {"tbody", "thead", "tfoot"});
        add(Role::Row, {"tr"});
        add(Role::Cell, {"td", "th"});
        return made;
    }();
    return roles;
}

Role RoleOf(const HtmlNode* node)
{
    return node->Namespace == HtmlNamespace::Html ? Roles().value(node->Name, Role::Unknown) : Role::Unknown;
}

/// What may only stand within its own kind of parent has that parent here; Unknown for all others.
Role ParentOf(Role role)
{
    switch (role) {
    case Role::Item:
        return Role::List;
    case Role::RowGroup:
        return Role::Table;
    case Role::Row:
        return Role::RowGroup;
    case Role::Cell:
        return Role::Row;
    default:
        return Role::Unknown;
    }
}

bool IsTablePart(Role role)
{
    return role == Role::Table || role == Role::RowGroup || role == Role::Row;
}

bool MayStand(Role role, const Place& place)
{
    const Role parent = ParentOf(role);
    if (parent != Role::Unknown ? place.Parent != parent : IsTablePart(place.Parent))
        return false;
    switch (role) {
    case Role::Unknown:
        return false;
    case Role::Phrase:
        return true;
    case Role::Link:
        return !place.IsInLink;
    case Role::Heading:
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

bool IsKept(const HtmlNode* node, const Place& place)
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

Place Within(const HtmlNode* node, const Place& outer)
{
    const Role role = RoleOf(node);
    return {role, outer.IsInParagraph || role == Role::Paragraph, outer.IsInLink || role == Role::Link,
            outer.IsInHeading || role == Role::Heading};
}
} // namespace

bool ParsesToItself(const HtmlNode* body)
{
    if (!body->Is(QLatin1String("body")))
        return false;
    std::vector<Place> places{Place()};
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
