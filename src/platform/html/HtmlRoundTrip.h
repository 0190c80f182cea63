// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/HtmlNode.h"

/// Whether the nodes within a body are certain to come back as they are when their markup is parsed as its content.
/// Most trees do. Some do not: links within links, blocks within paragraphs, text between the rows of a table.
///
/// Says no to what it does not know, which costs a parse and nothing else.
bool ParsesToItself(const HtmlNode* body);
