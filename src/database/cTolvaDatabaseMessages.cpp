// SPDX-License-Identifier: Apache-2.0

// The messages and folders of a station as hosts see them.

#include "database/cTolvaDatabase.h"
#include "messages/FolderStore.h"

clsCategory& cTolvaDatabase::MessageCategories()
{
    return Folders_->Tree();
}

std::unique_ptr<clsCategory> cTolvaDatabase::GetMessageCategory(qint32 reference)
{
    return Folders_->Get(reference);
}

bool cTolvaDatabase::SaveMessageCategory(clsCategory& category, bool updateSubCategories)
{
    return Folders_->Save(category, updateSubCategories);
}

bool cTolvaDatabase::DeleteMessageCategory(qint32 reference)
{
    return Folders_->Delete(reference);
}

void cTolvaDatabase::UpdateCategoryTree()
{
    Folders_->Load();
}

bool cTolvaDatabase::RefreshCategoryTree()
{
    return Folders_->Refresh();
}

qint16 cTolvaDatabase::LastMessageCategoryReference() const
{
    return Folders_->LastReference();
}
