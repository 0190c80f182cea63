// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Station.h"
#include "intake/FiledMails.h"
#include "intake/FilingClaim.h"
#include "intake/IncomingMessage.h"
#include "intake/TextAnswering.h"

#include <QElapsedTimer>

#include <memory>
#include <vector>

/// One run of filing: files messages in batches, counts, and says of each message what became of it. A message is told
/// as filed only when its batch is on the disk.
class Filing
{
public:
    enum class Option
    {
        None = 0,
        Verbose = 1,    ///< Says of each message under which number it was filed.
        SkipsFiled = 2, ///< Passes over what the station holds already, by whatever route it came.
        FilesOnce = 4,  ///< Passes over what the station holds octet by octet, also if another run files it just now.
        Takes = 8,      ///< The same, and removes the files of what the station holds then.
        Answers = 16    ///< Answers text messages that ask for the song.
    };
    Q_DECLARE_FLAGS(Options, Option)

    /// category: the folder to file in. The station outlives this object.
    Filing(Station& station, qint32 category, Options options);

    /// Takes a message, which is filed now or with those that follow. Failure when nothing more can be filed in this
    /// run; then no message that was not told as filed is.
    void Add(const IncomingMessage& incoming);
    /// Files what waits. Failure as above.
    void Finish();
    /// Files one message that is made already, at once. Failure as above.
    void Save(const cMessagePtr& message, const IncomingMessage& incoming);

    void PrintCounts() const;
    ExitCode Code() const { return ExitCode_; }

private:
    /// One that waits for its batch.
    struct Waiting
    {
        IncomingMessage Incoming; ///< What the message is made from again when the batch is taken back.
        cMessagePtr Message;
    };

    cMessagePtr MakeMessageOf(const IncomingMessage& incoming, QString& problem) const;
    bool PassesOver() const;
    bool IsFiledAlready(const cMessage& message, const IncomingMessage& incoming);
    void FileWaiting();
    void FileBatch();
    std::vector<MessageSaving> SaveBatch();
    void FileOneByOne();
    void Acknowledge(const cMessage& message, const IncomingMessage& incoming, const QStringList& problems);
    QString Answer(const cMessage& message, const IncomingMessage& incoming);
    void PrintIfWanted(const QString& line) const;
    /// Removes its file where this run takes messages over.
    void Take(const IncomingMessage& incoming);
    void Refuse(const QString& name, const QString& problem, ExitCode code);
    void FailSaving(const QString& name, int number, const QString& description);
    [[noreturn]] void FailAll(const QString& name, int number, const QString& description);

    Station& Station_;
    qint32 Category_;
    Options Options_;
    FiledMails FiledMails_;
    TextAnswering Answering_;
    std::unique_ptr<FilingClaim> Claim_; ///< From the look for a mail until it is filed, where each is filed once.
    std::vector<Waiting> Waiting_;
    qsizetype WaitingOctets_ = 0;
    QElapsedTimer SinceBatch_; ///< Runs since the last batch let the station go.
    int Filed_ = 0;
    int Failed_ = 0;
    int Skipped_ = 0;
    ExitCode ExitCode_ = exitOK;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(Filing::Options)
