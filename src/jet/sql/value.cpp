#include "jet/sql/value.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "jet/sql/error.h"
#include "jet/sql/text_rules.h"

namespace sql {

const char* columnTypeName(ColumnType t) {
    switch (t) {
        case ColumnType::Boolean:
            return "BIT";
        case ColumnType::Byte:
            return "BYTE";
        case ColumnType::Integer:
            return "SHORT";
        case ColumnType::Long:
            return "LONG";
        case ColumnType::Currency:
            return "CURRENCY";
        case ColumnType::Single:
            return "SINGLE";
        case ColumnType::Double:
            return "DOUBLE";
        case ColumnType::DateTime:
            return "DATETIME";
        case ColumnType::Binary:
            return "BINARY";
        case ColumnType::Text:
            return "TEXT";
        case ColumnType::OLE:
            return "LONGBINARY";
        case ColumnType::Memo:
            return "MEMO";
        case ColumnType::Guid:
            return "GUID";
        case ColumnType::Numeric:
            return "DECIMAL";
    }
    return "?";
}

bool isNumericType(ColumnType t) {
    switch (t) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::DateTime:
        case ColumnType::Numeric:
            return true;
        default:
            return false;
    }
}

bool isTextType(ColumnType t) { return t == ColumnType::Text || t == ColumnType::Memo; }

namespace {
bool parseNumber(const std::string& s, double& out) {
    size_t b = s.find_first_not_of(' ');
    if (b == std::string::npos) return false;
    const char* start = s.c_str() + b;
    char* end = nullptr;
    out = std::strtod(start, &end);
    if (end == start) return false;
    while (*end == ' ') ++end;
    return *end == '\0' && std::isfinite(out);
}
}  // namespace

std::int64_t Value::asInt() const {
    switch (kind_) {
        case Kind::Null:
            return 0;
        case Kind::Bool:
        case Kind::Int:
            return std::get<std::int64_t>(v_);
        case Kind::Double:
        case Kind::Date:
            return static_cast<std::int64_t>(std::nearbyint(std::get<double>(v_)));
        case Kind::Text:
        case Kind::Binary: {
            double d = 0;
            return parseNumber(std::get<std::string>(v_), d)
                       ? static_cast<std::int64_t>(std::nearbyint(d))
                       : 0;
        }
    }
    return 0;
}

double Value::asDouble() const {
    switch (kind_) {
        case Kind::Null:
            return 0;
        case Kind::Bool:
        case Kind::Int:
            return static_cast<double>(std::get<std::int64_t>(v_));
        case Kind::Double:
        case Kind::Date:
            return std::get<double>(v_);
        case Kind::Text:
        case Kind::Binary: {
            double d = 0;
            return parseNumber(std::get<std::string>(v_), d) ? d : 0;
        }
    }
    return 0;
}

std::string formatDouble(double d) {
    if (d == std::floor(d) && std::fabs(d) < 1e15) {
        char buf[32];
        std::snprintf(buf, sizeof buf, "%.0f", d);
        return std::string(buf) == "-0" ? "0" : buf;
    }
    char buf[40];
    for (int prec = 15; prec <= 17; ++prec) {
        std::snprintf(buf, sizeof buf, "%.*G", prec, d);
        if (std::strtod(buf, nullptr) == d) break;
    }
    std::string s = buf;
    // VB writes exponents as E+20, not E+020.
    size_t e = s.find('E');
    if (e != std::string::npos) {
        size_t digits = e + 2;
        while (digits + 1 < s.size() && s[digits] == '0') s.erase(digits, 1);
    }
    return s;
}

std::string Value::toString() const {
    switch (kind_) {
        case Kind::Null:
            return {};
        case Kind::Bool:
            return std::get<std::int64_t>(v_) ? "True" : "False";
        case Kind::Int:
            return std::to_string(std::get<std::int64_t>(v_));
        case Kind::Double:
        case Kind::Date:
            return formatDouble(std::get<double>(v_));
        case Kind::Text:
        case Kind::Binary:
            return std::get<std::string>(v_);
    }
    return {};
}

const std::string& Value::textRef() const {
    static const std::string empty;
    if (const auto* s = std::get_if<std::string>(&v_)) return *s;
    return empty;
}

Value coerceToColumn(const Value& v, ColumnType type, int size, const std::string& columnName) {
    if (v.isNull()) return v;
    auto numberOf = [&](double& d) {
        if (v.isNumber()) {
            d = v.asDouble();
            return;
        }
        if (v.kind() == Value::Kind::Text && parseNumber(v.textRef(), d)) return;
        throw errors::typeMismatch();
    };
    switch (type) {
        case ColumnType::Text:
        case ColumnType::Memo: {
            std::string s = v.toString();
            if (type == ColumnType::Text && size > 0 && static_cast<int>(utf8Length(s)) > size)
                throw errors::fieldTooSmall();
            return Value::text(std::move(s));
        }
        case ColumnType::Boolean: {
            double d;
            numberOf(d);
            return Value::boolean(d != 0);
        }
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long: {
            double d;
            numberOf(d);
            double r = std::nearbyint(d);  // banker's rounding, as Jet converts
            double lo = type == ColumnType::Byte      ? 0
                        : type == ColumnType::Integer ? -32768
                                                      : -2147483648.0;
            double hi = type == ColumnType::Byte      ? 255
                        : type == ColumnType::Integer ? 32767
                                                      : 2147483647.0;
            if (r < lo || r > hi) throw errors::numericOverflow();
            return Value::integer(static_cast<std::int64_t>(r));
        }
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Currency:
        case ColumnType::Numeric: {
            double d;
            numberOf(d);
            if (type == ColumnType::Single) d = static_cast<float>(d);
            // A number beyond the type's range (1e999999 reads as infinity,
            // 1e39 becomes one as a Single) is refused as Jet refuses it.
            if (!std::isfinite(d) ||
                (type == ColumnType::Currency && std::fabs(d) >= 922337203685477.5808))
                throw errors::numericOverflow();
            return Value::real(d);
        }
        case ColumnType::DateTime: {
            if (!v.isNumber()) throw errors::typeMismatch();
            if (!std::isfinite(v.asDouble())) throw errors::numericOverflow();
            return Value::date(v.asDouble());
        }
        case ColumnType::Binary:
        case ColumnType::OLE:
        case ColumnType::Guid:
            if (v.kind() == Value::Kind::Text || v.kind() == Value::Kind::Binary)
                return Value::binary(v.textRef());
            throw errors::typeMismatch();
    }
    (void)columnName;
    return v;
}

}  // namespace sql

namespace sql {
std::string equalityKey(const Value& v) {
    switch (v.kind()) {
        case Value::Kind::Null:
            return {};
        case Value::Kind::Bool:
        case Value::Kind::Int:
        case Value::Kind::Double:
        case Value::Kind::Date:
            return "n:" + formatDouble(v.asDouble());
        case Value::Kind::Text:
            return "t:" + utf8Encode(foldCase(v.textRef()));
        case Value::Kind::Binary:
            return "b:" + v.textRef();
    }
    return {};
}
}  // namespace sql
