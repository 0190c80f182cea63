// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gumbo.h>

/// The nodes within a node of a parsed page; null for what can have none.
inline const GumboVector* ChildrenOf(const GumboNode* node)
{
    if (node->type == GUMBO_NODE_ELEMENT || node->type == GUMBO_NODE_TEMPLATE)
        return &node->v.element.children;
    return node->type == GUMBO_NODE_DOCUMENT ? &node->v.document.children : nullptr;
}
