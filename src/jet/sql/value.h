#pragma once
// A single field value as the SQL layer and the record sets see it.
#include <cstdint>
#include <string>
#include <variant>

namespace sql {

// Column types carry Jet's own type codes so that the engine adapter maps
// them one to one.
enum class ColumnType : int {
    Boolean = 1,
    Byte = 2,
    Integer = 3,  // 16-bit, "SHORT"
    Long = 4,     // 32-bit, "LONG"
    Currency = 5,
    Single = 6,
    Double = 7,
    DateTime = 8,
    Binary = 9,
    Text = 10,
    OLE = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
};

const char* columnTypeName(ColumnType t);
bool isNumericType(ColumnType t);
bool isTextType(ColumnType t);

class Value {
  public:
    enum class Kind { Null, Bool, Int, Double, Text, Date, Binary };

    Value() = default;
    static Value null() { return Value(); }
    static Value boolean(bool b) { return Value(Kind::Bool, std::int64_t{b ? -1 : 0}); }
    static Value integer(std::int64_t i) { return Value(Kind::Int, i); }
    static Value real(double d) { return Value(Kind::Double, d); }
    static Value date(double oleDate) { return Value(Kind::Date, oleDate); }
    static Value text(std::string s) { return Value(Kind::Text, std::move(s)); }
    static Value binary(std::string bytes) { return Value(Kind::Binary, std::move(bytes)); }

    Kind kind() const { return kind_; }
    bool isNull() const { return kind_ == Kind::Null; }
    bool isNumber() const {
        return kind_ == Kind::Bool || kind_ == Kind::Int || kind_ == Kind::Double ||
               kind_ == Kind::Date;
    }
    bool isText() const { return kind_ == Kind::Text; }

    // Numeric view: Bool gives -1/0, Text is parsed (0 when it is no number).
    std::int64_t asInt() const;
    double asDouble() const;
    // Text view: the text itself, or the display form of a number ("" for Null).
    std::string toString() const;
    const std::string& textRef() const;  // only for Text and Binary

    bool operator==(const Value& o) const { return kind_ == o.kind_ && v_ == o.v_; }

  private:
    template <class T>
    Value(Kind k, T v) : kind_(k), v_(std::move(v)) {}
    Kind kind_ = Kind::Null;
    std::variant<std::monostate, std::int64_t, double, std::string> v_;
};

// Display form of a double the way VB's CStr writes it ("1.5", "3", "1E+20").
std::string formatDouble(double d);

// Converts a value for storage in a column of the given type and size;
// throws sql::Error with Jet's message when it does not fit.
Value coerceToColumn(const Value& v, ColumnType type, int size, const std::string& columnName);

}  // namespace sql

namespace sql {
// A key under which values that Jet's "=" treats as equal fall together:
// numbers by value, text case-folded. Null has no key (empty string).
std::string equalityKey(const Value& v);
}  // namespace sql
