// Attaching and detaching libraries, the database a start opens, and what
// older versions left: missing tables and columns, absolute slide paths,
// Inventor block tables and the older version's own database. Real .mdb
// files in a temporary directory; the older ones are built here.
#include "library/bibliotheken.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "authoring/code_tabelle.h"
#include "authoring/dateien_operationen.h"
#include "db/catalog.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "frisches_verzeichnis.h"
#include "library/bibliothek_sitzung.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "library/zugriff.h"
#include "organisation/bibliothek.h"
#include "platform/environment.h"
#include "search/datenbank_suche.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

class Bibliotheken : public orgtest::Bibliothek {
  protected:
    void SetUp() override {
        Bibliothek::SetUp();
        fehlerErwartet = true;  // the log holds the debug labels
        z.booDebug = true;
        z.aryDbVerzeichnis = {"0"};
    }
    static std::string pfad(const fs::path& p) { return platform::programPath(p.string()); }
    std::string verzeichnis(const std::string& name) {
        return fs::create_directories(wurzel / name), pfad(wurzel / name);
    }
    std::string ini(int i) {
        return IniGetValue(z, z.strIniDatei, "AllgemeineDaten",
                           "DbVerzeichnis" + std::to_string(i));
    }
    std::vector<std::string> spalte(const std::string& mdb, const std::string& sql) {
        db::Connection con(oeffner);
        con.open(fctJetVerbindung(mdb));
        db::Recordset rs;
        rs.open(sql, con);
        std::vector<std::string> r;
        for (; rs.recordCount() > 0 && !rs.eof(); rs.moveNext())
            r.push_back(rs.value(0).toString());
        return r;
    }
    // A library as an older version left it: no tblMarkierteBloecke, no
    // tblVariationBloecke, tblBlockInfo (or the Inventor table) with a few
    // columns and one of its own, Folder 5 "007" with two Blocks whose slide
    // paths are absolute.
    std::string alteBibliothek(const std::string& dir, const std::string& datei,
                               bool inventor = false) {
        const std::string mdb = dir + "\\" + datei;
        db::Catalog kat;
        kat.create(fctJetVerbindung(mdb), oeffner);
        auto tabelle = [&](const std::string& name, std::vector<typSpalte> spalten) {
            db::CatalogTable t;
            t.name = name;
            t.appendColumn("Nr", db::adInteger).autoIncrement = true;
            for (auto& sp : spalten) t.appendColumn(sp.name, sp.typ, sp.groesse).nullable = true;
            t.keys.push_back({"PrimaryKey", db::adKeyPrimary, {"Nr"}, {}, {}});
            kat.appendTable(t);
        };
        tabelle("tblOrdner",
                {{"OrdnerNr", db::adVarWChar, 3}, {"Ordnername", db::adVarWChar, 100}});
        tabelle("tblSeiten", {{"SeitenNr", db::adInteger, 0}, {"NrTblOrdner", db::adInteger, 0}});
        tabelle("tblDefMenue", {{"global", db::adInteger, 0}});
        const std::vector<typSpalte> block = {{"Block", db::adVarWChar, 144},
                                              {"OrdnerID", db::adInteger, 0},
                                              {"M0", db::adVarWChar, 100},
                                              {"Bemerkung", db::adVarWChar, 50}};
        auto spalten = block;
        spalten.insert(spalten.begin() + 1, inventor ? typSpalte{"BlkName", db::adVarWChar, 32}
                                                     : typSpalte{"SlideLib", db::adVarWChar, 144});
        tabelle(inventor ? "tblBlockInfoInventor" : "tblBlockInfo", spalten);
        db::Connection con(oeffner);
        con.open(fctJetVerbindung(mdb));
        con.execute("INSERT INTO tblOrdner (Nr, OrdnerNr, Ordnername) VALUES (5, '007', 'Alt')");
        con.execute("INSERT INTO tblSeiten (SeitenNr, NrTblOrdner) VALUES (1, 5)");
        con.execute("INSERT INTO tblDefMenue (global) VALUES (1)");
        const std::string t = inventor ? "tblBlockInfoInventor" : "tblBlockInfo";
        const std::string c = inventor ? "BlkName" : "SlideLib";
        con.execute("INSERT INTO " + t + " (Block, " + c + ", OrdnerID, M0, Bemerkung) VALUES " +
                    "('0070000', '" + (inventor ? "Welle" : "C:\\Alt\\Bib\\007\\00700000.slb") +
                    "', 5, 'Kugelhahn', 'x')");
        con.execute("INSERT INTO " + t + " (Block, " + c + ", OrdnerID, M0) VALUES ('0070009', '" +
                    (inventor ? "Nabe" : dir + "\\007\\00700090.sld") + "', 5, 'Schieber')");
        return mdb;
    }
    BibliothekSitzung& sitzung() {
        EXPECT_TRUE(s.modell().fctCodeTabelleLesen(z.strAppPfad + "\\txtPrefix.txt"));
        return s;
    }
    std::string log() const { return test::dateiInhalt(fctNativerPfad(z.strErrorDatei)); }

    BibliothekSitzung s{z, oeffner};
};

TEST_F(Bibliotheken, AttachingADirectoryWithoutDatabaseCreatesOneByTheLabelledSteps) {
    const std::string a = verzeichnis("a"), b = verzeichnis("b");
    int combo = 0;
    ASSERT_TRUE(sitzung().fctAnhaengen(a + "\\", [&] { ++combo; }).ok());
    ASSERT_TRUE(s.fctAnhaengen(b, [&] { ++combo; }).ok());
    ASSERT_TRUE(s.fctAnhaengen(a).ok());  // listed already: it opens, no second entry
    EXPECT_EQ(combo, 2);
    EXPECT_EQ(s.datenbankListe(), (std::vector<std::string>{a, b}));
    EXPECT_EQ((std::vector<std::string>{ini(0), ini(1), ini(2)}),
              (std::vector<std::string>{a, b, ""}));
    EXPECT_EQ(s.strDbVerzeichnis(), a);
    EXPECT_EQ(s.modell().aryOrdner().at(0).OrdnerName, "Standard-Ordner");
    const std::string l = log();
    std::size_t pos = 0;
    for (const char* label :
         {"aryVerzeichnisseDatenbank erweitern", "Datenbank in die Registrierdatenbank abspeichern",
          "Mk_Datenbank ", "alte connections und recordset schließen", "lisBlockBenennung löschen",
          "Imput_Prefix", "ConnectionUndRecordsetOeffnen", "Ordner aktualisieren",
          "Verzeichnis in Combo hinzufügen"}) {
        pos = l.find(label, pos);
        EXPECT_NE(pos, std::string::npos) << label;
    }
    EXPECT_EQ(s.fctAnhaengen(pfad(wurzel / "fehlt")).lngMeldung, kMsgVerzeichnisFehlt);
    EXPECT_EQ(s.datenbankListe().size(), 2u);
}

TEST_F(Bibliotheken, DetachingRenumbersWithoutGapOpensTheNextAndKeepsTheLastLibrary) {
    const std::string a = verzeichnis("a"), b = verzeichnis("b"), c = verzeichnis("c");
    for (const auto& d : {a, b, c}) ASSERT_TRUE(sitzung().fctAnhaengen(d).ok());
    ASSERT_TRUE(s.fctAbhaengen(b).ok());  // not the open one: c stays open
    EXPECT_EQ((std::vector<std::string>{ini(0), ini(1), ini(2)}),
              (std::vector<std::string>{a, c, ""}));
    EXPECT_EQ(s.strDbVerzeichnis(), c);
    ASSERT_TRUE(s.fctAbhaengen(c + "\\").ok());  // the open one, the last: a takes over
    EXPECT_EQ(s.strDbVerzeichnis(), a);
    EXPECT_EQ(z.strAktuelleDb, a + "\\dbTessara.mdb");
    subLesenTessaraIniDatei(z);
    EXPECT_EQ(z.aryDbVerzeichnis, std::vector<std::string>{a});
    EXPECT_EQ(s.fctAbhaengen(a).lngMeldung, kMsgEinzigeBibliothek);
    EXPECT_EQ(s.fctAbhaengen(b).lngMeldung, kMsgNichtInListe);
    benutzer.antworten = {Antwort::Nein};
    ASSERT_TRUE(s.fctAnhaengen(b).ok());
    ASSERT_TRUE(s.fctAbhaengen(a).ok());  // asked, and No keeps it
    EXPECT_EQ(s.datenbankListe().size(), 2u);
    EXPECT_TRUE(fs::exists(wurzel / "c" / "dbTessara.mdb"));  // files stay
}

TEST_F(Bibliotheken, AStartOpensTheCurrentDatabaseOrTheFirstListedOneThatIsThere) {
    const std::string a = verzeichnis("a"), fehlt = pfad(wurzel / "fehlt");
    struct Fall {
        std::vector<std::string> liste;
        std::string aktuell, mdb, fehlt;
    } faelle[] = {
        {{a}, a + "\\dbTessara.mdb", a + "\\dbTessara.mdb", ""},
        {{fehlt, a}, fehlt + "\\dbTessara.mdb", a + "\\dbTessara.mdb", fehlt},
        {{fehlt, a}, "", a + "\\dbTessara.mdb", ""},
        {{"0"}, "", "", ""},
    };
    for (const auto& f : faelle) {
        z.aryDbVerzeichnis = f.liste;
        z.strAktuelleDb = f.aktuell;
        const typDbSuche r = fctVorhandeneDbSuchen(z);
        EXPECT_EQ(r.strDb, f.mdb) << f.aktuell;
        EXPECT_EQ(r.strFehlt, f.fehlt) << f.aktuell;
    }
}

TEST_F(Bibliotheken, SlidePathsAreMadeRelativeToTheFolder) {
    const char* faelle[][3] = {
        {"007\\00700000.slb", "007", "007\\00700000.slb"},
        {"C:\\Alt\\Bib\\007\\00700000.slb", "007", "007\\00700000.slb"},
        {"c:\\bib\\x\\00700000.sld", "007", "x\\00700000.sld"},
        {"D:\\anders\\00700000.sld", "007", "D:\\anders\\00700000.sld"},
        {"", "007", ""},
    };
    for (const auto& f : faelle)
        EXPECT_EQ(fctSlideLibRelativ(f[0], f[1], "C:\\Bib\\"), f[2]) << f[0];
}

TEST_F(Bibliotheken, AnOlderLibraryGetsItsMissingTablesColumnsAndRelativePathsOnOpen) {
    const std::string dir = verzeichnis("alt");
    const std::string mdb = alteBibliothek(dir, "dbTessara.mdb");
    ASSERT_TRUE(sitzung().fctOeffnen(mdb).ok());
    EXPECT_EQ(spalte(mdb, "SELECT SlideLib FROM tblBlockInfo ORDER BY Block"),
              (std::vector<std::string>{"007\\00700000.slb", "007\\00700090.sld"}));
    EXPECT_EQ(benutzer.fortschritte.size(), 2u);  // told, then closed
    for (const char* sql :
         {"SELECT Layer, LyColor, BlkName4, FZ4 FROM tblBlockInfo",
          "SELECT BlockNr FROM tblMarkierteBloecke", "SELECT BlockID FROM tblVariationBloecke",
          "SELECT OrdnerRechte FROM tblOrdner", "SELECT Benennung10 FROM tblDefMenue"})
        EXPECT_NO_THROW(spalte(mdb, sql)) << sql;
    ASSERT_TRUE(s.modell().fctOrdnerWaehlen("007"));
    EXPECT_EQ(s.modell().seitenSlots()[0].strBeschriftung, "Kugelhahn");
    EXPECT_TRUE(s.modell().fctMarkierungSetzen(9, true));
    // Opened again, nothing is left to add or rewrite.
    EXPECT_EQ(fctDatenbankAktualisieren(z, oeffner, mdb), 0);
    ASSERT_TRUE(s.fctOeffnen(mdb).ok());
    EXPECT_EQ(benutzer.fortschritte.size(), 2u);
}

TEST_F(Bibliotheken, AnInventorLibraryOpensBrowsesAndSearchesItsOwnTable) {
    const std::string dir = verzeichnis("inv");
    const std::string mdb = alteBibliothek(dir, "dbTessara.mdb", true);
    ASSERT_TRUE(sitzung().fctOeffnen(mdb).ok());
    EXPECT_EQ(z.strTblBlockInfo, "tblBlockInfoInventor");
    ASSERT_TRUE(s.modell().fctOrdnerWaehlen("007"));
    const auto& slot = s.modell().seitenSlots()[9];
    EXPECT_TRUE(slot.booBelegt);
    EXPECT_EQ(slot.strBlkName0, "Nabe");
    EXPECT_EQ(slot.strSlideLib, "007\\00700090.sld");
    typSuchKriterien k;
    k.txtBenennung[10] = "welle";
    k.chkAnsichtenVarianten = true;
    const auto a = fctDatenbankSuchen(z, s.modell().datenbank().con, k, z.strTblBlockInfo, 5);
    ASSERT_EQ(a.treffer.size(), 1u) << a.strAnweisung;
    EXPECT_EQ(a.treffer[0].SlideLib, "007\\00700000.sld");
    // A library of the other kind opens on its own table again.
    ASSERT_TRUE(s.fctOeffnen(alteBibliothek(verzeichnis("acad"), "dbTessara.mdb")).ok());
    EXPECT_EQ(z.strTblBlockInfo, "tblBlockInfo");
}

TEST_F(Bibliotheken, AnOlderVersionsDatabaseIsImportedIntoANewCatalogueWhenTheUserAgrees) {
    const std::string dir = verzeichnis("t7"), leer = verzeichnis("leer");
    const std::string alt = alteBibliothek(dir, "Tessara7.mdb");
    const auto vorher = test::dateiInhalt(fctNativerPfad(alt));
    ASSERT_TRUE(sitzung().fctAnhaengen(dir).ok());
    EXPECT_NE(benutzer.gezeigt.at(0).text.find(alt), std::string::npos);
    const std::string mdb = dir + "\\dbTessara.mdb";
    EXPECT_EQ(spalte(mdb, "SELECT OrdnerNr FROM tblOrdner"), std::vector<std::string>{"007"});
    EXPECT_EQ(spalte(mdb,
                     "SELECT Bemerkung FROM tblBlockInfo WHERE OrdnerID = 5 AND M0 = "
                     "'Kugelhahn' AND Layer IS NULL"),
              std::vector<std::string>{"x"});
    EXPECT_EQ(spalte(mdb, "SELECT SlideLib FROM tblBlockInfo ORDER BY Block").at(0),
              "007\\00700000.slb");
    EXPECT_EQ(test::dateiInhalt(fctNativerPfad(alt)), vorher);
    // New rows take keys after the imported ones.
    db::Connection con(oeffner);
    con.open(fctJetVerbindung(mdb));
    con.execute("INSERT INTO tblOrdner (OrdnerNr) VALUES ('008')");
    EXPECT_EQ(spalte(mdb, "SELECT Nr FROM tblOrdner WHERE OrdnerNr = '008'"),
              std::vector<std::string>{"6"});
    // No: an empty catalogue beside the older file; a damaged file is no catalogue.
    std::ofstream(wurzel / "leer" / "kaputt.mdb", std::ios::binary) << std::string(4096, 'x');
    alteBibliothek(leer, "Tessara7.mdb");
    benutzer.antworten = {Antwort::Nein};
    ASSERT_TRUE(s.fctAnhaengen(leer).ok());
    EXPECT_EQ(spalte(leer + "\\dbTessara.mdb", "SELECT OrdnerNr FROM tblOrdner"),
              std::vector<std::string>{"000"});
    EXPECT_FALSE(
        fctAlteDatenbankImportieren(z, oeffner, leer + "\\kaputt.mdb", leer + "\\neu.mdb"));
    EXPECT_FALSE(fs::exists(wurzel / "leer" / "neu.mdb"));
}

}  // namespace
}  // namespace tessara
