// SPDX-License-Identifier: Apache-2.0

// tolva send with text messages: to a program of the technician's, and to one that takes what gammu-smsd-inject takes.

#include "SendTest.h"

class SendTextTest : public SendTest
{
};

TEST_F(SendTextTest, ATextGoesToEachNumberOnce)
{
    const QString reference = WaitingText(QStringLiteral("+44 7700 900123, 07700 900456"), "We're on air");
    EXPECT_TRUE(Send().Output.contains("no program is named that sends text messages"));
    Answer("case \"$1\" in *456) exit 75;; esac");
    const QStringList words = {QStringLiteral("--sms"), Program()};
    const Outcome half = Send(words);
    EXPECT_EQ(half.Code, 75);
    EXPECT_TRUE(half.Problems.contains("07700900456: ")) << half.Problems.constData();
    ASSERT_EQ(Taken().size(), 1);
    EXPECT_EQ(Taken().first(), "ARGUMENTS +447700900123\nWe're on air");
    Answer("");
    MakeDue(reference);
    EXPECT_EQ(Send(words).Code, 0);
    EXPECT_EQ(Taken().size(), 2) << "the first number has it already";
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
}

TEST_F(SendTextTest, ATextGoesToTheDaemonInItsOwnWords)
{
    WaitingText(QStringLiteral("07700 900456"), "-\u00e9t\u00e9");
    EXPECT_EQ(Send({QStringLiteral("--gammu"), Program()}).Code, 0);
    ASSERT_EQ(Taken().size(), 1);
    EXPECT_EQ(Taken().first(), "ARGUMENTS TEXT 07700900456 -autolen 4 -text -\u00e9t\u00e9\n");
}

TEST_F(SendTextTest, TheDaemonIsSpokenToInUTF8WhateverLanguageThisProgramRunsIn)
{
    WaitingText(QStringLiteral("07700 900456"), "On air");
    Answer("printf %s \"$LC_ALL\" >>\"$box\"");
    const QByteArray before = qgetenv("LC_ALL");
    qputenv("LC_ALL", "C");
    EXPECT_EQ(Send({QStringLiteral("--gammu"), Program()}).Code, 0);
    qputenv("LC_ALL", before);
    ASSERT_EQ(Taken().size(), 1);
    EXPECT_TRUE(Taken().first().endsWith("\nC.UTF-8")) << Taken().first().constData();
}

TEST_F(SendTextTest, ATextThatIsNotWholeInTheDaemonsOutboxIsNotSent)
{
    const QString reference = WaitingText(QStringLiteral("07700 900456"), "On air");
    const QString file = Path(QStringLiteral("outbox.smsbackup"));
    const QByteArray says = "; echo 'Written message with ID " + file.toUtf8() + "'";
    // As it is where the disk is full: all of it is missing, or its end.
    for (const char* left : {"", "Number = \"077"}) {
        Answer(QByteArray("printf '%s' '") + left + "' >'" + file.toUtf8() + "'" + says);
        const Outcome full = Send({QStringLiteral("--gammu"), Program(), QStringLiteral("--message"), reference});
        EXPECT_EQ(full.Code, 69);
        EXPECT_TRUE(full.Problems.contains("not whole in " + file.toUtf8())) << full.Problems.constData();
        EXPECT_EQ(StateOf(reference), QStringLiteral("notYet"));
        EXPECT_FALSE(QFile::exists(file)) << "the daemon would send what is left of it";
    }
    Answer(QByteArray("printf 'Number = \"077\"\\n' >'") + file.toUtf8() + "'; chmod 0600 '" + file.toUtf8() + "'" +
           says);
    EXPECT_EQ(Send({QStringLiteral("--gammu"), Program(), QStringLiteral("--message"), reference}).Code, 0);
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
    EXPECT_TRUE(QFile::permissions(file) & QFile::WriteGroup)
        << "a daemon that cannot write in it sends it again and again";
}

TEST_F(SendTextTest, WhatTheDaemonSaysOfAnOutboxThatIsNotThereIsShownAndTriedAgain)
{
    const QString reference = WaitingText(QStringLiteral("07700 900456"), "On air");
    Answer(
        "echo 'gammu-smsd-inject[28226]: Warning: No PIN code in rc file'; echo 'gammu-smsd-inject[28226]: Failed to "
        "stat \"/outbox/\" (outboxpath)'; echo '6 / 0'; echo 'Failed to read config: no such file'; exit 2");
    const Outcome missing = Send({QStringLiteral("--gammu"), Program()});
    EXPECT_EQ(missing.Code, 69);
    EXPECT_TRUE(
        missing.Problems.contains(": Failed to stat \"/outbox/\" (outboxpath) Failed to read config: no such file"))
        << missing.Problems.constData();
    EXPECT_EQ(StateOf(reference), QStringLiteral("notYet"));
}

TEST_F(SendTextTest, ATextThatIsEmptyOrTooLongForTheDaemonIsRefusedBeforeItIsHandedOver)
{
    const QString longest = WaitingText(QStringLiteral("07700 900456"), QByteArray(50 * 153, 'x'));
    const QString tooLong = WaitingText(QStringLiteral("07700 900456"), QByteArray(50 * 153 + 1, 'x'));
    const QString empty = WaitingText(QStringLiteral("07700 900456"), "\n");
    EXPECT_EQ(Send({QStringLiteral("--gammu"), Program()}).Code, 65);
    EXPECT_EQ(FolderOf(longest), QStringLiteral("Sent"));
    EXPECT_EQ(StateOf(tooLong), QStringLiteral("refused"));
    EXPECT_EQ(StateOf(empty), QStringLiteral("refused"));
    EXPECT_EQ(TimesCalled(), 1);
}

TEST_F(SendTextTest, AProgramThatTakesNoTextsKeepsNoMailWaiting)
{
    const QString text = WaitingText(QStringLiteral("07700 900456"), "On air");
    const QString mail = WaitingMail();
    const Outcome missing = Send({QStringLiteral("--sms"), Path(QStringLiteral("bin/nothing"))});
    EXPECT_EQ(missing.Code, 69);
    EXPECT_TRUE(missing.Problems.contains("cannot be started")) << missing.Problems.constData();
    EXPECT_EQ(StateOf(text), QStringLiteral("waiting"));
    EXPECT_EQ(FolderOf(mail), QStringLiteral("Sent"));
    const QString next = WaitingMail("next");
    EXPECT_EQ(Send({QStringLiteral("--sms"), Write(QStringLiteral("bin/config"), "#!/bin/sh\nexit 78\n")}).Code, 69);
    EXPECT_EQ(FolderOf(next), QStringLiteral("Sent"));
}
