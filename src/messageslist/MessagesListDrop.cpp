// SPDX-License-Identifier: Apache-2.0

// What is dragged onto the tree of folders: messages of this program, its folders, and mail files from outside.

#include "common/controls/StationListHandler.h"
#include "common/kvGeneral.h"
#include "database/LastError.h"
#include "messageslist/CategoryTreeFill.h"
#include "messageslist/MessageFile.h"
#include "messageslist/MessagesListTexts.h"
#include "messageslist/uMessagesList.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/DragData.h"

#include <QFileInfo>
#include <QScopeGuard>

#include <algorithm>

namespace
{
const QString OwnMark = QStringLiteral("!KV");

QString TextOf(const QMimeData& data)
{
    return data.hasText() && data.formats().contains(QStringLiteral("text/plain")) ? data.text() : QString();
}

QString FirstWord(const QString& text)
{
    return text.section(QLatin1Char(' '), 0, 0);
}

bool IsOwn(const QString& text)
{
    return text.left(OwnMark.size()).toUpper() == OwnMark;
}

bool IsMailFile(const QString& path)
{
    return QFileInfo(path).suffix().toLower() == QLatin1String("eml");
}

qint32 ReferenceIn(const QString& text)
{
    return GetKeyValue(text, MessagesListTexts::ReferenceKey, QStringLiteral(" ")).toInt();
}
/// All messages that are dragged.
QList<qint32> ReferencesIn(const QString& text)
{
    QList<qint32> references;
    const QString all = GetKeyValue(text, MessagesListTexts::AllKey, QStringLiteral(" "));
    for (const QString& number : all.split(u',', Qt::SkipEmptyParts))
        references.append(number.toInt());
    return references.isEmpty() ? QList<qint32>{ReferenceIn(text)} : references;
}
} // namespace

void uMessagesList::TakeDragOver(const QMimeData& dragged, const QPointF& twips, Qt::DropAction& effect)
{
    const QString node = treeCategories_->HitTest(twips);
    effect = EffectOver(node, dragged, effect);
    treeCategories_->SetDropHighlight(effect == Qt::IgnoreAction ? QString() : node);
}

/// What a drop on a node would do. proposed stays for what this tree knows nothing of.
Qt::DropAction uMessagesList::EffectOver(const QString& node, const QMimeData& dragged, Qt::DropAction proposed) const
{
    if (node.isEmpty() || !clsTolvaDatabase_ || !CurrentUser())
        return Qt::IgnoreAction;
    const QString text = TextOf(dragged);
    if (!IsOwn(text) && DragData::HasFiles(dragged)) {
        if (!MayEditMessages())
            return Qt::IgnoreAction;
        const QStringList files = DragData::Files(dragged);
        if (std::none_of(files.begin(), files.end(), IsMailFile))
            return proposed;
        return CategoryOfKey(node) > 0 ? Qt::CopyAction : Qt::IgnoreAction;
    }
    const QString word = FirstWord(text);
    if (word == MessagesListTexts::MessageWord)
        return MayEditMessages() && !node.mid(1).trimmed().isEmpty() ? Qt::MoveAction : Qt::IgnoreAction;
    if (word == MessagesListTexts::CategoryWord)
        return MayEditCategories() ? Qt::MoveAction : Qt::IgnoreAction;
    return Qt::IgnoreAction;
}

void uMessagesList::TakeDrop(const QMimeData& dragged, Qt::DropAction& effect)
{
    effect = Qt::IgnoreAction;
    // After an error too.
    const QPointer<CategoryTreeView> tree(treeCategories_);
    const auto finish = qScopeGuard([tree] {
        if (tree)
            tree->SetDropHighlight(QString());
    });
    const QString node = treeCategories_->DropHighlight();
    if (node.isEmpty() || !HasDatabase() || !CurrentUser())
        return;
    const QString text = TextOf(dragged);
    const QString word = FirstWord(text);
    if (word == MessagesListTexts::MessageWord)
        DropMessage(text, node, effect);
    else if (word == MessagesListTexts::CategoryWord)
        DropCategory(text, node, effect);
    else if (DragData::HasFiles(dragged) && MayEditMessages())
        DropFiles(DragData::Files(dragged), node, effect);
}

void uMessagesList::DropMessage(const QString& text, const QString& node, Qt::DropAction& effect)
{
    if (!MayEditMessages())
        return;
    const QPointer<uMessagesList> self(this);
    bool isTaken = false;
    Q_EMIT MessagesDropped(ReferencesIn(text), static_cast<enTolvaMessageCategories>(CategoryOfKey(node)), isTaken);
    if (isTaken || !self || !clsTolvaDatabase_) {
        effect = Qt::MoveAction;
        return;
    }
    const cMessagePtr message = clsTolvaDatabase_->ReadMessage(ReferenceIn(text));
    if (!message)
        return;
    const enTolvaMessageCategories from = message->Category();
    message->SetCategory(static_cast<enTolvaMessageCategories>(CategoryOfKey(node)));
    cTolvaDatabase& database = *clsTolvaDatabase_;
    const bool isSaved = database.SaveMessage(message);
    if (!isSaved)
        RaiseLastError(database);
    effect = Qt::MoveAction;
    if (!self)
        return;
    treeCategories_->SelectNode(node);
    TakeNodeClick(node);
    if (self && isSaved)
        Q_EMIT MessageMoved(message, from);
}

void uMessagesList::DropCategory(const QString& text, const QString& node, Qt::DropAction& effect)
{
    if (!MayEditCategories())
        return;
    const auto category = StoredCategory(ReferenceIn(text));
    if (!category)
        return;
    const qint32 parent = CategoryOfKey(node);
    if (category->Reference() != parent) {
        // Below a folder of its own the tree becomes a ring, which loading cuts. Storing the folders below with it
        // would erase it there, as one that its new parent does not know.
        const bool isRing = category->FindCategory(parent) != nullptr;
        category->SetParentReference(parent);
        clsTolvaDatabase_->SaveMessageCategory(*category, !isRing);
        clsTolvaDatabase_->UpdateCategoryTree();
    }
    UpdateCategories();
    effect = Qt::MoveAction;
}

/// Files the first mail file; one at a time.
void uMessagesList::DropFiles(const QStringList& files, const QString& node, Qt::DropAction& effect)
{
    const auto file = std::find_if(files.begin(), files.end(), IsMailFile);
    if (file == files.end() || CategoryOfKey(node) <= 0)
        return;
    const QPointer<uMessagesList> self(this);
    bool isTaken = false;
    Q_EMIT FilesDropped(files, static_cast<enTolvaMessageCategories>(CategoryOfKey(node)), isTaken);
    if (isTaken || !self || !clsTolvaDatabase_) {
        effect = Qt::CopyAction;
        return;
    }
    if (const cMessagePtr message = LoadMessageFromEml(*file)) {
        message->SetReference(0);
        message->SetCategory(static_cast<enTolvaMessageCategories>(CategoryOfKey(node)));
        cTolvaDatabase& database = *clsTolvaDatabase_;
        if (!database.SaveMessage(message))
            RaiseLastError(database);
    } else {
        Q_EMIT ImportRefused(*file);
    }
    effect = Qt::CopyAction;
    if (!self)
        return;
    treeCategories_->SelectNode(node);
    TakeNodeClick(node);
}
