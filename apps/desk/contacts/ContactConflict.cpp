// SPDX-License-Identifier: Apache-2.0
#include "ContactConflict.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

namespace
{
QString ConflictText(const char* text)
{
    return QCoreApplication::translate("ContactConflict", text);
}

struct Detail
{
    QString Name;
    QString clsKVContact::*Field;
};

QList<Detail> Details()
{
    return {{ConflictText("Name"), &clsKVContact::Name},
            {ConflictText("Mobile"), &clsKVContact::Mobile},
            {ConflictText("Telephone"), &clsKVContact::Telephone},
            {ConflictText("E-mail"), &clsKVContact::Email},
            {ConflictText("Second e-mail"), &clsKVContact::SecondEmail},
            {ConflictText("Other"), &clsKVContact::Other}};
}

/// What one side made of the contact, a line for each detail that it changed.
QStringList ChangesOf(const clsKVContact& before, const clsKVContact& after)
{
    QStringList lines;
    for (const Detail& detail : Details()) {
        const QString& text = after.*detail.Field;
        if (text != before.*detail.Field)
            lines.append(detail.Name + QStringLiteral(": ") +
                         (text.isEmpty() ? ConflictText("taken away") : text.simplified()));
    }
    return lines;
}

bool Meet(const clsKVContact& before, const clsKVContact& mine, const clsKVContact& theirs)
{
    for (const Detail& detail : Details()) {
        const auto field = detail.Field;
        if (mine.*field != before.*field && theirs.*field != before.*field && mine.*field != theirs.*field)
            return true;
    }
    return false;
}

QString BothChanges(const clsKVContact& before, const clsKVContact& mine, const clsKVContact& theirs)
{
    const QStringList here = ChangesOf(before, mine);
    QStringList lines{ConflictText("There:")};
    lines += ChangesOf(before, theirs);
    lines.append(QString());
    lines.append(ConflictText("Here:"));
    lines += here.isEmpty() ? QStringList(ConflictText("Nothing")) : here;
    lines.append(QString());
    lines.append(Meet(before, mine, theirs)
                     ? ConflictText("Saving your changes loses what was written there in the same places.")
                     : ConflictText("Saving your changes keeps both."));
    return lines.join(u'\n');
}
} // namespace

ContactConflict::Choice ContactConflict::Ask(const clsKVContact& before, const clsKVContact& mine,
                                             const clsKVContactPtr& theirs, QWidget* parent)
{
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("conflictBox"));
    box.setIcon(QMessageBox::Warning);
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(ConflictText("Contact"));
    const QPushButton* combine = nullptr;
    const QPushButton* takeTheirs = nullptr;
    const QPushButton* saveAsNew = nullptr;
    if (theirs) {
        box.setText(ConflictText("%1 was changed on another computer while you changed it here.").arg(before.Name));
        box.setInformativeText(BothChanges(before, mine, *theirs));
        combine = box.addButton(ConflictText("&Save my changes"), QMessageBox::AcceptRole);
        takeTheirs = box.addButton(ConflictText("&Take theirs"), QMessageBox::DestructiveRole);
    } else {
        box.setText(ConflictText("%1 was deleted on another computer while you changed it here.").arg(before.Name));
        box.setInformativeText(
            ConflictText("It can be saved as a new contact. Prizes that it won do not come back to it."));
        saveAsNew = box.addButton(ConflictText("Save as &new"), QMessageBox::AcceptRole);
    }
    QPushButton* cancel = box.addButton(ConflictText("&Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    const QAbstractButton* clicked = box.clickedButton();
    if (combine && clicked == combine)
        return Choice::Combine;
    if (takeTheirs && clicked == takeTheirs)
        return Choice::TakeTheirs;
    return saveAsNew && clicked == saveAsNew ? Choice::SaveAsNew : Choice::Cancel;
}

clsKVContact ContactConflict::Combined(const clsKVContact& before, const clsKVContact& mine, const clsKVContact& theirs)
{
    clsKVContact combined = theirs;
    for (const Detail& detail : Details()) {
        if (mine.*detail.Field != before.*detail.Field)
            combined.*detail.Field = mine.*detail.Field;
    }
    return combined;
}
