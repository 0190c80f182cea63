// SPDX-License-Identifier: Apache-2.0
#include "platform/html/PageWriter.h"

#include "platform/html/Colours.h"
#include "platform/html/PageElements.h"
#include "platform/html/SafeLink.h"
#include "platform/html/StartTag.h"

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QUrl>

#include <algorithm>
#include <gumbo.h>

using namespace PageElements;

namespace
{
/// Beyond these, elements are left out and their content stays.
constexpr int DeepestElement = 100;
constexpr int DeepestQuote = 12;
constexpr int CaptionSpan = 50;
constexpr quint32 LinkColour = 0x0B57D0;
constexpr quint32 LinkColourOnDark = 0x9CC3FF;
constexpr double SmallestPoints = 6;
constexpr double LargestPoints = 48;
constexpr double ReadableContrast = 1.5;
/// Between the strongest and the weakest part of a colour that is more than a grey.
constexpr int LeastColour = 0x40;

bool IsGrey(quint32 colour)
{
    const auto [least, most] = std::minmax({(colour >> 16U) & 0xFFU, (colour >> 8U) & 0xFFU, colour & 0xFFU});
    return static_cast<int>(most - least) < LeastColour;
}
} // namespace

PageWriter::PageWriter(const SafeHtmlOptions& options, SafePage* page) : Options_(options), Page_(page) {}

bool PageWriter::IsFull() const
{
    return Options_.MaxCharacters > 0 && Page_->Html.size() >= Options_.MaxCharacters;
}

void PageWriter::Write(const GumboInternalNode* document)
{
    Frame frame;
    frame.Node = document;
    frame.Points = Options_.BasePoints;
    frame.IsBlock = true;
    Tables_.emplace(document, Options_.MaxCharacters);
    Stack_.append(frame);
    while (!Stack_.isEmpty()) {
        Frame& top = Stack_.last();
        const GumboVector& children =
            top.Node->type == GUMBO_NODE_DOCUMENT ? top.Node->v.document.children : top.Node->v.element.children;
        if (top.NextChild == children.length || IsFull()) {
            Page_->IsCutShort |= top.NextChild < children.length;
            Pop();
            continue;
        }
        WriteChild(static_cast<const GumboNode*>(children.data[top.NextChild++]));
    }
}

void PageWriter::WriteChild(const GumboInternalNode* node)
{
    switch (node->type) {
    case GUMBO_NODE_ELEMENT:
        WriteElement(node);
        break;
    case GUMBO_NODE_TEMPLATE:
        ++Page_->ActiveContent;
        break;
    case GUMBO_NODE_TEXT:
    case GUMBO_NODE_WHITESPACE:
    case GUMBO_NODE_CDATA:
        WriteText(node->v.text.text);
        break;
    default:
        break;
    }
}

void PageWriter::WriteText(const char* text)
{
    const Frame& top = Stack_.last();
    // Nothing stands between the cells of a table.
    if (top.IsTable || top.IsRow)
        return;
    QString shown = QString::fromUtf8(text);
    if (!top.KeepsBlanks && shown.size() > 1 && shown.trimmed().isEmpty() && !shown.contains(QChar::Nbsp))
        shown = QStringLiteral(" ");
    if (Options_.MaxCharacters > 0) {
        qsizetype left = std::max(Options_.MaxCharacters - Page_->Html.size(), qsizetype{0});
        if (shown.size() > left) {
            left -= left > 0 && shown.at(left - 1).isHighSurrogate() ? 1 : 0;
            shown.truncate(left);
            Page_->IsCutShort = true;
        }
    }
    Page_->Html += EscapedText(BreakLongWords(shown, &WordLength_));
}

void PageWriter::CountAttributes(const GumboInternalNode* node)
{
    const GumboVector& attributes = node->v.element.attributes;
    for (unsigned i = 0; i < attributes.length; ++i) {
        const auto* attribute = static_cast<const GumboAttribute*>(attributes.data[i]);
        const QByteArrayView name(attribute->name);
        if (name.startsWith("on") || name == "formaction" || name == "srcdoc")
            ++Page_->ActiveContent;
        else if (name == "background" || name == "poster" || name == "dynsrc" || name == "lowsrc" || name == "srcset")
            ++Page_->RemoteContent;
    }
}

/// Counts what goes with the element. True when it and all in it are left out.
bool PageWriter::IsWithheld(const GumboInternalNode* node, const QString& name)
{
    Page_->ActiveContent += IsActiveElement(name) ? 1 : 0;
    if (name == QLatin1String("meta") &&
        Attribute(node, "http-equiv").trimmed().compare(QLatin1String("refresh"), Qt::CaseInsensitive) == 0)
        ++Page_->ActiveContent;
    if (name == QLatin1String("audio") || name == QLatin1String("video") || name == QLatin1String("bgsound") ||
        (name == QLatin1String("link") && !Attribute(node, "href").isEmpty()))
        ++Page_->RemoteContent;
    if (name == QLatin1String("style")) {
        const GumboVector& children = node->v.element.children;
        for (unsigned i = 0; i < children.length; ++i) {
            const auto* child = static_cast<const GumboNode*>(children.data[i]);
            if (child->type == GUMBO_NODE_TEXT && NamesRemoteContent(QString::fromUtf8(child->v.text.text)))
                ++Page_->RemoteContent;
        }
    }
    // The page's head holds nothing to show, but what it holds is counted.
    return ElementOf(name).ElementRole == Role::Withheld && name != QLatin1String("head") &&
           name != QLatin1String("frameset");
}

void PageWriter::WriteElement(const GumboInternalNode* node)
{
    const QString name = NameOf(node);
    CountAttributes(node);
    if (IsWithheld(node, name))
        return;
    if (name == QLatin1String("img") || name == QLatin1String("image"))
        WriteImage(node);
    else if (name == QLatin1String("br"))
        Page_->Html += QStringLiteral("<br>");
    else if (name == QLatin1String("hr"))
        Page_->Html += QStringLiteral("<hr>");
    else if (name == QLatin1String("wbr"))
        Page_->Html += QChar(0x200B);
    else
        OpenElement(node, name);
}

void PageWriter::ApplyFontSize(const PageStyle& style, Frame* frame, StartTag* tag)
{
    const double before = frame->Points;
    if (style.FontPoints)
        frame->Points = *style.FontPoints;
    else if (style.FontTimes)
        frame->Points *= *style.FontTimes;
    // Factors multiply with the depth; a size of nothing hides, and one of thousands is a bomb.
    frame->Points = std::clamp(frame->Points, SmallestPoints, LargestPoints);
    if (!qFuzzyCompare(frame->Points, before))
        tag->AddStyle("font-size", QStringLiteral("%1pt").arg(frame->Points * Options_.Scale, 0, 'f', 1));
}

void PageWriter::ApplyColours(const PageStyle& style, const QString& name, Frame* frame, StartTag* tag)
{
    frame->HasUnknownGround |= style.HasRemoteContent && !style.Background;
    const bool isMark = Options_.MarkGround && style.Colour && name == QLatin1String("font");
    if (!Options_.KeepsColours) {
        if (isMark && !IsGrey(*style.Colour))
            tag->AddStyle("color", Colours::Text(Colours::Readable(*style.Colour, *Options_.MarkGround)));
        return;
    }
    if (style.Background) {
        frame->Ground = *style.Background;
        frame->HasUnknownGround = false;
        tag->AddStyle("background-color", Colours::Text(*style.Background));
    }
    if (isMark) {
        tag->AddStyle("color", Colours::Text(Colours::Readable(*style.Colour, frame->Ground)));
        return;
    }
    // Text for a picture's ground would not be seen on the plain one that is there instead.
    if (style.Colour &&
        (!frame->HasUnknownGround || Colours::Contrast(*style.Colour, frame->Ground) >= ReadableContrast))
        tag->AddStyle("color", Colours::Text(*style.Colour));
}

void PageWriter::ApplyStyle(const PageStyle& style, const QString& name, Frame* frame, StartTag* tag)
{
    ApplyFontSize(style, frame, tag);
    ApplyColours(style, name, frame, tag);
    if (style.Bold)
        tag->AddStyle("font-weight", *style.Bold ? QStringLiteral("bold") : QStringLiteral("normal"));
    if (style.Italic)
        tag->AddStyle("font-style", *style.Italic ? QStringLiteral("italic") : QStringLiteral("normal"));
    if (style.Underline || style.StrikeOut) {
        QStringList lines;
        if (style.Underline.value_or(false))
            lines.append(QStringLiteral("underline"));
        if (style.StrikeOut.value_or(false))
            lines.append(QStringLiteral("line-through"));
        tag->AddStyle("text-decoration", lines.isEmpty() ? QStringLiteral("none") : lines.join(u' '));
    }
    if (!style.FontFamily.isEmpty())
        tag->AddStyle("font-family", style.FontFamily);
    if (style.KeepsBlanks) {
        frame->KeepsBlanks = *style.KeepsBlanks;
        tag->AddStyle("white-space", *style.KeepsBlanks ? QStringLiteral("pre-wrap") : QStringLiteral("normal"));
    }
    if (style.IsHidden)
        tag->AddStyle("display", QStringLiteral("none"));
    if (!frame->IsBlock)
        return;
    if (style.RightToLeft)
        tag->Add("dir", QStringLiteral("rtl"));
    if (!style.Align.isEmpty() && name != QLatin1String("table"))
        tag->Add("align", style.Align);
    if (name == QLatin1String("table") || name == QLatin1String("td") || name == QLatin1String("th"))
        return;
    constexpr const char* sides[] = {"margin-top", "margin-right", "margin-bottom", "margin-left"};
    for (size_t side = 0; side < style.Margin.size(); ++side) {
        if (style.Margin[side])
            tag->AddStyle(sides[side], QStringLiteral("%1px").arg(*style.Margin[side]));
    }
}

void PageWriter::OpenLink(const GumboInternalNode* node, Frame* frame, StartTag* tag)
{
    if (gumbo_get_attribute(&node->v.element.attributes, "href") == nullptr)
        return tag->SetName(QStringLiteral("span"));
    const SafeLink link = ReadLink(Attribute(node, "href"));
    Page_->ActiveContent += link.Kind == LinkKind::Active ? 1 : 0;
    Page_->UnsafeLinks += link.Kind == LinkKind::Unknown ? 1 : 0;
    if (link.Kind != LinkKind::Safe)
        return tag->SetName(QStringLiteral("span"));
    if (Options_.KeepsColours && Colours::Contrast(LinkColour, frame->Ground) < 3)
        tag->AddStyle("color", Colours::Text(LinkColourOnDark));
    tag->Add("href", link.Address);
}

/// An element that is not written itself: html, body, tbody, noscript, unknown ones.
void PageWriter::GoThrough(const GumboInternalNode* node, const QString& name)
{
    Frame frame = InheritedFrame(node);
    const PageStyle style = CountedStyle(node, name);
    if (name != QLatin1String("body") || frame.Depth > 0) {
        Stack_.append(frame);
        return;
    }
    StartTag tag;
    tag.SetName(name);
    frame.Depth = 1;
    frame.IsBlock = false;
    ApplyStyle(style, name, &frame, &tag);
    frame.IsBlock = true;
    Push(frame, tag);
}

/// A table's caption, as a row of its own.
void PageWriter::OpenCaption(const GumboInternalNode* node)
{
    Frame frame = InheritedFrame(node);
    frame.IsTable = false;
    ++frame.Depth;
    StartTag tag;
    tag.SetName(QStringLiteral("td"));
    tag.Add("colspan", QString::number(CaptionSpan));
    Page_->Html += QStringLiteral("<tr>");
    Push(frame, tag);
    Stack_.last().EndTag += QStringLiteral("</tr>");
}

PageWriter::Frame PageWriter::InheritedFrame(const GumboInternalNode* node) const
{
    Frame frame = Stack_.last();
    frame.Node = node;
    frame.NextChild = 0;
    frame.EndTag.clear();
    return frame;
}

PageStyle PageWriter::CountedStyle(const GumboInternalNode* node, const QString& name)
{
    PageStyle style = StyleOf(node, name, Options_.BasePoints);
    Page_->RemoteContent += style.HasRemoteContent ? 1 : 0;
    Page_->ActiveContent += style.HasActiveContent ? 1 : 0;
    return style;
}

/// A paragraph that a browser would read as one again: old pages may have a table in theirs.
bool PageWriter::IsParagraph(const GumboInternalNode* node, const QString& name)
{
    if (name != QLatin1String("p"))
        return false;
    const GumboVector& children = node->v.element.children;
    for (unsigned i = 0; i < children.length; ++i) {
        const auto* child = static_cast<const GumboNode*>(children.data[i]);
        if (child->type != GUMBO_NODE_ELEMENT)
            continue;
        const Role role = ElementOf(NameOf(child)).ElementRole;
        if (role == Role::Block || role == Role::Table)
            return false;
    }
    return true;
}

void PageWriter::OpenElement(const GumboInternalNode* node, const QString& name)
{
    const Frame& parent = Stack_.last();
    const Element element = ElementOf(name);
    Role role = element.ElementRole;
    if (role == Role::Through || role == Role::Withheld)
        return GoThrough(node, name);
    // Only rows stand in tables and only cells in rows. Where nesting went too far, all of them are blocks.
    if (parent.IsTable && name == QLatin1String("caption"))
        return OpenCaption(node);
    if (parent.IsTable ? role != Role::Row : parent.IsRow && role != Role::Cell)
        return;
    const bool isTooDeep = parent.Depth >= DeepestElement && role != Role::Row && role != Role::Cell;
    const bool isStray = (role == Role::Row && !parent.IsTable) || (role == Role::Cell && !parent.IsRow);
    if (isStray || (role == Role::Table && (isTooDeep || !Tables_->Affords(node, parent.Tables))))
        role = Role::Block;

    Frame frame = InheritedFrame(node);
    PageStyle style = CountedStyle(node, name);
    frame.IsTable = frame.IsRow = false;
    if (isTooDeep) {
        if (role == Role::Block)
            Page_->Html += QStringLiteral("<br>");
        Stack_.append(frame);
        return;
    }
    frame.IsBlock = role != Role::Inline;
    ++frame.Depth;
    StartTag tag;
    tag.SetName(role == element.ElementRole ? QLatin1String(element.Written) : QLatin1String("div"));
    if (Options_.KeepsParagraphs && (name == QLatin1String("font") || IsParagraph(node, name)))
        tag.SetName(name);
    if (name == QLatin1String("a"))
        OpenLink(node, &frame, &tag);
    else if (role == Role::Table)
        OpenTable(node, &frame, &tag);
    else if (role == Role::Cell && !OpenCell(node, &tag))
        return;
    frame.IsRow = role == Role::Row;
    frame.Columns = 0;
    OpenIndented(node, name, &style, &frame, &tag);
    ApplyStyle(style, name, &frame, &tag);
    Push(frame, tag);
    if (name == QLatin1String("q")) {
        Page_->Html += QChar(0x201C);
        Stack_.last().EndTag.prepend(QChar(0x201D));
    }
}

void PageWriter::OpenIndented(const GumboInternalNode* node, const QString& name, PageStyle* style, Frame* frame,
                              StartTag* tag)
{
    if (name == QLatin1String("blockquote")) {
        const bool isIndented = ++frame->Quotes <= DeepestQuote;
        tag->SetName(QStringLiteral("div"));
        style->Margin[PageStyle::Left] = isIndented ? style->Margin[PageStyle::Left].value_or(16) : 0;
        style->Margin[PageStyle::Right].reset();
    } else if (name == QLatin1String("ol") || name == QLatin1String("ul")) {
        if (!style->ListStyle.isEmpty())
            tag->AddStyle("list-style-type", style->ListStyle);
        if (const int start = WholeNumber(Attribute(node, "start"), 0, 1000000, 1); start != 1)
            tag->Add("start", QString::number(start));
    } else if (name == QLatin1String("li")) {
        style->Margin[PageStyle::Left].reset();
    }
}

void PageWriter::Push(Frame frame, const StartTag& tag)
{
    Page_->Html += tag.Text();
    frame.EndTag = QStringLiteral("</%1>").arg(tag.Name());
    Stack_.append(frame);
}

void PageWriter::Pop()
{
    Page_->Html += Stack_.last().EndTag;
    Stack_.removeLast();
}
