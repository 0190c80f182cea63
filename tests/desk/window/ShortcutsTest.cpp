// SPDX-License-Identifier: Apache-2.0

// The keys of the desk's windows: none means two things, and those who read about them read the truth.

#include "AccessKeys.h"
#include "compose/ComposeWindow.h"
#include "contacts/ContactDesk.h"
#include "contacts/ContactsWindow.h"
#include "messages/MessageWindow.h"
#include "messages/PictureWindow.h"
#include "onair/OnAirDesk.h"
#include "prizes/PrizeDeskTest.h"
#include "window/ShortcutsDialog.h"

#include <QAction>
#include <QFile>
#include <QRegularExpression>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTabWidget>
#include <QTableWidget>

namespace
{
/// All windows of the desk open at the same time.
class ShortcutsTest : public PrizeDeskTest
{
protected:
    void OpenAll()
    {
        const qint32 message = FileMail(Mail("Hello", "Hello.\r\n", "Ann <a@b.org>"));
        const qint32 contact = AddContact(QStringLiteral("Ann"), {}, QStringLiteral("a@b.org"));
        const qint32 prize = AddPrize(QStringLiteral("Tickets"), 3);
        const qint32 winner = AwardElsewhere(prize, contact, Date(2026, 11, 20));
        OpenWindow();
        Window->OpenInWindow(Window->Station().Database().GetMessage(message));
        Window->Compose({});
        Window->Contacts().ShowContacts();
        Prizes().OpenPrize(prize);
        Prizes().OpenWinner(winner);
        Window->OnAir().ShowWindow();
        Windows = {Window.get(),
                   Window->MessageWindows().value(0),
                   Window->ComposeWindows().value(0),
                   Window->Contacts().Window(),
                   OnlyPrizeWindow(),
                   OnlyWinnerWindow(),
                   Window->OnAir().Window()};
        ASSERT_FALSE(Windows.contains(nullptr));
    }
    /// Only what belongs to the window itself, not to one that it opened.
    static QList<QAction*> ActionsOf(const QWidget& window)
    {
        QList<QAction*> actions = window.findChildren<QAction*>();
        actions.removeIf([](const QAction* action) { return action->shortcut().isEmpty(); });
        return actions;
    }
    /// As the list of keys writes it: the two Enter keys are one.
    static QString Written(const QKeySequence& key)
    {
        return key.toString(QKeySequence::PortableText)
            .replace(QStringLiteral("Return"), QStringLiteral("Enter"))
            .replace(QStringLiteral("Del"), QStringLiteral("Delete"));
    }
    /// Whether the two can be meant at the same time.
    static bool Meet(const QAction& one, const QAction& other)
    {
        const auto isOfWidget = [](const QAction& action) { return action.shortcutContext() == Qt::WidgetShortcut; };
        return !isOfWidget(one) || !isOfWidget(other) || one.associatedObjects() == other.associatedObjects();
    }
    /// The rows of the list of keys.
    QList<std::pair<QString, QString>> Rows()
    {
        const ShortcutsDialog dialog(Window.get());
        const auto* table = dialog.findChild<QTableWidget*>(QStringLiteral("shortcuts"));
        QList<std::pair<QString, QString>> rows;
        for (int row = 0; row < table->rowCount(); ++row)
            rows.append({table->item(row, 0)->text(), table->item(row, 1)->text()});
        return rows;
    }
    /// The keys of the list, one by one.
    QStringList Listed()
    {
        QStringList keys;
        for (const auto& [text, meaning] : Rows()) {
            for (const QString& key : text.split(QStringLiteral(", "))) {
                static const QRegularExpression range(QStringLiteral("^Ctrl\\+(\\d) to Ctrl\\+(\\d)$"));
                const QRegularExpressionMatch match = range.match(key);
                if (!match.hasMatch())
                    keys.append(key);
                for (int digit = match.captured(1).toInt(); match.hasMatch() && digit <= match.captured(2).toInt();
                     ++digit)
                    keys.append(QStringLiteral("Ctrl+%1").arg(digit));
            }
        }
        return keys;
    }

    QList<QWidget*> Windows;
};
} // namespace

TEST_F(ShortcutsTest, NoKeyMeansTwoThingsInOneWindow)
{
    OpenAll();
    for (const QWidget* window : std::as_const(Windows)) {
        QMultiMap<QString, const QAction*> seen;
        for (const QAction* action : ActionsOf(*window)) {
            for (const QKeySequence& key : action->shortcuts()) {
                for (const QAction* other : seen.values(key.toString())) {
                    EXPECT_FALSE(Meet(*action, *other))
                        << window->objectName().toStdString() << ": " << key.toString().toStdString() << " is "
                        << action->text().toStdString() << " and " << other->text().toStdString();
                }
                seen.insert(key.toString(), action);
            }
        }
        EXPECT_GE(seen.size(), 2) << window->objectName().toStdString();
    }
}

TEST_F(ShortcutsTest, EachKeyOfAWindowIsListedAndNothingElseIs)
{
    OpenAll();
    QStringList known;
    for (const QWidget* window : std::as_const(Windows)) {
        for (const QAction* action : ActionsOf(*window)) {
            for (const QKeySequence& key : action->shortcuts())
                known.append(Written(key));
        }
    }
    const PictureWindow picture(std::make_shared<cdo::Message>(), {0}, 0, nullptr);
    for (const QAction* action : ActionsOf(picture)) {
        for (const QKeySequence& key : action->shortcuts())
            known.append(Written(key));
    }
    const QStringList listed = Listed();
    for (const QString& key : std::as_const(known))
        EXPECT_TRUE(listed.contains(key)) << key.toStdString() << " is not listed";
    // Lists, boxes of text and the body of a message know these themselves.
    known += {QStringLiteral("Enter"), QStringLiteral("Delete"), QStringLiteral("Menu"),
              QStringLiteral("Ctrl and the wheel")};
    for (const QString& key : listed)
        EXPECT_TRUE(known.contains(key)) << key.toStdString() << " does nothing";
}

TEST_F(ShortcutsTest, TheKeysDoWhatTheListSays)
{
    OpenAll();
    const auto nameOf = [](const QWidget& window, const char* key) {
        for (const QAction* action : ActionsOf(window)) {
            if (action->shortcuts().contains(QKeySequence(QLatin1String(key))))
                return action->objectName();
        }
        return QString();
    };
    EXPECT_EQ(nameOf(*Window, "Ctrl+Shift+P"), QStringLiteral("awardToSender"));
    EXPECT_EQ(nameOf(*Windows.at(1), "Ctrl+Shift+P"), QStringLiteral("awardToSender"));
    EXPECT_EQ(nameOf(*Window, "Ctrl+Alt+P"), QStringLiteral("printList"));
    EXPECT_EQ(nameOf(*Window, "Ctrl+P"), QStringLiteral("printMessage"));
    EXPECT_EQ(nameOf(*Windows.at(1), "Ctrl+P"), QStringLiteral("printMessage"));
    EXPECT_EQ(nameOf(*Windows.at(4), "Ctrl+P"), QStringLiteral("printPrize"));
    QTest::keyClick(Window.get(), Qt::Key_2, Qt::AltModifier);
    EXPECT_EQ(nameOf(*Window, "Ctrl+P"), QStringLiteral("printPrize"));
    const QList<std::pair<QString, QString>> rows = Rows();
    EXPECT_TRUE(
        rows.contains({QStringLiteral("Ctrl+Shift+P"), QStringLiteral("Award a prize to the sender of the message")}));
    EXPECT_TRUE(rows.contains({QStringLiteral("Ctrl+Alt+P"), QStringLiteral("Print all messages on show")}));
}

TEST_F(ShortcutsTest, NothingOfTheListIsCutOffHoweverNarrowItIs)
{
    OpenWindow();
    ShortcutsDialog dialog(Window.get());
    dialog.resize(380, 400);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    auto* table = dialog.findChild<QTableWidget*>(QStringLiteral("shortcuts"));
    EXPECT_EQ(table->horizontalScrollBar()->maximum(), 0);
    for (int row = 0; row < table->rowCount(); ++row) {
        const QModelIndex index = table->model()->index(row, 1);
        const QSize wanted = table->itemDelegate()->sizeHint(
            [&] {
                QStyleOptionViewItem option;
                option.initFrom(table);
                option.rect = table->visualRect(index);
                option.features = QStyleOptionViewItem::WrapText;
                return option;
            }(),
            index);
        EXPECT_GE(table->rowHeight(row), wanted.height()) << row;
    }
    dialog.close();
}

TEST_F(ShortcutsTest, TheUserGuideHasTheSameList)
{
    OpenWindow();
    QFile file(QStringLiteral(TOLVA_USER_GUIDE));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString guide = QString::fromUtf8(file.readAll());
    const QString keys =
        guide.mid(guide.indexOf(QStringLiteral("\n## Keys\n")) + 1).section(QStringLiteral("\n## "), 0, 0);
    QStringList lines;
    for (const QString& line : keys.split(u'\n')) {
        if (line.startsWith(QStringLiteral("| ")) && line != u"| key | |")
            lines.append(line);
    }
    QStringList expected;
    for (const auto& [key, meaning] : Rows())
        expected.append(QStringLiteral("| %1 | %2 |").arg(key, meaning));
    EXPECT_EQ(lines, expected);
}

TEST_F(ShortcutsTest, NoUnderlinedLetterMeansTwoThingsInOneWindow)
{
    OpenAll();
    for (QWidget* window : std::as_const(Windows)) {
        auto* pages = window->findChild<QTabWidget*>();
        for (int page = 0; page < (pages ? pages->count() : 1); ++page) {
            if (pages)
                pages->setCurrentIndex(page);
            const AccessKeys keys(*window);
            EXPECT_TRUE(keys.Clashes().isEmpty()) << window->objectName().toStdString() << ", page " << page << ": "
                                                  << keys.Clashes().join(u'\n').toStdString();
            EXPECT_GE(keys.Count(), 1) << window->objectName().toStdString();
        }
    }
    QTest::keyClick(Window.get(), Qt::Key_2, Qt::AltModifier);
    ASSERT_TRUE(Prizes().IsOnShow());
    const AccessKeys keys(*Window);
    EXPECT_TRUE(keys.Clashes().isEmpty()) << "prizes: " << keys.Clashes().join(u'\n').toStdString();
}
