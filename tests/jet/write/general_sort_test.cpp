// Text keys in Jet's General order beyond plain letters: keys Access wrote
// for Latin-1, Greek and Cyrillic text re-encode byte for byte, characters
// without a code are refused before anything is written, and rows with
// spaces, underscores, hyphens, umlauts, ß and names in other scripts go
// into Access-made files through the writer and come back through our
// reader, the structural check and mdbtools.
#include "jet/format/general_sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "index_support.h"
#include "jet/check/check.h"
#include "jet/format/text.h"
#include "jet/read/index_cursor.h"
#include "jet/read/index_key.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"
#include "jet/write/writer.h"

namespace {

using namespace jet;
using Bytes = std::vector<std::uint8_t>;
using idxtest::hex;
using idxtest::unhex;

// A table "Parts" with one Text column K (General order) and an index on it.
struct TextIndex {
    TableDef def;
    explicit TextIndex(bool ascending = true)
        : def(idxtest::keyTable(ColumnType::Text, ascending)) {}
    Bytes key(const std::u16string& text) const {
        return indexKeyOf(def, def.realIndexes[0], Row{Value{utf16ToUtf8(text)}});
    }
};

struct AccessKey {
    std::string what;
    std::u16string text;
    std::string key;
};

void PrintTo(const AccessKey& k, std::ostream* os) { *os << k.what; }

class JetGeneralSortAccessKeys : public testing::TestWithParam<AccessKey> {};

TEST_P(JetGeneralSortAccessKeys, ReEncodeByteForByte) {
    const AccessKey& k = GetParam();
    EXPECT_EQ(hex(TextIndex().key(k.text)), k.key);
    // Descending: the same bytes after the start byte inverted, and 0x00.
    Bytes want = unhex(k.key);
    want[0] = 0x80;
    for (std::size_t i = 1; i < want.size(); ++i) want[i] = std::uint8_t(~want[i]);
    want.push_back(0x00);
    EXPECT_EQ(hex(TextIndex(false).key(k.text)), hex(want));
}

// Keys Access wrote, from a golden file: key, value (\uXXXX escapes taken),
// and a name, or the line's number.
std::u16string unescape(const std::string& field) {
    std::u16string text = utf8ToUtf16(field);
    for (std::size_t e = 0; (e = text.find(u"\\u", e)) != std::u16string::npos; ++e)
        text.replace(e, 6, 1, char16_t(std::stoi(utf16ToUtf8(text.substr(e + 2, 4)), nullptr, 16)));
    return text;
}

std::vector<AccessKey> goldenAccessKeys(const std::string& name) {
    std::vector<AccessKey> out;
    for (const std::vector<std::string>& f : jettest::goldenRows(name))
        out.push_back({name == "general_sort_access_keys.txt"
                           ? "line_" + std::to_string(out.size() + 1)
                           : f.at(2),
                       unescape(f.at(1)), f[0]});
    return out;
}

// Access 2003's keys for every character U+0001-U+00FF (the file says where
// they come from).
INSTANTIATE_TEST_SUITE_P(Access2003, JetGeneralSortAccessKeys,
                         testing::ValuesIn(goldenAccessKeys("general_sort_access2003_keys.txt")),
                         [](const testing::TestParamInfo<AccessKey>& i) { return i.param.what; });

// Keys Access wrote into public files for text in other scripts (the files
// are named in the golden file).
INSTANTIATE_TEST_SUITE_P(OtherScripts, JetGeneralSortAccessKeys,
                         testing::ValuesIn(goldenAccessKeys("general_sort_access_keys.txt")),
                         [](const testing::TestParamInfo<AccessKey>& i) { return i.param.what; });

TEST(JetGeneralSort, CoversLatinGreekCyrillicAndCodePage1252) {
    for (char16_t c = 0; c <= 0x052F; ++c) EXPECT_TRUE(gensort::covers(c)) << int(c);
    for (char16_t c = 0x1E00; c <= 0x23FF; ++c) EXPECT_TRUE(gensort::covers(c)) << int(c);
    for (char16_t c :
         u"\u20AC\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152"
         u"\u017D\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A"
         u"\u0153\u017E\u0178") {
        if (c) {
            EXPECT_TRUE(gensort::covers(c)) << int(c);
        }
    }
    for (char16_t c : {char16_t(0x0530), char16_t(0x05D0), char16_t(0x0627), char16_t(0x2400),
                       char16_t(0x6F22), char16_t(0xD83D), char16_t(0xFFFD)})
        EXPECT_FALSE(gensort::covers(c)) << int(c);
}

TEST(JetGeneralSort, KeysByThePublishedRules) {
    TextIndex ix;
    for (const std::vector<std::string>& f : jettest::goldenRows("general_sort_rules.txt")) {
        SCOPED_TRACE(f.at(0) + " " + f.at(1) + " " + f.at(2));
        const Bytes a = ix.key(unescape(f[0]));
        if (f[1] == "hex") {
            EXPECT_EQ(hex(a), f[2]);
            continue;
        }
        const Bytes b = ix.key(unescape(f[2]));
        if (f[1] == "=") {
            EXPECT_EQ(hex(a), hex(b));
        } else if (f[1] == "<") {
            EXPECT_LT(a, b);
        } else if (f[1] == "!=") {
            EXPECT_NE(a, b);
        } else {
            ASSERT_EQ(f[1], "prefix");
            ASSERT_GT(b.size(), a.size());
            EXPECT_TRUE(std::equal(a.begin(), a.end() - 1, b.begin()));
        }
    }
    // Values longer than the key limit share the key of their first 255 characters.
    std::u16string longText(300, u'x');
    EXPECT_EQ(ix.key(longText), ix.key(longText.substr(0, 255)));
    EXPECT_EQ(hex(TextIndex(false).key(u"")), "80feff00");
}

// Text with a character that has no code, and the first such character
// as the message names it (golden file).
TEST(JetGeneralSort, RefusesCharactersWithoutACode) {
    const auto refused = jettest::goldenRows("general_sort_refused.txt");
    ASSERT_EQ(refused.size(), 6u);
    for (const std::vector<std::string>& f : refused)
        for (bool ascending : {true, false}) {
            SCOPED_TRACE(f.at(0));
            const std::string m =
                jettest::errorOf([&] { TextIndex(ascending).key(unescape(f.at(0))); }).second;
            EXPECT_NE(m.find("cannot encode index key for column K of table Parts"),
                      std::string::npos)
                << m;
            EXPECT_NE(m.find(f.at(1)), std::string::npos) << m;
        }
}

// Names and values as German users write them, and suppliers' names across
// Europe (golden file, one per line after its comment lines).
std::vector<std::string> names() {
    std::ifstream in(std::filesystem::path(TESSARA_SOURCE_DIR) / "tests" / "jet" / "write" /
                     "golden" / "general_sort_names.txt");
    std::vector<std::string> out;
    for (std::string line; std::getline(in, line);)
        if (line.rfind("# ", 0) != 0) out.push_back(line);
    return out;
}

TEST(JetGeneralSortWrite, RowsWithNewCharactersKeepTheirIndexes) {
    idxtest::TempCopy copy("indexTestV2000.mdb");
    const std::string table = "Zeichnungen 2025";
    std::map<RowId, std::string> rows;
    {
        auto db = copy.open();
        Writer w(db);
        w.createTable({table,
                       {{"Id", ColumnType::Long, 0, true, false}, {"Name", ColumnType::Text, 120}},
                       {{"PrimaryKey", {{"Id", true}}, true, true},
                        {"ByName", {{"Name", true}}, false, false}}});
        w.createTable({"tblOrdner", {{"Id", ColumnType::Long}}, {}});
        w.createTable(
            {"Клапаны Ω", {{"Id", ColumnType::Long}}, {}});  // a name in MSysObjects' index
        w.createTable(
            {"tblSeiten", {{"Id", ColumnType::Long}, {"OrdnerId", ColumnType::Long}}, {}});
        w.createRelationship(
            {"tblOrdner_tblSeiten", "tblSeiten", {"OrdnerId"}, "tblOrdner", {"Id"}, false});
        ASSERT_EQ(w.unwritableReason(table), "");
        const std::vector<std::string> all = names();
        ASSERT_EQ(all.size(), 41u);
        for (const std::string& name : all) {
            Row row{Value{}, Value{name}};
            rows[w.insert(table, row)] = name;
        }
        // Refused before anything is written: the table keeps its rows.
        Row bad{Value{}, Value{std::string("Հայ")}};  // Armenian
        EXPECT_THROW(w.insert(table, bad), Error);
        EXPECT_EQ(db->table(table).rowIds().size(), rows.size());
    }

    auto db = copy.open(false);
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
    idxtest::TextKeyReport keys = idxtest::compareTextKeys(*db, "written copy");
    EXPECT_EQ(keys.faults, std::vector<std::string>{});
    EXPECT_EQ(keys.refused, 0u);
    for (const char* name : {"Zeichnungen 2025", "tblOrdner_tblSeiten", "Клапаны Ω"})
        for (char16_t c : utf8ToUtf16(name))
            EXPECT_TRUE(keys.chars.count(c)) << name << " did not reach a compared key";

    // Every row found through the index by its value; the check above finds
    // entries out of order. Descending text trees are index_writer_test.cpp's.
    Table t = db->table(table);
    IndexCursor cur = t.index(idxtest::indexNamed(t.def(), "ByName"));
    ASSERT_EQ(cur.all().size(), rows.size());
    for (const auto& [id, name] : rows) {
        std::vector<RowId> found = cur.find({Value{name}});
        EXPECT_NE(std::find(found.begin(), found.end(), id), found.end()) << name;
        EXPECT_EQ((*t.read(id))[1], Value{name});
    }

    // mdbtools reads the table and the relationship.
    if (!jettest::haveMdbTools()) GTEST_FAIL() << "mdbtools are needed for this test";
    jettest::expectExportMatches(copy.path(), table);
    int status = -1;
    std::string rel =
        jettest::run("mdb-export " + jettest::quote(copy.path()) + " MSysRelationships", &status);
    EXPECT_EQ(status, 0);
    EXPECT_NE(rel.find("tblOrdner_tblSeiten"), std::string::npos) << rel;
    const std::string tables =
        jettest::run("mdb-tables -1 " + jettest::quote(copy.path()), &status);
    EXPECT_NE(tables.find("Клапаны Ω\n"), std::string::npos) << tables;
}

}  // namespace
