// The quick filter's rule (what a typed text finds), its scan (batches,
// order, cancel) and the list of blocks inserted last.
#include "search/schnellfilter.h"

#include <atomic>
#include <thread>

#include "search/zuletzt_eingefuegt.h"
#include "startup/einstellungen.h"
#include "such_umgebung.h"

namespace tessara::test {
namespace {

class Schnellfilter : public SuchUmgebung {};

TEST_F(Schnellfilter, FindsNumberViewsAndAttributesFoldedAsJetFoldsThem) {
    katalogAnlegen();
    con.execute(
        "INSERT INTO tblBlockInfo (Block, OrdnerID, SlideLib, BlkName0, BlkName2, M0, M9) VALUES "
        "('0010B', 2, '001\\0010B0.slb', 'Kugelhahn_DN50', 'KH_Seite', 'Kugelhahn DN 50', "
        "'Straße')");
    con.execute(
        "INSERT INTO tblBlockInfo (Block, OrdnerID, BlkName0, M0, M3) VALUES ('0010A', 2, "
        "'Schieber', 'Hähne', 'Öl')");
    const auto zeilen = fctSchnellSchnappschussLesen(con, "tblBlockInfo");
    ASSERT_EQ(zeilen->size(), 2u);
    EXPECT_EQ((*zeilen)[0].Block, "0010A");  // ordered by block number
    EXPECT_EQ((*zeilen)[1].SlideLib, "001\\0010B0.slb");
    const struct {
        const char* text;
        int treffer;  // -1: none, else the row
    } faelle[] = {
        {"kugel", 1},    {"0010a", 0}, {"kh_seite", 1}, {"STRASSE", 1},   {"straße", 1},
        {"HÄHNE", 0},    {"öL", 0},    {"dn 50", 1},    {"50Straße", -1},  // no hit across columns
        {"Zahnrad", -1}, {"", -1},
    };
    for (const auto& f : faelle) {
        const std::string g = fctSchnellfilterFalten(f.text);
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(fctSchnellfilterPasst((*zeilen)[i], g), f.treffer == i) << f.text << " " << i;
    }
}

TEST_F(Schnellfilter, ScansHandHitsOverInBatchesInOrderAndStopWhenCancelled) {
    SchnellSchnappschuss zeilen(100000);
    for (std::size_t i = 0; i < zeilen.size(); ++i)
        zeilen[i].gefaltet = fctSchnellfilterFalten("\x01" + std::to_string(i) + "\x01Teil");
    std::atomic<bool> abbruch{false};
    std::vector<std::size_t> groessen, alle;
    EXPECT_TRUE(fctSchnellfilterScannen(zeilen, fctSchnellfilterFalten("99"), abbruch,
                                        [&](std::vector<std::size_t> t) {
                                            groessen.push_back(t.size());
                                            alle.insert(alle.end(), t.begin(), t.end());
                                        }));
    ASSERT_GE(groessen.size(), 2u);
    EXPECT_EQ(groessen[0], 50u);
    EXPECT_TRUE(std::is_sorted(alle.begin(), alle.end()));
    EXPECT_EQ(alle.size(), 3691u);  // every number below 100 000 that holds "99"
    // Cancelled after the first batch: nothing more comes.
    groessen.clear();
    EXPECT_FALSE(fctSchnellfilterScannen(zeilen, fctSchnellfilterFalten("teil"), abbruch,
                                         [&](std::vector<std::size_t> t) {
                                             groessen.push_back(t.size());
                                             abbruch = true;
                                         }));
    EXPECT_EQ(groessen.size(), 1u);
}

TEST_F(Schnellfilter, TheRecentListKeepsTwentyNewestFirstInTheLibrarysIniFile) {
    std::vector<std::string> liste;
    for (int i = 0; i < 25; ++i) liste = fctZuletztErgaenzen(liste, {"B" + std::to_string(i)});
    liste = fctZuletztErgaenzen(liste, {"B10", "B24", ""});
    ASSERT_EQ(liste.size(), 20u);
    EXPECT_EQ(liste[0], "B24");
    EXPECT_EQ(liste[1], "B10");
    EXPECT_EQ(liste[2], "B23");
    EXPECT_EQ(liste.back(), "B5");
    IniSetValue(z, fctDbIniDatei(basis), "Position", "s1", "3");
    ASSERT_TRUE(fctZuletztSpeichern(z, basis, liste));
    EXPECT_EQ(fctZuletztLesen(z, basis), liste);
    ASSERT_TRUE(fctZuletztSpeichern(z, basis, {"X"}));  // a shorter list leaves no old keys
    EXPECT_EQ(fctZuletztLesen(z, basis), std::vector<std::string>{"X"});
    EXPECT_EQ(IniGetValue(z, fctDbIniDatei(basis), "Position", "s1"), "3");
}

}  // namespace
}  // namespace tessara::test
