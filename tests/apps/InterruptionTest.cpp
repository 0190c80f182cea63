// SPDX-License-Identifier: Apache-2.0

// Filing that is ended from outside: what was acknowledged is in the station, and the station is sound.

#include "CommandLineTest.h"

#include <QRandomGenerator>
#include <QSet>

#include <csignal>

class InterruptionTest : public CommandLineTest
{
protected:
    static constexpr int Messages_ = 3000;
    static constexpr int MessagesOfBatch = 500;

    void SetUp() override
    {
        CommandLineTest::SetUp();
        QByteArray mbox;
        for (int i = 0; i < Messages_; ++i)
            mbox += "From a@example.org Fri Nov 20 08:00:00 2026\n" + MailNumber(i) + '\n';
        Mbox_ = Write(QStringLiteral("mbox"), mbox);
    }

    static QByteArray MailNumber(int number) { return Mail(QByteArray::number(number), QByteArray(3000, 'm') + "\n"); }

    /// Reads acknowledgements until that many have come, sends the signal, and returns all of the output.
    QByteArray EndAfter(int acknowledgements, int signal, QProcess& process) const
    {
        Prepare(process, {QStringLiteral("file"), Station(), QStringLiteral("--verbose"), Mbox_});
        process.start();
        QByteArray output;
        while (output.count("\n") < acknowledgements && process.waitForReadyRead())
            output += process.readAllStandardOutput();
        EXPECT_EQ(::kill(static_cast<pid_t>(process.processId()), signal), 0);
        EXPECT_TRUE(process.waitForFinished());
        return output + process.readAllStandardOutput();
    }

    /// The references of the whole lines.
    static QList<int> Acknowledged(const QByteArray& output)
    {
        QList<int> references;
        const QByteArray whole = output.left(output.lastIndexOf('\n') + 1);
        for (const QByteArray& line : whole.split('\n')) {
            const qsizetype position = line.lastIndexOf(" as ");
            if (position >= 0)
                references.append(line.mid(position + 4).toInt());
        }
        return references;
    }

    QSet<int> References() const
    {
        QSet<int> references;
        for (const QJsonObject& message : Messages())
            references.insert(message.value(QStringLiteral("reference")).toInt());
        return references;
    }

private:
    QString Mbox_;
};

TEST_F(InterruptionTest, KilledAtAnyPointNothingAcknowledgedIsLost)
{
    const quint32 seed = QRandomGenerator::global()->generate();
    SCOPED_TRACE(seed);
    QRandomGenerator random(seed);
    qsizetype before = 0;
    for (int round = 0; round < 5; ++round) {
        QProcess process;
        const QList<int> acknowledged = Acknowledged(EndAfter(random.bounded(1, 60), SIGKILL, process));
        ASSERT_FALSE(acknowledged.isEmpty());
        const QSet<int> stored = References();
        for (const int reference : acknowledged)
            ASSERT_TRUE(stored.contains(reference)) << reference;
        // At most the one batch whose acknowledgement was on its way.
        EXPECT_LE(stored.size(), before + acknowledged.size() + MessagesOfBatch);
        before = stored.size();
        const Outcome check = OnStation("check");
        ASSERT_EQ(check.Code, 0) << check.Problems.constData();
        EXPECT_EQ(Expect("show", {QString::number(acknowledged.last()), QStringLiteral("--raw")}),
                  MailNumber(static_cast<int>(acknowledged.size()) - 1));
    }
}

TEST_F(InterruptionTest, CtrlCEndsBetweenTwoBatchesAndSaysHowManyWereFiled)
{
    QProcess process;
    const QByteArray output = EndAfter(3, SIGINT, process);
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    const qsizetype filed = Acknowledged(output).size();
    EXPECT_LT(filed, Messages_);
    EXPECT_TRUE(output.endsWith("\nfiled " + QByteArray::number(filed) + ", failed 0\n")) << output.constData();
    EXPECT_TRUE(process.readAllStandardError().contains("Ended early by Ctrl-C"));
    EXPECT_EQ(References().size(), filed);
}
