#include "authoring/datei_layout.h"

namespace tessara {
namespace {

std::string ziffer(int ansicht) { return std::to_string(ansicht); }

bool endetAufSldOhneFall(const std::string& s) {
    if (s.size() < 3) return false;
    std::string t = s.substr(s.size() - 3);
    for (char& c : t)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return t == "sld";
}

}  // namespace

std::string fctDiaCode(int ansicht) { return ziffer(ansicht) + "A"; }

std::string fctOrdnerVerzeichnis(const std::string& ordnerNr) { return ordnerNr + "\\"; }

std::string fctDiaDatei(const std::string& ordnerNr, const std::string& blockNr, int ansicht) {
    return fctOrdnerVerzeichnis(ordnerNr) + blockNr + ziffer(ansicht) + ".sld";
}

std::string fctDiaBibliothek(const std::string& ordnerNr, const std::string& blockNr, int ansicht) {
    return fctOrdnerVerzeichnis(ordnerNr) + blockNr + ziffer(ansicht) + ".slb";
}

std::string fctBlockVerzeichnis(const std::string& ordnerNr) {
    return fctOrdnerVerzeichnis(ordnerNr) + "Block\\";
}

std::string fctZeichnungDatei(const std::string& ordnerNr, const std::string& blockNr,
                              int ansicht) {
    return fctBlockVerzeichnis(ordnerNr) + blockNr + ziffer(ansicht) + ".dwg";
}

std::string fctVariantenVerzeichnis(const std::string& ordnerNr) {
    return fctBlockVerzeichnis(ordnerNr) + "Varia\\";
}

std::string fctVarianteZeichnung(const std::string& ordnerNr, const std::string& variantenDatei,
                                 int ansicht) {
    return fctVariantenVerzeichnis(ordnerNr) + variantenDatei + ziffer(ansicht) + ".dwg";
}

std::string fctLeerfeldBild(const std::string& programmVerzeichnis) {
    return programmVerzeichnis + "\\frei2.sld";
}

std::string fctCodeTabelleDatei(const std::string& programmVerzeichnis) {
    return programmVerzeichnis + "\\txtPrefix.txt";
}

std::string fctSlideLibEintrag(const std::string& ordnerNr, const std::string& blockNr,
                               bool bibliothek) {
    return bibliothek ? fctDiaBibliothek(ordnerNr, blockNr, 0) : fctDiaDatei(ordnerNr, blockNr, 0);
}

bool fctSlideLibIstEinzeldia(const std::string& slideLib) { return endetAufSldOhneFall(slideLib); }

std::string fctBildnameAnsicht0(const std::string& basisVerzeichnis, const std::string& slideLib) {
    if (fctSlideLibIstEinzeldia(slideLib)) return basisVerzeichnis + slideLib;
    return basisVerzeichnis + slideLib + "(" + fctDiaCode(0) + ")";
}

}  // namespace tessara
