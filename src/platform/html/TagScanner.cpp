// SPDX-License-Identifier: Apache-2.0
#include "platform/html/TagScanner.h"

#include "platform/html/CharacterReferences.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <functional>

namespace
{
struct Tag
{
    QString Name; ///< In lower case; empty for a comment and the like.
    bool IsEnd = false;
    qsizetype Begin = 0;
    qsizetype End = 0; ///< Behind its ">".
};

/// Where a tag that begins at this "<" ends; quotes hide a ">". Without an end of its own, a tag ends with the page.
qsizetype EndOfTag(const QString& html, qsizetype begin)
{
    QChar quote;
    for (qsizetype i = begin + 1; i < html.size(); ++i) {
        const QChar character = html.at(i);
        if (!quote.isNull())
            quote = character == quote ? QChar() : quote;
        else if ((character == u'"' || character == u'\'') && html.at(i - 1) == u'=')
            quote = character;
        else if (character == u'>')
            return i + 1;
    }
    return html.size();
}

/// A comment is empty where its ">" follows at once, and "--!>" ends it too.
qsizetype EndOfComment(const QString& html, qsizetype begin)
{
    const QStringView rest = QStringView(html).sliced(begin + 4);
    for (const QStringView empty : {QStringView(u">"), QStringView(u"->")}) {
        if (rest.startsWith(empty))
            return begin + 4 + empty.size();
    }
    for (qsizetype dashes = html.indexOf(QLatin1String("--"), begin + 4); dashes >= 0;
         dashes = html.indexOf(QLatin1String("--"), dashes + 1)) {
        const QStringView end = QStringView(html).sliced(dashes + 2);
        if (end.startsWith(u'>') || end.startsWith(u"!>"))
            return dashes + (end.front() == u'>' ? 3 : 4);
    }
    return html.size();
}

bool IsRawText(const QString& name)
{
    static const QSet<QString> names{QStringLiteral("script"), QStringLiteral("style"), QStringLiteral("title")};
    return names.contains(name);
}

void ForEachTag(const QString& html, const std::function<void(const Tag&)>& visit)
{
    qsizetype position = 0;
    while ((position = html.indexOf(u'<', position)) >= 0 && position + 1 < html.size()) {
        Tag tag;
        tag.Begin = position;
        const QChar next = html.at(position + 1);
        tag.IsEnd = next == u'/';
        if (html.mid(position, 4) == QLatin1String("<!--")) {
            tag.End = EndOfComment(html, position);
        } else if (next.isLetter() || tag.IsEnd || next == u'!' || next == u'?') {
            constexpr qsizetype LongestName = 32;
            for (qsizetype i = position + (tag.IsEnd ? 2 : 1);
                 i < html.size() && html.at(i).isLetterOrNumber() && tag.Name.size() < LongestName; ++i)
                tag.Name += html.at(i).toLower();
            tag.End = EndOfTag(html, position);
        } else {
            ++position;
            continue;
        }
        position = tag.End;
        if (!tag.IsEnd && IsRawText(tag.Name)) {
            const qsizetype end = html.indexOf(QStringLiteral("</") + tag.Name, position, Qt::CaseInsensitive);
            position = end < 0 ? html.size() : end;
            tag.End = position;
        }
        visit(tag);
    }
}

/// Elements that HTML ends by itself, or that have no content.
bool EndsByItself(const QString& name)
{
    static const QSet<QString> names = [] {
        QSet<QString> set;
        for (const char* word :
             {"",       "p",      "li",       "dd",   "dt",       "tr",     "td",      "th",     "tbody", "thead",
              "tfoot",  "option", "optgroup", "rp",   "rt",       "br",     "hr",      "img",    "input", "wbr",
              "meta",   "link",   "base",     "col",  "colgroup", "area",   "rb",      "rtc",    "embed", "param",
              "source", "track",  "html",     "head", "body",     "keygen", "caption", "bgsound"})
            set.insert(QLatin1String(word));
        return set;
    }();
    return names.contains(name);
}

bool BeginsLine(const QString& name)
{
    static const QSet<QString> names = [] {
        QSet<QString> set;
        for (const char* word : {"p",  "div", "br", "tr", "li",         "table", "ul", "ol", "h1", "h2",
                                 "h3", "h4",  "h5", "h6", "blockquote", "pre",   "hr", "dt", "dd", "center"})
            set.insert(QLatin1String(word));
        return set;
    }();
    return names.contains(name);
}
} // namespace

HtmlPatience TagScanner::PatienceWith(const QString& html)
{
    if (html.size() <= HtmlTree::DeepestPage || html.count(u'<') <= HtmlTree::DeepestPage)
        return HtmlPatience::Usual;
    QHash<QString, qsizetype> open;
    qsizetype depth = 0;
    qsizetype deepest = 0;
    ForEachTag(html, [&](const Tag& tag) {
        if (EndsByItself(tag.Name))
            return;
        qsizetype& count = open[tag.Name];
        const qsizetype change = tag.IsEnd ? (count > 0 ? -1 : 0) : 1;
        count += change;
        depth += change;
        deepest = std::max(deepest, depth);
    });
    return deepest > HtmlTree::DeepestPage ? HtmlPatience::Little : HtmlPatience::Usual;
}

QString TagScanner::TextOf(const QString& html)
{
    QString text;
    qsizetype end = 0;
    ForEachTag(html, [&](const Tag& tag) {
        text += QStringView(html).mid(end, tag.Begin - end);
        // Never nothing, so that no two pieces of text make a new tag; but not hundreds of empty lines either.
        const bool isBegin = text.isEmpty() || text.endsWith(QStringLiteral("\n\n"));
        if (BeginsLine(tag.Name) && !isBegin)
            text += u'\n';
        else if (!isBegin && !text.back().isSpace())
            text += u' ';
        end = tag.End;
    });
    return text + html.mid(end);
}

namespace
{
bool ParsesToNothing(const QString& name)
{
    static const QSet<QString> names{QStringLiteral("area"), QStringLiteral("base"),  QStringLiteral("br"),
                                     QStringLiteral("col"),  QStringLiteral("embed"), QStringLiteral("hr"),
                                     QStringLiteral("img"),  QStringLiteral("input"), QStringLiteral("link"),
                                     QStringLiteral("meta"), QStringLiteral("param"), QStringLiteral("source"),
                                     QStringLiteral("wbr")};
    return names.contains(name);
}

bool HidesItself(QStringView tag)
{
    static const QRegularExpression hidden(QStringLiteral("style\\s*=[^>]{0,1000}display\\s*:\\s*none"),
                                           QRegularExpression::CaseInsensitiveOption);
    return tag.contains(u"none", Qt::CaseInsensitive) && hidden.match(tag.toString()).hasMatch();
}

/// The element that hides what is in it, and how many of its name are open within.
struct HiddenElement
{
    QString Name;
    int Depth = 0;

    /// Whether what stands before this tag is hidden.
    bool Take(const Tag& tag, QStringView page)
    {
        const bool isHidden = Depth > 0;
        if (isHidden && tag.Name == Name) {
            Depth += tag.IsEnd ? -1 : 1;
        } else if (!isHidden && !tag.IsEnd && !tag.Name.isEmpty() && !ParsesToNothing(tag.Name) &&
                   HidesItself(page.sliced(tag.Begin, tag.End - tag.Begin))) {
            Name = tag.Name;
            Depth = 1;
        }
        return isHidden;
    }
};

bool DividesWords(const QString& name)
{
    static const QSet<QString> names{QStringLiteral("td"),     QStringLiteral("th"),  QStringLiteral("option"),
                                     QStringLiteral("script"), QStringLiteral("img"), QStringLiteral("style"),
                                     QStringLiteral("title"),  QStringLiteral("dd"),  QStringLiteral("caption")};
    return BeginsLine(name) || names.contains(name);
}
} // namespace

QString TagScanner::ShownText(const QString& html)
{
    QString text;
    HiddenElement hidden;
    qsizetype end = 0;
    ForEachTag(html, [&](const Tag& tag) {
        const bool isHidden = hidden.Take(tag, html);
        if (!isHidden)
            AppendResolved(text, QStringView(html).sliced(end, tag.Begin - end));
        if (DividesWords(tag.Name) && !text.endsWith(u'\n'))
            text += u'\n';
        end = tag.End;
    });
    if (hidden.Depth == 0)
        AppendResolved(text, QStringView(html).sliced(end));
    return text;
}
