// The composed statements against the golden file, byte for byte.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "search/datenbank_suche.h"

namespace tessara {
namespace {

struct Fall {
    std::string name, tabelle, erwartet;
    long ordnerNr = 0;
    typSuchKriterien k;
};

std::vector<Fall> faelleLesen() {
    std::ifstream in(std::string(TESSARA_SOURCE_DIR) + "/tests/search/golden/anweisungen.txt");
    std::vector<Fall> faelle;
    for (std::string zeile; std::getline(in, zeile);) {
        if (zeile.empty() || zeile[0] == '#') continue;
        const auto blank = zeile.find(' ');
        const std::string wort = zeile.substr(0, blank);
        const std::string rest = blank == std::string::npos ? "" : zeile.substr(blank + 1);
        if (wort == "fall") faelle.push_back({rest, {}, {}, 0, {}});
        if (faelle.empty()) continue;
        Fall& f = faelle.back();
        if (wort == "tabelle") f.tabelle = rest;
        if (wort == "ordnernr") f.ordnerNr = std::stol(rest);
        if (wort == "schalter") {
            f.k.checkGanzeWoerter = rest.find("ganz") != std::string::npos;
            f.k.checkAktuellerOrdner = rest.find("ordner") != std::string::npos;
            f.k.chkAnsichtenVarianten = rest.find("ansichten") != std::string::npos;
        }
        if (wort == "feld") {
            const auto b = rest.find(' ');
            f.k.txtBenennung.at(std::stoi(rest.substr(0, b))) = rest.substr(b + 1);
        }
        if (wort == "anweisung") f.erwartet = rest.substr(0, rest.rfind('|'));
    }
    return faelle;
}

TEST(Suchanweisung, EveryGoldenCaseIsComposedByteForByte) {
    const auto faelle = faelleLesen();
    ASSERT_GE(faelle.size(), 10u);
    for (const auto& f : faelle) {
        // The operators are chosen but never reach the statement.
        typSuchKriterien k = f.k;
        for (auto& op : k.comboxSuchkriterienVerknuepfen) op = ">=";
        EXPECT_EQ(fctSuchAnweisung(k, f.tabelle, f.ordnerNr), f.erwartet) << f.name;
    }
}

}  // namespace
}  // namespace tessara
