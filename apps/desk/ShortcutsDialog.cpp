#include "ShortcutsDialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

ShortcutsDialog::ShortcutsDialog(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("shortcutsDialog"));
    setWindowTitle(tr("Keyboard shortcuts"));
    const QList<std::pair<QString, QString>> keys = {
        {QStringLiteral("Ctrl+N"), tr("New message")},
        {QStringLiteral("Ctrl+R"), tr("Reply")},
        {QStringLiteral("Ctrl+Shift+R"), tr("Reply to all")},
        {QStringLiteral("Ctrl+L"), tr("Forward")},
        {QStringLiteral("Enter"), tr("Open the selected message")},
        {QStringLiteral("Delete"), tr("Delete the selected message")},
        {QStringLiteral("Ctrl+F"), tr("Find in subjects")},
        {QStringLiteral("Ctrl+Shift+F"), tr("Show all messages again")},
        {QStringLiteral("Ctrl+1 to Ctrl+7"), tr("Inbox, Outbox, Saved, Sent, Deleted Items, Drafts, Auto-Messages")},
        {QStringLiteral("Alt+1, Alt+2"), tr("Messages, prizes")},
        {QStringLiteral("Ctrl+Shift+P"), tr("Award a prize to the sender of the selected message")},
        {QStringLiteral("Ctrl+Shift+C"), tr("Contacts")},
        {QStringLiteral("Ctrl+Shift+K"), tr("The contact who sent the selected message")},
        {QStringLiteral("Ctrl+Enter"), tr("On the page of prizes: award the selected prize")},
        {QStringLiteral("Ctrl++, Ctrl+-"), tr("On the page of prizes: larger or smaller script")},
        {QStringLiteral("F5"), tr("Refresh")},
        {QStringLiteral("F6, Shift+F6"), tr("Next or previous part of the window: folders, messages, message")},
        {QStringLiteral("Ctrl+Enter"), tr("While writing: put the message in the Outbox")},
        {QStringLiteral("Ctrl+S"), tr("While writing: save the draft; in a prize's or winner's window: save")},
        {QStringLiteral("Ctrl+Shift+A"), tr("While writing: attach a file")},
        {QStringLiteral("Ctrl+W"), tr("Close the window of a message, prize or winner")},
        {QStringLiteral("Ctrl+O"), tr("Open another station")},
        {QStringLiteral("Ctrl+Q"), tr("Quit")},
    };
    auto* table = new QTableWidget(static_cast<int>(keys.size()), 2, this);
    table->setObjectName(QStringLiteral("shortcuts"));
    table->setAccessibleName(tr("Keyboard shortcuts"));
    table->setHorizontalHeaderLabels({tr("Key"), tr("What it does")});
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    for (int row = 0; row < keys.size(); ++row) {
        table->setItem(row, 0, new QTableWidgetItem(keys.at(row).first));
        table->setItem(row, 1, new QTableWidgetItem(keys.at(row).second));
    }
    table->resizeColumnsToContents();
    table->resizeRowsToContents();
    table->horizontalHeader()->setStretchLastSection(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table);
    layout->addWidget(buttons);
    resize(560, 480);
}
