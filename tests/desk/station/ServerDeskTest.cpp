// SPDX-License-Identifier: Apache-2.0

// The desk at a station on a server, which goes away and comes back.

#include "StationMaking.h"
#include "database/watch/StationWatch.h"
#include "prizes/PrizeDesk.h"
#include "support/TestServer.h"
#include "window/MainWindowTest.h"

#include <QPlainTextEdit>

namespace
{
const QString Away =
    QStringLiteral("The station's server does not answer, or does not let this computer in; trying again.");

class ServerDeskTest : public MainWindowTest
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(Temporary_.isValid());
        qputenv("XDG_CACHE_HOME", QFile::encodeName(Path(QStringLiteral("cache"))));
        StationMaking::Make(Folder(), QStringLiteral("Harbour FM"), QStringLiteral("01632 960100"),
                            QStringLiteral("Technician"), Ui, QString(),
                            {QString(), Server_.Connect(QStringLiteral("harbour"))});
        Station.Open(Folder(), QStringLiteral("Technician"));
        Station.Database().SetDatabaseSetting(QStringLiteral("Station.EmailAddress"),
                                              QStringLiteral("studio@harbourfm.example.org"), QString());
        Settings = std::make_unique<DeskSettings>(Path(QStringLiteral("desk.ini")));
    }
    void FileElsewhere(const char* subject)
    {
        OtherComputer("file", {Write(QStringLiteral("other.eml"), Mail(subject))});
    }

    /// Of a reading that fails, as the desk puts it.
    QString WordsOfFailure()
    {
        try {
            Database().OpenMessageRows({QStringLiteral("Reference")}, QString(), QString());
        } catch (const dao::Error& error) {
            return Window->Station().Words(error.Number(), error.Description());
        }
        return {};
    }

    TestServer Server_;
};
} // namespace

TEST_F(ServerDeskTest, WhatOthersFileMarkAndMoveShowsAtOnce)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    ASSERT_EQ(List().NumberItems(), 1);
    // The desk's own timer is not what brings it.
    List().SetAutoUpdateInterval(60);
    Database().Watch().Poll(*Window);
    FileElsewhere("From the other computer");
    EXPECT_TRUE(WaitUntil([this] { return List().NumberItems() == 2; }));
    OtherComputer("mark", {QString::number(reference), QStringLiteral("read")});
    EXPECT_EQ(FlagsOf(reference), mfRead);
    OtherComputer("move", {QString::number(reference), QStringLiteral("Saved")});
    FileElsewhere("And one more");
    EXPECT_TRUE(WaitUntil([&] { return !List().References().contains(reference) && List().NumberItems() == 2; }));
}

TEST_F(ServerDeskTest, WhatIsWrittenStaysWhileTheServerIsAwayAndTheDeskGoesOnByItselfWhenItIsBack)
{
    FileMail(Mail("Lighthouse"));
    OpenWindow();
    Composition composition;
    composition.Subject = QStringLiteral("Re: Lighthouse");
    composition.To = QStringLiteral("loveday@example.org");
    QPointer<ComposeWindow> compose = Window->Compose(composition);
    auto* body = compose->findChild<QPlainTextEdit*>();
    ASSERT_NE(body, nullptr);
    QTest::keyClicks(body, QStringLiteral("Gladly."));
    Server_.Stop();
    EXPECT_TRUE(
        WaitUntil([this] { return Notice("connectionNotice").Text() == Away; }, 3 * MainWindow::WatchMilliseconds))
        << Notice("connectionNotice").Text().toStdString();
    // What a user asks for meanwhile fails in words that are about the server.
    const QString words = WordsOfFailure();
    EXPECT_TRUE(words.contains(QStringLiteral("server"))) << words.toStdString();
    Ui.ExpectWarning(
        QStringLiteral("The message was not saved. %1\n\nNothing that you wrote is lost: this window stays open.")
            .arg(words));
    EXPECT_FALSE(compose->SaveDraft());
    Ui.ExpectWarning(words);
    Window->Prizes().OpenPrize(1);
    Ui.ExpectWarning(words);
    Window->Prizes().OpenWinner(1);
    ASSERT_TRUE(compose);
    EXPECT_TRUE(compose->isVisible());
    EXPECT_EQ(List().NumberItems(), 1) << "what was read stays on show";
    Server_.Start();
    EXPECT_TRUE(
        WaitUntil([this] { return Notice("connectionNotice").Text().isEmpty(); }, 4 * MainWindow::WatchMilliseconds))
        << Notice("connectionNotice").Text().toStdString();
    EXPECT_EQ(body->toPlainText(), QStringLiteral("Gladly."));
    EXPECT_TRUE(compose->SaveDraft());
    EXPECT_EQ(MessagesIn(tmcDrafts).size(), 1);
    FileElsewhere("Filed when it was back");
    EXPECT_TRUE(WaitUntil([this] { return List().NumberItems() == 2; }, 2 * MainWindow::WatchMilliseconds));
}
