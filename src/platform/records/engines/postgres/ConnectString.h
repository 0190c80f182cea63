// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <utility>

/// How a station on a server is named: what libpq takes, an address "postgresql://..." or words "host=... dbname=...",
/// and two words of our own: "schema", the station's schema, and a ";Database=NAME" behind it all, as the objects of
/// the record store append it. Pure functions but for Parse, which reads libpq's own lists of words; any thread.
namespace dao::postgres
{

struct ConnectString
{
    /// For libpq, in the order they were given.
    QList<std::pair<QByteArray, QByteArray>> Words;
    QString Schema;

    QString Word(const char* name) const;
    void SetWord(const char* name, const QString& value);
    /// Who and where in words, for messages: no password can be in it.
    QString InWords() const;
    /// The words again, as a link file holds them.
    QString Text() const;
};

/// Whether Parse would take it for one of ours. Nothing is raised.
bool IsConnectString(const QString& text);

/// Errors: 3251 for what is no such string, for one that holds a password, which belongs into a password file or a
/// service (no part of the string is in the text of the error), and for a schema that no server takes.
ConnectString ParseConnectString(const QString& text);

} // namespace dao::postgres
