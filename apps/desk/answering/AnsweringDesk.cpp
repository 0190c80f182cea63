// SPDX-License-Identifier: Apache-2.0
#include "AnsweringDesk.h"

#include "AnsweredMarks.h"
#include "AnsweringWords.h"
#include "SentAnswers.h"
#include "ShortWait.h"
#include "common/UserInterface.h"
#include "compose/ComposeWindow.h"
#include "messages/MessageWindow.h"
#include "messageslist/uMessagesList.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/LockPatience.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QMainWindow>

AnsweringDesk::AnsweringDesk(DeskStation& station, uMessagesList& list, QMainWindow& window)
    : QObject(&window),
      Station_(station),
      List_(list),
      Notice_(new NoticeBar(QStringLiteral("reply"), QString(), &window)),
      Marks_(new AnsweredMarks(station, this)),
      Sent_(new SentAnswers(station, this))
{
    Notice_->setObjectName(QStringLiteral("answeringNotice"));
    Clock_.start();
    connect(Marks_, &AnsweredMarks::Changed, this, &AnsweringDesk::ShowWords);
    connect(Sent_, &SentAnswers::Changed, this, &AnsweringDesk::ShowWords);
    LookTimer_.setInterval(LookMilliseconds);
    connect(&LookTimer_, &QTimer::timeout, this, &AnsweringDesk::Look);
    LookTimer_.start();
    BeatTimer_.setInterval(static_cast<int>(AnsweringWatch::BeatMilliseconds));
    connect(&BeatTimer_, &QTimer::timeout, this, &AnsweringDesk::Tell);
    // Behind the window's first painting.
    TellTimer_.setSingleShot(true);
    TellTimer_.setInterval(0);
    connect(&TellTimer_, &QTimer::timeout, this, &AnsweringDesk::Tell);
}

AnsweringDesk::~AnsweringDesk() = default;

void AnsweringDesk::Show(const cMessagePtr& message)
{
    Message_ = message ? message->Reference() : 0;
    ShowWords();
}

bool AnsweringDesk::MayAnswer(const cMessage& original)
{
    Look();
    const QString words = AnsweringWords::OfNow(AnsweringOf(original.Reference()));
    return words.isEmpty() || UserInterface::Confirm(tr("%1. Do you want to answer as well?").arg(words));
}

void AnsweringDesk::Watch(ComposeWindow& window)
{
    const qint32 message = window.Current().Answers;
    Unresolved_.remove(&window);
    if (message != 0)
        Begin(window, message);
    else if (window.Reference() != 0)
        Resolve(window, window.Reference());
    disconnect(&window, &ComposeWindow::Stored, this, nullptr);
    connect(&window, &ComposeWindow::Stored, this, [this, message, &window](qint32 reference, bool goesOut) {
        Marks_->Note(message != 0 ? message : Own_.MessageOf(&window), reference, goesOut);
    });
}

/// A draft that is gone on with: what it answers. Looked for again soon where somebody else has the directory locked.
bool AnsweringDesk::Resolve(const QObject& window, qint32 draft)
{
    const std::optional<qint32> original = Marks_->OriginalOf(draft);
    if (original) {
        Unresolved_.remove(&window);
        Begin(window, *original);
        return true;
    }
    Unresolved_.insert(&window, draft);
    connect(&window, &QObject::destroyed, this, &AnsweringDesk::End, Qt::UniqueConnection);
    TellTimer_.start(ShortWait::AgainMilliseconds);
    return false;
}

void AnsweringDesk::Watch(MessageWindow& window)
{
    Begin(window, window.Reference());
}

void AnsweringDesk::Begin(const QObject& window, qint32 message)
{
    if (message <= 0)
        return;
    Own_.Begin(&window, message);
    connect(&window, &QObject::destroyed, this, &AnsweringDesk::End, Qt::UniqueConnection);
    BeatTimer_.start();
    TellTimer_.start(0);
}

void AnsweringDesk::End(const QObject* window)
{
    Unresolved_.remove(window);
    if (Own_.End(window))
        TellTimer_.start(0);
}

void AnsweringDesk::Leave()
{
    LookTimer_.stop();
    Own_.EndAll();
    Unresolved_.clear();
    // Nothing else is to be done now, and what stays would count as somebody who answers for a minute.
    WriteOwn();
    Marks_->Finish();
    BeatTimer_.stop();
    TellTimer_.stop();
}

/// What could not be written is told soon where somebody else has the directory locked, and otherwise with the next
/// beat.
void AnsweringDesk::Tell()
{
    const dao::LockPatience patience(ShortWait::Milliseconds);
    const auto unresolved = Unresolved_;
    for (auto window = unresolved.cbegin(); window != unresolved.cend(); ++window) {
        if (!Resolve(*window.key(), window.value()))
            return;
    }
    if (!WriteOwn())
        TellTimer_.start(ShortWait::AgainMilliseconds);
}

/// False where somebody else has the directory locked.
bool AnsweringDesk::WriteOwn()
{
    const clsKVUser* user = Station_.Directory().CurrentUser();
    if (!user || (Own_.IsEmpty() && Own_.Gone().isEmpty())) {
        BeatTimer_.stop();
        return true;
    }
    try {
        AnsweringTable(Station_.Directory().File())
            .Write(Own_.Entries(user->Name()), Own_.Gone() + Others_.Forgotten(Clock_.elapsed()));
        Own_.WereWritten();
    } catch (const dao::Error& error) {
        // Nobody is kept from answering because the others cannot be told.
        return error.Number() != dao::errLocked;
    }
    return true;
}

void AnsweringDesk::Look()
{
    const qint64 now = Clock_.elapsed();
    if (!Station_.Directory().IsOpen() || now < RestsUntil_)
        return;
    try {
        const dao::LockPatience patience(ShortWait::Milliseconds);
        QList<AnsweringEntry> entries = AnsweringTable(Station_.Directory().File()).Read();
        entries.removeIf([this](const AnsweringEntry& entry) { return Own_.Holds(entry.Entry); });
        Others_.Take(entries, now);
    } catch (const dao::Error& error) {
        // What it saw last grows old meanwhile. Who has the directory locked is done with it before the next look.
        if (error.Number() != dao::errLocked)
            RestsUntil_ = now + RestMilliseconds;
    }
    Now_.clear();
    for (const Answering& answering : Others_.Alive(now))
        Now_[answering.Message].append(answering);
    QHash<qint32, QString> words;
    for (auto it = Now_.cbegin(); it != Now_.cend(); ++it)
        words.insert(it.key(), AnsweringWords::OfNow(it.value()));
    if (words == Words_)
        return;
    Words_ = words;
    ShowWords();
}

QList<Answering> AnsweringDesk::AnsweringOf(qint32 message) const
{
    return Now_.value(message);
}

QString AnsweringDesk::NoteOf(qint32 message) const
{
    const auto now = Words_.constFind(message);
    if (now != Words_.constEnd())
        return *now;
    const std::optional<FiledAnswer> answer = AnswerTo(message);
    return answer ? AnsweringWords::OfFiled(*answer) : QString();
}

bool AnsweringDesk::WasAnswered(qint32 message) const
{
    return AnswerTo(message).has_value();
}

/// Both are asked, since each looks up what it does not know.
std::optional<FiledAnswer> AnsweringDesk::AnswerTo(qint32 message) const
{
    const std::optional<FiledAnswer> noted = Marks_->Of(message);
    const std::optional<FiledAnswer> sent = Sent_->Of(message);
    return noted ? noted : sent;
}

void AnsweringDesk::ShowWords()
{
    List_.ShowRowNotes();
    const QString words = Message_ > 0 ? NoteOf(Message_) : QString();
    Notice_->Show(words.isEmpty() ? QString() : words + u'.');
}

void AnsweringDesk::TakeUpdate()
{
    Marks_->Refresh();
    Sent_->Refresh();
    ShowWords();
}
