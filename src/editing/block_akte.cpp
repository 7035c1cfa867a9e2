#include "editing/block_akte.h"

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "db/recordset.h"
#include "editing/varianten_datei.h"
#include "organisation/schreib_einheit.h"
#include "startup/pfade.h"

namespace tessara {

std::optional<typBlockAkte> fctBlockAkteLesen(ProgrammZustand& z, db::Connection& con,
                                              const std::string& strBlockNr, long lngNr) {
    const std::string sql =
        "SELECT * FROM " + z.strTblBlockInfo + " WHERE Block = '" + strBlockNr + "'";
    db::Recordset rs;
    if (lngNr > 0) {
        rs.open(sql + " AND Nr = " + std::to_string(lngNr), con);
        if (rs.eof()) rs.close();
    }
    if (rs.state() != db::adStateOpen) rs.open(sql, con);
    if (rs.eof()) return std::nullopt;
    typBlockAkte a;
    a.Nr = static_cast<long>(rs.value("Nr").asInt());
    a.Block = rs.text("Block");
    const sql::Value ordner = rs.value("OrdnerID");
    a.OrdnerID = ordner.isNull() ? 0 : static_cast<long>(ordner.asInt());
    a.SlideLib = rs.text("SlideLib");
    for (int v = 0; v < 5; ++v) a.BlkName[v] = rs.text("BlkName" + std::to_string(v));
    db::Recordset ro;
    ro.open("SELECT OrdnerNr FROM tblOrdner WHERE Nr = " + std::to_string(a.OrdnerID), con);
    // The block number begins with its Folder's code, should the row be gone.
    a.OrdnerNr = fctOhneBlanks(ro.eof() ? a.Block.substr(0, 3) : ro.text("OrdnerNr"));
    db::Recordset rv;
    rv.open("SELECT Nr, BlockName, BlockDateiName FROM tblVariationBloecke WHERE BlockID = " +
                std::to_string(a.Nr) + " ORDER BY Nr",
            con);
    for (; !rv.eof(); rv.moveNext())
        a.varianten.push_back({static_cast<long>(rv.value("Nr").asInt()), rv.text("BlockName"),
                               rv.text("BlockDateiName")});
    return a;
}

std::optional<typBlockAkte> fctBlockAkteFrisch(ProgrammZustand& z, db::Connection& con,
                                               const std::string& strBlockNr, long lngNr) {
    SchreibEinheit e(con);
    auto a = fctBlockAkteLesen(z, con, strBlockNr, lngNr);
    e.commit();
    return a;
}

bool fctBlockVorhanden(ProgrammZustand& z, db::Connection& con, const std::string& strBlockNr) {
    db::Recordset rs;
    rs.open("SELECT Nr FROM " + z.strTblBlockInfo + " WHERE Block = '" + strBlockNr + "'", con);
    return !rs.eof();
}

std::vector<std::string> fctAnsichtDateien(const std::string& ordnerNr, const std::string& blockNr,
                                           int ansicht) {
    return {fctDiaBibliothek(ordnerNr, blockNr, ansicht), fctDiaDatei(ordnerNr, blockNr, ansicht),
            fctZeichnungDatei(ordnerNr, blockNr, ansicht)};
}

std::vector<std::string> fctBlockDateien(const std::string& ordnerNr, const std::string& blockNr,
                                         const std::vector<std::string>& variantenDateien) {
    std::vector<std::string> d;
    for (int v = 0; v < 5; ++v) {
        d.push_back(fctDiaBibliothek(ordnerNr, blockNr, v));
        d.push_back(fctDiaDatei(ordnerNr, blockNr, v));
    }
    for (int v = 0; v < 5; ++v) d.push_back(fctZeichnungDatei(ordnerNr, blockNr, v));
    for (const auto& datei : variantenDateien)
        for (int v = 0; v < 5; ++v) d.push_back(fctVarianteZeichnung(ordnerNr, datei, v));
    d.push_back(fctVariantenSatzDatei(ordnerNr, blockNr));
    return d;
}

std::string fctPapierkorbAnlegen(ProgrammZustand& z) {
    for (int i = 1; i < 1000; ++i) {
        const std::string korb = z.strCTemp + "TessaraPapierkorb" + std::to_string(i) + "\\";
        if (fctPfadExistiert(fctOhneBackslash(korb))) continue;
        return fctFolderExistAnlegen(z, korb) ? korb : std::string();
    }
    return {};
}

void subPapierkorbLeeren(ProgrammZustand& z, const std::string& strPapierkorb) {
    if (!strPapierkorb.empty()) DeleteAFolder(z, strPapierkorb);
}

}  // namespace tessara
