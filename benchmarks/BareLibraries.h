// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <sqlite3.h>

/// The floors: SQLite and GMime used directly, without anything between.

/// A SQLite database opened by its C API. The run ends when a call fails.
class BareDatabase
{
public:
    explicit BareDatabase(const QString& fileName);
    ~BareDatabase();
    BareDatabase(const BareDatabase&) = delete;
    BareDatabase& operator=(const BareDatabase&) = delete;

    void Execute(const char* sql);
    sqlite3_stmt* Prepare(const char* sql);
    sqlite3* Handle() const { return Handle_; }

private:
    sqlite3* Handle_ = nullptr;
};

/// Parses the whole mail and touches its subject and first text; the number of characters, so that the work cannot be
/// left out.
qsizetype ParseMail(const QByteArray& mail);
/// Parses the header block alone and decodes the subject.
qsizetype ParseHeaders(const QByteArray& mail);

/// What a page needs of a mail, as GMime hands it out.
struct BareMail
{
    QString From;
    QString To;
    QString Subject;
    QString Text;
    QString HTML;
};

/// Parses the whole mail and decodes its first text and its first HTML.
BareMail ReadMail(const QByteArray& mail);
