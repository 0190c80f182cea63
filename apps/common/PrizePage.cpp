// SPDX-License-Identifier: Apache-2.0
#include "PrizePage.h"

#include <QHash>
#include <QRegularExpression>

#include <functional>

namespace
{
using Values = QHash<QString, QString>;

/// In one pass over the template, so that a value that looks like a tag stays what it is.
QString ReplaceTags(const QString& text, const Values& values)
{
    static const QRegularExpression tag(QStringLiteral("</?ZRT_([A-Z_]+)>"));
    QString result;
    qsizetype done = 0;
    for (auto it = tag.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        result += QStringView(text).sliced(done, match.capturedStart() - done);
        result += values.value(match.captured(1)).toHtmlEscaped();
        done = match.capturedEnd();
    }
    return result + text.sliced(done);
}

/// Each block of that name replaced by what fill makes of it, the rest by what other makes of it.
QString ReplaceBlocks(const QString& text, const QString& name, const std::function<QString(const QString&)>& fill,
                      const std::function<QString(const QString&)>& other)
{
    const QString open = QStringLiteral("<ZRT_%1>").arg(name);
    const QString close = QStringLiteral("</ZRT_%1>").arg(name);
    QString result;
    qsizetype done = 0;
    for (;;) {
        const qsizetype start = text.indexOf(open, done);
        const qsizetype end = start < 0 ? -1 : text.indexOf(close, start);
        if (end < 0)
            return result + other(text.sliced(done));
        result += other(text.sliced(done, start - done));
        result += fill(text.sliced(start + open.size(), end - start - open.size()));
        done = end + close.size();
    }
}

Values ValuesOf(const PrizePage::Winner& winner)
{
    return {{QStringLiteral("WINNER_NAME"), winner.Name},
            {QStringLiteral("WINNER_WON"), winner.Won},
            {QStringLiteral("WINNER_SENT"), winner.Sent},
            {QStringLiteral("WINNER_NOTES"), winner.Notes}};
}

Values ValuesOf(const PrizePage::Prize& prize)
{
    return {{QStringLiteral("PRIZE_REFERENCE"), QString::number(prize.Reference)},
            {QStringLiteral("PRIZE_TITLE"), prize.Title},
            {QStringLiteral("PRIZE_SCRIPT"), prize.Script},
            {QStringLiteral("PRIZE_NOTES"), prize.Notes},
            {QStringLiteral("PRIZE_NOTESTOSUPPLIER"), prize.NotesToSupplier},
            {QStringLiteral("PRIZE_SUPPLIER"), prize.Supplier},
            {QStringLiteral("PRIZE_START"), prize.Start},
            {QStringLiteral("PRIZE_END"), prize.End},
            {QStringLiteral("PRIZE_HOURS"), prize.Hours},
            {QStringLiteral("PRIZE_SUPPLIED"), QString::number(prize.Supplied)},
            {QStringLiteral("PRIZE_WON"), QString::number(prize.Won)},
            {QStringLiteral("PRIZE_LEFT"), QString::number(qMax(prize.Supplied - prize.Won, 0))}};
}

QString FillPrize(const QString& block, const PrizePage::Prize& prize, const Values& common)
{
    Values values = ValuesOf(prize);
    values.insert(common);
    const auto fillWinners = [&](const QString& inner) {
        QString rows;
        for (const PrizePage::Winner& winner : prize.Winners) {
            Values ofWinner = values;
            ofWinner.insert(ValuesOf(winner));
            rows += ReplaceTags(inner, ofWinner);
        }
        return rows;
    };
    return ReplaceBlocks(block, QStringLiteral("WINNERS_REPEAT"), fillWinners,
                         [&](const QString& rest) { return ReplaceTags(rest, values); });
}
} // namespace

SafeDocument PrizePage::Fill(const QString& pageTemplate, const QList<Prize>& prizes)
{
    const Values common{{QStringLiteral("PRIZES_COUNT"), QString::number(prizes.size())}};
    const auto fillPrizes = [&](const QString& block) {
        QString sheets;
        for (const Prize& prize : prizes)
            sheets += FillPrize(block, prize, common);
        return sheets;
    };
    const bool isList = pageTemplate.contains(QStringLiteral("<ZRT_PRIZES_REPEAT>"));
    return MakeDocumentSafe(
        ReplaceBlocks(pageTemplate, QStringLiteral("PRIZES_REPEAT"), fillPrizes, [&](const QString& rest) {
            return isList || prizes.isEmpty() ? ReplaceTags(rest, common) : FillPrize(rest, prizes.first(), common);
        }));
}
