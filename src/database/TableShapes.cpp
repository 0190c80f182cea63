// SPDX-License-Identifier: Apache-2.0
#include "database/TableCheck.h"

using namespace dao;

namespace
{
TableShape MakePrizesTableShape()
{
    QList<FieldShape> fields = {
        {QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField},
        {QStringLiteral("AddedByReference"), dbLong},
        {QStringLiteral("AddedDate"), dbDate},
    };
    // One mask a week day, a character an hour.
    for (int day = 1; day <= 7; ++day)
        fields.append({QStringLiteral("HourRestrictions%1").arg(day), dbText, 24});
    fields.append({
        {QStringLiteral("StartDate"), dbDate},
        {QStringLiteral("EndDate"), dbDate},
        {QStringLiteral("LastWonDate"), dbDate},
        {QStringLiteral("Title"), dbText},
        {QStringLiteral("SupplierReference"), dbLong},
        {QStringLiteral("NumberSupplied"), dbLong},
        {QStringLiteral("NumberWinners"), dbLong},
        {QStringLiteral("Script"), dbMemo},
        {QStringLiteral("Notes"), dbMemo},
        {QStringLiteral("NotesToSupplier"), dbMemo},
    });
    return {QStringLiteral("Prizes"), fields, {{QStringLiteral("Main"), {QStringLiteral("Reference")}}}};
}
} // namespace

const TableShape& DescriptionTableShape()
{
    static const TableShape shape = {
        QStringLiteral("Description"),
        {
            {QStringLiteral("Description"), dbText, 200},
            {QStringLiteral("Version"), dbSingle},
            {QStringLiteral("Type"), dbLong},
            {QStringLiteral("LastAccessed"), dbText, 200},
            {QStringLiteral("LastAccessedSoftware"), dbText, 200},
            {QStringLiteral("LastBackup"), dbText, 200},
        },
        {{QStringLiteral("Main"), {QStringLiteral("Description")}}},
    };
    return shape;
}

const TableShape& SettingsTableShape()
{
    static const TableShape shape = {
        QStringLiteral("Settings"),
        {
            {QStringLiteral("Item"), dbText, 250},
            {QStringLiteral("Value"), dbMemo},
        },
        {{QStringLiteral("Main"), {QStringLiteral("Item")}}},
    };
    return shape;
}

const TableShape& MessagesTableShape()
{
    static const TableShape shape = {
        QStringLiteral("Messages"),
        {
            {QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField},
            {QStringLiteral("FromKey"), dbText},
            {QStringLiteral("ToKey"), dbText},
            {QStringLiteral("CcKey"), dbText},
            {QStringLiteral("Received"), dbDate},
            {QStringLiteral("Sent"), dbDate},
            {QStringLiteral("SendAfter"), dbDate},
            {QStringLiteral("MessageType"), dbLong},
            {QStringLiteral("Category"), dbInteger},
            {QStringLiteral("MessageStatus"), dbLong},
            {QStringLiteral("HasHighlightWords"), dbInteger},
            {QStringLiteral("Priority"), dbLong},
            {QStringLiteral("PersonalToContact"), dbLong},
            {QStringLiteral("Flags"), dbLong},
            {QStringLiteral("Subject"), dbText},
            {QStringLiteral("Message"), dbMemo},
            {QStringLiteral("MultiPartMessage"), dbInteger},
            {QStringLiteral("SourceIndex"), dbInteger},
        },
        {{QStringLiteral("Main"), {QStringLiteral("Reference")}}},
    };
    return shape;
}

const TableShape& MessageCategoriesTableShape()
{
    static const TableShape shape = {
        QStringLiteral("MessageCategories"),
        {
            {QStringLiteral("ParentReference"), dbLong},
            {QStringLiteral("Reference"), dbLong},
            {QStringLiteral("SortKey"), dbLong},
            {QStringLiteral("Description"), dbText},
            {QStringLiteral("ForeColour"), dbLong},
            {QStringLiteral("BackColour"), dbLong},
            {QStringLiteral("EndHours"), dbLong},
            {QStringLiteral("KillHours"), dbLong},
            {QStringLiteral("UserLong"), dbLong},
            {QStringLiteral("UserString"), dbText},
            {QStringLiteral("IconReference"), dbText},
        },
        {
            {QStringLiteral("Main"), {QStringLiteral("Reference")}},
            {QStringLiteral("ParentReference"), {QStringLiteral("ParentReference"), QStringLiteral("Reference")}},
        },
    };
    return shape;
}

const TableShape& PrizesTableShape()
{
    static const TableShape shape = MakePrizesTableShape();
    return shape;
}

const TableShape& PrizeWinnersTableShape()
{
    static const TableShape shape = {
        QStringLiteral("PrizeWinners"),
        {
            {QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField},
            {QStringLiteral("PrizeReference"), dbLong},
            // 16 bits wide although a contact's reference has 32: files in use have it so.
            {QStringLiteral("WinnerReference"), dbInteger},
            {QStringLiteral("AwardedByReference"), dbLong},
            {QStringLiteral("WonDate"), dbDate},
            {QStringLiteral("SentByReference"), dbLong},
            {QStringLiteral("SentDate"), dbDate},
            {QStringLiteral("Notes"), dbMemo},
            {QStringLiteral("NotesToSupplier"), dbMemo},
        },
        {
            {QStringLiteral("Main"), {QStringLiteral("Reference")}},
            {QStringLiteral("PrizeWinner"), {QStringLiteral("PrizeReference"), QStringLiteral("WinnerReference")}},
        },
    };
    return shape;
}

const TableShape& OnAirTableShape()
{
    static const TableShape shape = {
        QStringLiteral("OnAir"),
        {
            {QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField},
            {QStringLiteral("Position"), dbDouble},
            {QStringLiteral("Message"), dbLong},
            {QStringLiteral("Prize"), dbLong},
            {QStringLiteral("Arrived"), dbDate},
            {QStringLiteral("From"), dbText},
            {QStringLiteral("Original"), dbMemo},
            {QStringLiteral("Text"), dbMemo},
            {QStringLiteral("AddedBy"), dbText},
            {QStringLiteral("State"), dbLong},
            {QStringLiteral("When"), dbDate},
            {QStringLiteral("StateBy"), dbText},
        },
        {{QStringLiteral("Main"), {QStringLiteral("Reference")}}},
    };
    return shape;
}
