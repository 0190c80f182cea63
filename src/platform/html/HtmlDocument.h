// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

#include <memory>
#include <vector>

class HtmlDocument;
class HtmlNodes;
struct HtmlNode;

/// One element of an HtmlDocument: a handle that is cheap to copy and lives as long as its document. One that was taken
/// out of the page reads on as it stood. A null handle reads as empty and ignores being set.
///
/// Markup that costs more to parse than markup of its length may - hostile nesting, formatting that multiplies - goes
/// in as its text, and HtmlDocument::IsTextOnly says so.
class TOLVA_EXPORT HtmlElement
{
public:
    HtmlElement() = default;

    bool IsNull() const { return Node_ == nullptr; }
    /// In upper case; elements of SVG and MathML as they are written.
    QString TagName() const;
    /// The markup within the element, serialised as HTML5 says ("Serializing HTML fragments").
    QString InnerHTML() const;
    /// The same at the end of a text, which saves a copy of a large page.
    void AppendInnerHTML(QString* markup) const;
    /// Replaces what is within by the parsed fragment.
    void SetInnerHTML(const QString& html);
    /// The text as a browser shows it: white space collapsed where it is, line ends (LF) at blocks, paragraphs and
    /// breaks, nothing of scripts and style sheets. Of an element that is not shown itself, all its text.
    QString InnerText() const;
    /// InnerText up to its first line end, at the cost of that much.
    QString FirstLine() const;
    /// All elements below this one, in document order. What a template holds is not below it.
    std::vector<HtmlElement> All() const;
    /// position, in any case: "beforeBegin", "afterBegin", "beforeEnd" or "afterEnd"; others do nothing, and so do the
    /// first and the last on the html element. Costs what the fragment costs, however large the document is.
    void InsertAdjacentHTML(const QString& position, const QString& html);

    /// The same as InsertAdjacentHTML("beforeEnd", other.Body().InnerHTML()). The other document is empty or
    /// as it was afterwards: its nodes are moved here without a parse where that makes no difference.
    void AppendBodyOf(HtmlDocument&& other);

private:
    friend class HtmlDocument;
    HtmlElement(HtmlDocument* document, HtmlNode* node) : Document_(document), Node_(node) {}
    void Insert(const QString& html, HtmlNode* context, HtmlNode* parent, HtmlNode* before);

    HtmlDocument* Document_ = nullptr;
    HtmlNode* Node_ = nullptr;
};

/// A page in memory that can be read, changed and written out again. Nothing in it runs and nothing is fetched. It has
/// html, head and body from the beginning. Owned by who makes it; one thread at a time. All of its memory is given back
/// when it goes.
class TOLVA_EXPORT HtmlDocument
{
public:
    HtmlDocument();
    ~HtmlDocument();
    HtmlDocument(const HtmlDocument&) = delete;
    HtmlDocument& operator=(const HtmlDocument&) = delete;

    /// The body, or the frameset of a page that has one instead.
    HtmlElement Body();
    HtmlElement DocumentElement();
    /// Of the first title element, white space collapsed; empty without one.
    QString Title();
    /// Adds the title element to the head where the page has none.
    void SetTitle(const QString& title);
    /// Parses on from what was written before; the first call on a document replaces its empty page. The page is parsed
    /// when it is next looked at, so that writing in pieces costs no more than writing at once. Behind a change by
    /// other means it goes to the end of the body, as a fragment.
    void Write(const QString& html);
    /// The whole page, with its document type and what comments stand around it.
    QString Html();
    /// Whether markup was too costly to parse and stands in the page as its text.
    bool IsTextOnly();

private:
    friend class HtmlElement;
    HtmlNodes& Nodes();
    HtmlNode* TitleNode();

    std::unique_ptr<HtmlNodes> Nodes_;
    QString Written_;
    bool IsParsed_ = true; ///< What was written is in the nodes.
    bool IsChanged_ = false;
    bool IsTextOnly_ = false;
};
