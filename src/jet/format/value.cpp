#include "jet/format/value.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace jet {

const char* columnTypeName(ColumnType t) {
    switch (t) {
        case ColumnType::Boolean:
            return "Boolean";
        case ColumnType::Byte:
            return "Byte";
        case ColumnType::Integer:
            return "Integer";
        case ColumnType::Long:
            return "Long Integer";
        case ColumnType::Currency:
            return "Currency";
        case ColumnType::Single:
            return "Single";
        case ColumnType::Double:
            return "Double";
        case ColumnType::DateTime:
            return "DateTime";
        case ColumnType::Binary:
            return "Binary";
        case ColumnType::Text:
            return "Text";
        case ColumnType::OLE:
            return "OLE";
        case ColumnType::Memo:
            return "Memo";
        case ColumnType::Guid:
            return "Replication ID";
        case ColumnType::Numeric:
            return "Numeric";
    }
    return "Unknown";
}

bool isKnownColumnType(std::uint8_t c) {
    return (c >= 0x01 && c <= 0x0C) || c == 0x0F || c == 0x10;
}

std::uint16_t fixedSizeOf(ColumnType t) {
    switch (t) {
        case ColumnType::Boolean:
            return 0;  // lives in the null mask
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
            return 4;
        case ColumnType::Currency:
            return 8;
        case ColumnType::Single:
            return 4;
        case ColumnType::Double:
            return 8;
        case ColumnType::DateTime:
            return 8;
        case ColumnType::Guid:
            return 16;
        case ColumnType::Numeric:
            return 17;
        default:
            return 0;
    }
}

bool isLongValueType(ColumnType t) { return t == ColumnType::Memo || t == ColumnType::OLE; }

long long daysFromCivil(long long y, unsigned m, unsigned d) {
    y -= m <= 2;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long long>(doe) - 719468;
}
void civilFromDays(long long z, int& y, int& m, int& d) {
    z += 719468;
    const long long era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    long long yy = static_cast<long long>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = int(doy - (153 * mp + 2) / 5 + 1);
    m = int(mp < 10 ? mp + 3 : mp - 9);
    y = int(yy + (m <= 2));
}
namespace {
constexpr long long kEpochOffset = -25569;  // 1899-12-30 in days from 1970-01-01
}  // namespace

CivilTime toCivil(double days) {
    if (!std::isfinite(days) || days > 3e6 || days < -3e6) days = 0;
    // OLE dates: the integer part counts days (negative before the epoch),
    // the fraction is always the time of day forward from midnight.
    double whole = std::trunc(days);
    double frac = std::fabs(days - whole);
    long long secs = std::llround(frac * 86400.0);
    long long day = static_cast<long long>(whole);
    if (secs >= 86400) {
        secs -= 86400;
        day += days < 0 ? -1 : 1;
    }
    CivilTime t{};
    civilFromDays(day + kEpochOffset, t.year, t.month, t.day);
    t.hour = int(secs / 3600);
    t.minute = int(secs / 60 % 60);
    t.second = int(secs % 60);
    return t;
}

double fromCivil(const CivilTime& t) {
    long long day = daysFromCivil(t.year, unsigned(t.month), unsigned(t.day)) - kEpochOffset;
    double frac = (t.hour * 3600.0 + t.minute * 60.0 + t.second) / 86400.0;
    return day >= 0 ? double(day) + frac : double(day) - frac;
}

std::string formatDate(double days) {
    CivilTime t = toCivil(days);
    char buf[64];
    std::snprintf(buf, sizeof buf, "%02d/%02d/%02d %02d:%02d:%02d", t.month, t.day,
                  ((t.year % 100) + 100) % 100, t.hour, t.minute, t.second);
    return buf;
}

std::string formatGuid(const Guid& g) {
    const auto& b = g.bytes;
    char buf[64];
    std::snprintf(buf, sizeof buf,
                  "{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X}", b[3],
                  b[2], b[1], b[0], b[5], b[4], b[7], b[6], b[8], b[9], b[10], b[11], b[12], b[13],
                  b[14], b[15]);
    return buf;
}

std::string formatDecimal(const Decimal& d) {
    std::string digits;
    __extension__ typedef unsigned __int128 U128;
    U128 m = d.magnitude;
    do {
        digits.insert(digits.begin(), char('0' + int(m % 10)));
        m /= 10;
    } while (m != 0);
    if (d.scale > 0) {
        while (digits.size() <= d.scale) digits.insert(digits.begin(), '0');
        digits.insert(digits.end() - d.scale, '.');
    }
    if (d.negative && d.magnitude != 0) digits.insert(digits.begin(), '-');
    return digits;
}

std::string formatDouble(double d) {
    char buf[64];
    auto r = std::to_chars(buf, buf + sizeof buf, d);
    return std::string(buf, r.ptr);
}

std::string toText(const Value& v) {
    struct V {
        std::string operator()(std::monostate) const { return {}; }
        std::string operator()(bool b) const { return b ? "1" : "0"; }
        std::string operator()(std::uint8_t x) const { return std::to_string(x); }
        std::string operator()(std::int16_t x) const { return std::to_string(x); }
        std::string operator()(std::int32_t x) const { return std::to_string(x); }
        std::string operator()(const Currency& c) const {
            unsigned long long a = c.scaled < 0 ? 0ULL - static_cast<unsigned long long>(c.scaled)
                                                : static_cast<unsigned long long>(c.scaled);
            char buf[48];
            std::snprintf(buf, sizeof buf, "%s%llu.%04llu", c.scaled < 0 ? "-" : "", a / 10000,
                          a % 10000);
            return buf;
        }
        std::string operator()(float f) const {
            char buf[64];
            auto r = std::to_chars(buf, buf + sizeof buf, f);
            return std::string(buf, r.ptr);
        }
        std::string operator()(double d) const { return formatDouble(d); }
        std::string operator()(const DateTime& t) const { return formatDate(t.days); }
        std::string operator()(const std::string& s) const { return s; }
        std::string operator()(const Binary& b) const { return std::string(b.begin(), b.end()); }
        std::string operator()(const Guid& g) const { return formatGuid(g); }
        std::string operator()(const Decimal& d) const { return formatDecimal(d); }
    };
    return std::visit(V{}, v);
}

}  // namespace jet
