// SPDX-License-Identifier: Apache-2.0

// What presenters and producers do most, by the keys alone, on a station of 20,000 messages: at most four keys each
// beside what is typed, and a second of waiting.

#include "WindowTest.h"
#include "compose/ComposeWindow.h"
#include "messages/MessageWindow.h"
#include "search/SearchDesk.h"
#include "search/SearchService.h"
#include "search/SearchWindow.h"

#include <QLineEdit>
#include <QTreeView>

#include <ctime>

namespace
{
constexpr int Messages = 20000;
constexpr int MostKeys = 4;
/// Of this process, which a busy machine does not lengthen.
constexpr double MostSeconds = 1;

class CommonJobsTest : public WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        WithoutAutomaticBackups();
        QByteArray mbox;
        for (int i = 0; i < Messages; ++i) {
            const QByteArray number = QByteArray::number(i);
            mbox += "From listener" + number + "@example.org Fri Nov 20 08:00:00 2026\r\nFrom: Listener " + number +
                    " <listener" + number + "@example.org>\r\nSubject: Request " + number +
                    "\r\nDate: Fri, 20 Nov 2026 08:00:00 +0000\r\n\r\nPlease play something of " + number + ".\r\n\r\n";
        }
        OtherComputer("file", {Write(QStringLiteral("many.mbox"), mbox)});
        OtherComputer("index");
        Wanted = FileMail("From: Loveday <loveday@example.org>\r\nSubject: Hello\r\nDate: Sat, 21 Nov 2026 08:00:00 "
                          "+0000\r\n\r\nThat song about the lighthouse!\r\n");
        clsKVContact contact{0, QStringLiteral("Loveday"), {}, {}, QStringLiteral("loveday@example.org"), {}, {}};
        Station.Directory().SaveContact(contact);
        const auto prize = std::make_shared<cPrize>();
        prize->SetTitle(QStringLiteral("Two tickets"));
        prize->SetNumberSupplied(1);
        ASSERT_TRUE(Station.Database().SavePrize(prize));
        Prize = prize->Reference();
        OpenWindow();
        ASSERT_TRUE(WaitUntil([this] { return Window->Search().Service().IsComplete(); }, 60'000));
    }
    /// A key that counts, where the keyboard is.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        ++Keys_;
        QWidget* const popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : QApplication::focusWidget(), key, modifiers);
    }
    /// The same in the box of a dialog that comes up just now, in which it begins.
    void PressIn(QDialog& dialog, Qt::Key key)
    {
        ++Keys_;
        QTest::keyClick(dialog.findChild<QLineEdit*>(), key);
    }
    static void Type(const QString& text) { QTest::keyClicks(QApplication::focusWidget(), text); }
    void GoBackToTheMessage()
    {
        Window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Window.get()));
        SelectByKeys(*Window, Wanted);
    }
    int Found() const
    {
        return Window->Search().Window().findChild<QTreeView*>(QStringLiteral("searchList"))->model()->rowCount();
    }
    void Begin()
    {
        Keys_ = 0;
        Started_ = std::clock();
    }
    /// The job ends when this is so.
    void Ends(const char* job, const std::function<bool()>& isDone)
    {
        ASSERT_TRUE(WaitUntil(isDone, 20'000)) << job;
        const double seconds = static_cast<double>(std::clock() - Started_) / CLOCKS_PER_SEC;
        EXPECT_LE(Keys_, MostKeys) << job;
        EXPECT_LE(seconds, MostSeconds) << job;
        RecordProperty(job, QByteArray::number(seconds).toStdString());
    }

    qint32 Wanted = 0;
    qint32 Prize = 0;

private:
    int Keys_ = 0;
    std::clock_t Started_ = 0;
};
} // namespace

TEST_F(CommonJobsTest, TakeFourKeysAndASecondAtMost)
{
    Begin();
    Press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window->Search().Window()));
    Type(QStringLiteral("lighthouse"));
    ASSERT_TRUE(WaitUntil([this] { return Window->Search().Window().IsSettled() && Found() == 1; }, 20'000));
    Press(Qt::Key_Return);
    Ends("FindTheTextAboutTheSong", [this] { return Window->MessageWindows().size() == 1; });
    ASSERT_FALSE(Window->MessageWindows().isEmpty());
    EXPECT_EQ(Window->MessageWindows().first()->Reference(), Wanted);
    Window->MessageWindows().first()->close();
    Window->Search().Window().close();
    GoBackToTheMessage();

    Begin();
    Press(Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier);
    Ends("WhatTheSenderWroteBefore", [this] { return Window->Search().Window().IsSettled() && Found() == 1; });
    Window->Search().Window().close();
    GoBackToTheMessage();

    Begin();
    {
        const DialogVisitor chooser("prizeChooser", [this](QDialog& dialog) { PressIn(dialog, Qt::Key_Return); });
        Press(Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    }
    Ends("AwardToTheSender", [this] { return Station.Database().GetPrize(Prize, true)->NumberWinners() == 1; });

    GoBackToTheMessage();
    Begin();
    Press(Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(WaitUntil([this] { return Window->ComposeWindows().size() == 1; }));
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window->ComposeWindows().first()));
    Type(QStringLiteral("It comes after the news."));
    Press(Qt::Key_Return, Qt::ControlModifier);
    Ends("Reply", [this] { return MessagesIn(tmcOutbox).size() == 1; });
    GoBackToTheMessage();
    Begin();
    {
        const DialogVisitor chooser("folderChoice", [this](QDialog& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>(), QStringLiteral("saved"));
            PressIn(dialog, Qt::Key_Return);
        });
        Press(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    }
    Ends("FileInAFolder", [this] { return MessagesIn(tmcSaved) == QList<qint32>{Wanted}; });
}
