#include "platform/html/HtmlNodes.h"

#include "platform/html/HtmlElements.h"
#include "platform/html/HtmlImport.h"
#include "platform/html/TagScanner.h"

namespace
{
/// Far more than people and their programs write; the parser's time grows with the square of it.
constexpr qsizetype DeepestPage = 1000;

bool IsTooDeep(const QString& markup)
{
    return markup.size() > DeepestPage && markup.count(u'<') > DeepestPage && TagScanner::Depth(markup) > DeepestPage;
}
} // namespace

bool HtmlNode::HasAttribute(QLatin1String name) const
{
    for (const HtmlAttribute& attribute : Attributes) {
        if (attribute.Name == name)
            return true;
    }
    return false;
}

const HtmlNode* NextNode(const HtmlNode* node, const HtmlNode* top, bool below)
{
    if (below && node->First != nullptr)
        return node->First;
    while (node != top && node->Next == nullptr)
        node = node->Parent;
    return node == top ? nullptr : node->Next;
}

HtmlNodes::HtmlNodes() : Document_(Make(HtmlNodeKind::Document))
{
    MakeSkeleton();
}

HtmlNode* HtmlNodes::Make(HtmlNodeKind kind)
{
    HtmlNode& node = Nodes_.emplace_back();
    node.Kind = kind;
    return &node;
}

HtmlNode* HtmlNodes::MakeElement(const char* name, HtmlNode* parent, HtmlNode* before)
{
    HtmlNode* node = Make(HtmlNodeKind::Element);
    const GumboTag tag = gumbo_tag_enum(name);
    node->Name = HtmlElements::NameOf(tag);
    node->Traits = HtmlElements::TraitsOf(tag);
    Put(node, parent, before);
    return node;
}

HtmlNode* HtmlNodes::MakeText(const QString& text, HtmlNode* parent)
{
    HtmlNode* node = Make(HtmlNodeKind::Text);
    node->Text = text;
    Put(node, parent, nullptr);
    return node;
}

void HtmlNodes::Put(HtmlNode* node, HtmlNode* parent, HtmlNode* before)
{
    node->Parent = parent;
    node->Next = before;
    node->Previous = before != nullptr ? before->Previous : parent->Last;
    (node->Previous != nullptr ? node->Previous->Next : parent->First) = node;
    (before != nullptr ? before->Previous : parent->Last) = node;
}

void HtmlNodes::RemoveChildren(HtmlNode* parent)
{
    for (HtmlNode* child = parent->First; child != nullptr;) {
        HtmlNode* next = child->Next;
        child->Parent = child->Previous = child->Next = nullptr;
        child = next;
    }
    parent->First = parent->Last = nullptr;
}

void HtmlNodes::MakeSkeleton()
{
    HtmlNode* html = MakeElement("html", Document_);
    MakeElement("head", html);
    MakeElement("body", html);
}

HtmlNode* HtmlNodes::ChildOf(HtmlNode* parent, QLatin1String name)
{
    HtmlNode* child = parent != nullptr ? parent->First : nullptr;
    while (child != nullptr && !child->Is(name))
        child = child->Next;
    return child;
}

HtmlNode* HtmlNodes::Html()
{
    return ChildOf(Document_, QLatin1String("html"));
}

HtmlNode* HtmlNodes::Head()
{
    return ChildOf(Html(), QLatin1String("head"));
}

HtmlNode* HtmlNodes::Body()
{
    HtmlNode* body = ChildOf(Html(), QLatin1String("body"));
    return body != nullptr ? body : ChildOf(Html(), QLatin1String("frameset"));
}

bool HtmlNodes::ParsePage(const QString& page)
{
    RemoveChildren(Document_);
    if (!IsTooDeep(page)) {
        const HtmlTree tree(page.toUtf8());
        if (tree.Root() != nullptr && HtmlImport(this, page.size()).Page(tree.Root(), Document_))
            return true;
    }
    RemoveChildren(Document_);
    MakeSkeleton();
    PutText(page, Body(), nullptr);
    return false;
}

bool HtmlNodes::ParseFragment(const QString& fragment, const HtmlNode* context, HtmlNode* parent, HtmlNode* before)
{
    if (!IsTooDeep(fragment)) {
        const HtmlTree tree(fragment.toUtf8(), context->Name.toUtf8(), context->Namespace);
        if (tree.Root() != nullptr &&
            HtmlImport(this, fragment.size()).Children(tree.HtmlElementNode(), parent, before))
            return true;
    }
    if (parent->Is(QLatin1String("html"))) {
        MakeElement("head", parent);
        parent = MakeElement("body", parent);
        before = nullptr;
    }
    PutText(fragment, parent, before);
    return false;
}

/// What is too costly to parse still shows what it says.
void HtmlNodes::PutText(const QString& markup, HtmlNode* parent, HtmlNode* before)
{
    HtmlNode* block = MakeElement("div", parent, before);
    block->Attributes.push_back({QStringLiteral("style"), QStringLiteral("white-space: pre-wrap")});
    // The text has no tags left, so that parsing it resolves its entities and no more.
    const QString text = TagScanner::TextOf(markup);
    const HtmlTree tree(text.toUtf8(), "div", HtmlNamespace::Html);
    if (tree.Root() == nullptr || !HtmlImport(this, text.size()).Children(tree.HtmlElementNode(), block, nullptr))
        MakeText(markup, block);
}
