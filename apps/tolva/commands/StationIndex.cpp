// SPDX-License-Identifier: Apache-2.0
#include "commands/StationIndex.h"

#include "Station.h"
#include "messages/search/SearchFailure.h"
#include "messages/search/SearchPlace.h"

namespace
{
ExitCode CodeOf(SearchFailure::Reason reason)
{
    switch (reason) {
    case SearchFailure::Reason::Busy:
        return exitTemporary;
    case SearchFailure::Reason::NoAccess:
        return exitCannotCreate;
    case SearchFailure::Reason::Interrupted:
        return exitInterrupted;
    default:
        return exitInputOutput;
    }
}
} // namespace

StationIndex::StationIndex(Station& station) : Station_(station)
{
    Station_.Try([&] {
        Identity_ = SearchFollowing::IdentityOf(Station_.Database());
        File_ = SearchPlace::FileOf(Identity_);
    });
    if (SearchPlace::IsWanted())
        return;
    SearchIndex::Remove(File_);
    throw Failure(exitUnavailable, QStringLiteral("This machine keeps no search index: its setting KeepSearchIndex is "
                                                  "off. Subjects and addresses are found with: tolva list %1 --find "
                                                  "TEXT")
                                       .arg(Station_.Folder()));
}

StationIndex::~StationIndex() = default;

void StationIndex::Open()
{
    if (!Index_ || Index_->IsReplaced())
        Index_ = std::make_unique<SearchIndex>(File_, Identity_, SearchPlace::PlaceOf(Station_.Database()));
}

template <typename Work>
auto StationIndex::WithIndex(Work&& work)
{
    for (bool isLast = false;; isLast = true) {
        try {
            Open();
            return work();
        } catch (const SearchFailure& failure) {
            const bool isHopeless = isLast || failure.Why() != SearchFailure::Reason::Damaged;
            Index_.reset();
            if (isHopeless || !SearchIndex::Remove(File_))
                throw Failure(CodeOf(failure.Why()), failure.Words());
        }
    }
}

bool StationIndex::BringUpToDate(Looking looking)
{
    return Station_.Try([&] {
        return WithIndex([&] {
            SearchFollowing following(Station_.Database());
            // From here on, so that Ctrl-C is met in the first step too.
            const auto progress = Station_.Terminal().Progress(QStringLiteral("Reading the messages"));
            const auto advance = [&](qint64 done, qint64 total) { return progress->Advance(done, total); };
            const bool isWhole = ::BringUpToDate(following, *Index_, advance, looking);
            Total_ = following.Total();
            return isWhole || following.IsDone();
        });
    });
}

void StationIndex::Check()
{
    Station_.Try([&] { WithIndex([&] { Index_->CheckAllTables(); }); });
}

qint64 StationIndex::Count()
{
    return WithIndex([&] { return Index_->Count(); });
}

SearchResult StationIndex::Find(const SearchQuestion& question, const SearchOptions& options)
{
    return WithIndex([&] { return Index_->Find(question, options); });
}
