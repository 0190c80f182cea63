// SPDX-License-Identifier: Apache-2.0
#include "FolderChoice.h"

#include "FolderPaths.h"
#include "common/SearchFold.h"
#include "platform/directory/clsCategory.h"
#include "platform/widgets/Icons.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace
{
/// All folders as they stand in the tree.
QList<qint32> FoldersOf(const clsCategory& root)
{
    QList<qint32> folders;
    std::vector<const clsCategory*> waiting{&root};
    while (!waiting.empty()) {
        const clsCategory* category = waiting.back();
        waiting.pop_back();
        if (category->Reference() > 0)
            folders.append(category->Reference());
        for (int i = category->SubCategoryCount(); i >= 1; --i)
            waiting.push_back(category->SubCategory(i));
    }
    return folders;
}
} // namespace

FolderChoice::FolderChoice(const QString& title, const clsCategory& root, const QList<qint32>& last, QWidget* parent)
    : QDialog(parent), Typed_(new QLineEdit(this)), List_(new QListWidget(this))
{
    setObjectName(QStringLiteral("folderChoice"));
    setWindowTitle(title);
    const QHash<qint32, QString> paths = FolderPaths(root);
    for (const qint32 folder : last) {
        if (paths.contains(folder))
            Entries_.append({folder, paths.value(folder)});
    }
    for (const qint32 folder : FoldersOf(root)) {
        if (!last.contains(folder))
            Entries_.append({folder, paths.value(folder)});
    }
    Typed_->setObjectName(QStringLiteral("folderTyped"));
    Typed_->setAccessibleName(tr("Part of the folder's name"));
    Typed_->installEventFilter(this);
    List_->setObjectName(QStringLiteral("folderList"));
    List_->setAccessibleName(tr("Folders"));
    List_->setUniformItemSizes(true);
    auto* caption = new QLabel(tr("&Folder:"), this);
    caption->setBuddy(Typed_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(caption);
    layout->addWidget(Typed_);
    layout->addWidget(List_, 1);
    layout->addWidget(buttons);
    QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(List_, &QListWidget::itemActivated, this, &QDialog::accept);
    connect(Typed_, &QLineEdit::textChanged, this, &FolderChoice::Show);
    connect(List_, &QListWidget::currentRowChanged, ok, [ok](int row) { ok->setEnabled(row >= 0); });
    Show(QString());
    resize(420, 380);
    Typed_->setFocus();
}

qint32 FolderChoice::Folder() const
{
    const QListWidgetItem* item = List_->currentItem();
    return item ? item->data(Qt::UserRole).toInt() : 0;
}

void FolderChoice::Show(const QString& typed)
{
    const QString wanted = SearchFold::Folded(typed.trimmed());
    List_->clear();
    for (const Entry& entry : std::as_const(Entries_)) {
        if (!SearchFold::Folded(entry.Path).contains(wanted))
            continue;
        auto* item = new QListWidgetItem(Icons::Get(QStringLiteral("smallclosedfolder")), entry.Path, List_);
        item->setData(Qt::UserRole, entry.Reference);
    }
    List_->setCurrentRow(List_->count() > 0 ? 0 : -1);
}

/// The arrows go through the list while the other keys are typed.
bool FolderChoice::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const int step = key == Qt::Key_Down ? 1 : key == Qt::Key_Up ? -1 : 0;
    if (step == 0)
        return QDialog::eventFilter(watched, event);
    List_->setCurrentRow(std::clamp(List_->currentRow() + step, std::min(0, List_->count() - 1), List_->count() - 1));
    return true;
}
