// The search over a real catalogue file: each outcome with its message and
// its hits (which rows the composed statements find is tests/sql's
// statements/search.test), and the labels from the Folder's definition menu.
#include <sstream>

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
};

TEST_F(SucheMdb, EachOutcomeOfASearchHasItsMessageAndItsHits) {
    for (const auto& f : tabelle("search/golden/suchergebnisse.txt")) {
        SCOPED_TRACE(f.at(0) + "=" + f.at(1).substr(0, 20));
        benutzer.gezeigt.clear();
        typSuchKriterien k;
        k.txtBenennung[std::stoi(f[0])] = f.at(1);
        k.chkAnsichtenVarianten = f.at(2) == "1";
        k.checkDirektEinfuegen = f.at(3) == "1";
        const auto a = fctDatenbankSuchen(z, con, k, "tblBlockInfo", 1);
        EXPECT_EQ(static_cast<int>(a.ergebnis), std::stoi(f.at(4)));
        std::string meldung, treffer;
        for (const auto& g : benutzer.gezeigt) meldung += g.text + "\n";
        std::istringstream teile(f.at(5));
        for (std::string teil; std::getline(teile, teil, ';');)
            EXPECT_NE(meldung.find(teil), std::string::npos) << meldung;
        EXPECT_EQ(benutzer.gezeigt.size(), f[5].empty() ? 0u : 1u) << meldung;
        for (const auto& t : a.treffer)
            treffer +=
                (treffer.empty() ? "" : ";") + t.Block + "/" + t.OrdnerNr + "/" + t.BlkName[1];
        EXPECT_EQ(treffer, f.at(6));
    }
    EXPECT_NE(protokoll().find("cmbSuchen_Click"), std::string::npos);
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
