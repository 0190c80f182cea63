// SPDX-License-Identifier: Apache-2.0
#include "OnAirPage.h"

#include "TemplateTags.h"
#include "common/ClockHelper.h"

namespace
{
using TemplateTags::Values;

QString MomentInWords(Date universal)
{
    return universal.IsNone() ? QString()
                              : ClockHelper::UTCToLocal(universal).Format(QStringLiteral("d mmm yyyy, hh:nn"));
}

QString StateWords(const OnAirEntry& entry)
{
    switch (entry.State) {
    case OnAirState::Used:
        return QStringLiteral("used");
    case OnAirState::Skipped:
        return QStringLiteral("skipped");
    case OnAirState::Waiting:
        break;
    }
    return QString();
}

Values ValuesOf(const OnAirEntry& entry, qsizetype number)
{
    return {{QStringLiteral("ONAIR_NUMBER"), QString::number(number)},
            {QStringLiteral("ONAIR_KIND"), entry.Prize != 0 ? QStringLiteral("Prize") : QStringLiteral("Message")},
            {QStringLiteral("ONAIR_FROM"), entry.From},
            {QStringLiteral("ONAIR_ARRIVED"), MomentInWords(entry.Arrived)},
            {QStringLiteral("ONAIR_TEXT"), entry.Text},
            {QStringLiteral("ONAIR_ORIGINAL"), entry.IsShortened() ? entry.Original : QString()},
            {QStringLiteral("ONAIR_ADDEDBY"), entry.AddedBy},
            {QStringLiteral("ONAIR_STATE"), StateWords(entry)},
            {QStringLiteral("ONAIR_STATEAT"), MomentInWords(entry.When)},
            {QStringLiteral("ONAIR_STATEBY"), entry.StateBy}};
}
} // namespace

SafeDocument OnAirPage::Fill(const QString& pageTemplate, const QList<OnAirEntry>& order, const QString& station)
{
    const Values common{{QStringLiteral("ONAIR_COUNT"), QString::number(order.size())},
                        {QStringLiteral("STATION_NAME"), station},
                        {QStringLiteral("ONAIR_PRINTED"), MomentInWords(ClockHelper::NowUTC())}};
    const auto fill = [&](const QString& block) {
        QString rows;
        for (qsizetype i = 0; i < order.size(); ++i) {
            Values values = ValuesOf(order.at(i), i + 1);
            values.insert(common);
            rows += TemplateTags::ReplaceTags(block, values);
        }
        return rows;
    };
    return MakeDocumentSafe(
        TemplateTags::ReplaceBlocks(pageTemplate, QStringLiteral("ONAIR_REPEAT"), fill,
                                    [&](const QString& rest) { return TemplateTags::ReplaceTags(rest, common); }));
}
