// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/FileFormat.h"

#include <QByteArray>
#include <QHash>

#include <optional>
#include <vector>

namespace dao::jet
{

/// The pages that a transaction has changed and not committed yet. Steps nest: what came since the last one began can
/// be taken back, or kept for the one around it.
class PageChanges
{
public:
    bool IsEmpty() const { return Pages_.isEmpty(); }
    const QHash<quint32, QByteArray>& Pages() const { return Pages_; }
    /// Null when the page is not changed.
    const QByteArray* Find(quint32 number) const
    {
        const auto found = Pages_.constFind(number);
        return found == Pages_.constEnd() ? nullptr : &*found;
    }
    void Set(quint32 number, const QByteArray& page);

    void BeginStep() { Steps_.emplace_back(); }
    void KeepStep();
    void TakeBackStep();
    /// All of them, every step.
    void Clear();

private:
    /// Of each page what it was before the step; nothing where it was not changed then.
    using Step = QHash<quint32, std::optional<QByteArray>>;

    QHash<quint32, QByteArray> Pages_;
    std::vector<Step> Steps_;
};

} // namespace dao::jet
