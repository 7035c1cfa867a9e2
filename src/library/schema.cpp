#include "library/schema.h"

#include <exception>

#include "db/recordset.h"
#include "library/datenbank.h"
#include "startup/fehler_log.h"

namespace tessara {

std::string fctJetVerbindung(const std::string& strPfad) {
    return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + strPfad;
}

std::string fctEinfuegepunktSpalte(int punkt, int achse, int ansicht) {
    std::string s;
    s.push_back(static_cast<char>('A' + punkt));
    s.push_back(static_cast<char>('X' + achse));
    s += std::to_string(ansicht);
    return s;
}

namespace {

std::vector<typSpalte> blockInfoSpalten() {
    std::vector<typSpalte> s = {{"Block", db::adVarWChar, 144},
                                {"SlideLib", db::adVarWChar, 144},
                                {"OrdnerID", db::adInteger, 0}};
    for (int v = 0; v < 5; ++v) s.push_back({"BlkName" + std::to_string(v), db::adVarWChar, 32});
    for (int m = 0; m < 10; ++m) s.push_back({"M" + std::to_string(m), db::adVarWChar, 100});
    for (int v = 0; v < 5; ++v)
        for (int p = 0; p < 6; ++p)
            for (int a = 0; a < 3; ++a)
                s.push_back({fctEinfuegepunktSpalte(p, a, v), db::adDouble, 0});
    for (int v = 0; v < 5; ++v) s.push_back({"FktRuf" + std::to_string(v), db::adVarWChar, 100});
    s.push_back({"Prg", db::adVarWChar, 3});
    s.push_back({"Layer", db::adVarWChar, 35});
    s.push_back({"LyLine", db::adVarWChar, 20});
    s.push_back({"LyColor", db::adVarWChar, 4});
    return s;
}

std::vector<typSpalte> defMenueSpalten() {
    std::vector<typSpalte> s = {{"global", db::adInteger, 0}};
    for (int i = 1; i <= 10; ++i) {
        s.push_back({"Benennung" + std::to_string(i), db::adVarWChar, 100});
        s.push_back({"Standardwert" + std::to_string(i), db::adVarWChar, 100});
    }
    return s;
}

std::vector<typSpalte> markierteSpalten() {
    return {{"BlockName", db::adVarWChar, 100},        {"BlockNr", db::adVarWChar, 20},
            {"SpeicherOrtSlide", db::adVarWChar, 100}, {"SpeicherOrtDWG", db::adVarWChar, 100},
            {"MarkierteAnsicht", db::adInteger, 0},    {"NummerEinfuegepkt", db::adInteger, 0}};
}

db::CatalogTable katalogTabelle(const typTabelle& t) {
    db::CatalogTable ct;
    ct.name = t.name;
    auto& nr = ct.appendColumn("Nr", db::adInteger);
    nr.autoIncrement = true;
    for (const auto& s : t.spalten) {
        auto& c = ct.appendColumn(s.name, s.typ, s.groesse);
        c.nullable = true;
    }
    db::CatalogKey key;
    key.name = "PrimaryKey";
    key.type = db::adKeyPrimary;
    key.columns = {"Nr"};
    ct.keys.push_back(key);
    return ct;
}

}  // namespace

const std::vector<typTabelle>& fctKatalogTabellen() {
    static const std::vector<typTabelle> tabellen = {
        {"tblBlockInfo", blockInfoSpalten()},
        {"tblDefMenue", defMenueSpalten()},
        {"tblOrdner",
         {{"OrdnerNr", db::adVarWChar, 3},
          {"Ordnername", db::adVarWChar, 100},
          {"OrdnerRechte", db::adVarWChar, 100},
          {"NrTblDefMenue", db::adInteger, 0},
          {"NrTblRechte", db::adInteger, 0}}},
        {"tblSeiten",
         {{"SeitenNr", db::adInteger, 0},
          {"SeitenName", db::adVarWChar, 100},
          {"NrTblOrdner", db::adInteger, 0}}},
        {"tblMarkierteBloecke", markierteSpalten()},
        {"tblVariationBloecke",
         {{"BlockName", db::adVarWChar, 100},
          {"BlockID", db::adInteger, 0},
          {"BlockDateiName", db::adVarWChar, 100}}},
    };
    return tabellen;
}

const std::vector<typBeziehung>& fctKatalogBeziehungen() {
    static const std::vector<typBeziehung> beziehungen = {
        {"tblDefMenue_tblOrdner", "tblOrdner", "NrTblDefMenue", "tblDefMenue"},
        {"tblOrdner_tblBlockInfo", "tblBlockInfo", "OrdnerID", "tblOrdner"},
        {"tblOrdner_tblSeiten", "tblSeiten", "NrTblOrdner", "tblOrdner"},
        {"tblBlockInfo_tblVariationBloecke", "tblVariationBloecke", "BlockID", "tblBlockInfo"},
    };
    return beziehungen;
}

bool Mk_Datenbank(ProgrammZustand& z, const db::StorageOpener& oeffner,
                  const std::string& strPfad) {
    Prozedur p(z, "Mk_Datenbank ");
    bool alles = true;
    // A failing step is logged, and creation goes on with the next.
    auto schritt = [&](const std::string& label, const auto& aktion) {
        p.step(label);
        const bool ok = p.geschuetzt(false, [&] {
            aktion();
            return true;
        });
        alles = alles && ok;
    };

    // The opener makes the file; the connection and the catalogue both work
    // on the store it answers.
    db::Connection con(oeffner);
    schritt("Datenbank anlegen", [&] { con.openStorage(oeffner(strPfad, true), strPfad); });
    if (con.state() != db::adStateOpen) return false;
    db::Catalog cat;
    cat.setActiveConnection(con);

    for (const auto& t : fctKatalogTabellen()) {
        subDebugLog(z, "Tabelle erstellen : " + t.name);
        schritt("Tabelle erstellen", [&] { cat.appendTable(katalogTabelle(t)); });
    }
    for (const auto& b : fctKatalogBeziehungen()) {
        schritt("Beziehung " + b.name, [&] {
            db::CatalogKey k;
            k.name = b.name;
            k.type = db::adKeyForeign;
            k.columns = {b.spalte};
            k.relatedTable = b.bezugsTabelle;
            k.relatedColumns = {"Nr"};
            cat.appendKey(b.tabelle, k);
        });
    }

    schritt("Index", [&] { con.execute(kIndexAnweisung); });

    schritt("Standardwerte tblDefMenue", [&] {
        db::Recordset rs;
        rs.open("tblDefMenue", con, db::adOpenKeyset, db::adLockOptimistic);
        rs.addNew();
        rs.setValue("global", 1);
        for (int i = 1; i <= 10; ++i) {
            rs.setValue("Benennung" + std::to_string(i), kFreiEintrag);
            rs.setValue("Standardwert" + std::to_string(i), kFreiEintrag);
        }
        rs.update();
        rs.close();
    });
    schritt("Standardwerte tblOrdner", [&] {
        db::Recordset rs;
        rs.open("tblOrdner", con, db::adOpenKeyset, db::adLockOptimistic);
        rs.addNew();
        rs.setValue("OrdnerNr", "000");
        rs.setValue("Ordnername", "Standard-Ordner");
        rs.setValue("OrdnerRechte", "Alle");
        rs.setValue("NrTblDefMenue", 1);
        rs.update();
        rs.close();
    });
    schritt("Standardwerte tblSeiten", [&] {
        db::Recordset rs;
        rs.open("tblSeiten", con, db::adOpenKeyset, db::adLockOptimistic);
        rs.addNew();
        rs.setValue("SeitenNr", 1);
        rs.setValue("SeitenName", "1");
        rs.setValue("NrTblOrdner", 1);
        rs.update();
        rs.close();
    });
    return alles;
}

bool subMk_TblMarkierteBloecke(ProgrammZustand& z, const db::StorageOpener& oeffner,
                               const std::string& strPfad) {
    Prozedur p(z, "subMk_TblMarkierteBloecke");
    return p.geschuetzt(false, [&] {
        p.step("Verbindung öffnen");
        db::Connection con(oeffner);
        con.open(fctJetVerbindung(strPfad));
        db::Catalog cat;
        cat.setActiveConnection(con);
        typTabelle t{"tblMarkierteBloecke", markierteSpalten()};
        for (const char* name : {"Layer", "LyLine", "LyColor"})
            t.spalten.push_back({name, db::adVarWChar, 100});
        p.step("Tabelle erstellen");
        subDebugLog(z, "Tabelle erstellen : " + t.name);
        cat.appendTable(katalogTabelle(t));
        return true;
    });
}

}  // namespace tessara
