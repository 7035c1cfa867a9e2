// What ships in data/: the empty-slot picture and the code table, each the
// output of our own writer; and the demo library generator.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "authoring/demo_bibliothek.h"
#include "authoring/slide_canvas.h"
#include "authoring/slide_library.h"
#include "frisches_verzeichnis.h"
#include "temp_verzeichnis.h"

using namespace tessara;
namespace fs = std::filesystem;

namespace {
std::string datenDatei(const char* name) {
    return std::string(TESSARA_SOURCE_DIR) + "/data/" + name;
}
}  // namespace

TEST(ProgrammDaten, Frei2IsWhatOurWriterMakes) {
    auto bytes = slide::readFileBytes(datenDatei("frei2.sld"));
    EXPECT_EQ(bytes, slide::writeSlide(slide::fctLeerfeldDia()));
    auto dia = slide::readSlide(bytes);
    EXPECT_GT(dia.elements.size(), 10u);
}

TEST(ProgrammDaten, CodeTable) {
    auto codes = fctCodeTabelleErzeugen();
    ASSERT_EQ(codes.size(), 42875u);
    std::set<std::string> verschieden(codes.begin(), codes.end());
    EXPECT_EQ(verschieden.size(), codes.size());
    EXPECT_EQ(codes[0], "000");
    EXPECT_EQ(codes[17], "017");  // Folder 001, slot 17: block number 0010017
    EXPECT_EQ(codes[999], "999");
    EXPECT_EQ(codes[1000], "00A");
    for (const auto& c : codes) {
        ASSERT_EQ(c.size(), 3u);
        for (char ch : c) ASSERT_TRUE((ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'Z')) << c;
        for (const char* r : {"AUX", "CON", "NUL", "PRN"}) ASSERT_NE(c, r);
    }
    const std::string datei = tessara::test::dateiInhalt(datenDatei("txtPrefix.txt"));
    EXPECT_EQ(datei, fctCodeTabelleText());
    EXPECT_EQ(datei.substr(0, 10), "000\r\n001\r\n");
}

class DemoBibliothek : public slidetest::TempVerzeichnis {};

TEST_F(DemoBibliothek, SymbolsLaidOutAsTheCatalogueExpects) {
    auto bloecke = fctDemoBibliothekErzeugen(wurzel.string());
    const auto ordner = fctDemoOrdner();
    const auto codes = fctCodeTabelleErzeugen();
    ASSERT_GE(bloecke.size(), 150u);
    ASSERT_GE(ordner.size(), 4u);
    std::map<std::string, std::set<int>> belegt;
    std::set<std::string> nummern;
    int mitAnsicht1 = 0, markiert = 0;
    for (const auto& b : bloecke) {
        SCOPED_TRACE(b.blkName);
        EXPECT_TRUE(nummern.insert(b.blockNr).second);
        belegt[b.ordnerNr].insert(b.slot);
        EXPECT_EQ(b.blockNr, b.ordnerNr + "0" + codes[b.slot]);
        EXPECT_EQ(b.slideLib, fctSlideLibEintrag(b.ordnerNr, b.blockNr, true));
        EXPECT_LE(b.blkName.size() + 2, 32u);  // BlkName0 .. BlkName4 ("-v" added)
        EXPECT_FALSE(b.m0.empty());
        EXPECT_FALSE(b.layer.empty());
        markiert += b.markiert;
        EXPECT_TRUE(fs::is_directory(wurzel / b.ordnerNr / "Block" / "Varia"));
        auto dia = slide::fctDiaLaden(fctBildnameAnsicht0(basis, b.slideLib));
        EXPECT_GT(dia.elements.size(), 3u);
        // The red point of the insertion point is on every picture.
        bool rot = false;
        for (const auto& e : dia.elements)
            rot |= e.kind == slide::Element::Kind::Fill && e.colour == 1;
        EXPECT_TRUE(rot);
        for (int v = 0; v < b.ansichten; ++v) {
            std::string dwg = fctZeichnungDatei(b.ordnerNr, b.blockNr, v);
            std::replace(dwg.begin(), dwg.end(), '\\', '/');
            EXPECT_GT(fs::file_size(wurzel / dwg), 0u) << dwg;
            if (v == 0) continue;
            ++mitAnsicht1;
            EXPECT_NO_THROW(slide::fctDiaLaden(basis + fctDiaBibliothek(b.ordnerNr, b.blockNr, v) +
                                               "(" + fctDiaCode(v) + ")"));
        }
    }
    EXPECT_GE(mitAnsicht1, 5);
    EXPECT_GE(markiert, 3);
    EXPECT_EQ(bloecke[0].blockNr, "0000000");
    EXPECT_EQ(bloecke[1].blockNr, "0000001");

    // Folders in code-table order, each with several Pages; every block on
    // one of its Folder's Pages; gaps between the blocks.
    int luecken = 0;
    for (std::size_t i = 0; i < ordner.size(); ++i) {
        const auto& o = ordner[i];
        SCOPED_TRACE(o.ordnerName);
        EXPECT_EQ(o.ordnerNr, codes[i]);
        EXPECT_GE(o.seiten.size(), 2u);
        ASSERT_FALSE(belegt[o.ordnerNr].empty());
        const int letzter = *belegt[o.ordnerNr].rbegin();
        EXPECT_LT(letzter / kDemoSlotsProSeite, static_cast<int>(o.seiten.size()));
        luecken += letzter + 1 - static_cast<int>(belegt[o.ordnerNr].size());
    }
    EXPECT_GE(luecken, 5);
}

TEST_F(DemoBibliothek, SingleSlideFilesWhenAsked) {
    auto bloecke = fctDemoBibliothekErzeugen(wurzel.string(), false);
    ASSERT_FALSE(bloecke.empty());
    EXPECT_TRUE(fctSlideLibIstEinzeldia(bloecke[0].slideLib));
    EXPECT_TRUE(fs::is_regular_file(wurzel / "000" / "00000000.sld"));
    EXPECT_NO_THROW(slide::fctDiaLaden(fctBildnameAnsicht0(basis, bloecke[0].slideLib)));
}
