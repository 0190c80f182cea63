// SPDX-License-Identifier: Apache-2.0
#include "platform/html/StyleFilter.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringView>

#include <optional>

namespace
{
constexpr int DeepestMedia = 4;

/// Positions are refused as well, so that nothing on a page can lie over something else.
bool IsHarmless(const QString& property)
{
    static const QSet<QString> refused = {QStringLiteral("position"), QStringLiteral("behavior"),
                                          QStringLiteral("filter"), QStringLiteral("content"),
                                          QStringLiteral("-moz-binding")};
    return !refused.contains(property);
}

std::optional<QString> Declaration(const QString& text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^([a-zA-Z-]+)\\s*:\\s*((?:[\\w\\s#.,%!+\\-/\"']|rgba?\\([\\d\\s,.%/]*\\))+)$"));
    // Without runs of blanks, which the pattern could share out in too many ways.
    const QRegularExpressionMatch match = pattern.match(text.simplified());
    if (!match.hasMatch() || !IsHarmless(match.captured(1).toLower()))
        return std::nullopt;
    const QString value = match.captured(2);
    if (value.count(u'"') % 2 != 0 || value.count(u'\'') % 2 != 0)
        return std::nullopt;
    return match.captured(1).toLower() + QStringLiteral(": ") + value;
}

QString WithoutComments(const QString& sheet)
{
    QString result;
    qsizetype done = 0;
    for (qsizetype start = sheet.indexOf(u"/*"); start >= 0; start = sheet.indexOf(u"/*", done)) {
        result += QStringView(sheet).sliced(done, start - done);
        result += u' ';
        const qsizetype end = sheet.indexOf(u"*/", start + 2);
        if (end < 0)
            return result;
        done = end + 2;
    }
    return result + sheet.sliced(done);
}

bool IsSelector(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^[\\w\\s.#:,>+~*\\-]+$"));
    return pattern.match(text).hasMatch();
}

/// Behind the bracket that closes the one at the position; -1 when none does.
qsizetype BehindBlock(const QString& sheet, qsizetype open)
{
    int depth = 0;
    for (qsizetype i = open; i < sheet.size(); ++i) {
        depth += sheet.at(i) == u'{' ? 1 : sheet.at(i) == u'}' ? -1 : 0;
        if (depth == 0)
            return i + 1;
    }
    return -1;
}

QString Rules(const QString& sheet, int depth)
{
    static const QRegularExpression media(QStringLiteral("^@media\\s+[\\w\\s,]+$"),
                                          QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression page(QStringLiteral("^@page(\\s*:?[\\w]+)?$"),
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression end(QStringLiteral("[{;]"));
    QString result;
    qsizetype position = 0;
    for (;;) {
        const qsizetype open = sheet.indexOf(end, position);
        if (open < 0)
            return result;
        const QString prelude = sheet.sliced(position, open - position).simplified();
        if (sheet.at(open) == u';') {
            position = open + 1; // @import and its like
            continue;
        }
        position = BehindBlock(sheet, open);
        if (position < 0)
            return result;
        const QString block = sheet.sliced(open + 1, position - open - 2);
        if (media.match(prelude).hasMatch() && depth < DeepestMedia)
            result += prelude + QStringLiteral(" {\n") + Rules(block, depth + 1) + QStringLiteral("}\n");
        else if (!block.contains(u'{') && (page.match(prelude).hasMatch() || IsSelector(prelude)))
            result += prelude + QStringLiteral(" { ") + StyleFilter::Declarations(block) + QStringLiteral(" }\n");
    }
}
} // namespace

QString StyleFilter::Declarations(const QString& declarations)
{
    QStringList kept;
    for (const QString& text : WithoutComments(declarations).split(u';')) {
        if (const std::optional<QString> declaration = Declaration(text))
            kept.append(*declaration);
    }
    return kept.join(QStringLiteral("; "));
}

QString StyleFilter::Sheet(const QString& sheet)
{
    return Rules(WithoutComments(sheet), 0);
}
