// SPDX-License-Identifier: Apache-2.0
#include "answering/SongAnswers.h"

#include "answering/AnswerLedger.h"
#include "answering/AnsweredNumbers.h"
#include "answering/SongAnswerText.h"
#include "answering/TextTemplate.h"
#include "common/ClockHelper.h"
#include "common/GeneralHelper.h"
#include "common/MobileNumber.h"
#include "common/PendingError.h"
#include "database/StationSettings.h"
#include "database/cTolvaDatabase.h"
#include "messages/TextMessage.h"

#include <QDir>
#include <QFile>

namespace
{
/// Who answered, where people read it: "Answered by a machine, 14:05".
const QString Answerer = QStringLiteral("a machine");
constexpr double SecondsOfADay = 86400;
/// Of the gateway and of who files. Of a text from further ahead nobody knows when it came.
constexpr double SecondsClocksDiffer = 60;

QString SettingOf(const cTolvaDatabase& station, const StationSettings::TextSetting& setting)
{
    return station.DatabaseSetting(setting.Key, setting.Default).toString();
}

/// What cannot be read counts as the default, which is another key word: whether it can, this tells. dao::Error.
void RequireSettings(const cTolvaDatabase& station)
{
    station.OpenSnapshot(
        QStringLiteral("SELECT [Item] FROM [Settings] WHERE [Item]='%1'").arg(StationSettings::SMSCurrentSong.Key));
}

/// A file that names no song gives its first line instead; keys with their values are none.
QString SongOf(const cTolvaDatabase& station)
{
    const QString song = station.CurrentSongFullName();
    return song.contains(QStringLiteral("=\"")) ? QString() : song;
}

Date AskedAt(const cMessage& text)
{
    return ClockHelper::LocalToUTC(text.Received());
}

bool IsRecent(const cMessage& text)
{
    const double age = (ClockHelper::NowUTC().DayNumber() - AskedAt(text).DayNumber()) * SecondsOfADay;
    return age > -SecondsClocksDiffer && age < AnsweredNumbers::Seconds;
}
} // namespace

SongAnswers::Result SongAnswers::Answer(const cMessage& text)
{
    Result result;
    const SongQuestion question = QuestionOf(text);
    if (question == SongQuestion::None)
        return result;
    result.What = WhyNot(text);
    if (result.What != Outcome::Answered)
        return result;
    const QString words = Words(question, result);
    if (result.What != Outcome::Answered)
        return result;
    const QString recipient = text.CDOMessage()->From().trimmed();
    const QString number = GeneralHelper::PhoneNumberKey(recipient, Station_.StationCountry());
    AnsweredNumbers numbers(Directory_);
    if (!numbers.Claim(number, AskedAt(text)))
        return {Outcome::Repeated, 0, QString()};
    cMessagePtr answer;
    try {
        answer = Store(recipient, words);
    } catch (const dao::Error&) {
        // Where not even that can be stored, it ends by itself.
        PendingError pending;
        pending.Try([&] { numbers.TakeBack(number); });
        throw;
    }
    return {Outcome::Answered, answer->Reference(), NoteAnswered(text, *answer)};
}

SongQuestion SongAnswers::QuestionOf(const cMessage& text)
{
    if (text.MessageType() != emtSMS)
        return SongQuestion::None;
    if (!KeyWords_) {
        RequireSettings(Station_);
        KeyWords_ = {SettingOf(Station_, StationSettings::SMSCurrentSong),
                     SettingOf(Station_, StationSettings::SMSBuyCurrentSong)};
    }
    return QuestionIn(text.CDOMessage()->TextBody(), KeyWords_->Song, KeyWords_->Buy);
}

/// Answered where nothing speaks against it.
SongAnswers::Outcome SongAnswers::WhyNot(const cMessage& text) const
{
    // First, since it asks the station nothing: a spool that had to wait may hold thousands.
    if (!IsRecent(text))
        return Outcome::NotRecent;
    const QString country = Station_.StationCountry();
    const QString sender = text.CDOMessage()->From();
    const QString number = GeneralHelper::PhoneNumberKey(sender, country);
    // The answer of a machine to itself would be asked for again by the next.
    for (const QString& own :
         {Station_.StationSMSPhoneNumber(), Station_.StationPhoneNumber(), text.CDOMessage()->To()}) {
        if (!number.isEmpty() && number == GeneralHelper::PhoneNumberKey(own, country))
            return Outcome::OwnNumber;
    }
    if (!IsMobileNumber(sender, country))
        return Outcome::NotMobile;
    return IsNumberOfCountry(sender, country) ? Outcome::Answered : Outcome::Abroad;
}

/// What the answer says; result tells when there is to be none.
QString SongAnswers::Words(SongQuestion question, Result& result) const
{
    const SongAnswerText::Known known{Station_.StationName(), SongOf(Station_),
                                      ClockHelper::CurrentTime().Format(QStringLiteral("hh:nn")),
                                      SettingOf(Station_, StationSettings::AmazonID)};
    std::optional<QString> words = SongAnswerText::OwnWords(question, known);
    const QString file = QDir(Station_.HTMLTemplatesLocation()).filePath(SongAnswerText::TemplateName(question, known));
    if (QFile::exists(file))
        words = TextTemplate::Read(file, result.Problem);
    if (!words) {
        result.What = Outcome::Failed;
        return QString();
    }
    const QString filled = SongAnswerText::Of(question, *words, known);
    if (filled.isEmpty())
        result.What = Outcome::NoWords;
    return filled;
}

cMessagePtr SongAnswers::Store(const QString& recipient, const QString& words)
{
    const QString own = Station_.StationSMSPhoneNumber().trimmed();
    TextMessage text;
    text.From = own.isEmpty() ? Station_.StationName() : own;
    text.To = recipient;
    text.Text = words;
    const cMessagePtr answer = MakeMessage(text);
    answer->SetCategory(tmcOutbox);
    // Read, as all that the station writes itself is.
    answer->SetFlags(mfRead | mfAutomatic | mfSendPending);
    if (!Station_.SaveMessage(answer))
        throw dao::Error(Station_.LastErrorNumber(), Station_.LastErrorDescription());
    return answer;
}

/// The answer is stored already, so that a directory that takes no mark is none of its failures.
QString SongAnswers::NoteAnswered(const cMessage& text, const cMessage& answer)
{
    if (text.Reference() == 0)
        return QString();
    try {
        AnswerLedger(Directory_)
            .Note({{text.Reference(), AskedAt(text)}}, answer.Reference(), Answerer, ClockHelper::NowUTC());
    } catch (const dao::Error& error) {
        return error.Description();
    }
    return QString();
}
