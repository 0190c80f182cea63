#pragma once

#include "platform/html/HtmlNode.h"

/// A tree as markup, as HTML5 says ("Serializing HTML fragments").
namespace HtmlMarkup
{
/// What is within the node.
QString Within(const HtmlNode* node);
} // namespace HtmlMarkup
