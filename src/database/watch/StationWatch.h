// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

class FileWatch;
class cTolvaDatabase;

/// The look at what other computers change in a station, one for all lists that show it: whichever list's timer fires
/// first polls, all are told, and what one of them has read in that moment the others take over. A list whose own timer
/// runs begins its interval anew then. Owned by its station (cTolvaDatabase::Watch). All on the user interface thread.
class TOLVA_EXPORT StationWatch : public QObject
{
    Q_OBJECT

public:
    /// The station outlives this.
    explicit StationWatch(cTolvaDatabase& station);
    ~StationWatch() override;

    /// Tells all listeners. Each of them may close or destroy the station. Where the station's server tells of changes,
    /// all are told by themselves from then on as well, some tenths of a second behind a change elsewhere.
    void Poll(const QObject& asker);

    /// As cTolvaDatabase::LastMessageChanged; while a poll is told, the answer that the first listener got. None is
    /// never kept, for the first listener gives the station a stamp then.
    Date MessageStamp();
    Date PrizeStamp();
    /// Loads the tree of folders where the stored one differs from it, once while a poll is told, and not while nobody
    /// writes to the file. dao::Error when it cannot be read.
    void RefreshFolders();

Q_SIGNALS:
    /// asker: for comparing only.
    void Polled(const QObject* asker);

private:
    struct Seen
    {
        std::optional<Date> MessageStamp;
        std::optional<Date> PrizeStamp;
        bool AreFoldersLoaded = false;
    };

    void TakeNotice();
    template <typename Read>
    Date StampOf(std::optional<Date> Seen::*kept, Read&& read);

    cTolvaDatabase& Station_;
    QTimer Looking_;                     ///< At what the server has told, while it tells.
    std::optional<Seen> Seen_;           ///< While a poll is told.
    std::unique_ptr<FileWatch> Folders_; ///< Since they were loaded.
    bool AreFoldersToldOf_ = false;      ///< A server has told of nothing since they were loaded,
    int OpeningOfFolders_ = 0;           ///< in this opening of the station.
    bool IsTold_ = false;                ///< The server does tell.
    QElapsedTimer SinceFolders_;         ///< Were loaded.
};
