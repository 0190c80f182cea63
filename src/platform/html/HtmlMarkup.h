// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/HtmlNode.h"

/// A tree as markup, as HTML5 says ("Serializing HTML fragments").
namespace HtmlMarkup
{
/// What is within the node, behind what the markup holds already.
void AppendWithin(const HtmlNode* node, QString* markup);
} // namespace HtmlMarkup
