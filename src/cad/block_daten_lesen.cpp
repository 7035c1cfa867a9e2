#include "cad/block_daten_lesen.h"

#include "jet/sql/text_rules.h"
#include "library/schema.h"

namespace tessara {

namespace {

bool hat(const db::Recordset& rs, const std::string& spalte) {
    for (const auto& f : rs.fieldInfos())
        if (sql::textEquals(f.name, spalte)) return true;
    return false;
}

std::string text(const db::Recordset& rs, const std::string& spalte) {
    return hat(rs, spalte) ? rs.text(spalte) : std::string();
}

}  // namespace

typBlockDaten fctBlockDatenAusRs(const db::Recordset& rs) {
    typBlockDaten b;
    b.Nr = static_cast<long>(rs.value("Nr").asInt());
    b.Block = rs.text("Block");
    // The block number begins with the Folder's code.
    b.OrdnerNr = b.Block.substr(0, 3);
    b.OrdnerID = hat(rs, "OrdnerID") ? static_cast<long>(rs.value("OrdnerID").asInt()) : 0;
    b.SlideLib = text(rs, "SlideLib");
    for (int v = 0; v < 5; ++v) b.BlkName[v] = text(rs, "BlkName" + std::to_string(v));
    for (int m = 0; m < 10; ++m) b.M[m] = text(rs, "M" + std::to_string(m));
    for (int v = 0; v < 5; ++v)
        for (int punkt = 0; punkt < 6; ++punkt) {
            typPunkt& p = b.Einfuegepunkte[v][punkt];
            std::string* achsen[3] = {&p.x, &p.y, &p.z};
            for (int achse = 0; achse < 3; ++achse) {
                const std::string s = fctEinfuegepunktSpalte(punkt, achse, v);
                if (hat(rs, s) && !rs.value(s).isNull()) *achsen[achse] = rs.text(s);
            }
        }
    b.Layer = text(rs, "Layer");
    b.LyColor = text(rs, "LyColor");
    b.LyLine = text(rs, "LyLine");
    return b;
}

}  // namespace tessara
