// SPDX-License-Identifier: Apache-2.0
#include "PageChecker.h"

#include <QRegularExpression>
#include <QSet>

#include <functional>
#include <gumbo.h>

namespace
{
const QSet<QString> Elements{
    QStringLiteral("html"), QStringLiteral("head"),  QStringLiteral("body"), QStringLiteral("div"),
    QStringLiteral("span"), QStringLiteral("b"),     QStringLiteral("i"),    QStringLiteral("u"),
    QStringLiteral("s"),    QStringLiteral("sub"),   QStringLiteral("sup"),  QStringLiteral("a"),
    QStringLiteral("img"),  QStringLiteral("br"),    QStringLiteral("hr"),   QStringLiteral("ul"),
    QStringLiteral("ol"),   QStringLiteral("li"),    QStringLiteral("tr"),   QStringLiteral("td"),
    QStringLiteral("th"),   QStringLiteral("table"), QStringLiteral("tbody")};

/// The values that an attribute may have.
const QHash<QString, QString> Attributes{
    {QStringLiteral("style"), QStringLiteral(".*")},
    {QStringLiteral("href"), QStringLiteral("(https?://[\\x21-\\x7E]+|mailto:[\\x21-\\x7E]+)")},
    {QStringLiteral("src"), QStringLiteral("(cid:[\\x21-\\x7E]+|embedded:[0-9]+)")},
    {QStringLiteral("title"), QStringLiteral(".*")},
    {QStringLiteral("align"), QStringLiteral("left|right|center|justify")},
    {QStringLiteral("valign"), QStringLiteral("top|middle|bottom")},
    {QStringLiteral("dir"), QStringLiteral("rtl")},
    {QStringLiteral("width"), QStringLiteral("[0-9]{1,4}%?")},
    {QStringLiteral("height"), QStringLiteral("[0-9]{1,4}")},
    {QStringLiteral("border"), QStringLiteral("[0-8]")},
    {QStringLiteral("cellspacing"), QStringLiteral("[0-9]{1,2}")},
    {QStringLiteral("cellpadding"), QStringLiteral("[0-9]{1,2}")},
    {QStringLiteral("colspan"), QStringLiteral("[0-9]{1,2}")},
    {QStringLiteral("rowspan"), QStringLiteral("[0-9]{1,2}")},
    {QStringLiteral("start"), QStringLiteral("[0-9]{1,7}")}};

const char* const StyleValues =
    "(color|background-color|border-color):#[0-9a-f]{6}|font-size:[0-9]{1,3}\\.[0-9]pt|font-weight:(bold|normal)|"
    "font-style:(italic|normal)|text-decoration:(none|underline|line-through|underline line-through)|"
    "font-family:'[\\w -]+'(, '[\\w -]+')*|white-space:(pre-wrap|normal)|display:none|"
    "(margin|padding)-(top|right|bottom|left):[0-9]{1,3}px|border:[0-8]px solid #[0-9a-f]{6}|border-collapse:collapse|"
    "border-style:solid|list-style-type:[a-z-]+";

bool Matches(const QString& value, const QString& pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern),
                              QRegularExpression::DotMatchesEverythingOption |
                                  QRegularExpression::UseUnicodePropertiesOption)
        .match(value)
        .hasMatch();
}

void CheckStyle(const QString& style, QStringList* faults)
{
    for (const QString& declaration : style.split(u';', Qt::SkipEmptyParts)) {
        if (!Matches(declaration, QLatin1String(StyleValues)))
            faults->append(QStringLiteral("style ") + declaration);
    }
}

void CheckElement(const GumboElement& element, QStringList* faults)
{
    const QString name = QLatin1String(gumbo_normalized_tagname(element.tag));
    if (element.tag_namespace != GUMBO_NAMESPACE_HTML || !Elements.contains(name))
        faults->append(QStringLiteral("element ") + name);
    for (unsigned i = 0; i < element.attributes.length; ++i) {
        const auto* attribute = static_cast<const GumboAttribute*>(element.attributes.data[i]);
        const QString attributeName = QString::fromUtf8(attribute->name);
        const QString value = QString::fromUtf8(attribute->value);
        const auto pattern = Attributes.constFind(attributeName);
        if (pattern == Attributes.constEnd() || !Matches(value, *pattern))
            faults->append(QStringLiteral("attribute %1=%2").arg(attributeName, value));
        else if (attributeName == QLatin1String("style"))
            CheckStyle(value, faults);
    }
}

void ForEachNode(const QString& html, const std::function<void(const GumboNode&)>& visit)
{
    const QByteArray octets = html.toUtf8();
    GumboOutput* output =
        gumbo_parse_with_options(&kGumboDefaultOptions, octets.constData(), static_cast<size_t>(octets.size()));
    QList<const GumboNode*> nodes{output->root};
    while (!nodes.isEmpty()) {
        const GumboNode* node = nodes.takeLast();
        visit(*node);
        if (node->type != GUMBO_NODE_ELEMENT && node->type != GUMBO_NODE_TEMPLATE)
            continue;
        const GumboVector& children = node->v.element.children;
        for (unsigned i = children.length; i > 0; --i)
            nodes.append(static_cast<const GumboNode*>(children.data[i - 1]));
    }
    gumbo_destroy_output(&kGumboDefaultOptions, output);
}
} // namespace

QStringList PageChecker::Faults(const QString& html)
{
    QStringList faults;
    if (html.contains(QChar(0)))
        faults.append(QStringLiteral("a NUL"));
    ForEachNode(html, [&](const GumboNode& node) {
        if (node.type == GUMBO_NODE_ELEMENT)
            CheckElement(node.v.element, &faults);
        else if (node.type == GUMBO_NODE_TEMPLATE || node.type == GUMBO_NODE_COMMENT || node.type == GUMBO_NODE_CDATA)
            faults.append(QStringLiteral("node of type %1").arg(node.type));
    });
    return faults;
}

QString PageChecker::TextOf(const QString& html)
{
    QString text;
    ForEachNode(html, [&](const GumboNode& node) {
        if (node.type == GUMBO_NODE_TEXT || node.type == GUMBO_NODE_WHITESPACE)
            text += QString::fromUtf8(node.v.text.text);
    });
    return text.simplified();
}
