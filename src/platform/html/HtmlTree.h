// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

#include <memory>

struct GumboInternalNode;

enum class HtmlNamespace : quint8
{
    Html,
    Svg,
    MathML
};

/// How much processor time a page may take. One that looks as if it were built to be too much work gets little time,
/// and its tree if that is enough.
enum class HtmlPatience
{
    Usual,
    Little
};

/// The tree that the HTML5 algorithm makes of a page. The algorithm has inputs that cost time or memory out of all
/// proportion to their size, so it is bounded in both, and so is the depth of what it makes: an input that needs more
/// has no tree. The depth is that of the tree itself; what the page's text looks like decides nothing.
///
/// A value of the function that walks it; the nodes live as long as it does and point into its copy of the page.
class HtmlTree
{
public:
    /// page: UTF-8.
    explicit HtmlTree(const QByteArray& page, HtmlPatience patience = HtmlPatience::Usual);
    /// A fragment as it is parsed within an element of that name; its nodes are the children of the root's html
    /// element.
    HtmlTree(const QByteArray& fragment, const QByteArray& contextName, HtmlNamespace contextNamespace,
             HtmlPatience patience = HtmlPatience::Usual);
    ~HtmlTree();
    HtmlTree(const HtmlTree&) = delete;
    HtmlTree& operator=(const HtmlTree&) = delete;

    /// How deep elements nest at most, not counting those that stand within others of their kind only (cells, rows,
    /// paragraphs, items). Far more than people and their programs write.
    static constexpr int DeepestPage = 1000;

    /// The document node; null when the page needed more time or memory than it gets, or is deeper.
    const GumboInternalNode* Root() const { return Root_; }
    /// The root's html element; null where Root is.
    const GumboInternalNode* HtmlElementNode() const;

private:
    class Arena;
    QByteArray Page_;
    std::unique_ptr<Arena> Arena_;
    const GumboInternalNode* Root_ = nullptr;
};
