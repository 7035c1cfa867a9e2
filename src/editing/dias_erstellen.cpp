#include "editing/dias_erstellen.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

#include "authoring/slidelib_builder.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/platform.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

constexpr std::int64_t kWarteMs = 40000;

platform::Desktop* desktopVon(ProgrammZustand& z) {
    return z.plattform ? z.plattform->desktop : nullptr;
}

// A command the user finishes in the host (pan, the picks of a window): the
// program goes on once the host has no command running.
void aufHostWarten(ProgrammZustand& z, AcadDokument& dok) {
    auto* d = desktopVon(z);
    if (!d) return;
    platform::Clock* uhr = z.plattform->clock;
    const std::int64_t start = uhr ? uhr->tickMs() : 0;
    while (true) {
        d->pumpMessages();
        const std::string aktiv = dok.GetVariable("CMDACTIVE");
        if (aktiv.empty() || aktiv == "0" || d->isKeyDown(platform::Key::Escape)) return;
        if (uhr && uhr->tickMs() - start >= kWarteMs) return;
        d->sleepMs(50);
    }
}

bool diaAufnehmen(ProgrammZustand& z, Prozedur& p, AcadDokument& dok, const std::string& D,
                  const std::string& N) {
    const std::string datei = D + "\\" + N + ".sld";
    p.step("Dia schießen");
    dok.SendCommand(fctBefehlDiaAufnehmen(D, N));
    return fctAufDateiWarten(z, datei);
}

void roterPunkt(Prozedur& p, AcadDokument& dok, const std::array<typPunkt3, 2>& ecken,
                const typPunkt3& basis) {
    p.step("Grösse des roten Pktes bestimmen");
    dok.SendCommand(fctBefehlRoterPunkt(fctDurchmesserRoterPunkt(ecken), basis));
    dok.SendCommand(fctBefehlRoterPunktFarbe());
}

std::array<typPunkt3, 2> ausdehnung(AcadDokument& dok, const typPunkt3& basis) {
    typPunkt3 min = basis, max = basis;
    fctPunktLesen(dok.GetVariable("extmin"), min);
    fctPunktLesen(dok.GetVariable("extmax"), max);
    return fctDiaEckpunkte(min, max, basis);
}

}  // namespace

std::string KommaPunktErsetzen(std::string strText) {
    std::replace(strText.begin(), strText.end(), ',', '.');
    return strText;
}

bool fctPunktLesen(const std::string& strText, typPunkt3& p) {
    double w[3] = {0, 0, 0};
    const int n = std::sscanf(strText.c_str(), "%lf,%lf,%lf", &w[0], &w[1], &w[2]);
    if (n < 2) return false;
    // A drawing that was never drawn on answers its extents as ±1e20.
    for (double v : w)
        if (!std::isfinite(v) || std::fabs(v) > 1e19) return false;
    p = {w[0], w[1], w[2]};
    return true;
}

std::string fctZahlText(double d) {
    char puffer[40];
    std::snprintf(puffer, sizeof puffer, "%.10g", d == 0 ? 0.0 : d);
    return KommaPunktErsetzen(puffer);
}

std::string fctPunktText(const typPunkt3& p) {
    return fctZahlText(p.x) + "," + fctZahlText(p.y) + "," + fctZahlText(p.z);
}

std::array<typPunkt3, 2> fctDiaEckpunkte(const typPunkt3& extmin, const typPunkt3& extmax,
                                         const typPunkt3& basis) {
    typPunkt3 a{std::min({extmin.x, extmax.x, basis.x}), std::min({extmin.y, extmax.y, basis.y}),
                0};
    typPunkt3 b{std::max({extmin.x, extmax.x, basis.x}), std::max({extmin.y, extmax.y, basis.y}),
                0};
    const double rx = (b.x - a.x) / 20, ry = (b.y - a.y) / 20;
    a.x -= rx, a.y -= ry, b.x += rx, b.y += ry;
    return {a, b};
}

double fctDurchmesserRoterPunkt(const std::array<typPunkt3, 2>& ecken) {
    const double diagonale = std::hypot(ecken[1].x - ecken[0].x, ecken[1].y - ecken[0].y);
    return diagonale > 0 ? diagonale / 40 : 1.0;
}

std::string fctBefehlVorbereiten() { return "._undo _m ._filedia 0 ._pdmode 3 "; }

std::string fctBefehlZoomFenster(const std::array<typPunkt3, 2>& ecken) {
    return "._zoom _w " + fctZahlText(ecken[0].x) + "," + fctZahlText(ecken[0].y) + " " +
           fctZahlText(ecken[1].x) + "," + fctZahlText(ecken[1].y) + " ";
}

std::string fctBefehlZoomFaktor(double faktor) { return "._zoom " + fctZahlText(faktor) + "x "; }

std::string fctBefehlRoterPunkt(double durchmesser, const typPunkt3& p) {
    // Inner diameter 0: a filled disc. The second return ends DONUT, which
    // would otherwise go on asking for centres.
    return "._donut 0 " + fctZahlText(durchmesser) + "\r" + fctPunktText(p) + "\r\r";
}

std::string fctBefehlRoterPunktFarbe() { return "._change (entlast)  _prop _col 1  "; }

std::string fctBefehlDiaAufnehmen(const std::string& D, const std::string& N) {
    return "._mslide " + D + "\\" + N + ".sld" + "\r" + "_y" + "\r";
}

std::string fctBefehlVerdeckt() { return "._hide "; }
std::string fctBefehlPan() { return "._pan "; }
std::string fctBefehlUndoMarke() { return "._undo _m "; }
std::string fctBefehlUndoZurueck() { return "._undo _b "; }
std::string fctBefehlAbbrechen() { return "\x1b\x1b"; }

std::string fctBefehlSlidelib(const std::string& D, const std::string& strBibliothek) {
    return "._shell " + D + "\\slidelib.exe " + strBibliothek + " < " + D + "\\dialist.txt" + "\r";
}

std::string fctSlidelibBatZeile(const std::string& D, const std::string& strBibliothek) {
    return "\"" + D + "\\slidelib.exe\" \"" + strBibliothek + "\" < \"" + D + "\\dialist.txt\"";
}

bool DialisteSchreiben(ProgrammZustand& z, const std::string& D,
                       const std::vector<std::string>& codes) {
    Prozedur p(z, "DialisteSchreiben");
    return p.geschuetzt(false, [&] {
        std::ofstream aus(fctNativerPfad(D + "\\dialist.txt"), std::ios::binary | std::ios::trunc);
        for (const auto& c : codes) aus << D << "\\" << c << ".sld\r\n";
        aus.close();
        if (!aus) throw std::runtime_error("dialist.txt kann nicht geschrieben werden: " + D);
        return true;
    });
}

bool fctSlidelibErstellen(ProgrammZustand& z, AcadDokument* dok, const std::string& D,
                          const std::string& strBibliothek, bool booShell) {
    Prozedur p(z, "fctSlidelibErstellen");
    return p.geschuetzt(false, [&] {
        p.step("Speicherort der SlideLib und Blockzeichnung festlegen");
        {
            std::ofstream bat(fctNativerPfad(D + "\\Slidelib.bat"),
                              std::ios::binary | std::ios::trunc);
            bat << fctSlidelibBatZeile(D, strBibliothek) << "\r\n";
        }
        if (booShell && dok) {
            p.step("Slidelib erstellen über Shell-Befehl im AutoCAD");
            dok->SendCommand(fctBefehlSlidelib(D, strBibliothek));
            subDebugLog(z, "Befehl der Slidelib-Erstellung abgeschickt");
            return fctAufDateiWarten(z, strBibliothek);
        }
        p.step("Slidelib erstellen");
        std::ifstream liste(fctNativerPfad(D + "\\dialist.txt"), std::ios::binary);
        std::vector<std::string> dias;
        for (const auto& zeile : slide::readSlideList(liste))
            dias.push_back(fctNativerPfad(zeile).string());
        slide::buildLibraryFile(fctNativerPfad(strBibliothek).string(), dias);
        return true;
    });
}

bool fctAufDateiWarten(ProgrammZustand& z, const std::string& strDatei) {
    auto* d = desktopVon(z);
    if (fctDateiExistiert(strDatei) || !d) return fctDateiExistiert(strDatei);
    platform::Clock* uhr = z.plattform->clock;
    const std::int64_t start = uhr ? uhr->tickMs() : 0;
    for (int runde = 0;; ++runde) {
        d->pumpMessages();
        if (fctDateiExistiert(strDatei)) return true;
        if (d->isKeyDown(platform::Key::Escape)) return false;
        // Without a clock the bound is counted in rounds of 50 ms.
        if (uhr ? uhr->tickMs() - start >= kWarteMs : runde * 50 >= kWarteMs) return false;
        d->sleepMs(50);
    }
}

bool SlidesErstellen(ProgrammZustand& z, AcadDokument& dok, const std::string& D,
                     const std::string& N, const typPunkt3& basis) {
    Prozedur p(z, "SlidesErstellen");
    return p.geschuetzt(false, [&] {
        p.step("Slide vorbereiten");
        dok.SendCommand(fctBefehlVorbereiten());
        p.step("Zeichnung auf Außenabmessungen zoomen");
        const auto ecken = ausdehnung(dok, basis);
        dok.SendCommand(fctBefehlZoomFenster(ecken));
        roterPunkt(p, dok, ecken, basis);
        return diaAufnehmen(z, p, dok, D, N);
    });
}

bool fctDiaSchiessenAutoCADVoll(ProgrammZustand& z, AcadDokument& dok, const std::string& D,
                                const std::string& N, const typPunkt3& basis) {
    Prozedur p(z, "fctDiaSchiessenAutoCADVoll");
    return p.geschuetzt(false, [&] {
        p.step("Undo-Marke setzen");
        dok.SendCommand(fctBefehlUndoMarke());
        roterPunkt(p, dok, ausdehnung(dok, basis), basis);
        const bool ok = diaAufnehmen(z, p, dok, D, N);
        dok.SendCommand(fctBefehlUndoZurueck());
        return ok;
    });
}

bool SlidesErstellenVonBildausschnittAnpassen(ProgrammZustand& z, AcadDokument& dok,
                                              const std::string& D, const std::string& N,
                                              const typPunkt3& basis) {
    Prozedur p(z, "SlidesErstellenVonBildausschnittAnpassen");
    return p.geschuetzt(false, [&] {
        dok.SendCommand(fctBefehlUndoMarke());
        p.step("Ecken des Dias picken");
        typPunkt3 a, b;
        const bool gepickt = fctPunktLesen(dok.GetPoint("Erste Ecke für das Dia angeben: "), a) &&
                             fctPunktLesen(dok.GetPoint("Zweite Ecke für das Dia picken: "), b);
        // Two picks on one spot make no window: the view stays as it was.
        if (!gepickt || a.x == b.x || a.y == b.y) {
            dok.SendCommand(fctBefehlUndoZurueck());
            return false;
        }
        const std::array<typPunkt3, 2> ecken{typPunkt3{std::min(a.x, b.x), std::min(a.y, b.y), 0},
                                             typPunkt3{std::max(a.x, b.x), std::max(a.y, b.y), 0}};
        dok.SendCommand(fctBefehlZoomFenster(ecken));
        roterPunkt(p, dok, ecken, basis);
        const bool ok = diaAufnehmen(z, p, dok, D, N);
        dok.SendCommand(fctBefehlUndoZurueck());
        return ok;
    });
}

bool SlidesErstellenBildausschnitVerschieben(ProgrammZustand& z, AcadDokument& dok,
                                             const std::string& D, const std::string& N,
                                             const typPunkt3& basis) {
    Prozedur p(z, "SlidesErstellenBildausschnitVerschieben");
    return p.geschuetzt(false, [&] {
        p.step("Pan");
        dok.SendCommand(fctBefehlPan());
        aufHostWarten(z, dok);
        return fctDiaSchiessenAutoCADVoll(z, dok, D, N, basis);
    });
}

bool fctBildausschnittAnpassen(ProgrammZustand& z, AcadDokument& dok, BildKnopf knopf,
                               const std::string& D, const std::string& N, const typPunkt3& basis) {
    Prozedur p(z, "frmBildausschnittAnpassen");
    return p.geschuetzt(false, [&] {
        // A command still waiting in the host would take the next text as its
        // answer. The host's command line reads the escape character as the
        // key; typed keys would reach this program's own window instead.
        dok.SendCommand(fctBefehlAbbrechen());
        switch (knopf) {
            case BildKnopf::ZoomGross:
                p.step("cmbZoomGroß");
                dok.SendCommand(fctBefehlZoomFaktor(1.5));
                break;
            case BildKnopf::ZoomKlein:
                p.step("cmbZoomKlein");
                dok.SendCommand(fctBefehlZoomFaktor(0.5));
                break;
            case BildKnopf::Pan:
                return SlidesErstellenBildausschnitVerschieben(z, dok, D, N, basis);
            case BildKnopf::Verdeckt:
                p.step("cmbVerdeckt");
                dok.SendCommand(fctBefehlVerdeckt());
                break;
            case BildKnopf::ElementeAusblenden:
                p.step("cmbElementeAusblenden");
                if (dok.AuswahlAmBildschirm("SS1") > 0) dok.AuswahlAusblenden("SS1");
                break;
            case BildKnopf::Fenster:
                return SlidesErstellenVonBildausschnittAnpassen(z, dok, D, N, basis);
            case BildKnopf::Nein:
                return true;
        }
        return fctDiaSchiessenAutoCADVoll(z, dok, D, N, basis);
    });
}

}  // namespace tessara
