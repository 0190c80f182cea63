// SPDX-License-Identifier: Apache-2.0
#include "SearchService.h"

#include "messages/search/SearchFailure.h"
#include "messages/search/SearchPlace.h"
#include "station/DeskStation.h"

#include <QFileInfo>

#include <algorithm>
#include <optional>

/// What is done on the thread. Every call is an event of it, and every answer an event of the window's.
class SearchService::Worker : public QObject
{
public:
    explicit Worker(SearchService& service) : Service_(service) {}

    void Open(int round, const QString& file, const QByteArray& station, const QByteArray& place)
    {
        Index_.reset();
        File_ = file;
        Identity_ = station;
        Place_ = place;
        Try(round, [&] {
            Require();
            const QByteArray note = Index_->Note();
            const qint64 count = Index_->Count();
            Answer(round, [=](SearchService& service) {
                service.Note_ = note;
                service.Count_ = count;
                service.SetProblem({});
                service.Look();
                Q_EMIT service.Changed();
            });
        });
    }

    void Do(int round, const std::shared_ptr<SearchWork>& work)
    {
        Try(round, [&] {
            Require();
            const qint64 before = Index_->Changes();
            const std::vector<qint32> references = work->DoIn(*Index_);
            const qint64 count = Index_->Count();
            const bool hasChanged = Index_->Changes() != before;
            const bool isFinished = work->Kind == SearchStep::Finish;
            const QByteArray note = work->Note;
            Answer(round, [=](SearchService& service) {
                if (isFinished)
                    service.Note_ = note;
                service.TakeDone(references, count, hasChanged);
            });
        });
    }

    void Find(int round, const std::atomic<int>& last, int search, const SearchQuestion& question,
              SearchOptions options)
    {
        const auto isWanted = [&last, search] { return last == search; };
        // What is asked before the station could be looked at is asked again then.
        if (!isWanted() || File_.isEmpty())
            return;
        options.GoesOn = isWanted;
        const auto answer = [this, round, &last, search](const SearchResult& result) {
            Answer(round, [search, result, &last](SearchService& service) {
                if (last == search)
                    Q_EMIT service.Found(search, result);
            });
        };
        if (options.IsCounted)
            options.First = answer;
        Try(round, [&] {
            Require();
            answer(Index_->Find(question, options));
        });
    }

    void Close() { Index_.reset(); }

private:
    void Require()
    {
        if (!Index_ || Index_->IsReplaced())
            Index_ = std::make_unique<SearchIndex>(File_, Identity_, Place_);
    }

    template <typename Work>
    void Try(int round, Work&& work)
    {
        try {
            work();
        } catch (const SearchFailure& failure) {
            const SearchFailure::Reason reason = failure.Why();
            if (reason == SearchFailure::Reason::Interrupted)
                return;
            const bool isDamaged = reason == SearchFailure::Reason::Damaged;
            Index_.reset();
            if (isDamaged)
                SearchIndex::Remove(File_);
            const QString words = reason == SearchFailure::Reason::Busy || isDamaged ? QString() : failure.Words();
            Answer(round, [=](SearchService& service) { service.TakeFailure(words, true); });
        }
    }

    template <typename Take>
    void Answer(int round, Take take)
    {
        SearchService& service = Service_;
        QMetaObject::invokeMethod(
            &service,
            [&service, round, take] {
                if (service.Round_ == round)
                    take(service);
            },
            Qt::QueuedConnection);
    }

    SearchService& Service_;
    std::unique_ptr<SearchIndex> Index_;
    QString File_;
    QByteArray Identity_;
    QByteArray Place_;
};

SearchService::SearchService(DeskStation& station, QObject* parent) : QObject(parent), Station_(station)
{
    setObjectName(QStringLiteral("searchService"));
    LookTimer_.setInterval(LookMilliseconds);
    connect(&LookTimer_, &QTimer::timeout, this, &SearchService::Look);
    StepTimer_.setSingleShot(true);
    StepTimer_.setInterval(RestMilliseconds);
    connect(&StepTimer_, &QTimer::timeout, this, &SearchService::Step);
}

SearchService::~SearchService()
{
    for (std::atomic<int>& last : LastSearches_)
        last = 0; // ends one that is under way
    Thread_.quit();
    Thread_.wait();
}

void SearchService::Start()
{
    if (Worker_)
        return;
    Worker_ = new Worker(*this);
    Worker_->moveToThread(&Thread_);
    connect(&Thread_, &QThread::finished, Worker_, &QObject::deleteLater);
    Thread_.start(QThread::LowPriority);
    LookTimer_.start();
    Look();
}

void SearchService::StartIfThere()
{
    if (Worker_ || !Station_.Database().IsOpen())
        return;
    try {
        if (QFileInfo::exists(SearchPlace::FileFor(Station_.Database())))
            Start();
    } catch (const dao::Error&) {
        return; // who searches starts it
    }
}

void SearchService::SetProblem(const QString& words)
{
    if (Problem_ == words)
        return;
    Problem_ = words;
    Q_EMIT StateChanged();
}

int SearchService::Percent() const
{
    const qint64 total = Following_ ? Following_->Total() : 0;
    if (IsComplete_)
        return 100;
    return total > 0 ? static_cast<int>(std::min(qint64{99}, 100 * Count_ / total)) : 0;
}

/// The station was opened anew: it may be another state, and has another index then.
void SearchService::Restart()
{
    const QByteArray identity = SearchFollowing::IdentityOf(Station_.Database());
    const QString file = SearchPlace::FileOf(identity);
    const QByteArray place = SearchPlace::PlaceOf(Station_.Database());
    ++Round_;
    Opening_ = Station_.Database().Openings();
    IsWorking_ = false;
    IsComplete_ = false;
    HasBegun_ = false;
    Note_.clear();
    if (!SearchPlace::IsWanted()) {
        SearchIndex::Remove(file);
        Following_.reset();
        SetProblem(tr("This machine keeps no search index: its setting KeepSearchIndex is off."));
        return;
    }
    Following_ = std::make_unique<SearchFollowing>(Station_.Database());
    QMetaObject::invokeMethod(Worker_, [worker = Worker_, round = Round_, file, identity, place] {
        worker->Open(round, file, identity, place);
    });
}

void SearchService::Look()
{
    if (!Worker_ || !Station_.Database().IsOpen() || (IsBusy_ && IsBusy_()))
        return;
    try {
        if (Opening_ != Station_.Database().Openings()) {
            Restart();
            return;
        }
        if (!Following_ || IsWorking_)
            return;
        // Counting a million messages takes a while, and mostly nobody has written anything.
        const bool mayHaveChanged = File_.MayHaveChanged(Station_.Database().Information().Path, Opening_);
        if (IsComplete_ && !mayHaveChanged)
            return;
        // What moved no stamp before this program was there is not told by the note.
        if (!HasBegun_)
            Following_->Begin();
        else
            Following_->Look(Note_);
        HasBegun_ = true;
        File_.WasRead();
    } catch (const dao::Error&) {
        return; // the desk says when the station is out of reach; the next look tries again
    }
    const bool isComplete = Following_->IsDone();
    if (isComplete != IsComplete_) {
        IsComplete_ = isComplete;
        Q_EMIT StateChanged();
    }
    if (!isComplete)
        StepTimer_.start();
}

void SearchService::Step()
{
    if (!Worker_ || !Following_ || IsWorking_ || !Station_.Database().IsOpen() ||
        Opening_ != Station_.Database().Openings() || (IsBusy_ && IsBusy_()))
        return;
    auto work = std::make_shared<SearchWork>();
    try {
        *work = Following_->Next(StepMilliseconds);
    } catch (const dao::Error&) {
        return;
    }
    if (work->Kind == SearchStep::None)
        return;
    if (work->Kind == SearchStep::Pause) {
        StepTimer_.start();
        return;
    }
    IsWorking_ = true;
    QMetaObject::invokeMethod(Worker_, [worker = Worker_, round = Round_, work] { worker->Do(round, work); });
}

void SearchService::TakeDone(const std::vector<qint32>& references, qint64 count, bool hasChanged)
{
    IsWorking_ = false;
    Following_->Take(references);
    const int before = Percent();
    const bool wasComplete = IsComplete_;
    Count_ = count;
    IsComplete_ = Following_->IsDone();
    SetProblem({});
    if (before != Percent() || wasComplete != IsComplete_)
        Q_EMIT StateChanged();
    if (hasChanged)
        Q_EMIT Changed();
    if (!IsComplete_)
        StepTimer_.start();
}

/// words: empty for what the next look puts right by itself.
void SearchService::TakeFailure(const QString& words, bool mustBegin)
{
    IsWorking_ = false;
    Note_.clear();
    SetProblem(words);
    if (!mustBegin || !Following_)
        return;
    IsComplete_ = false;
    try {
        Following_->Begin();
    } catch (const dao::Error&) {
        return;
    }
    StepTimer_.stop(); // at the next look, not at once: what hinders it may take a while
}

int SearchService::Search(Asker asker, const SearchQuestion& question, const SearchOptions& options)
{
    const int search = ++Searches_;
    std::atomic<int>& last = LastSearches_[static_cast<std::size_t>(asker)];
    last = search;
    if (Worker_) {
        QMetaObject::invokeMethod(Worker_, [worker = Worker_, round = Round_, &last, search, question, options] {
            worker->Find(round, last, search, question, options);
        });
    }
    return search;
}
