// SPDX-License-Identifier: Apache-2.0

// tolva file: mails from every source, octet by octet.

#include "CommandLineTest.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>

class FilingTest : public CommandLineTest
{
protected:
    QByteArray Raw(const QString& reference) const { return Expect("show", {reference, QStringLiteral("--raw")}); }
    QByteArray RawOf(const QJsonObject& message) const
    {
        return Raw(QString::number(message.value(QStringLiteral("reference")).toInt()));
    }
    /// Files a folder of mails and reads each of them out of the station again.
    void ExpectEachToComeBack(const QString& folder) const;
};

void FilingTest::ExpectEachToComeBack(const QString& folder) const
{
    const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("*.eml")}, QDir::Files, QDir::Name);
    ASSERT_GE(files.size(), 50);
    const Outcome filed = OnStation("file", {QStringLiteral("--verbose"), folder});
    EXPECT_EQ(filed.Code, 0) << filed.Problems.constData();
    EXPECT_EQ(filed.LastLine(), "filed " + QByteArray::number(files.size()) + ", failed 0");
    const QList<QByteArray> lines = filed.Lines();
    ASSERT_EQ(lines.size(), files.size() + 1);
    for (qsizetype i = 0; i < files.size(); ++i) {
        const QByteArray& line = lines.at(i);
        ASSERT_TRUE(line.startsWith("filed " + files.at(i).filePath().toUtf8() + " as ")) << line.constData();
        EXPECT_EQ(Raw(QString::fromLatin1(line.mid(line.lastIndexOf(' ') + 1))), Read(files.at(i).filePath()))
            << line.constData();
    }
}

TEST_F(FilingTest, EveryOddMailComesBackOctetByOctet)
{
    ExpectEachToComeBack(QStringLiteral(TOLVA_TEST_DATA "/mail"));
}

TEST_F(FilingTest, EveryLentMailComesBackOctetByOctet)
{
    if (!qEnvironmentVariableIsSet("TOLVA_CORPUS"))
        GTEST_SKIP() << "TOLVA_CORPUS names no folder of lent files.";
    ExpectEachToComeBack(qEnvironmentVariable("TOLVA_CORPUS") + QStringLiteral("/mail"));
}

TEST_F(FilingTest, OneMailOnStandardInputIsFiled)
{
    const Outcome filed = OnStation("file", {}, Mail("Through the pipe"));
    EXPECT_EQ(filed.Code, 0);
    EXPECT_EQ(filed.Output, "filed 1, failed 0\n");
    EXPECT_EQ(filed.Problems, "");
    ASSERT_EQ(Messages().size(), 1);
    EXPECT_EQ(RawOf(Messages().first()), Mail("Through the pipe"));
    EXPECT_EQ(OnStation("file", {QStringLiteral("-")}, Mail("By the dash")).Code, 0);
    EXPECT_EQ(Messages().size(), 2);
}

TEST_F(FilingTest, MailThatItsSenderMarkedAsUrgentIsFiledAsUrgent)
{
    for (const char* header :
         {"X-Priority: 1\r\n", "Importance: high\r\n", "Priority: urgent\r\n", "X-Priority: 3\r\n"})
        EXPECT_EQ(OnStation("file", {}, header + Mail("Now")).Code, 0);
    QList<int> priorities;
    for (const QJsonObject& message : Messages()) {
        const QString reference = QString::number(message.value(QStringLiteral("reference")).toInt());
        const QByteArray shown = Expect("show", {reference, QStringLiteral("--json")});
        priorities.append(QJsonDocument::fromJson(shown).object().value(QStringLiteral("priority")).toInt());
    }
    std::sort(priorities.begin(), priorities.end());
    EXPECT_EQ(priorities, (QList<int>{0, 1, 1, 1}));
}

TEST_F(FilingTest, OctetsOfEveryValueAndLongLinesComeBack)
{
    QByteArray body;
    for (int octet = 0; octet < 256; ++octet)
        body += char(octet);
    body += QByteArray(100000, 'x') + "\n\r\n\n";
    EXPECT_EQ(Raw(FileMail(Mail("octets", body))), Mail("octets", body));
}

TEST_F(FilingTest, TheDeliveryAgentsFirstLineIsNoPartOfTheMail)
{
    const QByteArray enveloped = "From loveday@example.org Fri Nov 20 08:00:00 2026\n" + Mail("enveloped");
    EXPECT_EQ(Raw(FileMail(enveloped)), Mail("enveloped"));
}

TEST_F(FilingTest, TheCategoryIsTakenByNameNumberOrPath)
{
    Expect("folders", {QStringLiteral("add"), QStringLiteral("Competitions")});
    Expect("folders", {QStringLiteral("add"), QStringLiteral("Hamper"), QStringLiteral("--parent"),
                       QStringLiteral("Competitions")});
    for (const QString& folder : {QStringLiteral("saved"), QStringLiteral("3"), QStringLiteral("Competitions/Hamper"),
                                  QStringLiteral("Hamper")})
        FileMail(Mail("x"), {QStringLiteral("--category"), folder});
    EXPECT_EQ(Messages({QStringLiteral("--category"), QStringLiteral("Saved")}).size(), 2);
    EXPECT_EQ(Messages({QStringLiteral("--category"), QStringLiteral("Hamper")}).size(), 2);
}

TEST_F(FilingTest, AnUnknownCategoryFilesNothing)
{
    const Outcome outcome = OnStation("file", {QStringLiteral("--category"), QStringLiteral("Nowhere")}, Mail("lost?"));
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_TRUE(outcome.Problems.contains("There is no folder \"Nowhere\"")) << outcome.Problems.constData();
    EXPECT_TRUE(Messages().isEmpty());
}

TEST_F(FilingTest, AnMboxIsTakenApart)
{
    const QByteArray first = Mail("first", "Dear all,\n>From the start.\nFrom me.\n");
    const QByteArray second = Mail("second", "\n\nOnly blank lines before.\n");
    QByteArray quoted = first;
    quoted.replace("\n>From ", "\n>>From ");
    const QString mbox =
        Write(QStringLiteral("archive"), "From a@example.org Fri Nov 20 08:00:00 2026\n" + quoted +
                                             "\nFrom b@example.org Fri Nov 20 09:00:00 2026\n" + second + "\n");
    const Outcome filed = OnStation("file", {QStringLiteral("--verbose"), mbox});
    EXPECT_EQ(filed.Code, 0) << filed.Problems.constData();
    EXPECT_EQ(filed.LastLine(), "filed 2, failed 0");
    EXPECT_EQ(filed.Lines().value(1), "filed " + mbox.toUtf8() + ", message 2 as 2");
    EXPECT_EQ(Raw(QStringLiteral("1")), first);
    EXPECT_EQ(Raw(QStringLiteral("2")), second);
}

TEST_F(FilingTest, AMaildirIsTakenWithItsSeenFlags)
{
    Write(QStringLiteral("Maildir/new/1795000002.M1P1.mx"), Mail("new one"));
    Write(QStringLiteral("Maildir/cur/1795000001.M1P1.mx:2,S"), Mail("seen one"));
    Write(QStringLiteral("Maildir/cur/1795000000.M1P1.mx:2,FR"), Mail("not seen"));
    Write(QStringLiteral("Maildir/tmp/1795000003.M1P1.mx"), "half a ma");
    const Outcome filed = OnStation("file", {Path(QStringLiteral("Maildir"))});
    EXPECT_EQ(filed.Output, "filed 3, failed 0\n");
    QSet<QString> read;
    for (const QJsonObject& message : Messages()) {
        if (message.value(QStringLiteral("flags")).toArray().contains(QStringLiteral("read")))
            read.insert(message.value(QStringLiteral("subject")).toString());
    }
    EXPECT_EQ(read, QSet<QString>{QStringLiteral("seen one")});
}

TEST_F(FilingTest, BadFilesAreNamedAndCountedAndTheRestIsFiled)
{
    Write(QStringLiteral("post/1-good.eml"), Mail("good"));
    Write(QStringLiteral("post/2-empty.eml"), "");
    Write(QStringLiteral("post/3-picture.eml"), QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16));
    Write(QStringLiteral("post/4-good.eml"), Mail("good too"));
    Write(QStringLiteral("post/notes.txt"), "not asked for");
    Write(QStringLiteral("post/deeper/5.eml"), Mail("below"));
    const Outcome outcome = OnStation("file", {Path(QStringLiteral("post"))});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_EQ(outcome.LastLine(), "filed 2, failed 2");
    EXPECT_TRUE(outcome.Problems.contains("2-empty.eml is empty\n")) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("3-picture.eml is not a mail message\n")) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("left out 1 file")) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("deeper: folders within a folder are not read"))
        << outcome.Problems.constData();
    EXPECT_EQ(Messages().size(), 2);
}

TEST_F(FilingTest, WhatComesOnStandardInputIsFiledWhateverItLooksLike)
{
    int filed = 0;
    for (const QByteArray& octets :
         {QByteArray("no header at all\r\n"), QByteArray("\n\n"), QByteArray("\0\xFF\x89PNG", 6),
          QByteArray("From nobody Fri Nov 20 08:00:00 2026\n"), QByteArray(300, '\xE4')}) {
        EXPECT_EQ(OnStation("file", {QStringLiteral("-")}, octets).Output, "filed 1, failed 0\n") << octets.constData();
        EXPECT_EQ(Expect("show", {QString::number(++filed), QStringLiteral("--raw")}), octets);
    }
    const Outcome empty = OnStation("file", {QStringLiteral("-")});
    EXPECT_EQ(empty.Code, 65);
    EXPECT_EQ(empty.Output, "filed 0, failed 1\n");
}

TEST_F(FilingTest, AMissingPathFilesNothingOfTheOthers)
{
    const QString good = Write(QStringLiteral("good.eml"), Mail("good"));
    const Outcome outcome = OnStation("file", {good, Path(QStringLiteral("missing.eml"))});
    EXPECT_EQ(outcome.Code, 66);
    EXPECT_TRUE(outcome.Problems.contains("missing.eml"));
    EXPECT_TRUE(Messages().isEmpty());
}

TEST_F(FilingTest, EmptyStandardInputIsNoMail)
{
    const Outcome outcome = OnStation("file");
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_EQ(outcome.LastLine(), "filed 0, failed 1");
}

TEST_F(FilingTest, AnEmptyFolderFilesNothingAndIsNoError)
{
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("none"))));
    EXPECT_EQ(Expect("file", {Path(QStringLiteral("none"))}), "filed 0, failed 0\n");
}

TEST_F(FilingTest, HighlightWordsMarkAMessageThatHoldsThemAndLeaveTheOthersAlone)
{
    Expect("setting", {QStringLiteral("Messages.HighlightWords"), QStringLiteral("competition|urgent")});
    const auto page = [](const QByteArray& words) {
        return QByteArray("From: a@example.org\r\nSubject: page\r\nMIME-Version: 1.0\r\n"
                          "Content-Type: text/html; charset=utf-8\r\n\r\n<p>") +
               words + "</p>\r\n";
    };
    EXPECT_EQ(Raw(FileMail(page("nothing here"))), page("nothing here"));
    const QByteArray marked = Raw(FileMail(page("the competition")));
    EXPECT_NE(marked, page("the competition"));
    EXPECT_TRUE(marked.contains("competition"));
    EXPECT_FALSE(Messages().at(0).value(QStringLiteral("highlighted")).toBool());
    EXPECT_TRUE(Messages().at(1).value(QStringLiteral("highlighted")).toBool());
}

TEST_F(FilingTest, AHundredMessagesKeepTheirOrder)
{
    QByteArray mbox;
    for (int i = 0; i < 100; ++i)
        mbox += "From a@example.org Fri Nov 20 08:00:00 2026\n" + Mail(QByteArray::number(i)) + '\n';
    Expect("file", {Write(QStringLiteral("many"), mbox)});
    const QList<QJsonObject> messages = Messages();
    ASSERT_EQ(messages.size(), 100);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(messages.at(i).value(QStringLiteral("subject")).toString(), QString::number(i));
}
