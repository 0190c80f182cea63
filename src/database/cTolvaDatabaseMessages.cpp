// SPDX-License-Identifier: Apache-2.0

// The messages and folders of a station as hosts see them.

#include "database/StationDetails.h"
#include "database/cTolvaDatabase.h"
#include "messages/FolderStore.h"
#include "messages/MessageHistory.h"
#include "messages/MessageStore.h"

cMessagePtr cTolvaDatabase::GetMessage(qint32 reference)
{
    return Messages_->GetMessage(reference);
}

cMessagePtr cTolvaDatabase::ReadMessage(qint32 reference)
{
    return Messages_->ReadMessage(reference);
}

cMessagePtr cTolvaDatabase::GetMessage(dao::Recordset& row)
{
    return MessageStore::GetMessage(row);
}

std::unique_ptr<cMessages> cTolvaDatabase::GetMessages(const QString& sqlQuery)
{
    return Messages_->GetMessages(sqlQuery);
}

quint64 cTolvaDatabase::MarkOfMessageRows(const QStringList& columns, const QString& condition,
                                          const QString& order) const
{
    return Messages_->MarkOfMessageRows(columns, condition, order);
}

std::unique_ptr<dao::Recordset> cTolvaDatabase::OpenMessageRows(const QStringList& columns, const QString& condition,
                                                                const QString& order) const
{
    return Messages_->OpenMessageRows(columns, condition, order);
}

bool cTolvaDatabase::SaveMessage(const cMessagePtr& message)
{
    return Messages_->SaveMessage(message);
}

std::vector<MessageSaving> cTolvaDatabase::SaveMessages(const std::vector<cMessagePtr>& messages,
                                                        const std::function<bool()>& goesOn)
{
    return Messages_->SaveMessages(messages, goesOn);
}

QByteArray cTolvaDatabase::OctetsToStore(const cMessage& message) const
{
    return Messages_->OctetsToStore(message);
}

bool cTolvaDatabase::CopyMessage(qint32 reference, enTolvaMessageCategories newCategory)
{
    return Messages_->CopyMessage(reference, newCategory);
}

bool cTolvaDatabase::MoveMessage(qint32 reference, enTolvaMessageCategories newCategory)
{
    return Messages_->MoveMessage(reference, newCategory);
}

bool cTolvaDatabase::DeleteMessage(qint32 reference, bool deletePermanently)
{
    return Messages_->DeleteMessage(reference, deletePermanently);
}

bool cTolvaDatabase::ChangeMessageFlags(qint32 reference, qint32 set, qint32 clear)
{
    return Messages_->ChangeMessageFlags(reference, set, clear);
}

bool cTolvaDatabase::MarkMessageSent(qint32 reference, Date sent)
{
    return Messages_->MarkMessageSent(reference, sent);
}

int cTolvaDatabase::RewriteMessageKeys(qint32 first, qint32 last)
{
    return Messages_->RewriteMessageKeys(first, last);
}

bool cTolvaDatabase::DeleteMessagesOfCategory(enTolvaMessageCategories category)
{
    return Messages_->DeleteMessagesOfCategory(category);
}

Date cTolvaDatabase::LastMessageChanged() const
{
    return Messages_->LastChanged();
}

void cTolvaDatabase::SetLastMessageChanged(Date changeDate)
{
    Messages_->SetLastChanged(changeDate);
}

const StampMove& cTolvaDatabase::ToldMessageMove() const
{
    return Messages_->ToldStampMove();
}

void cTolvaDatabase::FillMessagesListView(ListViewObject* lvwMessages, const QString& emailAddresses,
                                          const QString& phoneNumbers)
{
    MessageHistory::Fill(*Station_, Folders_->Tree(), *Details_, lvwMessages, emailAddresses, phoneNumbers);
}

// Folders.

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
