// SPDX-License-Identifier: Apache-2.0
#include "platform/html/Colours.h"
#include "platform/html/PageElements.h"
#include "platform/html/PageWriter.h"
#include "platform/html/StartTag.h"

#include <gumbo.h>

using namespace PageElements;

void PageWriter::OpenTable(const GumboInternalNode* node, Frame* frame, StartTag* tag)
{
    const PageStyle style = ReadStyle(Attribute(node, "style"));
    const int border = style.BorderWidth.value_or(WholeNumber(Attribute(node, "border"), 0, 8, 0));
    frame->IsTable = true;
    ++frame->Tables;
    const QString width = style.Width.isEmpty() ? ReadWidth(Attribute(node, "width")) : style.Width;
    if (!width.isEmpty())
        tag->Add("width", width);
    const QString align = Attribute(node, "align").trimmed().toLower();
    if (align == QLatin1String("center"))
        tag->Add("align", align);
    tag->Add("cellspacing", QString::number(WholeNumber(Attribute(node, "cellspacing"), 0, 20, border > 0 ? 0 : 1)));
    tag->Add("cellpadding", QString::number(WholeNumber(Attribute(node, "cellpadding"), 0, 30, border > 0 ? 3 : 1)));
    tag->Add("border", QString::number(border));
    if (border > 0) {
        const quint32 grey = 0xB8BCC4;
        tag->AddStyle("border-collapse", QStringLiteral("collapse"));
        tag->AddStyle("border-style", QStringLiteral("solid"));
        tag->AddStyle("border-color", Colours::Text(Options_.KeepsColours ? style.BorderColour.value_or(grey) : grey));
    }
}

/// False when the row has no room for the cell.
bool PageWriter::OpenCell(const GumboInternalNode* node, StartTag* tag)
{
    Frame& row = Stack_.last();
    const int span = SpanOf(node, "colspan");
    if (row.Columns + span > MostColumns) {
        Page_->IsCutShort = true;
        return false;
    }
    row.Columns += span;
    if (span > 1)
        tag->Add("colspan", QString::number(span));
    if (const int rows = SpanOf(node, "rowspan"); rows > 1)
        tag->Add("rowspan", QString::number(rows));
    const PageStyle style = ReadStyle(Attribute(node, "style"));
    const QString width = style.Width.isEmpty() ? ReadWidth(Attribute(node, "width")) : style.Width;
    if (!width.isEmpty())
        tag->Add("width", width);
    const QString above = style.VerticalAlign.isEmpty() ? Attribute(node, "valign").toLower() : style.VerticalAlign;
    if (above == QLatin1String("top") || above == QLatin1String("middle") || above == QLatin1String("bottom"))
        tag->Add("valign", above);
    constexpr const char* sides[] = {"padding-top", "padding-right", "padding-bottom", "padding-left"};
    for (size_t side = 0; side < style.Padding.size(); ++side) {
        if (style.Padding[side])
            tag->AddStyle(sides[side], QStringLiteral("%1px").arg(*style.Padding[side]));
    }
    if (style.BorderWidth.value_or(0) > 0 && style.BorderColour && Options_.KeepsColours)
        tag->AddStyle("border",
                      QStringLiteral("%1px solid %2").arg(*style.BorderWidth).arg(Colours::Text(*style.BorderColour)));
    return true;
}
