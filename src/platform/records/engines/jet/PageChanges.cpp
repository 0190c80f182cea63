// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/PageChanges.h"

namespace dao::jet
{

void PageChanges::Set(quint32 number, const QByteArray& page)
{
    if (!Steps_.empty() && !Steps_.back().contains(number)) {
        const QByteArray* before = Find(number);
        Steps_.back().insert(number, before == nullptr ? std::nullopt : std::optional(*before));
    }
    Pages_.insert(number, page);
}

void PageChanges::KeepStep()
{
    const Step step = std::move(Steps_.back());
    Steps_.pop_back();
    if (Steps_.empty())
        return;
    Step& outer = Steps_.back();
    for (auto page = step.cbegin(); page != step.cend(); ++page) {
        if (!outer.contains(page.key()))
            outer.insert(page.key(), *page);
    }
}

void PageChanges::TakeBackStep()
{
    const Step step = std::move(Steps_.back());
    Steps_.pop_back();
    for (auto page = step.cbegin(); page != step.cend(); ++page) {
        if (*page)
            Pages_.insert(page.key(), **page);
        else
            Pages_.remove(page.key());
    }
}

void PageChanges::Clear()
{
    Pages_.clear();
    Steps_.clear();
}

} // namespace dao::jet
