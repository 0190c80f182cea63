// SPDX-License-Identifier: Apache-2.0

// Any markup becomes a page, a fragment and a text without a fault, and what was written out is never much larger than
// what came in.

#include "platform/html/HtmlDocument.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace
{
void Require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Escaping, implied elements and what the limits of an import let through.
bool IsInProportion(const QString& written, const QString& markup)
{
    return written.size() <= 12'000'000 + 100 * markup.size();
}

void ReadAll(HtmlDocument& document)
{
    const HtmlElement body = document.Body();
    const QString text = body.InnerText();
    Require(body.FirstLine() == text.section(u'\n', 0, 0));
    Require(!text.contains(QChar(0)));
    qsizetype elements = 0;
    for (const HtmlElement& element : document.DocumentElement().All()) {
        Require(!element.TagName().isEmpty());
        if (++elements < 20) {
            element.InnerText();
            element.InnerHTML();
        }
    }
}
/// A page that holds a character of the marks has none, and is the same page otherwise.
void CompareWithUnmarked(const QString& markup)
{
    const QString ends = QStringLiteral("<!---->");
    HtmlDocument marked;
    marked.Write(ends + markup);
    HtmlDocument unmarked;
    unmarked.Write(QStringLiteral("<!--\uE000-->") + markup);
    Require(unmarked.IsTextOnly() || marked.IsTextOnly() ||
            marked.Html() == unmarked.Html().replace(QStringLiteral("<!--\uE000-->"), ends));
}

/// Moving a body gives what its markup gives.
void CompareWithMoved(const QString& markup)
{
    HtmlDocument one;
    one.Write(markup);
    HtmlDocument parsed;
    parsed.Body().InsertAdjacentHTML(QStringLiteral("beforeEnd"), one.Body().InnerHTML());
    HtmlDocument moved;
    moved.Body().AppendBodyOf(std::move(one));
    Require(parsed.IsTextOnly() || parsed.Html() == moved.Html());
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    // Each piece is parsed some twenty times over, so that short ones find more in the same time.
    constexpr std::size_t longest = 1500;
    const QString markup =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(std::min(size, longest)));

    HtmlDocument page;
    const qsizetype half = markup.size() / 2;
    page.Write(markup.first(half));
    page.Write(markup.sliced(half));
    ReadAll(page);
    const QString once = page.Html();
    Require(IsInProportion(once, markup));
    page.SetTitle(markup);
    Require(page.Title() == markup.simplified() || markup.contains(QChar(0)) || page.IsTextOnly() ||
            page.DocumentElement().All().empty() || !page.Html().contains(QStringLiteral("<title>")));

    CompareWithUnmarked(markup);
    CompareWithMoved(markup);

    HtmlDocument fragment;
    HtmlElement body = fragment.Body();
    body.SetInnerHTML(markup);
    ReadAll(fragment);
    const std::vector<HtmlElement> elements = fragment.Body().All();
    const char* const places[] = {"beforeBegin", "afterBegin", "beforeEnd", "afterEnd"};
    for (std::size_t i = 0; i < elements.size() && i < 8; ++i) {
        HtmlElement element = elements[i];
        element.InsertAdjacentHTML(QLatin1String(places[i % 4]), markup);
        if (i == 5)
            element.SetInnerHTML(markup.first(half));
    }
    ReadAll(fragment);
    Require(IsInProportion(fragment.Html(), markup.repeated(10)));
    return 0;
}
