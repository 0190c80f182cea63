// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

#include <exception>
#include <utility>

namespace dao
{

/// Error numbers of the record store; docs/record-store.md lists what raises which.
enum ErrorNumber : int
{
    errOverflow = 6,
    errTypeMismatch = 13,
    errInvalidUseOfNull = 94,
    errTableExists = 3010,
    errNotAnIndex = 3015,
    errUpdateWithoutEdit = 3020,
    errNoCurrentRecord = 3021,
    errDuplicateValue = 3022,
    errFileNotFound = 3024,
    errDiskFull = 3026,
    errReadOnly = 3027, ///< The database can be read and not be changed, here and by anybody else.
    errOutOfMemory = 3035,
    errDiskError = 3043,
    errNotAValidPath = 3044,
    errFileDamaged = 3049,
    errCannotOpen = 3051,
    errTooFewParameters = 3061,
    errSyntax = 3075,
    errTableNotFound = 3078,
    errServer =
        3151, ///< A server is not to be reached, has broken the connection or refuses; the description says why.
    errFieldTooSmall = 3163,
    errRecordDeleted = 3167,
    errChangedByAnother = 3197,
    errServerTableNotFound = 3228,
    errNotSupported = 3251,
    errLocked = 3260,
    errItemNotFound = 3265,
    errUnrecognisedFormat = 3343,
    errObjectInvalid = 3420,
    errDataTypeConversion = 3421,
    errMemoDamaged = 3428,
    errFileReplaced = 3734, ///< The file was put back from a backup while it was open: it has to be opened anew.
    errCancelled = 32755,
};

/// What every failed operation of the record store throws. Nothing was stored when it is thrown by a writing
/// operation.
class TOLVA_EXPORT Error : public std::exception
{
public:
    Error(int number, const QString& description, const QString& source = QStringLiteral("DAO"))
        : Number_(number), Description_(description), Source_(source), What_(description.toUtf8())
    {
    }

    int Number() const { return Number_; }
    const QString& Description() const { return Description_; }
    const QString& Source() const { return Source_; }
    const char* what() const noexcept override { return What_.constData(); }

private:
    int Number_;
    QString Description_;
    QString Source_;
    QByteArray What_;
};

} // namespace dao
