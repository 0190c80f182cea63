// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"

#include <QRandomGenerator>

#include <vector>

namespace
{
constexpr int Lookups = 2000;
constexpr char AllColumns[] =
    "SELECT Reference, FromKey, ToKey, CcKey, Received, Sent, SendAfter, MessageType, Category, "
    "MessageStatus, HasHighlightWords, Priority, PersonalToContact, Flags, Subject, Message, "
    "MultiPartMessage, SourceIndex FROM Messages ";
constexpr int MessageColumn = 15;

/// Takes every column of the current row as the C API hands it out, the mail as octets of its own.
QByteArray ReadRow(sqlite3_stmt* statement)
{
    QByteArray mail;
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        switch (sqlite3_column_type(statement, column)) {
        case SQLITE_TEXT: {
            const char* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
            const int size = sqlite3_column_bytes(statement, column);
            if (column == MessageColumn)
                mail = QByteArray(text, size);
            else
                Require(QString::fromUtf8(text, size).size() >= 0, "a text was not read");
            break;
        }
        case SQLITE_FLOAT:
            Require(sqlite3_column_double(statement, column) >= 0, "a date was not read");
            break;
        default:
            Require(sqlite3_column_int64(statement, column) >= -1, "a number was not read");
        }
    }
    return mail;
}
} // namespace

void BenchReading(const QString& largeStation, int large)
{
    const auto station = OpenStation(largeStation);
    BareDatabase bare(station->Information().Path);

    QRandomGenerator random(1);
    std::vector<int> references(Lookups);
    for (int& reference : references)
        reference = random.bounded(1, large + 1);

    sqlite3_stmt* byReference = bare.Prepare((QByteArray(AllColumns) + "WHERE Reference=?1").constData());
    Compare(
        {"GetMessage by reference", "a prepared select of the row, and a GMime header parse", 2.0, 7, Lookups},
        [&] {
            for (const int reference : references) {
                sqlite3_bind_int(byReference, 1, reference);
                Require(sqlite3_step(byReference) == SQLITE_ROW, "a row is missing");
                const QByteArray mail = ReadRow(byReference);
                sqlite3_reset(byReference);
                Require(ParseHeaders(mail) > 0, "a header was not parsed");
            }
        },
        [&] {
            for (const int reference : references) {
                const cMessagePtr message = station->GetMessage(reference);
                Require(message && !message->CDOMessage()->Subject().isEmpty(), "a message is missing");
            }
        });

    const int few = std::min(large, 10000);
    sqlite3_stmt* scan = bare.Prepare((QByteArray(AllColumns) + "WHERE Reference<=?1").constData());
    Compare(
        {"GetMessages of " + std::to_string(few), "the bare scan of the same rows", 2.0, 7, 1},
        [&] {
            sqlite3_bind_int(scan, 1, few);
            std::vector<QByteArray> mails;
            while (sqlite3_step(scan) == SQLITE_ROW)
                mails.push_back(ReadRow(scan));
            sqlite3_reset(scan);
            Require(mails.size() == static_cast<std::size_t>(few), "rows are missing");
        },
        [&] {
            const auto messages = station->GetMessages(QStringLiteral("[Reference]<=%1").arg(few));
            Require(messages && messages->Count() == few, "messages are missing");
        });
}
