// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DeskSettings.h"
#include "window/WindowPlaces.h"

#include <QObject>
#include <QStringList>

#include <memory>

class DeskUserInterface;
class MainWindow;

/// What the user asked for on the command line.
struct DeskOptions
{
    QString Folder;   ///< Empty: ask.
    QString User;     ///< Empty: the last one at this station, or ask.
    QString Pictures; ///< A folder to save pictures in; empty for an ordinary start.
    bool IsLarge = false;
    QString Problem; ///< Why the command line was not understood; empty when it was.
    bool WantsHelp = false;
    bool WantsVersion = false;

    static DeskOptions Parse(const QStringList& arguments);
    static QString Help();
};

/// The running program: which station is open, and the window that shows it. Opening another station replaces the
/// window when that works, and only then. Made by main; the settings and the user interface outlive it.
class Desk : public QObject
{
    Q_OBJECT

public:
    Desk(DeskSettings& settings, DeskUserInterface* userInterface);
    ~Desk() override;

    /// Opens the station of the options, asking for what they leave open. False when there is nothing to show: the user
    /// gave up, or it could not be opened, which was said.
    bool Start(const DeskOptions& options);
    /// The same for one folder and user; an empty user is chosen among those of the directory.
    bool OpenStation(const QString& folder, const QString& user);

    /// Null before the first station is open.
    MainWindow* Window() const { return Window_.get(); }

Q_SIGNALS:
    /// The window was closed by the user.
    void Finished();

private:
    bool OpenRestored(const QString& folder, const QString& user, const QString& words);
    QString AskForFolder();
    bool OfferNewStation(const QString& folder, const QString& user);
    QString ChooseUser(const QString& folder, const QString& wanted);
    void TakeStationWanted(const QString& folder);
    void TakeUserWanted();
    void Listen();
    void Show(std::unique_ptr<MainWindow> window);

    DeskSettings& Settings_;
    WindowPlaces Places_;
    DeskUserInterface* UserInterface_;
    std::unique_ptr<MainWindow> Window_;
};
