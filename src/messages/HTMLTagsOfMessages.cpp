// SPDX-License-Identifier: Apache-2.0
#include "common/TemplateHelper.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "messages/cMessages.h"
#include "platform/html/HtmlDocument.h"

namespace
{
const QString CountTag = QStringLiteral("<ZRT_MESSAGES_COUNT>");
const QString RepeatTag = QStringLiteral("<ZRT_MESSAGES_REPEAT>");
const QString RepeatEndTag = QStringLiteral("</ZRT_MESSAGES_REPEAT>");
/// Of a block that holds another one's opening tag, which each expansion multiplies.
constexpr qsizetype MostNestedCharacters = 20'000'000;

/// A repeat tag that a mail brought along is none of the template's. A browser sees no difference.
void BlindRepeatTags(bool blindsOpening, QString* filled)
{
    filled->replace(RepeatEndTag, QStringLiteral("</ZRT_MESSAGES_REPEAT >"));
    if (blindsOpening)
        filled->replace(RepeatTag, QStringLiteral("<ZRT_MESSAGES_REPEAT >"));
}
} // namespace

QString cMessages::ProcessHTMLTags(const QString& strTemplate, qint32 flags) const
{
    const BusyPointer busy;
    const QString counted = TemplateHelper::ReplaceTag(strTemplate, CountTag, QString::number(Count()),
                                                       TemplateHelper::TagValue::EncodedForHTML);
    return counted.contains(RepeatTag) ? ExpandRepeats(counted, flags) : JoinedPages(counted, flags);
}

QString cMessages::ExpandRepeats(const QString& strTemplate, qint32 flags) const
{
    QString page;
    QString rest = strTemplate;
    for (;;) {
        const qsizetype start = rest.indexOf(RepeatTag);
        const qsizetype end = start < 0 ? -1 : rest.indexOf(RepeatEndTag, start);
        if (end < 0)
            return page += rest;
        const qsizetype blockStart = start + RepeatTag.size();
        const QString block = rest.sliced(blockStart, end - blockStart);
        const bool isNested = block.contains(RepeatTag);
        if (isNested && block.size() * Count() > MostNestedCharacters) {
            WriteDebugLog(QStringLiteral("ProcessHTMLTags: repeat blocks within repeat blocks are left as they stand; "
                                         "the page would be too large"));
            return page += rest;
        }
        page += QStringView(rest).first(start);
        rest = rest.sliced(end + RepeatEndTag.size());
        if (!isNested) {
            AppendBlocks(block, flags, &page);
            continue;
        }
        // What the copies repeat is looked for behind their first character: a block that begins with another one
        // would otherwise be taken for that.
        QString copies;
        AppendBlocks(block, flags, &copies);
        page += QStringView(copies).first(qMin(qsizetype{1}, copies.size()));
        rest.prepend(QStringView(copies).sliced(qMin(qsizetype{1}, copies.size())));
    }
}

/// A copy of the block for each message. They may be large, so that each is put where it stays.
void cMessages::AppendBlocks(const QString& block, qint32 flags, QString* page) const
{
    const bool isNested = block.contains(RepeatTag);
    for (const cMessagePtr& message : Messages_) {
        if (!message)
            continue;
        QString filled = message->ProcessHTMLTags(block, flags);
        BlindRepeatTags(!isNested, &filled);
        *page += filled;
    }
}

QString cMessages::JoinedPages(const QString& strTemplate, qint32 flags) const
{
    const bool breaksPages = (flags & mphPrintMessagePerPage) != 0;
    HtmlDocument main;
    if (breaksPages) {
        main.Write(QStringLiteral("<STYLE TYPE=\"text/css\">\r\n"));
        main.Write(QStringLiteral("   P.breakhere {page-break-before: always}\r\n"));
        main.Write(QStringLiteral("</STYLE>\r\n"));
    }
    bool isFirst = true;
    for (const cMessagePtr& message : Messages_) {
        if (!message)
            continue;
        HtmlDocument one;
        one.Write(message->ProcessHTMLTags(strTemplate, flags));
        if (isFirst) {
            main.Write(one.DocumentElement().InnerHTML());
        } else {
            if (breaksPages)
                main.Body().InsertAdjacentHTML(QStringLiteral("beforeEnd"),
                                               QStringLiteral("<P CLASS=\"breakhere\"></p>"));
            main.Body().AppendBodyOf(std::move(one));
        }
        isFirst = false;
    }
    main.SetTitle(QStringLiteral("Message List"));
    QString page = QStringLiteral("<html>");
    main.DocumentElement().AppendInnerHTML(&page);
    return page += QStringLiteral("</html>");
}
