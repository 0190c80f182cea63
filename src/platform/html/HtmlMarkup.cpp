// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlMarkup.h"

namespace
{
enum class Within
{
    Text,
    Attribute
};

QLatin1String Escape(char16_t character, Within place)
{
    switch (character) {
    case u'&':
        return QLatin1String("&amp;");
    case u'<':
        return QLatin1String("&lt;");
    case u'>':
        return QLatin1String("&gt;");
    case 0xA0:
        return QLatin1String("&nbsp;");
    case u'"':
        return place == Within::Attribute ? QLatin1String("&quot;") : QLatin1String();
    default:
        return {};
    }
}

void AppendEscaped(QStringView text, Within place, QString* markup)
{
    qsizetype copied = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t character = text[i].unicode();
        if (character > u'>' && character != 0xA0)
            continue;
        const QLatin1String escape = Escape(character, place);
        if (escape.isEmpty())
            continue;
        *markup += text.sliced(copied, i - copied);
        *markup += escape;
        copied = i + 1;
    }
    *markup += text.sliced(copied);
}

void AppendStartTag(const HtmlNode* node, QString* markup)
{
    *markup += u'<';
    *markup += node->Name;
    for (const HtmlAttribute& attribute : node->Attributes) {
        *markup += u' ';
        *markup += attribute.Name;
        *markup += QLatin1String("=\"");
        AppendEscaped(attribute.Value, Within::Attribute, markup);
        *markup += u'"';
    }
    *markup += u'>';
    const HtmlNode* first = node->First;
    // Otherwise the first line end would be lost when this is parsed.
    if (node->Has(HtmlTrait::DropsFirstLine) && first != nullptr && first->Kind == HtmlNodeKind::Text &&
        first->Text.startsWith(u'\n'))
        *markup += u'\n';
}

void AppendStart(const HtmlNode* node, QString* markup)
{
    switch (node->Kind) {
    case HtmlNodeKind::Element:
        AppendStartTag(node, markup);
        break;
    case HtmlNodeKind::Text:
        if (node->Parent != nullptr && node->Parent->Has(HtmlTrait::RawText))
            *markup += node->Text;
        else
            AppendEscaped(node->Text, Within::Text, markup);
        break;
    case HtmlNodeKind::Comment:
        *markup += QLatin1String("<!--");
        *markup += node->Text;
        *markup += QLatin1String("-->");
        break;
    case HtmlNodeKind::DocumentType:
        *markup += QLatin1String("<!DOCTYPE ");
        *markup += node->Name;
        *markup += node->Text;
        *markup += u'>';
        break;
    case HtmlNodeKind::Document:
        break;
    }
}

void AppendEnd(const HtmlNode* node, QString* markup)
{
    if (!node->IsElement() || node->Has(HtmlTrait::Void))
        return;
    *markup += QLatin1String("</");
    *markup += node->Name;
    *markup += u'>';
}
/// Of what is within the node, before characters are escaped.
qsizetype SizeWithin(const HtmlNode* top)
{
    constexpr qsizetype SizeOfBrackets = 5;
    qsizetype size = 0;
    for (const HtmlNode* node = NextNode(top, top); node != nullptr; node = NextNode(node, top)) {
        size += node->Text.size() + 2 * node->Name.size() + SizeOfBrackets;
        for (const HtmlAttribute& attribute : node->Attributes)
            size += attribute.Name.size() + attribute.Value.size() + SizeOfBrackets;
    }
    return size;
}
} // namespace

void HtmlMarkup::AppendWithin(const HtmlNode* node, QString* markup)
{
    if (node->Has(HtmlTrait::Void))
        return;
    markup->reserve(markup->size() + SizeWithin(node));
    const HtmlNode* at = node->First;
    while (at != nullptr) {
        AppendStart(at, markup);
        if (at->First != nullptr && !at->Has(HtmlTrait::Void)) {
            at = at->First;
            continue;
        }
        AppendEnd(at, markup);
        while (at->Next == nullptr && at->Parent != node) {
            at = at->Parent;
            AppendEnd(at, markup);
        }
        at = at->Next;
    }
}
