#include "csv_wert.h"

#include <cstdio>

#include "jet/format/value.h"

namespace cli {

namespace {

std::string quoted(const std::string& s) {
    std::string out = "\"";
    for (char c : s) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

}  // namespace

std::string csvValue(const sql::Value& v, const sql::ResultColumn& column) {
    if (column.type == sql::ColumnType::Currency && !v.isNull()) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "%.4f", v.asDouble());
        return buf;
    }
    switch (v.kind()) {
        case sql::Value::Kind::Null:
            return {};
        case sql::Value::Kind::Bool:
            return v.asInt() ? "1" : "0";
        case sql::Value::Kind::Int:
        case sql::Value::Kind::Double:
            return v.toString();
        case sql::Value::Kind::Date:
            return quoted(jet::formatDate(v.asDouble()));
        case sql::Value::Kind::Text:
            return quoted(v.textRef());
        case sql::Value::Kind::Binary: {
            static const char* hex = "0123456789ABCDEF";
            std::string out;
            for (unsigned char c : v.textRef()) {
                out += hex[c >> 4];
                out += hex[c & 15];
            }
            return out;
        }
    }
    return {};
}

}  // namespace cli
