// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/watch/FileWatch.h"
#include "messages/search/SearchFollowing.h"

#include <QObject>
#include <QThread>
#include <QTimer>

#include <array>
#include <atomic>
#include <functional>
#include <memory>

class DeskStation;

/// The search index of the station that is open on the desk. It reads the station in steps of some milliseconds between
/// the events of the window; all work on the index, searches too, is done on a thread of its own, so that neither holds
/// the window. Owned by the main window; the station outlives it.
class SearchService : public QObject
{
    Q_OBJECT

public:
    explicit SearchService(DeskStation& station, QObject* parent = nullptr);
    ~SearchService() override;

    /// While it answers true the station is left alone.
    void SetBusy(std::function<bool()> isBusy) { IsBusy_ = std::move(isBusy); }
    /// Begins to keep the index; not before somebody may want it.
    void Start();
    /// The same where there is one already: what is erased must not stay in it until somebody searches.
    void StartIfThere();
    /// Whoever asks again does not want to know any more what he asked before.
    enum class Asker
    {
        SearchWindow,
        ContactHistory,
        SelectedMessage,
        MessageWindow
    };
    /// Searches; the answer comes by Found, unless the same one asks again before. Its number. Where all hits are to be
    /// counted, first ones may come before: Found may come up to three times, the last one counted.
    int Search(Asker asker, const SearchQuestion& question, const SearchOptions& options);

    /// Why there is no search, in words; empty where there is one.
    const QString& Problem() const { return Problem_; }
    bool IsComplete() const { return IsComplete_; }
    /// Of the station's messages those that are searched.
    int Percent() const;

    static constexpr int LookMilliseconds = 2000;
    static constexpr int StepMilliseconds = 8;
    /// Between two steps, for everybody else.
    static constexpr int RestMilliseconds = 4;

Q_SIGNALS:
    void Found(int search, const SearchResult& result);
    /// What a search finds may be something else now.
    void Changed();
    /// Percent or Problem are others.
    void StateChanged();

private:
    class Worker;

    void Look();
    void Step();
    void Restart();
    void TakeDone(const std::vector<qint32>& references, qint64 count, bool hasChanged);
    void TakeFailure(const QString& words, bool mustBegin);
    void SetProblem(const QString& words);

    DeskStation& Station_;
    std::function<bool()> IsBusy_;
    QThread Thread_;
    Worker* Worker_ = nullptr; ///< On its thread; deleted there.
    /// The last search of each asker; 0 for none.
    std::array<std::atomic<int>, 4> LastSearches_{};
    int Searches_ = 0;
    std::unique_ptr<SearchFollowing> Following_;
    int Opening_ = 0;
    int Round_ = 0; ///< Of the worker's file: answers of an earlier one are nobody's.
    QByteArray Note_;
    QString Problem_;
    qint64 Count_ = 0;
    bool IsComplete_ = false;
    FileWatch File_;        ///< Since the station was looked at.
    bool HasBegun_ = false; ///< To go through the station, since it was opened.
    bool IsWorking_ = false;
    QTimer LookTimer_;
    QTimer StepTimer_;
};
