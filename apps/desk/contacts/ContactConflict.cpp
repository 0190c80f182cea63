// SPDX-License-Identifier: Apache-2.0
#include "ContactConflict.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

namespace
{
QString Tr(const char* text)
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
    return {{Tr("Name"), &clsKVContact::Name},
            {Tr("Mobile"), &clsKVContact::Mobile},
            {Tr("Telephone"), &clsKVContact::Telephone},
            {Tr("E-mail"), &clsKVContact::Email},
            {Tr("Second e-mail"), &clsKVContact::SecondEmail},
            {Tr("Other"), &clsKVContact::Other}};
}

/// What one side made of the contact, a line for each detail that it changed.
QStringList ChangesOf(const clsKVContact& before, const clsKVContact& after)
{
    QStringList lines;
    for (const Detail& detail : Details()) {
        const QString& text = after.*detail.Field;
        if (text != before.*detail.Field)
            lines.append(detail.Name + QStringLiteral(": ") + (text.isEmpty() ? Tr("taken away") : text.simplified()));
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
    QStringList lines{Tr("There:")};
    lines += ChangesOf(before, theirs);
    lines.append(QString());
    lines.append(Tr("Here:"));
    lines += here.isEmpty() ? QStringList(Tr("Nothing")) : here;
    lines.append(QString());
    lines.append(Meet(before, mine, theirs) ? Tr("Saving your changes loses what was written there in the same places.")
                                            : Tr("Saving your changes keeps both."));
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
    box.setWindowTitle(Tr("Contact"));
    const QPushButton* combine = nullptr;
    const QPushButton* takeTheirs = nullptr;
    const QPushButton* saveAsNew = nullptr;
    if (theirs) {
        box.setText(Tr("%1 was changed on another computer while you changed it here.").arg(before.Name));
        box.setInformativeText(BothChanges(before, mine, *theirs));
        combine = box.addButton(Tr("&Save my changes"), QMessageBox::AcceptRole);
        takeTheirs = box.addButton(Tr("&Take theirs"), QMessageBox::DestructiveRole);
    } else {
        box.setText(Tr("%1 was deleted on another computer while you changed it here.").arg(before.Name));
        box.setInformativeText(Tr("It can be saved as a new contact. Prizes that it won do not come back to it."));
        saveAsNew = box.addButton(Tr("Save as &new"), QMessageBox::AcceptRole);
    }
    QPushButton* cancel = box.addButton(Tr("&Cancel"), QMessageBox::RejectRole);
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
