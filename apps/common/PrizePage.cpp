// SPDX-License-Identifier: Apache-2.0
#include "PrizePage.h"

#include "TemplateTags.h"

namespace
{
using TemplateTags::ReplaceBlocks;
using TemplateTags::ReplaceTags;
using TemplateTags::Values;

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
