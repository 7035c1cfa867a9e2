#include "editing/block_loeschen.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <stdexcept>

#include "authoring/datei_layout.h"
#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "editing/bearbeiten_meldungen.h"
#include "editing/block_akte.h"
#include "editing/datei_umzug.h"
#include "editing/varianten_datei.h"
#include "library/schema.h"
#include "organisation/schreib_einheit.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

// Moves the files that exist into a fresh trash directory, then runs the
// row changes in one unit; on any failure everything goes back. `davor` may
// change files too (through the same take-back list, or into the trash)
// before the rows.
bool loeschen(ProgrammZustand& z, NavigationsModell& m, Prozedur& p,
              const std::vector<std::string>& dateien,
              const std::function<bool(DateiUmzug&, const std::string&)>& davor,
              const std::function<void(db::Connection&)>& zeilen) {
    const std::string basis = m.strBasisVerzeichnis();
    DateiUmzug umzug(z);
    std::string korb;
    try {
        p.step("Dateien in den Papierkorb");
        korb = fctPapierkorbAnlegen(z);
        if (korb.empty()) throw std::runtime_error("kein Papierkorb im temporären Verzeichnis");
        for (const auto& d : dateien)
            if (fctPfadExistiert(basis + d) && !umzug.verschieben(basis + d, korb + d))
                throw std::runtime_error("Datei nicht gelöscht: " + d);
        if (davor && !davor(umzug, korb))
            throw std::runtime_error("Variantendatei nicht geschrieben");
        p.step("Einträge löschen");
        {
            SchreibEinheit e(m.datenbank().con);
            zeilen(m.datenbank().con);
            e.commit();
        }
        umzug.behalten();
    } catch (const std::exception& e) {
        p.fehler(e, true);
        umzug.rueckgaengig();
        subPapierkorbLeeren(z, korb);
        fctMsgbox(z, MsgboxArt::Info, {kMsgLoeschenMisslungen});
        return false;
    }
    p.step("Papierkorb leeren");
    subPapierkorbLeeren(z, korb);
    m.subSeiteNeuAnzeigen();
    return true;
}

std::optional<typBlockAkte> akte(ProgrammZustand& z, NavigationsModell& m, Prozedur& p,
                                 const std::string& strBlockNr) {
    auto a = p.geschuetztNurLog(std::optional<typBlockAkte>(), [&] {
        return fctBlockAkteFrisch(z, m.datenbank().con, strBlockNr, m.fctSlotNr(strBlockNr));
    });
    if (!a) fctMsgbox(z, MsgboxArt::Info, {kMsgKeinBlock});
    return a;
}

}  // namespace

bool fctBlockLoeschen(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr) {
    Prozedur p(z, "fctBlockLoeschen");
    const auto a = akte(z, m, p, strBlockNr);
    if (!a || !fctMsgbox(z, MsgboxArt::Frage, {kMsgBlockLoeschenFrage, strBlockNr})) return false;
    std::vector<std::string> varianten;
    for (const auto& v : a->varianten) varianten.push_back(v.BlockDateiName);
    return loeschen(
        z, m, p, fctBlockDateien(a->OrdnerNr, strBlockNr, varianten), {}, [&](db::Connection& con) {
            const std::string nr = std::to_string(a->Nr);
            con.execute("DELETE FROM tblVariationBloecke WHERE BlockID = " + nr);
            con.execute("DELETE FROM tblMarkierteBloecke WHERE BlockNr = '" + strBlockNr + "'");
            con.execute("DELETE FROM " + z.strTblBlockInfo + " WHERE Nr = " + nr);
        });
}

bool fctAnsichtLoeschen(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr,
                        int ansicht) {
    Prozedur p(z, "fctAnsichtLoeschen");
    if (ansicht < 1 || ansicht > 4) return false;
    const auto a = akte(z, m, p, strBlockNr);
    if (!a) return false;
    if (a->BlkName[ansicht].empty()) {
        fctMsgbox(z, MsgboxArt::Info, {kMsgAnsichtFehlt});
        return false;
    }
    if (!fctMsgbox(z, MsgboxArt::Frage,
                   {kMsgAnsichtLoeschenFrage, strBlockNr + " / " + a->BlkName[ansicht]}))
        return false;
    const std::string v = std::to_string(ansicht);
    std::string set = "BlkName" + v + " = Null";
    for (int punkt = 0; punkt < 6; ++punkt)
        for (int achse = 0; achse < 3; ++achse)
            set += ", " + fctEinfuegepunktSpalte(punkt, achse, ansicht) + " = Null";
    return loeschen(z, m, p, fctAnsichtDateien(a->OrdnerNr, strBlockNr, ansicht), {},
                    [&](db::Connection& con) {
                        con.execute("UPDATE " + z.strTblBlockInfo + " SET " + set +
                                    " WHERE Nr = " + std::to_string(a->Nr));
                    });
}

bool fctVarianteLoeschen(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr,
                         const std::string& strVariantenDatei) {
    Prozedur p(z, "fctVarianteLoeschen");
    const auto a = akte(z, m, p, strBlockNr);
    if (!a) return false;
    const typVariantenZeile* zeile = nullptr;
    for (const auto& v : a->varianten)
        if (v.BlockDateiName == strVariantenDatei) zeile = &v;
    if (!zeile || !fctMsgbox(z, MsgboxArt::Frage, {kMsgVarianteLoeschenFrage, zeile->BlockName}))
        return false;
    std::vector<std::string> dateien;
    for (int v = 0; v < 5; ++v)
        dateien.push_back(fctVarianteZeichnung(a->OrdnerNr, strVariantenDatei, v));
    const std::string satzDatei =
        m.strBasisVerzeichnis() + fctVariantenSatzDatei(a->OrdnerNr, strBlockNr);
    // The record file keeps the other Variants' records.
    const auto saetzeOhne = [&](DateiUmzug& umzug, const std::string& korb) {
        if (!fctDateiExistiert(satzDatei)) return true;
        std::string bytes;
        auto saetze =
            fctDateiLesen(satzDatei, bytes) ? fctVariantenSaetzeLesen(bytes) : std::nullopt;
        if (!saetze) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgVariantenDateiDefekt, satzDatei});
            return false;
        }
        std::erase_if(*saetze, [&](const auto& s) { return s.datei == strVariantenDatei; });
        if (saetze->empty()) return umzug.verschieben(satzDatei, korb + strBlockNr + ".dat");
        return umzug.schreiben(satzDatei, fctVariantenSaetzeBytes(*saetze));
    };
    const long nr = zeile->Nr;
    return loeschen(z, m, p, dateien, saetzeOhne, [&](db::Connection& con) {
        con.execute("DELETE FROM tblVariationBloecke WHERE Nr = " + std::to_string(nr));
    });
}

}  // namespace tessara
