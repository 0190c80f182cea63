// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Database.h"

#include <QList>
#include <QString>

/// The shape of a table: what a check creates or adds. Nothing that stands in a file already is ever altered or
/// dropped.
struct FieldShape
{
    QString Name;
    dao::DataTypeEnum Type;
    int Size = 0;
    int Attributes = 0;
};

struct IndexShape
{
    QString Name;
    QStringList Fields;
};

struct TableShape
{
    QString Name;
    QList<FieldShape> Fields;
    QList<IndexShape> Indexes; ///< The first one is unique.
};

/// In what the checks of the tables differ.
struct TableCheckRules
{
    bool FirstIndexIsPrimary = true;
    bool AcceptsOutOfMemoryAsAbsent = false; ///< Error 7 means "absent" too.
    bool SetsAllowZeroLength = true;
    bool ReportsIndexFailure = true;
    bool QuotesIndexName = false; ///< In the words of a failed index.
    bool Silent = false;
};

/// Creates the table if it is absent, then adds the fields and indexes that it lacks, comparing names only. 0, or the
/// number of the error that stopped it; a failed index is reported and passed over.
int CheckTable(dao::Database& database, const TableShape& shape, const TableCheckRules& rules);

/// The tables of a station database, in docs/database-format.md table by table.
const TableShape& DescriptionTableShape();
const TableShape& SettingsTableShape();
const TableShape& MessagesTableShape();
const TableShape& MessageCategoriesTableShape();
const TableShape& PrizesTableShape();
const TableShape& PrizeWinnersTableShape();
/// Made when it is first used, and by nothing else.
const TableShape& OnAirTableShape();
