// The navigation model and the library session over real .mdb files made by
// Mk_Datenbank in a temporary directory, with the shipped code table.
#include <filesystem>
#include <fstream>

#include "authoring/code_tabelle.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "library/bibliothek_sitzung.h"
#include "library/schema.h"
#include "organisation/bibliothek.h"
#include "platform/environment.h"
#include "tabelle.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

class Navigation : public orgtest::Bibliothek {
  protected:
    void SetUp() override {
        Bibliothek::SetUp();
        // Folder 1 "000" comes with the database; Folder 2 "001" holds Blocks
        // at absolute slots 0, 9 and 17, slot 9 marked.
        ausfuehren(
            "INSERT INTO tblOrdner (OrdnerNr, Ordnername, OrdnerRechte, NrTblDefMenue) "
            "VALUES ('001', 'Armaturen', 'Alle', 1)");
        block("0010000", "001\\00100000.slb", "Kugelhahn");
        block("0010009", "001\\00100090.sld", "Schieber");
        block("0010017", "001\\00100170.slb", "Flansch");
        ausfuehren("INSERT INTO tblMarkierteBloecke (BlockNr) VALUES ('0010009')");
        for (auto [nr, name] : {std::pair{1, "Zeta"}, {2, "Alpha"}, {3, "10"}})
            ausfuehren("INSERT INTO tblSeiten (SeitenNr, SeitenName, NrTblOrdner) VALUES (" +
                       std::to_string(nr) + ", '" + name + "', 2)");
    }
    void block(const std::string& nr, const std::string& slideLib, const std::string& m0) {
        ausfuehren("INSERT INTO tblBlockInfo (Block, SlideLib, OrdnerID, BlkName0, M0) VALUES ('" +
                   nr + "', '" + slideLib + "', 2, 'B" + nr + "', '" + m0 + "')");
    }
    // A model on the library with Folder code `ordner` current.
    NavigationsModell& oeffnen(const std::string& ordner = "001", long bilder = 1) {
        EXPECT_TRUE(m.fctCodeTabelleLesen(z.strAppPfad + "\\txtPrefix.txt"));
        EXPECT_TRUE(m.fctDatenbankOeffnen(db));
        EXPECT_TRUE(m.OrdnerInArrayEinlesen());
        EXPECT_TRUE(m.fctOrdnerWaehlen(ordner));
        EXPECT_TRUE(m.BilderAnzeigenBeiGeaenderterBilderanzahl(bilder));
        return m;
    }
    static std::string pfad(const fs::path& p) { return platform::programPath(p.string()); }
    // A further library directory holding a new catalogue.
    std::string bibliothek(const std::string& name) {
        fs::create_directories(wurzel / name);
        const std::string d = pfad(wurzel / name / "dbTessara.mdb");
        EXPECT_TRUE(Mk_Datenbank(z, oeffner, d));
        return d;
    }
    // A session with the code table read, nothing open.
    BibliothekSitzung& sitzung() {
        EXPECT_TRUE(s.modell().fctCodeTabelleLesen(z.strAppPfad + "\\txtPrefix.txt"));
        return s;
    }

    NavigationsModell m{z, oeffner};
    BibliothekSitzung s{z, oeffner};
};

TEST_F(Navigation, EveryPictureSizeOfAnEmptyFolderIsAFullGridOfFreeSlots) {
    oeffnen("000");
    const int erwartet[8] = {4, 9, 16, 20, 20, 36, 36, 72};
    for (long i = 0; i < 8; ++i) {
        ASSERT_TRUE(m.BilderAnzeigenBeiGeaenderterBilderanzahl(i));
        ASSERT_EQ(m.seitenSlots().size(), static_cast<std::size_t>(erwartet[i])) << "index " << i;
        for (const auto& slot : m.seitenSlots()) {
            EXPECT_FALSE(slot.booBelegt);
            EXPECT_EQ(slot.strBeschriftung, "*****Frei*****");
            EXPECT_EQ(slot.strBildname, z.strAppPfad + "\\frei2.sld");
        }
    }
}

TEST_F(Navigation, BlocksLandByTheirAbsoluteSlotUnderEverySlotCount) {
    oeffnen();
    struct Fall {
        long bilder, seite;
        int position;
        std::string block, bild;
    };
    const Fall faelle[] = {
        {1, 0, 0, "0010000", "001\\00100000.slb(0A)"},
        {1, 1, 0, "0010009", "001\\00100090.sld"},      // 9 slots: Page 2 starts at code entry 9
        {2, 1, 1, "0010017", "001\\00100170.slb(0A)"},  // 16 slots: entry 17 is Page 2, slot 1
        {0, 4, 1, "0010017", "001\\00100170.slb(0A)"},
    };
    for (const auto& f : faelle) {
        ASSERT_TRUE(m.BilderAnzeigenBeiGeaenderterBilderanzahl(f.bilder));
        ASSERT_TRUE(m.GeheZuSeite(f.seite));
        const auto& slot = m.seitenSlots()[f.position];
        EXPECT_TRUE(slot.booBelegt) << f.block;
        EXPECT_EQ(slot.strBlockNr, f.block);
        EXPECT_EQ(slot.strBildname, basis + f.bild);
        EXPECT_EQ(slot.booMarkiert, f.block == "0010009");
        EXPECT_EQ(m.lisBlockBenennungAktualisieren()[f.position], f.block);
    }
}

TEST_F(Navigation, OnlyTheCurrentPageIsLookedUp) {
    oeffnen("001", 2);
    const long vorher = m.lngFinds();
    ASSERT_TRUE(m.GeheZuSeite(2));
    EXPECT_EQ(m.lngFinds() - vorher, 16);
    ASSERT_EQ(m.aryBlocknummern().size(), 48u);
    EXPECT_EQ(m.aryBlocknummern()[17], "0010017");  // numbered, not looked up
    EXPECT_EQ(m.aryBlocknummern()[47], "0010047");
    EXPECT_EQ(m.seitenSlots().front().strBlockNr, "0010032");
}

TEST_F(Navigation, AFolderReadPageFirstHoldsThatPageAndTheRestWhenLeftOrAsked) {
    oeffnen("000", 1);
    const auto& rs = m.datenbank().rsBlockInfo0;
    for (bool flip : {true, false}) {
        m.setSeiteZuerst(true);
        ASSERT_TRUE(m.fctOrdnerWaehlen("001"));
        EXPECT_TRUE(m.booNurSeiteGelesen());
        EXPECT_EQ(rs.recordCount(), 1);  // 0010000 of 0010000..0010008
        EXPECT_TRUE(m.seitenSlots()[0].booBelegt);
        if (flip)
            ASSERT_TRUE(m.GeheZuSeite(1));
        else
            ASSERT_TRUE(m.fctOrdnerVollstaendigEinlesen());
        EXPECT_FALSE(m.booNurSeiteGelesen());
        EXPECT_EQ(rs.recordCount(), 3);
        EXPECT_TRUE(m.seitenSlots()[0].booBelegt);
        EXPECT_EQ(m.seitenSlots()[0].strBlockNr, flip ? "0010009" : "0010000");
    }
}

TEST_F(Navigation, PagesAreListedByNameAndIndexedByNumber) {
    oeffnen();
    std::vector<std::string> namen;
    for (const auto& e : m.seitenListe()) namen.push_back(e.SeitenName);
    EXPECT_EQ(namen, (std::vector<std::string>{"10", "Alpha", "Zeta"}));
    ASSERT_GE(m.arySeiten().size(), 3u);
    EXPECT_EQ(m.arySeiten()[0], "Zeta");
    EXPECT_EQ(m.arySeiten()[2], "10");
}

TEST_F(Navigation, PagingJumpingAndBackToTheLastFilledPage) {
    oeffnen("000", 1);
    EXPECT_FALSE(m.combutZurueck());  // already on the first Page
    EXPECT_TRUE(m.fctAufOrdnerUndSeiteSpringen("001", "0010017"));
    EXPECT_EQ(m.aktuellerOrdner()->OrdnerName, "Armaturen");
    EXPECT_EQ(m.intSeite(), 1);
    EXPECT_EQ(m.intPosition(), 8);
    EXPECT_EQ(m.fctSeiteNrErmitteln("0010017"), 1);
    EXPECT_TRUE(m.fctBlockAufSeiteVorhanden(1));
    EXPECT_FALSE(m.fctBlockAufSeiteVorhanden(2));
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(m.combutVor());
    EXPECT_EQ(m.intSeite(), 4);
    ASSERT_TRUE(m.combutZurueckAnfang());
    EXPECT_EQ(m.intSeite(), 1);
    const long letzte = kCodeTabelleLaenge / 9 - 1;  // the last Page all of whose slots have codes
    EXPECT_TRUE(m.GeheZuSeite(letzte));
    EXPECT_FALSE(m.GeheZuSeite(letzte + 1));
    EXPECT_EQ(m.intSeite(), letzte) << "a refused Page leaves the current one";
}

TEST_F(Navigation, PagingKeepsTheSlotOnlyWhenSetAndMissingSlidesAreToldOnce) {
    typSetupWerte w;
    m.setSetupWerte(&w);
    oeffnen("001", 1);
    for (const auto& [behalten, erwartet] : {std::pair{0, 0}, {1, 4}}) {
        w.lonPosSeitenWechsel = behalten;
        m.subPositionSetzen(4);
        ASSERT_TRUE(m.combutVor());
        EXPECT_EQ(m.intPosition(), erwartet) << "forward, keep " << behalten;
        m.subPositionSetzen(4);
        ASSERT_TRUE(m.combutZurueck());
        EXPECT_EQ(m.intPosition(), erwartet) << "back, keep " << behalten;
    }
    // The slides of the library do not exist: without the check nobody
    // looks; with it each missing one is told once, however often its Page
    // is shown.
    EXPECT_TRUE(benutzer.gezeigt.empty());
    w.longSlideUeberpruefen = 1;
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(m.combutVor());
        ASSERT_TRUE(m.combutZurueck());
    }
    ASSERT_TRUE(m.subSeiteNeuAnzeigen());
    ASSERT_EQ(benutzer.gezeigt.size(), 2u);
    EXPECT_NE(benutzer.gezeigt[0].text.find("0010009  " + basis + "001\\00100090.sld"),
              std::string::npos)
        << benutzer.gezeigt[0].text;
    EXPECT_NE(benutzer.gezeigt[1].text.find("0010000  " + basis + "001\\00100000.slb(0A)"),
              std::string::npos)
        << benutzer.gezeigt[1].text;
    EXPECT_TRUE(m.seitenSlots()[0].booDiaFehlt);
    EXPECT_FALSE(m.seitenSlots()[1].booDiaFehlt) << "a free slot has no slide to miss";
}

TEST_F(Navigation, DoubleClickActsByTheSetting) {
    oeffnen();
    EXPECT_EQ(m.fctDoppelklick(0, 1), DoppelklickAktion::Einfuegen);
    EXPECT_EQ(m.fctDoppelklick(0, 3), DoppelklickAktion::Vollbild);
    EXPECT_EQ(m.fctDoppelklick(0, 0), DoppelklickAktion::Nichts);
    EXPECT_EQ(m.fctListeDoppelklick(1, 1), DoppelklickAktion::Nichts);  // a free entry
    auto markiert = [&] {
        db::Connection con(oeffner);
        con.open(fctJetVerbindung(db));
        db::Recordset rs;
        rs.open("SELECT * FROM tblMarkierteBloecke WHERE BlockNr = '0010000'", con);
        return rs.recordCount();
    };
    EXPECT_EQ(m.fctDoppelklick(0, 2), DoppelklickAktion::Markieren);
    EXPECT_TRUE(m.seitenSlots()[0].booMarkiert);
    EXPECT_EQ(markiert(), 1);
    m.fctDoppelklick(0, 2);
    EXPECT_FALSE(m.seitenSlots()[0].booMarkiert);
    EXPECT_EQ(markiert(), 0);
}

TEST_F(Navigation, FoldersFollowTheSortSettingAndTheUsersRights) {
    ausfuehren("UPDATE tblOrdner SET OrdnerRechte = 'meier;MUELLER' WHERE OrdnerNr = '001'");
    ausfuehren(
        "INSERT INTO tblOrdner (OrdnerNr, Ordnername, OrdnerRechte) VALUES ('002', 'Anker', "
        "'Alle')");
    m.setOrdnerSortieren(true);
    m.setOrdnerFilter([](const std::string& rechte) { return rechte == "Alle"; });
    oeffnen("000");
    std::vector<std::string> namen;
    for (const auto& o : m.aryOrdner()) namen.push_back(o.OrdnerName);
    EXPECT_EQ(namen, (std::vector<std::string>{"Anker", "Standard-Ordner"}));
    EXPECT_EQ(m.fctOrdnerIndex("Standard-Ordner"), 1);
    EXPECT_FALSE(m.fctOrdnerWaehlen("001"));
}

TEST_F(Navigation, BadInputIsRefusedWithoutThrowing) {
    fehlerErwartet = true;
    std::ofstream(wurzel / "prog" / "kurz.txt") << "000\r\n001\r\n";
    EXPECT_FALSE(m.fctCodeTabelleLesen(z.strAppPfad + "\\kurz.txt"));
    EXPECT_FALSE(m.fctCodeTabelleLesen(z.strAppPfad + "\\fehlt.txt"));
    std::ofstream(wurzel / "lib" / "kaputt.mdb", std::ios::binary) << std::string(4096, '\xff');
    EXPECT_FALSE(m.fctDatenbankOeffnen(basis + "kaputt.mdb"));
    EXPECT_FALSE(m.fehlerText().empty());
    EXPECT_FALSE(m.offen());
    EXPECT_FALSE(m.combutVor());
}

TEST_F(Navigation, SessionAFailedOpeningIsToldByNumberAndLeavesNoLibraryOpen) {
    fehlerErwartet = true;
    const std::string fehlt = pfad(wurzel / "gibtsnicht");
    typOeffnenErgebnis r = sitzung().fctOeffnen(fehlt + "\\dbTessara.mdb");
    EXPECT_EQ(r.lngMeldung, kMsgVerzeichnisFehlt);
    EXPECT_EQ(r.strPfad, fehlt);

    fs::create_directories(wurzel / "kaputt");
    std::ofstream(wurzel / "kaputt" / "dbTessara.mdb", std::ios::binary) << std::string(4096, 'x');
    const std::string kaputt = pfad(wurzel / "kaputt" / "dbTessara.mdb");
    r = s.fctOeffnen(kaputt);
    EXPECT_EQ(r.lngMeldung, kMsgBibliothekNichtOeffnen);
    EXPECT_EQ(r.strPfad, kaputt);
    EXPECT_EQ(r.lngGrund, kMsgDateiBeschaedigt);
    EXPECT_FALSE(s.modell().offen());
    EXPECT_EQ(s.strDbVerzeichnis(), "");

    // A directory without a catalogue gets a new one.
    fs::create_directories(wurzel / "neu");
    EXPECT_TRUE(s.fctOeffnen(pfad(wurzel / "neu" / "dbTessara.mdb")).ok());
    EXPECT_TRUE(fs::exists(wurzel / "neu" / "dbTessara.mdb"));
    EXPECT_EQ(s.strDbVerzeichnis(), pfad(wurzel / "neu"));
}

TEST_F(Navigation, SessionSwitchingByDirectoryJoinsTheListOnceAndReplacesAFirstStartPlaceholder) {
    sitzung();
    const std::string a = bibliothek("a"), b = bibliothek("b");
    z.aryDbVerzeichnis = {""};
    ASSERT_TRUE(s.fctWechseln(pfad(wurzel / "a") + "\\").ok());
    ASSERT_TRUE(s.fctWechseln(b).ok());
    ASSERT_TRUE(s.fctWechseln(pfad(wurzel / "a")).ok());
    EXPECT_EQ(s.datenbankListe(),
              (std::vector<std::string>{pfad(wurzel / "a"), pfad(wurzel / "b")}));
    EXPECT_EQ(z.strAktuelleDb, a);
    EXPECT_TRUE(s.modell().offen());
}

TEST_F(Navigation, SessionADatabaseFileMarkedReadOnlyWriteProtectsTheLibrary) {
    const std::string d = bibliothek("a");
    ASSERT_TRUE(sitzung().fctOeffnen(d).ok());
    EXPECT_FALSE(s.schreibgeschuetzt());
    fs::permissions(wurzel / "a" / "dbTessara.mdb",
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    ASSERT_TRUE(s.fctOeffnen(d).ok());
    EXPECT_TRUE(s.schreibgeschuetzt());
}

TEST_F(Navigation, SessionEachLibraryComesBackWhereItWasLeft) {
    const std::string a = bibliothek("a"), b = bibliothek("b");
    ASSERT_TRUE(sitzung().fctOeffnen(a).ok());
    ASSERT_TRUE(s.modell().GeheZuSeite(2));
    s.modell().subPositionSetzen(5);
    ASSERT_TRUE(s.fctOeffnen(b).ok());
    EXPECT_EQ(s.modell().intSeite(), 0);
    ASSERT_TRUE(s.fctOeffnen(a).ok());
    EXPECT_EQ(s.modell().intSeite(), 2);
    EXPECT_EQ(s.modell().intPosition(), 5);
}

TEST_F(Navigation, SessionArrowKeysHomeAndEndStayOnThePage) {
    ASSERT_TRUE(sitzung().fctOeffnen(bibliothek("a")).ok());
    ASSERT_TRUE(s.modell().BilderAnzeigenBeiGeaenderterBilderanzahl(2));  // 16 slots, 4 a row
    for (const auto& f : test::tabelle("library/golden/rastertasten.txt")) {
        s.modell().subPositionSetzen(std::stoi(f.at(0)));
        EXPECT_EQ(s.fctRasterZiel(static_cast<RasterTaste>(std::stoi(f.at(1)))), std::stoi(f.at(2)))
            << "from " << f[0] << " key " << f[1];
    }
}

}  // namespace
}  // namespace tessara
