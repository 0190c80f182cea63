// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/SafeDocument.h"

#include <QList>
#include <QString>
#include <QStringList>

/// Sheets of prizes: a page template filled from what a presenter needs to know of each prize.
namespace PrizePage
{

struct Winner
{
    QString Name;
    QString Won;  ///< Date, as it is shown.
    QString Sent; ///< Empty while it was not sent.
    QString Notes;
};

/// A prize in words. Dates as they are shown, empty for none.
struct Prize
{
    qint32 Reference = 0;
    QString Title;
    QString Script; ///< What is read on air.
    QString Notes;
    QString NotesToSupplier;
    QString Supplier;
    QString Start;
    QString End;
    QString Hours; ///< When it may go out, in words.
    qint32 Supplied = 0;
    qint32 Won = 0;
    QList<Winner> Winners;
};

/// The template filled and made safe. Its tags stand for text, which is encoded; a value is never searched for tags.
/// What stands between <ZRT_PRIZES_REPEAT> and its end tag comes once for each prize, and what stands in that between
/// <ZRT_WINNERS_REPEAT> and its end tag once for each winner. A template without the first is filled from the first
/// prize. Tags that are not known are left out.
SafeDocument Fill(const QString& pageTemplate, const QList<Prize>& prizes);

} // namespace PrizePage
