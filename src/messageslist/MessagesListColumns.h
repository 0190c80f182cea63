// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The columns of the messages list's grid. The first is the hidden key of the row.
enum MessagesListColumn
{
    colReference,
    colHead,
    colSubject,
    colFrom,
    colDate,
    colDateSerial,
    columnCount
};
