// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/search/SearchFollowing.h"

#include <functional>

class Station;

/// This computer's search index of a station, for one command. Errors are Failures in words.
class StationIndex
{
public:
    /// Failure (unavailable) where this machine keeps none; what it kept before is removed then.
    explicit StationIndex(Station& station);
    ~StationIndex();
    StationIndex(const StationIndex&) = delete;
    StationIndex& operator=(const StationIndex&) = delete;

    /// Brings it up to date, with progress; false when that was ended early.
    bool BringUpToDate(Looking looking);
    /// Reads all of it; what is damaged is made anew.
    void Check();
    /// Messages in it, and in the station when it was brought up to date.
    qint64 Count();
    qint64 Total() const { return Total_; }
    SearchResult Find(const SearchQuestion& question, const SearchOptions& options);

private:
    /// What is damaged is made anew once, and the work done again.
    template <typename Work>
    auto WithIndex(Work&& work);
    void Open();

    Station& Station_;
    QString File_;
    QByteArray Identity_;
    std::unique_ptr<SearchIndex> Index_;
    qint64 Total_ = 0;
};
