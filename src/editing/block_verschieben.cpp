#include "editing/block_verschieben.h"

#include <algorithm>
#include <exception>
#include <stdexcept>

#include "authoring/datei_layout.h"
#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "editing/bearbeiten_meldungen.h"
#include "editing/block_akte.h"
#include "editing/datei_umzug.h"
#include "editing/varianten_datei.h"
#include "organisation/schreib_einheit.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

std::string in(const std::string& s) { return "'" + s + "'"; }

// The record file's records name the Variants' files: they follow the move.
bool satzDateiUmschreiben(ProgrammZustand& z, DateiUmzug& umzug, const std::string& datei,
                          const std::string& alt, const std::string& neu) {
    if (!fctDateiExistiert(datei)) return true;
    std::string bytes;
    auto saetze = fctDateiLesen(datei, bytes) ? fctVariantenSaetzeLesen(bytes) : std::nullopt;
    if (!saetze) {
        fctMsgbox(z, MsgboxArt::Info, {kMsgVariantenDateiDefekt, datei});
        return false;
    }
    for (auto& s : *saetze) s.datei = fctVarianteDateiNachUmzug(s.datei, alt, neu);
    return umzug.schreiben(datei, fctVariantenSaetzeBytes(*saetze));
}

}  // namespace

std::string fctVarianteDateiNachUmzug(const std::string& strDatei, const std::string& alt,
                                      const std::string& neu) {
    if (strDatei.compare(0, alt.size(), alt) == 0) return neu + strDatei.substr(alt.size());
    return strDatei;
}

bool DateienUmEinePositionVerschieben(ProgrammZustand& z, NavigationsModell& m,
                                      const std::string& strBlockNr,
                                      const std::string& strZielOrdnerNr, long lngZielOrdnerID,
                                      const std::string& strZielBlockNr) {
    Prozedur p(z, "DateienUmEinePositionVerschieben");
    db::Connection& con = m.datenbank().con;
    const std::string basis = m.strBasisVerzeichnis();
    const std::string zielOrdner = fctOhneBlanks(strZielOrdnerNr);
    DateiUmzug umzug(z);
    try {
        if (strBlockNr == strZielBlockNr) return false;
        p.step("Block lesen");
        std::optional<typBlockAkte> a;
        bool belegt = false;
        {
            SchreibEinheit e(con);
            a = fctBlockAkteLesen(z, con, strBlockNr);
            belegt = fctBlockVorhanden(z, con, strZielBlockNr);
            e.commit();
        }
        if (!a) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgKeinBlock});
            return false;
        }
        if (belegt) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgZielplatzBelegt, strZielBlockNr});
            return false;
        }
        std::vector<std::string> alteNamen, neueNamen;
        for (const auto& v : a->varianten) {
            alteNamen.push_back(v.BlockDateiName);
            neueNamen.push_back(
                fctVarianteDateiNachUmzug(v.BlockDateiName, strBlockNr, strZielBlockNr));
        }
        const auto von = fctBlockDateien(a->OrdnerNr, strBlockNr, alteNamen);
        const auto nach = fctBlockDateien(zielOrdner, strZielBlockNr, neueNamen);
        const std::size_t ersteVariante = 15;  // slides of five Views, then five drawings
        for (std::size_t i = 0; i < von.size(); ++i) {
            p.step(i < 10               ? "Slides verschieben"
                   : i < ersteVariante  ? "Zeichnungsdatei verschieben"
                   : i + 1 < von.size() ? "mögliche Varianten verschieben"
                                        : "möglich dat-Dateien verschieben (Varianten)");
            if (!fctDateiExistiert(basis + von[i])) continue;
            if (!umzug.verschieben(basis + von[i], basis + nach[i]))
                throw std::runtime_error("Datei nicht verschoben: " + von[i]);
        }
        if (!satzDateiUmschreiben(z, umzug, basis + nach.back(), strBlockNr, strZielBlockNr))
            throw std::runtime_error("Variantendatei nicht umgeschrieben: " + nach.back());

        p.step("SlideLib-Eintrag ändern");
        const bool bibliothek = !fctSlideLibIstEinzeldia(a->SlideLib);
        const std::string slideLib =
            a->SlideLib.empty() ? std::string()
                                : fctSlideLibEintrag(zielOrdner, strZielBlockNr, bibliothek);
        {
            SchreibEinheit e(con);
            // Another workstation may have filled the slot meanwhile.
            if (fctBlockVorhanden(z, con, strZielBlockNr))
                throw std::runtime_error("Zielplatz inzwischen belegt: " + strZielBlockNr);
            con.execute("UPDATE " + z.strTblBlockInfo + " SET Block = " + in(strZielBlockNr) +
                        ", OrdnerID = " + std::to_string(lngZielOrdnerID) +
                        ", SlideLib = " + (slideLib.empty() ? "Null" : in(slideLib)) +
                        " WHERE Nr = " + std::to_string(a->Nr));
            for (std::size_t i = 0; i < a->varianten.size(); ++i)
                if (neueNamen[i] != alteNamen[i])
                    con.execute(
                        "UPDATE tblVariationBloecke SET BlockDateiName = " + in(neueNamen[i]) +
                        " WHERE Nr = " + std::to_string(a->varianten[i].Nr));
            con.execute(
                "UPDATE tblMarkierteBloecke SET BlockNr = " + in(strZielBlockNr) +
                ", SpeicherOrtDWG = " + in(fctZeichnungDatei(zielOrdner, strZielBlockNr, 0)) +
                ", SpeicherOrtSlide = " + (slideLib.empty() ? "Null" : in(slideLib)) +
                " WHERE BlockNr = " + in(strBlockNr));
            e.commit();
        }
        umzug.behalten();
    } catch (const std::exception& e) {
        p.fehler(e, true);
        umzug.rueckgaengig();
        fctMsgbox(z, MsgboxArt::Info, {kMsgVerschiebenMisslungen});
        return false;
    }
    m.subSeiteNeuAnzeigen();
    return true;
}

bool fctMarkierteVerschieben(ProgrammZustand& z, NavigationsModell& m) {
    Prozedur p(z, "fctMarkierteVerschieben");
    std::vector<std::string> markiert;
    const bool gelesen = p.geschuetztNurLog(false, [&] {
        db::Recordset rs;
        rs.open("SELECT BlockNr FROM tblMarkierteBloecke ORDER BY Nr", m.datenbank().con);
        for (; !rs.eof(); rs.moveNext()) {
            const std::string nr = rs.text("BlockNr");
            if (std::find(markiert.begin(), markiert.end(), nr) == markiert.end() &&
                fctBlockVorhanden(z, m.datenbank().con, nr))
                markiert.push_back(nr);
        }
        return true;
    });
    const auto* o = m.aktuellerOrdner();
    if (!gelesen || !o) return false;
    if (markiert.empty()) {
        fctMsgbox(z, MsgboxArt::Info, {kMsgKeineMarkierten});
        return false;
    }
    std::vector<std::string> frei;
    const auto& slots = m.seitenSlots();
    for (std::size_t i = static_cast<std::size_t>(m.intPosition()); i < slots.size(); ++i)
        if (!slots[i].booBelegt) frei.push_back(slots[i].strBlockNr);
    if (frei.size() < markiert.size()) {
        fctMsgbox(z, MsgboxArt::Info,
                  {kMsgZuWenigFreiePlaetze,
                   std::to_string(markiert.size()) + " / " + std::to_string(frei.size())});
        return false;
    }
    const long ordnerId = o->Nr;
    const std::string ordnerNr = o->OrdnerNr;
    for (std::size_t i = 0; i < markiert.size(); ++i) {
        p.step("Block verschieben");
        if (!DateienUmEinePositionVerschieben(z, m, markiert[i], ordnerNr, ordnerId, frei[i]))
            return false;
    }
    p.step("Markierungen löschen");
    m.fctMarkierungenAlleLoeschen();
    m.subSeiteNeuAnzeigen();
    return true;
}

}  // namespace tessara
