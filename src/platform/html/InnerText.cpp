// SPDX-License-Identifier: Apache-2.0
#include "platform/html/InnerText.h"

namespace
{
bool IsBlank(QChar character)
{
    return character == u' ' || character == u'\n' || character == u'\t' || character == u'\r' || character == u'\f';
}

bool IsHidden(const HtmlNode* node)
{
    return node->Has(HtmlTrait::Hidden) || node->HasAttribute(QLatin1String("hidden")) ||
           (node->Has(HtmlTrait::NeedsOpen) && !node->HasAttribute(QLatin1String("open")));
}

/// Within a choice only options and their groups are shown.
bool IsShownIn(const HtmlNode* parent, const HtmlNode* node)
{
    if (parent->Has(HtmlTrait::Choice))
        return node->Has(HtmlTrait::Option | HtmlTrait::ChoiceGroup);
    return !parent->Has(HtmlTrait::ChoiceGroup) || node->Has(HtmlTrait::Option);
}

bool IsRendered(const HtmlNode* element)
{
    for (const HtmlNode* node = element; node != nullptr && node->IsElement(); node = node->Parent) {
        if (IsHidden(node) || (node != element && node->Has(HtmlTrait::Replaced)))
            return false;
    }
    return true;
}

bool PreservesBlanks(const HtmlNode* element)
{
    for (const HtmlNode* node = element; node != nullptr; node = node->Parent) {
        if (node->Has(HtmlTrait::Preserves))
            return true;
    }
    return false;
}

const HtmlNode* NextSibling(const HtmlNode* node, HtmlTraits traits)
{
    do
        node = node->Next;
    while (node != nullptr && !node->Has(traits));
    return node;
}

/// Whether another row of the same table follows. Looks no further than that row.
bool IsLastRow(const HtmlNode* row)
{
    if (NextSibling(row, HtmlTrait::Row) != nullptr)
        return false;
    const HtmlNode* group = row->Parent;
    if (group == nullptr || !group->Has(HtmlTrait::RowGroup))
        return group == nullptr || !group->Has(HtmlTrait::Table) || NextSibling(row, HtmlTrait::RowGroup) == nullptr;
    for (group = group->Next; group != nullptr; group = group->Next) {
        if (group->Has(HtmlTrait::Row))
            return false;
        if (group->Has(HtmlTrait::RowGroup) && group->First != nullptr &&
            (group->First->Has(HtmlTrait::Row) || NextSibling(group->First, HtmlTrait::Row) != nullptr))
            return false;
    }
    return true;
}

/// Puts the text together while the tree is walked.
class Collector
{
public:
    explicit Collector(InnerText::Extent extent) : Extent_(extent) {}

    const QString& Text() const { return Text_; }
    bool IsDone() const { return Extent_ == InnerText::Extent::FirstLine && HasLineEnd_; }

    void Add(const QString& text, bool preserves)
    {
        if (preserves)
            AddPreserved(text);
        else
            AddCollapsed(text);
    }
    void Enter(const HtmlNode* node)
    {
        if (node->Has(HtmlTrait::Replaced | HtmlTrait::Box))
            AddBox();
        if (node->Has(HtmlTrait::Box))
            IsLineStart_ = true;
        EnterOrLeaveBlock(node);
    }
    void Leave(const HtmlNode* node)
    {
        EnterOrLeaveBlock(node);
        if (node->Has(HtmlTrait::Box)) {
            HasBlank_ = false;
            IsLineStart_ = false;
        }
        if (node->Has(HtmlTrait::Cell) && NextSibling(node, HtmlTrait::Cell) != nullptr)
            Append(u"\t");
        if (node->Has(HtmlTrait::Row) && !IsLastRow(node))
            Append(u"\n");
        if (node->Has(HtmlTrait::Break)) {
            EndLine();
            Append(u"\n");
        }
    }

private:
    void EndLine()
    {
        HasBlank_ = false;
        IsLineStart_ = true;
    }
    void EnterOrLeaveBlock(const HtmlNode* node)
    {
        if (node->Has(HtmlTrait::Block | HtmlTrait::Cell | HtmlTrait::Row | HtmlTrait::RowGroup))
            EndLine();
        if (node->Has(HtmlTrait::Block))
            LineEnds_ = std::max(LineEnds_, node->Has(HtmlTrait::Paragraph) ? 2 : 1);
    }
    /// The blank before it stays, whatever follows.
    void AddBox()
    {
        AddPendingBlank();
        IsLineStart_ = false;
    }
    void AddPendingBlank()
    {
        if (HasBlank_)
            Append(u" ");
        HasBlank_ = false;
    }
    void AddCollapsed(QStringView text)
    {
        qsizetype position = 0;
        while (position < text.size() && !IsDone()) {
            if (IsBlank(text[position])) {
                HasBlank_ = !IsLineStart_;
                ++position;
                continue;
            }
            qsizetype end = position + 1;
            while (end < text.size() && !IsBlank(text[end]))
                ++end;
            AddPendingBlank();
            Append(text.sliced(position, end - position));
            IsLineStart_ = false;
            position = end;
        }
    }
    void AddPreserved(QStringView text)
    {
        if (text.isEmpty())
            return;
        if (!text.startsWith(u'\n'))
            AddPendingBlank();
        HasBlank_ = false;
        Append(text);
        IsLineStart_ = text.endsWith(u'\n');
    }
    void Append(QStringView text)
    {
        // None stand at the beginning.
        if (!Text_.isEmpty() && LineEnds_ > 0) {
            Text_ += QStringView(u"\n\n").first(LineEnds_);
            HasLineEnd_ = true;
        }
        LineEnds_ = 0;
        Text_ += text;
        HasLineEnd_ = HasLineEnd_ || (Extent_ == InnerText::Extent::FirstLine && text.contains(u'\n'));
    }

    InnerText::Extent Extent_;
    QString Text_;
    int LineEnds_ = 0;      ///< To stand before the next text.
    bool HasBlank_ = false; ///< To stand before the next text of the same line.
    bool IsLineStart_ = true;
    bool HasLineEnd_ = false;
};

QString RenderedText(const HtmlNode* element, InnerText::Extent extent)
{
    Collector collector(extent);
    if (element->Has(HtmlTrait::Replaced))
        return {};
    int preserving = PreservesBlanks(element) ? 1 : 0;
    const HtmlNode* node = element->First;
    while (node != nullptr && !collector.IsDone()) {
        const bool isShown = node->Kind == HtmlNodeKind::Text || (node->IsElement() && !IsHidden(node));
        if (isShown && IsShownIn(node->Parent, node)) {
            if (node->Kind == HtmlNodeKind::Text) {
                collector.Add(node->Text, preserving > 0);
            } else {
                collector.Enter(node);
                if (node->First != nullptr && !node->Has(HtmlTrait::Replaced)) {
                    preserving += node->Has(HtmlTrait::Preserves) ? 1 : 0;
                    node = node->First;
                    continue;
                }
                collector.Leave(node);
            }
        }
        while (node->Next == nullptr && node->Parent != element) {
            node = node->Parent;
            preserving -= node->Has(HtmlTrait::Preserves) ? 1 : 0;
            collector.Leave(node);
        }
        node = node->Next;
    }
    return collector.Text();
}

/// What an element says that is not shown.
QString ContentText(const HtmlNode* element)
{
    QString text;
    for (const HtmlNode* node = NextNode(element, element, !element->Has(HtmlTrait::Template)); node != nullptr;
         node = NextNode(node, element, !node->Has(HtmlTrait::Template))) {
        if (node->Kind == HtmlNodeKind::Text)
            text += node->Text;
    }
    return text;
}
} // namespace

QString InnerText::Of(const HtmlNode* element, Extent extent)
{
    const QString text = IsRendered(element) ? RenderedText(element, extent) : ContentText(element);
    if (extent == Extent::Whole)
        return text;
    const qsizetype end = text.indexOf(u'\n');
    return end < 0 ? text : text.first(end);
}
