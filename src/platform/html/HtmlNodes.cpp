// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlNodes.h"

#include "platform/html/HtmlElements.h"
#include "platform/html/HtmlImport.h"
#include "platform/html/TagScanner.h"

namespace
{
/// Short where that gives the same, otherwise as it stands. Words that are marked within a tag may make another page of
/// it, which may be too large where the true one is not.
template <typename Import>
bool IsImported(const QString& markup, Import import)
{
    ShortMarkup marked(markup, ShortMarkup::Runs::Marked);
    if (import(&marked))
        return true;
    if (!marked.HasMarks())
        return false;
    ShortMarkup kept(markup, ShortMarkup::Runs::Kept);
    return import(&kept);
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

/// All children of the holder, in their order.
void HtmlNodes::PutAll(HtmlNode* holder, HtmlNode* parent, HtmlNode* before)
{
    if (holder->First == nullptr)
        return;
    for (HtmlNode* node = holder->First; node != nullptr; node = node->Next)
        node->Parent = parent;
    HtmlNode* previous = before != nullptr ? before->Previous : parent->Last;
    holder->First->Previous = previous;
    holder->Last->Next = before;
    (previous != nullptr ? previous->Next : parent->First) = holder->First;
    (before != nullptr ? before->Previous : parent->Last) = holder->Last;
    holder->First = holder->Last = nullptr;
}

void HtmlNodes::Take(std::unique_ptr<HtmlNodes> others, HtmlNode* theirs, HtmlNode* parent)
{
    PutAll(theirs, parent, nullptr);
    Taken_.push_back(std::move(others));
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

/// Its body.
HtmlNode* HtmlNodes::MakeSkeleton()
{
    HtmlNode* html = MakeElement("html", Document_);
    MakeElement("head", html);
    return MakeElement("body", html);
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
    const HtmlPatience patience = TagScanner::PatienceWith(page);
    const auto import = [this, patience](ShortMarkup* markup) {
        RemoveChildren(Document_);
        const HtmlTree tree(markup->Utf8(), patience);
        return tree.Root() != nullptr && HtmlImport(this, markup).Page(tree.Root(), Document_);
    };
    if (IsImported(page, import))
        return true;
    RemoveChildren(Document_);
    PutText(page, MakeSkeleton(), nullptr);
    return false;
}

bool HtmlNodes::ParseFragment(const QString& fragment, const HtmlNode* context, HtmlNode* parent, HtmlNode* before)
{
    const HtmlPatience patience = TagScanner::PatienceWith(fragment);
    const auto import = [&](ShortMarkup* markup) {
        const HtmlTree tree(markup->Utf8(), context->Name.toUtf8(), context->Namespace, patience);
        return tree.Root() != nullptr && HtmlImport(this, markup).Children(tree.HtmlElementNode(), parent, before);
    };
    if (IsImported(fragment, import))
        return true;
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
    ShortMarkup whole(text, ShortMarkup::Runs::Kept);
    const HtmlTree tree(whole.Utf8(), "div", HtmlNamespace::Html);
    if (tree.Root() == nullptr || !HtmlImport(this, &whole).Children(tree.HtmlElementNode(), block, nullptr))
        MakeText(markup, block);
}
