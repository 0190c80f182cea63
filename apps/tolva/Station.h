// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ArgumentParser.h"
#include "CollectingUserInterface.h"
#include "Failure.h"
#include "common/TerminalUserInterface.h"
#include "database/cTolvaDatabase.h"
#include "platform/directory/EmbeddedDirectory.h"

/// A station that stands already, open for one command, with the user of its directory signed in. Made on the stack by
/// a command. Anything that fails in it, or in the record store behind it, becomes a Failure in words.
class Station
{
public:
    /// Whether opening makes the backup that may be due. Off for the command that makes one itself.
    enum class AutomaticBackups
    {
        On,
        Off
    };
    /// Opens the station in the folder of the arguments for the user of --user. Failure when there is no station
    /// (66), no such user (67), for a locked file (75), a damaged one (65) and all else.
    explicit Station(const Arguments& arguments, AutomaticBackups automatic = AutomaticBackups::On);
    Station(const Station&) = delete;
    Station& operator=(const Station&) = delete;

    const QString& Folder() const { return Folder_; }
    cTolvaDatabase& Database() { return Database_; }
    EmbeddedDirectory& Directory() { return Directory_; }
    const clsCategory& Folders() { return Database_.MessageCategories(); }
    CollectingUserInterface& Terminal() { return UserInterface_; }

    /// The message; Failure (data) when there is none. words: its number as the user typed it.
    cMessagePtr Message(const QString& words);
    /// exitOK, or exitData for a damaged message, which is told on standard error with what to do about it.
    ExitCode TellDamage(const cMessage& message) const;
    /// Failure (permission) unless the user has the right. words: "change folders".
    void Require(DirectoryRight right, const QString& words);
    /// Why an operation on that message answered false, in words.
    Failure WhyNot(qint32 reference, const QString& words);
    /// An error of the record store in words about this station.
    Failure FailureOfStation(int errorNumber, const QString& description) const;
    /// Runs a piece of work in which the record store may fail; its error becomes a Failure.
    template <typename Work>
    decltype(auto) Try(Work&& work) const
    {
        try {
            return std::forward<Work>(work)();
        } catch (const dao::Error& error) {
            throw FailureOfStation(error.Number(), error.Description());
        }
    }

    /// The user's name: --user, the environment variable TOLVA_USER, or "Technician".
    static QString UserName(const Arguments& arguments);
    static OptionDefinition UserOption();

private:
    void SignIn(const QString& name);

    QString Folder_;
    TerminalUserInterface Terminal_;
    CollectingUserInterface UserInterface_{Terminal_};
    EmbeddedDirectory Directory_;
    // After the directory, which its closing writes to.
    cTolvaDatabase Database_;
};

/// The number of a message, or of what kind names. Failure (usage) for what is none.
qint32 ToReference(const QString& words, const QString& kind = QStringLiteral("message"));
