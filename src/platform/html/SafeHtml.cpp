// SPDX-License-Identifier: Apache-2.0
#include "platform/html/SafeHtml.h"

#include "platform/html/HtmlTree.h"
#include "platform/html/PageWriter.h"
#include "platform/html/TagScanner.h"

namespace
{
bool WriteTree(const QString& html, const SafeHtmlOptions& options, SafePage* page)
{
    const HtmlTree tree(html.toUtf8(), TagScanner::PatienceWith(html));
    if (tree.Root() == nullptr)
        return false;
    PageWriter(options, page).Write(tree.Root());
    return true;
}
} // namespace

SafePage MakeSafe(const QString& html, const SafeHtmlOptions& options)
{
    SafePage page;
    if (WriteTree(html, options, &page))
        return page;
    // The text has no tags left, so that parsing it resolves its entities and no more.
    const QString text = QStringLiteral("<div style=\"white-space: pre-wrap\">") + TagScanner::TextOf(html);
    SafePage textPage;
    textPage.IsTextOnly = true;
    if (!WriteTree(text, options, &textPage))
        textPage.IsCutShort = true;
    return textPage;
}
