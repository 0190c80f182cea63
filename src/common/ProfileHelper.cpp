// SPDX-License-Identifier: Apache-2.0
#include "common/ProfileHelper.h"

#include "common/FileHelper.h"
#include "common/IniText.h"
#include "common/Registry.h"

#include <QDir>
#include <QFile>

#include <limits>

namespace
{
QVariant TruthOf(const QString& text, const QVariant& defaultValue)
{
    const QString word = text.toLower();
    if (word == u"1" || word == u"true" || word == u"yes" || word == u"-1")
        return true;
    if (word == u"0" || word == u"false" || word == u"no")
        return false;
    return defaultValue;
}

QVariant WholeNumberOf(const QString& text, const QVariant& defaultValue)
{
    bool good = false;
    const qint64 number = text.toLongLong(&good);
    // A registry's numbers have 32 bits and no sign; a reader that has one takes the upper half for negative.
    const bool fits = number >= std::numeric_limits<qint32>::min() && number <= std::numeric_limits<quint32>::max();
    return good && fits ? QVariant(static_cast<qint32>(number)) : defaultValue;
}

using Encode = QByteArray (IniText::*)() const;

bool Write(const QString& section, const QString& key, const QString& value, const QString& file, Encode encode)
{
    const QString existing = ProfileHelper::ExistingFile(file);
    QFile profile(existing);
    const bool present = profile.exists();
    if (present && !profile.open(QIODevice::ReadOnly))
        return false;
    IniText text(present ? profile.readAll() : QByteArray());
    if (profile.error() != QFileDevice::NoError)
        return false;
    profile.close();
    return text.SetValue(section, key, value) && FileHelper::ReplaceFile(existing, (text.*encode)());
}
} // namespace

QVariant ProfileHelper::ReadRegistryValue(const QString& root, const QString& key, const QString& value,
                                          const QVariant& defaultValue)
{
    const std::optional<QString> text = Registry::Current().Read(root, key, value);
    if (!text)
        return defaultValue;
    switch (defaultValue.typeId()) {
    case QMetaType::Bool:
        return TruthOf(text->trimmed(), defaultValue);
    case QMetaType::Int:
        return WholeNumberOf(text->trimmed(), defaultValue);
    default:
        return *text;
    }
}

QString ProfileHelper::ReadIniString(const QString& section, const QString& key, const QString& defaultValue,
                                     const QString& file)
{
    QFile profile(ExistingFile(file));
    if (!profile.open(QIODevice::ReadOnly))
        return defaultValue;
    return IniText(profile.readAll()).Value(section, key).value_or(defaultValue);
}

bool ProfileHelper::WriteIniString(const QString& section, const QString& key, const QString& value,
                                   const QString& file)
{
    return Write(section, key, value, file, &IniText::Bytes);
}

bool ProfileHelper::WriteIniStringA(const QString& section, const QString& key, const QString& value,
                                    const QString& file)
{
    return Write(section, key, value, file, &IniText::AnsiBytes);
}

/// Programs on other systems do not agree on the case of such names.
QString ProfileHelper::ExistingFile(const QString& file)
{
    if (FileHelper::FileExists(file))
        return file;
    const QString folder = FileHelper::FolderOf(file);
    const QString name = FileHelper::FileNameOf(file);
    for (const QString& other : QDir(folder.isEmpty() ? QStringLiteral(".") : folder).entryList(QDir::Files)) {
        if (other.compare(name, Qt::CaseInsensitive) == 0)
            return FileHelper::Join(folder, other);
    }
    return file;
}
