// SPDX-License-Identifier: Apache-2.0

// The folders of messages: the category operations of cTolvaDatabase.

#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/Collision.h"
#include "database/cTolvaDatabase.h"

#include <QScopedValueRollback>

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

void cTolvaDatabase::UpdateCategoryTree()
{
    if (!Database_)
        return;
    auto root = std::make_unique<clsCategory>();
    root->LoadCategories(*Database_, CategoriesTitle, CategoriesTable);
    MessageCategories_ = std::move(root);
}

bool cTolvaDatabase::RefreshCategoryTree()
{
    if (!Database_)
        return false;
    auto root = std::make_unique<clsCategory>();
    root->LoadCategories(*Database_, CategoriesTitle, CategoriesTable);
    if (AreSameTrees(*root, *MessageCategories_))
        return false;
    MessageCategories_ = std::move(root);
    return true;
}

std::unique_ptr<clsCategory> cTolvaDatabase::GetMessageCategory(qint32 reference)
{
    if (!Database_ || reference <= 0 || reference > HighestReference)
        return nullptr;
    auto category = std::make_unique<clsCategory>();
    category->SetReference(ToReference(reference));
    category->LoadCategories(*Database_, CategoriesTitle, CategoriesTable);
    return category;
}

qint16 cTolvaDatabase::LastMessageCategoryReference() const
{
    if (!Database_)
        return 0;
    const auto recordset = OpenCategories(*Database_);
    if (recordset->AtEOF())
        return 0;
    recordset->MoveLast();
    const auto reference = [&] { return recordset->Collect(QStringLiteral("Reference")).toInt(); };
    // What lies above is no folder's.
    while (!recordset->AtBOF() && reference() > HighestReference)
        recordset->MovePrevious();
    return recordset->AtBOF() ? qint16{0} : ToReference(qMax(0, reference()));
}

bool cTolvaDatabase::SaveMessageCategory(clsCategory& category, bool updateSubCategories)
{
    if (!Database_)
        return false;
    // A new number is above all others, and no other computer may take it meanwhile.
    dao::Transaction transaction = BeginChange();
    if (updateSubCategories)
        StoreCategoryTree(category);
    else
        StoreCategory(category);
    transaction.Commit();
    return true;
}

void cTolvaDatabase::StoreCategory(clsCategory& category)
{
    const auto recordset = OpenCategories(OpenedDatabase());
    if (category.Reference() < 1)
        category.SetReference(ToReference(LastMessageCategoryReference() + 1));
    recordset->Seek(dao::SeekComparison::Equal, {category.Reference()});
    if (!recordset->NoMatch()) {
        recordset->Edit();
    } else {
        recordset->AddNew();
        recordset->SetCollect(QStringLiteral("Reference"), category.Reference());
    }
    WriteCategory(*recordset, category);
    recordset->Update();
}

/// The stored children go and those of the object come: what was taken out in memory disappears, the others keep their
/// references and so their messages.
void cTolvaDatabase::StoreCategoryTree(clsCategory& category)
{
    StoreCategory(category);
    const auto children = Database_->OpenRecordset(
        QStringLiteral("SELECT * FROM [MessageCategories] WHERE ParentReference=%1 ORDER BY [Reference]")
            .arg(category.Reference()),
        dao::dbOpenDynaset);
    for (; !children->AtEOF(); children->MoveNext())
        children->Delete();
    for (int i = 1; i <= category.SubCategoryCount(); ++i)
        StoreCategoryTree(*category.SubCategory(i));
}

bool cTolvaDatabase::DeleteMessageCategory(qint32 reference)
{
    if (reference <= 0)
        return false;
    bool isGone = false;
    PendingError pending;
    pending.Try([&] {
        // Nobody files into the folder between the look and the deletion.
        dao::Transaction transaction = BeginChange();
        const auto category = GetMessageCategory(reference);
        if (!category || category->SubCategoryCount() >= 1)
            return;
        const auto messages =
            OpenMessageRows({QStringLiteral("Reference")}, QStringLiteral("[Category]=%1").arg(reference));
        if (messages->RecordCount() != 0)
            return;
        const auto recordset = OpenCategories(*Database_);
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        if (!recordset->NoMatch())
            recordset->Delete();
        recordset->Close();
        transaction.Commit();
        isGone = true;
        UpdateCategoryTree();
    });
    KeepLastError(pending);
    return isGone;
}

/// Makes sure that the row of a fixed folder is as it should be. One that is already so is not written: every computer
/// that opens the station comes by here, and must not wait for the others or change a row under their hands.
void cTolvaDatabase::SaveFixedCategory(enTolvaMessageCategories reference, const QString& description, qint32 killHours,
                                       qint32 backColour, const QString& iconReference)
{
    clsCategory category;
    category.SetReference(static_cast<qint16>(reference));
    category.SetDescription(description);
    category.SetBackColour(backColour);
    category.SetEndHours(0);
    category.SetKillHours(killHours);
    category.SetIconReference(iconReference);
    category.SetUserLong(True);
    const clsCategory* stored = MessageCategories_->FindCategory(reference);
    if (stored && HoldsTheSame(*stored, category))
        return;
    const QScopedValueRollback<bool> busy(FixedCategoryBusy_, true);
    SaveMessageCategory(category, false);
}

/// Put right at every start, in one transaction, from a tree that has just been read: a renamed fixed folder gets its
/// title back, a deleted one returns.
void cTolvaDatabase::SaveFixedCategories()
{
    struct FixedCategory
    {
        enTolvaMessageCategories Reference;
        const char* Description;
        const char* IconReference;
    };
    constexpr FixedCategory fixed[] = {
        {tmcInbox, "Inbox", ""},
        {tmcOutbox, "Outbox", "foldersending"},
        {tmcSaved, "Saved", "foldersaved"},
        {tmcSent, "Sent", "foldersent"},
        {tmcDeleted, "Deleted Items", "trash"},
        {tmcDrafts, "Draft Messages", "folderdrafts"},
        {tmcAutomatic, "Auto-Messages", "foldersending"},
    };
    UntilNobodyInterferes([&] {
        dao::Transaction transaction;
        for (const FixedCategory& category : fixed) {
            SaveFixedCategory(category.Reference, QLatin1String(category.Description), 0, WindowColour,
                              QLatin1String(category.IconReference));
        }
        transaction.Commit();
    });
}
