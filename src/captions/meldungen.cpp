#include "captions/meldungen.h"

#include <algorithm>
#include <exception>
#include <string_view>

#include "captions/beschriftung.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

const char* sektionDerGruppe(int intGruppe) {
    switch (intGruppe) {
        case kGruppeAllg:
            return "Allg";
        case kGruppeGruppe:
            return "Gruppe";
        case kGruppeSpeziell:
            return "Speziell";
        default:
            return nullptr;
    }
}

// umbrueche: the digits of the member's name, one per gap between lines.
std::vector<MsgboxZeile> zeilenAus(std::initializer_list<long> nummern, std::string_view umbrueche,
                                   const MsgboxZusatz& zusatz) {
    std::vector<MsgboxZeile> zeilen;
    std::size_t i = 0;
    for (long n : nummern) {
        const int u = i > 0 && i - 1 < umbrueche.size() ? umbrueche[i - 1] - '0' : 1;
        zeilen.emplace_back(n, u);
        ++i;
    }
    for (const auto& s : zusatz) zeilen.emplace_back(s);
    return zeilen;
}

void info(ProgrammZustand& z, std::initializer_list<long> nummern, const char* umbrueche,
          int intGruppe, const MsgboxZusatz& zusatz) {
    fctMsgbox(z, MsgboxArt::Info, zeilenAus(nummern, umbrueche, zusatz), intGruppe);
}

bool frage(ProgrammZustand& z, std::initializer_list<long> nummern, const char* umbrueche,
           int intGruppe, const MsgboxZusatz& zusatz) {
    return fctMsgbox(z, MsgboxArt::Frage, zeilenAus(nummern, umbrueche, zusatz), intGruppe);
}

}  // namespace

std::string fctBeschriftMsgboxZuordnen(ProgrammZustand& z, long lngNummer, int intGruppe) {
    const std::string nummer = std::to_string(lngNummer);
    if (const char* sektion = sektionDerGruppe(intGruppe)) {
        if (auto w = fctBeschriftungWert(z, BeschriftungsArt::Msgbox, sektion, nummer)) return *w;
    }
    fctFehlendeBeschriftungMelden(z, BeschriftungsArt::Msgbox,
                                  nummer + " (Gruppe " + std::to_string(intGruppe) + ")");
    return "[Meldung " + nummer + "]";
}

std::string fctMsgboxText(ProgrammZustand& z, const std::vector<MsgboxZeile>& zeilen,
                          int intGruppe) {
    std::string text;
    bool erste = true;
    for (const auto& zeile : zeilen) {
        if (!erste) text.append(static_cast<std::size_t>(std::max(zeile.umbrueche, 0)), '\r');
        erste = false;
        text += zeile.istText ? zeile.text : fctBeschriftMsgboxZuordnen(z, zeile.nummer, intGruppe);
    }
    return text;
}

bool fctMsgboxNichtMehrAnzeigen(ProgrammZustand& z, const std::string& strSchluessel) {
    return fctIniDateiNeuAnlegen(z, strSchluessel, 1);
}

bool fctMsgbox(ProgrammZustand& z, MsgboxArt art, const std::vector<MsgboxZeile>& zeilen,
               int intGruppe, const std::string& strNichtMehrAnzeigen) {
    Prozedur p(z, "fctMsgbox");
    const bool booFrage = art == MsgboxArt::Frage;
    return p.geschuetztNurLog(!booFrage, [&] {
        const bool abschaltbar = !strNichtMehrAnzeigen.empty();
        if (abschaltbar) {
            p.step("MsgboxAnzeigen lesen");
            if (!fctMsgboxNichtMehrAnzeigen(z, strNichtMehrAnzeigen)) return true;
        }
        p.step("Text zusammenstellen");
        const std::string text = fctMsgboxText(z, zeilen, intGruppe);
        const std::string titel = fctBeschriftMsgboxZuordnen(
            z, booFrage ? kMeldungTitelFrage : kMeldungTitelInfo, kGruppeAllg);
        const Symbol symbol = booFrage ? Symbol::Frage : Symbol::Information;
        const Knoepfe knoepfe = booFrage ? Knoepfe::JaNein : Knoepfe::Ok;
        if (!z.benutzer) return !booFrage;

        p.step("Msgbox anzeigen");
        if (!abschaltbar) {
            const Antwort a = z.benutzer->meldung(text, titel, symbol, knoepfe);
            return booFrage ? a == Antwort::Ja : true;
        }
        bool angekreuzt = false;
        const Antwort a = z.benutzer->meldungMitKontrollkaestchen(
            text, titel, symbol, knoepfe,
            fctBeschriftMsgboxZuordnen(z, kMeldungNichtMehrAnzeigen, kGruppeAllg), angekreuzt);
        const bool ergebnis = booFrage ? a == Antwort::Ja : true;
        if (angekreuzt && ergebnis) {
            p.step("Nicht mehr anzeigen speichern");
            fctMsgboxNichtMehrAnzeigenSpeichern(z, strNichtMehrAnzeigen);
        }
        return ergebnis;
    });
}

void subMsgboxInfoEinzeilig(ProgrammZustand& z, long n1, int g, const MsgboxZusatz& zusatz) {
    info(z, {n1}, "", g, zusatz);
}
void subMsgboxInfoZweizeilig(ProgrammZustand& z, long n1, long n2, int g,
                             const MsgboxZusatz& zusatz) {
    info(z, {n1, n2}, "", g, zusatz);
}
void subMsgboxInfoVierZeilig121(ProgrammZustand& z, long n1, long n2, long n3, long n4, int g,
                                const MsgboxZusatz& zusatz) {
    info(z, {n1, n2, n3, n4}, "121", g, zusatz);
}

bool fctMsgboxFrageEinzeilig(ProgrammZustand& z, long n1, int g, const MsgboxZusatz& zusatz) {
    return frage(z, {n1}, "", g, zusatz);
}
bool fctMsgboxFrageZweizeilig2(ProgrammZustand& z, long n1, long n2, int g,
                               const MsgboxZusatz& zusatz) {
    return frage(z, {n1, n2}, "2", g, zusatz);
}
bool fctMsgboxFrageDreizeilig12(ProgrammZustand& z, long n1, long n2, long n3, int g,
                                const MsgboxZusatz& zusatz) {
    return frage(z, {n1, n2, n3}, "12", g, zusatz);
}
bool fctMsgboxFrageVierzeilig(ProgrammZustand& z, long n1, long n2, long n3, long n4, int g,
                              const MsgboxZusatz& zusatz) {
    return frage(z, {n1, n2, n3, n4}, "111", g, zusatz);
}

}  // namespace tessara
