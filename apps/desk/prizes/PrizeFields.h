// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "prizes/cPrize.h"

#include <QStringList>

#include <array>

/// What a user edits of a prize: everything but what the store counts by itself. A plain value.
struct PrizeFields
{
    QString Title;
    QString Script;
    QString Notes;
    QString NotesToSupplier;
    qint32 SupplierReference = 0;
    qint32 NumberSupplied = 0;
    Date StartDate;
    Date EndDate;
    /// As cPrize has them, Monday first; always 24 characters each.
    std::array<QString, 7> Hours;

    static constexpr int LongestTitle = 255;

    static PrizeFields Of(const cPrize& prize);
    /// Writes what differs, and nothing else.
    void WriteTo(cPrize& prize) const;

    /// What differs, as the window calls it.
    QStringList NamesOfChanges(const PrizeFields& other) const;
    /// What this has where it differs from base, else what other has.
    PrizeFields MergedInto(const PrizeFields& other, const PrizeFields& base) const;
    /// One line a field that differs from other: "Title: Two tickets".
    QString DifferencesInWords(const PrizeFields& other) const;

    friend bool operator==(const PrizeFields&, const PrizeFields&) = default;
};
