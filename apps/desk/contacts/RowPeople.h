// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "contacts/ContactNames.h"
#include "database/watch/FileWatch.h"

#include <QElapsedTimer>
#include <QObject>

class DeskStation;
class uMessagesList;

/// The people on the rows of a list of messages, by the names that the directory has for them. Reads the directory in
/// one piece before the list reads its rows, and only when it may have changed since. A child of the list; the station
/// outlives it.
class RowPeople : public QObject
{
    Q_OBJECT

public:
    RowPeople(DeskStation& station, uMessagesList& list);

private:
    void Refresh();

    DeskStation& Station_;
    ContactNames Names_;
    FileWatch File_;
    QElapsedTimer SinceRead_;
};
