// SPDX-License-Identifier: Apache-2.0
#include "messages/cMessages.h"

#include <limits>

cMessagePtr cMessages::Message(qint16 index) const
{
    if (index < 1 || index > Count())
        return nullptr;
    return Messages_[static_cast<std::size_t>(index - 1)];
}

void cMessages::SetMessage(qint16 index, const cMessagePtr& message)
{
    if (index >= 1 && index <= Count())
        Messages_[static_cast<std::size_t>(index - 1)] = message;
}

bool cMessages::Add(const cMessagePtr& message)
{
    if (!message || Count() == std::numeric_limits<qint16>::max())
        return false;
    Messages_.push_back(message);
    return true;
}

bool cMessages::Remove(qint16 index)
{
    if (index < 1 || index > Count())
        return false;
    Messages_.erase(Messages_.begin() + (index - 1));
    return true;
}
