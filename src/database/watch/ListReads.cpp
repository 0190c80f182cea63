// SPDX-License-Identifier: Apache-2.0
#include "database/watch/ListReads.h"

bool ReadFailures::Take(const dao::Error& error)
{
    ++Rows_;
    // A damaged page holds some rows; everything else that is wrong is so with all of them.
    IsUnanswered_ = error.Number() != dao::errFileDamaged && error.Number() != dao::errDataTypeConversion &&
                    error.Number() != dao::errTypeMismatch && error.Number() != dao::errOverflow;
    if (IsUnanswered_)
        Error_ = error;
    return !IsUnanswered_;
}
