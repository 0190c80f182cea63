// SPDX-License-Identifier: Apache-2.0
#include "messages/FolderStore.h"

#include "common/PendingError.h"
#include "database/Collision.h"
#include "database/StationContext.h"
#include "platform/records/Transaction.h"

#include <limits>
#include <tuple>
#include <utility>
#include <vector>

namespace
{
const QString CategoriesTable = QStringLiteral("MessageCategories");
const QString CategoriesTitle = QStringLiteral("Categories");
const QString MainIndex = QStringLiteral("Main");

/// The system's window background.
constexpr qint32 WindowColour = static_cast<qint32>(0x80000005U);
constexpr qint32 True = -1;

std::unique_ptr<dao::Recordset> OpenCategories(dao::Database& database)
{
    auto recordset = database.OpenRecordset(CategoriesTable, dao::dbOpenTable);
    recordset->SetIndex(MainIndex);
    return recordset;
}

constexpr qint32 HighestReference = std::numeric_limits<qint16>::max();

qint16 ToReference(qint32 number)
{
    if (number > HighestReference)
        throw dao::Error(dao::errOverflow, QStringLiteral("A folder's reference cannot be above 32767."));
    return static_cast<qint16>(number);
}

void WriteCategory(dao::Recordset& recordset, const clsCategory& category)
{
    const auto setColumn = [&recordset](const char16_t* name, const QVariant& value) {
        recordset.SetCollect(QString::fromUtf16(name), value);
    };
    setColumn(u"Description", category.Description());
    setColumn(u"SortKey", category.SortKey());
    setColumn(u"ParentReference", category.ParentReference());
    setColumn(u"EndHours", category.EndHours());
    setColumn(u"KillHours", category.KillHours());
    setColumn(u"BackColour", category.BackColour());
    setColumn(u"ForeColour", category.ForeColour());
    setColumn(u"UserLong", category.UserLong());
    setColumn(u"UserString", category.UserString());
    setColumn(u"IconReference", category.IconReference());
}
bool HoldsTheSame(const clsCategory& a, const clsCategory& b)
{
    const auto fields = [](const clsCategory& category) {
        return std::tuple(category.ParentReference(), category.Description(), category.SortKey(), category.ForeColour(),
                          category.BackColour(), category.EndHours(), category.KillHours(), category.UserLong(),
                          category.UserString(), category.IconReference());
    };
    return fields(a) == fields(b);
}

/// The trees below two nodes, however deep they are.
bool AreSameTrees(const clsCategory& a, const clsCategory& b)
{
    std::vector<std::pair<const clsCategory*, const clsCategory*>> waiting{{&a, &b}};
    while (!waiting.empty()) {
        const auto [left, right] = waiting.back();
        waiting.pop_back();
        if (left->SubCategoryCount() != right->SubCategoryCount())
            return false;
        for (int i = 1; i <= left->SubCategoryCount(); ++i) {
            const clsCategory* const ofLeft = left->SubCategory(i);
            const clsCategory* const ofRight = right->SubCategory(i);
            if (ofLeft->Reference() != ofRight->Reference() || !HoldsTheSame(*ofLeft, *ofRight))
                return false;
            waiting.emplace_back(ofLeft, ofRight);
        }
    }
    return true;
}
} // namespace

FolderStore::FolderStore(StationContext& station) : Station_(station), Tree_(std::make_unique<clsCategory>())
{
    Tree_->SetReference(0);
    Tree_->SetParentReference(0);
    Tree_->SetDescription(QStringLiteral("All Categories"));
}

std::unique_ptr<clsCategory> FolderStore::LoadTree() const
{
    auto root = std::make_unique<clsCategory>();
    root->LoadCategories(*Station_.Database, CategoriesTitle, CategoriesTable);
    return root;
}

void FolderStore::Load()
{
    if (Station_.Database)
        Tree_ = LoadTree();
}

bool FolderStore::Refresh()
{
    if (!Station_.Database)
        return false;
    std::unique_ptr<clsCategory> root = LoadTree();
    if (AreSameTrees(*root, *Tree_))
        return false;
    Tree_ = std::move(root);
    return true;
}

std::unique_ptr<clsCategory> FolderStore::Get(qint32 reference) const
{
    if (!Station_.Database || reference <= 0 || reference > HighestReference)
        return nullptr;
    auto category = std::make_unique<clsCategory>();
    category->SetReference(ToReference(reference));
    category->LoadCategories(*Station_.Database, CategoriesTitle, CategoriesTable);
    return category;
}

qint16 FolderStore::LastReference() const
{
    if (!Station_.Database)
        return 0;
    const auto recordset = OpenCategories(*Station_.Database);
    if (recordset->AtEOF())
        return 0;
    recordset->MoveLast();
    const auto reference = [&] { return recordset->Collect(QStringLiteral("Reference")).toInt(); };
    // What lies above is no folder's.
    while (!recordset->AtBOF() && reference() > HighestReference)
        recordset->MovePrevious();
    return recordset->AtBOF() ? qint16{0} : ToReference(qMax(0, reference()));
}

bool FolderStore::Save(clsCategory& folder, bool updateSubFolders)
{
    if (!Station_.Database)
        return false;
    // A new number is above all others, and no other computer may take it meanwhile.
    dao::Transaction transaction(*Station_.Database);
    if (updateSubFolders)
        StoreWithSubFolders(folder);
    else
        Store(folder);
    transaction.Commit();
    return true;
}

void FolderStore::Store(clsCategory& folder)
{
    const auto recordset = OpenCategories(Station_.OpenedDatabase());
    if (folder.Reference() < 1)
        folder.SetReference(ToReference(LastReference() + 1));
    recordset->Seek(dao::SeekComparison::Equal, {folder.Reference()});
    if (!recordset->NoMatch()) {
        recordset->Edit();
    } else {
        recordset->AddNew();
        recordset->SetCollect(QStringLiteral("Reference"), folder.Reference());
    }
    WriteCategory(*recordset, folder);
    recordset->Update();
}

/// The stored children go and those of the object come: what was taken out in memory disappears, the others keep their
/// references and so their messages.
void FolderStore::StoreWithSubFolders(clsCategory& folder)
{
    Store(folder);
    const auto children = Station_.Database->OpenRecordset(
        QStringLiteral("SELECT * FROM [MessageCategories] WHERE ParentReference=%1 ORDER BY [Reference]")
            .arg(folder.Reference()),
        dao::dbOpenDynaset);
    for (; !children->AtEOF(); children->MoveNext())
        children->Delete();
    for (int i = 1; i <= folder.SubCategoryCount(); ++i)
        StoreWithSubFolders(*folder.SubCategory(i));
}

bool FolderStore::Delete(qint32 reference)
{
    if (reference <= 0)
        return false;
    bool isGone = false;
    PendingError pending;
    pending.Try([&] {
        // Nobody files into the folder between the look and the deletion.
        dao::Transaction transaction(Station_.OpenedDatabase());
        const auto folder = Get(reference);
        if (!folder || folder->SubCategoryCount() >= 1)
            return;
        const auto messages = Station_.OpenSnapshot(
            QStringLiteral("SELECT [Reference] FROM [Messages] WHERE [Category]=%1").arg(reference));
        if (messages->RecordCount() != 0)
            return;
        const auto recordset = OpenCategories(*Station_.Database);
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        if (!recordset->NoMatch())
            recordset->Delete();
        recordset->Close();
        transaction.Commit();
        isGone = true;
        Load();
    });
    Station_.LastError = pending;
    return isGone;
}

/// One that is already so is not written: every computer that opens the station comes by here, and must not wait for
/// the others or change a row under their hands.
bool FolderStore::SaveFixed(enTolvaMessageCategories reference, const QString& description,
                            const QString& iconReference)
{
    clsCategory folder;
    folder.SetReference(static_cast<qint16>(reference));
    folder.SetDescription(description);
    folder.SetBackColour(WindowColour);
    folder.SetEndHours(0);
    folder.SetKillHours(0);
    folder.SetIconReference(iconReference);
    folder.SetUserLong(True);
    const clsCategory* stored = Tree_->FindCategory(reference);
    if (stored && HoldsTheSame(*stored, folder))
        return false;
    Save(folder, false);
    return true;
}

bool FolderStore::PutFixedFoldersRight()
{
    struct FixedFolder
    {
        enTolvaMessageCategories Reference;
        const char* Description;
        const char* IconReference;
    };
    constexpr FixedFolder fixed[] = {
        {tmcInbox, "Inbox", ""},
        {tmcOutbox, "Outbox", "foldersending"},
        {tmcSaved, "Saved", "foldersaved"},
        {tmcSent, "Sent", "foldersent"},
        {tmcDeleted, "Deleted Items", "trash"},
        {tmcDrafts, "Draft Messages", "folderdrafts"},
        {tmcAutomatic, "Auto-Messages", "foldersending"},
    };
    bool isChanged = false;
    UntilNobodyInterferes([&] {
        dao::Transaction transaction;
        for (const FixedFolder& folder : fixed) {
            isChanged =
                SaveFixed(folder.Reference, QLatin1String(folder.Description), QLatin1String(folder.IconReference)) ||
                isChanged;
        }
        transaction.Commit();
    });
    return isChanged;
}
