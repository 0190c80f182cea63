// SPDX-License-Identifier: Apache-2.0
#include "platform/html/SafeDocument.h"

#include "platform/html/HtmlTree.h"
#include "platform/html/PageElements.h"
#include "platform/html/PlainText.h"
#include "platform/html/SafeLink.h"
#include "platform/html/StyleFilter.h"
#include "platform/html/StyleReader.h"
#include "platform/html/TableBudget.h"
#include "platform/html/TagScanner.h"

#include <QSet>
#include <QVector>

#include <gumbo.h>

using namespace PageElements;

namespace
{
/// What a parser takes in a moment, however large the page is and however busy the computer.
constexpr qsizetype PieceOfText = 100'000;
constexpr qsizetype LongestUnbrokenText = 1000;

const QString Policy =
    QStringLiteral("default-src 'none'; style-src 'unsafe-inline'; img-src data:; base-uri 'none'; form-action 'none'");
const QString FlatTablesWords =
    QStringLiteral("[Tables of this page that would take too long to lay out stand as paragraphs.]");
const QString DataAddress = QStringLiteral("data:image/");
const QString Encoding = QStringLiteral(";base64,");

QSet<QString> Names(std::initializer_list<const char*> names)
{
    QSet<QString> set;
    for (const char* name : names)
        set.insert(QLatin1String(name));
    return set;
}

bool IsWritten(const QString& element)
{
    static const QSet<QString> written = Names(
        {"p",   "div",  "center",   "address",    "article",   "aside", "section", "header", "footer", "main", "nav",
         "h1",  "h2",   "h3",       "h4",         "h5",        "h6",    "pre",     "dl",     "dt",     "dd",   "figure",
         "ul",  "ol",   "li",       "table",      "caption",   "thead", "tbody",   "tfoot",  "tr",     "td",   "th",
         "b",   "i",    "u",        "s",          "sub",       "sup",   "a",       "strong", "em",     "cite", "dfn",
         "var", "ins",  "del",      "strike",     "span",      "font",  "big",     "small",  "code",   "kbd",  "samp",
         "tt",  "mark", "abbr",     "bdi",        "bdo",       "q",     "time",    "nobr",   "img",    "br",   "hr",
         "wbr", "col",  "colgroup", "blockquote", "figcaption"});
    return written.contains(element);
}

bool IsOfTable(const QString& element)
{
    static const QSet<QString> parts =
        Names({"caption", "colgroup", "col", "thead", "tbody", "tfoot", "tr", "td", "th"});
    return parts.contains(element);
}

bool IsEmptyElement(const QString& element)
{
    static const QSet<QString> empty = Names({"img", "br", "hr", "wbr", "col"});
    return empty.contains(element);
}

/// Attributes whose values are words and numbers that reach nowhere.
bool IsPlainAttribute(const QString& name)
{
    static const QSet<QString> plain =
        Names({"class",  "id",          "title",       "lang",    "dir",     "align", "valign", "width",
               "height", "cellpadding", "cellspacing", "bgcolor", "color",   "face",  "size",   "border",
               "start",  "type",        "alt",         "nowrap",  "summary", "text"});
    return plain.contains(name);
}

bool FetchesByAttribute(const QString& name)
{
    static const QSet<QString> names = Names({"background", "poster", "dynsrc", "lowsrc", "srcset", "imagesrcset",
                                              "longdesc", "ping", "manifest", "codebase", "classid", "archive"});
    return names.contains(name);
}

/// Whether this element loads what the attribute names.
bool FetchesBySource(const QString& element, const QString& attribute)
{
    static const QSet<QString> elements = Names({"iframe", "frame", "embed", "input", "source", "track", "script"});
    return (attribute == u"src" && elements.contains(element)) || (attribute == u"data" && element == u"object") ||
           (attribute == u"href" && element == u"link");
}

bool IsGoneWithContent(const QString& name)
{
    return ElementOf(name).ElementRole == Role::Withheld;
}

QString TextIn(const GumboNode* node)
{
    QString text;
    const GumboVector& children = node->v.element.children;
    for (unsigned i = 0; i < children.length; ++i) {
        const auto* child = static_cast<const GumboNode*>(children.data[i]);
        if (child->type == GUMBO_NODE_TEXT || child->type == GUMBO_NODE_WHITESPACE || child->type == GUMBO_NODE_CDATA)
            text += QString::fromUtf8(child->v.text.text);
    }
    return text;
}

/// Without the blanks that a page has behind its last element, which the parser would count into the body again.
QString WithoutEnd(QString text)
{
    while (!text.isEmpty() && text.back().isSpace() && text.back() != QChar::Nbsp)
        text.chop(1);
    return text;
}

/// Writes one page. Works through the tree with a stack of its own, so that no depth of nesting is too deep.
class DocumentWriter
{
public:
    explicit DocumentWriter(SafeDocument* document) : Document_(document) {}

    /// Text alone, whose entities are resolved.
    void WriteText(const QString& text)
    {
        Body_ += QStringLiteral("<div style=\"white-space: pre-wrap\">");
        for (qsizetype begin = 0, end = 0; begin < text.size(); begin = end) {
            end = EndOfPiece(text, begin);
            const QString piece = text.sliced(begin, end - begin);
            // The text has no tags left, so that parsing it resolves its entities and no more.
            const HtmlTree tree(QByteArray("<span>") + piece.toUtf8());
            if (tree.Root() != nullptr)
                Write(tree.Root());
            else
                Body_ += EscapedText(piece);
        }
        Body_ += QStringLiteral("</div>");
    }
    void Write(const GumboNode* root)
    {
        TableBudget tables(root);
        Tables_ = &tables;
        Stack_.append({root, 0, 0, QString()});
        while (!Stack_.isEmpty()) {
            Frame& top = Stack_.last();
            const GumboVector& children =
                top.Node->type == GUMBO_NODE_DOCUMENT ? top.Node->v.document.children : top.Node->v.element.children;
            if (top.NextChild == children.length) {
                Body_ += top.EndTag;
                Stack_.removeLast();
                continue;
            }
            WriteChild(static_cast<const GumboNode*>(children.data[top.NextChild++]));
        }
        if (Document_->FlatTables > 0)
            Body_ += QStringLiteral("<p>") + FlatTablesWords + QStringLiteral("</p>");
    }
    QString Page() const
    {
        return QStringLiteral("<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"
                              "<meta http-equiv=\"Content-Security-Policy\" content=\"%1\">\n"
                              "<meta http-equiv=\"x-dns-prefetch-control\" content=\"off\">\n"
                              "<meta name=\"referrer\" content=\"no-referrer\">\n"
                              "<title>")
                   .arg(Policy) +
               EscapedText(Title_) + QStringLiteral("</title>\n") +
               (Sheet_.isEmpty() ? QString() : QStringLiteral("<style>\n") + Sheet_ + QStringLiteral("</style>\n")) +
               QStringLiteral("</head>\n<body") + BodyAttributes_ + u'>' + WithoutEnd(Body_) +
               QStringLiteral("</body>\n</html>\n");
    }

private:
    struct Frame
    {
        const GumboNode* Node;
        unsigned NextChild;
        int Tables; ///< Around its content.
        QString EndTag;
        /// Its rows and cells are paragraphs.
        bool IsFlat = false;
        int Columns = 0; ///< That its cells take so far.
    };

    /// A piece ends behind a word, where there are words.
    static qsizetype EndOfPiece(const QString& text, qsizetype begin)
    {
        if (text.size() - begin <= PieceOfText)
            return text.size();
        const qsizetype end = begin + PieceOfText;
        for (qsizetype i = end; i > end - LongestUnbrokenText; --i) {
            if (text.at(i - 1).isSpace())
                return i;
        }
        return text.at(end).isLowSurrogate() ? end - 1 : end;
    }
    void WriteChild(const GumboNode* node)
    {
        switch (node->type) {
        case GUMBO_NODE_ELEMENT:
            return WriteElement(node);
        case GUMBO_NODE_TEMPLATE:
            ++Document_->ActiveContent;
            return;
        case GUMBO_NODE_TEXT:
        case GUMBO_NODE_WHITESPACE:
        case GUMBO_NODE_CDATA:
            if (!IsInHead())
                Body_ += EscapedText(QString::fromUtf8(node->v.text.text));
            return;
        default:
            return;
        }
    }
    bool IsInHead() const
    {
        return Stack_.last().Node->type == GUMBO_NODE_DOCUMENT || NameOf(Stack_.last().Node) == u"head" ||
               NameOf(Stack_.last().Node) == u"html";
    }
    void WriteElement(const GumboNode* node)
    {
        const QString name = NameOf(node);
        Count(node, name);
        if (name == u"html" || name == u"head")
            return GoThrough(node);
        if (name == u"body") {
            BodyAttributes_ = Attributes(node, name);
            return GoThrough(node);
        }
        if (name == u"title" && IsInHead()) {
            Title_ = TextIn(node).simplified();
            return;
        }
        if (name == u"style")
            return TakeStyle(node);
        if (name == u"img" && !IsPictureWithin(Attribute(node, "src").trimmed())) {
            Body_ += EscapedText(Attribute(node, "alt"));
            return;
        }
        if (name == u"table")
            return WriteTable(node);
        if (Stack_.last().IsFlat && IsOfTable(name))
            return WriteFlat(node, name);
        if (IsWritten(name)) {
            Body_ += u'<' + name + Attributes(node, name) + Spans(node, name) + u'>';
            if (!IsEmptyElement(name))
                Stack_.append({node, 0, Stack_.last().Tables, QStringLiteral("</%1>").arg(name)});
            return;
        }
        if (!IsGoneWithContent(name))
            GoThrough(node);
    }
    void GoThrough(const GumboNode* node) { Stack_.append({node, 0, Stack_.last().Tables, QString()}); }
    void WriteTable(const GumboNode* node)
    {
        const int tables = Stack_.last().Tables;
        if (Tables_->Affords(node, tables)) {
            Body_ += QStringLiteral("<table") + Attributes(node, QStringLiteral("table")) + u'>';
            return Stack_.append({node, 0, tables + 1, QStringLiteral("</table>")});
        }
        ++Document_->FlatTables;
        Stack_.append({node, 0, tables, QString(), true});
    }
    /// A part of a table that is none: its cells are blocks.
    void WriteFlat(const GumboNode* node, const QString& name)
    {
        const bool isBlock = name == u"td" || name == u"th" || name == u"caption";
        if (isBlock)
            Body_ += QStringLiteral("<div>");
        Stack_.append({node, 0, Stack_.last().Tables, isBlock ? QStringLiteral("</div>") : QString(), !isBlock});
    }
    void TakeStyle(const GumboNode* node)
    {
        const QString sheet = TextIn(node);
        Document_->RemoteContent += NamesRemoteContent(sheet) ? 1 : 0;
        if (IsInHead())
            Sheet_ += StyleFilter::Sheet(sheet);
    }
    void Count(const GumboNode* node, const QString& name)
    {
        Document_->ActiveContent += IsActiveElement(name) ? 1 : 0;
        if (name == u"meta" && !Attribute(node, "http-equiv").trimmed().compare(u"refresh", Qt::CaseInsensitive))
            ++Document_->ActiveContent;
        const bool isPictureElsewhere =
            name == u"img" && !Attribute(node, "src").isEmpty() && !IsPictureWithin(Attribute(node, "src").trimmed());
        const bool fetches = name == u"audio" || name == u"video" || name == u"bgsound";
        Document_->RemoteContent += fetches || isPictureElsewhere ? 1 : 0;
        const GumboVector& attributes = node->v.element.attributes;
        for (unsigned i = 0; i < attributes.length; ++i)
            CountAttribute(static_cast<const GumboAttribute*>(attributes.data[i]), name);
    }
    void CountAttribute(const GumboAttribute* attribute, const QString& element)
    {
        const QString name = QString::fromUtf8(attribute->name).toLower();
        const bool runs = name.startsWith(u"on") || name == u"formaction" || name == u"srcdoc" ||
                          (name == u"href" && element == u"a" &&
                           ReadLink(QString::fromUtf8(attribute->value)).Kind == LinkKind::Active);
        Document_->ActiveContent += runs ? 1 : 0;
        const bool fetches = (FetchesByAttribute(name) || FetchesBySource(element, name)) && *attribute->value != '\0';
        const bool hasRemoteStyle = name == u"style" && NamesRemoteContent(QString::fromUtf8(attribute->value));
        Document_->RemoteContent += fetches || hasRemoteStyle ? 1 : 0;
    }
    QString Attributes(const GumboNode* node, const QString& element) const
    {
        QString text;
        const auto add = [&text](const QString& name, const QString& value) {
            text += QStringLiteral(" ") + name + QStringLiteral("=\"") + EscapedText(value) + u'"';
        };
        const GumboVector& attributes = node->v.element.attributes;
        for (unsigned i = 0; i < attributes.length; ++i) {
            const auto* attribute = static_cast<const GumboAttribute*>(attributes.data[i]);
            const QString name = QString::fromUtf8(attribute->name).toLower();
            const QString value = QString::fromUtf8(attribute->value);
            if (name == u"style") {
                if (const QString style = StyleFilter::Declarations(value); !style.isEmpty())
                    add(name, style);
            } else if (name == u"href" && element == u"a") {
                if (const QString address = SafeAddress(value); !address.isEmpty())
                    add(name, address);
            } else if (name == u"src" && element == u"img") {
                add(name, value.trimmed());
            } else if (IsPlainAttribute(name)) {
                add(name, value);
            }
        }
        return text;
    }
    /// Empty for a link that goes.
    static QString SafeAddress(const QString& address)
    {
        const SafeLink link = ReadLink(address);
        if (link.Kind == LinkKind::Safe)
            return link.Address;
        // With something invisible in front it would be an address beside the page, and none within it.
        const QString place = address.trimmed();
        return link.Kind == LinkKind::Place && place.startsWith(u'#') ? place : QString();
    }

    /// Those of a cell or a column that say more than 1. What a row has no columns for is no wider than one.
    QString Spans(const GumboNode* node, const QString& name)
    {
        QString text;
        const auto add = [&](const char* attribute, int span) {
            if (span > 1)
                text += QStringLiteral(" %1=\"%2\"").arg(QLatin1String(attribute)).arg(span);
        };
        if (name == u"col" || name == u"colgroup")
            add("span", SpanOf(node, "span"));
        if (name == u"td" || name == u"th") {
            int& columns = Stack_.last().Columns;
            const int span = std::max(1, std::min(SpanOf(node, "colspan"), MostColumns - columns));
            columns += span;
            add("colspan", span);
            add("rowspan", SpanOf(node, "rowspan"));
        }
        return text;
    }

    SafeDocument* Document_;
    TableBudget* Tables_ = nullptr;
    QVector<Frame> Stack_;
    QString Title_;
    QString Sheet_;
    QString BodyAttributes_;
    QString Body_;
};

bool WriteTree(const QString& html, SafeDocument* document)
{
    const HtmlTree tree(html.toUtf8(), TagScanner::PatienceWith(html));
    if (tree.Root() == nullptr)
        return false;
    DocumentWriter writer(document);
    writer.Write(tree.Root());
    document->Html = writer.Page();
    return true;
}

} // namespace

SafeDocument MakeDocumentSafe(const QString& html)
{
    SafeDocument document;
    if (WriteTree(html, &document))
        return document;
    SafeDocument textOnly;
    textOnly.IsTextOnly = true;
    DocumentWriter writer(&textOnly);
    writer.WriteText(TagScanner::TextOf(html));
    textOnly.Html = writer.Page();
    return textOnly;
}

QString AddressOfPicture(const QByteArray& octets)
{
    QString kind;
    if (octets.startsWith("\x89PNG"))
        kind = QStringLiteral("png");
    else if (octets.startsWith("\xFF\xD8\xFF"))
        kind = QStringLiteral("jpeg");
    else if (octets.startsWith("GIF8"))
        kind = QStringLiteral("gif");
    else
        return {};
    return DataAddress + kind + Encoding + QString::fromLatin1(octets.toBase64());
}

bool IsPictureWithin(const QString& address)
{
    return !PictureWithin(address).isEmpty();
}

QByteArray PictureWithin(const QString& address)
{
    if (!address.startsWith(DataAddress, Qt::CaseInsensitive))
        return {};
    const qsizetype encoding = address.indexOf(Encoding, DataAddress.size(), Qt::CaseInsensitive);
    if (encoding < 0)
        return {};
    const auto kind = QStringView(address).sliced(DataAddress.size(), encoding - DataAddress.size());
    bool isRead = false;
    for (const char* known : {"png", "jpeg", "jpg", "gif"})
        isRead = isRead || kind.compare(QLatin1String(known), Qt::CaseInsensitive) == 0;
    if (!isRead)
        return {};
    const QByteArray octets = QByteArray::fromBase64(address.sliced(encoding + Encoding.size()).toLatin1());
    // What it says it is need not be what it is.
    return AddressOfPicture(octets).isEmpty() ? QByteArray() : octets;
}
