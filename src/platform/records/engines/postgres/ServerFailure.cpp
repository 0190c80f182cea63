// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/ServerFailure.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace dao::postgres
{

namespace
{

/// A state, or the beginning of a class of them.
struct Meaning
{
    const char* State;
    int Number;
    const char* Words; ///< %1: the place. %2: what the server says.
};

constexpr const char* ConnectionIsLost =
    "The connection to the server (%1) is lost. Nothing that was not confirmed is stored; it is tried again by itself "
    "as soon as the server answers.";

// The longer states stand before the classes that they are of.
constexpr std::array Meanings{
    Meaning{"", errServer, ConnectionIsLost},
    Meaning{"23505", errDuplicateValue,
            "The changes were not successful because they would create duplicate values in the index."},
    Meaning{"55P03", errLocked, "Could not update; currently locked by another user."},
    Meaning{"40P01", errLocked, "Could not update; currently locked by another user."},
    Meaning{"40001", errLocked, "Could not update; currently locked by another user."},
    Meaning{"53100", errDiskFull, "The disk of the server (%1) is full. Nothing of this change was stored."},
    Meaning{"53200", errOutOfMemory, "The server (%1) is out of memory."},
    Meaning{"53300", errServer,
            "The server (%1) has too many connections. Close programs on other computers, or let the server's keeper "
            "raise its limit 'max_connections'."},
    Meaning{"28P01", errServer,
            "The server (%1) does not let this user in: the password is wrong or missing. It belongs into the "
            "password file of whoever runs the program (~/.pgpass)."},
    Meaning{"28000", errServer, "The server (%1) does not let this user in: %2"},
    Meaning{"3D000", errFileNotFound, "There is no such database on the server (%1): %2"},
    Meaning{"42501", errServer,
            "A right is missing on the server (%1): %2. Its keeper gives it; the documentation has a script with the "
            "rights that a desk needs."},
    Meaning{"25006", errServer,
            "The server (%1) can only be read: it is a standby, or was set to be read only. Nothing was stored."},
    Meaning{"57P01", errServer, ConnectionIsLost},
    Meaning{"57P02", errServer, ConnectionIsLost},
    Meaning{"57P03", errServer, "The server (%1) is starting or stopping. It is tried again by itself."},
    Meaning{"57P05", errServer, ConnectionIsLost},
    Meaning{"08001", errServer, "The server (%1) cannot be reached: %2"},
    Meaning{"08", errServer, ConnectionIsLost},
    Meaning{"22003", errOverflow, "Overflow: a number is too large."},
    Meaning{"2200H", errOverflow, "Overflow: the automatic counter has reached its end."},
    Meaning{"58", errDiskError, "The server (%1) met a failure of its disk: %2"},
    Meaning{"XX001", errFileDamaged, "The database of the server (%1) is damaged: %2"},
    Meaning{"XX002", errFileDamaged, "The database of the server (%1) is damaged: %2"},
    Meaning{"54", errSyntax, "Syntax error in query expression: it is too complex for the server (%1)."},
};

const Meaning* MeaningOf(const QByteArray& state)
{
    const auto fits = [&](const Meaning& meaning) {
        const QByteArrayView known(meaning.State);
        return known.isEmpty() ? state.isEmpty() : state.startsWith(known);
    };
    const auto* found = std::find_if(Meanings.begin(), Meanings.end(), fits);
    return found == Meanings.end() ? nullptr : found;
}

int NumberOf(const QByteArray& state)
{
    const Meaning* meaning = MeaningOf(state);
    return meaning == nullptr ? errServer : meaning->Number;
}

QString WordsOf(const QByteArray& state, const QString& serverWords, const QString& place)
{
    const Meaning* meaning = MeaningOf(state);
    const QString words =
        meaning == nullptr ? QStringLiteral("The server (%1) refused: %2") : QString::fromLatin1(meaning->Words);
    return QString(words).replace(QLatin1String("%2"), serverWords.trimmed()).replace(QLatin1String("%1"), place);
}

} // namespace

ServerFailure::ServerFailure(const QByteArray& state, const QString& serverWords, const QString& place)
    : Error(NumberOf(state), WordsOf(state, serverWords, place)), State_(state)
{
}

bool ServerFailure::IsConnectionLost() const
{
    return State_.isEmpty() || State_.startsWith("08") || State_.startsWith("57P0");
}

bool ServerFailure::IsOfOldStructure() const
{
    return State_ == "42P01" || State_ == "42703" || State_ == "3F000";
}

ServerFailure ConnectFailure(const QString& libraryWords, const QString& place)
{
    // A state has a digit, which tells it from FATAL. With several hosts each has its line; what the last one said
    // counts.
    static const QRegularExpression state(QStringLiteral(R"(: {1,2}((?=[A-Z]*[0-9])[0-9A-Z]{5}): (.*))"));
    auto matches = state.globalMatch(libraryWords);
    QRegularExpressionMatch last;
    while (matches.hasNext())
        last = matches.next();
    if (last.hasMatch())
        return {last.captured(1).toLatin1(), last.captured(2), place};
    static const QRegularExpression secure(QStringLiteral("SSL|certificate|TLS"));
    if (secure.match(libraryWords).hasMatch()) {
        return {"28000", QStringLiteral("the secure connection failed: %1").arg(libraryWords.trimmed()), place};
    }
    if (libraryWords.contains(QLatin1String("no password supplied")))
        return {"28P01", {}, place};
    return {"08001", libraryWords, place};
}

} // namespace dao::postgres
