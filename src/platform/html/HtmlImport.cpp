// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlImport.h"

#include "platform/html/GumboChildren.h"
#include "platform/html/HtmlElements.h"

#include <gumbo.h>

namespace
{
constexpr qsizetype WeightOfNode = 8;
constexpr qsizetype SmallestLimit = 1'000'000;
constexpr qsizetype LargestGrowth = 16;

/// How far the children of one node have been taken over.
struct Frame
{
    const GumboVector* Children;
    unsigned Next;
    HtmlNode* Target;
};

bool IsText(const GumboNode* node)
{
    return node->type == GUMBO_NODE_TEXT || node->type == GUMBO_NODE_WHITESPACE || node->type == GUMBO_NODE_CDATA;
}

/// The name as the page gives it, for elements that the parser has no number for.
QString WrittenName(const GumboStringPiece& tag)
{
    QString name = QString::fromUtf8(tag.data, static_cast<qsizetype>(tag.length));
    for (QChar& character : name) {
        if (character >= u'A' && character <= u'Z')
            character = QChar(character.unicode() + (u'a' - u'A'));
        else if (character.isNull())
            character = QChar::ReplacementCharacter;
    }
    return name;
}

QLatin1String PrefixOf(GumboAttributeNamespaceEnum space, const char* name)
{
    switch (space) {
    case GUMBO_ATTR_NAMESPACE_XLINK:
        return QLatin1String("xlink:");
    case GUMBO_ATTR_NAMESPACE_XML:
        return QLatin1String("xml:");
    case GUMBO_ATTR_NAMESPACE_XMLNS:
        return qstrcmp(name, "xmlns") == 0 ? QLatin1String() : QLatin1String("xmlns:");
    default:
        return {};
    }
}

QString Quoted(const char* identifier)
{
    const QString text = QString::fromUtf8(identifier);
    const QChar quote = text.contains(u'"') ? u'\'' : u'"';
    return quote + text + quote;
}
} // namespace

HtmlImport::HtmlImport(HtmlNodes* nodes, ShortMarkup* markup)
    : Nodes_(nodes), Markup_(markup), Left_(SmallestLimit + LargestGrowth * markup->Size())
{
}

bool HtmlImport::Children(const GumboInternalNode* source, HtmlNode* parent, HtmlNode* before)
{
    const std::size_t standing = Nodes_->Nodes_.size();
    HtmlNode holder;
    if (!Walk(source, &holder) || !Markup_->IsComplete()) {
        Nodes_->Nodes_.resize(standing);
        return false;
    }
    HtmlNodes::PutAll(&holder, parent, before);
    return true;
}

bool HtmlImport::Page(const GumboInternalNode* source, HtmlNode* document)
{
    SetDocumentType(source, document);
    return Children(source, document, nullptr);
}

bool HtmlImport::Walk(const GumboInternalNode* source, HtmlNode* target)
{
    std::vector<Frame> stack{{ChildrenOf(source), 0, target}};
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.Next == frame.Children->length) {
            stack.pop_back();
            continue;
        }
        const auto* child = static_cast<const GumboNode*>(frame.Children->data[frame.Next++]);
        if (JoinsText(child, frame.Target->Last))
            continue;
        HtmlNode* node = Node(child);
        HtmlNodes::Put(node, frame.Target, nullptr);
        if (Left_ < 0)
            return false;
        const GumboVector* children = ChildrenOf(child);
        if (children != nullptr && children->length > 0)
            stack.push_back({children, 0, node});
    }
    return true;
}

/// Two texts side by side are one; the parser keeps those apart that it moved out of a table.
bool HtmlImport::JoinsText(const GumboInternalNode* source, HtmlNode* previous)
{
    if (previous == nullptr || previous->Kind != HtmlNodeKind::Text || !IsText(source))
        return false;
    const QString text = Markup_->Restored(source->v.text.text);
    previous->Text += text;
    Left_ -= text.size();
    return true;
}

HtmlNode* HtmlImport::Node(const GumboInternalNode* source)
{
    Left_ -= WeightOfNode;
    if (source->type == GUMBO_NODE_ELEMENT || source->type == GUMBO_NODE_TEMPLATE) {
        HtmlNode* node = Nodes_->Make(HtmlNodeKind::Element);
        SetElement(source, node);
        return node;
    }
    HtmlNode* node = Nodes_->Make(source->type == GUMBO_NODE_COMMENT ? HtmlNodeKind::Comment : HtmlNodeKind::Text);
    node->Text = Markup_->Restored(source->v.text.text);
    Left_ -= node->Text.size();
    return node;
}

void HtmlImport::SetElement(const GumboInternalNode* source, HtmlNode* node)
{
    const GumboElement& element = source->v.element;
    GumboStringPiece written = element.original_tag;
    if (written.data != nullptr && written.length > 0)
        gumbo_tag_from_original_text(&written);
    if (element.tag_namespace == GUMBO_NAMESPACE_HTML) {
        const bool isKnown = element.tag != GUMBO_TAG_UNKNOWN;
        node->Name = isKnown ? HtmlElements::NameOf(element.tag) : WrittenName(written);
        node->Traits = isKnown ? HtmlElements::TraitsOf(element.tag) : HtmlElements::TraitsOf(node->Name);
    } else {
        node->Namespace = element.tag_namespace == GUMBO_NAMESPACE_SVG ? HtmlNamespace::Svg : HtmlNamespace::MathML;
        const char* name = node->Namespace == HtmlNamespace::Svg ? gumbo_normalize_svg_tagname(&written) : nullptr;
        if (name != nullptr)
            node->Name = QString::fromLatin1(name);
        else
            node->Name = element.tag == GUMBO_TAG_UNKNOWN ? WrittenName(written) : HtmlElements::NameOf(element.tag);
        node->Traits = HtmlElements::ForeignTraitsOf(node->Name);
    }
    node->Attributes.reserve(element.attributes.length);
    for (unsigned i = 0; i < element.attributes.length; ++i) {
        const auto* attribute = static_cast<const GumboAttribute*>(element.attributes.data[i]);
        const QLatin1String prefix = PrefixOf(attribute->attr_namespace, attribute->name);
        node->Attributes.push_back({prefix + QString::fromUtf8(attribute->name), QString::fromUtf8(attribute->value)});
        Left_ -= WeightOfNode + node->Attributes.back().Name.size() + node->Attributes.back().Value.size();
    }
}

void HtmlImport::SetDocumentType(const GumboInternalNode* source, HtmlNode* document)
{
    const GumboDocument& page = source->v.document;
    if (!page.has_doctype)
        return;
    HtmlNode* type = Nodes_->Make(HtmlNodeKind::DocumentType);
    type->Name = QString::fromUtf8(page.name);
    const bool hasPublic = page.public_identifier != nullptr && *page.public_identifier != '\0';
    const bool hasSystem = page.system_identifier != nullptr && *page.system_identifier != '\0';
    if (hasPublic)
        type->Text = QStringLiteral(" PUBLIC ") + Quoted(page.public_identifier);
    if (hasSystem)
        type->Text += (hasPublic ? QStringLiteral(" ") : QStringLiteral(" SYSTEM ")) + Quoted(page.system_identifier);
    HtmlNodes::Put(type, document, nullptr);
}
