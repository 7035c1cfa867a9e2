// End to end: new Blocks, Views and Variants made through the script channel
// from objects the user picks in the simulated host, on a real library in a
// temporary directory, and the moves and insertions that follow them. A
// helper thread plays the user's hand in the host through XTest.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "authoring/code_tabelle.h"
#include "authoring/slide_library.h"
#include "cad/block_einfuegen.h"
#include "cad/einfuege_texte.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "e2e_hilfen.h"
#include "editing/ansichten.h"
#include "editing/block_befehle.h"
#include "editing/block_neu.h"
#include "editing/einfuegepunkte.h"
#include "editing/varianten.h"
#include "library/bibliothek_sitzung.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "platform/environment.h"
#include "platform/platform.h"
#include "platform/system_clock.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class BearbeitenE2E : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        if (HasFatalFailure()) return;
        fs::create_directories(verzeichnis / "c" / "Programm");
        fs::create_directories(verzeichnis / "c" / "Bib");
        z.strAppPfad = "c:\\Programm";
        z.strIniDatei = "c:\\Programm\\Tessara9.0.ini";
        std::ofstream(verzeichnis / "c" / "Programm" / "txtPrefix.txt", std::ios::binary)
            << fctCodeTabelleText();
        ASSERT_TRUE(Mk_Datenbank(z, db::jetOpener(platform::nativePath), "c:\\Bib\\dbTessara.mdb"));
        sitzung = std::make_unique<BibliothekSitzung>(z, db::jetOpener(platform::nativePath));
        ASSERT_TRUE(sitzung->modell().fctCodeTabelleLesen("c:\\Programm\\txtPrefix.txt"));
        ASSERT_EQ(sitzung->fctOeffnen("c:\\Bib\\dbTessara.mdb").lngMeldung, 0);
        sitzung->fctPositionSetzen(1);
        sitzung->setup().longAbfrageBlocknameBeimErzeugen = 0;
        ASSERT_TRUE(simhostStarten(host, "AutoCAD LT 2015 - [Zeichnung1.dwg]", log, desktop));
        bool lt = false;
        ASSERT_TRUE(ACAD_Connect(z, v, false, true, lt));
    }
    void TearDown() override {
        sitzung.reset();
        HostTest::TearDown();
    }
    // The user's hand for one -WBLOCK: base point, the objects at the
    // picks, and the right click that ends the selection. Waits for the
    // n-th -WBLOCK of the session.
    std::thread waehlt(std::vector<std::pair<int, int>> picks, int n = 1) {
        return std::thread([this, picks, n] {
            warteAufAnzahl("WBLOCK WARTET AUF BASISPUNKT", n, 30s);
            const int vorher = anzahl(lesen(log), "GEWAEHLT ");
            klickenBis(1, 200, 299, "WBLOCK WAEHLT OBJEKTE");
            for (std::size_t i = 0; i < picks.size(); ++i)
                Hand().klick(1, picks[i].first, picks[i].second, [&] {
                    warteAufAnzahl("GEWAEHLT ", vorher + static_cast<int>(i) + 1);
                });
            Hand().klick(3, 300, 200, desktop.haltenBisGesehen(platform::Key::RightButton));
        });
    }
    static int anzahl(const std::string& text, const std::string& was) {
        int n = 0;
        for (auto p = text.find(was); p != std::string::npos; p = text.find(was, p + 1)) ++n;
        return n;
    }
    // Waits, bounded, until the host logged `was` n times.
    void warteAufAnzahl(const std::string& was, int n, std::chrono::seconds grenze = 20s) {
        warteBis([&] { return anzahl(lesen(log), was) >= n; }, grenze);
    }
    typAenderung neu(NeuArt art) { return befehle().fctNeu(art, v); }
    BlockBefehle befehle() { return BlockBefehle(z, *sitzung); }
    std::string nr() const { return sitzung->modell().seitenSlots()[1].strBlockNr; }
    fs::path bib() const { return verzeichnis / "c" / "Bib"; }
    std::vector<std::string> zeilen(const std::string& sql) {
        db::Recordset rs;
        rs.open(sql, sitzung->modell().datenbank().con);
        std::vector<std::string> r;
        for (; !rs.eof(); rs.moveNext()) {
            std::string zeile;
            for (int i = 0; i < rs.fieldCount(); ++i)
                zeile += (i ? "|" : "") + (rs.value(i).isNull() ? "" : rs.value(i).toString());
            r.push_back(zeile);
        }
        return r;
    }
    std::vector<std::string> eintraege(const fs::path& bibliothek) const {
        const auto b = slide::SlideLibrary::readFile(bibliothek.string());
        std::vector<std::string> r;
        for (const auto& e : b.entries()) r.push_back(e.name);
        return r;
    }
    std::unique_ptr<BibliothekSitzung> sitzung;
};

// "Neu": the host writes the drawing and the slide, the library holds "0A",
// the record stands in the slot, the working directory is gone. The free
// slot still held the files of a record deleted by hand: the new Block's
// drawing and library take their place. The user first ends the selection
// with Enter and nothing picked: the host asks, "j" lets the user pick again,
// and the Block is made from the second selection.
TEST_F(BearbeitenE2E, NeuerBlock) {
    fs::create_directories(bib() / "000" / "Block");
    std::ofstream(bib() / "000" / "Block" / (nr() + "0.dwg")) << "ALT";
    std::ofstream(bib() / "000" / (nr() + "0.slb")) << "ALT";
    std::thread hand([&] {
        if (!warteAufLog(log, "WBLOCK WARTET AUF BASISPUNKT")) return;
        klickenBis(1, 200, 299, "WBLOCK WAEHLT OBJEKTE");
        Hand().enter();
        if (!warteAufLog(log, "FRAGE Sie haben kein Objekt gewählt! Wiederholen? [<J>/N]:")) return;
        Hand().buchstabe('j');
        Hand().enter();
        warteAufAnzahl("WBLOCK WAEHLT OBJEKTE", 2);
        klickenBis(1, 320, 199, "GEWAEHLT ");
        Hand().klick(3, 300, 200, desktop.haltenBisGesehen(platform::Key::RightButton));
    });
    EXPECT_EQ(neu(NeuArt::Block), kSeiteGeaendert | kAnsichtenGeaendert) << lesen(log);
    hand.join();
    const std::string n = nr();
    EXPECT_EQ(zeilen("SELECT Block, SlideLib, BlkName0 FROM tblBlockInfo"),
              std::vector<std::string>{n + "|000\\" + n + "0.slb|" + n});
    EXPECT_EQ(lesen(bib() / "000" / "Block" / (n + "0.dwg")),
              "SIMHOST ZEICHNUNG\nBASIS 200,100,0\nOBJEKT 5 LINIE farbe=3 layer=0\n"
              "LINIE 200 100 440 300 3\n");
    EXPECT_EQ(eintraege(bib() / "000" / (n + "0.slb")), std::vector<std::string>{"0A"});
    EXPECT_TRUE(sitzung->modell().seitenSlots()[1].booBelegt);
    EXPECT_FALSE(fs::exists(verzeichnis / "c" / "temp" / "TessaraNeu"));
    ASSERT_TRUE(warteAufLog(log, "UNDO ZURUECK")) << lesen(log);
}

// A Block with a second View and a Variant, each picked in the host: the
// View's drawing "1", library "1A", BlkName1; the Variant's drawing below
// "Block\Varia\", its row and its record. The View marked in the strip is
// then the one inserted: its drawing, its name.
TEST_F(BearbeitenE2E, AnsichtUndVarianteNeuMarkierteAnsichtEingefuegt) {
    for (const auto& [art, x, y] :
         std::vector<std::tuple<NeuArt, int, int>>{{NeuArt::Block, 320, 199},
                                                   {NeuArt::Ansicht, 441, 200},
                                                   {NeuArt::Variante, 320, 100}}) {
        if (art == NeuArt::Variante) benutzer.namen = {"Kreuz"};
        auto hand = waehlt({{x, y}}, static_cast<int>(art) + 1);
        ASSERT_NE(neu(art), kNichtsGeaendert) << lesen(log);
        hand.join();
    }
    const std::string n = nr();
    EXPECT_EQ(eintraege(bib() / "000" / (n + "1.slb")), std::vector<std::string>{"1A"});
    EXPECT_NE(lesen(bib() / "000" / "Block" / (n + "1.dwg")).find("OBJEKT 2 LINIE"),
              std::string::npos);
    EXPECT_EQ(zeilen("SELECT BlkName1 FROM tblBlockInfo"), std::vector<std::string>{n + "_1"});
    EXPECT_EQ(zeilen("SELECT BlockName, BlockDateiName FROM tblVariationBloecke"),
              std::vector<std::string>{"Kreuz|" + n + "_1"});
    EXPECT_NE(lesen(bib() / "000" / "Block" / "Varia" / (n + "_10.dwg")).find("SIMHOST ZEICHNUNG"),
              std::string::npos);
    EXPECT_EQ(fs::file_size(bib() / "000" / "Block" / "Varia" / (n + ".dat")), 248u);

    sitzung->setEinzufuegendeAnsicht(1);
    auto auftrag = EinzufuegendeAnsichtBestimmenUndRsEinlesen(z, *sitzung);
    ASSERT_TRUE(auftrag);
    EXPECT_EQ(auftrag->ansicht, 1);
    EinfuegeAnfrage a;
    a.strBibliothek = "c:\\Bib\\";
    a.optionen.checkBlock = 1;
    a.auftraege = {*auftrag};
    std::thread hand([&] {
        if (warteAufLog(log, "INSERT WARTET AUF PUNKT"))
            Hand().klick(1, 120, 150, desktop.haltenBisGesehen(platform::Key::LeftButton));
    });
    EXPECT_EQ(fctBlockEinfuegen(z, v, typCadEinstellungen{}, a).eingefuegt, 1);
    hand.join();
    ASSERT_TRUE(warteAufLog(log, "INSERT block=")) << lesen(log);
    EXPECT_NE(
        lesen(log).find("INSERT block=" + n + "_11 datei=c:\\Bib\\000\\Block\\" + n + "1.dwg"),
        std::string::npos)
        << lesen(log);
}

}  // namespace
}  // namespace tessara::test
