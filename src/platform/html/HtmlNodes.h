// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/HtmlNode.h"

#include <deque>
#include <memory>
#include <vector>

/// Owns the nodes of one document and parses into them. A node stays until all go, whether it still stands in the tree
/// or not, so that no handle to one is ever stale.
class HtmlNodes
{
public:
    /// An empty page: html, head and body.
    HtmlNodes();
    HtmlNodes(const HtmlNodes&) = delete;
    HtmlNodes& operator=(const HtmlNodes&) = delete;

    HtmlNode* Document() { return Document_; }
    HtmlNode* Html();
    /// The body, or the frameset in its place.
    HtmlNode* Body();
    HtmlNode* Head();

    /// Makes this the page. False when the page had to become its text.
    bool ParsePage(const QString& page);
    /// Parses the fragment as content of context and puts it below parent, before that child or last. False when the
    /// fragment had to become its text.
    bool ParseFragment(const QString& fragment, const HtmlNode* context, HtmlNode* parent, HtmlNode* before);

    /// Puts what is within their node last below parent.
    void Take(std::unique_ptr<HtmlNodes> others, HtmlNode* theirs, HtmlNode* parent);

    /// Before that child of parent, or last. name: of an element of HTML.
    HtmlNode* MakeElement(const char* name, HtmlNode* parent, HtmlNode* before = nullptr);
    HtmlNode* MakeText(const QString& text, HtmlNode* parent);
    static void RemoveChildren(HtmlNode* parent);

private:
    HtmlNode* Make(HtmlNodeKind kind);
    static void PutAll(HtmlNode* holder, HtmlNode* parent, HtmlNode* before);
    static void Put(HtmlNode* node, HtmlNode* parent, HtmlNode* before);
    HtmlNode* MakeSkeleton();
    void PutText(const QString& markup, HtmlNode* parent, HtmlNode* before);
    static HtmlNode* ChildOf(HtmlNode* parent, QLatin1String name);

    std::deque<HtmlNode> Nodes_;
    std::vector<std::unique_ptr<HtmlNodes>> Taken_;
    HtmlNode* Document_ = nullptr;

    friend class HtmlImport;
};
