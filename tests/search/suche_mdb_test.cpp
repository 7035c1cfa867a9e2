// The search over a real catalogue file: the hits are the rows mdb-export
// reads from the same file, filtered by a reference rule written here; the
// statements that break (a quote, the block name run into WHERE) end in a
// message, and the labels come from the Folder's definition menu.
#include <algorithm>
#include <set>

#include "db/catalog.h"
#include "jet/support/mdbtools.h"
#include "search/datenbank_suche.h"
#include "such_umgebung.h"
#include "tabelle.h"

namespace tessara::test {
namespace {

class SucheMdb : public SuchUmgebung {
  protected:
    void SetUp() override {
        SuchUmgebung::SetUp();
        z.strAppPfad = platform::programPath(std::string(TESSARA_SOURCE_DIR) + "/data");
        z.strSprache = "deutsch";
        katalogAnlegen();
        for (const auto& s : tabelle("search/golden/katalog.txt")) con.execute(s.at(0));
    }
    // What mdb-export reads from the file.
    std::vector<jettest::CsvRow> exportieren(const std::string& tabelle, jettest::CsvRow& kopf) {
        auto zeilen = jettest::parseCsv(jettest::run(
            "mdb-export " + jettest::quote(platform::nativePath(datei)) + " " + tabelle));
        kopf = zeilen.at(0);
        zeilen.erase(zeilen.begin());
        return zeilen;
    }
};

// Jet compares text without regard to case, umlauts included.
std::string falten(std::string s) {
    for (auto& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (auto [gross, klein] : {std::pair{"Ä", "ä"}, {"Ö", "ö"}, {"Ü", "ü"}})
        for (auto p = s.find(gross); p != std::string::npos; p = s.find(gross))
            s.replace(p, 2, klein);
    return s;
}

bool passt(const std::string& wert, const std::string& text, bool ganz) {
    return ganz ? falten(wert) == falten(text)
                : falten(wert).find(falten(text)) != std::string::npos;
}

TEST_F(SucheMdb, HitsAreTheRowsMdbExportReadsFilteredByTheCriteria) {
    if (!jettest::haveMdbTools()) GTEST_SKIP() << "mdbtools is not installed";
    struct Fall {
        const char* name;
        std::vector<std::pair<int, std::string>> felder;
        bool ganz = false, ordner = false;
    };
    const std::vector<Fall> faelle = {
        {"contains", {{0, "ventil"}}},
        {"two fields", {{1, "DN 50"}, {2, "stahl"}}},
        {"whole field", {{2, "Stahl"}}, true},
        {"umlaut", {{0, "HÄHNE"}}},
        {"eszett", {{0, "schweiß"}}},
        {"current folder", {{1, "DN"}}, false, true},
        {"views and variants", {{10, "ventil"}}},
        {"variant only", {{10, "Sonder"}}},
    };
    jettest::CsvRow kopf, vkopf;
    const auto bloecke = exportieren("tblBlockInfo", kopf);
    const auto varianten = exportieren("tblVariationBloecke", vkopf);
    auto spalte = [](const jettest::CsvRow& k, const std::string& name) {
        for (std::size_t i = 0; i < k.size(); ++i)
            if (k[i].text == name) return i;
        ADD_FAILURE() << name;
        return std::size_t{0};
    };
    for (const auto& f : faelle) {
        typSuchKriterien k;
        k.checkGanzeWoerter = f.ganz;
        k.checkAktuellerOrdner = f.ordner;
        k.chkAnsichtenVarianten = true;
        for (const auto& [i, t] : f.felder) k.txtBenennung[i] = t;
        std::set<std::string> erwartet;
        for (const auto& r : bloecke) {
            bool ok = !f.ordner || r[spalte(kopf, "OrdnerID")].text == "2";
            for (const auto& [i, t] : f.felder) {
                if (i < 10) {
                    ok = ok && passt(r[spalte(kopf, "M" + std::to_string(i))].text, t, f.ganz);
                    continue;
                }
                bool name = false;
                for (int v = 0; v < 5; ++v)
                    name = name ||
                           passt(r[spalte(kopf, "BlkName" + std::to_string(v))].text, t, f.ganz);
                for (const auto& var : varianten)
                    name =
                        name || (var[spalte(vkopf, "BlockID")].text == r[spalte(kopf, "Nr")].text &&
                                 passt(var[spalte(vkopf, "BlockName")].text, t, f.ganz));
                ok = ok && name;
            }
            if (ok) erwartet.insert(r[spalte(kopf, "Block")].text);
        }
        ASSERT_FALSE(erwartet.empty()) << f.name << ": the case must find something";
        const auto a = fctDatenbankSuchen(z, con, k, "tblBlockInfo", 2);
        std::set<std::string> gefunden;
        for (const auto& t : a.treffer) gefunden.insert(t.Block);
        EXPECT_EQ(gefunden, erwartet) << f.name << "\n" << a.strAnweisung;
    }
    EXPECT_TRUE(benutzer.gezeigt.empty());
}

TEST_F(SucheMdb, EachOutcomeOfASearchHasItsMessage) {
    struct Fall {
        const char* name;
        int feld;
        std::string text;
        bool ansichten, direkt;
        SuchErgebnis ergebnis;
        std::vector<std::string> meldung;  // parts of the message shown; empty: none
    };
    const std::vector<Fall> faelle = {
        {"nothing typed", 0, "", true, true, SuchErgebnis::KeinSuchbegriff, {"Suchbegriff"}},
        {"no hit", 0, "Zahnrad", true, true, SuchErgebnis::KeinTreffer, {"kein passender"}},
        {"an open bracket", 0, "[", true, true, SuchErgebnis::KeinTreffer, {"kein passender"}},
        {"2000 characters",
         1,
         std::string(2000, 'x'),
         true,
         true,
         SuchErgebnis::KeinTreffer,
         {"kein passender"}},
        {"one hit, direct", 2, "Messing", true, true, SuchErgebnis::Einfuegen, {}},
        {"one hit, shown", 2, "Messing", true, false, SuchErgebnis::Anzeigen, {}},
        {"a quote",
         0,
         "O'Brien",
         true,
         true,
         SuchErgebnis::Fehler,
         {"nicht ausgeführt", "Hochkomma"}},
        // The block name of the plain search runs the table into WHERE.
        {"name without views", 10, "Hahn", false, true, SuchErgebnis::Fehler, {"nicht ausgeführt"}},
    };
    for (const auto& f : faelle) {
        benutzer.gezeigt.clear();
        typSuchKriterien k;
        k.txtBenennung[f.feld] = f.text;
        k.chkAnsichtenVarianten = f.ansichten;
        k.checkDirektEinfuegen = f.direkt;
        const auto a = fctDatenbankSuchen(z, con, k, "tblBlockInfo", 1);
        EXPECT_EQ(a.ergebnis, f.ergebnis) << f.name;
        ASSERT_EQ(benutzer.gezeigt.size(), f.meldung.empty() ? 0u : 1u) << f.name;
        for (const auto& teil : f.meldung)
            EXPECT_NE(benutzer.gezeigt[0].text.find(teil), std::string::npos)
                << f.name << ": " << benutzer.gezeigt[0].text;
        if (f.ergebnis == SuchErgebnis::Einfuegen) {
            ASSERT_EQ(a.treffer.size(), 1u);
            EXPECT_EQ(a.treffer[0].Block, "00000A");
            EXPECT_EQ(a.treffer[0].OrdnerNr, "000");
            EXPECT_EQ(a.treffer[0].BlkName[1], "Kugelhahn_oben");
        }
    }
    EXPECT_NE(protokoll().find("cmbSuchen_Click"), std::string::npos);
}

TEST_F(SucheMdb, AnInventorLibrarySearchesItsOwnTable) {
    db::Catalog kat;
    kat.setActiveConnection(con);
    db::CatalogTable t;
    t.name = "tblBlockInfoInventor";
    t.appendColumn("Nr", db::adInteger).autoIncrement = true;
    t.appendColumn("Block", db::adVarWChar, 144).nullable = true;
    t.appendColumn("OrdnerID", db::adInteger).nullable = true;
    t.appendColumn("BlkName", db::adVarWChar, 32).nullable = true;
    t.appendColumn("M0", db::adVarWChar, 100).nullable = true;
    t.keys.push_back({"PrimaryKey", db::adKeyPrimary, {"Nr"}, {}, {}});
    kat.appendTable(t);
    con.execute(
        "INSERT INTO tblBlockInfoInventor (Block, OrdnerID, BlkName, M0) VALUES ('00000X', 1, "
        "'Welle_20', 'Welle')");
    typSuchKriterien k;
    k.txtBenennung[10] = "welle";
    k.chkAnsichtenVarianten = true;
    const auto a = fctDatenbankSuchen(z, con, k, "tblBlockInfoInventor", 1);
    ASSERT_EQ(a.ergebnis, SuchErgebnis::Anzeigen) << a.strAnweisung << protokoll();
    ASSERT_EQ(a.treffer.size(), 1u);
    EXPECT_EQ(a.treffer[0].BlkName[0], "Welle_20");
    EXPECT_EQ(a.treffer[0].M0, "Welle");
}

TEST_F(SucheMdb, LabelsComeFromTheFoldersDefinitionMenu) {
    EXPECT_EQ(fctSuchBeschriftungen(z, con, "001")[0], "Werkstoff");
    const auto ohne = fctSuchBeschriftungen(z, con, "002");  // no menu named: menu 1
    EXPECT_EQ(ohne[0], "Benennung");
    EXPECT_EQ(ohne[1], "Nennweite");
    EXPECT_EQ(ohne[9], "*****Frei*****");
}

}  // namespace
}  // namespace tessara::test
