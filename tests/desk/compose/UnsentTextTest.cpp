// SPDX-License-Identifier: Apache-2.0

// What is being written outlives a desk that dies.

#include "compose/UnsentText.h"

#include "WindowTest.h"
#include "compose/ComposeWindow.h"
#include "window/NoticeBar.h"

#include <QDir>
#include <QLabel>
#include <QProcess>
#include <QPushButton>

namespace
{
class UnsentTextTest : public WindowTest
{
protected:
    QString Unsent() const { return Settings->UnsentFolder(); }
    QStringList Kept() const { return QDir(Unsent()).entryList({QStringLiteral("*.unsent")}, QDir::Files); }
    NoticeBar& Notice() { return *Window->findChild<NoticeBar*>(QStringLiteral("unsentNotice")); }
    void OpenAgain()
    {
        QTest::mouseClick(Notice().findChild<QPushButton*>(QStringLiteral("noticeButton")), Qt::LeftButton);
    }
    static Composition Text(const QString& body)
    {
        Composition text;
        text.To = QStringLiteral("ann@example.org");
        text.Subject = QStringLiteral("Your entry");
        text.Body = body;
        text.Files = {{QStringLiteral("cover.png"), "image/png", QByteArray(5000, 'p')}};
        text.InReplyTo = QStringLiteral("<1@example.org>");
        return text;
    }
};
} // namespace

TEST_F(UnsentTextTest, ADeskThatIsKilledLosesNoneOfTheTextThatWasTyped)
{
    QProcess desk;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TOLVA_REGISTRY"), Path(QStringLiteral("Tolva.ini")));
    environment.insert(QStringLiteral("XDG_STATE_HOME"), Path(QStringLiteral("state")));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), Path(QStringLiteral("cache")));
    desk.setProcessEnvironment(environment);
    desk.start(QStringLiteral(TOLVA_SOAK_DESK), {Folder(), Path(QStringLiteral("desk.ini"))});
    ASSERT_TRUE(desk.waitForStarted());
    desk.write("write\n");
    ASSERT_TRUE(WaitUntil([this] { return Kept().size() == 1; }, 60000)) << desk.readAllStandardError().constData();
    // Another desk of the same account offers nothing that somebody is writing just now.
    EXPECT_TRUE(UnsentText::Abandoned(Unsent(), Folder()).empty());
    desk.kill();
    ASSERT_TRUE(desk.waitForFinished());

    OpenWindow();
    EXPECT_EQ(Notice().Text(), QStringLiteral("A message that was being written when the desk ended was kept."));
    OpenAgain();
    ASSERT_EQ(Window->ComposeWindows().size(), 1);
    ComposeWindow* compose = Window->ComposeWindows().first();
    EXPECT_EQ(compose->Current().Body, QStringLiteral("Dear listener, thank you"));
    EXPECT_TRUE(compose->IsChanged()) << "closing it must ask";
    EXPECT_EQ(Notice().Text(), QString());
    EXPECT_TRUE(MessagesIn(tmcDrafts).isEmpty()) << "nothing of it is in the station";
    ASSERT_TRUE(compose->SaveDraft());
    EXPECT_TRUE(Kept().isEmpty()) << "what is stored is not offered again";
    EXPECT_EQ(MessagesIn(tmcDrafts).size(), 1);
}

TEST_F(UnsentTextTest, EverythingOfAMessageIsKept)
{
    {
        UnsentText file(Unsent());
        ASSERT_TRUE(file.Keep({Folder(), 0, QByteArray(), Text(QStringLiteral("First"))}).IsDone());
        ASSERT_TRUE(file.Keep({Folder(), 7, "digest", Text(QStringLiteral("Second"))}).IsDone());
        EXPECT_TRUE(UnsentText::Abandoned(Unsent(), Folder()).empty()) << "its owner lives";
    }
    const auto found = UnsentText::Abandoned(Unsent(), Folder());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].Kept.Text, Text(QStringLiteral("Second")));
    EXPECT_EQ(found[0].Kept.Draft, 7);
    EXPECT_EQ(found[0].Kept.DraftDigest, QByteArray("digest"));
}

TEST_F(UnsentTextTest, ATextOfAnotherStationIsLeftForThatOne)
{
    {
        UnsentText file(Unsent());
        ASSERT_TRUE(file.Keep({QStringLiteral("/elsewhere"), 0, QByteArray(), Text(QStringLiteral("x"))}).IsDone());
    }
    EXPECT_TRUE(UnsentText::Abandoned(Unsent(), Folder()).empty());
    EXPECT_EQ(UnsentText::Abandoned(Unsent(), QStringLiteral("/elsewhere")).size(), 1U);
}

TEST_F(UnsentTextTest, TheFileIsForItsOwnerAloneAndGoesWithTheText)
{
    UnsentText file(Unsent());
    ASSERT_TRUE(file.Keep({Folder(), 0, QByteArray(), Text(QStringLiteral("x"))}).IsDone());
    EXPECT_EQ(QFileInfo(Unsent()).permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther),
              QFileDevice::Permissions());
    file.Forget();
    EXPECT_TRUE(QDir(Unsent()).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

TEST_F(UnsentTextTest, ADraftThatSomebodyElseChangedMeanwhileIsNotWrittenOver)
{
    const qint32 draft = FileMail(Mail("Draft", "As it was.\r\n"), tmcDrafts, mfRead);
    {
        UnsentText file(Unsent());
        const Composition stored = Composing::Continue(*Station.Database().GetMessage(draft));
        ASSERT_TRUE(file.Keep({Folder(), draft, UnsentText::DigestOf(stored), Text(QStringLiteral("Mine"))}).IsDone());
    }
    const cMessagePtr changed = Station.Database().GetMessage(draft);
    changed->CDOMessage()->SetTextBody(QStringLiteral("Theirs"));
    ASSERT_TRUE(Station.Database().SaveMessage(changed));
    OpenWindow();
    OpenAgain();
    ASSERT_EQ(Window->ComposeWindows().size(), 1);
    EXPECT_EQ(Window->ComposeWindows().first()->Reference(), 0) << "it is a message of its own now";
    EXPECT_EQ(Window->ComposeWindows().first()->Current().Body, QStringLiteral("Mine"));
    ASSERT_TRUE(Window->ComposeWindows().first()->SaveDraft());
    EXPECT_EQ(MessagesIn(tmcDrafts).size(), 2);
}

TEST_F(UnsentTextTest, WhatIsGivenUpIsNotOffered)
{
    OpenWindow();
    ComposeWindow* compose = Window->Compose(Composition());
    QTest::keyClicks(compose->findChild<QWidget*>(QStringLiteral("body")), QStringLiteral("Never mind"));
    ASSERT_TRUE(WaitUntil([this] { return Kept().size() == 1; }, 2 * ComposeWindow::KeepMilliseconds));
    const BoxAnswer answer(QStringLiteral("Discard"));
    EXPECT_TRUE(compose->close());
    EXPECT_TRUE(Kept().isEmpty());
}

TEST_F(UnsentTextTest, WhatCannotBeKeptIsSaidToTheWriter)
{
    OpenWindow();
    ComposeWindow* compose = Window->Compose(Composition());
    QTest::keyClicks(compose->findChild<QWidget*>(QStringLiteral("body")), QStringLiteral("Dear"));
    const auto* note = compose->findChild<QLabel*>(QStringLiteral("note"));
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(Unsent()).path()));
        QFile inTheWay(Unsent());
        ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
        EXPECT_TRUE(WaitUntil([&] { return note->text().startsWith(u"What you write would not survive a crash"); },
                              2 * ComposeWindow::KeepMilliseconds))
            << note->text().toStdString();
        ASSERT_TRUE(inTheWay.remove());
    }
    const BoxAnswer answer(QStringLiteral("Discard"));
    EXPECT_TRUE(compose->close());
}
