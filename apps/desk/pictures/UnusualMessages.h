// SPDX-License-Identifier: Apache-2.0
#pragma once

class cTolvaDatabase;

/// Messages that try what a list and a viewer can show, for pictures.
namespace UnusualMessages
{
/// A new folder with long names, subjects from right to left, emoji and the like; its reference.
int FileInto(cTolvaDatabase& database);
/// That many ordinary messages in the Inbox, in one transaction.
void FileMany(cTolvaDatabase& database, int count);
} // namespace UnusualMessages
