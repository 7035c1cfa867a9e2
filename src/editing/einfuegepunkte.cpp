#include "editing/einfuegepunkte.h"

#include <charconv>
#include <cmath>
#include <exception>

#include "captions/meldungen.h"
#include "editing/bearbeiten_meldungen.h"
#include "library/schema.h"
#include "organisation/schreib_einheit.h"
#include "startup/benutzer.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

constexpr const char* kBuchstaben = "ABCDEF";

std::string spalten(int ansicht) {
    std::string s;
    for (int punkt = 0; punkt < 6; ++punkt)
        for (int achse = 0; achse < 3; ++achse)
            s += (s.empty() ? "" : ", ") + fctEinfuegepunktSpalte(punkt, achse, ansicht);
    return s;
}

std::string* achse(typEinfuegepunkt& p, int a) { return a == 0 ? &p.x : a == 1 ? &p.y : &p.z; }
const std::string& achse(const typEinfuegepunkt& p, int a) {
    return a == 0 ? p.x : a == 1 ? p.y : p.z;
}

}  // namespace

std::optional<double> fctKoordinate(const std::string& text) {
    std::string t = text;
    for (char& c : t)
        if (c == ',') c = '.';
    const auto anfang = t.find_first_not_of(' ');
    if (anfang == std::string::npos) return std::nullopt;
    const auto ende = t.find_last_not_of(' ') + 1;
    const char* a = t.data() + anfang + (t[anfang] == '+');
    double wert = 0;
    const auto [rest, fehler] = std::from_chars(a, t.data() + ende, wert);
    if (fehler != std::errc() || rest != t.data() + ende || !std::isfinite(wert))
        return std::nullopt;
    return wert;
}

std::string fctKoordinateText(double wert) {
    char puffer[32];
    const auto [ende, fehler] = std::to_chars(puffer, puffer + sizeof puffer, wert);
    return fehler == std::errc() ? std::string(puffer, ende) : std::string("0");
}

std::optional<typEinfuegepunkte> fctEinfuegepunkteLesen(ProgrammZustand& z, NavigationsModell& m,
                                                        const std::string& strBlockNr,
                                                        int ansicht) {
    Prozedur p(z, "fctEinfuegepunkteLesen");
    return p.geschuetztNurLog(std::nullopt, [&]() -> std::optional<typEinfuegepunkte> {
        if (ansicht < 0 || ansicht > 4) return std::nullopt;
        db::Recordset rs;
        rs.open("SELECT " + spalten(ansicht) + " FROM " + z.strTblBlockInfo + " WHERE Block = '" +
                    strBlockNr + "'",
                m.datenbank().con);
        if (rs.eof()) return std::nullopt;
        typEinfuegepunkte punkte;
        for (int punkt = 0; punkt < 6; ++punkt)
            for (int a = 0; a < 3; ++a) {
                const sql::Value v = rs.value(fctEinfuegepunktSpalte(punkt, a, ansicht));
                if (!v.isNull()) *achse(punkte[punkt], a) = fctKoordinateText(v.asDouble());
            }
        return punkte;
    });
}

int AnzahlDerEinfuegepkteErmitteln(ProgrammZustand& z, NavigationsModell& m,
                                   const std::string& strBlockNr, int ansicht) {
    const auto punkte = fctEinfuegepunkteLesen(z, m, strBlockNr, ansicht);
    if (!punkte) return 0;
    int n = 0;
    for (const auto& pkt : *punkte) n += pkt.gesetzt();
    return n;
}

int VariaEinfuegepktBestimmen(ProgrammZustand& z, NavigationsModell& m,
                              const std::string& strBlockNr, int ansicht) {
    Prozedur p(z, "VariaEinfuegepktBestimmen");
    const auto punkte = fctEinfuegepunkteLesen(z, m, strBlockNr, ansicht);
    if (!punkte || !z.benutzer) return 1;
    const std::string basis = fctBeschriftMsgboxZuordnen(z, kMsgBasispunkt, kGruppeAllg);
    std::vector<std::string> eintraege{basis};
    for (int i = 0; i < 6; ++i)
        if ((*punkte)[i].gesetzt()) eintraege.emplace_back(1, kBuchstaben[i]);
    if (eintraege.size() == 1) return 1;
    p.step("Einfügepunkt wählen");
    const std::string wahl = z.benutzer->listeWaehlen(
        fctBeschriftMsgboxZuordnen(z, kMeldungTitelFrage, kGruppeAllg),
        fctBeschriftMsgboxZuordnen(z, kMsgEinfuegepunktWaehlen, kGruppeAllg), eintraege);
    if (wahl.empty()) return 0;
    if (wahl == basis) return 1;
    const auto pos = std::string(kBuchstaben).find(wahl);
    return wahl.size() == 1 && pos != std::string::npos ? static_cast<int>(pos) + 2 : 0;
}

bool subEinfuegepunkteSchreiben(ProgrammZustand& z, NavigationsModell& m,
                                const std::string& strBlockNr, int ansicht,
                                const typEinfuegepunkte& punkte) {
    Prozedur p(z, "subEinfuegepunkteSchreiben");
    return p.geschuetzt(false, [&] {
        if (ansicht < 0 || ansicht > 4) return false;
        p.step("Koordinaten prüfen");
        std::array<std::array<sql::Value, 3>, 6> werte;
        for (int punkt = 0; punkt < 6; ++punkt)
            for (int a = 0; a < 3; ++a) {
                const std::string& text = achse(punkte[punkt], a);
                if (text.empty()) continue;
                const auto zahl = fctKoordinate(text);
                if (!zahl) {
                    fctMsgbox(z, MsgboxArt::Info, {kMsgKoordinateUngueltig, text});
                    return false;
                }
                werte[punkt][a] = sql::Value::real(*zahl);
            }
        p.step("Koordinaten schreiben");
        SchreibEinheit e(m.datenbank().con);
        db::Recordset rs;
        rs.open("SELECT " + spalten(ansicht) + " FROM " + z.strTblBlockInfo + " WHERE Block = '" +
                    strBlockNr + "'",
                m.datenbank().con, db::adOpenKeyset, db::adLockOptimistic);
        if (rs.eof()) return false;
        for (int punkt = 0; punkt < 6; ++punkt)
            for (int a = 0; a < 3; ++a)
                rs.setValue(fctEinfuegepunktSpalte(punkt, a, ansicht), werte[punkt][a]);
        rs.update();
        e.commit();
        return true;
    });
}

}  // namespace tessara
