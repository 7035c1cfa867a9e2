#include "jet/sql/engine_values.h"

#include <cmath>

#include "jet/sql/error.h"

namespace sql::engine {

Value fromJet(const jet::Value& v) {
    struct Visitor {
        Value operator()(std::monostate) const { return Value(); }
        Value operator()(bool b) const { return Value::boolean(b); }
        Value operator()(std::uint8_t x) const { return Value::integer(x); }
        Value operator()(std::int16_t x) const { return Value::integer(x); }
        Value operator()(std::int32_t x) const { return Value::integer(x); }
        Value operator()(const jet::Currency& c) const {
            return Value::real(static_cast<double>(c.scaled) / 10000.0);
        }
        Value operator()(float f) const { return Value::real(f); }
        Value operator()(double d) const { return Value::real(d); }
        Value operator()(const jet::DateTime& d) const { return Value::date(d.days); }
        Value operator()(const std::string& s) const { return Value::text(s); }
        Value operator()(const jet::Binary& b) const {
            return Value::binary(std::string(b.begin(), b.end()));
        }
        Value operator()(const jet::Guid& g) const { return Value::text(jet::formatGuid(g)); }
        Value operator()(const jet::Decimal& d) const {
            double m = static_cast<double>(d.magnitude) / std::pow(10.0, d.scale);
            return Value::real(d.negative ? -m : m);
        }
    };
    return std::visit(Visitor{}, v);
}

Value fromJet(jet::Value&& v) {
    if (auto* s = std::get_if<std::string>(&v)) return Value::text(std::move(*s));
    return fromJet(static_cast<const jet::Value&>(v));
}

Row fromJet(const jet::Row& r) {
    Row out;
    out.reserve(r.size());
    for (const auto& v : r) out.push_back(fromJet(v));
    return out;
}

namespace {
int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}
}  // namespace

jet::Value toJet(const Value& v, jet::ColumnType type) {
    if (v.isNull()) return std::monostate{};
    switch (type) {
        case jet::ColumnType::Boolean:
            return v.asInt() != 0;
        case jet::ColumnType::Byte:
            return static_cast<std::uint8_t>(v.asInt());
        case jet::ColumnType::Integer:
            return static_cast<std::int16_t>(v.asInt());
        case jet::ColumnType::Long:
            return static_cast<std::int32_t>(v.asInt());
        case jet::ColumnType::Currency:
            return jet::Currency{std::llround(v.asDouble() * 10000.0)};
        case jet::ColumnType::Single:
            return static_cast<float>(v.asDouble());
        case jet::ColumnType::Double:
            return v.asDouble();
        case jet::ColumnType::DateTime:
            return jet::DateTime{v.asDouble()};
        case jet::ColumnType::Text:
        case jet::ColumnType::Memo:
            return v.toString();
        case jet::ColumnType::Binary:
        case jet::ColumnType::OLE: {
            const std::string& s = v.textRef();
            return jet::Binary(s.begin(), s.end());
        }
        case jet::ColumnType::Guid: {
            // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" back into the stored bytes.
            std::string hex;
            for (char c : v.toString())
                if (hexDigit(c) >= 0) hex.push_back(c);
            if (hex.size() != 32) throw errors::typeMismatch();
            std::array<std::uint8_t, 16> text{};
            for (int i = 0; i < 16; ++i)
                text[i] =
                    static_cast<std::uint8_t>(hexDigit(hex[2 * i]) * 16 + hexDigit(hex[2 * i + 1]));
            // The first three groups are stored little-endian.
            jet::Guid g;
            const int order[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
            for (int i = 0; i < 16; ++i) g.bytes[i] = text[order[i]];
            return g;
        }
        case jet::ColumnType::Numeric: {
            double d = v.asDouble();
            jet::Decimal dec;
            dec.negative = d < 0;
            dec.scale = 4;
            dec.magnitude = static_cast<std::uint64_t>(std::llround(std::fabs(d) * 10000.0));
            return dec;
        }
    }
    return std::monostate{};
}

ColumnDef columnDefOf(const jet::Column& c) {
    ColumnDef d;
    d.name = c.name;
    d.type = static_cast<ColumnType>(static_cast<int>(c.type));
    d.size = c.type == jet::ColumnType::Text ? c.displaySize() : 0;
    d.autoIncrement = c.isAutoNumber() && c.type == jet::ColumnType::Long;
    d.nullable = c.isNullable() || !c.isAutoNumber();
    return d;
}

bool keyFits(const Value& key, jet::ColumnType type) {
    if (key.isNull()) return false;
    switch (type) {
        case jet::ColumnType::Byte:
        case jet::ColumnType::Integer:
        case jet::ColumnType::Long: {
            if (!key.isNumber()) return false;
            double d = key.asDouble();
            double lo = type == jet::ColumnType::Byte      ? 0
                        : type == jet::ColumnType::Integer ? -32768
                                                           : -2147483648.0;
            double hi = type == jet::ColumnType::Byte      ? 255
                        : type == jet::ColumnType::Integer ? 32767
                                                           : 2147483647.0;
            return d == std::floor(d) && d >= lo && d <= hi;
        }
        case jet::ColumnType::Double:
        case jet::ColumnType::DateTime:
            return key.isNumber();
        default:
            return false;  // other key types are answered by a scan
    }
}

}  // namespace sql::engine
