// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/HtmlNodes.h"
#include "platform/html/ShortMarkup.h"

/// Takes the parser's tree over into the nodes of a document.
class HtmlImport
{
public:
    /// markup: what the tree was made of. What comes in may be larger than it by a fixed factor: the algorithm repeats
    /// open formatting in every paragraph, so that a short page can be made to have millions of nodes.
    HtmlImport(HtmlNodes* nodes, ShortMarkup* markup);

    /// Below parent, before that child or last. False, with nothing put in, when it is too large or the markup has not
    /// come back complete.
    bool Children(const GumboInternalNode* source, HtmlNode* parent, HtmlNode* before);
    /// The whole page with its document type, below an empty document node.
    bool Page(const GumboInternalNode* source, HtmlNode* document);

private:
    bool Walk(const GumboInternalNode* source, HtmlNode* target);
    bool JoinsText(const GumboInternalNode* source, HtmlNode* previous);
    HtmlNode* Node(const GumboInternalNode* source);
    void SetElement(const GumboInternalNode* source, HtmlNode* node);
    void SetDocumentType(const GumboInternalNode* source, HtmlNode* document);

    HtmlNodes* Nodes_;
    ShortMarkup* Markup_;
    qsizetype Left_;
};
