// SPDX-License-Identifier: Apache-2.0
#include "StationOpening.h"

#include "CollectingUserInterface.h"
#include "StationPlace.h"
#include "common/GeneralHelper.h"
#include "database/Collision.h"
#include "platform/records/DBEngine.h"

namespace
{
constexpr int OpenAttempts = 5;

/// 0, or the number of the error that stopped it, 1 for none in particular.
int TryOpen(cTolvaDatabase& database, const QString& folder, CollectingUserInterface& userInterface)
{
    userInterface.TakeProblems();
    try {
        const int result = database.OpenTolvaDatabase(folder);
        // Incomplete station details keep no message out: -1 with an open database counts as opened.
        return result == -1 && database.IsOpen() ? 0 : qAbs(result);
    } catch (const dao::Error& error) {
        return error.Number();
    }
}

/// The open itself does not always say which error stopped it; opening the file once more does.
[[noreturn]] void Fail(const QString& folder, int errorNumber, const QStringList& problems)
{
    const QString words = problems.isEmpty() ? QStringLiteral("The open failed.") : problems.last();
    if (errorNumber == 1 || errorNumber == dao::errObjectInvalid) {
        try {
            const auto database = dao::DBEngine::OpenDatabase(StationPlace::FileIn(folder));
            database->OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable)->SetIndex(QStringLiteral("Main"));
        } catch (const dao::Error& error) {
            throw StationOpening::FailureOf(folder, error.Number(), error.Description());
        }
        throw Failure(exitSoftware, QStringLiteral("The station in %1 cannot be opened: %2").arg(folder, words));
    }
    throw StationOpening::FailureOf(folder, errorNumber, words);
}
} // namespace

void StationOpening::Open(cTolvaDatabase& database, const QString& folder, CollectingUserInterface& userInterface)
{
    int result = TryOpen(database, folder, userInterface);
    // An open that meets a restore begins again as well.
    for (int attempt = 1; attempt < OpenAttempts && (IsCollision(result) || result == dao::errFileReplaced); ++attempt)
        result = TryOpen(database, folder, userInterface);
    QStringList problems = userInterface.TakeProblems();
    if (problems.isEmpty() && database.LastErrorNumber() != 0)
        problems.append(database.LastErrorDescription());
    if (result != 0)
        Fail(folder, result, problems);
    GeneralHelper::SetPhoneRegion(database.StationCountry());
    // Other computers are to see every change at once.
    database.SetStampsEveryChange(true);
}

Failure StationOpening::FailureOf(const QString& folder, int errorNumber, const QString& description)
{
    return ::FailureOf(QStringLiteral("The station in %1").arg(folder), StationPlace::FileIn(folder), errorNumber,
                       description);
}
