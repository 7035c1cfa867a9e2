#include "editing/varianten.h"

#include <algorithm>
#include <exception>
#include <stdexcept>

#include "authoring/dateien_operationen.h"
#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "editing/bearbeiten_meldungen.h"
#include "editing/block_akte.h"
#include "editing/block_name.h"
#include "editing/datei_umzug.h"
#include "organisation/schreib_einheit.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

std::optional<typBlockAkte> akte(ProgrammZustand& z, NavigationsModell& m, Prozedur& p,
                                 const std::string& strBlockNr, bool frisch = true) {
    return p.geschuetztNurLog(std::optional<typBlockAkte>(), [&] {
        const long nr = m.fctSlotNr(strBlockNr);
        return frisch ? fctBlockAkteFrisch(z, m.datenbank().con, strBlockNr, nr)
                      : fctBlockAkteLesen(z, m.datenbank().con, strBlockNr, nr);
    });
}

bool namePruefen(ProgrammZustand& z, NavigationsModell& m, const std::string& strName) {
    const long nr = fctBlocknamePruefen(z, m.datenbank().con, strName, true);
    if (nr) fctMsgbox(z, MsgboxArt::Info, {nr});
    return nr == 0;
}

std::string satzDatei(NavigationsModell& m, const typBlockAkte& a) {
    return m.strBasisVerzeichnis() + fctVariantenSatzDatei(a.OrdnerNr, a.Block);
}

std::optional<std::vector<typVariantenSatz>> saetzeLaden(ProgrammZustand& z,
                                                         const std::string& datei) {
    if (!fctDateiExistiert(datei)) return std::vector<typVariantenSatz>{};
    std::string bytes;
    auto saetze = fctDateiLesen(datei, bytes) ? fctVariantenSaetzeLesen(bytes) : std::nullopt;
    if (!saetze) fctMsgbox(z, MsgboxArt::Info, {kMsgVariantenDateiDefekt, datei});
    return saetze;
}

// Writes the record file, then runs the row change; the file goes back when
// the row change fails.
bool schreiben(ProgrammZustand& z, NavigationsModell& m, Prozedur& p, const std::string& datei,
               const std::vector<typVariantenSatz>& saetze, const std::string& sql) {
    DateiUmzug umzug(z);
    try {
        p.step("Variantendatei schreiben");
        if (!fctFolderExistAnlegen(z, fctVerzeichnisVon(datei)) ||
            !umzug.schreiben(datei, fctVariantenSaetzeBytes(saetze)))
            throw std::runtime_error("Variantendatei nicht geschrieben: " + datei);
        p.step("Variante eintragen");
        SchreibEinheit e(m.datenbank().con);
        m.datenbank().con.execute(sql);
        e.commit();
        umzug.behalten();
        return true;
    } catch (const std::exception& e) {
        p.fehler(e);
        return false;
    }
}

}  // namespace

std::vector<typVariante> fctVariantenLesen(ProgrammZustand& z, NavigationsModell& m,
                                           const std::string& strBlockNr) {
    Prozedur p(z, "fctVariantenLesen");
    std::vector<typVariante> v;
    if (const auto a = akte(z, m, p, strBlockNr, false))
        for (const auto& zeile : a->varianten) v.push_back({zeile.BlockName, zeile.BlockDateiName});
    return v;
}

std::optional<std::vector<typVariantenSatz>> fctVariantenSaetzeLaden(
    ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr) {
    Prozedur p(z, "fctVariantenSaetzeLaden");
    const auto a = akte(z, m, p, strBlockNr, false);
    if (!a) return std::nullopt;
    return saetzeLaden(z, satzDatei(m, *a));
}

std::string fctVarianteDateiNameNeu(ProgrammZustand& z, NavigationsModell& m,
                                    const std::string& strBlockNr) {
    const auto v = fctVariantenLesen(z, m, strBlockNr);
    for (int n = 1;; ++n) {
        const std::string name = strBlockNr + "_" + std::to_string(n);
        if (std::none_of(v.begin(), v.end(),
                         [&](const auto& x) { return x.BlockDateiName == name; }))
            return name;
    }
}

bool subBlockdatenInDatenbankAbspeichernVariante(ProgrammZustand& z, NavigationsModell& m,
                                                 const std::string& strBlockNr,
                                                 const std::string& strName,
                                                 const std::string& strDateiName,
                                                 const std::map<int, typEinfuegepunkte>& punkte) {
    Prozedur p(z, "subBlockdatenInDatenbankAbspeichernVariante");
    const auto a = akte(z, m, p, strBlockNr);
    if (!a) {
        fctMsgbox(z, MsgboxArt::Info, {kMsgKeinBlock});
        return false;
    }
    if (!namePruefen(z, m, strName)) return false;
    const std::string datei = satzDatei(m, *a);
    auto saetze = saetzeLaden(z, datei);
    if (!saetze) return false;
    for (const auto& [ansicht, pkt] : punkte)
        saetze->push_back({strName, strDateiName, ansicht, pkt});
    return schreiben(z, m, p, datei, *saetze,
                     "INSERT INTO tblVariationBloecke (BlockName, BlockID, BlockDateiName) "
                     "VALUES ('" +
                         strName + "', " + std::to_string(a->Nr) + ", '" + strDateiName + "')");
}

bool fctVarianteUmbenennen(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr,
                           const std::string& strDateiName, const std::string& strNeu) {
    Prozedur p(z, "fctVarianteUmbenennen");
    const auto a = akte(z, m, p, strBlockNr);
    if (!a) return false;
    const auto zeile = std::find_if(a->varianten.begin(), a->varianten.end(), [&](const auto& v) {
        return v.BlockDateiName == strDateiName;
    });
    if (zeile == a->varianten.end() || !namePruefen(z, m, strNeu)) return false;
    const std::string datei = satzDatei(m, *a);
    auto saetze = saetzeLaden(z, datei);
    if (!saetze) return false;
    for (auto& s : *saetze)
        if (s.datei == strDateiName) s.name = strNeu;
    return schreiben(z, m, p, datei, *saetze,
                     "UPDATE tblVariationBloecke SET BlockName = '" + strNeu +
                         "' WHERE Nr = " + std::to_string(zeile->Nr));
}

}  // namespace tessara
