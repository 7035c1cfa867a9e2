// Drawings of a directory read in as Blocks, and a Folder's drawings written
// out, over a real library and real directories.
#include "exchange/verzeichnis_austausch.h"

#include <fstream>

#include "authoring/datei_layout.h"
#include "frisches_verzeichnis.h"
#include "organisation/bibliothek.h"
#include "platform/environment.h"
#include "startup/einstellungen.h"
#include "startup/pfade.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

using test::dateiInhalt;

class Zeichnungen : public orgtest::Bibliothek {
  protected:
    fs::path quelle;
    std::string quellePfad;
    void SetUp() override {
        Bibliothek::SetUp();
        quelle = wurzel / "Ventile";
        fs::create_directories(quelle);
        for (int i = 0; i < 200; ++i) {
            char name[16];
            std::snprintf(name, sizeof name, "V%03d.%s", i, i % 7 ? "dwg" : "DWG");
            std::ofstream(quelle / name, std::ios::binary) << "dwg " << i;
        }
        std::ofstream(quelle / "liesmich.txt") << "keine Zeichnung";
        quellePfad = platform::programPath(quelle.string());
    }
    std::string code() const { return fctOhneBlanks(modell->aktuellerOrdner()->OrdnerNr); }
    fs::path zeichnung(const std::string& nr) const {
        return platform::nativePath(basis + fctZeichnungDatei(code(), nr, 0));
    }
};

TEST_F(Zeichnungen, EveryDrawingBecomesABlockInTheNextFreeSlotWithPagesAsNeeded) {
    ASSERT_TRUE(modell->fctOrdnerWaehlen("000"));
    const int proSeite = modell->slotsProSeite();
    ASSERT_LT(proSeite, 200);
    // Slot 1 holds a Block already: the drawings go around it.
    ausfuehren("INSERT INTO tblBlockInfo (Block, OrdnerID) VALUES ('0000001', 1)");
    EXPECT_EQ(fctVerzeichnisEinlesen(z, *modell, quellePfad, "Ventile"), 200);
    ASSERT_EQ(modell->aktuellerOrdner()->OrdnerName, "Ventile");
    const std::string n = std::to_string(modell->aktuellerOrdner()->Nr);
    EXPECT_EQ(
        zeilen("SELECT Count(*), Min(M0), Max(BlkName0) FROM tblBlockInfo WHERE OrdnerID = " + n),
        std::vector<std::string>{"200|V000|V199"});
    const auto nummern =
        zeilen("SELECT Block FROM tblBlockInfo WHERE OrdnerID = " + n + " AND M0 = 'V007'");
    ASSERT_EQ(nummern.size(), 1u);
    EXPECT_EQ(dateiInhalt(zeichnung(nummern[0])), "dwg 7");
    const long seiten = (200 + proSeite - 1) / proSeite;
    const auto namen =
        zeilen("SELECT SeitenName FROM tblSeiten WHERE NrTblOrdner = " + n + " ORDER BY SeitenNr");
    ASSERT_EQ(static_cast<long>(namen.size()), seiten);
    EXPECT_EQ(namen[0], "Ventile");
    EXPECT_EQ(namen[1], "Ventile-1");

    // Into the same Folder again: the next drawings take the slots after them.
    EXPECT_EQ(fctZeichnungenEinlesen(z, *modell, {quellePfad + "\\V001.dwg"}, "Ventile", "x"), 1);
    EXPECT_EQ(zeilen("SELECT Max(Block) FROM tblBlockInfo WHERE OrdnerID = " + n),
              std::vector<std::string>{code() + "0200"});
}

TEST_F(Zeichnungen, CancelStopsBetweenTwoDrawingsAndNoRecordLacksItsFile) {
    benutzer.abbrechenBei = 50;
    EXPECT_EQ(fctVerzeichnisEinlesen(z, *modell, quellePfad, "Ventile"), 50);
    for (const auto& nr : zeilen("SELECT Block FROM tblBlockInfo"))
        EXPECT_TRUE(fs::exists(zeichnung(nr))) << nr;
    EXPECT_EQ(zeilen("SELECT Count(*) FROM tblBlockInfo"), std::vector<std::string>{"50"});
    EXPECT_EQ(fctVerzeichnisEinlesen(z, *modell, platform::programPath((wurzel / "leer").string()),
                                     "Ventile"),
              -1);
    EXPECT_NE(gezeigt().back().find(m(kMsgKeineZeichnungen)), std::string::npos);
}

TEST_F(Zeichnungen, WrittenOutUnderTheirAttributeWithoutOverwritingAndWithACsv) {
    benutzer.abbrechenBei = 3;
    ASSERT_EQ(fctVerzeichnisEinlesen(z, *modell, quellePfad, "Ventile"), 3);
    ausfuehren("UPDATE tblBlockInfo SET M0 = 'Kugel;hahn' WHERE M0 <> 'V002'");
    benutzer.abbrechenBei = -1;
    const fs::path aus = wurzel / "aus";
    fs::create_directories(aus);
    std::ofstream(aus / "V002.dwg") << "fremd";
    EXPECT_EQ(fctZeichnungenAusgeben(z, *modell, code(), platform::programPath(aus.string())), 3);
    EXPECT_EQ(dateiInhalt(aus / "V002.dwg"), "fremd");
    EXPECT_EQ(dateiInhalt(aus / "V002 (2).dwg"), "dwg 2");
    EXPECT_EQ(dateiInhalt(aus / "Kugel;hahn (2).dwg"), "dwg 1");
    const std::string csv = dateiInhalt(aus / "Ventile.csv");
    EXPECT_EQ(csv.substr(0, 3), "\xEF\xBB\xBF");
    EXPECT_NE(csv.find("\r\n\"Kugel;hahn (2).dwg\";" + code() + "0001;V001;\"Kugel;hahn\";;"),
              std::string::npos)
        << csv;
    EXPECT_EQ(IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "sSpalteDateiNameExport"), "M0");
}

}  // namespace
}  // namespace tessara
