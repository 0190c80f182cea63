// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/PageFile.h"

#include <vector>

namespace dao::jet
{

/// What stands in a row for a memo or a blob.
struct LongReference
{
    enum class Place : quint8
    {
        Chain = 0,
        OneRow = 1,
        Inline = 2
    };

    quint32 Size = 0; ///< In octets.
    Place Where = Place::Inline;
    RowPlace First;
    OctetView InlineOctets; ///< Shares the row's octets.
};

/// Fault when it is none.
LongReference ReadLongReference(const OctetView& stored);
/// The octets of a long value. Fault when it is not all there. pieces: where its rows stand.
QByteArray ReadLongValue(PageFile& file, const OctetView& stored, std::vector<RowPlace>* pieces = nullptr);

/// As much of a long value as was asked for.
struct LongBeginning
{
    QByteArray Octets;
    bool IsWhole = false;
};
/// At most so many octets of it. What lies behind them is not looked at. Fault.
LongBeginning ReadLongBeginning(PageFile& file, const OctetView& stored, qsizetype mostOctets);

} // namespace dao::jet
