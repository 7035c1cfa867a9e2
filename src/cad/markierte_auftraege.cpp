#include "cad/markierte_auftraege.h"

#include <algorithm>

#include "cad/block_daten_lesen.h"
#include "library/navigation_model.h"

namespace tessara {

namespace {
bool offenMitZeilen(db::Recordset& rs) {
    return rs.state() == db::adStateOpen && rs.recordCount() > 0;
}
}  // namespace

std::vector<typEinfuegeAuftrag> fctMarkierteAuftraege(typDatenbank& db) {
    std::vector<typEinfuegeAuftrag> auftraege;
    db::Recordset& m = db.rsMarkierteBloecke;
    if (!offenMitZeilen(m)) return auftraege;
    for (m.moveFirst(); !m.eof(); m.moveNext()) {
        db::Recordset rs;
        rs.open(fctSqlBlockInfo() + " WHERE Block LIKE '" + m.text("BlockNr") + "'", db.con);
        if (rs.recordCount() < 1) continue;
        typEinfuegeAuftrag a;
        a.block = fctBlockDatenAusRs(rs);
        const auto ansicht = m.value("MarkierteAnsicht");
        const auto punkt = m.value("NummerEinfuegepkt");
        a.ansicht = ansicht.isNull() ? 0 : std::clamp(static_cast<int>(ansicht.asInt()), 0, 4);
        a.nummerEinfuegepkt =
            punkt.isNull() || punkt.asInt() < 1 ? 1 : static_cast<int>(punkt.asInt());
        auftraege.push_back(std::move(a));
    }
    return auftraege;
}

void subMarkierteLoeschen(typDatenbank& db, const std::vector<std::string>& erledigteBloecke) {
    db::Recordset& m = db.rsMarkierteBloecke;
    for (const auto& nr : erledigteBloecke) {
        if (!offenMitZeilen(m)) break;
        m.moveFirst();
        if (m.find("BlockNr LIKE '" + nr + "'")) m.deleteCurrent();
    }
}

}  // namespace tessara
