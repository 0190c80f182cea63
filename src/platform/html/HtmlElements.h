// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/HtmlNode.h"

#include <gumbo.h>

/// The elements of HTML by the parser's numbers.
namespace HtmlElements
{
/// In lower case; empty for GUMBO_TAG_UNKNOWN.
const QString& NameOf(GumboTag tag);
HtmlTraits TraitsOf(GumboTag tag);
/// Of an element of HTML that the parser has no number for.
HtmlTraits TraitsOf(const QString& name);
/// Of an element of SVG or MathML.
HtmlTraits ForeignTraitsOf(const QString& name);
} // namespace HtmlElements
