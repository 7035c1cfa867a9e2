#include "organisation/ordner_codes.h"

#include <fstream>

#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

bool fctOrdnerCodesEinlesen(ProgrammZustand& z, const std::string& strDatei, long lngBis,
                            std::vector<std::string>& aryOrdnerCodes) {
    Prozedur p(z, "fctOrdnerCodesEinlesen");
    aryOrdnerCodes.clear();
    if (lngBis < 0) return true;
    aryOrdnerCodes.reserve(static_cast<std::size_t>(lngBis) + 1);
    p.step("Datei öffnen");
    std::ifstream in(fctNativerPfad(strDatei), std::ios::binary);
    std::string zeile;
    for (long i = 0; i <= lngBis; ++i) {
        if (!in || !std::getline(in, zeile)) {
            p.fehler("Codetabelle " + strDatei + " endet vor Eintrag " + std::to_string(i), 62,
                     true);
            return false;
        }
        if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
        zeile.resize(3, ' ');  // a fixed-length field of three characters
        aryOrdnerCodes.push_back(zeile);
        if (i > 0 && i % kOrdnerCodeUmbruch == 0) {
            p.step("Datei erneut öffnen");
            in.close();
            in.open(fctNativerPfad(strDatei), std::ios::binary);
        }
    }
    return true;
}

}  // namespace tessara
