// SPDX-License-Identifier: Apache-2.0
#include "commands/MessageTable.h"

#include "DisplayText.h"
#include "Terminal.h"
#include "commands/ListColumns.h"
#include "common/ClockHelper.h"

namespace
{
constexpr int FlagsWidth = 5;
} // namespace

MessageTable::MessageTable(bool showsFolder) : ShowsFolder_(showsFolder)
{
    const int rest =
        qMax(20, Terminal::Width() - ListColumns::ReferenceWidth - FlagsWidth - ListColumns::DateWidth - 4);
    WhoWidth_ = rest / 3;
    FolderWidth_ = showsFolder ? rest / 4 : 0;
    SubjectWidth_ = rest - WhoWidth_ - (showsFolder ? FolderWidth_ + 1 : 0);
}

void MessageTable::Print(const MessageRow& row, Date date, const QString& who, const QString& folder) const
{
    const Date local = ClockHelper::UTCToLocal(date);
    QString line = QString::number(row.Reference).rightJustified(ListColumns::ReferenceWidth) + u' ' +
                   FlagLetters(row) + u' ' +
                   local.Format(QStringLiteral("yyyy-mm-dd hh:nn")).leftJustified(ListColumns::DateWidth) + u' ' +
                   Cell(who, WhoWidth_) + u' ' + Cell(row.Subject, SubjectWidth_);
    if (ShowsFolder_)
        line += u' ' + Cell(folder, FolderWidth_);
    while (line.endsWith(u' '))
        line.chop(1);
    Terminal::PrintLine(line);
}
