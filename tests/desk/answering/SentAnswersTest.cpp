// SPDX-License-Identifier: Apache-2.0

// Messages that another program answered, by what it filed into Sent.

#include "answering/SentAnswers.h"

#include "common/ClockHelper.h"
#include "core/support/FaultyEngine.h"
#include "desk/window/MainWindowTest.h"
#include "messages/TextMessage.h"
#include "platform/records/Error.h"

namespace
{
QByteArray WithFields(const QByteArray& fields, const QByteArray& subject = "Re: Lighthouse")
{
    return "Subject: " + subject + "\r\nFrom: Petra Penrose <studio@example.org>\r\nTo: loveday@example.org\r\n" +
           "Date: Thu, 19 Nov 2026 14:05:00 +0000\r\n" + fields + "\r\nGladly.\r\n";
}

class SentAnswersTest : public MainWindowTest
{
protected:
    qint32 FileOriginal(const QByteArray& identity, const QByteArray& subject = "Lighthouse")
    {
        return FileMail(
            "Message-ID: <" + identity + ">\r\nSubject: " + subject +
            "\r\nFrom: Loveday <loveday@example.org>\r\nDate: Wed, 18 Nov 2026 09:00:00 +0000\r\n\r\nHello\r\n");
    }
    qint32 FileText(const QString& from, const QString& to, Date when, enTolvaMessageCategories folder = tmcInbox)
    {
        TextMessage text;
        text.From = from;
        text.To = to;
        text.Text = QStringLiteral("A song please");
        text.Received = when;
        const cMessagePtr message = MakeMessage(text);
        message->SetCategory(folder);
        EXPECT_TRUE(Station.Database().SaveMessage(message));
        return message->Reference();
    }
    /// What stands in its row.
    QString Spoken(qint32 reference)
    {
        const auto row = static_cast<int>(List().References().indexOf(reference));
        return Grid().model()->index(row, 2).data(Qt::AccessibleTextRole).toString();
    }
    bool IsMarked(qint32 reference)
    {
        List().ShowChanges();
        return WaitUntil(
            [&] {
                Grid().viewport()->update();
                return Spoken(reference).contains(u"Answered");
            },
            3000);
    }
};

/// Of a station whose disk fails when a test says so.
class SentAnswersOfAFailingDiskTest : public SentAnswersTest
{
protected:
    /// At the access of that number from now on.
    void FailOnce(int access = 1)
    {
        Engine_.FailAt(access, [] { throw dao::Error(dao::errDiskError, QStringLiteral("The cable was pulled.")); });
    }
    bool HasFailed() const { return Engine_.HasFailed(); }

private:
    FaultyEngine Engine_;
};
} // namespace

TEST_F(SentAnswersTest, AnImportedAnswerMarksWhatItAnswersWithItsWriterAndTime)
{
    const qint32 answered = FileOriginal("one@example.org");
    const qint32 other = FileOriginal("two@example.org", "Tides");
    const qint32 byReferences = FileOriginal("three@example.org", "Fog");
    FileMail(WithFields("In-Reply-To: <one@example.org>\r\nReferences: <two@example.org> <one@example.org>\r\n"),
             tmcSent);
    FileMail(WithFields("References: <two@example.org>\r\n <three@example.org>\r\n"), tmcSent);
    OpenWindow();
    EXPECT_TRUE(IsMarked(answered));
    EXPECT_TRUE(Spoken(answered).contains(u"Answered by Petra Penrose, 19 Nov 2026 14:05"))
        << qPrintable(Spoken(answered));
    EXPECT_TRUE(IsMarked(byReferences));
    EXPECT_FALSE(Spoken(other).contains(u"Answered"));
    Select(answered);
    EXPECT_TRUE(WaitUntil(
        [this] { return Notice("answeringNotice").Text().startsWith(QStringLiteral("Answered by Petra Penrose, ")); }));
}

TEST_F(SentAnswersTest, WhatComesIntoSentWhileTheDeskIsOpenMarksToo)
{
    const qint32 answered = FileOriginal("one@example.org");
    FileMail(WithFields("In-Reply-To: <nobody@example.org>\r\n"), tmcSent);
    OpenWindow();
    EXPECT_FALSE(Spoken(answered).contains(u"Answered"));
    const QString file = Write(QStringLiteral("answer.eml"), WithFields("In-Reply-To: <one@example.org>\r\n"));
    OtherComputer("file", {QStringLiteral("--category"), QStringLiteral("Sent"), file});
    EXPECT_TRUE(IsMarked(answered));
}

TEST_F(SentAnswersTest, AnAddressOfAnyCharactersHoldsNothingUp)
{
    Station.Database().SetDatabaseSetting(QStringLiteral("Station.EmailAddress"),
                                          QStringLiteral("stu%1dio@example.org"), QString());
    const qint32 answered = FileOriginal("one@example.org");
    OpenWindow();
    EXPECT_FALSE(Spoken(answered).contains(u"Answered"));
    const QString file = Write(QStringLiteral("answer.eml"), WithFields("In-Reply-To: <one@example.org>\r\n"));
    OtherComputer("file", {QStringLiteral("--category"), QStringLiteral("Sent"), file});
    EXPECT_TRUE(IsMarked(answered));
}

TEST_F(SentAnswersOfAFailingDiskTest, AnAddressThatCannotBeReadIsReadAgain)
{
    Station.Database().SetDatabaseSetting(QStringLiteral("Station.EmailAddress"), QStringLiteral("studio@example.org"),
                                          QString());
    const qint32 answered = FileOriginal("one@example.org");
    FileMail(WithFields("In-Reply-To: <one@example.org>\r\n"), tmcSaved);
    int access = 1;
    for (bool hasFailed = true; hasFailed; ++access) {
        SentAnswers answers(Station, nullptr);
        FailOnce(access);
        answers.Refresh();
        hasFailed = HasFailed();
        EXPECT_TRUE(WaitUntil([&] {
            answers.Refresh();
            return answers.Of(answered).has_value();
        })) << access;
    }
    EXPECT_GT(access, 4) << "the settings and the rows";
}

TEST_F(SentAnswersTest, AnswersThatTheStationFiledInFoldersOfItsOwnCountByItsAddressAndNumber)
{
    Station.Database().SetDatabaseSetting(QStringLiteral("Station.EmailAddress"), QStringLiteral("studio@example.org"),
                                          QString());
    Station.Database().SetDatabaseSetting(QStringLiteral("Station.SMSPhoneNumber"), QStringLiteral("01632 960100"),
                                          QString());
    Station.Database().ReadDatabaseSettings();
    clsCategory own;
    own.SetDescription(QStringLiteral("Quiz 2026"));
    own.SetReference(12);
    ASSERT_TRUE(Station.Database().SaveMessageCategory(own));
    const auto folder = static_cast<enTolvaMessageCategories>(own.Reference());
    ASSERT_GT(folder, tmcAutomatic);
    const qint32 inFolder = FileOriginal("one@example.org");
    const qint32 inSaved = FileOriginal("two@example.org", "Tides");
    const qint32 byListener = FileOriginal("three@example.org", "Fog");
    const qint32 byInbox = FileOriginal("four@example.org", "Rain");
    const qint32 text = FileText(QStringLiteral("+447700900123"), {}, Date(2026, 11, 19, 11));
    FileMail(WithFields("In-Reply-To: <one@example.org>\r\n"), folder);
    FileMail(WithFields("In-Reply-To: <two@example.org>\r\n"), tmcSaved);
    FileMail("From: loveday@example.org\r\nDate: Thu, 19 Nov 2026 14:05:00 +0000\r\nIn-Reply-To: "
             "<three@example.org>\r\n\r\nx\r\n",
             folder);
    FileMail(WithFields("In-Reply-To: <four@example.org>\r\n"));
    FileText(QStringLiteral("01632 960100"), QStringLiteral("07700 900123"), Date(2026, 11, 19, 12), folder);
    OpenWindow();
    EXPECT_TRUE(IsMarked(inFolder));
    EXPECT_TRUE(IsMarked(inSaved));
    EXPECT_TRUE(IsMarked(text));
    EXPECT_FALSE(Spoken(byListener).contains(u"Answered")) << "a listener's reply to another one is no answer";
    EXPECT_FALSE(Spoken(byInbox).contains(u"Answered")) << "who writes to the station may name any sender";
}

TEST_F(SentAnswersTest, ATextIsAnsweredByWhatWentToItsNumberAfterwards)
{
    const Date noon(2026, 11, 19, 12);
    const qint32 before = FileText(QStringLiteral("+447700900123"), {}, Date(2026, 11, 19, 11));
    const qint32 after = FileText(QStringLiteral("+447700900123"), {}, Date(2026, 11, 19, 13));
    const qint32 other = FileText(QStringLiteral("+447700900999"), {}, Date(2026, 11, 19, 11));
    FileText(QStringLiteral("01632 960100"), QStringLiteral("07700 900123"), noon, tmcSent);
    OpenWindow();
    EXPECT_TRUE(IsMarked(before));
    EXPECT_FALSE(Spoken(after).contains(u"Answered"));
    EXPECT_FALSE(Spoken(other).contains(u"Answered"));
}

TEST_F(SentAnswersTest, HostileFieldsAnswerNothing)
{
    const qint32 original = FileOriginal("one@example.org");
    const QList<QByteArray> fields = {"In-Reply-To: one@example.org\r\n", "In-Reply-To: <\r\n", "References: <<>>\r\n",
                                      "References: " + QByteArray(20'000, '<') + "\r\n",
                                      "In-Reply-To: your message of Monday <>\r\n"};
    for (const QByteArray& field : fields)
        FileMail(WithFields(field), tmcSent);
    SentAnswers answers(Station, nullptr);
    answers.Refresh();
    EXPECT_TRUE(WaitUntil([&] { return !answers.IsReading(); }));
    EXPECT_FALSE(answers.Of(original));
}

TEST_F(SentAnswersTest, TheRowsOfAScreenAreLookedUpAtOnceAndNoneWhileItIsPainted)
{
    QList<qint32> originals;
    for (int i = 0; i < 60; ++i) {
        const QByteArray identity = QByteArray::number(i) + "@example.org";
        originals.append(FileOriginal(identity));
        FileMail(WithFields("In-Reply-To: <" + identity + ">\r\n"), tmcSent);
    }
    SentAnswers answers(Station, nullptr);
    int changes = 0;
    QObject::connect(&answers, &SentAnswers::Changed, &answers, [&] { ++changes; });
    answers.Refresh();
    EXPECT_TRUE(WaitUntil([&] { return !answers.IsReading(); }));
    EXPECT_EQ(changes, 1);
    for (const qint32 original : originals)
        EXPECT_FALSE(answers.Of(original));
    EXPECT_TRUE(WaitUntil([&] { return !answers.IsReading(); }));
    EXPECT_EQ(changes, 2) << "one statement for all of them";
    for (const qint32 original : originals)
        EXPECT_TRUE(answers.Of(original));
}

TEST_F(SentAnswersOfAFailingDiskTest, WhatAFailureLeftUnreadIsReadWithTheNextLook)
{
    constexpr int more = 120; // Several steps.
    const qint32 original = FileOriginal("one@example.org");
    FileMail(WithFields("In-Reply-To: <one@example.org>\r\n"), tmcSent);
    for (int i = 0; i < more; ++i)
        FileMail(WithFields("In-Reply-To: <" + QByteArray::number(i) + "@example.net>\r\n"), tmcSent);
    SentAnswers answers(Station, nullptr);
    answers.Refresh();
    FailOnce();
    EXPECT_TRUE(WaitUntil([&] { return !answers.IsReading(); }));
    EXPECT_TRUE(HasFailed());
    EXPECT_FALSE(answers.Of(original));
    // Nothing has changed in the station meanwhile.
    answers.Refresh();
    EXPECT_TRUE(answers.IsReading());
    // It is looked up when somebody asks for it, so that a first question may come too early.
    EXPECT_TRUE(WaitUntil([&] { return answers.Of(original).has_value(); }));
}
