// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/HtmlNode.h"

/// The text of a tree as a reader sees it (HTML5, "innerText"), by what the elements are; style sheets do not count.
namespace InnerText
{
enum class Extent
{
    Whole,
    FirstLine ///< Up to the first line end of the text and no further.
};

QString Of(const HtmlNode* element, Extent extent);
} // namespace InnerText
