// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/StyleReader.h"

#include <QString>

struct GumboInternalNode;

/// The elements of a page and how each is shown.
namespace PageElements
{
/// What the writer does with an element.
enum class Role
{
    Block,
    Inline,
    Table,
    Row,
    Cell,
    Through, ///< The element goes, its content stays.
    Withheld ///< It goes with its content.
};

struct Element
{
    Role ElementRole;
    const char* Written; ///< The name of the element that is written; blocks are div.
};

/// Elements that are not known are gone through.
Element ElementOf(const QString& name);
/// Whether it is there to run something or to send something off.
bool IsActiveElement(const QString& name);

/// In lower case; "svg" and "math" for every element within those.
QString NameOf(const GumboInternalNode* node);
/// Empty when it is absent.
QString Attribute(const GumboInternalNode* node, const char* name);
/// The whole number in a text, brought within the limits; otherwise when it is none.
int WholeNumber(const QString& text, int smallest, int largest, int otherwise);
/// How many columns the cells of a row may take together by spanning; a table costs time and memory for each column in
/// each of its rows.
constexpr int MostColumns = 100;
/// What a cell's colspan or rowspan says, brought within what pages are laid out with; 1 where it says nothing.
int SpanOf(const GumboInternalNode* cell, const char* attribute);
/// The look of an element: by what it is, by its attributes and by its style attribute. basePoints: the size of text
/// that gives none.
PageStyle StyleOf(const GumboInternalNode* node, const QString& name, double basePoints);
} // namespace PageElements
