// SPDX-License-Identifier: Apache-2.0
#include "window/WindowPlaces.h"

#include "Desk.h"
#include "WindowTest.h"
#include "compose/ComposeWindow.h"
#include "contacts/ContactDesk.h"
#include "contacts/ContactsWindow.h"
#include "platform/widgets/ListView.h"
#include "window/ReportDialog.h"

#include <QScreen>
#include <QSplitter>

namespace
{
class WindowPlacesTest : public WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        Places = std::make_unique<WindowPlaces>(*Settings);
    }
    static QSize Screen() { return QApplication::primaryScreen()->availableSize(); }
    /// The size in which it comes up; it is left in the other one.
    static QSize ShowReport(const QSize& left, int points = 0)
    {
        ReportDialog dialog(QStringLiteral("Title"), QStringLiteral("Headline"), QStringLiteral("Details"));
        if (points > 0) {
            QFont font = dialog.font();
            font.setPointSize(points);
            dialog.setFont(font);
        }
        dialog.show();
        const QSize size = dialog.size();
        dialog.resize(left);
        dialog.close();
        return size;
    }

    std::unique_ptr<WindowPlaces> Places;
};
} // namespace

TEST_F(WindowPlacesTest, ADialogComesUpAsLargeAsItWasLeft)
{
    EXPECT_NE(ShowReport({450, 410}), QSize(450, 410));
    EXPECT_EQ(ShowReport({470, 390}), QSize(450, 410));
    // Also in the next run of the program.
    Places.reset();
    Settings = std::make_unique<DeskSettings>(Path(QStringLiteral("desk.ini")));
    Places = std::make_unique<WindowPlaces>(*Settings);
    EXPECT_EQ(ShowReport({470, 390}), QSize(470, 390));
}

TEST_F(WindowPlacesTest, NothingComesUpLargerThanTheScreen)
{
    ShowReport(Screen() * 2);
    const QSize size = ShowReport({450, 410});
    EXPECT_LE(size.width(), Screen().width());
    EXPECT_LT(size.height(), Screen().height()) << "no room for the title";
}

TEST_F(WindowPlacesTest, LargeTypeGetsALargerWindowUntilTheUserSizesIt)
{
    const QSize usual = ReportDialog({}, {}, {}).size();
    const QSize large = ShowReport({450, 410}, 18);
    EXPECT_GT(large.width(), usual.width());
    EXPECT_GT(large.height(), usual.height());
    EXPECT_EQ(ShowReport({450, 410}, 18), QSize(450, 410));
}

TEST_F(WindowPlacesTest, SettingsThatMakeNoSenseAreLeftAlone)
{
    for (const char* broken : {"", "0,0", "x,5", "400", "400,300,2"}) {
        Settings->SetState(QStringLiteral("Windows/reportDialog/Size"), broken);
        EXPECT_GE(ShowReport({450, 410}).width(), ReportDialog({}, {}, {}).width()) << broken;
    }
}

TEST_F(WindowPlacesTest, TheWindowOfContactsIsWhereItWasWithItsPartsAndColumns)
{
    OpenWindow();
    Window->Contacts().ShowContacts();
    ContactsWindow* window = Window->Contacts().Window();
    window->setGeometry(40, 60, 700, 600);
    const auto splitter = [](ContactsWindow& contacts) {
        return contacts.findChild<QSplitter*>(QStringLiteral("contactsSplitter"));
    };
    const auto list = [](ContactsWindow& contacts) {
        return contacts.findChild<ListView*>(QStringLiteral("contacts"));
    };
    splitter(*window)->setSizes({310, 390});
    list(*window)->setColumnWidth(0, 123);
    const QList<int> sizes = splitter(*window)->sizes();
    window->close();
    ASSERT_TRUE(WaitUntil([this] { return !Window->Contacts().Window(); }));
    Window->Contacts().ShowContacts();
    window = Window->Contacts().Window();
    EXPECT_EQ(window->geometry(), QRect(40, 60, 700, 600));
    EXPECT_EQ(splitter(*window)->sizes(), sizes);
    EXPECT_EQ(list(*window)->columnWidth(0), 123);
}

TEST_F(WindowPlacesTest, ThePartsOfThePageOfPrizesAreAsTheyWereLeft)
{
    const auto sizes = [this] { return Window->findChild<QSplitter*>(QStringLiteral("presenterSplitter"))->sizes(); };
    OpenWindow();
    QTest::keyClick(Window.get(), Qt::Key_2, Qt::AltModifier);
    const int whole = sizes().at(0) + sizes().at(1);
    Window->findChild<QSplitter*>(QStringLiteral("presenterSplitter"))->setSizes({whole - 150, 150});
    const QList<int> left = sizes();
    CloseWindow();
    OpenWindow();
    EXPECT_EQ(sizes(), left);
    QTest::keyClick(Window.get(), Qt::Key_1, Qt::AltModifier);
}

TEST_F(WindowPlacesTest, TheDeskSeesToIt)
{
    Places.reset();
    Desk desk(*Settings, nullptr);
    ASSERT_TRUE(desk.OpenStation(Folder(), QStringLiteral("Technician")));
    const auto compose = [&] {
        desk.Window()->Compose({});
        return desk.Window()->ComposeWindows().constLast();
    };
    ComposeWindow* window = compose();
    window->resize(610, 480);
    window->close();
    EXPECT_EQ(compose()->size(), QSize(610, 480));
    EXPECT_TRUE(desk.Window()->close());
}
