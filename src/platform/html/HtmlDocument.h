#pragma once

#include <QString>

#include <memory>
#include <vector>

class HtmlDocument;
struct HtmlNode;

/// One element of an HtmlDocument: a handle that is cheap to copy and lives as long as its document and as long as the
/// element stands in it. A null handle reads as empty and ignores being set.
class HtmlElement
{
public:
    HtmlElement() = default;

    bool IsNull() const { return Node_ == nullptr; }
    /// In upper case.
    QString TagName() const;
    /// The markup within the element, serialised as HTML5 says ("Serializing HTML fragments").
    QString InnerHTML() const;
    /// Replaces what is within by the parsed fragment.
    void SetInnerHTML(const QString& html);
    /// The text as a browser shows it: white space collapsed where it is, line ends (LF) at blocks, paragraphs and
    /// breaks, nothing of scripts and style sheets.
    QString InnerText() const;
    /// All elements below this one, in document order.
    std::vector<HtmlElement> All() const;
    /// position, in any case: "beforeBegin", "afterBegin", "beforeEnd" or "afterEnd"; others do nothing. Costs what the
    /// fragment costs, however large the document is.
    void InsertAdjacentHTML(const QString& position, const QString& html);

private:
    friend class HtmlDocument;
    HtmlElement(HtmlDocument* document, HtmlNode* node) : Document_(document), Node_(node) {}

    HtmlDocument* Document_ = nullptr;
    HtmlNode* Node_ = nullptr;
};

/// A page in memory that can be read, changed and written out again. Nothing in it runs and nothing is fetched. It has
/// html, head and body from the beginning. Owned by who makes it.
class HtmlDocument
{
public:
    HtmlDocument();
    ~HtmlDocument();
    HtmlDocument(const HtmlDocument&) = delete;
    HtmlDocument& operator=(const HtmlDocument&) = delete;

    HtmlElement Body();
    HtmlElement DocumentElement();
    QString Title();
    /// Adds the title element where the page has none.
    void SetTitle(const QString& title);
    /// Parses on from what was written before; the first call on a document replaces its empty page.
    void Write(const QString& html);

private:
    friend class HtmlElement;
    class Tree;
    std::unique_ptr<Tree> Tree_;
};
