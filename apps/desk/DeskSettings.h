// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

class QSettings;

/// What this desk remembers on this machine for this account: stations, users, sizes, looks. One INI file,
/// "Kelvarin/tolva-desk.ini" in the account's configuration folder or the file that the environment variable
/// TOLVA_DESK_SETTINGS names. Nothing in it belongs to a station. A file that cannot be written is no error: then
/// nothing is remembered.
class DeskSettings
{
public:
    DeskSettings();
    /// In a file of its own, for tests and pictures.
    explicit DeskSettings(const QString& file);
    ~DeskSettings();
    DeskSettings(const DeskSettings&) = delete;
    DeskSettings& operator=(const DeskSettings&) = delete;

    /// The folders opened last, newest first, at most ten.
    QStringList RecentStations() const;
    void RememberStation(const QString& folder);
    void ForgetStation(const QString& folder);

    /// Who signed in last at the station in the folder; empty for nobody.
    QString LastUser(const QString& folder) const;
    void RememberUser(const QString& folder, const QString& user);

    /// A window's or splitter's saved state; empty when there is none.
    QByteArray State(const QString& name) const;
    void SetState(const QString& name, const QByteArray& state);

    /// Where texts that are being written are kept, beside the file.
    QString UnsentFolder() const;

    /// How much larger than usual messages are read here; 0 for the usual size.
    int TextSize() const;
    void SetTextSize(int steps);

    /// "light", "dark", or empty for the system's colours.
    QString Appearance() const;
    void SetAppearance(const QString& appearance);

    /// What that user of the desk chose: a dictionary's language, or "off"; empty before any choice.
    QString SpellingLanguage(const QString& user) const;
    void SetSpellingLanguage(const QString& user, const QString& language);
    /// The words that this account has added to the dictionaries, beside the file.
    QString OwnWordsFile() const;

private:
    std::unique_ptr<QSettings> Settings_;
};
