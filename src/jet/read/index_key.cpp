#include "jet/read/index_key.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "jet/format/error.h"
#include "jet/format/general_sort.h"
#include "jet/format/text.h"

namespace jet {

namespace {

void flip(std::vector<std::uint8_t>& v, std::size_t from) {
    for (std::size_t i = from; i < v.size(); ++i) v[i] = std::uint8_t(~v[i]);
}

std::vector<std::uint8_t> bigEndian(std::uint64_t x, int n) {
    std::vector<std::uint8_t> out(static_cast<std::size_t>(n), 0);
    for (int i = n - 1; i >= 0; --i) {
        out[std::size_t(i)] = std::uint8_t(x & 0xFF);
        x >>= 8;
    }
    return out;
}

double asDouble(const Value& v) {
    if (auto p = std::get_if<double>(&v)) return *p;
    if (auto p = std::get_if<float>(&v)) return *p;
    if (auto p = std::get_if<DateTime>(&v)) return p->days;
    if (auto p = std::get_if<std::int32_t>(&v)) return *p;
    if (auto p = std::get_if<std::int16_t>(&v)) return *p;
    if (auto p = std::get_if<std::uint8_t>(&v)) return *p;
    throw Error("index key value has the wrong type");
}

std::int64_t asInteger(const Value& v) {
    if (auto p = std::get_if<std::int32_t>(&v)) return *p;
    if (auto p = std::get_if<std::int16_t>(&v)) return *p;
    if (auto p = std::get_if<std::uint8_t>(&v)) return *p;
    if (auto p = std::get_if<Currency>(&v)) return p->scaled;
    if (auto p = std::get_if<bool>(&v)) return *p ? 1 : 0;
    throw Error("index key value has the wrong type");
}

// Primary sort codes of Jet's General order (Access 2000-2003) for letters
// and digits, as Access writes them; letters fold case and plain ASCII
// letters add no extra bytes. Other characters end the prefix.
std::uint8_t generalCode(char16_t c) {
    static const std::uint8_t letters[26] = {0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59,
                                             0x5B, 0x5C, 0x5E, 0x60, 0x62, 0x64, 0x66, 0x68, 0x69,
                                             0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78};
    if (c >= '0' && c <= '9') return std::uint8_t(0x36 + 2 * (c - '0'));
    if (c >= 'A' && c <= 'Z') return letters[c - 'A'];
    if (c >= 'a' && c <= 'z') return letters[c - 'a'];
    return 0;
}

// Text keys: the primary codes of the leading characters Jet encodes the
// same way for every case and accent, as far as they are known. The
// result is a prefix of the real key; callers re-check the rows.
void textPrefix(const std::string& s, bool ascending, std::vector<std::uint8_t>& out) {
    std::size_t from = out.size();
    for (char16_t c : utf8ToUtf16(s)) {
        std::uint8_t code = generalCode(c);
        if (!code) break;
        out.push_back(code);
    }
    if (!ascending) flip(out, from);
}

}  // namespace

static void encodeOne(const Column& col, bool asc, const Value& v, std::vector<std::uint8_t>& out,
                      bool& exact) {
    if (isNull(v)) {
        out.push_back(asc ? 0x00 : 0xFF);
        return;
    }
    out.push_back(asc ? 0x7F : 0x80);
    std::vector<std::uint8_t> bytes;
    switch (col.type) {
        case ColumnType::Byte:
            bytes = bigEndian(std::uint64_t(asInteger(v)) & 0xFF, 1);
            break;
        case ColumnType::Integer:
            bytes = bigEndian(std::uint64_t(asInteger(v)), 2);
            bytes[0] ^= 0x80;
            break;
        case ColumnType::Long:
            bytes = bigEndian(std::uint64_t(asInteger(v)), 4);
            bytes[0] ^= 0x80;
            break;
        case ColumnType::Currency:
            bytes = bigEndian(std::uint64_t(asInteger(v)), 8);
            bytes[0] ^= 0x80;
            break;
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::DateTime: {
            double d = asDouble(v);
            std::uint64_t bits;
            int n;
            if (col.type == ColumnType::Single) {
                float f = float(d);
                std::uint32_t b32;
                std::memcpy(&b32, &f, 4);
                bits = b32;
                n = 4;
            } else {
                std::memcpy(&bits, &d, 8);
                n = 8;
            }
            bytes = bigEndian(bits, n);
            bool negative = bytes[0] & 0x80;
            if (negative)
                flip(bytes, 0);
            else
                bytes[0] ^= 0x80;
            break;
        }
        case ColumnType::Text:
        case ColumnType::Memo: {
            const std::string* s = std::get_if<std::string>(&v);
            if (!s) throw Error("index key value has the wrong type");
            textPrefix(*s, true, bytes);
            exact = false;
            break;
        }
        default:
            throw Error(std::string("index keys of type ") + columnTypeName(col.type) +
                        " are not supported");
    }
    if (!asc) flip(bytes, 0);
    out.insert(out.end(), bytes.begin(), bytes.end());
}

std::vector<std::uint8_t> encodeIndexKey(const TableDef& def, const RealIndex& index,
                                         const std::vector<Value>& values) {
    if (values.size() > index.columns.size()) throw Error("more key values than index columns");
    std::vector<std::uint8_t> out;
    bool exact = true;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!exact) break;  // after a text prefix nothing more can be appended
        const Column* col = def.columnByNumber(index.columns[i].columnNumber);
        if (!col) throw Error("index refers to a missing column");
        encodeOne(*col, index.columns[i].ascending, values[i], out, exact);
    }
    return out;
}

bool indexKeyIsExact(const TableDef& def, const RealIndex& index, std::size_t valueCount) {
    for (std::size_t i = 0; i < valueCount && i < index.columns.size(); ++i) {
        const Column* col = def.columnByNumber(index.columns[i].columnNumber);
        if (!col || col->type == ColumnType::Text || col->type == ColumnType::Memo) return false;
    }
    return true;
}

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t kGeneralSortOrder = 0x409;

std::string columnProblem(const Column& c) {
    switch (c.type) {
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::DateTime:
            return {};
        case ColumnType::Text:
            // Both directions: a descending key is the ascending one inverted.
            if (c.sortOrder != kGeneralSortOrder || (c.miscExt >> 8) != 0)
                return "Text keys in a sort order other than General";
            return {};
        default:
            return std::string(columnTypeName(c.type)) + " keys";
    }
}

// Text in General order (see general_sort.h). Characters without a known
// code (beyond the scripts the General order here covers) are refused before anything is
// written, never guessed: a wrong key puts the row where Jet cannot find it.
void encodeGeneralText(const std::string& s, bool ascending, Bytes& out, const TableDef& def,
                       const Column& col) {
    std::u16string text = utf8ToUtf16(s);
    std::size_t bad = gensort::firstUncovered(
        std::u16string_view(text).substr(0, std::min(text.size(), gensort::kMaxKeyChars)));
    if (bad != std::u16string::npos) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "%04X", unsigned(text[bad]));
        throw Error("cannot encode index key for column " + col.name + " of table " + def.name +
                    ": the value \"" + s + "\" holds a character (U+" + hex +
                    ") whose General sort code this engine does not know");
    }
    gensort::appendKey(text, ascending, out);
}

}  // namespace

std::string indexName(const TableDef& def, const RealIndex& index) {
    for (const Index& li : def.indexes)
        if (li.realIndex < def.realIndexes.size() && &def.realIndexes[li.realIndex] == &index)
            return li.name;
    return "?";
}

std::string indexUnmaintainableReason(const TableDef& def, const RealIndex& index) {
    for (const IndexColumn& ic : index.columns) {
        const Column* c = def.columnByNumber(ic.columnNumber);
        std::string problem = c ? columnProblem(*c) : std::string("a column that does not exist");
        if (!problem.empty())
            return "Index " + indexName(def, index) + " of table " + def.name +
                   " cannot be kept up to date: it has " + problem +
                   (c ? " (column " + c->name + ")" : "") +
                   ", whose encoding this engine does not know exactly.";
    }
    return {};
}

std::size_t nullKeyColumns(const TableDef& def, const RealIndex& index, const Row& row) {
    std::size_t nulls = 0;
    for (const IndexColumn& ic : index.columns) {
        const Column* c = def.columnByNumber(ic.columnNumber);
        const int pos = c ? def.columnPosition(c->name) : -1;
        if (pos < 0 || std::size_t(pos) >= row.size() || isNull(row[std::size_t(pos)])) ++nulls;
    }
    return nulls;
}

bool rowBelongsInIndex(const TableDef& def, const RealIndex& index, const Row& row) {
    return !(index.flags & idxflag::kIgnoreNulls) ||
           nullKeyColumns(def, index, row) < index.columns.size();
}

std::vector<std::uint8_t> indexKeyOf(const TableDef& def, const RealIndex& index, const Row& row) {
    Bytes out;
    for (const IndexColumn& ic : index.columns) {
        const Column* c = def.columnByNumber(ic.columnNumber);
        if (!c) throw Error("index of table " + def.name + " refers to a missing column");
        std::string problem = columnProblem(*c);
        if (!problem.empty())
            throw Error("cannot encode index key for column " + c->name + " of table " + def.name +
                        ": " + problem + " are not supported");
        int pos = def.columnPosition(c->name);
        if (pos < 0 || std::size_t(pos) >= row.size())
            throw Error("cannot encode index key for table " + def.name +
                        ": the row lacks column " + c->name);
        const Value& v = row[std::size_t(pos)];
        if (c->type == ColumnType::Text && !isNull(v)) {
            const auto* s = std::get_if<std::string>(&v);
            if (!s) throw Error("cannot encode index key for column " + c->name + ": not text");
            encodeGeneralText(*s, ic.ascending, out, def, *c);
            continue;
        }
        RealIndex one;
        one.columns = {ic};
        Bytes part = encodeIndexKey(def, one, {v});
        out.insert(out.end(), part.begin(), part.end());
    }
    return out;
}

}  // namespace jet
