// SPDX-License-Identifier: Apache-2.0

// How often a command waits for the disk: most of the time that it takes on a real one.

#include "CommandLineTest.h"

#include <algorithm>

namespace
{
class SyncTest : public CommandLineTest
{
protected:
    int SyncsOf(const QStringList& words, const QByteArray& input) const
    {
        const QString log = Path(QStringLiteral("syncs"));
        QProcess process;
        Prepare(process, words);
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QStringLiteral("SYNC_LOG"), log);
        process.setProcessEnvironment(environment);
        process.start();
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
        return Read(log).trimmed().toInt();
    }
};
} // namespace

TEST_F(SyncTest, FilingOneMailIsOneCommitOfTheStationAndOneOfItsUserLog)
{
    int fewest = 1000;
    // When the second changes between the message and the closing, the closing notes the new one.
    for (int run = 0; run < 3; ++run)
        fewest = std::min(fewest, SyncsOf({QStringLiteral("file"), Station()}, Mail("Hello")));
    EXPECT_GT(fewest, 0);
    EXPECT_LE(fewest, 12);
}
