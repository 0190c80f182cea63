// SPDX-License-Identifier: Apache-2.0
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

QString AddressText(InternetAddressList* addresses)
{
    char* text = addresses ? internet_address_list_to_string(addresses, nullptr, FALSE) : nullptr;
    const QString result = QString::fromUtf8(text);
    g_free(text);
    return result;
}

void TakeText(GMimeObject*, GMimeObject* part, gpointer mail)
{
    if (!GMIME_IS_TEXT_PART(part))
        return;
    char* text = g_mime_text_part_get_text(GMIME_TEXT_PART(part));
    GMimeContentType* type = g_mime_object_get_content_type(part);
    const bool isHtml = qstricmp(g_mime_content_type_get_media_subtype(type), "html") == 0;
    QString& body = isHtml ? static_cast<BareMail*>(mail)->HTML : static_cast<BareMail*>(mail)->Text;
    if (body.isEmpty())
        body = QString::fromUtf8(text);
    g_free(text);
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

BareMail ReadMail(const QByteArray& mail)
{
    GMimeMessage* message = Parse(mail.constData(), mail.size());
    BareMail result;
    result.From = AddressText(g_mime_message_get_from(message));
    result.To = AddressText(g_mime_message_get_to(message));
    result.Subject = QString::fromUtf8(g_mime_message_get_subject(message));
    g_mime_message_foreach(message, TakeText, &result);
    g_object_unref(message);
    return result;
}
