// SPDX-License-Identifier: Apache-2.0
#include "answering/SongAnswers.h"

#include "answering/AnswerLedger.h"
#include "common/ClockHelper.h"
#include "core/support/EngineFile.h"
#include "core/support/StationTest.h"
#include "messages/TextMessage.h"
#include "platform/records/Recordset.h"

#include <QDir>

namespace
{
using Outcome = SongAnswers::Outcome;
const QString Ann = QStringLiteral("+44 7700 900123");

class SongAnswersTest : public StationTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        Station->SetStationName(QStringLiteral("Harbour FM"));
        Station->SetStationSMSPhoneNumber(QStringLiteral("07700 900001"));
        Station->SetStationCountry(QStringLiteral("GB"));
        Station->SetCurrentSongFullName(QStringLiteral("Pete Quill - The Shanty"));
    }
    static std::string Engine()
    {
        const QByteArray wanted = qgetenv("TOLVA_TEST_STATION");
        return wanted.isEmpty() ? "sqlite" : wanted.toStdString();
    }
    /// A text that is in the Inbox since that time.
    cMessagePtr Filed(const QString& words, const QString& from = Ann, double secondsAgo = 0)
    {
        TextMessage text;
        text.From = from;
        text.To = Station->StationSMSPhoneNumber();
        text.Text = words;
        text.Received = Date(ClockHelper::CurrentTime().DayNumber() - secondsAgo / 86400);
        const cMessagePtr message = ::MakeMessage(text);
        message->SetCategory(tmcInbox);
        EXPECT_TRUE(Station->SaveMessage(message));
        return message;
    }
    SongAnswers::Result Answer(const cMessage& text) { return SongAnswers(*Station, *Directory_).Answer(text); }
    Outcome OutcomeOf(const QString& words, const QString& from = Ann, double secondsAgo = 0)
    {
        return Answer(*Filed(words, from, secondsAgo)).What;
    }
    void WriteTemplate(const QString& name, const QByteArray& text)
    {
        const QDir folder(Station->HTMLTemplatesLocation());
        ASSERT_TRUE(folder.mkpath(QStringLiteral(".")));
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(text), text.size());
    }
    int InOutbox() const
    {
        return Station->OpenMessageRows({QStringLiteral("Reference")}, QStringLiteral("[Category]=2"))->RecordCount();
    }
    QString TextOf(const SongAnswers::Result& result)
    {
        const cMessagePtr answer = Station->GetMessage(result.Answer);
        return answer ? answer->CDOMessage()->TextBody().trimmed() : QStringLiteral("no answer");
    }

    EngineFile DirectoryFile_{Engine()};
    std::unique_ptr<dao::Database> Directory_ = DirectoryFile_.Open();
};
} // namespace

TEST_F(SongAnswersTest, WhoAsksForTheSongGetsItAsAnAutomaticMessageThatWaitsInTheOutbox)
{
    const cMessagePtr text = Filed(QStringLiteral("song?"));
    const SongAnswers::Result result = Answer(*text);
    EXPECT_EQ(result.What, Outcome::Answered);
    EXPECT_EQ(result.Problem, QString());
    const cMessagePtr answer = Station->GetMessage(result.Answer);
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer->MessageType(), emtSMS);
    EXPECT_EQ(answer->Category(), tmcOutbox);
    EXPECT_EQ(answer->Flags(), mfRead | mfAutomatic | mfSendPending);
    EXPECT_EQ(answer->CDOMessage()->From(), QStringLiteral("07700 900001"));
    EXPECT_EQ(answer->CDOMessage()->To(), Ann);
    EXPECT_EQ(answer->Sent(), ClockHelper::CurrentTime());
    EXPECT_TRUE(answer->SendAfter().IsNone());
    EXPECT_EQ(TextOf(result), QStringLiteral("Playing on Harbour FM at 14:05: Pete Quill - The Shanty"));
    EXPECT_EQ(Station->GetMessage(text->Reference())->Category(), tmcInbox) << "the text itself stays for people";
}

TEST_F(SongAnswersTest, TheTextIsMarkedAsAnsweredAndNoneThatCameBefore)
{
    Filed(QStringLiteral("Could somebody ring me?"));
    const cMessagePtr text = Filed(QStringLiteral("SONG"));
    ASSERT_EQ(Answer(*text).What, Outcome::Answered);
    const QList<FiledAnswer> answers = AnswerLedger(*Directory_).Since(Date());
    ASSERT_EQ(answers.size(), 1);
    EXPECT_EQ(answers.first().Original.Message, text->Reference());
    EXPECT_EQ(answers.first().Original.Arrived, ClockHelper::NowUTC());
    EXPECT_EQ(answers.first().Name, QStringLiteral("a machine"));
}

TEST_F(SongAnswersTest, ANumberGetsOneAnswerInFiveMinutesHoweverItIsWritten)
{
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG")), Outcome::Answered);
    EXPECT_EQ(OutcomeOf(QStringLiteral("BUY"), QStringLiteral("07700900123")), Outcome::Repeated);
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), QStringLiteral("07700 900124")), Outcome::Answered);
    Now.Advance(301);
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), QStringLiteral("00447700900123")), Outcome::Answered);
    EXPECT_EQ(InOutbox(), 3);
}

TEST_F(SongAnswersTest, TheSameTextIsAnsweredOnceWheneverItComesAgain)
{
    const cMessagePtr text = Filed(QStringLiteral("SONG"), Ann, -40);
    int answers = 0;
    for (int second = 0; second < 900; second += 20) {
        answers += Answer(*text).What == Outcome::Answered ? 1 : 0;
        Now.Advance(20);
    }
    EXPECT_EQ(answers, 1);
}

TEST_F(SongAnswersTest, ATextThatLayAboutIsNotAnswered)
{
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), Ann, 301), Outcome::NotRecent);
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), Ann, -3600), Outcome::NotRecent);
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), Ann, 299), Outcome::Answered);
    EXPECT_EQ(InOutbox(), 1);
}

TEST_F(SongAnswersTest, OnlyAMobileNumberThatIsNotTheStationsIsAnswered)
{
    for (const char* sender :
         {"01632 960123", "+44 20 7946 0018", "0909 879 0123", "0800 111 222", "80058", "999", "VODAFONE",
          "Pete <07700900123>", "07700900123,07700900124", "07700900123;07700900124", "07700900123 ext 4", ""})
        EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), QLatin1String(sender)), Outcome::NotMobile) << sender;
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), QStringLiteral("+447700900001")), Outcome::OwnNumber);
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), Station->StationPhoneNumber()), Outcome::OwnNumber);
    EXPECT_EQ(InOutbox(), 0);
    for (const char* sender : {"+49 151 23456789", "+1 202 555 0123"})
        EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), QLatin1String(sender)), Outcome::Abroad) << sender;
    EXPECT_EQ(InOutbox(), 0);
    Station->SetStationCountry(QStringLiteral("US"));
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), QStringLiteral("+1 202 555 0123")), Outcome::Answered)
        << "where numbers do not tell mobiles from others";
}

TEST_F(SongAnswersTest, TheStationsOwnNumberIsTheOneThatTheTextWentToAsWell)
{
    Station->SetStationSMSPhoneNumber(QString());
    const cMessagePtr text = Filed(QStringLiteral("SONG"));
    text->CDOMessage()->SetTo(QStringLiteral("07700 900123"));
    EXPECT_EQ(Answer(*text).What, Outcome::OwnNumber);
    text->CDOMessage()->SetTo(QStringLiteral("Harbour"));
    const SongAnswers::Result result = Answer(*text);
    ASSERT_EQ(result.What, Outcome::Answered);
    EXPECT_EQ(Station->GetMessage(result.Answer)->CDOMessage()->From(), QStringLiteral("Harbour FM"));
}

TEST_F(SongAnswersTest, ANumberIsReadAsTheStationsCountryWritesIt)
{
    Station->SetStationCountry(QStringLiteral("DE"));
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), QStringLiteral("0151 23456789")), Outcome::Answered);
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), QStringLiteral("030 901820")), Outcome::NotMobile);
}

TEST_F(SongAnswersTest, TheKeyWordsAreTheSettingsAndAnEmptiedOneIsTheUsualOne)
{
    const auto store = [this](const QString& key, const QString& word) {
        Station->SetDatabaseSetting(key, word, QString());
    };
    store(QStringLiteral("SMS.CurrentSong"), QStringLiteral("What's on"));
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG")), Outcome::NotAsked);
    EXPECT_EQ(OutcomeOf(QStringLiteral("whats on?")), Outcome::Answered);
    store(QStringLiteral("SMS.CurrentSong"), QString());
    EXPECT_EQ(OutcomeOf(QStringLiteral("song"), QStringLiteral("07700 900124")), Outcome::Answered);
    store(QStringLiteral("SMS.BuyCurrentSong"), QStringLiteral(" "));
    EXPECT_EQ(OutcomeOf(QStringLiteral("buy"), QStringLiteral("07700 900125")), Outcome::NotAsked);
}

TEST_F(SongAnswersTest, TheKeyWordsAreReadOnce)
{
    SongAnswers answers(*Station, *Directory_);
    EXPECT_EQ(answers.Answer(*Filed(QStringLiteral("hello"))).What, Outcome::NotAsked);
    Station->SetDatabaseSetting(QStringLiteral("SMS.CurrentSong"), QStringLiteral("tune"), QString());
    EXPECT_EQ(answers.Answer(*Filed(QStringLiteral("song"))).What, Outcome::Answered);
    EXPECT_EQ(OutcomeOf(QStringLiteral("song"), QStringLiteral("07700 900124")), Outcome::NotAsked);
}

TEST_F(SongAnswersTest, AMailAsksNothing)
{
    const cMessagePtr mail = StationTest::MakeMessage(QStringLiteral("SONG"), Ann);
    mail->CDOMessage()->SetTextBody(QStringLiteral("SONG"));
    ASSERT_TRUE(Station->SaveMessage(mail));
    EXPECT_EQ(Answer(*mail).What, Outcome::NotAsked);
}

TEST_F(SongAnswersTest, TheStationsTemplateSpeaksForItAndAnEmptyOneKeepsSilent)
{
    WriteTemplate(QStringLiteral("Automatic-Song.txt"), "It is <ZRT_SONG>.\r\nYours, <ZRT_STATION_NAME>\r\n");
    EXPECT_EQ(TextOf(Answer(*Filed(QStringLiteral("SONG")))),
              QStringLiteral("It is Pete Quill - The Shanty.\nYours, Harbour FM"));
    Station->SetCurrentSongFullName(QString());
    WriteTemplate(QStringLiteral("Automatic-No song.txt"), "");
    const QString ben = QStringLiteral("07700 900124");
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG"), ben), Outcome::NoWords);
    WriteTemplate(QStringLiteral("Automatic-No song.txt"), "News.");
    EXPECT_EQ(TextOf(Answer(*Filed(QStringLiteral("SONG"), ben))), QStringLiteral("News."))
        << "silence did not count as an answer";
}

TEST_F(SongAnswersTest, WithoutASongFileTheAnswerSaysThatNobodyKnows)
{
    const QString sorry = QStringLiteral("Sorry, Harbour FM cannot tell what was playing at 14:05.");
    const QString file = Folder.filePath(QStringLiteral("Tolva.oar"));
    ASSERT_TRUE(QFile::remove(file));
    EXPECT_EQ(TextOf(Answer(*Filed(QStringLiteral("SONG")))), sorry);
    // Emptied at the desk, and written by software that names no song.
    for (const char* content : {"CurrentSongFullName=\"\"\n", "Artist=\"Pete Quill\"\n"}) {
        QFile song(file);
        ASSERT_TRUE(song.open(QIODevice::WriteOnly));
        song.write(content);
        song.close();
        Now.Advance(360);
        EXPECT_TRUE(TextOf(Answer(*Filed(QStringLiteral("SONG")))).startsWith(QStringLiteral("Sorry"))) << content;
    }
}

TEST_F(SongAnswersTest, ATemplateThatCannotBeReadIsToldAndTheNumberIsNotCountedAsAnswered)
{
    WriteTemplate(QStringLiteral("Automatic-Song.txt"), QByteArray(300000, 'a'));
    const SongAnswers::Result result = Answer(*Filed(QStringLiteral("SONG")));
    EXPECT_EQ(result.What, Outcome::Failed);
    EXPECT_TRUE(result.Problem.contains(QStringLiteral("too large"))) << qPrintable(result.Problem);
    WriteTemplate(QStringLiteral("Automatic-Song.txt"), "<ZRT_SONG>");
    EXPECT_EQ(OutcomeOf(QStringLiteral("SONG")), Outcome::Answered);
}

TEST_F(SongAnswersTest, AStationThatTakesNoAnswerLeavesTheNumberUncounted)
{
    const cMessagePtr text = Filed(QStringLiteral("SONG"));
    ASSERT_EQ(Station->CloseTolvaDatabase(), 0);
    EXPECT_THROW(Answer(*text), dao::Error);
    OpenStation();
    EXPECT_EQ(Answer(*text).What, Outcome::Answered);
}
