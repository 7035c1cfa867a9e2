#include "search/schnellfilter.h"

#include <algorithm>

#include "authoring/datei_layout.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "jet/sql/text_rules.h"
#include "library/datenbank.h"
#include "platform/environment.h"

namespace tessara {

namespace {

constexpr char kTrenner = '\x01';
// Rows between two looks at the cancel flag: a relaxed load costs next to
// nothing, and a long row must not keep a cancelled scan going.
constexpr std::size_t kPruefabstand = 16;

// The field's position in the record set, or -1.
int spalte(const db::Recordset& rs, const std::string& name) {
    const auto& felder = rs.fieldInfos();
    for (std::size_t i = 0; i < felder.size(); ++i)
        if (sql::textEquals(felder[i].name, name)) return static_cast<int>(i);
    return -1;
}

}  // namespace

std::string fctSchnellfilterFalten(std::string_view text) {
    std::string ohne;
    ohne.reserve(text.size());
    for (char c : text)
        if (static_cast<unsigned char>(c) >= 0x20) ohne += c;
    return sql::utf8Encode(sql::foldCase(ohne));
}

std::shared_ptr<const SchnellSchnappschuss> fctSchnellSchnappschussLesen(
    db::Connection& con, const std::string& strTabelle) {
    // Sorted by the SQL layer, which makes each row's sort key once.
    db::Recordset rs;
    if (strTabelle == "tblBlockInfo")
        rs.open(
            "SELECT Block, OrdnerID, SlideLib, BlkName0, BlkName1, BlkName2, BlkName3, BlkName4, "
            "M0, M1, M2, M3, M4, M5, M6, M7, M8, M9 FROM tblBlockInfo ORDER BY Block",
            con);
    else
        rs.open("SELECT * FROM [" + strTabelle + "] ORDER BY Block", con);
    // Every field by its position, looked up once for all rows.
    std::vector<int> namen;
    for (int v = 0; v < 5; ++v)
        if (const int i = spalte(rs, "BlkName" + std::to_string(v)); i >= 0) namen.push_back(i);
    if (namen.empty())
        if (const int i = spalte(rs, "BlkName"); i >= 0) namen.push_back(i);
    std::vector<int> merkmale;
    for (int m = 0; m < 10; ++m)
        if (const int i = spalte(rs, "M" + std::to_string(m)); i >= 0) merkmale.push_back(i);
    const int block = spalte(rs, "Block"), ordner = spalte(rs, "OrdnerID"),
              slide = spalte(rs, "SlideLib"), m0 = spalte(rs, "M0");
    auto text = [&rs](int i) { return i < 0 ? std::string() : rs.value(i).toString(); };

    auto zeilen = std::make_shared<SchnellSchnappschuss>();
    zeilen->reserve(static_cast<std::size_t>(std::max(0L, rs.recordCount())));
    if (rs.recordCount() > 0) rs.moveFirst();
    for (; rs.recordCount() > 0 && !rs.eof(); rs.moveNext()) {
        typSchnellZeile z;
        z.Block = text(block);
        if (ordner >= 0) {
            const auto v = rs.value(ordner);
            z.OrdnerID = v.isNull() ? 0 : static_cast<long>(v.asInt());
        }
        z.SlideLib =
            slide >= 0 ? text(slide) : fctSlideLibEintrag(z.Block.substr(0, 3), z.Block, false);
        std::string alle = kTrenner + z.Block;
        for (std::size_t v = 0; v < namen.size(); ++v) {
            z.BlkName[v] = text(namen[v]);
            alle += kTrenner + z.BlkName[v];
        }
        for (const int m : merkmale) {
            const std::string t = text(m);
            if (m == m0) z.M0 = t;
            alle += kTrenner + t;
        }
        z.gefaltet = sql::utf8Encode(sql::foldCase(alle));
        zeilen->push_back(std::move(z));
    }
    return zeilen;
}

bool fctSchnellfilterPasst(const typSchnellZeile& zeile, const std::string& strGefaltet) {
    return !strGefaltet.empty() && zeile.gefaltet.find(strGefaltet) != std::string::npos;
}

bool fctSchnellfilterScannen(const SchnellSchnappschuss& zeilen, const std::string& strGefaltet,
                             const std::atomic<bool>& abgebrochen,
                             const std::function<void(std::vector<std::size_t>)>& liefern,
                             std::size_t ersterStapel, std::size_t stapel) {
    if (strGefaltet.empty()) return !abgebrochen.load();
    std::vector<std::size_t> treffer;
    bool erster = true;
    for (std::size_t i = 0; i < zeilen.size(); ++i) {
        if (i % kPruefabstand == 0 && abgebrochen.load(std::memory_order_relaxed)) return false;
        if (!fctSchnellfilterPasst(zeilen[i], strGefaltet)) continue;
        treffer.push_back(i);
        if (treffer.size() >= (erster ? ersterStapel : stapel)) {
            if (abgebrochen.load()) return false;
            liefern(std::move(treffer));
            treffer.clear();
            erster = false;
        }
    }
    if (abgebrochen.load()) return false;
    if (!treffer.empty()) liefern(std::move(treffer));
    return true;
}

std::shared_ptr<const SchnellSchnappschuss> fctSchnellSchnappschussLesen(
    const std::string& strDb, const std::string& strTabelle) {
    db::Connection con(db::jetOpener(platform::nativePath));
    con.open(fctJetVerbindung(strDb));
    return fctSchnellSchnappschussLesen(con, strTabelle);
}

}  // namespace tessara
