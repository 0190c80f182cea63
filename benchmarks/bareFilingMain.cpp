// SPDX-License-Identifier: Apache-2.0

// The floor of filing one mail: reads it from standard input, parses it with GMime and stores it durably in the SQLite
// database that is named, whose table stands.

#include "BareLibraries.h"
#include "Measure.h"

#include <QFile>

int main(int argc, char** argv)
{
    Require(argc == 2, "one database is wanted");
    QFile input;
    Require(input.open(stdin, QIODevice::ReadOnly), "there is no standard input");
    const QByteArray mail = input.readAll();
    Require(ParseMail(mail) > 0, "the mail was not parsed");
    BareDatabase database(QFile::decodeName(argv[1]));
    database.Execute("PRAGMA journal_mode=TRUNCATE");
    database.Execute("PRAGMA synchronous=FULL");
    sqlite3_stmt* insert = database.Prepare("INSERT INTO Messages (Subject, Message) VALUES ('Request', ?1)");
    sqlite3_bind_text(insert, 1, mail.constData(), static_cast<int>(mail.size()), SQLITE_STATIC);
    Require(sqlite3_step(insert) == SQLITE_DONE, "the bare write failed");
    return 0;
}
