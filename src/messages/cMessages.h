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

private:
    std::vector<cMessagePtr> Messages_;
};
