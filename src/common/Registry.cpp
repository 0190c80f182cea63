// SPDX-License-Identifier: Apache-2.0
#include "common/Registry.h"

#include "common/ProfileHelper.h"

#ifdef Q_OS_WIN
#include <QSettings>
#else
#include "common/FileHelper.h"
#include "common/IniText.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#endif

namespace
{
const Registry* currentRegistry = nullptr;

#ifdef Q_OS_WIN
class MachineRegistry final : public Registry
{
public:
    std::optional<QString> Read(const QString& root, const QString& key, const QString& value) const override
    {
        const QSettings settings(root + u'\\' + key, QSettings::NativeFormat);
        return settings.contains(value) ? std::optional(settings.value(value).toString()) : std::nullopt;
    }
};
#else
/// The machine's profile file. It is parsed again only when it has changed, so that a reader may ask for every row.
class MachineRegistry final : public Registry
{
public:
    std::optional<QString> Read(const QString& root, const QString& key, const QString& value) const override
    {
        if (root.compare(QLatin1String(ProfileHelper::LocalMachine), Qt::CaseInsensitive) != 0)
            return std::nullopt;
        Refresh();
        return Text_.Value(key, value);
    }

private:
    static QString FileName()
    {
        const QString chosen = qEnvironmentVariable("TOLVA_REGISTRY");
        if (!chosen.isEmpty())
            return chosen;
        const QString name = QStringLiteral("Kelvarin/Tolva.ini");
        QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
        folders.removeFirst(); // the user's own; what belongs to the machine is in the system's
        for (const QString& folder : std::as_const(folders)) {
            const QString file = FileHelper::Join(folder, name);
            if (FileHelper::FileExists(file))
                return file;
        }
        return FileHelper::Join(QStringLiteral("/etc/xdg"), name);
    }

    void Refresh() const
    {
        const QString fileName = FileName();
        const QFileInfo information(fileName);
        const QDateTime changed = information.lastModified();
        const qint64 size = information.exists() ? information.size() : -1;
        if (fileName == FileName_ && changed == Changed_ && size == Size_)
            return;
        QFile file(fileName);
        const bool readable = size >= 0 && file.open(QIODevice::ReadOnly);
        Text_ = IniText(readable ? file.readAll() : QByteArray(), IniText::SectionNames::KeyPaths);
        FileName_ = fileName;
        Changed_ = changed;
        Size_ = size;
    }

    mutable IniText Text_;
    mutable QString FileName_;
    mutable QDateTime Changed_;
    mutable qint64 Size_ = -1;
};
#endif
} // namespace

const Registry& Registry::Current()
{
    static const MachineRegistry machine;
    return currentRegistry ? *currentRegistry : machine;
}

void Registry::SetCurrent(const Registry* registry)
{
    currentRegistry = registry;
}
