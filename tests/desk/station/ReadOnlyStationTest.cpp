// SPDX-License-Identifier: Apache-2.0

// A station that this account may read and not write: said at the opening, and at whatever would change it.

#include "window/MainWindowTest.h"

#include <QDirIterator>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
/// Root may write everything, so that the process is somebody else's while it lives.
class WithoutRights
{
public:
    explicit WithoutRights(const QString& folder)
    {
        ::chmod(QFile::encodeName(QFileInfo(folder).path()).constData(), 0777);
        Change(folder, 0555);
        QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (all.hasNext()) {
            const QString path = all.next();
            Change(path, all.fileInfo().isDir() ? 0555 : 0444);
        }
        if (::geteuid() == 0)
            IsOther_ = ::seteuid(65534) == 0;
    }
    ~WithoutRights()
    {
        if (IsOther_) {
            EXPECT_EQ(::seteuid(0), 0);
        }
        for (const QString& path : std::as_const(Changed_))
            ::chmod(QFile::encodeName(path).constData(), 0755);
    }
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;

private:
    void Change(const QString& path, mode_t rights)
    {
        ::chmod(QFile::encodeName(path).constData(), rights);
        Changed_.append(path);
    }

    QStringList Changed_;
    bool IsOther_ = false;
};

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
