// SPDX-License-Identifier: Apache-2.0

// The functions of libpq that the engine calls, found in the library when the first of them is called. With libpq come
// twenty libraries of encryption and directories: linked, they would make each start of each program slower by half,
// also where no station is on a server.

#include "platform/records/engines/postgres/ServerLibrary.h"

#include "platform/records/Error.h"

#include <QString>

#include <dlfcn.h>
#include <libpq-fe.h>

namespace
{

void* Symbol(const char* name)
{
    static void* const library = dlopen("libpq.so.5", RTLD_NOW | RTLD_LOCAL);
    return library == nullptr ? nullptr : dlsym(library, name);
}

void* RequiredSymbol(const char* name)
{
    void* const found = Symbol(name);
    if (found == nullptr)
        throw dao::Error(dao::errNotSupported, dao::postgres::LibraryIsMissing());
    return found;
}

template <typename Function>
Function* Find(Function*, const char* name)
{
    return reinterpret_cast<Function*>(RequiredSymbol(name));
}

} // namespace

QString dao::postgres::LibraryIsMissing()
{
    return QStringLiteral(
        "A station on a server needs PostgreSQL's library, version 14 or later, which is not installed "
        "on this computer: apt-get install libpq5");
}

bool dao::postgres::HasLibrary()
{
    // Came with version 14.
    return Symbol("PQenterPipelineMode") != nullptr;
}

int PQbackendPID(const PGconn* conn)
{
    static auto* const function = Find(&PQbackendPID, "PQbackendPID");
    return function(conn);
}

void PQclear(PGresult* res)
{
    static auto* const function = Find(&PQclear, "PQclear");
    function(res);
}

char* PQcmdTuples(PGresult* res)
{
    static auto* const function = Find(&PQcmdTuples, "PQcmdTuples");
    return function(res);
}

PostgresPollingStatusType PQconnectPoll(PGconn* conn)
{
    static auto* const function = Find(&PQconnectPoll, "PQconnectPoll");
    return function(conn);
}

PGconn* PQconnectStartParams(const char* const* keywords, const char* const* values, int expand_dbname)
{
    static auto* const function = Find(&PQconnectStartParams, "PQconnectStartParams");
    return function(keywords, values, expand_dbname);
}

void PQconninfoFree(PQconninfoOption* connOptions)
{
    static auto* const function = Find(&PQconninfoFree, "PQconninfoFree");
    function(connOptions);
}

PQconninfoOption* PQconninfoParse(const char* conninfo, char** errmsg)
{
    static auto* const function = Find(&PQconninfoParse, "PQconninfoParse");
    return function(conninfo, errmsg);
}

int PQconsumeInput(PGconn* conn)
{
    static auto* const function = Find(&PQconsumeInput, "PQconsumeInput");
    return function(conn);
}

int PQenterPipelineMode(PGconn* conn)
{
    static auto* const function = Find(&PQenterPipelineMode, "PQenterPipelineMode");
    return function(conn);
}

char* PQerrorMessage(const PGconn* conn)
{
    static auto* const function = Find(&PQerrorMessage, "PQerrorMessage");
    return function(conn);
}

PGresult* PQexec(PGconn* conn, const char* query)
{
    static auto* const function = Find(&PQexec, "PQexec");
    return function(conn, query);
}

int PQexitPipelineMode(PGconn* conn)
{
    static auto* const function = Find(&PQexitPipelineMode, "PQexitPipelineMode");
    return function(conn);
}

void PQfinish(PGconn* conn)
{
    static auto* const function = Find(&PQfinish, "PQfinish");
    function(conn);
}

void PQfreemem(void* ptr)
{
    static auto* const function = Find(&PQfreemem, "PQfreemem");
    function(ptr);
}

PGresult* PQgetResult(PGconn* conn)
{
    static auto* const function = Find(&PQgetResult, "PQgetResult");
    return function(conn);
}

int PQgetisnull(const PGresult* res, int tup_num, int field_num)
{
    static auto* const function = Find(&PQgetisnull, "PQgetisnull");
    return function(res, tup_num, field_num);
}

int PQgetlength(const PGresult* res, int tup_num, int field_num)
{
    static auto* const function = Find(&PQgetlength, "PQgetlength");
    return function(res, tup_num, field_num);
}

char* PQgetvalue(const PGresult* res, int tup_num, int field_num)
{
    static auto* const function = Find(&PQgetvalue, "PQgetvalue");
    return function(res, tup_num, field_num);
}

PGnotify* PQnotifies(PGconn* conn)
{
    static auto* const function = Find(&PQnotifies, "PQnotifies");
    return function(conn);
}

int PQntuples(const PGresult* res)
{
    static auto* const function = Find(&PQntuples, "PQntuples");
    return function(res);
}

const char* PQparameterStatus(const PGconn* conn, const char* paramName)
{
    static auto* const function = Find(&PQparameterStatus, "PQparameterStatus");
    return function(conn, paramName);
}

PGpipelineStatus PQpipelineStatus(const PGconn* conn)
{
    static auto* const function = Find(&PQpipelineStatus, "PQpipelineStatus");
    return function(conn);
}

int PQpipelineSync(PGconn* conn)
{
    static auto* const function = Find(&PQpipelineSync, "PQpipelineSync");
    return function(conn);
}

char* PQresultErrorField(const PGresult* res, int fieldcode)
{
    static auto* const function = Find(&PQresultErrorField, "PQresultErrorField");
    return function(res, fieldcode);
}

ExecStatusType PQresultStatus(const PGresult* res)
{
    static auto* const function = Find(&PQresultStatus, "PQresultStatus");
    return function(res);
}

int PQsendPrepare(PGconn* conn, const char* stmtName, const char* query, int nParams, const Oid* paramTypes)
{
    static auto* const function = Find(&PQsendPrepare, "PQsendPrepare");
    return function(conn, stmtName, query, nParams, paramTypes);
}

int PQsendQueryParams(PGconn* conn, const char* command, int nParams, const Oid* paramTypes,
                      const char* const* paramValues, const int* paramLengths, const int* paramFormats,
                      int resultFormat)
{
    static auto* const function = Find(&PQsendQueryParams, "PQsendQueryParams");
    return function(conn, command, nParams, paramTypes, paramValues, paramLengths, paramFormats, resultFormat);
}

int PQsendQueryPrepared(PGconn* conn, const char* stmtName, int nParams, const char* const* paramValues,
                        const int* paramLengths, const int* paramFormats, int resultFormat)
{
    static auto* const function = Find(&PQsendQueryPrepared, "PQsendQueryPrepared");
    return function(conn, stmtName, nParams, paramValues, paramLengths, paramFormats, resultFormat);
}

int PQserverVersion(const PGconn* conn)
{
    static auto* const function = Find(&PQserverVersion, "PQserverVersion");
    return function(conn);
}

PGVerbosity PQsetErrorVerbosity(PGconn* conn, PGVerbosity verbosity)
{
    static auto* const function = Find(&PQsetErrorVerbosity, "PQsetErrorVerbosity");
    return function(conn, verbosity);
}

PQnoticeReceiver PQsetNoticeReceiver(PGconn* conn, PQnoticeReceiver proc, void* arg)
{
    static auto* const function = Find(&PQsetNoticeReceiver, "PQsetNoticeReceiver");
    return function(conn, proc, arg);
}

int PQsetSingleRowMode(PGconn* conn)
{
    static auto* const function = Find(&PQsetSingleRowMode, "PQsetSingleRowMode");
    return function(conn);
}

int PQsocket(const PGconn* conn)
{
    static auto* const function = Find(&PQsocket, "PQsocket");
    return function(conn);
}

ConnStatusType PQstatus(const PGconn* conn)
{
    static auto* const function = Find(&PQstatus, "PQstatus");
    return function(conn);
}

PGTransactionStatusType PQtransactionStatus(const PGconn* conn)
{
    static auto* const function = Find(&PQtransactionStatus, "PQtransactionStatus");
    return function(conn);
}
