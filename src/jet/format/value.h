#pragma once
// Column values as the engine reads and writes them.
#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace jet {

// Jet's column type codes.
enum class ColumnType : std::uint8_t {
    Boolean = 0x01,
    Byte = 0x02,
    Integer = 0x03,  // 16-bit
    Long = 0x04,     // 32-bit
    Currency = 0x05,
    Single = 0x06,
    Double = 0x07,
    DateTime = 0x08,
    Binary = 0x09,
    Text = 0x0A,
    OLE = 0x0B,
    Memo = 0x0C,
    Guid = 0x0F,
    Numeric = 0x10,
};

const char* columnTypeName(ColumnType t);  // "Boolean", "Long", "Text", ...
bool isKnownColumnType(std::uint8_t code);
// Bytes the type takes in the fixed part of a row (0 for variable types).
std::uint16_t fixedSizeOf(ColumnType t);
bool isLongValueType(ColumnType t);  // Memo, OLE

struct Currency {
    std::int64_t scaled = 0;  // value times 10 000
    bool operator==(const Currency&) const = default;
};
struct DateTime {
    double days = 0;  // days since 1899-12-30, fraction = time of day
    bool operator==(const DateTime&) const = default;
};
struct Guid {
    std::array<std::uint8_t, 16> bytes{};  // as stored
    bool operator==(const Guid&) const = default;
};
struct Decimal {
    bool negative = false;
    std::uint8_t scale = 0;
    __extension__ unsigned __int128 magnitude = 0;  // unscaled
    bool operator==(const Decimal&) const = default;
};
using Binary = std::vector<std::uint8_t>;

// Text (Text and Memo) is UTF-8. Byte, Integer and Long keep their own C++
// types so a value says which column type it came from.
using Value = std::variant<std::monostate, bool, std::uint8_t, std::int16_t, std::int32_t, Currency,
                           float, double, DateTime, std::string, Binary, Guid, Decimal>;
using Row = std::vector<Value>;

inline bool isNull(const Value& v) { return std::holds_alternative<std::monostate>(v); }

// Display forms, close to what mdb-export prints: numbers in shortest
// round-trip form, Currency with four decimals, dates "MM/DD/YY HH:MM:SS",
// Guid "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", Boolean 1/0, binary as raw bytes.
std::string toText(const Value& v);
std::string formatDate(double days);  // "MM/DD/YY HH:MM:SS"
std::string formatGuid(const Guid& g);
std::string formatDecimal(const Decimal& d);
std::string formatDouble(double d);

// Calendar conversion of Jet dates (proleptic Gregorian, as OLE automation).
struct CivilTime {
    int year, month, day, hour, minute, second;
};
CivilTime toCivil(double days);
double fromCivil(const CivilTime& t);
// Days from 1970-01-01 to y-m-d and back, the whole days under both.
long long daysFromCivil(long long y, unsigned m, unsigned d);
void civilFromDays(long long z, int& y, int& m, int& d);

}  // namespace jet
