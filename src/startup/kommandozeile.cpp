#include "startup/kommandozeile.h"

#include <vector>

namespace tessara {

std::string fctKlein(const std::string& s) {
    std::string r;
    r.reserve(s.size());
    for (std::size_t i = 0; i < s.size(); ++i) {
        unsigned char c = static_cast<unsigned char>(s[i]);
        if (c >= 'A' && c <= 'Z') {
            r.push_back(static_cast<char>(c - 'A' + 'a'));
        } else if (c == 0xC3 && i + 1 < s.size()) {
            // Ä Ö Ü (C3 84, C3 96, C3 9C) -> ä ö ü (C3 A4, C3 B6, C3 BC)
            unsigned char d = static_cast<unsigned char>(s[i + 1]);
            if (d == 0x84 || d == 0x96 || d == 0x9C) d = static_cast<unsigned char>(d + 0x20);
            r.push_back(static_cast<char>(c));
            r.push_back(static_cast<char>(d));
            ++i;
        } else {
            r.push_back(static_cast<char>(c));
        }
    }
    return r;
}

namespace {
// Mid() that never fails: characters [start, start + len) clipped to the text.
std::string mitte(const std::string& s, std::size_t start, std::size_t len) {
    if (start >= s.size()) return {};
    return s.substr(start, len);
}
}  // namespace

typKommandozeile fctKommandozeileAuswerten(const std::string& strCmdLine) {
    typKommandozeile k;
    k.strKlein = fctKlein(strCmdLine);
    const std::string& z = k.strKlein;
    if (z.empty()) {
        k.art = typKommandozeile::Art::Leer;
        return k;
    }
    if (z.find("/d") != std::string::npos) {
        // "/d", a blank and the opening quote in front, the closing quote
        // behind: cut whatever stands there.
        k.art = typKommandozeile::Art::Datenbank;
        k.str1 =
            strCmdLine.size() > 5 ? strCmdLine.substr(4, strCmdLine.size() - 5) : std::string();
        return k;
    }
    if (z.find("/s") == std::string::npos) {
        k.art = z == "lblkeinfuegen" ? typKommandozeile::Art::LBlkEinfuegen
                                     : typKommandozeile::Art::Nichts;
        return k;
    }
    std::vector<std::string> teile;
    std::size_t anfang = 0;
    for (;;) {
        std::size_t p = z.find(';', anfang);
        if (p == std::string::npos) {
            teile.push_back(z.substr(anfang));
            break;
        }
        teile.push_back(z.substr(anfang, p - anfang));
        anfang = p + 1;
    }
    if (teile.size() != 2) {
        k.art = typKommandozeile::Art::Nichts;
        return k;
    }
    k.art = typKommandozeile::Art::StartForm2;
    k.str1 = mitte(teile[0], 3, std::string::npos);
    k.str2 = teile[1];
    return k;
}

}  // namespace tessara
