#include "authoring/slidelib_entries.h"

#include <exception>
#include <filesystem>
#include <system_error>

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "platform/case_fold.h"
#include "platform/files.h"
#include "startup/benutzer.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace fs = std::filesystem;

namespace {

void verschiebenFallsDa(ProgrammZustand& z, const std::string& von, const std::string& nach) {
    if (fctDateiExistiert(von)) MoveAFile(z, von, nach);
}

// Files of the Variant directory whose names begin with the old block
// number and end in the extension: a block's Variants are filed under its
// number, so they follow it to the new slot.
void variantenVerschieben(ProgrammZustand& z, const std::string& verzeichnis,
                          const std::string& alt, const std::string& neu,
                          const std::string& endung) {
    std::error_code ec;
    const fs::path nativ = fctNativerPfad(verzeichnis);
    if (!fs::is_directory(nativ, ec)) return;
    for (const auto& e : fs::directory_iterator(nativ, ec)) {
        if (!e.is_regular_file(ec)) continue;
        const std::string name = platform::utf8String(e.path().filename());
        if (name.size() < alt.size() + endung.size()) continue;
        if (!platform::startsWithIgnoreCase(name, alt)) continue;
        if (!platform::equalsIgnoreCase(name.substr(name.size() - endung.size()), endung)) continue;
        MoveAFile(z, verzeichnis + name, verzeichnis + neu + name.substr(alt.size()));
    }
}

}  // namespace

std::string fctSlideLibRelativ(const std::string& strGespeichert, const std::string& strBasis,
                               const std::string& strOrdnerNr) {
    if (!strBasis.empty() && platform::startsWithIgnoreCase(strGespeichert, strBasis)) {
        std::string rest = strGespeichert.substr(strBasis.size());
        if (platform::startsWithIgnoreCase(rest, strOrdnerNr + "\\")) return rest;
    }
    const std::string teil = "\\" + strOrdnerNr + "\\";
    std::string klein = platform::foldCase(strGespeichert);
    const auto pos = klein.rfind(platform::foldCase(teil));
    if (pos == std::string::npos) return {};
    return strGespeichert.substr(pos + 1);
}

long fctPfadEintragAendern(ProgrammZustand& z, db::Connection& con, db::Recordset& rsOrdner,
                           const std::string& strBasis) {
    Prozedur p(z, "fctPfadEintragAendern", true);
    long geaendert = 0;
    long lngOrdnerPos = -1;
    try {
        p.step("Hinweis anzeigen");
        if (z.benutzer)
            z.benutzer->fortschritt(0, 1,
                                    "DatenbankEinträge müssen geändert werden.\rDie Bearbeitung "
                                    "kann einige Zeit dauern!");
        p.step("Recordset öffnen");
        db::Recordset rs;
        rs.open("SELECT Nr, Block, OrdnerID, SlideLib FROM tblBlockInfo", con, db::adOpenKeyset,
                db::adLockOptimistic);
        p.step("Position merken");
        lngOrdnerPos = rsOrdner.absolutePosition();
        const long gesamt = rs.recordCount();
        long nr = 0;
        if (gesamt > 0) rs.moveFirst();
        while (!rs.eof()) {
            p.step("Eintrag prüfen");
            ++nr;
            const std::string ordnerId = rs.value("OrdnerID").toString();
            rsOrdner.moveFirst();
            if (!ordnerId.empty() && rsOrdner.find("Nr = " + ordnerId)) {
                const std::string ordnerNr = rsOrdner.text("OrdnerNr");
                const std::string alt = rs.text("SlideLib");
                if (!ordnerNr.empty() && !alt.empty() &&
                    !platform::startsWithIgnoreCase(alt, ordnerNr)) {
                    const std::string neu = fctSlideLibRelativ(alt, strBasis, ordnerNr);
                    if (!neu.empty()) {
                        rs.setValue("SlideLib", neu);
                        rs.update();
                        ++geaendert;
                    }
                }
            }
            if (z.benutzer && nr % 100 == 0)
                z.benutzer->fortschritt(nr, gesamt, "DatenbankEinträge werden geändert");
            rs.moveNext();
        }
        p.step("Ordner zurücksetzen");
        if (lngOrdnerPos > 0) rsOrdner.setAbsolutePosition(lngOrdnerPos);
        if (z.benutzer) z.benutzer->fortschritt(0, 0, {});
        return geaendert;
    } catch (const std::exception& e) {
        p.fehler(e);
        try {
            if (lngOrdnerPos > 0) rsOrdner.setAbsolutePosition(lngOrdnerPos);
        } catch (const std::exception&) {
        }
        if (z.benutzer) z.benutzer->fortschritt(0, 0, {});
        return -1;
    }
}

bool DateienUmEinePositionVerschieben(ProgrammZustand& z, db::Recordset& rsBlock,
                                      const std::string& strBasis, const std::string& strOrdnerNr,
                                      const std::string& strAlt, const std::string& strNeu) {
    Prozedur p(z, "DateienUmEinePositionVerschieben");
    return p.geschuetzt(false, [&] {
        const std::string slideLib = rsBlock.text("SlideLib");
        const bool einzeldia = !slideLib.empty() && fctSlideLibIstEinzeldia(slideLib);

        p.step("Slides verschieben");
        if (einzeldia)
            verschiebenFallsDa(z, strBasis + fctDiaDatei(strOrdnerNr, strAlt, 0),
                               strBasis + fctDiaDatei(strOrdnerNr, strNeu, 0));
        else
            verschiebenFallsDa(z, strBasis + fctDiaBibliothek(strOrdnerNr, strAlt, 0),
                               strBasis + fctDiaBibliothek(strOrdnerNr, strNeu, 0));
        for (int v = 1; v <= 4; ++v) {
            verschiebenFallsDa(z, strBasis + fctDiaBibliothek(strOrdnerNr, strAlt, v),
                               strBasis + fctDiaBibliothek(strOrdnerNr, strNeu, v));
            verschiebenFallsDa(z, strBasis + fctDiaDatei(strOrdnerNr, strAlt, v),
                               strBasis + fctDiaDatei(strOrdnerNr, strNeu, v));
        }

        p.step("Zeichnungsdatei verschieben");
        for (int v = 0; v <= 4; ++v)
            verschiebenFallsDa(z, strBasis + fctZeichnungDatei(strOrdnerNr, strAlt, v),
                               strBasis + fctZeichnungDatei(strOrdnerNr, strNeu, v));

        const std::string varia = strBasis + fctVariantenVerzeichnis(strOrdnerNr);
        p.step("mögliche Varianten verschieben");
        variantenVerschieben(z, varia, strAlt, strNeu, ".dwg");
        p.step("möglich dat-Dateien verschieben (Varianten)");
        variantenVerschieben(z, varia, strAlt, strNeu, ".dat");

        p.step("SlideLib-Eintrag ändern");
        if (!slideLib.empty()) {
            rsBlock.setValue("SlideLib", fctSlideLibEintrag(strOrdnerNr, strNeu, !einzeldia));
            rsBlock.update();
        }
        return true;
    });
}

}  // namespace tessara
