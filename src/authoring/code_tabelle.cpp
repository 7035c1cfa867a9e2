#include "authoring/code_tabelle.h"

#include <algorithm>
#include <charconv>

namespace tessara {

std::vector<std::string> fctCodeTabelleErzeugen() {
    static const std::string zeichen = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    static const char* reserviert[] = {"AUX", "CON", "NUL", "PRN"};
    std::vector<std::string> codes;
    codes.reserve(kCodeTabelleLaenge);
    for (int i = 0; i < 1000; ++i) {
        std::string c = std::to_string(i);
        codes.push_back(std::string(3 - c.size(), '0') + c);
    }
    for (char a : zeichen) {
        for (char b : zeichen) {
            for (char c : zeichen) {
                if (static_cast<int>(codes.size()) == kCodeTabelleLaenge) return codes;
                std::string code{a, b, c};
                bool ziffern = std::all_of(code.begin(), code.end(),
                                           [](char x) { return x >= '0' && x <= '9'; });
                if (ziffern) continue;  // already among the first thousand
                if (std::any_of(std::begin(reserviert), std::end(reserviert),
                                [&](const char* r) { return code == r; }))
                    continue;
                codes.push_back(code);
            }
        }
    }
    return codes;
}

std::string fctCodeTabelleText() {
    std::string text;
    for (const auto& c : fctCodeTabelleErzeugen()) text += c + "\r\n";
    return text;
}

void subBlocknummerSchreiben(std::string& ziel, const std::string& strOrdnerNr, long k,
                             const std::string& strCode) {
    char mitte[24];
    const auto r = std::to_chars(mitte, mitte + sizeof mitte, k / kBlocknummerTeiler);
    ziel.assign(strOrdnerNr);
    ziel.append(mitte, r.ptr);
    ziel.append(strCode);
}

std::string fctBlocknummer(const std::string& strOrdnerNr, long k, const std::string& strCode) {
    std::string nr;
    subBlocknummerSchreiben(nr, strOrdnerNr, k, strCode);
    return nr;
}

}  // namespace tessara
