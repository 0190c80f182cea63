// SPDX-License-Identifier: Apache-2.0
#include "song/SongDesk.h"

#include "WindowTest.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QPushButton>

namespace
{
class SongDeskTest : public WindowTest
{
protected:
    /// Other software names a song, at that moment.
    void Play(const QByteArray& song, const char* moment)
    {
        QFile file(Folder() + QStringLiteral("/Tolva.oar"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("CurrentSongFullName=\"" + song + "\"\r\n");
        ASSERT_TRUE(file.flush());
        ASSERT_TRUE(file.setFileTime(QDateTime::fromString(QLatin1String(moment), Qt::ISODate),
                                     QFileDevice::FileModificationTime));
    }
    qint32 FileAt(const QByteArray& subject, const QByteArray& time)
    {
        const QByteArray moment = "Fri, 20 Nov 2026 " + time + " +0000";
        return FileMail("Received: from a by b; " + moment + "\r\nFrom: a@b.org\r\nSubject: " + subject +
                        "\r\nDate: " + moment + "\r\n\r\nx\r\n");
    }
    uMessagesList& List() { return Window->List(); }
    QString Words() { return Window->findChild<NoticeBar*>(QStringLiteral("songNotice"))->Text(); }
    QLabel& InStatusBar() { return *Window->findChild<QLabel*>(QStringLiteral("song")); }
    QAction& Command() { return *Window->findChild<QAction*>(QStringLiteral("sinceSong")); }
    void PressButton()
    {
        auto* notice = Window->findChild<NoticeBar*>(QStringLiteral("songNotice"));
        QTest::mouseClick(notice->findChild<QPushButton*>(), Qt::LeftButton);
    }
    void PressKey() { QTest::keyClick(Window.get(), Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier); }
    bool IsSaid(const QString& words)
    {
        return WaitUntil([&] { return Words().contains(words); });
    }
};
} // namespace

TEST_F(SongDeskTest, WithoutASongNothingIsSaid)
{
    OpenWindow();
    EXPECT_EQ(Words(), QString());
    EXPECT_TRUE(InStatusBar().isHidden());
    EXPECT_FALSE(Command().isEnabled());
}

TEST_F(SongDeskTest, TheSongOnAirStandsInTheStatusBarAndAboveTheList)
{
    Play("Kim Vale - Rainy <b>Harbour</b>", "2026-11-20T14:05:00Z");
    OpenWindow();
    EXPECT_EQ(InStatusBar().text(), QStringLiteral("On air: Kim Vale - Rainy <b>Harbour</b>"));
    EXPECT_EQ(InStatusBar().textFormat(), Qt::PlainText);
    EXPECT_TRUE(Words().contains(QStringLiteral("\u201CKim Vale - Rainy <b>Harbour</b>\u201D")));
    EXPECT_TRUE(Words().contains(QStringLiteral("14:05"))) << Words().toStdString();
}

TEST_F(SongDeskTest, ANameOfManyLettersIsShortenedAndWholeInItsHint)
{
    const QByteArray name(3000, 'x');
    Play(name, "2026-11-20T14:05:00Z");
    OpenWindow();
    EXPECT_LT(InStatusBar().text().size(), 60);
    EXPECT_LT(Words().size(), 200);
    EXPECT_TRUE(InStatusBar().toolTip().contains(QLatin1String(name)));
}

TEST_F(SongDeskTest, TheNextSongIsShownByItselfAndNoneWhenTheFileGoes)
{
    Play("First", "2026-11-20T14:05:00Z");
    OpenWindow();
    Play("Second", "2026-11-20T14:09:00Z");
    EXPECT_TRUE(IsSaid(QStringLiteral("\u201CSecond\u201D, since"))) << Words().toStdString();
    EXPECT_TRUE(Words().contains(QStringLiteral("14:09")));
    EXPECT_EQ(InStatusBar().text(), QStringLiteral("On air: Second"));
    ASSERT_TRUE(QFile::remove(Folder() + QStringLiteral("/Tolva.oar")));
    EXPECT_TRUE(WaitUntil([this] { return Words().isEmpty() && InStatusBar().isHidden(); }));
}

TEST_F(SongDeskTest, ASongThatIsNamedOnceMoreDidNotBeginAnew)
{
    Play("First", "2026-11-20T14:05:00Z");
    OpenWindow();
    Play("First", "2026-11-20T14:07:00Z");
    Window->findChild<SongDesk*>()->Look();
    EXPECT_TRUE(Words().contains(QStringLiteral("14:05"))) << Words().toStdString();
}

TEST_F(SongDeskTest, OneKeyLeavesWhatCameSinceTheSongBeganAndShowsAllAgain)
{
    const qint32 before = FileAt("Before", "14:04:59");
    const qint32 at = FileAt("At once", "14:05:00");
    const qint32 after = FileAt("After", "14:06:00");
    Play("First", "2026-11-20T14:05:00Z");
    OpenWindow();
    ASSERT_EQ(List().References(), (QList<qint32>{after, at, before}));
    PressKey();
    EXPECT_EQ(List().References(), (QList<qint32>{after, at}));
    EXPECT_TRUE(Command().isChecked());
    EXPECT_TRUE(Words().startsWith(QStringLiteral("Only messages since \u201CFirst\u201D began")))
        << Words().toStdString();
    PressKey();
    EXPECT_EQ(List().References(), (QList<qint32>{after, at, before}));
    EXPECT_FALSE(Command().isChecked());
}

TEST_F(SongDeskTest, TheButtonDoesTheSameAndShowAllMessagesEndsIt)
{
    FileAt("Before", "14:04:00");
    const qint32 after = FileAt("After", "14:06:00");
    Play("First", "2026-11-20T14:05:00Z");
    OpenWindow();
    PressButton();
    EXPECT_EQ(List().References(), QList<qint32>{after});
    QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(List().References().size(), 2);
    EXPECT_TRUE(Words().startsWith(QStringLiteral("On air:")));
}

TEST_F(SongDeskTest, WhatIsOnShowStaysWhenTheNextSongBegins)
{
    FileAt("Before", "14:04:00");
    const qint32 after = FileAt("After", "14:06:00");
    Play("First", "2026-11-20T14:05:00Z");
    OpenWindow();
    PressKey();
    Play("Second", "2026-11-20T14:09:00Z");
    ASSERT_TRUE(WaitUntil([this] { return InStatusBar().text() == u"On air: Second"; }));
    EXPECT_EQ(List().References(), QList<qint32>{after});
    EXPECT_TRUE(Words().contains(QStringLiteral("\u201CFirst\u201D")));
}

TEST_F(SongDeskTest, AMessageThatComesJoinsThoseSinceTheSongBegan)
{
    FileAt("Before", "14:04:00");
    Play("First", "2026-11-20T14:05:00Z");
    OpenWindow();
    PressKey();
    EXPECT_TRUE(List().References().isEmpty());
    const qint32 after = FileAt("After", "14:06:00");
    EXPECT_TRUE(WaitUntil([&] { return List().References() == QList<qint32>{after}; }));
}
