// Folder export into a file of its own and import into a second library,
// over real .mdb files and real directories.
#include "exchange/ordner_austausch.h"

#include <fstream>

#include "authoring/datei_layout.h"
#include "befehl.h"
#include "db/catalog.h"
#include "editing/varianten_datei.h"
#include "frisches_verzeichnis.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "organisation/bibliothek.h"
#include "organisation/ordner_verwaltung.h"
#include "organisation/schreib_einheit.h"
#include "platform/environment.h"
#include "startup/pfade.h"

namespace tessara {
namespace {

using orgtest::Bibliothek;
namespace fs = std::filesystem;

std::string lesen(const std::string& programmPfad) {
    return test::dateiInhalt(platform::nativePath(programmPfad));
}
void schreiben(const std::string& programmPfad, const std::string& text) {
    fs::create_directories(fs::path(platform::nativePath(programmPfad)).parent_path());
    std::ofstream(platform::nativePath(programmPfad), std::ios::binary) << text;
}

// Relationships enforced and an index descending, as a catalogue that
// Access or another program kept may have them.
void streng(const db::StorageOpener& oeffner, const std::string& datei) {
    db::Connection con(oeffner);
    con.open(fctJetVerbindung(datei));
    con.execute("CREATE INDEX BlockAb ON tblBlockInfo(Block DESC)");
    db::Catalog cat;
    cat.setActiveConnection(con);
    db::CatalogKey k{"strengVariante", db::adKeyForeign, {"BlockID"}, "tblBlockInfo", {"Nr"}};
    k.enforce = true;
    k.deleteRule = db::adRISetNull;
    cat.appendKey("tblVariationBloecke", k);
    k = {"strengSeite", db::adKeyForeign, {"NrTblOrdner"}, "tblOrdner", {"Nr"}};
    k.enforce = true;
    cat.appendKey("tblSeiten", k);
}

class OrdnerAustausch : public Bibliothek {
  protected:
    static constexpr int kBloecke = 300;
    std::string code, datei;

    void SetUp() override {
        Bibliothek::SetUp();
        streng(oeffner, db);
        oeffnen();
        ASSERT_TRUE(fctOrdnerNeu(z, *modell, "Armaturen", &code));
        db::Connection con(oeffner);
        con.open(fctJetVerbindung(db));
        SchreibEinheit einheit(con);
        const auto ausfuehren = [&](const std::string& sql) { con.execute(sql); };
        ausfuehren("INSERT INTO tblDefMenue (Benennung1) VALUES ('Nennweite')");
        ausfuehren("UPDATE tblOrdner SET NrTblDefMenue = 2 WHERE OrdnerNr = '" + code + "'");
        for (int s = 1; s <= 5; ++s)
            ausfuehren("INSERT INTO tblSeiten (SeitenNr, SeitenName, NrTblOrdner) VALUES (" +
                       std::to_string(s) + ", 'S" + std::to_string(s) + "', 2)");
        for (int i = 0; i < kBloecke; ++i) {
            const std::string nr = nummer(code, i);
            ausfuehren("INSERT INTO tblBlockInfo (Block, OrdnerID, SlideLib, M0) VALUES ('" + nr +
                       "', 2, '" + fctSlideLibEintrag(code, nr, true) + "', 'Teil " +
                       std::to_string(i) + "')");
            schreiben(basis + fctDiaBibliothek(code, nr, 0), "dia " + nr);
            schreiben(basis + fctZeichnungDatei(code, nr, 0), "dwg " + nr);
            if (i % 10) continue;
            ausfuehren(
                "INSERT INTO tblVariationBloecke (BlockName, BlockID, BlockDateiName) "
                "SELECT 'V', Nr, '" +
                nr + "_1' FROM tblBlockInfo WHERE Block = '" + nr + "'");
            schreiben(basis + fctVarianteZeichnung(code, nr + "_1", 0), "var " + nr);
            schreiben(basis + fctVariantenVerzeichnis(code) + nr + ".dat",
                      fctVariantenSaetzeBytes({{"V", nr + "_1", 0, {}}}));
        }
        einheit.commit();
        datei = platform::programPath((wurzel / "aus" / "Armaturen.mdb").string());
        fs::create_directories(wurzel / "aus");
    }
    static std::string nummer(const std::string& c, int i) {
        char s[8];
        std::snprintf(s, sizeof s, "0%03d", i);
        return c + s;
    }
};

TEST_F(OrdnerAustausch, RoundTripIntoASecondLibraryRecodesBlocksFilesAndVariants) {
    ASSERT_TRUE(fctOrdnerExportieren(z, *modell, code, datei));
    EXPECT_TRUE(fs::exists(wurzel / "aus" / code / "Block"));
    EXPECT_FALSE(fs::exists(platform::nativePath(datei + ".tmp")));

    // The second library already holds Blocks, so the imported ones get other keys.
    db = platform::programPath((wurzel / "lib2" / "dbTessara.mdb").string());
    basis = platform::programPath((wurzel / "lib2").string()) + "\\";
    fs::create_directories(wurzel / "lib2");
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, db));
    streng(oeffner, db);
    for (int i = 0; i < 7; ++i)
        ausfuehren("INSERT INTO tblBlockInfo (Block, OrdnerID) VALUES ('" + nummer("000", i) +
                   "', 1)");
    oeffnen();
    ASSERT_TRUE(fctOrdnerImportieren(z, *modell, datei, "Lieferant"));
    const auto* o = modell->aktuellerOrdner();
    ASSERT_NE(o, nullptr);
    EXPECT_EQ(o->OrdnerName, "Lieferant");
    const std::string neu = fctOhneBlanks(o->OrdnerNr);
    ASSERT_NE(neu, "000");
    const std::string n = std::to_string(o->Nr);

    EXPECT_EQ(zeilen("SELECT Count(*), Min(Nr), Min(Block), Max(Block) FROM tblBlockInfo WHERE "
                     "OrdnerID = " +
                     n),
              std::vector<std::string>{"300|8|" + nummer(neu, 0) + "|" + nummer(neu, 299)});
    EXPECT_EQ(
        zeilen("SELECT SlideLib, M0 FROM tblBlockInfo WHERE Block = '" + nummer(neu, 42) + "'"),
        std::vector<std::string>{fctSlideLibEintrag(neu, nummer(neu, 42), true) + "|Teil 42"});
    EXPECT_EQ(zeilen("SELECT SeitenNr, SeitenName FROM tblSeiten WHERE NrTblOrdner = " + n +
                     " AND SeitenNr = 5"),
              std::vector<std::string>{"5|S5"});
    // Every Variant points at its own Block's new key and names its new file.
    EXPECT_EQ(zeilen("SELECT Count(*) FROM tblVariationBloecke v INNER JOIN tblBlockInfo b ON "
                     "v.BlockID = b.Nr WHERE v.BlockDateiName = b.Block & '_1' AND b.OrdnerID = " +
                     n),
              std::vector<std::string>{"30"});
    // The imported menu, and last in the sort order.
    EXPECT_EQ(zeilen("SELECT d.Benennung1 FROM tblOrdner o INNER JOIN tblDefMenue d ON "
                     "o.NrTblDefMenue = d.Nr WHERE o.Nr = " +
                     n),
              std::vector<std::string>{"Nennweite"});
    EXPECT_EQ(zeilen("SELECT Max(NrTblOrdnen) FROM tblOrdner WHERE Nr <> " + n),
              std::vector<std::string>{std::to_string(
                  std::stol(zeilen("SELECT NrTblOrdnen FROM tblOrdner WHERE Nr = " + n)[0]) - 1)});

    for (const int i : {0, 150, 299}) {
        const std::string alt = nummer(code, i), nr = nummer(neu, i);
        EXPECT_EQ(lesen(basis + fctZeichnungDatei(neu, nr, 0)), "dwg " + alt);
        EXPECT_EQ(lesen(basis + fctDiaBibliothek(neu, nr, 0)), "dia " + alt);
        if (i % 10) continue;
        EXPECT_EQ(lesen(basis + fctVarianteZeichnung(neu, nr + "_1", 0)), "var " + alt);
        const auto s =
            fctVariantenSaetzeLesen(lesen(basis + fctVariantenVerzeichnis(neu) + nr + ".dat"));
        ASSERT_TRUE(s && s->size() == 1);
        EXPECT_EQ((*s)[0].datei, nr + "_1");
    }

    // Again under the same name: the Folder is replaced, its directory kept aside.
    ASSERT_TRUE(fctOrdnerImportieren(z, *modell, datei, "Lieferant"));
    EXPECT_TRUE(fs::exists(fs::path(platform::nativePath(basis + neu + "geloescht"))));
    EXPECT_EQ(zeilen("SELECT Count(*) FROM tblOrdner WHERE OrdnerName = 'Lieferant'"),
              std::vector<std::string>{"1"});
    EXPECT_EQ(zeilen("SELECT Count(*) FROM tblBlockInfo"), std::vector<std::string>{"307"});
}

TEST_F(OrdnerAustausch, CancelledWorkLeavesNothingHalfAndARerunCompletes) {
    benutzer.abbrechenBei = 100;
    EXPECT_FALSE(fctOrdnerExportieren(z, *modell, code, datei));
    EXPECT_FALSE(fs::exists(platform::nativePath(datei)));
    EXPECT_FALSE(fs::exists(wurzel / "aus" / code));
    // A killed export leaves its ".tmp" file: the next one clears it.
    schreiben(datei + ".tmp", "halb");
    benutzer.abbrechenBei = -1;
    ASSERT_TRUE(fctOrdnerExportieren(z, *modell, code, datei));

    benutzer.abbrechenBei = 200;
    EXPECT_FALSE(fctOrdnerImportieren(z, *modell, datei, "Kopie"));
    EXPECT_EQ(zeilen("SELECT Count(*) FROM tblOrdner WHERE OrdnerName = 'Kopie'"),
              std::vector<std::string>{"0"});
    EXPECT_EQ(zeilen("SELECT Count(*) FROM tblBlockInfo"), std::vector<std::string>{"300"});
    benutzer.abbrechenBei = -1;
    ASSERT_TRUE(fctOrdnerImportieren(z, *modell, datei, "Kopie"));
    EXPECT_EQ(zeilen("SELECT Count(*) FROM tblBlockInfo"), std::vector<std::string>{"600"});
    // The copy's drawings lie under its own code, beside the original's.
    const std::string neu = fctOhneBlanks(modell->aktuellerOrdner()->OrdnerNr);
    EXPECT_EQ(lesen(basis + fctZeichnungDatei(neu, nummer(neu, 7), 0)), "dwg " + nummer(code, 7));
}

// The import killed at points along its way, by a signal that lets it do
// nothing more: the library stays clean, no record names a missing drawing,
// and the import run once more (answering Yes to replacing) completes it.
TEST_F(OrdnerAustausch, KilledImportLeavesACleanLibraryAndARerunCompletesIt) {
    ASSERT_TRUE(fctOrdnerExportieren(z, *modell, code, datei));
    const std::string cli = std::string(TESSARA_CLI) + " ";
    const std::string import = cli + "folder import '" + platform::nativePath(db) + "' '" +
                               platform::nativePath(datei) + "' Zukauf 2>/dev/null";
    for (const char* nach : {"0.05", "0.1", "0.2", "0.4", "0.8"}) {
        test::befehlsAusgabe(std::string("timeout -s KILL ") + nach + " " + import);
        EXPECT_EQ(test::befehlsAusgabe(cli + "check '" + platform::nativePath(db) + "'"),
                  "no faults found\n")
            << nach;
        for (const auto& zeile : zeilen("SELECT o.OrdnerNr, b.Block FROM tblBlockInfo b INNER "
                                        "JOIN tblOrdner o ON b.OrdnerID = o.Nr")) {
            const auto c = fctOhneBlanks(zeile.substr(0, zeile.find('|')));
            const auto nr = zeile.substr(zeile.find('|') + 1);
            ASSERT_TRUE(fs::exists(platform::nativePath(basis + fctZeichnungDatei(c, nr, 0))))
                << nach << " " << nr;
        }
    }
    int rc = -1;
    test::befehlsAusgabe(import, &rc);
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(zeilen("SELECT Count(*) FROM tblBlockInfo b INNER JOIN tblOrdner o ON b.OrdnerID = "
                     "o.Nr WHERE o.OrdnerName = 'Zukauf'"),
              std::vector<std::string>{"300"});
}

TEST_F(OrdnerAustausch, RefusalsSayWhyAndTouchNothing) {
    const std::string voll = platform::programPath((wurzel / "aus" / "voll.mdb").string());
    const std::string leer = platform::programPath((wurzel / "aus" / "leer.mdb").string());
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, voll));
    db::Catalog().create(fctJetVerbindung(leer), oeffner);
    struct Fall {
        bool export_;
        std::string datei, name;
        long meldung;
    } faelle[] = {
        {true, leer, "", kMsgDateiGibtEsSchon},
        {false, leer + "x", "Neu", kMsgDateiNichtGefunden},
        {false, voll, " ", kMsgNameFuerNeuenOrdner},
        {false, leer, "Neu", kMsgKeinExportierterOrdner},
    };
    for (const auto& f : faelle) {
        benutzer.gezeigt.clear();
        EXPECT_FALSE(f.export_ ? fctOrdnerExportieren(z, *modell, code, f.datei)
                               : fctOrdnerImportieren(z, *modell, f.datei, f.name));
        ASSERT_FALSE(gezeigt().empty());
        EXPECT_NE(gezeigt()[0].find(m(f.meldung)), std::string::npos) << gezeigt()[0];
    }
}

}  // namespace
}  // namespace tessara
