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

/// The tree that the HTML5 algorithm makes of a page. The algorithm has inputs that cost time or memory out of all
/// proportion to their size, so it is bounded in both: an input that needs more has no tree.
///
/// A value of the function that walks it; the nodes live as long as it does and point into its copy of the page.
class HtmlTree
{
public:
    /// page: UTF-8.
    explicit HtmlTree(const QByteArray& page);
    /// A fragment as it is parsed within an element of that name; its nodes are the children of the root's html
    /// element.
    HtmlTree(const QByteArray& fragment, const QByteArray& contextName, HtmlNamespace contextNamespace);
    ~HtmlTree();
    HtmlTree(const HtmlTree&) = delete;
    HtmlTree& operator=(const HtmlTree&) = delete;

    /// The document node; null when the page needed more time or memory than it gets.
    const GumboInternalNode* Root() const { return Root_; }
    /// The root's html element; null where Root is.
    const GumboInternalNode* HtmlElementNode() const;

private:
    class Arena;
    QByteArray Page_;
    std::unique_ptr<Arena> Arena_;
    const GumboInternalNode* Root_ = nullptr;
};
