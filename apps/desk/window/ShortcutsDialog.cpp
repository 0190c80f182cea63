// SPDX-License-Identifier: Apache-2.0
#include "ShortcutsDialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

namespace
{
QList<std::pair<QString, QString>> Keys()
{
    return {
        {QStringLiteral("Ctrl+N"), ShortcutsDialog::tr("New message; in the window of contacts: new contact")},
        {QStringLiteral("Ctrl+Shift+N"), ShortcutsDialog::tr("New text message")},
        {QStringLiteral("Ctrl+R"), ShortcutsDialog::tr("Reply")},
        {QStringLiteral("Ctrl+Shift+R"), ShortcutsDialog::tr("Reply to all")},
        {QStringLiteral("Ctrl+L"), ShortcutsDialog::tr("Forward")},
        {QStringLiteral("Enter"),
         ShortcutsDialog::tr("Open the selected message or picture; on air: the entry was read out")},
        {QStringLiteral("Delete"), ShortcutsDialog::tr("Delete the selected messages; while writing: take the selected "
                                                       "attachments out; on air: take the entry off")},
        {QStringLiteral("Ctrl+Shift+V"), ShortcutsDialog::tr("Move the selected messages to a folder")},
        {QStringLiteral("Ctrl+Shift+Y"), ShortcutsDialog::tr("Copy the selected messages to a folder")},
        {QStringLiteral("Ctrl+Z"),
         ShortcutsDialog::tr("Take back the last delete, move, mark or priority; while writing: undo")},
        {QStringLiteral("Ctrl+F"), ShortcutsDialog::tr("Find in subjects, among the prizes or among the contacts")},
        {QStringLiteral("Ctrl+Alt+F"), ShortcutsDialog::tr("Show all messages or prizes again")},
        {QStringLiteral("Ctrl+Shift+B"), ShortcutsDialog::tr("Messages since the song on air began, and all again")},
        {QStringLiteral("Ctrl+Shift+F"), ShortcutsDialog::tr("Search all messages for any words in them")},
        {QStringLiteral("Ctrl+1 to Ctrl+7"),
         ShortcutsDialog::tr("Inbox, Outbox, Saved, Sent, Deleted Items, Drafts, Auto-Messages")},
        {QStringLiteral("Alt+1, Alt+2"), ShortcutsDialog::tr("Messages, prizes")},
        {QStringLiteral("Ctrl+Shift+P"), ShortcutsDialog::tr("Award a prize to the sender of the message")},
        {QStringLiteral("Ctrl+Shift+C"), ShortcutsDialog::tr("Contacts")},
        {QStringLiteral("Ctrl+Shift+K"), ShortcutsDialog::tr("The contact who sent the message")},
        {QStringLiteral("Ctrl+Shift+H"), ShortcutsDialog::tr("What the sender of the message wrote before")},
        {QStringLiteral("Ctrl+Shift+O"),
         ShortcutsDialog::tr("Put the selected messages, or the prize, on the running order")},
        {QStringLiteral("F8"), ShortcutsDialog::tr("The running order, as it is read on air")},
        {QStringLiteral("Space, Right"), ShortcutsDialog::tr("On air: the next entry")},
        {QStringLiteral("Backspace, Left"), ShortcutsDialog::tr("On air: the entry before")},
        {QStringLiteral("Shift+Space"), ShortcutsDialog::tr("On air: the entry was passed over")},
        {QStringLiteral("Ctrl+Up, Ctrl+Down"), ShortcutsDialog::tr("On air: the entry moves by one place")},
        {QStringLiteral("F2"), ShortcutsDialog::tr("On air: shorten the text, and keep what was shortened")},
        {QStringLiteral("Ctrl+Enter"),
         ShortcutsDialog::tr("On the page of prizes or in a prize's window: award the prize")},
        {QStringLiteral("Ctrl and the wheel"),
         ShortcutsDialog::tr("Larger or smaller text of the message; it is remembered")},
        {QStringLiteral("Ctrl++, Ctrl+=, Ctrl+-"),
         ShortcutsDialog::tr("On the page of prizes and on air: larger or smaller text")},
        {QStringLiteral("Right, Left"), ShortcutsDialog::tr("A picture of a message: the next or the previous one")},
        {QStringLiteral("+, =, -, 0"), ShortcutsDialog::tr("A picture of a message: larger, smaller, or all of it")},
        {QStringLiteral("Up, Down, Shift+Left, Shift+Right"),
         ShortcutsDialog::tr("A picture of a message that is larger than its window: another part of it")},
        {QStringLiteral("F5"), ShortcutsDialog::tr("Refresh")},
        {QStringLiteral("F6, Shift+F6"),
         ShortcutsDialog::tr("Next or previous part of the window: folders, messages, message")},
        {QStringLiteral("Ctrl+Enter"), ShortcutsDialog::tr("While writing: put the message in the Outbox")},
        {QStringLiteral("Ctrl+S"),
         ShortcutsDialog::tr("While writing: save the draft; in the window of a contact, "
                             "prize or winner, or of a picture: save; in the search: keep it for the menu")},
        {QStringLiteral("Ctrl+Shift+A"), ShortcutsDialog::tr("While writing: attach files")},
        {QStringLiteral("Ctrl+Shift+E"), ShortcutsDialog::tr("While answering: the original beside the answer")},
        {QStringLiteral("F7"),
         ShortcutsDialog::tr("While writing or shortening for air: the next unknown word, with suggestions")},
        {QStringLiteral("Menu"),
         ShortcutsDialog::tr(
             "What can be done here; while writing, with the recipient or the unknown word at the caret")},
        {QStringLiteral("Ctrl+W"), ShortcutsDialog::tr("Close any window but the main one")},
        {QStringLiteral("Esc"),
         ShortcutsDialog::tr("Close the window of a message, a picture, a winner, the search or the running order")},
        {QStringLiteral("Ctrl+P"),
         ShortcutsDialog::tr(
             "Print the message; on the page of prizes or in a prize's window: the prize; the running order")},
        {QStringLiteral("Ctrl+Alt+P"), ShortcutsDialog::tr("Print all messages on show")},
        {QStringLiteral("Ctrl+O"), ShortcutsDialog::tr("Open another station")},
        {QStringLiteral("F1"), ShortcutsDialog::tr("Show these keys")},
        {QStringLiteral("Ctrl+Q"), ShortcutsDialog::tr("Quit")},
    };
}
} // namespace

ShortcutsDialog::ShortcutsDialog(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("shortcutsDialog"));
    setWindowTitle(tr("Keyboard shortcuts"));
    const QList<std::pair<QString, QString>> keys = Keys();
    auto* table = new QTableWidget(static_cast<int>(keys.size()), 2, this);
    table->setObjectName(QStringLiteral("shortcuts"));
    table->setAccessibleName(tr("Keyboard shortcuts"));
    table->setHorizontalHeaderLabels({tr("Key"), tr("What it does")});
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setShowGrid(false);
    table->setTabKeyNavigation(false);
    table->setAlternatingRowColors(true);
    for (int row = 0; row < keys.size(); ++row) {
        table->setItem(row, 0, new QTableWidgetItem(keys.at(row).first));
        table->setItem(row, 1, new QTableWidgetItem(keys.at(row).second));
    }
    // Long lines wrap: nothing is cut off on a small or much enlarged screen.
    table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table);
    layout->addWidget(buttons);
    resize(640, 560);
}
