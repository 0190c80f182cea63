// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/LinkFile.h"

#include "platform/files/FileSystem.h"
#include "platform/records/Error.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/postgres/ServerLibrary.h"

#include <QFile>

namespace dao::postgres
{

namespace
{

constexpr char Mark[] = "Tolva station on a server 1\n";
/// No connect string is as long.
constexpr qint64 MostOctets = 16384;

} // namespace

bool IsLinkFile(const QByteArray& firstOctets)
{
    return firstOctets.startsWith(Mark);
}

ConnectString ReadLinkFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw Error(errCannotOpen, QStringLiteral("Cannot open '%1': %2").arg(fileName, file.errorString()));
    const QByteArray content = file.read(MostOctets);
    const QString line = QString::fromUtf8(content.mid(static_cast<qsizetype>(sizeof(Mark) - 1))).section(u'\n', 0, 0);
    // A plug that was pulled may leave zeros; libpq would take them for the end, and go to a server of its own choice.
    if (!IsLinkFile(content) || line.trimmed().isEmpty() || line.contains(QChar(u'\0')))
        throw Error(errUnrecognisedFormat, QStringLiteral("Unrecognised database format '%1'.").arg(fileName));
    // Nothing is wrong with the file then.
    if (!HasLibrary())
        throw Error(errNotSupported, LibraryIsMissing());
    try {
        return ParseConnectString(line);
    } catch (const Error& error) {
        throw Error(errUnrecognisedFormat,
                    QStringLiteral("'%1' cannot be used: %2").arg(fileName, error.Description()));
    }
}

void WriteLinkFile(const QString& fileName, const ConnectString& connect)
{
    const QByteArray content = Mark + connect.Text().toUtf8() + '\n';
    TemporaryFile temporary(fileName);
    FileStatus status;
    const auto file = FileSystem::Current().Open(temporary.Name(), FileAccess::Change, status);
    RequireWritten(fileName, status);
    RequireWritten(fileName, file->WriteAt(0, content.constData(), content.size()));
    RequireWritten(fileName, file->Sync());
    RequireWritten(fileName, file->Close());
    temporary.MoveTo(fileName);
}

} // namespace dao::postgres
