// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Enumerations.h"
#include "platform/directory/clsCategory.h"

#include <memory>

class StationContext;

/// The folders of a station's messages: the tree as it was last loaded, and their rows. Folders that cannot be read or
/// stored are a dao::Error of all but Delete; while no file is open they answer nothing. Owned by cTolvaDatabase, over
/// its context, which outlives it.
class FolderStore
{
public:
    explicit FolderStore(StationContext& station);

    /// The root of the tree. Held nodes go stale at Load.
    clsCategory& Tree() const { return *Tree_; }
    void Load();
    /// As cTolvaDatabase::RefreshCategoryTree.
    bool Refresh();
    /// Makes sure of the fixed folders, in one transaction, from a tree that has just been loaded: a renamed one gets
    /// its title back, a deleted one returns. Whether the tree is to be loaded anew.
    bool PutFixedFoldersRight();

    /// As cTolvaDatabase::GetMessageCategory.
    std::unique_ptr<clsCategory> Get(qint32 reference) const;
    /// As cTolvaDatabase::SaveMessageCategory.
    bool Save(clsCategory& folder, bool updateSubFolders);
    /// As cTolvaDatabase::DeleteMessageCategory.
    bool Delete(qint32 reference);
    /// As cTolvaDatabase::LastMessageCategoryReference.
    qint16 LastReference() const;

private:
    std::unique_ptr<clsCategory> LoadTree() const;
    /// Whether it had to be stored.
    bool SaveFixed(enTolvaMessageCategories reference, const QString& description, const QString& iconReference);
    void Store(clsCategory& folder);
    void StoreWithSubFolders(clsCategory& folder);

    StationContext& Station_;
    std::unique_ptr<clsCategory> Tree_;
};
