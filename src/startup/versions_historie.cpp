#include "startup/versions_historie.h"

#include <fstream>
#include <iterator>

#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "startup/zeichensatz.h"

namespace tessara {

namespace {

std::string trimmen(std::string_view s) {
    const auto a = s.find_first_not_of(" \t\r");
    if (a == std::string_view::npos) return {};
    return std::string(s.substr(a, s.find_last_not_of(" \t\r") - a + 1));
}

}  // namespace

std::string fctLaufendeVersion(const ProgrammZustand& z) { return z.aryVersion.back() + ".0"; }

VersionsHistorie fctVersionsHistorieAusText(std::string_view bytes, const std::string& strLaufend) {
    VersionsHistorie h;
    std::string text;
    const bool utf16 = bytes.substr(0, 2) == "\xFF\xFE" || bytes.substr(0, 2) == "\xFE\xFF" ||
                       bytes.find('\0') != std::string_view::npos;
    if (utf16) {
        // Other text in it would be noise; the message says what is wrong.
        h.lngMeldung = 610;
        return h;
    }
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") {
        text = bytes.substr(3);
        h.lngMeldung = 610;
    } else if (fctIstUtf8MitUmlauten(bytes)) {
        text = bytes;
        h.lngMeldung = 610;
    } else {
        text = fctAnsiNachUtf8(bytes);
    }
    std::size_t von = 0;
    while (von <= text.size()) {
        const auto bis = std::min(text.find('\n', von), text.size());
        const std::string zeile = trimmen(std::string_view(text).substr(von, bis - von));
        von = bis + 1;
        if (zeile.rfind("Version ", 0) == 0) {
            typVersionEintrag e;
            const std::string rest = trimmen(zeile.substr(8));
            const auto klammer = rest.find('(');
            e.strVersion = trimmen(rest.substr(0, klammer));
            if (klammer != std::string::npos) {
                const auto zu = rest.find(')', klammer);
                e.strDatum = rest.substr(
                    klammer + 1, zu == std::string::npos ? std::string::npos : zu - klammer - 1);
            }
            e.booLaufend = e.strVersion == strLaufend;
            h.eintraege.push_back(std::move(e));
        } else if (!zeile.empty() && !h.eintraege.empty()) {
            h.eintraege.back().zeilen.push_back(
                zeile[0] == '-' ? trimmen(std::string_view(zeile).substr(1)) : zeile);
        }
    }
    return h;
}

VersionsHistorie fctVersionsHistorieLesen(ProgrammZustand& z) {
    Prozedur p(z, "fctVersionsHistorieLesen");
    VersionsHistorie fehlt;
    fehlt.lngMeldung = 609;
    return p.geschuetztNurLog(fehlt, [&] {
        std::ifstream in(fctNativerPfad(z.strVersionInfoDatei), std::ios::binary);
        if (!in) return fehlt;
        const std::string bytes((std::istreambuf_iterator<char>(in)),
                                std::istreambuf_iterator<char>());
        if (in.bad()) return fehlt;
        return fctVersionsHistorieAusText(bytes, fctLaufendeVersion(z));
    });
}

}  // namespace tessara
