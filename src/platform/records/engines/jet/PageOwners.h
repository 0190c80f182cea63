// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/Findings.h"

#include <vector>

namespace dao::jet
{

/// Who owns each page of a file. Nobody owns pages that the file's makers lost; two owners, or one of a page that is
/// marked as free, are damage.
class PageOwners
{
public:
    PageOwners(quint32 pageCount, Findings& findings) : Owners_(pageCount, 0), Findings_(findings) {}

    /// A number for an owner, to claim pages under.
    int Name(const QString& owner)
    {
        Names_.push_back(owner);
        return static_cast<int>(Names_.size());
    }
    /// False, as a finding, when somebody owns it already or the file ends before it.
    bool Claim(quint32 page, int owner)
    {
        if (page >= Owners_.size()) {
            Findings_.AddDamage(
                QStringLiteral("%1 is said to have page %2, and the file ends before it").arg(NameOf(owner)).arg(page));
            return false;
        }
        if (Owners_[page] != 0) {
            Findings_.AddDamage(
                QStringLiteral("page %1 belongs to %2 and to %3").arg(page).arg(NameOf(Owners_[page]), NameOf(owner)));
            return false;
        }
        Owners_[page] = owner;
        return true;
    }
    bool Owns(int owner, quint32 page) const { return page < Owners_.size() && Owners_[page] == owner; }
    /// Of what many share: no finding when the same owner comes again.
    void ClaimShared(quint32 page, int owner)
    {
        if (!Owns(owner, page))
            Claim(page, owner);
    }
    void RequireNotFree(const std::vector<quint32>& freePages)
    {
        for (const quint32 page : freePages) {
            if (page < Owners_.size() && Owners_[page] != 0)
                Findings_.AddDamage(
                    QStringLiteral("page %1 belongs to %2 and is marked as free").arg(page).arg(NameOf(Owners_[page])));
        }
    }

private:
    const QString& NameOf(int owner) const { return Names_[static_cast<std::size_t>(owner - 1)]; }

    std::vector<int> Owners_; ///< 0 for nobody.
    std::vector<QString> Names_;
    Findings& Findings_;
};

} // namespace dao::jet
