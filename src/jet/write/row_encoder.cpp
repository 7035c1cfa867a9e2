#include "jet/write/row_encoder.h"

#include <algorithm>
#include <cstring>

#include "jet/format/error.h"
#include "jet/format/text.h"
#include "jet/read/long_value.h"

namespace jet {

namespace {

using U128 = decltype(Decimal::magnitude);

// Memo text longer than this many characters is never compressed (Jet
// reads compressed long values only up to that length).
constexpr std::size_t kMaxCompressedMemo = 1024;

std::uint16_t storedSize(const Column& c) { return c.length ? c.length : fixedSizeOf(c.type); }

template <class T>
void store(std::uint8_t* p, T v) {
    std::memcpy(p, &v, sizeof v);
}

[[noreturn]] void mismatch(const TableDef& def, const Column& c, const char* expected) {
    throw Error("Data type conversion error: column " + c.name + " of table " + def.name +
                    " takes " + expected + " values.",
                rowerr::kConversion);
}

// Digits of the unscaled magnitude allowed by a Numeric column.
U128 pow10(unsigned n) {
    U128 v = 1;
    while (n--) v *= 10;
    return v;
}

// The value's magnitude at the column's scale, half away from zero when
// digits are dropped.
Decimal rescale(const TableDef& def, const Column& c, Decimal d) {
    while (d.scale < c.scale) {
        if (d.magnitude > (~U128(0)) / 10)
            throw Error("Numeric field overflow in column " + c.name + " of " + def.name + ".",
                        3349);
        d.magnitude *= 10;
        ++d.scale;
    }
    while (d.scale > c.scale) {
        U128 rest = d.magnitude % 10;
        d.magnitude = d.magnitude / 10 + (rest >= 5 ? 1 : 0);
        --d.scale;
    }
    unsigned precision = c.precision ? c.precision : 28;
    if (precision > 38) precision = 38;
    if (d.magnitude >= pow10(precision))
        throw Error("Numeric field overflow in column " + c.name + " of " + def.name + ".", 3349);
    if (d.magnitude == 0) d.negative = false;
    return d;
}

}  // namespace

RowEncoder::RowEncoder(const TableDef& def) : def_(def) {
    for (const Column& c : def.columns) {
        numCols_ = std::max<std::uint16_t>(numCols_, std::uint16_t(c.number + 1));
        if (c.isFixed()) {
            if (c.type != ColumnType::Boolean)
                fixedLen_ = std::max<std::size_t>(fixedLen_, c.fixedOffset + storedSize(c));
        } else {
            varLen_ = std::max<std::uint16_t>(varLen_, std::uint16_t(c.varIndex + 1));
        }
    }
}

void RowEncoder::check(const Row& row) const {
    if (row.size() != def_.columns.size())
        throw Error("a row of " + def_.name + " takes " + std::to_string(def_.columns.size()) +
                        " values, not " + std::to_string(row.size()),
                    rowerr::kConversion);
    for (std::size_t i = 0; i < row.size(); ++i) {
        const Column& c = def_.columns[i];
        const Value& v = row[i];
        if (isNull(v)) {
            if (c.type != ColumnType::Boolean && !c.isNullable())
                throw Error(
                    "You must enter a value in the '" + def_.name + "." + c.name + "' field.",
                    rowerr::kRequired);
            continue;
        }
        switch (c.type) {
            case ColumnType::Boolean:
                if (!std::holds_alternative<bool>(v)) mismatch(def_, c, "Boolean");
                break;
            case ColumnType::Byte:
                if (!std::holds_alternative<std::uint8_t>(v)) mismatch(def_, c, "Byte");
                break;
            case ColumnType::Integer:
                if (!std::holds_alternative<std::int16_t>(v)) mismatch(def_, c, "Integer");
                break;
            case ColumnType::Long:
                if (!std::holds_alternative<std::int32_t>(v)) mismatch(def_, c, "Long");
                break;
            case ColumnType::Currency:
                if (!std::holds_alternative<Currency>(v)) mismatch(def_, c, "Currency");
                break;
            case ColumnType::Single:
                if (!std::holds_alternative<float>(v)) mismatch(def_, c, "Single");
                break;
            case ColumnType::Double:
                if (!std::holds_alternative<double>(v)) mismatch(def_, c, "Double");
                break;
            case ColumnType::DateTime:
                if (!std::holds_alternative<DateTime>(v)) mismatch(def_, c, "Date/Time");
                break;
            case ColumnType::Guid:
                if (!std::holds_alternative<Guid>(v)) mismatch(def_, c, "GUID");
                break;
            case ColumnType::Numeric:
                if (!std::holds_alternative<Decimal>(v)) mismatch(def_, c, "Decimal");
                rescale(def_, c, std::get<Decimal>(v));
                break;
            case ColumnType::Text:
            case ColumnType::Memo: {
                const auto* s = std::get_if<std::string>(&v);
                if (!s) mismatch(def_, c, "text");
                if (c.type == ColumnType::Text && !c.isFixed() &&
                    utf16Length(*s) > std::size_t(c.length / 2))
                    throw Error(
                        "The field is too small to accept the amount of data you "
                        "attempted to add. Try inserting or pasting less data. (" +
                            def_.name + "." + c.name + " holds at most " +
                            std::to_string(c.length / 2) + " characters.)",
                        rowerr::kFieldTooSmall);
                break;
            }
            case ColumnType::Binary:
            case ColumnType::OLE:
            default: {
                const auto* b = std::get_if<Binary>(&v);
                if (!b) mismatch(def_, c, "binary");
                std::size_t limit = c.type == ColumnType::OLE ? lval::kLengthMask : c.length;
                if ((c.isFixed() || c.type == ColumnType::Binary) && b->size() > limit)
                    throw Error(
                        "The field is too small to accept the amount of data you "
                        "attempted to add. Try inserting or pasting less data. (" +
                            def_.name + "." + c.name + " holds at most " + std::to_string(limit) +
                            " bytes.)",
                        rowerr::kFieldTooSmall);
                break;
            }
        }
        if (c.isFixed() &&
            (c.type == ColumnType::Text || c.type == ColumnType::Memo || c.type == ColumnType::OLE))
            throw Error("column " + c.name + " of " + def_.name +
                        " is a fixed-size column of a variable type, which is not written");
    }
}

Binary RowEncoder::longValueData(const Column& c, const Value& v) const {
    if (const auto* s = std::get_if<std::string>(&v)) {
        bool compress = c.compressedUnicode() && utf8ToUtf16(*s).size() <= kMaxCompressedMemo;
        return encodeText(*s, compress);
    }
    if (const auto* b = std::get_if<Binary>(&v)) return *b;
    mismatch(def_, c, c.type == ColumnType::Memo ? "text" : "binary");
}

Binary inlineLongValue(const Binary& data) {
    if (data.size() > lval::kLengthMask)
        throw Error("long value too large", rowerr::kRecordTooLarge);
    Binary out(lval::kFieldSize + data.size(), 0);
    put32(out.data(), std::uint32_t(data.size()) | lval::kInline);
    std::copy(data.begin(), data.end(), out.begin() + lval::kFieldSize);
    return out;
}

Binary RowEncoder::scalarBytes(const Column& c, const Value& v, std::size_t n) const {
    Binary out(std::max<std::size_t>(n, fixedSizeOf(c.type)), 0);
    if (putScalar(c, v, out.data(), out.size())) return out;
    // Columns of other types keep their bytes as read.
    const Binary& b = std::get<Binary>(v);
    out.assign(b.begin(), b.end());
    if (c.isFixed()) out.resize(n, 0);
    return out;
}

bool RowEncoder::putScalar(const Column& c, const Value& v, std::uint8_t* p,
                           std::size_t size) const {
    switch (c.type) {
        case ColumnType::Byte:
            p[0] = std::get<std::uint8_t>(v);
            break;
        case ColumnType::Integer:
            put16(p, std::uint16_t(std::get<std::int16_t>(v)));
            break;
        case ColumnType::Long:
            put32(p, std::uint32_t(std::get<std::int32_t>(v)));
            break;
        case ColumnType::Currency:
            store(p, std::get<Currency>(v).scaled);
            break;
        case ColumnType::Single:
            store(p, std::get<float>(v));
            break;
        case ColumnType::Double:
            store(p, std::get<double>(v));
            break;
        case ColumnType::DateTime:
            store(p, std::get<DateTime>(v).days);
            break;
        case ColumnType::Guid:
            std::memcpy(p, std::get<Guid>(v).bytes.data(), 16);
            break;
        case ColumnType::Numeric: {
            if (size < 17) throw Error("Numeric column " + c.name + " is too narrow");
            Decimal d = rescale(def_, c, std::get<Decimal>(v));
            p[0] = d.negative ? 0x80 : 0;
            for (int k = 0; k < 4; ++k)
                put32(p + 1 + 4 * k, std::uint32_t(d.magnitude >> (32 * (3 - k))));
            break;
        }
        default:
            return false;
    }
    return true;
}

Binary RowEncoder::encode(const Row& row, const std::vector<Binary>* fields) const {
    if (row.size() != def_.columns.size())
        throw Error(
            "a row of " + def_.name + " takes " + std::to_string(def_.columns.size()) + " values",
            rowerr::kConversion);
    const std::size_t maskLen = (std::size_t(numCols_) + 7) / 8;
    Binary out(2 + fixedLen_, 0);
    put16(out.data(), numCols_);
    std::vector<std::uint8_t> mask(maskLen, 0);
    // Variable data per slot of the offset table; slots of deleted columns
    // stay empty.
    std::vector<Binary> var(varLen_);

    for (std::size_t i = 0; i < def_.columns.size(); ++i) {
        const Column& c = def_.columns[i];
        const Value& v = row[i];
        auto setBit = [&] { mask[c.number / 8] |= std::uint8_t(1u << (c.number % 8)); };
        if (c.type == ColumnType::Boolean) {
            if (const auto* b = std::get_if<bool>(&v); b && *b) setBit();
            continue;
        }
        if (isNull(v)) continue;
        setBit();
        if (c.isFixed()) {
            const std::size_t n = storedSize(c);
            // Numbers go through a buffer on the stack, not one allocated per value.
            std::uint8_t scalar[32];
            const std::size_t size = std::max<std::size_t>(n, fixedSizeOf(c.type));
            if (size <= sizeof scalar) {
                std::memset(scalar, 0, size);
                if (putScalar(c, v, scalar, size)) {
                    std::memcpy(out.data() + 2 + c.fixedOffset, scalar, n);
                    continue;
                }
            }
            Binary b = scalarBytes(c, v, n);
            std::memcpy(out.data() + 2 + c.fixedOffset, b.data(), std::min(n, b.size()));
            continue;
        }
        Binary& slot = var[c.varIndex];
        switch (c.type) {
            case ColumnType::Text:
                slot = encodeText(std::get<std::string>(v), c.compressedUnicode());
                break;
            case ColumnType::Memo:
            case ColumnType::OLE:
                if (fields && i < fields->size() && !(*fields)[i].empty())
                    slot = (*fields)[i];
                else if (Binary data = longValueData(c, v); !data.empty())
                    slot = inlineLongValue(data);
                break;
            case ColumnType::Binary:
                slot = std::get<Binary>(v);
                break;
            default:
                // Types of fixed size kept among the variable columns (some
                // system tables do so).
                slot = scalarBytes(c, v, storedSize(c));
                break;
        }
    }

    if (varLen_ > 0 || def_.varColumnCount > 0) {
        std::vector<std::uint16_t> offsets(varLen_);
        for (std::size_t k = 0; k < varLen_; ++k) {
            offsets[k] = std::uint16_t(out.size());
            out.insert(out.end(), var[k].begin(), var[k].end());
            if (out.size() > 0xFFFF) break;
        }
        const std::size_t eod = out.size();
        const std::size_t total = eod + 2 + 2 * std::size_t(varLen_) + 2 + maskLen;
        if (total > 0xFFFF)
            throw Error("Record is too large (" + def_.name + ").", rowerr::kRecordTooLarge);
        // End of data first, then the offsets last to first, then the count.
        std::size_t at = out.size();
        out.resize(total - maskLen);
        put16(out.data() + at, std::uint16_t(eod));
        at += 2;
        for (std::size_t k = varLen_; k-- > 0;) {
            put16(out.data() + at, offsets[k]);
            at += 2;
        }
        put16(out.data() + at, varLen_);
    }
    out.insert(out.end(), mask.begin(), mask.end());
    return out;
}

std::size_t RowEncoder::minimumSize() const {
    std::size_t n = 2 + fixedLen_ + (std::size_t(numCols_) + 7) / 8;
    if (varLen_ > 0 || def_.varColumnCount > 0) n += 4 + 2 * std::size_t(varLen_);
    return n;
}

}  // namespace jet
