// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "platform/Export.h"

#include <vector>

/// An ordered list of messages, numbered from 1 to Count. It shares its messages with whoever else holds them. At most
/// 32,767.
class TOLVA_EXPORT cMessages
{
public:
    qint16 Count() const { return static_cast<qint16>(Messages_.size()); }
    /// Null outside 1 to Count.
    cMessagePtr Message(qint16 index) const;
    /// Does nothing outside 1 to Count.
    void SetMessage(qint16 index, const cMessagePtr& message);
    /// False for null, and when the list is full.
    bool Add(const cMessagePtr& message);
    /// The later messages move one place forward. False outside 1 to Count.
    bool Remove(qint16 index);
    void Clear() { Messages_.clear(); }

    /// The template filled from all messages: what stands between the repeat tags once for each, or, without such tags,
    /// one page that holds a filled copy for each. flags: eMsgProcessHTMLTags, added up. Shows the busy pointer.
    QString ProcessHTMLTags(const QString& strTemplate, qint32 flags = 0) const;

private:
    QString ExpandRepeats(const QString& strTemplate, qint32 flags) const;
    void AppendBlocks(const QString& block, qint32 flags, QString* page) const;
    QString JoinedPages(const QString& strTemplate, qint32 flags) const;

    std::vector<cMessagePtr> Messages_;
};
