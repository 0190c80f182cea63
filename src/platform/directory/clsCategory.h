// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/Database.h"

#include <QString>

#include <memory>
#include <vector>

/// One node of a tree of categories (the message folders), with its sub-categories. A node owns the nodes below it.
/// Siblings stand by SortKey; among equals the fixed ones come first by Reference (the Inbox leads), then the others by
/// Description without regard to case, then by Reference.
class TOLVA_EXPORT clsCategory
{
public:
    clsCategory() = default;
    /// However deep the tree is, it is destroyed without recursion.
    ~clsCategory();
    clsCategory(clsCategory&&) = default;
    clsCategory& operator=(clsCategory&&) = default;
    clsCategory(const clsCategory&) = delete;
    clsCategory& operator=(const clsCategory&) = delete;

    qint16 Reference() const { return Reference_; }
    void SetReference(qint16 reference) { Reference_ = reference; }
    qint32 ParentReference() const { return ParentReference_; }
    void SetParentReference(qint32 reference) { ParentReference_ = reference; }
    const QString& Description() const { return Description_; }
    void SetDescription(const QString& description) { Description_ = description; }
    qint32 SortKey() const { return SortKey_; }
    void SetSortKey(qint32 key) { SortKey_ = key; }
    qint32 ForeColour() const { return ForeColour_; }
    void SetForeColour(qint32 colour) { ForeColour_ = colour; }
    qint32 BackColour() const { return BackColour_; }
    void SetBackColour(qint32 colour) { BackColour_ = colour; }
    qint32 EndHours() const { return EndHours_; }
    void SetEndHours(qint32 hours) { EndHours_ = hours; }
    qint32 KillHours() const { return KillHours_; }
    void SetKillHours(qint32 hours) { KillHours_ = hours; }
    /// True (-1) marks a fixed category.
    qint32 UserLong() const { return UserLong_; }
    bool IsFixed() const { return UserLong_ == -1; }
    void SetUserLong(qint32 value) { UserLong_ = value; }
    const QString& UserString() const { return UserString_; }
    void SetUserString(const QString& text) { UserString_ = text; }
    const QString& IconReference() const { return IconReference_; }
    void SetIconReference(const QString& key) { IconReference_ = key; }

    /// Loads the node whose Reference is set, and all below it, from the table, in one read. Reference 0 is the root of
    /// the whole tree: its own fields stay, and rows whose parent is absent stand directly below it, so that no folder
    /// is ever out of reach. Rows that form a ring are cut at their lowest reference and treated the same way; such
    /// rows keep the ParentReference that is stored. A row whose reference does not fit 16 bits is no folder and is
    /// left out. A node that the table lacks keeps its fields and has no sub-categories. dao::Error as the table raises
    /// it; the node is as it was then. title: of no effect; hosts pass it.
    void LoadCategories(dao::Database& database, const QString& title, const QString& tableName);

    /// This node or one below it at any depth; null when there is none. The pointer lives until the next load.
    clsCategory* FindCategory(qint32 reference);
    const clsCategory* FindCategory(qint32 reference) const;

    int SubCategoryCount() const { return static_cast<int>(SubCategories_.size()); }
    /// index: from 1. Null outside.
    clsCategory* SubCategory(int index);
    const clsCategory* SubCategory(int index) const;
    /// Takes a node in as the last sub-category and sets its parent to this node.
    clsCategory& AddSubCategory(std::unique_ptr<clsCategory> category);
    /// Takes the node at index (from 1) out and hands it over; null outside.
    std::unique_ptr<clsCategory> TakeSubCategory(int index);

private:
    qint16 Reference_ = 0;
    qint32 ParentReference_ = 0;
    QString Description_;
    qint32 SortKey_ = 0;
    qint32 ForeColour_ = 0;
    qint32 BackColour_ = 0;
    qint32 EndHours_ = 0;
    qint32 KillHours_ = 0;
    qint32 UserLong_ = 0;
    QString UserString_;
    QString IconReference_;
    std::vector<std::unique_ptr<clsCategory>> SubCategories_;
};
