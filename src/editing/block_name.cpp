#include "editing/block_name.h"

#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "db/recordset.h"
#include "editing/bearbeiten_meldungen.h"
#include "organisation/schreib_einheit.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

std::size_t zeichen(const std::string& s) {
    std::size_t n = 0;
    for (const char c : s) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return n;
}

}  // namespace

long fctBlocknamePruefen(ProgrammZustand& z, db::Connection& con, const std::string& strName,
                         bool booVariante) {
    Prozedur p(z, "fctBlocknamePruefen");
    if (zeichen(strName) > kBlocknameLaenge) return kMsgNameHoechstens32;
    if (!booVariante) return 0;
    if (strName.empty()) return kMsgVarianteOhneName;
    return p.geschuetztNurLog(kMsgVarianteVergeben, [&]() -> long {
        db::Recordset rs;
        rs.open("SELECT Nr FROM tblVariationBloecke WHERE BlockName LIKE '" + strName + "'", con);
        return rs.eof() ? 0 : kMsgVarianteVergeben;
    });
}

bool fctBlocknameGesperrt(ProgrammZustand& z) {
    return fctIniByteLesen(z, z.strIniDatei, kAllgemeineDaten, "bytBlockNameNoEdit") != 0;
}

bool fctBlockNamAender(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr,
                       int ansicht, const std::string& strName) {
    Prozedur p(z, "fctBlockNamAender");
    if (ansicht < 0 || ansicht > 4 || strName.empty()) return false;
    if (fctBlocknameGesperrt(z)) {
        fctMsgbox(z, MsgboxArt::Info, {kMsgNameNichtAenderbar});
        return false;
    }
    db::Connection& con = m.datenbank().con;
    if (const long nr = fctBlocknamePruefen(z, con, strName, false)) {
        fctMsgbox(z, MsgboxArt::Info, {nr});
        return false;
    }
    const std::string spalte = "BlkName" + std::to_string(ansicht);
    const int ergebnis = p.geschuetzt(-1, [&] {
        SchreibEinheit e(con);
        db::Recordset rs;
        rs.open("SELECT Nr, " + spalte + " FROM " + z.strTblBlockInfo + " WHERE Block = '" +
                    strBlockNr + "'",
                con, db::adOpenKeyset, db::adLockOptimistic);
        if (rs.eof()) return static_cast<int>(kMsgKeinBlock);
        if (ansicht > 0 && rs.value(spalte).isNull()) return static_cast<int>(kMsgAnsichtFehlt);
        p.step("Namen schreiben");
        rs.setValue(spalte, strName);
        rs.update();
        e.commit();
        return 0;
    });
    if (ergebnis > 0) fctMsgbox(z, MsgboxArt::Info, {static_cast<long>(ergebnis)});
    if (ergebnis != 0) return false;
    m.subSeiteNeuAnzeigen();
    return true;
}

}  // namespace tessara
