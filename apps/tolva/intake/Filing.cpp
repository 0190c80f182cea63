// SPDX-License-Identifier: Apache-2.0
#include "intake/Filing.h"

#include "MailPriority.h"
#include "Terminal.h"
#include "messages/TextMessage.h"
#include "platform/files/FileSystem.h"
#include "platform/mail/TraceFields.h"

#include <QDateTime>
#include <QThread>

#include <utility>

namespace
{
/// What a batch holds at most; a larger mail is one alone. The octets also bound what is in memory, and what is written
/// while the station is locked.
constexpr std::size_t MessagesOfBatch = 500;
constexpr qsizetype OctetsOfBatch = qsizetype{4} * 1024 * 1024;
/// With the commit behind it the station is locked for about half a second.
constexpr qint64 MillisecondsOfWriting = 400;
/// Longer than a program that waits for the station sleeps between two looks.
constexpr qint64 MillisecondsForOthers = 25;
/// When a file got its content, in local time and whole seconds, as its line "Received:" would say; none where nobody
/// knows.
Date WrittenAt(const QString& file)
{
    if (file.isEmpty())
        return {};
    const auto attributes = FileSystem::Current().AttributesOf(file);
    if (!attributes || !attributes->ChangedMilliseconds)
        return {};
    return Date::FromDateTime(QDateTime::fromSecsSinceEpoch(*attributes->ChangedMilliseconds / 1000));
}
} // namespace

Filing::Filing(Station& station, qint32 category, Options options)
    : Station_(station),
      Category_(category),
      Options_(options),
      FiledMails_(station.Database(), options.testFlag(Option::SkipsFiled) ? SameMails::Sameness::ButForTrace
                                                                           : SameMails::Sameness::Octets),
      Answering_(station)
{
}

void Filing::Add(const IncomingMessage& incoming)
{
    if (!incoming.Problem.isEmpty()) {
        Refuse(incoming.Name, incoming.Problem, exitNoInput);
        return;
    }
    QString problem;
    const cMessagePtr message = MakeMessageOf(incoming, problem);
    if (!problem.isEmpty()) {
        Refuse(incoming.Name, problem, exitData);
        return;
    }
    if (Options_.testFlag(Option::FilesOnce) && !Claim_)
        Claim_ = std::make_unique<FilingClaim>(Station_.Folder());
    if (PassesOver() && IsFiledAlready(*message, incoming)) {
        ++Skipped_;
        // Whoever filed it may have been killed before he answered.
        const QString answered = Answer(*message, incoming);
        Take(incoming);
        if (Options_.testFlag(Option::Verbose))
            Terminal::PrintLine(QStringLiteral("passed over %1, which is filed already").arg(incoming.Name));
        PrintIfWanted(answered);
        return;
    }
    if (WaitingOctets_ > 0 && WaitingOctets_ + incoming.Octets.size() > OctetsOfBatch)
        FileBatch();
    Waiting_.push_back({incoming, message});
    WaitingOctets_ += incoming.Octets.size();
    if (Waiting_.size() == MessagesOfBatch)
        FileBatch();
}

void Filing::Finish()
{
    FileWaiting();
    Claim_.reset();
}

void Filing::FileWaiting()
{
    while (!Waiting_.empty())
        FileBatch();
}

cMessagePtr Filing::MakeMessageOf(const IncomingMessage& incoming, QString& problem) const
{
    problem.clear();
    cMessagePtr message;
    if (incoming.Kind == IncomingKind::TextMessage) {
        TextMessage text = ReadTextMessageFile(incoming.Octets, problem);
        // Now would be another time at each try, and a text that lay about would count as new.
        if (text.Received.IsNone())
            text.Received = WrittenAt(incoming.File);
        if (problem.isEmpty())
            message = MakeMessage(text);
    } else {
        // What is handed over is filed whatever it looks like: nobody else has it.
        const bool isHandedOver = incoming.IsHandedOver || Options_.testFlag(Option::Takes);
        problem = isHandedOver && !incoming.Octets.isEmpty() ? QString() : WhyNotMail(incoming.Octets);
        if (problem.isEmpty()) {
            message = std::make_shared<cMessage>();
            message->SetMessageType(emtEmail);
            message->SetCDOMessage(std::make_shared<cdo::Message>(incoming.Octets));
            message->SetPriority(MailPriority(*message->CDOMessage()));
            if (incoming.IsRead)
                message->SetFlags(mfRead);
        }
    }
    if (message)
        message->SetCategory(static_cast<enTolvaMessageCategories>(Category_));
    return message;
}

bool Filing::PassesOver() const
{
    return Options_.testAnyFlags(Option::SkipsFiled | Option::FilesOnce | Option::Takes);
}

bool Filing::IsFiledAlready(const cMessage& message, const IncomingMessage& incoming)
{
    // Twins in one folder: the first of them must be in the station before the second is looked for there.
    const bool hasTwin = std::any_of(Waiting_.begin(), Waiting_.end(), [&](const Waiting& waiting) {
        return Options_.testFlag(Option::SkipsFiled) ? cdo::AreSameButForTrace(waiting.Incoming.Octets, incoming.Octets)
                                                     : waiting.Incoming.Octets == incoming.Octets;
    });
    if (hasTwin)
        FileWaiting();
    return Station_.Try([&] { return FiledMails_.Hold(message); });
}

void Filing::FileBatch()
{
    if (SinceBatch_.isValid() && SinceBatch_.elapsed() < MillisecondsForOthers)
        QThread::msleep(static_cast<unsigned long>(MillisecondsForOthers - SinceBatch_.elapsed()));
    if (Waiting_.size() == 1) {
        FileOneByOne();
        return;
    }
    std::vector<MessageSaving> savings;
    try {
        savings = SaveBatch();
    } catch (const dao::Error& error) {
        // Locked for longer than the store waits: the single messages would wait as long. And where the disk failed at
        // the very end of the commit they are in the station, though nobody can promise that they stay.
        if (error.Number() == dao::errLocked || Waiting_.front().Message->Reference() != 0)
            FailAll(Waiting_.front().Incoming.Name, error.Number(), error.Description());
        Station_.Terminal().TakeProblems();
        FileOneByOne();
        return;
    }
    SinceBatch_.start();
    QStringList problems = Station_.Terminal().TakeProblems();
    for (std::size_t i = 0; i < savings.size(); ++i) {
        const Waiting& waiting = Waiting_[i];
        if (savings[i].IsSaved())
            Acknowledge(*waiting.Message, waiting.Incoming, std::exchange(problems, {}));
        else
            FailSaving(waiting.Incoming.Name, savings[i].ErrorNumber, savings[i].ErrorDescription);
        WaitingOctets_ -= waiting.Incoming.Octets.size();
    }
    Waiting_.erase(Waiting_.begin(), Waiting_.begin() + static_cast<std::ptrdiff_t>(savings.size()));
    Terminal::Flush();
}

std::vector<MessageSaving> Filing::SaveBatch()
{
    std::vector<cMessagePtr> messages;
    messages.reserve(Waiting_.size());
    for (const Waiting& waiting : Waiting_)
        messages.push_back(waiting.Message);
    // First asked behind the first message: waiting for the lock takes nothing of the time.
    QElapsedTimer clock;
    return Station_.Database().SaveMessages(messages, [&clock] {
        if (!clock.isValid())
            clock.start();
        return clock.elapsed() < MillisecondsOfWriting;
    });
}

/// What a batch could not do: those that can be filed are, and the first that cannot says why.
void Filing::FileOneByOne()
{
    const std::vector<Waiting> waiting = std::exchange(Waiting_, {});
    WaitingOctets_ = 0;
    for (const Waiting& one : waiting) {
        // Made anew: highlight words are marked in the mail that a batch took back.
        QString problem;
        Save(waiting.size() == 1 ? one.Message : MakeMessageOf(one.Incoming, problem), one.Incoming);
    }
    SinceBatch_.start();
}

void Filing::Save(const cMessagePtr& message, const IncomingMessage& incoming)
{
    message->SetCategory(static_cast<enTolvaMessageCategories>(Category_));
    int number = 0;
    QString description;
    bool isSaved = false;
    try {
        isSaved = Station_.Database().SaveMessage(message);
        number = Station_.Database().LastErrorNumber();
        description = Station_.Database().LastErrorDescription();
    } catch (const dao::Error& error) {
        number = error.Number();
        description = error.Description();
    }
    const QStringList problems = Station_.Terminal().TakeProblems();
    if (isSaved)
        Acknowledge(*message, incoming, problems);
    else
        FailSaving(incoming.Name, number, description.isEmpty() ? problems.join(u' ') : description);
    Terminal::Flush();
}

void Filing::Acknowledge(const cMessage& message, const IncomingMessage& incoming, const QStringList& problems)
{
    ++Filed_;
    FiledMails_.Add(message);
    const QString answered = Answer(message, incoming);
    Take(incoming);
    if (!Options_.testFlag(Option::Verbose))
        return;
    // What went wrong beside the message, such as the stamp that tells other computers of it.
    for (const QString& problem : problems)
        Terminal::Complain(problem);
    Terminal::PrintLine(QStringLiteral("filed %1 as %2").arg(incoming.Name).arg(message.Reference()));
    PrintIfWanted(answered);
}

/// Before its file goes, so that the next run has another try where this one is killed. What to say of it, for who
/// wants each.
QString Filing::Answer(const cMessage& message, const IncomingMessage& incoming)
{
    return Options_.testFlag(Option::Answers) ? Answering_.Take(message, incoming.Name) : QString();
}

void Filing::PrintIfWanted(const QString& line) const
{
    if (Options_.testFlag(Option::Verbose) && !line.isEmpty())
        Terminal::PrintLine(line);
}

/// What stays behind is passed over by the next run, which tries to remove it again.
void Filing::Take(const IncomingMessage& incoming)
{
    if (!Options_.testFlag(Option::Takes) || incoming.File.isEmpty())
        return;
    const FileStatus removed = FileSystem::Current().Remove(incoming.File);
    if (removed.IsDone() || removed.Error() == FileError::NotThere)
        return;
    Terminal::Complain(
        QStringLiteral("%1 is in the station, but the file cannot be removed: %2").arg(incoming.File, removed.Words()));
    if (ExitCode_ == exitOK)
        ExitCode_ = exitInputOutput;
}

void Filing::Refuse(const QString& name, const QString& problem, ExitCode code)
{
    ++Failed_;
    Terminal::Complain(QStringLiteral("%1 %2").arg(name, problem));
    if (ExitCode_ != exitNoInput)
        ExitCode_ = code;
}

/// An error of the message itself fails the message; one of the station fails the run, because the next message would
/// meet it too.
void Filing::FailSaving(const QString& name, int number, const QString& description)
{
    if (!IsErrorOfMessage(number))
        FailAll(name, number, description);
    ++Failed_;
    Terminal::Complain(QStringLiteral("%1 was not filed: %2").arg(name, description));
    if (ExitCode_ == exitOK)
        ExitCode_ = exitData;
}

void Filing::FailAll(const QString& name, int number, const QString& description)
{
    ++Failed_;
    const Failure failure = Station_.FailureOfStation(number, description);
    throw Failure(failure.Code(), QStringLiteral("%1 was not filed. %2").arg(name, failure.Words()));
}

void Filing::PrintCounts() const
{
    QString line = QStringLiteral("filed %1, failed %2").arg(Filed_).arg(Failed_);
    if (PassesOver())
        line += QStringLiteral(", passed over %1").arg(Skipped_);
    if (Options_.testFlag(Option::Answers))
        line += QStringLiteral(", answered %1").arg(Answering_.Answered());
    Terminal::PrintLine(line);
}
