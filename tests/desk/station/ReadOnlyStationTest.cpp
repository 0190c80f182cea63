// SPDX-License-Identifier: Apache-2.0

// A station that this account may read and not write: said at the opening, and at whatever would change it.

#include "WithoutRights.h"
#include "window/MainWindowTest.h"

namespace
{
class ReadOnlyStationTest : public MainWindowTest
{
};
} // namespace

TEST_F(ReadOnlyStationTest, ItIsSaidAtTheOpeningAndADeleteSaysWhyItDidNothing)
{
    WithoutAutomaticBackups();
    const qint32 reference = FileMail(Mail("One"));
    Station.Close();
    {
        const WithoutRights without(Folder());
        OpenWindow();
        ASSERT_TRUE(Window);
        EXPECT_TRUE(Notice("readOnlyNotice").Text().startsWith(QStringLiteral("This station can only be read here")))
            << Notice("readOnlyNotice").Text().toStdString();
        EXPECT_EQ(List().NumberItems(), 1);
        Select(reference);
        Ui.ExpectWarning(Window->Station().Words(dao::errReadOnly, QString()));
        QTest::keyClick(&Grid(), Qt::Key_Delete);
        EXPECT_EQ(List().NumberItems(), 1);
        CloseWindow();
    }
}

TEST_F(ReadOnlyStationTest, AStationThatCanBeWrittenSaysNothing)
{
    FileMail(Mail("One"));
    OpenWindow();
    EXPECT_EQ(Notice("readOnlyNotice").Text(), QString());
}
