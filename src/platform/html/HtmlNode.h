// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/HtmlTree.h"

#include <QFlags>
#include <QString>

#include <vector>

/// What serialising and the text of a page need to know of an element. Elements of SVG and MathML have their own few.
enum class HtmlTrait : quint32
{
    Void = 1 << 0,           ///< Has no end tag.
    RawText = 1 << 1,        ///< Its text is written as it stands.
    DropsFirstLine = 1 << 2, ///< The parser drops a line end that comes first in it.
    Hidden = 1 << 3,         ///< Not shown, nor is what it holds.
    Replaced = 1 << 4,       ///< Shown as a box of its own; what it holds is not.
    Box = 1 << 5,            ///< A box within a line that lays out its own content.
    Block = 1 << 6,
    Paragraph = 1 << 7, ///< A block with an empty line before and behind.
    Preserves = 1 << 8, ///< Blanks and line ends show as they stand.
    Table = 1 << 9,
    RowGroup = 1 << 10,
    Row = 1 << 11,
    Cell = 1 << 12,
    Break = 1 << 13,
    Choice = 1 << 14,      ///< Shows nothing but its options.
    ChoiceGroup = 1 << 15, ///< The same, within a choice.
    Option = 1 << 16,
    Template = 1 << 17, ///< What it holds is no part of the page.
    NeedsOpen = 1 << 18 ///< Hidden without the attribute "open".
};
Q_DECLARE_FLAGS(HtmlTraits, HtmlTrait)
Q_DECLARE_OPERATORS_FOR_FLAGS(HtmlTraits)

enum class HtmlNodeKind : quint8
{
    Document,
    DocumentType,
    Element,
    Text,
    Comment
};

struct HtmlAttribute
{
    QString Name; ///< With its prefix.
    QString Value;
};

/// One node of an HtmlDocument's tree. Owned by HtmlNodes.
struct HtmlNode
{
    bool IsElement() const { return Kind == HtmlNodeKind::Element; }
    bool Is(QLatin1String name) const { return IsElement() && Namespace == HtmlNamespace::Html && Name == name; }
    bool Has(HtmlTraits traits) const { return (Traits & traits) != 0; }
    bool HasAttribute(QLatin1String name) const;

    HtmlNodeKind Kind = HtmlNodeKind::Document;
    HtmlNamespace Namespace = HtmlNamespace::Html;
    HtmlTraits Traits;
    QString Name; ///< Of an element or a document type.
    QString Text; ///< Of a text or a comment; the identifiers of a document type, as they are written.
    std::vector<HtmlAttribute> Attributes;

    HtmlNode* Parent = nullptr;
    HtmlNode* Previous = nullptr;
    HtmlNode* Next = nullptr;
    HtmlNode* First = nullptr;
    HtmlNode* Last = nullptr;
};

/// The node that follows in document order and lies below top, without going below node where below is false; null at
/// the end.
const HtmlNode* NextNode(const HtmlNode* node, const HtmlNode* top, bool below = true);
