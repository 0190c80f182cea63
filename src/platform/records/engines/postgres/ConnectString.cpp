// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/ConnectString.h"

#include "platform/records/Error.h"

#include <QRegularExpression>
#include <QUrl>

#include <libpq-fe.h>
#include <memory>
#include <optional>

namespace dao::postgres
{

namespace
{

constexpr char UsualSchema[] = "tolva";
constexpr qsizetype LongestName = 63; ///< Octets; the server cuts what is longer.

struct OptionsFree
{
    void operator()(PQconninfoOption* options) const { PQconninfoFree(options); }
};
using Options = std::unique_ptr<PQconninfoOption, OptionsFree>;

/// Our own words, taken out of the text.
struct OwnWords
{
    QString Rest;
    std::optional<QString> Schema;
    std::optional<QString> Database;
};

bool IsAddress(const QString& text)
{
    return text.startsWith(QLatin1String("postgresql://")) || text.startsWith(QLatin1String("postgres://"));
}

QString Unquoted(QString value)
{
    if (value.size() < 2 || !value.startsWith(u'\''))
        return value;
    value = value.mid(1, value.size() - 2);
    static const QRegularExpression escape(QStringLiteral(R"(\\(.))"));
    return value.replace(escape, QStringLiteral("\\1"));
}

OwnWords TakeOwnWords(const QString& text)
{
    OwnWords own;
    own.Rest = text.trimmed();
    static const QRegularExpression database(QStringLiteral(R"(;\s*Database=(.*)$)"),
                                             QRegularExpression::CaseInsensitiveOption);
    if (const auto match = database.match(own.Rest); match.hasMatch()) {
        own.Database = match.captured(1).trimmed();
        own.Rest.truncate(match.capturedStart());
    }
    static const QRegularExpression inAddress(QStringLiteral(R"(([?&])schema=([^&]*)(&?))"));
    static const QRegularExpression inWords(QStringLiteral(R"((?:^|\s)schema\s*=\s*('(?:[^'\\]|\\.)*'|[^\s']+))"));
    if (const auto match = (IsAddress(own.Rest) ? inAddress : inWords).match(own.Rest); match.hasMatch()) {
        if (IsAddress(own.Rest)) {
            own.Schema = QUrl::fromPercentEncoding(match.captured(2).toUtf8());
            // The mark in front stays when something follows.
            own.Rest.replace(match.capturedStart(), match.capturedLength(),
                             match.captured(3).isEmpty() ? QString() : match.captured(1));
        } else {
            own.Schema = Unquoted(match.captured(1));
            own.Rest.remove(match.capturedStart(), match.capturedLength());
        }
    }
    return own;
}

Options ParseForLibrary(const QString& text)
{
    char* message = nullptr;
    Options options(PQconninfoParse(text.toUtf8().constData(), &message));
    // What it says repeats parts of the string, which may be a password.
    if (message != nullptr)
        PQfreemem(message);
    return options;
}

QString Quoted(QString value)
{
    static const QRegularExpression plain(QStringLiteral(R"(^[A-Za-z0-9_./:@%+,-]+$)"));
    if (plain.match(value).hasMatch())
        return value;
    value.replace(u'\\', QStringLiteral("\\\\")).replace(u'\'', QStringLiteral("\\'"));
    return u'\'' + value + u'\'';
}

void RequireNoSecret(const PQconninfoOption& option)
{
    const QByteArrayView keyword(option.keyword);
    if (keyword == "password" || keyword == "sslpassword") {
        throw Error(errNotSupported,
                    QStringLiteral("The connection string holds a password. Take it out, and put the password into "
                                   "the password file (~/.pgpass, or the one that 'passfile=' names) of whoever runs "
                                   "the program."));
    }
}

QString CheckedSchema(const QString& schema)
{
    const bool isReserved =
        schema.startsWith(QLatin1String("pg_"), Qt::CaseInsensitive) || schema == QLatin1String("information_schema");
    if (schema.isEmpty() || schema.toUtf8().size() > LongestName || schema.contains(QChar(u'\0')) ||
        !schema.isValidUtf16() || isReserved) {
        throw Error(errNotSupported,
                    QStringLiteral("'%1' is no name for a station's schema: it needs 1 to 63 octets, and must not "
                                   "begin with 'pg_'.")
                        .arg(schema));
    }
    return schema;
}

} // namespace

QString ConnectString::Word(const char* name) const
{
    for (const auto& [word, value] : Words) {
        if (word == name)
            return QString::fromUtf8(value);
    }
    return {};
}

void ConnectString::SetWord(const char* name, const QString& value)
{
    for (auto& [word, old] : Words) {
        if (word == name) {
            old = value.toUtf8();
            return;
        }
    }
    Words.emplace_back(name, value.toUtf8());
}

QString ConnectString::InWords() const
{
    const QString service = Word("service");
    const QString host = Word("host").isEmpty() ? Word("hostaddr") : Word("host");
    QString words = QStringLiteral("schema '%1'").arg(Schema);
    if (!Word("dbname").isEmpty())
        words += QStringLiteral(" of database '%1'").arg(Word("dbname"));
    if (!host.isEmpty())
        words += QStringLiteral(" on '%1'").arg(host);
    else if (!service.isEmpty())
        words += QStringLiteral(" by the service '%1'").arg(service);
    return words;
}

QString ConnectString::Text() const
{
    QStringList words;
    for (const auto& [word, value] : Words)
        words.append(QString::fromUtf8(word) + u'=' + Quoted(QString::fromUtf8(value)));
    words.append(QStringLiteral("schema=") + Quoted(Schema));
    return words.join(u' ');
}

bool IsConnectString(const QString& text)
{
    const QString rest = TakeOwnWords(text).Rest;
    return !rest.isEmpty() && ParseForLibrary(rest) != nullptr;
}

ConnectString ParseConnectString(const QString& text)
{
    const OwnWords own = TakeOwnWords(text);
    const Options options = ParseForLibrary(own.Rest);
    if (!options || own.Rest.isEmpty()) {
        throw Error(errNotSupported, QStringLiteral("The connection string cannot be read: it is neither an address "
                                                    "'postgresql://...' nor words such as 'host=server dbname=name'."));
    }
    ConnectString connect;
    for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
        if (option->val == nullptr)
            continue;
        RequireNoSecret(*option);
        connect.Words.emplace_back(option->keyword, option->val);
    }
    if (own.Database && !own.Database->isEmpty())
        connect.SetWord("dbname", *own.Database);
    connect.Schema = CheckedSchema(own.Schema.value_or(QString::fromLatin1(UsualSchema)));
    return connect;
}

} // namespace dao::postgres
