#include "editing/ansichten.h"

#include "authoring/datei_layout.h"
#include "cad/block_daten_lesen.h"
#include "editing/block_akte.h"
#include "editing/varianten.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

std::vector<typAnsichtBild> fctAnsichtenBilder(ProgrammZustand& z, NavigationsModell& m,
                                               const std::string& strBlockNr) {
    Prozedur p(z, "fctAnsichtenBilder");
    return p.geschuetztNurLog(std::vector<typAnsichtBild>(), [&] {
        std::vector<typAnsichtBild> bilder;
        const auto a = fctBlockAkteLesen(z, m.datenbank().con, strBlockNr, m.fctSlotNr(strBlockNr));
        if (!a) return bilder;
        const std::string& basis = m.strBasisVerzeichnis();
        const bool bibliothek = !fctSlideLibIstEinzeldia(a->SlideLib);
        bilder.push_back({0, a->BlkName[0], fctBildnameAnsicht0(basis, a->SlideLib),
                          basis + fctZeichnungDatei(a->OrdnerNr, a->Block, 0)});
        for (int v = 1; v < 5; ++v) {
            if (a->BlkName[v].empty()) continue;
            bilder.push_back({v, a->BlkName[v],
                              bibliothek ? basis + fctDiaBibliothek(a->OrdnerNr, a->Block, v) +
                                               "(" + fctDiaCode(v) + ")"
                                         : basis + fctDiaDatei(a->OrdnerNr, a->Block, v),
                              basis + fctZeichnungDatei(a->OrdnerNr, a->Block, v)});
        }
        return bilder;
    });
}

std::optional<typEinfuegeAuftrag> EinzufuegendeAnsichtBestimmenUndRsEinlesen(ProgrammZustand& z,
                                                                             BibliothekSitzung& s) {
    Prozedur p(z, "EinzufuegendeAnsichtBestimmenUndRsEinlesen", true);
    NavigationsModell& m = s.modell();
    const auto& slots = m.seitenSlots();
    const int pos = m.intPosition();
    if (pos < 0 || pos >= static_cast<int>(slots.size()) || !slots[pos].booBelegt)
        return std::nullopt;
    const std::string nr = slots[pos].strBlockNr;
    auto auftrag = p.geschuetztNurLog(std::optional<typEinfuegeAuftrag>(), [&] {
        std::optional<typEinfuegeAuftrag> a;
        p.step("Block lesen");
        db::Recordset rs;
        rs.open("SELECT * FROM " + z.strTblBlockInfo + " WHERE Block = '" + nr + "'",
                m.datenbank().con);
        if (rs.eof()) return a;
        a.emplace();
        a->block = fctBlockDatenAusRs(rs);
        if (const auto* o = m.aktuellerOrdner()) a->block.OrdnerNr = fctOhneBlanks(o->OrdnerNr);
        const int v = s.intEinzufuegendeAnsicht();
        a->ansicht = v > 0 && v < 5 && !a->block.BlkName[v].empty() ? v : 0;
        return a;
    });
    if (auftrag) auftrag->varianten = fctVariantenLesen(z, m, nr);
    return auftrag;
}

}  // namespace tessara
