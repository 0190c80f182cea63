#include "BareLibraries.h"

#include "Measure.h"

#include <gmime/gmime.h>

namespace
{
GMimeStream* MemoryStream(const char* octets, qsizetype size)
{
    GByteArray* array = g_byte_array_sized_new(static_cast<guint>(size));
    g_byte_array_append(array, reinterpret_cast<const guint8*>(octets), static_cast<guint>(size));
    return g_mime_stream_mem_new_with_byte_array(array);
}

GMimeMessage* Parse(const char* octets, qsizetype size)
{
    [[maybe_unused]] static const bool initialised = (g_mime_init(), true);
    GMimeStream* stream = MemoryStream(octets, size);
    GMimeParser* parser = g_mime_parser_new_with_stream(stream);
    g_object_unref(stream);
    GMimeMessage* message = g_mime_parser_construct_message(parser, nullptr);
    g_object_unref(parser);
    return message;
}

qsizetype SubjectLength(GMimeMessage* message)
{
    const char* subject = g_mime_message_get_subject(message);
    return subject ? static_cast<qsizetype>(qstrlen(subject)) : 0;
}
} // namespace

BareDatabase::BareDatabase(const QString& fileName)
{
    Require(sqlite3_open(fileName.toUtf8().constData(), &Handle_) == SQLITE_OK, "the bare database does not open");
    sqlite3_create_collation(Handle_, "JET", SQLITE_UTF8, nullptr,
                             [](void*, int leftSize, const void* left, int rightSize, const void* right) {
                                 const int size = leftSize < rightSize ? leftSize : rightSize;
                                 const int order = qstrnicmp(static_cast<const char*>(left),
                                                             static_cast<const char*>(right), size_t(size));
                                 return order != 0 ? order : leftSize - rightSize;
                             });
}

BareDatabase::~BareDatabase()
{
    while (sqlite3_stmt* statement = sqlite3_next_stmt(Handle_, nullptr))
        sqlite3_finalize(statement);
    sqlite3_close(Handle_);
}

void BareDatabase::Execute(const char* sql)
{
    Require(sqlite3_exec(Handle_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sqlite3_errmsg(Handle_));
}

sqlite3_stmt* BareDatabase::Prepare(const char* sql)
{
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(Handle_, sql, -1, &statement, nullptr) == SQLITE_OK, sqlite3_errmsg(Handle_));
    return statement;
}

qsizetype ParseMail(const QByteArray& mail)
{
    GMimeMessage* message = Parse(mail.constData(), mail.size());
    const qsizetype length = SubjectLength(message);
    g_object_unref(message);
    return length;
}

qsizetype ParseHeaders(const QByteArray& mail)
{
    const qsizetype end = mail.indexOf("\r\n\r\n");
    GMimeMessage* message = Parse(mail.constData(), end < 0 ? mail.size() : end + 4);
    const qsizetype length = SubjectLength(message);
    g_object_unref(message);
    return length;
}
