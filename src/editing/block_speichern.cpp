#include "editing/block_speichern.h"

#include "db/recordset.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

constexpr const char* kPunkte = "ABCDEF";
constexpr const char* kAchsen = "XYZ";

std::string spalte(char punkt, char achse, int ansicht) {
    return std::string(1, punkt) + achse + std::to_string(ansicht);
}

void textOderNull(db::Recordset& rs, const std::string& feld, const std::string& wert) {
    rs.setValue(feld, wert.empty() ? sql::Value::null() : sql::Value::text(wert));
}

void punkteSetzen(db::Recordset& rs, const typAnsichtDaten& d) {
    for (int i = 0; i < 6; ++i) {
        const auto& p = d.punkte[static_cast<std::size_t>(i)];
        const double w[3] = {p ? p->x : 0, p ? p->y : 0, p ? p->z : 0};
        for (int a = 0; a < 3; ++a)
            rs.setValue(spalte(kPunkte[i], kAchsen[a], d.ansicht),
                        p ? sql::Value::real(w[a]) : sql::Value::null());
    }
}

std::string kriterium(const std::string& strBlockNr) { return "Block = '" + strBlockNr + "'"; }

}  // namespace

std::string fctSqlAnsicht(int ansicht, const std::string& strBlockNr) {
    const std::string v = std::to_string(ansicht);
    std::string sql = "SELECT  SlideLib, BlkName" + v;
    for (int i = 0; i < 6; ++i)
        for (int a = 0; a < 3; ++a) sql += ", " + spalte(kPunkte[i], kAchsen[a], ansicht);
    return sql + " From tblBlockInfo WHERE " + kriterium(strBlockNr);
}

bool BlockdatenInDatenbankAbspeichern(ProgrammZustand& z, NavigationsModell& m,
                                      const typAnsichtDaten& d) {
    Prozedur p(z, "BlockdatenInDatenbankAbspeichern");
    return p.geschuetzt(false, [&] {
        p.step("aktivierteBlocknummer in rsBlockInfo0 suchen");
        db::Recordset rs;
        rs.open("SELECT * FROM tblBlockInfo WHERE " + kriterium(d.strBlockNr), m.datenbank().con,
                db::adOpenKeyset, db::adLockOptimistic);
        if (rs.eof()) rs.addNew();
        rs.setValue("Block", d.strBlockNr);
        rs.setValue("OrdnerID", static_cast<long long>(d.lngOrdnerID));
        rs.setValue("SlideLib", d.strSlideLib);
        rs.setValue("BLKName0", d.strBlkName);
        for (int i = 0; i < 10; ++i)
            textOderNull(rs, "M" + std::to_string(i), d.M[static_cast<std::size_t>(i)]);
        textOderNull(rs, "Layer", d.Layer);
        textOderNull(rs, "LYCOLOR", d.LyColor);
        textOderNull(rs, "LYLINE", d.LyLine);
        punkteSetzen(rs, d);
        rs.update();
        p.step("rsBlockInfo0Einfuegepkt Einlesen");
        return m.RecordsetRsBlockInfo0NeuEinlesen();
    });
}

bool BlockdatenInDatenbankAbspeichernAnsichten(ProgrammZustand& z, NavigationsModell& m,
                                               const typAnsichtDaten& d) {
    Prozedur p(z, "BlockdatenInDatenbankAbspeichernAnsichten");
    return p.geschuetzt(false, [&] {
        if (d.ansicht < 1 || d.ansicht > 4)
            throw std::runtime_error("Ansicht " + std::to_string(d.ansicht) + " gibt es nicht");
        db::Recordset rs;
        rs.open(fctSqlAnsicht(d.ansicht, d.strBlockNr), m.datenbank().con, db::adOpenKeyset,
                db::adLockOptimistic);
        if (rs.eof()) throw std::runtime_error("Block " + d.strBlockNr + " nicht gefunden");
        rs.setValue("BlkName" + std::to_string(d.ansicht), d.strBlkName);
        punkteSetzen(rs, d);
        rs.update();
        return m.RecordsetRsBlockInfo0NeuEinlesen();
    });
}

bool BlockdatenInDatenbankAbspeichernAnsichten2(ProgrammZustand& z, NavigationsModell& m,
                                                const typAnsichtDaten& d) {
    return d.ansicht == 0 ? BlockdatenInDatenbankAbspeichern(z, m, d)
                          : BlockdatenInDatenbankAbspeichernAnsichten(z, m, d);
}

}  // namespace tessara
