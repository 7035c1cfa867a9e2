#include "catalogue_fixture.h"

#include <array>
#include <cstdio>
#include <memory>

#include "befehl.h"

namespace fixture {

std::string runCommand(const std::string& command) {
    return tessara::test::befehlsAusgabe(command);
}

using sql::ColumnDef;
using sql::ColumnType;
using sql::Value;

namespace {
ColumnDef key() { return ColumnDef{"Nr", ColumnType::Long, 0, true, false}; }
ColumnDef text(const std::string& n, int size) {
    return ColumnDef{n, ColumnType::Text, size, false, true};
}
ColumnDef lng(const std::string& n) { return ColumnDef{n, ColumnType::Long, 0, false, true}; }
ColumnDef dbl(const std::string& n) { return ColumnDef{n, ColumnType::Double, 0, false, true}; }
std::vector<sql::IndexDef> primary() {
    return {sql::IndexDef{"PrimaryKey", {{"Nr", false}}, true, true}};
}

sql::Row rowFor(sql::Table& t, const std::vector<std::pair<std::string, Value>>& values) {
    auto cols = t.columns();
    sql::Row r(cols.size());
    for (const auto& [name, v] : values)
        for (std::size_t i = 0; i < cols.size(); ++i)
            if (cols[i].name == name) r[i] = v;
    return r;
}
}  // namespace

void createSchema(sql::Storage& db) {
    std::vector<ColumnDef> bi{key(), text("Block", 144), text("SlideLib", 144), lng("OrdnerID")};
    for (int i = 0; i < 5; ++i) bi.push_back(text("BlkName" + std::to_string(i), 32));
    for (int i = 0; i < 10; ++i) bi.push_back(text("M" + std::to_string(i), 100));
    for (int v = 0; v < 5; ++v)
        for (char p = 'A'; p <= 'F'; ++p)
            for (char x : {'X', 'Y', 'Z'})
                bi.push_back(dbl(std::string(1, p) + x + std::to_string(v)));
    for (int i = 0; i < 5; ++i) bi.push_back(text("FktRuf" + std::to_string(i), 100));
    bi.push_back(text("Prg", 3));
    bi.push_back(text("Layer", 35));
    bi.push_back(text("LyLine", 20));
    bi.push_back(text("LyColor", 4));
    db.createTable("tblBlockInfo", bi, primary());

    std::vector<ColumnDef> dm{key(), lng("global")};
    for (int i = 1; i <= 10; ++i) {
        dm.push_back(text("Benennung" + std::to_string(i), 100));
        dm.push_back(text("Standardwert" + std::to_string(i), 100));
    }
    db.createTable("tblDefMenue", dm, primary());
    db.createTable("tblOrdner",
                   {key(), text("OrdnerNr", 3), text("Ordnername", 100), text("OrdnerRechte", 100),
                    lng("NrTblDefMenue"), lng("NrTblRechte")},
                   primary());
    db.createTable("tblSeiten",
                   {key(), lng("SeitenNr"), text("SeitenName", 100), lng("NrTblOrdner")},
                   primary());
    db.createTable(
        "tblMarkierteBloecke",
        {key(), text("BlockName", 100), text("BlockNr", 20), text("SpeicherOrtSlide", 100),
         text("SpeicherOrtDWG", 100), lng("MarkierteAnsicht"), lng("NummerEinfuegepkt")},
        primary());
    db.createTable("tblVariationBloecke",
                   {key(), text("BlockName", 100), lng("BlockID"), text("BlockDateiName", 100)},
                   primary());
}

Catalogue fill(sql::Storage& db, int blockCount) {
    createSchema(db);
    Catalogue c;
    auto dm = db.table("tblDefMenue");
    std::vector<std::pair<std::string, Value>> menu{{"global", Value::integer(1)}};
    for (int i = 1; i <= 10; ++i) {
        menu.emplace_back("Benennung" + std::to_string(i), Value::text("*****Frei*****"));
        menu.emplace_back("Standardwert" + std::to_string(i), Value::text("*****Frei*****"));
    }
    sql::Row mr = rowFor(*dm, menu);
    dm->insert(mr);

    c.folders = {{1, "000", "Standard-Ordner"},
                 {2, "001", "Armaturen"},
                 {3, "002", "Rohrleitungen"},
                 {4, "003", "Öl-Anlagen"}};
    auto ord = db.table("tblOrdner");
    for (const auto& f : c.folders) {
        sql::Row r = rowFor(*ord, {{"OrdnerNr", Value::text(f.code)},
                                   {"Ordnername", Value::text(f.name)},
                                   {"OrdnerRechte", Value::text("Alle")},
                                   {"NrTblDefMenue", Value::integer(1)}});
        ord->insert(r);
    }

    // Page names chosen to show General order: "1" < "10" < "2" < "a" = "A" < "b".
    const char* pageNames[] = {"2", "b", "10", "A", "1"};
    auto sei = db.table("tblSeiten");
    for (const auto& f : c.folders)
        for (int p = 0; p < (f.nr == 1 ? 1 : 5); ++p) {
            sql::Row r = rowFor(*sei, {{"SeitenNr", Value::integer(p + 1)},
                                       {"SeitenName", Value::text(f.nr == 1 ? "1" : pageNames[p])},
                                       {"NrTblOrdner", Value::integer(f.nr)}});
            sei->insert(r);
        }

    const char* nouns[] = {"Ventil",   "Kugelhahn",        "Flansch",     "Öltank",
                           "Schieber", "Rückschlagventil", "Straßenkappe"};
    const char* materials[] = {"Stahl", "Edelstahl", "Messing", "PVC", ""};
    auto bi = db.table("tblBlockInfo");
    for (int i = 0; i < blockCount; ++i) {
        BlockSpec b;
        b.nr = i + 1;
        b.ordnerId = 2 + (i % 3);  // Folders 2..4; the standard Folder stays empty
        int slot = i / 3;
        char code[16];
        std::snprintf(code, sizeof code, "%03d", slot);
        b.block = c.folders[b.ordnerId - 1].code + "0" + code;
        b.m0 = std::string(nouns[i % 7]) + " DN" + std::to_string(10 + i % 50);
        if (i % 11 == 0) b.m0 = "VENTIL groß " + std::to_string(i);
        b.m3 = materials[i % 5];
        b.blkName0 = "B" + b.block;
        b.blkName1 = i % 4 == 0 ? "Ansicht" + std::to_string(i) : "";
        c.blocks.push_back(b);
        std::vector<std::pair<std::string, Value>> vals{
            {"Block", Value::text(b.block)},
            {"SlideLib",
             Value::text(i % 2 ? b.block + ".sld" : c.folders[b.ordnerId - 1].code + ".slb")},
            {"OrdnerID", Value::integer(b.ordnerId)},
            {"BlkName0", Value::text(b.blkName0)},
            {"M0", Value::text(b.m0)},
            {"AX1", Value::real(i * 0.5)},
            {"Layer", Value::text("0")}};
        if (!b.blkName1.empty()) vals.emplace_back("BlkName1", Value::text(b.blkName1));
        if (!b.m3.empty()) vals.emplace_back("M3", Value::text(b.m3));
        sql::Row r = rowFor(*bi, vals);
        bi->insert(r);
    }

    auto var = db.table("tblVariationBloecke");
    for (int i = 0; i < blockCount; i += 10) {
        const std::string name = "Variante" + std::to_string(i);
        sql::Row r = rowFor(*var, {{"BlockName", Value::text(name)},
                                   {"BlockID", Value::integer(i + 1)},
                                   {"BlockDateiName", Value::text(name + ".dwg")}});
        var->insert(r);
    }
    return c;
}

}  // namespace fixture
