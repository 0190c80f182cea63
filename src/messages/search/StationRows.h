// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/search/SearchIndex.h"

#include <functional>
#include <vector>

class cTolvaDatabase;

/// A mail that was read for the index.
struct SearchedMail
{
    MessageState State;
    QByteArray Octets; ///< Its beginning.
};

/// All rows that a station has in a range of references.
struct StationRange
{
    RangeMark Mark;
    std::vector<MessageState> Rows; ///< By their references.
};

/// What a station says of its messages, as far as its search index goes by it: the columns that come with a mail, and
/// the text itself of drafts, which somebody may change and nothing else. dao::Error for what cannot be read.
namespace StationRows
{

/// The rows of the range that begins with this reference.
StationRange ReadRange(const cTolvaDatabase& station, qint32 first);
/// Their mark alone, which takes a part of the time. Texts of drafts are not in it.
RangeMark ReadMark(const cTolvaDatabase& station, qint32 first);
/// The rows of these messages, drafts mostly, by their references.
std::vector<MessageState> ReadDrafts(const cTolvaDatabase& station, const std::vector<qint32>& references);
/// Reads the mails of these messages, the highest reference first, until take answers false; true when it never did.
/// Those that the station has no more are passed over.
bool ReadMails(const cTolvaDatabase& station, const std::vector<qint32>& references,
               const std::function<bool(SearchedMail&& mail)>& take);

} // namespace StationRows
