// SPDX-License-Identifier: Apache-2.0
#include "StoredState.h"

#include "station/DeskStation.h"

#include <QObject>

QString WhatBecameOf(const cMessage& shown, DeskStation& station)
{
    const auto row = station.Database().OpenMessageRows({QStringLiteral("Category")},
                                                        QStringLiteral("[Reference]=%1").arg(shown.Reference()));
    if (row->AtEOF())
        return QObject::tr("This message was deleted meanwhile. What you see is how it was when you opened it.");
    const qint32 category = row->Collect(QStringLiteral("Category")).toInt();
    if (category == shown.Category())
        return QString();
    const clsCategory* folder = station.Database().MessageCategories().FindCategory(category);
    return QObject::tr("This message was moved to %1 meanwhile.")
        .arg(folder ? folder->Description() : QObject::tr("another folder"));
}
