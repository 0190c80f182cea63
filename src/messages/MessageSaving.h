// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"

#include <QString>

/// What became of one message of those that were stored together.
struct MessageSaving
{
    bool IsNew = false;
    int ErrorNumber = 0; ///< 0 for a message that is stored.
    QString ErrorDescription;

    bool IsSaved() const { return ErrorNumber == 0; }
};

/// Whether an error lies in the message that was to be stored. With any other the next message would fare no better.
inline bool IsErrorOfMessage(int number)
{
    return number == dao::errOverflow || number == dao::errFieldTooSmall || number == dao::errDataTypeConversion ||
           number == dao::errTypeMismatch;
}
