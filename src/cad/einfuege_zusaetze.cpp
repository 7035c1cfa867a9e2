#include "cad/einfuege_zusaetze.h"

#include <charconv>
#include <cmath>
#include <fstream>

#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "startup/zeichensatz.h"

namespace tessara {

namespace {

std::string csvWert(const std::string& s) {
    if (s.find_first_of(";\"\r\n") == std::string::npos) return s;
    std::string r = "\"";
    for (char c : s) r += c == '"' ? std::string("\"\"") : std::string(1, c);
    return r + "\"";
}

std::optional<double> zahl(std::string s) {
    for (char& c : s)
        if (c == ',') c = '.';
    double d = 0;
    const char* ende = s.data() + s.size();
    auto [p, ec] = std::from_chars(s.data(), ende, d);
    if (s.empty() || ec != std::errc() || p != ende || !std::isfinite(d)) return std::nullopt;
    return d;
}

}  // namespace

std::string fctStuecklistenDatei(const std::string& strDwgPrefix, const std::string& strDwgName,
                                 const std::string& strTemp) {
    if (strDwgPrefix.empty() || strDwgName.empty()) return strTemp + "Stueckliste.csv";
    std::string name = strDwgName;
    const auto punkt = name.rfind('.');
    if (punkt != std::string::npos && punkt > 0) name.erase(punkt);
    return fctBackslashAmEndeAnfuegen(strDwgPrefix) + name + "_Stueckliste.csv";
}

std::string fctStuecklistenZeile(const typBlockDaten& b, const std::string& strName) {
    std::string zeile = csvWert(b.Block) + ";" + csvWert(strName);
    for (const auto& m : b.M) zeile += ";" + csvWert(m);
    return zeile;
}

bool subStuecklisteErgaenzen(ProgrammZustand& z, const std::string& strDatei,
                             const typBlockDaten& b, const std::string& strName) {
    Prozedur p(z, "subStuecklisteErgaenzen");
    return p.geschuetzt(false, [&] {
        p.step("Stückliste öffnen");
        const bool neu = !fctDateiExistiert(strDatei);
        fctDateiVerzeichnisAnlegen(strDatei);
        std::ofstream f(fctNativerPfad(strDatei), std::ios::binary | std::ios::app);
        if (!f) throw std::runtime_error("Stückliste kann nicht geschrieben werden: " + strDatei);
        if (neu) f << "Block;Name;M0;M1;M2;M3;M4;M5;M6;M7;M8;M9\r\n";
        f << fctUtf8NachAnsi(fctStuecklistenZeile(b, strName)) << "\r\n";
        f.close();
        if (!f) throw std::runtime_error("Stückliste kann nicht geschrieben werden: " + strDatei);
        return true;
    });
}

std::string fctBlockProgrammDatei(const std::string& strBibliothek, const std::string& strOrdnerNr,
                                  const std::string& strBlockNr) {
    return strBibliothek + fctOhneBlanks(strOrdnerNr) + "\\Block\\" + strBlockNr + ".lsp";
}

std::optional<std::string> fctAbweichenderMassstab(const std::string& strDimscale,
                                                   const std::string& strMassstabX) {
    const auto zeichnung = zahl(strDimscale);
    const auto gesetzt = zahl(strMassstabX);
    if (!zeichnung || !gesetzt || *zeichnung <= 0) return std::nullopt;
    if (std::fabs(*zeichnung - *gesetzt) <= 1e-9 * std::fabs(*zeichnung)) return std::nullopt;
    return strDimscale;
}

}  // namespace tessara
