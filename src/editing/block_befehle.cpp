#include "editing/block_befehle.h"

#include "cad/cad_einstellungen.h"
#include "captions/meldungen.h"
#include "editing/bearbeiten_meldungen.h"
#include "editing/block_loeschen.h"
#include "editing/block_name.h"
#include "editing/block_verschieben.h"
#include "editing/varianten.h"
#include "startup/ini_datei.h"

namespace tessara {

std::string BlockBefehle::ausgewaehlt() const {
    const auto& slots = s_.modell().seitenSlots();
    const int pos = s_.modell().intPosition();
    if (pos < 0 || pos >= static_cast<int>(slots.size()) || !slots[pos].booBelegt) return {};
    return slots[pos].strBlockNr;
}

template <class Op>
typAenderung BlockBefehle::ausfuehren(typAenderung was, Op op) {
    if (s_.schreibgeschuetzt()) {
        fctMsgbox(z_, MsgboxArt::Info, {kMsgSchreibgeschuetzt});
        return kNichtsGeaendert;
    }
    const std::string nr = ausgewaehlt();
    if (nr.empty() || !op(s_.modell(), nr)) return kNichtsGeaendert;
    return was;
}

typAenderung BlockBefehle::fctNeu(NeuArt art, CadVerbindung& v) {
    if (s_.schreibgeschuetzt()) {
        fctMsgbox(z_, MsgboxArt::Info, {kMsgSchreibgeschuetzt});
        return kNichtsGeaendert;
    }
    BlockNeuUmgebung u{
        z_,
        s_.modell(),
        v,
        s_.setup(),
        fctCadEinstellungenLesen(z_),
        fctIniWertLesen(z_.strIniDatei, "AllgemeineDaten", "SlidelibUeberShell") == "1",
        fctBlocknameGesperrt(z_)};
    const auto r = fctNeuAusZeichnung(u, art);
    return r.booAngelegt ? kSeiteGeaendert | kAnsichtenGeaendert : kNichtsGeaendert;
}

typAenderung BlockBefehle::fctVerschieben(int intZiel) {
    const auto& slots = s_.modell().seitenSlots();
    const auto* o = s_.modell().aktuellerOrdner();
    if (intZiel < 0 || intZiel >= static_cast<int>(slots.size()) || !o) return kNichtsGeaendert;
    return fctVerschieben(o->OrdnerNr, o->Nr, slots[intZiel].strBlockNr);
}

typAenderung BlockBefehle::fctVerschieben(const std::string& strOrdnerNr, long lngOrdnerID,
                                          const std::string& strZielBlockNr) {
    return ausfuehren(kSeiteGeaendert | kAnsichtenGeaendert, [&](auto& m, const auto& nr) {
        return DateienUmEinePositionVerschieben(z_, m, nr, strOrdnerNr, lngOrdnerID,
                                                strZielBlockNr);
    });
}

typAenderung BlockBefehle::fctMarkierteVerschieben() {
    if (s_.schreibgeschuetzt()) {
        fctMsgbox(z_, MsgboxArt::Info, {kMsgSchreibgeschuetzt});
        return kNichtsGeaendert;
    }
    // Even a move that stopped half way changed the Page.
    tessara::fctMarkierteVerschieben(z_, s_.modell());
    return kSeiteGeaendert | kAnsichtenGeaendert;
}

typAenderung BlockBefehle::fctLoeschen() {
    return ausfuehren(kSeiteGeaendert | kAnsichtenGeaendert,
                      [&](auto& m, const auto& nr) { return fctBlockLoeschen(z_, m, nr); });
}

typAenderung BlockBefehle::fctNameAendern(int ansicht, const std::string& strName) {
    return ausfuehren(kSeiteGeaendert | kAnsichtenGeaendert, [&](auto& m, const auto& nr) {
        return fctBlockNamAender(z_, m, nr, ansicht, strName);
    });
}

typAenderung BlockBefehle::fctAnsichtLoeschen(int ansicht) {
    const typAenderung was = ausfuehren(kAnsichtenGeaendert, [&](auto& m, const auto& nr) {
        return tessara::fctAnsichtLoeschen(z_, m, nr, ansicht);
    });
    if (was != kNichtsGeaendert && s_.intEinzufuegendeAnsicht() == ansicht)
        s_.setEinzufuegendeAnsicht(0);
    return was;
}

typAenderung BlockBefehle::fctVarianteUmbenennen(const std::string& strDateiName,
                                                 const std::string& strNeu) {
    return ausfuehren(kAnsichtenGeaendert, [&](auto& m, const auto& nr) {
        return tessara::fctVarianteUmbenennen(z_, m, nr, strDateiName, strNeu);
    });
}

typAenderung BlockBefehle::fctVarianteLoeschen(const std::string& strDateiName) {
    return ausfuehren(kAnsichtenGeaendert, [&](auto& m, const auto& nr) {
        return tessara::fctVarianteLoeschen(z_, m, nr, strDateiName);
    });
}

}  // namespace tessara
