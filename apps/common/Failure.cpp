// SPDX-License-Identifier: Apache-2.0
#include "Failure.h"

#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"

#include <QFileInfo>

#include <new>

namespace
{
/// What keeps this account from writing a database file that is there: its files beside it are written as well. Empty
/// when nothing does.
QString Hindrance(const QString& file)
{
    const QFileInfo information(file);
    const QString canonical = information.canonicalFilePath();
    FileSystem& files = FileSystem::Current();
    for (const QString& companion : dao::DBEngine::CompanionsOf(canonical)) {
        if (files.KindOf(companion) == FileKind::Link)
            return QStringLiteral("%1 is a link, and nothing is written through one. Take the link away.")
                .arg(companion);
    }
    if (!information.isReadable())
        return QStringLiteral("this account may not read %1.").arg(file);
    for (const QString& written : {canonical, QFileInfo(canonical).path()}) {
        switch (files.MayWrite(written).Error()) {
        case FileError::None:
            break;
        case FileError::ReadOnly:
            return QStringLiteral("%1 lies on a disk that can only be read.").arg(written);
        default:
            return QStringLiteral("this account may not write %1.").arg(written);
        }
    }
    return {};
}
} // namespace

Failure UnexpectedFailure()
{
    const auto failure = [](const QString& reason) {
        return Failure(exitSoftware, QStringLiteral("Something went wrong that this program was not made for: %1. What "
                                                    "was said to be done is done. Try again; if it happens again, "
                                                    "report it with these words.")
                                         .arg(reason));
    };
    try {
        throw;
    } catch (const Failure& known) {
        return known;
    } catch (const dao::Error& error) {
        return FailureOf(QStringLiteral("The station"), QString(), error.Number(), error.Description());
    } catch (const std::bad_alloc&) {
        return Failure(exitTemporary,
                       QStringLiteral("There is not enough memory. Close other programs and try again."));
    } catch (const std::exception& error) {
        return failure(QString::fromUtf8(error.what()));
    } catch (...) {
        return failure(QStringLiteral("an error without a name"));
    }
}

ExitCode ExitCodeOf(int errorNumber)
{
    switch (errorNumber) {
    case dao::errLocked:
    // Somebody else changed the same row a moment ago: the next attempt reads it anew.
    case dao::errChangedByAnother:
    case dao::errRecordDeleted:
    // What was to be done is done on the station that was put back.
    case dao::errFileReplaced:
        return exitTemporary;
    case dao::errFileDamaged:
    case dao::errMemoDamaged:
    case dao::errUnrecognisedFormat:
    case dao::errOverflow:
    case dao::errTypeMismatch:
    case dao::errInvalidUseOfNull:
    case dao::errFieldTooSmall:
    case dao::errDataTypeConversion:
    case dao::errTableNotFound:
    case dao::errItemNotFound:
    case dao::errNotAnIndex:
        return exitData;
    case dao::errFileNotFound:
    case dao::errNotAValidPath:
        return exitNoInput;
    case dao::errCannotOpen:
    case dao::errReadOnly:
        return exitNoPermission;
    case dao::errDiskFull:
    case dao::errDiskError:
        return exitInputOutput;
    case dao::errServer:
    case dao::errNotSupported:
        return exitUnavailable;
    case dao::errOutOfMemory:
    default:
        return exitSoftware;
    }
}

Failure FailureOf(const QString& subject, const QString& file, int errorNumber, const QString& description)
{
    const auto words = [&](const QString& text) { return Failure(ExitCodeOf(errorNumber), subject + u' ' + text); };
    // A file that this account may not write is opened to be read, and refuses changes.
    const bool maybeHindered = errorNumber == dao::errCannotOpen || errorNumber == dao::errReadOnly;
    if (maybeHindered && QFileInfo(file).isFile()) {
        const QString hindrance = Hindrance(file);
        if (!hindrance.isEmpty())
            return words(QStringLiteral("cannot be opened: ") + hindrance);
        if (errorNumber == dao::errCannotOpen)
            return FailureOf(subject, file, dao::errLocked, description);
    }
    switch (errorNumber) {
    case dao::errLocked:
        return words(QStringLiteral("is locked by another computer or program. Try again in a moment."));
    case dao::errChangedByAnother:
    case dao::errRecordDeleted:
        return words(QStringLiteral("was changed by somebody else at the same moment. Try again; if that "
                                    "does not help, \"tolva check\" says whether it is damaged."));
    case dao::errFileReplaced:
        return words(QStringLiteral("was put back from a backup meanwhile and has to be opened anew. Try again."));
    case dao::errFileDamaged:
        return words(QStringLiteral("is damaged. \"tolva check\" says what can still be read; put the newest backup in "
                                    "its place. (%1)")
                         .arg(description));
    case dao::errMemoDamaged:
        return words(QStringLiteral("holds a text or mail that was changed on the disk since it was saved. \"tolva "
                                    "check\" says which, and which backup has it sound. (%1)")
                         .arg(description));
    case dao::errUnrecognisedFormat:
        return words(QStringLiteral("is not a database of this program, or its file is damaged. Put the newest backup "
                                    "in its place. (%1)")
                         .arg(description));
    case dao::errCannotOpen:
        return words(QStringLiteral("cannot be opened: this account may not read and write it. (%1)").arg(description));
    case dao::errReadOnly:
        return words(QStringLiteral("can be read and not be changed. (%1)").arg(description));
    case dao::errServer:
        return words(QStringLiteral("cannot be used now. %1").arg(description));
    case dao::errDiskFull:
        return words(QStringLiteral("cannot be written: the disk is full."));
    case dao::errDiskError:
        return words(QStringLiteral("cannot be read or written: the disk reports an error. (%1)").arg(description));
    default:
        return words(QStringLiteral("cannot be used: %1 (error %2)").arg(description).arg(errorNumber));
    }
}
