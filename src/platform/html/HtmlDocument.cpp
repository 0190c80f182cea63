// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlDocument.h"

#include "platform/html/HtmlMarkup.h"
#include "platform/html/HtmlNodes.h"
#include "platform/html/HtmlRoundTrip.h"
#include "platform/html/InnerText.h"

QString HtmlElement::TagName() const
{
    if (IsNull())
        return {};
    return Node_->Namespace == HtmlNamespace::Html ? Node_->Name.toUpper() : Node_->Name;
}

QString HtmlElement::InnerHTML() const
{
    QString markup;
    AppendInnerHTML(&markup);
    return markup;
}

void HtmlElement::AppendInnerHTML(QString* markup) const
{
    if (!IsNull())
        HtmlMarkup::AppendWithin(Node_, markup);
}

void HtmlElement::SetInnerHTML(const QString& html)
{
    if (IsNull())
        return;
    HtmlNodes::RemoveChildren(Node_);
    Insert(html, Node_, Node_, nullptr);
}

QString HtmlElement::InnerText() const
{
    return IsNull() ? QString() : InnerText::Of(Node_, InnerText::Extent::Whole);
}

QString HtmlElement::FirstLine() const
{
    return IsNull() ? QString() : InnerText::Of(Node_, InnerText::Extent::FirstLine);
}

std::vector<HtmlElement> HtmlElement::All() const
{
    std::vector<HtmlElement> elements;
    if (IsNull())
        return elements;
    for (const HtmlNode* node = NextNode(Node_, Node_, !Node_->Has(HtmlTrait::Template)); node != nullptr;
         node = NextNode(node, Node_, !node->Has(HtmlTrait::Template))) {
        if (node->IsElement())
            elements.push_back(HtmlElement(Document_, const_cast<HtmlNode*>(node)));
    }
    return elements;
}

void HtmlElement::InsertAdjacentHTML(const QString& position, const QString& html)
{
    if (IsNull())
        return;
    const auto is = [&position](QLatin1String word) { return position.compare(word, Qt::CaseInsensitive) == 0; };
    const bool isWithin = is(QLatin1String("afterBegin")) || is(QLatin1String("beforeEnd"));
    const bool isBeside = is(QLatin1String("beforeBegin")) || is(QLatin1String("afterEnd"));
    HtmlNode* parent = isWithin ? Node_ : Node_->Parent;
    if ((!isWithin && !isBeside) || parent == nullptr || !parent->IsElement())
        return;
    // As content of the html element itself, the fragment would bring a second head and body.
    HtmlNode* body = parent->Is(QLatin1String("html")) ? Document_->Nodes_->Body() : nullptr;
    HtmlNode* before = is(QLatin1String("afterBegin"))    ? Node_->First
                       : is(QLatin1String("beforeBegin")) ? Node_
                       : is(QLatin1String("afterEnd"))    ? Node_->Next
                                                          : nullptr;
    Insert(html, body != nullptr ? body : parent, parent, before);
}

void HtmlElement::AppendBodyOf(HtmlDocument&& other)
{
    const HtmlElement theirs = other.Body();
    if (IsNull() || theirs.IsNull())
        return;
    if (&other == Document_ || !Node_->Is(QLatin1String("body")) || !ParsesToItself(theirs.Node_)) {
        InsertAdjacentHTML(QStringLiteral("beforeEnd"), theirs.InnerHTML());
        return;
    }
    Document_->IsChanged_ = true;
    other.Written_.clear();
    auto nodes = std::exchange(other.Nodes_, std::make_unique<HtmlNodes>());
    Document_->Nodes_->Take(std::move(nodes), theirs.Node_, Node_);
}

void HtmlElement::Insert(const QString& html, HtmlNode* context, HtmlNode* parent, HtmlNode* before)
{
    Document_->IsChanged_ = true;
    if (!Document_->Nodes_->ParseFragment(html, context, parent, before))
        Document_->IsTextOnly_ = true;
}

HtmlDocument::HtmlDocument() : Nodes_(std::make_unique<HtmlNodes>()) {}

HtmlDocument::~HtmlDocument() = default;

HtmlNodes& HtmlDocument::Nodes()
{
    if (!IsParsed_) {
        IsParsed_ = true;
        IsTextOnly_ = !Nodes_->ParsePage(Written_);
    }
    return *Nodes_;
}

HtmlElement HtmlDocument::Body()
{
    return HtmlElement(this, Nodes().Body());
}

HtmlElement HtmlDocument::DocumentElement()
{
    return HtmlElement(this, Nodes().Html());
}

HtmlNode* HtmlDocument::TitleNode()
{
    HtmlNode* document = Nodes().Document();
    for (const HtmlNode* node = document; node != nullptr;
         node = NextNode(node, document, !node->Has(HtmlTrait::Template))) {
        if (node->Is(QLatin1String("title")))
            return const_cast<HtmlNode*>(node);
    }
    return nullptr;
}

QString HtmlDocument::Title()
{
    const HtmlNode* title = TitleNode();
    return title == nullptr ? QString() : InnerText::Of(title, InnerText::Extent::Whole).simplified();
}

void HtmlDocument::SetTitle(const QString& title)
{
    HtmlNode* node = TitleNode();
    if (node == nullptr && Nodes().Head() != nullptr)
        node = Nodes().MakeElement("title", Nodes().Head());
    if (node == nullptr)
        return;
    HtmlNodes::RemoveChildren(node);
    if (!title.isEmpty())
        Nodes().MakeText(title, node);
    IsChanged_ = true;
}

void HtmlDocument::Write(const QString& html)
{
    if (IsChanged_) {
        Body().InsertAdjacentHTML(QStringLiteral("beforeEnd"), html);
        return;
    }
    Written_ += html;
    IsParsed_ = false;
}

QString HtmlDocument::Html()
{
    QString markup;
    HtmlMarkup::AppendWithin(Nodes().Document(), &markup);
    return markup;
}

bool HtmlDocument::IsTextOnly()
{
    Nodes();
    return IsTextOnly_;
}
