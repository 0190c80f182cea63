// SPDX-License-Identifier: Apache-2.0
#include "DeskSettings.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace
{
constexpr char FileVariable[] = "TOLVA_DESK_SETTINGS";
constexpr int MostStations = 10;

const QString RecentKey = QStringLiteral("Stations/Recent");
const QString TextSizeKey = QStringLiteral("Desk/TextSize");
const QString AppearanceKey = QStringLiteral("Desk/Appearance");

QString SpellingKey(const QString& user)
{
    return QStringLiteral("Spelling/") + QString::fromLatin1(user.toUtf8().toHex());
}

QString DefaultFile()
{
    const QString named = qEnvironmentVariable(FileVariable);
    if (!named.isEmpty())
        return named;
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
        .filePath(QStringLiteral("Kelvarin/tolva-desk.ini"));
}

/// A folder's name is no key: it holds separators.
QString UserKey(const QString& folder)
{
    const QByteArray hash = QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QStringLiteral("Users/") + QString::fromLatin1(hash);
}
} // namespace

DeskSettings::DeskSettings() : DeskSettings(DefaultFile()) {}

DeskSettings::DeskSettings(const QString& file) : Settings_(std::make_unique<QSettings>(file, QSettings::IniFormat)) {}

DeskSettings::~DeskSettings() = default;

QStringList DeskSettings::RecentStations() const
{
    return Settings_->value(RecentKey).toStringList();
}

void DeskSettings::RememberStation(const QString& folder)
{
    QStringList folders = RecentStations();
    folders.removeAll(folder);
    folders.prepend(folder);
    Settings_->setValue(RecentKey, QStringList(folders.mid(0, MostStations)));
}

void DeskSettings::ForgetStation(const QString& folder)
{
    QStringList folders = RecentStations();
    folders.removeAll(folder);
    Settings_->setValue(RecentKey, folders);
}

QString DeskSettings::LastUser(const QString& folder) const
{
    return Settings_->value(UserKey(folder)).toString();
}

void DeskSettings::RememberUser(const QString& folder, const QString& user)
{
    Settings_->setValue(UserKey(folder), user);
}

QByteArray DeskSettings::State(const QString& name) const
{
    return Settings_->value(QStringLiteral("State/") + name).toByteArray();
}

void DeskSettings::SetState(const QString& name, const QByteArray& state)
{
    Settings_->setValue(QStringLiteral("State/") + name, state);
}

int DeskSettings::TextSize() const
{
    return Settings_->value(TextSizeKey).toInt();
}

void DeskSettings::SetTextSize(int steps)
{
    Settings_->setValue(TextSizeKey, steps);
}

QString DeskSettings::Appearance() const
{
    return Settings_->value(AppearanceKey).toString();
}

void DeskSettings::SetAppearance(const QString& appearance)
{
    Settings_->setValue(AppearanceKey, appearance);
}

QString DeskSettings::UnsentFolder() const
{
    const QFileInfo file(Settings_->fileName());
    return file.dir().filePath(file.completeBaseName() + QStringLiteral("-unsent"));
}

QString DeskSettings::SpellingLanguage(const QString& user) const
{
    return Settings_->value(SpellingKey(user)).toString();
}

void DeskSettings::SetSpellingLanguage(const QString& user, const QString& language)
{
    Settings_->setValue(SpellingKey(user), language);
}

QString DeskSettings::OwnWordsFile() const
{
    const QFileInfo file(Settings_->fileName());
    return file.dir().filePath(file.completeBaseName() + QStringLiteral("-words.txt"));
}
