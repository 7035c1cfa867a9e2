#pragma once
// The cases of golden/anweisungen.txt: a table, the current Folder's Nr, the
// switches, the filled fields and the statement expected byte for byte.
#include <fstream>
#include <string>
#include <vector>

#include "search/datenbank_suche.h"

namespace tessara::test {

struct AnweisungsFall {
    std::string name, tabelle, erwartet;
    long ordnerNr = 0;
    typSuchKriterien k;
};

inline std::vector<AnweisungsFall> fctAnweisungsFaelle() {
    std::ifstream in(std::string(TESSARA_SOURCE_DIR) + "/tests/search/golden/anweisungen.txt");
    std::vector<AnweisungsFall> faelle;
    for (std::string zeile; std::getline(in, zeile);) {
        if (zeile.empty() || zeile[0] == '#') continue;
        const auto blank = zeile.find(' ');
        const std::string wort = zeile.substr(0, blank);
        const std::string rest = blank == std::string::npos ? "" : zeile.substr(blank + 1);
        if (wort == "fall") faelle.push_back({rest, {}, {}, 0, {}});
        if (faelle.empty()) continue;
        AnweisungsFall& f = faelle.back();
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

}  // namespace tessara::test
