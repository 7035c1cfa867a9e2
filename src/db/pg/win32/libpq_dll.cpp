// libpq's functions, as the driver calls them, forwarded to the libpq.dll
// found at run time (in the program's directory, the system's or on PATH).
// Only the functions the driver uses are here: a new libpq call in the
// driver needs its line below, or the Windows build fails to link.
#include <libpq-fe.h>

#include <string>

#include "db/pg/pg_driver.h"
#include "db/server_catalogue.h"
#include "platform/win32/dll.h"

namespace db::pg {

namespace {

void* libpq() {
    static void* const dll = platform::win32::loadDll("libpq.dll");
    return dll;
}

[[noreturn]] void missing(const std::string& what) {
    throw ServerError(ServerFault::NoDriver, what);
}

// The DLL's function of the name, typed as libpq's header declares it.
template <typename F>
F* resolve(const char* name) {
    const auto p = platform::win32::dllFunction(libpq(), name);
    if (!p) missing(std::string("libpq.dll has no ") + name);
    return reinterpret_cast<F*>(p);
}

}  // namespace

void requireDriver() {
    if (!libpq()) missing("libpq.dll is neither in Tessara's program directory nor on PATH");
}

}  // namespace db::pg

using db::pg::resolve;

#define TESSARA_LIBPQ(name) static auto* const f = resolve<decltype(name)>(#name)

extern "C" {

PGconn* PQconnectdbParams(const char* const* keywords, const char* const* values,
                          int expand_dbname) {
    TESSARA_LIBPQ(PQconnectdbParams);
    return f(keywords, values, expand_dbname);
}
PGPing PQpingParams(const char* const* keywords, const char* const* values, int expand_dbname) {
    TESSARA_LIBPQ(PQpingParams);
    return f(keywords, values, expand_dbname);
}
ConnStatusType PQstatus(const PGconn* conn) {
    TESSARA_LIBPQ(PQstatus);
    return f(conn);
}
int PQconnectionNeedsPassword(const PGconn* conn) {
    TESSARA_LIBPQ(PQconnectionNeedsPassword);
    return f(conn);
}
char* PQerrorMessage(const PGconn* conn) {
    TESSARA_LIBPQ(PQerrorMessage);
    return f(conn);
}
void PQfinish(PGconn* conn) {
    TESSARA_LIBPQ(PQfinish);
    f(conn);
}
PGresult* PQexecParams(PGconn* conn, const char* command, int nParams, const Oid* paramTypes,
                       const char* const* paramValues, const int* paramLengths,
                       const int* paramFormats, int resultFormat) {
    TESSARA_LIBPQ(PQexecParams);
    return f(conn, command, nParams, paramTypes, paramValues, paramLengths, paramFormats,
             resultFormat);
}
ExecStatusType PQresultStatus(const PGresult* res) {
    TESSARA_LIBPQ(PQresultStatus);
    return f(res);
}
char* PQresultErrorMessage(const PGresult* res) {
    TESSARA_LIBPQ(PQresultErrorMessage);
    return f(res);
}
char* PQresultErrorField(const PGresult* res, int fieldcode) {
    TESSARA_LIBPQ(PQresultErrorField);
    return f(res, fieldcode);
}
int PQntuples(const PGresult* res) {
    TESSARA_LIBPQ(PQntuples);
    return f(res);
}
char* PQgetvalue(const PGresult* res, int tup_num, int field_num) {
    TESSARA_LIBPQ(PQgetvalue);
    return f(res, tup_num, field_num);
}
int PQgetlength(const PGresult* res, int tup_num, int field_num) {
    TESSARA_LIBPQ(PQgetlength);
    return f(res, tup_num, field_num);
}
int PQgetisnull(const PGresult* res, int tup_num, int field_num) {
    TESSARA_LIBPQ(PQgetisnull);
    return f(res, tup_num, field_num);
}
void PQclear(PGresult* res) {
    TESSARA_LIBPQ(PQclear);
    f(res);
}

}  // extern "C"
