// SPDX-License-Identifier: Apache-2.0
#include "database/watch/FileWatch.h"

#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace
{
class FileWatchTest : public testing::Test
{
protected:
    FileWatchTest() { Write("one"); }

    void Write(const QByteArray& octets) const
    {
        QFile file(Name());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(octets), octets.size());
    }
    QString Name() const { return Folder_.filePath(QStringLiteral("station")); }
    bool MayHaveChanged() { return Watch.MayHaveChanged(Name(), 1); }
    /// Reads as whoever watches does, until it says that nothing is to be read.
    bool ComesToRest()
    {
        constexpr int MostReadings = 1000;
        for (int i = 0; i < MostReadings; ++i) {
            if (!MayHaveChanged())
                return true;
            Watch.WasRead();
            QThread::msleep(10);
        }
        return false;
    }

    FileWatch Watch;

private:
    QTemporaryDir Folder_;
};
} // namespace

TEST_F(FileWatchTest, AFileThatNobodyWritesToComesToRestAndNoWriteIsMissed)
{
    EXPECT_TRUE(MayHaveChanged());
    Watch.WasRead();
    EXPECT_TRUE(MayHaveChanged()) << "a write within the same step of the clock would look the same";
    ASSERT_TRUE(ComesToRest());
    EXPECT_TRUE(Watch.MayHaveChanged(Name(), 2)) << "another file was opened under the name";
    ASSERT_TRUE(Watch.MayHaveChanged(Name(), 1));
    ASSERT_TRUE(ComesToRest());
    Write("two");
    EXPECT_TRUE(MayHaveChanged());
    EXPECT_TRUE(MayHaveChanged()) << "until it was read";
}
