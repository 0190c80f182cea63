#include "platform/html/PageWriter.h"

#include "platform/html/Colours.h"
#include "platform/html/PlainText.h"
#include "platform/html/SafeLink.h"

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QUrl>

#include <gumbo.h>

namespace
{
/// Beyond these, elements are left out and their content stays.
constexpr int DeepestElement = 100;
constexpr int DeepestTable = 12;
constexpr int DeepestQuote = 12;
constexpr int MostColumns = 100;
constexpr int WidestSpan = 50;
constexpr double SmallestPoints = 6;
constexpr double LargestPoints = 48;
constexpr double ReadableContrast = 1.5;
constexpr qsizetype LargestEmbedded = 512 * 1024;
constexpr qsizetype AllEmbedded = 8 * 1024 * 1024;

/// What the writer does with an element.
enum class Role
{
    Block,
    Inline,
    Table,
    Row,
    Cell,
    Through, ///< The element goes, its content stays.
    Withheld ///< It goes with its content.
};

struct Element
{
    Role ElementRole;
    const char* Written; ///< The name of the element that is written; blocks are div.
};

const QHash<QString, Element>& Elements()
{
    static const QHash<QString, Element> elements = [] {
        QHash<QString, Element> hash;
        const auto add = [&hash](Role role, std::initializer_list<const char*> names, const char* written = nullptr) {
            for (const char* name : names)
                hash.insert(QLatin1String(name), {role, written == nullptr ? name : written});
        };
        add(Role::Block,
            {"p",        "div",    "center",  "address",    "article",   "aside", "section", "header", "footer",
             "main",     "nav",    "figure",  "figcaption", "h1",        "h2",    "h3",      "h4",     "h5",
             "h6",       "pre",    "listing", "xmp",        "plaintext", "dl",    "dt",      "dd",     "form",
             "fieldset", "legend", "details", "summary",    "hgroup",    "dir",   "menu",    "caption"},
            "div");
        add(Role::Block, {"ul", "ol", "li", "blockquote"});
        add(Role::Inline, {"b", "i", "u", "s", "sub", "sup", "a"});
        add(Role::Inline, {"strong"}, "b");
        add(Role::Inline, {"em", "cite", "dfn", "var", "address"}, "i");
        add(Role::Inline, {"ins"}, "u");
        add(Role::Inline, {"del", "strike"}, "s");
        add(Role::Inline, {"span",    "font", "big", "small", "code",  "kbd",  "samp", "tt",   "mark",   "abbr",
                           "acronym", "bdi",  "bdo", "q",     "label", "nobr", "time", "data", "output", "button"},
            "span");
        add(Role::Table, {"table"});
        add(Role::Row, {"tr"});
        add(Role::Cell, {"td", "th"});
        add(Role::Withheld,
            {"script",   "style",    "template", "title",    "head",    "iframe",  "frame",    "frameset",
             "noframes", "noembed",  "object",   "embed",    "applet",  "param",   "audio",    "video",
             "source",   "track",    "canvas",   "svg",      "math",    "link",    "meta",     "base",
             "bgsound",  "input",    "select",   "textarea", "isindex", "keygen",  "datalist", "map",
             "area",     "colgroup", "col",      "portal",   "dialog",  "marquee", "picture"});
        hash[QStringLiteral("marquee")] = {Role::Through, nullptr};
        hash[QStringLiteral("picture")] = {Role::Through, nullptr};
        hash[QStringLiteral("address")] = {Role::Block, "div"};
        return hash;
    }();
    return elements;
}

bool IsActiveElement(const QString& name)
{
    static const QSet<QString> names = [] {
        QSet<QString> set;
        for (const char* word :
             {"script",  "iframe", "frame",    "frameset", "object", "embed",      "applet", "canvas",
              "svg",     "math",   "base",     "input",    "select", "textarea",   "form",   "button",
              "isindex", "keygen", "template", "portal",   "dialog", "link-import"})
            set.insert(QLatin1String(word));
        return set;
    }();
    return names.contains(name);
}

QString Attribute(const GumboNode* node, const char* name)
{
    const GumboAttribute* attribute = gumbo_get_attribute(&node->v.element.attributes, name);
    return attribute == nullptr ? QString() : QString::fromUtf8(attribute->value);
}

QString NameOf(const GumboNode* node)
{
    const GumboElement& element = node->v.element;
    if (element.tag_namespace != GUMBO_NAMESPACE_HTML)
        return element.tag_namespace == GUMBO_NAMESPACE_SVG ? QStringLiteral("svg") : QStringLiteral("math");
    return QLatin1String(gumbo_normalized_tagname(element.tag));
}

int WholeNumber(const QString& text, int smallest, int largest, int otherwise)
{
    bool isNumber = false;
    const int number = text.trimmed().toInt(&isNumber);
    return isNumber ? std::clamp(number, smallest, largest) : otherwise;
}

double HeadingTimes(const QString& name)
{
    constexpr double times[] = {1.7, 1.4, 1.2, 1, 0.9, 0.85};
    return times[name.at(1).digitValue() - 1];
}

bool IsHeading(const QString& name)
{
    return name.size() == 2 && name.at(0) == u'h' && name.at(1) >= u'1' && name.at(1) <= u'6';
}
} // namespace

/// One start tag under way; the only place where attributes are written.
class PageWriter::Tag
{
public:
    void SetName(const QString& name) { Name_ = name; }
    const QString& Name() const { return Name_; }
    void Add(const char* attribute, const QString& value)
    {
        Attributes_ += QStringLiteral(" %1=\"%2\"").arg(QLatin1String(attribute), EscapedText(value));
    }
    void AddStyle(const char* property, const QString& value)
    {
        Style_ += QStringLiteral("%1:%2;").arg(QLatin1String(property), value);
    }
    QString Text() const
    {
        const QString style = Style_.isEmpty() ? QString() : QStringLiteral(" style=\"%1\"").arg(EscapedText(Style_));
        return u'<' + Name_ + Attributes_ + style + u'>';
    }

private:
    QString Name_;
    QString Attributes_;
    QString Style_;
};

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
    Page_->Html += EscapedText(shown);
}

void PageWriter::CountAttributes(const GumboInternalNode* node)
{
    const GumboVector& attributes = node->v.element.attributes;
    for (unsigned i = 0; i < attributes.length; ++i) {
        const auto* attribute = static_cast<const GumboAttribute*>(attributes.data[i]);
        const QByteArrayView name(attribute->name);
        if (name.startsWith("on") || name == "formaction" || name == "srcdoc")
            ++Page_->ActiveContent;
        else if (name == "background" || name == "poster" || name == "dynsrc" || name == "lowsrc")
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
    return Elements().value(name, {Role::Through, nullptr}).ElementRole == Role::Withheld &&
           name != QLatin1String("head") && name != QLatin1String("frameset");
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

PageStyle PageWriter::StyleOf(const GumboInternalNode* node, const QString& name) const
{
    PageStyle style = ReadStyle(Attribute(node, "style"));
    if (!style.Background)
        style.Background = Colours::Read(Attribute(node, "bgcolor"));
    if (!style.Colour)
        style.Colour = Colours::Read(Attribute(node, name == QLatin1String("body") ? "text" : "color"));
    if (style.Align.isEmpty()) {
        const QString align = Attribute(node, "align").trimmed().toLower();
        if (align == QLatin1String("right") || align == QLatin1String("center") || align == QLatin1String("justify"))
            style.Align = align;
        else if (name == QLatin1String("center"))
            style.Align = QStringLiteral("center");
    }
    if (name == QLatin1String("font")) {
        if (style.FontFamily.isEmpty())
            style.FontFamily = ReadFontFamily(Attribute(node, "face"));
        const QString size = Attribute(node, "size").trimmed();
        if (!size.isEmpty() && !style.FontPoints && !style.FontTimes) {
            constexpr double times[] = {0.7, 0.85, 1, 1.15, 1.5, 2, 2.6};
            const bool isRelative = size.startsWith(u'+') || size.startsWith(u'-');
            const int index = WholeNumber(size, -6, 7, 0) + (isRelative ? 3 : 0);
            style.FontPoints = times[std::clamp(index, 1, 7) - 1] * Options_.BasePoints;
        }
    }
    const QString direction = Attribute(node, "dir").trimmed().toLower();
    style.RightToLeft |= direction == QLatin1String("rtl");

    if (IsHeading(name)) {
        style.Bold = style.Bold.value_or(true);
        if (!style.FontPoints && !style.FontTimes)
            style.FontTimes = HeadingTimes(name);
    } else if (name == QLatin1String("th") || name == QLatin1String("dt") || name == QLatin1String("legend")) {
        style.Bold = style.Bold.value_or(true);
    } else if ((name == QLatin1String("big") || name == QLatin1String("small")) && !style.FontTimes) {
        style.FontTimes = name == QLatin1String("big") ? 1.2 : 1 / 1.2;
    } else if (name == QLatin1String("mark") && !style.Background) {
        style.Background = 0xFFF3A3;
        style.Colour = 0x000000;
    }
    static const QSet<QString> typewritten{QStringLiteral("pre"), QStringLiteral("code"),     QStringLiteral("tt"),
                                           QStringLiteral("kbd"), QStringLiteral("samp"),     QStringLiteral("listing"),
                                           QStringLiteral("xmp"), QStringLiteral("plaintext")};
    if (typewritten.contains(name) && style.FontFamily.isEmpty())
        style.FontFamily = QStringLiteral("'monospace'");
    static const QSet<QString> keeping{QStringLiteral("pre"), QStringLiteral("listing"), QStringLiteral("xmp"),
                                       QStringLiteral("plaintext")};
    if (keeping.contains(name))
        style.KeepsBlanks = style.KeepsBlanks.value_or(true);
    static const QSet<QString> apart{QStringLiteral("p"),     QStringLiteral("h1"),  QStringLiteral("h2"),
                                     QStringLiteral("h3"),    QStringLiteral("h4"),  QStringLiteral("h5"),
                                     QStringLiteral("h6"),    QStringLiteral("pre"), QStringLiteral("dl"),
                                     QStringLiteral("figure")};
    if (apart.contains(name)) {
        style.Margin[PageStyle::Top] = style.Margin[PageStyle::Top].value_or(12);
        style.Margin[PageStyle::Bottom] = style.Margin[PageStyle::Bottom].value_or(12);
    }
    if (name == QLatin1String("dd"))
        style.Margin[PageStyle::Left] = style.Margin[PageStyle::Left].value_or(30);
    return style;
}

void PageWriter::ApplyFontSize(const PageStyle& style, Frame* frame, Tag* tag)
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

void PageWriter::ApplyColours(const PageStyle& style, Frame* frame, Tag* tag)
{
    frame->HasUnknownGround |= style.HasRemoteContent && !style.Background;
    if (!Options_.KeepsColours)
        return;
    if (style.Background) {
        frame->Ground = *style.Background;
        frame->HasUnknownGround = false;
        tag->AddStyle("background-color", Colours::Text(*style.Background));
    }
    // Text for a picture's ground would not be seen on the plain one that is there instead.
    if (style.Colour &&
        (!frame->HasUnknownGround || Colours::Contrast(*style.Colour, frame->Ground) >= ReadableContrast))
        tag->AddStyle("color", Colours::Text(*style.Colour));
}

void PageWriter::ApplyStyle(const PageStyle& style, const QString& name, Frame* frame, Tag* tag)
{
    ApplyFontSize(style, frame, tag);
    ApplyColours(style, frame, tag);
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

void PageWriter::OpenLink(const GumboInternalNode* node, Frame* frame, Tag* tag)
{
    if (gumbo_get_attribute(&node->v.element.attributes, "href") == nullptr)
        return tag->SetName(QStringLiteral("span"));
    const SafeLink link = ReadLink(Attribute(node, "href"));
    Page_->ActiveContent += link.Kind == LinkKind::Active ? 1 : 0;
    Page_->UnsafeLinks += link.Kind == LinkKind::Unknown ? 1 : 0;
    if (link.Kind != LinkKind::Safe)
        return tag->SetName(QStringLiteral("span"));
    frame->IsInLink = true;
    tag->Add("href", link.Address);
}

void PageWriter::OpenTable(const GumboInternalNode* node, Frame* frame, Tag* tag)
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
bool PageWriter::OpenCell(const GumboInternalNode* node, const QString& name, Frame* frame, Tag* tag)
{
    Frame& row = Stack_.last();
    const int span = WholeNumber(Attribute(node, "colspan"), 1, WidestSpan, 1);
    if (row.Columns + span > MostColumns) {
        Page_->IsCutShort = true;
        return false;
    }
    row.Columns += span;
    if (span > 1)
        tag->Add("colspan", QString::number(span));
    if (const int rows = WholeNumber(Attribute(node, "rowspan"), 1, WidestSpan, 1); rows > 1)
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
    frame->IsTable = false;
    frame->Columns = 0;
    Q_UNUSED(name)
    return true;
}

void PageWriter::OpenElement(const GumboInternalNode* node, const QString& name)
{
    const Frame& parent = Stack_.last();
    Frame frame = parent;
    frame.Node = node;
    frame.NextChild = 0;
    frame.EndTag.clear();

    const Element element = Elements().value(name, {Role::Through, nullptr});
    Role role = element.ElementRole;
    const bool isInRow = parent.IsRow;
    const bool isInTable = parent.IsTable;
    if (role == Role::Through || role == Role::Withheld) { // html, body, tbody, noscript, unknown elements
        const PageStyle style = StyleOf(node, name);
        Page_->RemoteContent += style.HasRemoteContent ? 1 : 0;
        Page_->ActiveContent += style.HasActiveContent ? 1 : 0;
        if (name == QLatin1String("body") && parent.Depth == 0) {
            Tag tag;
            tag.SetName(QStringLiteral("body"));
            frame.Depth = 1;
            frame.IsBlock = false;
            ApplyStyle(style, name, &frame, &tag);
            frame.IsBlock = true;
            return Push(frame, tag);
        }
        Stack_.append(frame);
        return;
    }
    // Only rows stand in tables and only cells in rows; where nesting went too far, all of them are blocks.
    const bool isTooDeep = parent.Depth >= DeepestElement || (role == Role::Table && parent.Tables >= DeepestTable);
    if ((role == Role::Row && !isInTable) || (role == Role::Cell && !isInRow) || (role == Role::Table && isTooDeep))
        role = Role::Block;
    if ((isInTable && role != Role::Row) || (isInRow && role != Role::Cell)) {
        if (name == QLatin1String("caption") || role == Role::Block || role == Role::Inline) {
            // A caption becomes a row of its own.
            const bool opensRow = isInTable && !isInRow;
            Tag tag;
            tag.SetName(QStringLiteral("td"));
            tag.Add("colspan", QString::number(WidestSpan));
            if (!opensRow)
                return;
            Page_->Html += QStringLiteral("<tr>");
            frame.IsTable = frame.IsRow = false;
            ++frame.Depth;
            Push(frame, tag);
            Stack_.last().EndTag += QStringLiteral("</tr>");
        }
        return;
    }

    PageStyle style = StyleOf(node, name);
    Page_->RemoteContent += style.HasRemoteContent ? 1 : 0;
    Page_->ActiveContent += style.HasActiveContent ? 1 : 0;
    const bool isCounted = role == Role::Inline ? false : true;
    if (isTooDeep && role != Role::Row && role != Role::Cell) {
        if (isCounted)
            Page_->Html += QStringLiteral("<br>");
        frame.IsTable = frame.IsRow = false;
        Stack_.append(frame);
        return;
    }
    Tag tag;
    tag.SetName(role == Role::Block && element.ElementRole != Role::Block ? QStringLiteral("div")
                                                                          : QLatin1String(element.Written));
    frame.IsBlock = role != Role::Inline;
    frame.IsTable = frame.IsRow = false;
    ++frame.Depth;
    if (name == QLatin1String("a"))
        OpenLink(node, &frame, &tag);
    else if (role == Role::Table)
        OpenTable(node, &frame, &tag);
    else if (role == Role::Row)
        frame.IsRow = true, frame.Columns = 0;
    else if (role == Role::Cell && !OpenCell(node, name, &frame, &tag))
        return;
    if (name == QLatin1String("blockquote")) {
        const bool isIndented = ++frame.Quotes <= DeepestQuote;
        tag.SetName(QStringLiteral("div"));
        style.Margin[PageStyle::Left] = isIndented ? style.Margin[PageStyle::Left].value_or(16) : 0;
        style.Margin[PageStyle::Right].reset();
    } else if (name == QLatin1String("ol") || name == QLatin1String("ul")) {
        if (!style.ListStyle.isEmpty())
            tag.AddStyle("list-style-type", style.ListStyle);
        if (const int start = WholeNumber(Attribute(node, "start"), 0, 1000000, 1); start != 1)
            tag.Add("start", QString::number(start));
    } else if (name == QLatin1String("li") && parent.Node != nullptr) {
        style.Margin[PageStyle::Left].reset();
    }
    ApplyStyle(style, name, &frame, &tag);
    Push(frame, tag);
    if (name == QLatin1String("q")) {
        Page_->Html += QChar(0x201C);
        Stack_.last().EndTag.prepend(QChar(0x201D));
    }
}

void PageWriter::Push(Frame frame, const Tag& tag)
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

/// The name of the picture in Html; empty for one that is not shown.
QString PageWriter::EmbeddedPicture(const QString& source)
{
    const qsizetype comma = source.indexOf(u',');
    const QString head = source.left(comma).mid(5).toLower().remove(u' ');
    static const QSet<QString> heads{QStringLiteral("image/png;base64"), QStringLiteral("image/jpeg;base64"),
                                     QStringLiteral("image/jpg;base64"), QStringLiteral("image/gif;base64")};
    if (comma < 0 || !heads.contains(head) || source.size() > LargestEmbedded * 2)
        return {};
    const QByteArray octets =
        QByteArray::fromBase64(QUrl::fromPercentEncoding(source.mid(comma + 1).toUtf8()).toLatin1());
    EmbeddedOctets_ += octets.size();
    if (octets.isEmpty() || octets.size() > LargestEmbedded || EmbeddedOctets_ > AllEmbedded)
        return {};
    Page_->EmbeddedPictures.append(octets);
    return QStringLiteral("embedded:%1").arg(Page_->EmbeddedPictures.size() - 1);
}

void PageWriter::WriteImage(const GumboInternalNode* node)
{
    if (Stack_.last().IsTable || Stack_.last().IsRow)
        return;
    const QString source = Attribute(node, "src").trimmed();
    const PageStyle style = ReadStyle(Attribute(node, "style"));
    Page_->RemoteContent += style.HasRemoteContent ? 1 : 0;
    Page_->ActiveContent += style.HasActiveContent ? 1 : 0;
    if (style.IsHidden)
        return;
    QString shown;
    const QString id = ContentIDOf(source);
    if (!id.isEmpty() && (!Options_.HasPicture || Options_.HasPicture(id)))
        shown = QStringLiteral("cid:") + QString::fromLatin1(QUrl::toPercentEncoding(id));
    else if (source.startsWith(QLatin1String("data:"), Qt::CaseInsensitive))
        shown = EmbeddedPicture(source);
    if (shown.isEmpty())
        return WriteMissingImage(node, source);

    Tag tag;
    tag.SetName(QStringLiteral("img"));
    tag.Add("src", shown);
    const QString alternative = Attribute(node, "alt").simplified().left(1000);
    if (!alternative.isEmpty())
        tag.Add("title", alternative);
    for (const char* side : {"width", "height"}) {
        const QString value = ReadWidth(Attribute(node, side));
        if (!value.isEmpty() && !value.endsWith(u'%'))
            tag.Add(side, value);
    }
    Page_->Html += tag.Text();
}

/// The text that stands for a picture, or a small mark, with what the picture was as the tool tip.
void PageWriter::WriteMissingImage(const GumboInternalNode* node, const QString& source)
{
    const QString compact = QString(source).remove(u'\t').remove(u'\n').remove(u'\r').toLower();
    const bool isHere = compact.startsWith(QLatin1String("cid:")) || compact.startsWith(QLatin1String("data:"));
    if (compact.startsWith(QLatin1String("javascript:")) || compact.startsWith(QLatin1String("vbscript:")))
        ++Page_->ActiveContent;
    else if (isHere || source.isEmpty())
        Page_->MissingPictures += isHere ? 1 : 0;
    else
        ++Page_->RemoteContent;

    const QString alternative = Attribute(node, "alt").simplified().left(1000);
    const bool isDecoration =
        gumbo_get_attribute(&node->v.element.attributes, "alt") != nullptr && alternative.isEmpty();
    const auto isTiny = [node](const char* side) { return WholeNumber(Attribute(node, side), 0, 100000, 100) <= 4; };
    if (isDecoration || isTiny("width") || isTiny("height") || source.isEmpty())
        return;
    Tag tag;
    tag.SetName(QStringLiteral("span"));
    const QString host = QUrl(source).host();
    tag.Add("title", host.isEmpty() ? QStringLiteral("Picture not shown")
                                    : QStringLiteral("Picture at %1, not shown").arg(host.left(200)));
    Page_->Html += tag.Text() + EscapedText(alternative.isEmpty() ? QStringLiteral("[picture]") : alternative) +
                   QStringLiteral("</span>");
}
