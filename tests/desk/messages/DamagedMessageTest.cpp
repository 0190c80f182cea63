// SPDX-License-Identifier: Apache-2.0

// What the desk shows of a message that was changed on the disk, and of a station any page of which is damaged.

#include "Desk.h"
#include "StationPlace.h"
#include "WindowTest.h"
#include "common/dialogs/DialogUserInterface.h"
#include "messages/PreviewPane.h"
#include "messages/controls/uMessageBasic.h"
#include "window/NoticeBar.h"

#include <QFile>
#include <QMessageBox>
#include <QPushButton>

class DamagedMessageTest : public WindowTest
{
protected:
    QString File() const { return StationPlace::FileIn(Folder()); }
    void Change(const QByteArray& from, const QByteArray& to) const
    {
        QByteArray octets = Read(File());
        const qsizetype at = octets.indexOf(from);
        ASSERT_GT(at, 0);
        octets.replace(at, to.size(), to);
        QFile file(File());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(octets), octets.size());
    }
};

TEST_F(DamagedMessageTest, IsShownAsDamagedWithTheBackupThatHasItSound)
{
    WithoutAutomaticBackups();
    const qint32 sound = FileMail(Mail("Sound", "All of it.\r\n"));
    const qint32 damaged = FileMail(Mail("Hurt", "Please play the song.\r\n"));
    const QString backup = Station.BackUp().Name;
    Station.Close();
    Change("play the song", "pLay");
    OpenWindow();
    EXPECT_EQ(Window->List().NumberItems(), 2);
    auto* pane = Window->findChild<PreviewPane*>(QStringLiteral("preview"));
    auto* notice = pane->findChild<NoticeBar*>(QStringLiteral("damageNotice"));
    auto* view = Window->findChild<uMessageBasic*>(QStringLiteral("viewer"));
    const auto show = [&](qint32 reference) {
        pane->Select(Window->Station().Database().GetMessage(reference));
        return WaitUntil(
            [&] { return pane->IsLoaded() && view->Message() && view->Message()->Reference() == reference; });
    };
    ASSERT_TRUE(show(damaged));
    EXPECT_TRUE(notice->isVisible());
    EXPECT_EQ(notice->Text(),
              QStringLiteral("This message is damaged: what is left of it is not what was saved. The backup \"%1\" has "
                             "it sound; fetch it from there with: tolva recover %2 %3")
                  .arg(backup, Folder())
                  .arg(damaged));
    ASSERT_TRUE(show(sound));
    EXPECT_FALSE(notice->isVisible());
}

class DamagedPagesTest : public DeskTest
{
protected:
    void SetUp() override
    {
        DeskTest::SetUp();
        Settings = std::make_unique<DeskSettings>(Path(QStringLiteral("desk.ini")));
        UserInterface::SetCurrent(&Dialogs);
        QObject::connect(&Closer, &QTimer::timeout, &Closer, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box)
                return;
            Told.append(box->text());
            // No is the answer to every offer.
            if (auto* no = box->button(QMessageBox::No))
                no->click();
            else
                box->close();
        });
        Closer.start(5);
    }
    void TearDown() override
    {
        Closer.stop();
        UserInterface::SetCurrent(&Ui);
        DeskTest::TearDown();
    }

    std::unique_ptr<DeskSettings> Settings;
    DialogUserInterface Dialogs;
    QTimer Closer;
    QStringList Told;
};

TEST_F(DamagedPagesTest, TheDeskOpensOrSaysWhatIsWrongAndOffersTheNewestBackupThatReads)
{
    constexpr qsizetype PageSize = 4096;
    for (int i = 0; i < 6; ++i)
        FileMail(Mail("Many", QByteArray(3000, 'm')));
    WithoutAutomaticBackups();
    ASSERT_FALSE(Station.BackUp().Name.isEmpty());
    Station.Close();
    const QString file = StationPlace::FileIn(Folder());
    const QByteArray whole = Read(file);
    const qsizetype pages = whole.size() / PageSize;
    int opened = 0;
    int offered = 0;
    for (qsizetype page = 0; page < pages; page += 3) {
        SCOPED_TRACE(page);
        QByteArray octets = whole;
        octets.replace(page * PageSize, PageSize, QByteArray(PageSize, '\x5A'));
        Write(QStringLiteral("station/Tolva.mdb"), octets);
        Told.clear();
        Desk desk(*Settings, nullptr);
        DeskOptions options;
        options.Folder = Folder();
        if (desk.Start(options)) {
            ++opened;
            ASSERT_TRUE(desk.Window());
            EXPECT_TRUE(WaitUntil([&] { return !desk.Window()->List().IsFilling(); }));
            desk.Window()->close();
        } else {
            ASSERT_FALSE(Told.isEmpty());
            offered += Told.join(u'\n').contains(QStringLiteral("The newest backup that can be read was made on "));
        }
    }
    EXPECT_GT(opened, 0);
    EXPECT_GT(offered, 0);
}
