// RowEncoder against RowDecoder: rows of every column type, and every row of
// the Access-made files encoded again.
#include "jet/write/row_encoder.h"

#include <gtest/gtest.h>

#include <cstring>

#include "jet/format/error.h"
#include "jet/read/long_value.h"
#include "rows_support.h"

using namespace jet;

namespace {

Column col(const std::string& name, ColumnType t, std::uint16_t number, std::uint16_t length,
           bool fixed, std::uint16_t fixedOffset = 0, std::uint16_t varIndex = 0) {
    Column c;
    c.name = name;
    c.type = t;
    c.number = number;
    c.length = length;
    c.flags = std::uint8_t(colflag::kNullable | (fixed ? colflag::kFixed : 0));
    c.fixedOffset = fixedOffset;
    c.varIndex = varIndex;
    return c;
}

// A table with a column of every type; column number 3 was deleted, so the
// null mask and the offset table have a gap as in Access files.
TableDef everyType() {
    TableDef d;
    d.name = "Every";
    d.page = 99;
    d.columns = {
        col("flag", ColumnType::Boolean, 0, 1, true),
        col("b", ColumnType::Byte, 1, 1, true, 0),
        col("i", ColumnType::Integer, 2, 2, true, 1),
        col("l", ColumnType::Long, 4, 4, true, 3),
        col("cur", ColumnType::Currency, 5, 8, true, 7),
        col("sng", ColumnType::Single, 6, 4, true, 15),
        col("dbl", ColumnType::Double, 7, 8, true, 19),
        col("dt", ColumnType::DateTime, 8, 8, true, 27),
        col("g", ColumnType::Guid, 9, 16, true, 35),
        col("num", ColumnType::Numeric, 10, 17, true, 51),
        col("txt", ColumnType::Text, 11, 20, false, 0, 0),
        col("plain", ColumnType::Text, 12, 510, false, 0, 2),
        col("bin", ColumnType::Binary, 13, 255, false, 0, 3),
        col("memo", ColumnType::Memo, 14, 0, false, 0, 4),
        col("ole", ColumnType::OLE, 15, 0, false, 0, 5),
    };
    d.columns[10].miscFlags = colmisc::kCompressedUnicode;
    d.columns[13].miscFlags = colmisc::kCompressedUnicode;
    d.columns[9].precision = 18;
    d.columns[9].scale = 4;
    d.columnCount = std::uint16_t(d.columns.size());
    d.varColumnCount = 6;
    d.maxColumns = 16;
    return d;
}

Row decodeBytes(PageCache& pages, const TableDef& def, const Binary& bytes) {
    RowBytes r;
    r.page = std::make_shared<PageBytes>(bytes);
    r.start = 0;
    r.end = std::uint16_t(bytes.size());
    return RowDecoder(pages, def).decode(r);
}

PageCache& emptyPages() {
    static PageCache pages(std::make_unique<MemoryPageStore>(std::vector<std::uint8_t>(kPageSize)));
    return pages;
}

Decimal dec(bool negative, std::uint64_t magnitude) {
    Decimal d;
    d.negative = negative;
    d.scale = 4;
    d.magnitude = magnitude;
    return d;
}

Guid guid(std::uint8_t seed) {
    Guid g;
    for (std::size_t i = 0; i < 16; ++i) g.bytes[i] = std::uint8_t(seed + i * 7);
    return g;
}

}  // namespace

TEST(RowEncoder, EveryTypeRoundTrips) {
    const TableDef def = everyType();
    const std::string tenUmlauts = "ÄÖÜäöüßÄÖÜ";
    const Row nulls(def.columns.size());
    Row allNull = nulls;
    allNull[0] = false;  // Boolean is never Null: it lives in the null mask
    Row wide = allNull;
    wide[10] = std::string("日本語のテキスト");
    wide[11] = tenUmlauts + "日本";
    wide[13] = std::string("€ ") + tenUmlauts;
    struct Case {
        const char* what;
        Row row;
    } cases[] = {
        {"all null", allNull},
        {"empty values",
         {false, std::uint8_t(0), std::int16_t(0), std::int32_t(0), Currency{0}, 0.0f, 0.0,
          DateTime{0}, Guid{}, dec(false, 0), std::string(), std::string(), Binary{}, std::string(),
          Binary{}}},
        // Negative extremes, where the sign's handling shows.
        {"limits and max length",
         {true, std::uint8_t(255), std::int16_t(-32768), std::int32_t(INT32_MIN),
          Currency{INT64_MIN}, -3.4e38f, -1.7976931348623157e308, DateTime{-657434}, guid(200),
          dec(true, 999999999999999999ull), std::string("0123456789"), std::string(255, 'x'),
          Binary(255, 0xAB), std::string(2000, 'm'), Binary(3000, 0x5A)}},
        {"text that does not compress", wide},
    };
    RowEncoder enc(def);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_NO_THROW(enc.check(c.row));
        Binary bytes = enc.encode(c.row);
        EXPECT_EQ(decodeBytes(emptyPages(), def, bytes), c.row);
        EXPECT_GE(bytes.size(), enc.minimumSize());
    }
    // Text that compresses is stored compressed where the column allows it.
    Row r = allNull;
    r[10] = std::string("abcdefghij");
    r[11] = std::string("abcdefghij");
    Binary bytes = enc.encode(r);
    EXPECT_EQ(bytes.size(), enc.minimumSize() + 12 + 20);
    EXPECT_EQ(enc.encode(allNull).size(), enc.minimumSize());
}

TEST(RowEncoder, RefusesRowsThatDoNotFit) {
    const TableDef def = everyType();
    Row base(def.columns.size());
    base[0] = false;
    struct Case {
        const char* what;
        std::size_t column;
        Value value;
        long number;
    } cases[] = {
        {"text one character too long", 10, std::string(11, 'a'), rowerr::kFieldTooSmall},
        {"umlauts count as characters", 10, std::string("ÄÖÜäöüßÄÖÜß"), rowerr::kFieldTooSmall},
        {"binary too long", 12, Binary(256, 1), rowerr::kFieldTooSmall},
        {"Long given as Integer", 3, std::int16_t(5), rowerr::kConversion},
        {"text in a Double", 6, std::string("1.5"), rowerr::kConversion},
        {"Boolean given as Byte", 0, std::uint8_t(1), rowerr::kConversion},
        {"binary in a Memo", 13, Binary{1}, rowerr::kConversion},
        {"Numeric beyond its precision", 9, dec(false, 1000000000000000000ull), 3349},
    };
    RowEncoder enc(def);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Row r = base;
        r[c.column] = c.value;
        EXPECT_EQ(jettest::errorOf([&] { enc.check(r); }).first, c.number);
    }
    TableDef required = def;
    required.columns[3].flags = colflag::kFixed;  // not nullable
    const auto [number, message] = jettest::errorOf([&] { RowEncoder(required).check(base); });
    EXPECT_EQ(number, rowerr::kRequired);
    EXPECT_NE(message.find("Every.l"), std::string::npos) << message;
    EXPECT_THROW(enc.check(Row(3)), Error);
    // A text at the column's length is fine.
    base[10] = std::string("ÄÖÜäöüßÄÖÜ");
    EXPECT_NO_THROW(enc.check(base));
}

// Each row Access wrote decodes the same after it is encoded again; long
// values keep their stored fields (they may lie on LVAL pages).
TEST(RowEncoder, AccessRowsEncodeAgain) {
    std::size_t rows = 0, identical = 0;
    for (const std::string& file : jettest::testFiles()) {
        auto db = Database::open(jettest::testFile(file));
        for (const std::string& name : db->tableNames(true)) {
            SCOPED_TRACE(file + " " + name);
            auto def = db->tableDef(name);
            Table t = db->table(name);
            RowDecoder dec(db->pages(), *def);
            RowEncoder enc(*def);
            for (RowId id : t.rowIds()) {
                // The stored bytes, following an overflow pointer.
                RowBytes r = rowBytes(db->pages(), id);
                while (r.flags & datapage::kOverflowFlag)
                    r = rowBytes(db->pages(), RowId::fromPointer(u32(r.data())));
                const Row row = dec.decode(r);
                const RowDecoder::Layout l = dec.layout(r);
                std::vector<Binary> fields(def->columns.size());
                for (std::size_t i = 0; i < def->columns.size(); ++i) {
                    const Column& c = def->columns[i];
                    if (!isLongValueType(c.type) || isNull(row[i]) || c.varIndex >= l.varLen)
                        continue;
                    const std::size_t base = l.nullMask - 4;
                    std::size_t start = u16(r.data() + base - 2 * c.varIndex);
                    std::size_t end = c.varIndex + 1u < l.varLen
                                          ? u16(r.data() + base - 2 * (c.varIndex + 1u))
                                          : l.eod;
                    fields[i].assign(r.data() + start, r.data() + end);
                }
                ASSERT_NO_THROW(enc.check(row));
                Binary again = enc.encode(row, &fields);
                EXPECT_EQ(decodeBytes(db->pages(), *def, again), row) << toString(id);
                ++rows;
                identical +=
                    again.size() == r.size() && std::memcmp(again.data(), r.data(), r.size()) == 0;
            }
        }
    }
    EXPECT_GT(rows, 300u);
    // Most rows come out byte for byte as Access wrote them.
    EXPECT_GT(identical * 2, rows) << identical << " of " << rows;
}
