#include "organisation/block_eigenschaften.h"

#include <exception>

#include "captions/meldungen.h"
#include "organisation/schreib_einheit.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

// Empty stays Null: Jet's text columns refuse a zero-length text unless
// they were made to allow it.
sql::Value textOderNull(const std::string& s) {
    return s.empty() ? sql::Value::null() : sql::Value::text(s);
}

std::size_t zeichen(const std::string& s) {
    std::size_t n = 0;
    for (const char c : s) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return n;
}

std::string spalteM(int i) { return "M" + std::to_string(i); }

}  // namespace

std::optional<typBlockEigenschaften> fctBlockEigenschaftenLesen(ProgrammZustand& z,
                                                                NavigationsModell& m, long lngNr) {
    Prozedur p(z, "fctBlockEigenschaftenLesen");
    return p.geschuetzt(std::nullopt, [&]() -> std::optional<typBlockEigenschaften> {
        db::Recordset rs;
        rs.open("SELECT * FROM " + z.strTblBlockInfo + " WHERE Nr = " + std::to_string(lngNr),
                m.datenbank().con);
        if (rs.eof()) return std::nullopt;
        typBlockEigenschaften b;
        b.Nr = lngNr;
        b.Block = rs.text("Block");
        const sql::Value ordner = rs.value("OrdnerID");
        b.OrdnerID = ordner.isNull() ? 0 : static_cast<long>(ordner.asInt());
        for (int i = 0; i < kDefMenueZeilen; ++i) b.M[i] = rs.text(spalteM(i));
        b.Layer = rs.text("Layer");
        b.LyColor = rs.text("LyColor");
        b.LyLine = rs.text("LyLine");
        return b;
    });
}

bool fctBlockEigenschaftenSpeichern(ProgrammZustand& z, NavigationsModell& m,
                                    const typBlockEigenschaften& b) {
    Prozedur p(z, "fctBlockEigenschaftenSpeichern");
    return p.geschuetzt(false, [&] {
        struct Grenze {
            const std::string* wert;
            std::size_t laenge;
        };
        std::vector<Grenze> grenzen{{&b.Layer, 35}, {&b.LyLine, 20}};
        for (const auto& w : b.M) grenzen.push_back({&w, 100});
        for (const auto& g : grenzen)
            if (zeichen(*g.wert) > g.laenge) {
                fctMsgbox(z, MsgboxArt::Info,
                          {kMsgWertZuLang, *g.wert, kMsgHoechstens, std::to_string(g.laenge)});
                return false;
            }
        // An AutoCAD Color Index: 0 (ByBlock) .. 256 (ByLayer), or none.
        if (!b.LyColor.empty() && (b.LyColor.size() > 3 ||
                                   b.LyColor.find_first_not_of("0123456789") != std::string::npos ||
                                   std::stoi(b.LyColor) > 256)) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgFarbe, b.LyColor});
            return false;
        }
        if (b.Layer.find_first_of("<>/\\\":;?*|,=`") != std::string::npos) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgLayerZeichen, b.Layer});
            return false;
        }
        db::Connection& con = m.datenbank().con;
        bool da = false;
        {
            SchreibEinheit e(con);
            db::Recordset rs;
            rs.open("SELECT * FROM " + z.strTblBlockInfo + " WHERE Nr = " + std::to_string(b.Nr),
                    con, db::adOpenKeyset, db::adLockOptimistic);
            da = !rs.eof();
            if (da) {
                p.step("Werte schreiben");
                for (int i = 0; i < kDefMenueZeilen; ++i)
                    rs.setValue(spalteM(i), textOderNull(b.M[i]));
                rs.setValue("Layer", textOderNull(b.Layer));
                rs.setValue("LyColor", textOderNull(b.LyColor));
                rs.setValue("LyLine", textOderNull(b.LyLine));
                rs.update();
                e.commit();
            }
        }
        if (!da) fctMsgbox(z, MsgboxArt::Info, {kMsgBlockVerschwunden});
        return da;
    });
}

}  // namespace tessara
