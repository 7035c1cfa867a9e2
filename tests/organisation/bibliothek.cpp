#include "bibliothek.h"

#include <unistd.h>

#include <fstream>

#include "authoring/code_tabelle.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "frisches_verzeichnis.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "platform/environment.h"

namespace tessara::orgtest {

void Bibliothek::SetUp() {
    wurzel = tessara::test::frischesVerzeichnis("org");
    fs::create_directories(wurzel / "prog");
    fs::create_directories(wurzel / "lib");
    z.benutzer = &benutzer;
    z.strCTemp = platform::programPath(wurzel.string()) + "\\";
    z.strErrorDatei = z.strCTemp + "fehler.txt";
    z.strIniDatei = z.strCTemp + "Tessara9.0.ini";
    z.strSprache = "deutsch";
    z.strAppPfad = platform::programPath((wurzel / "prog").string());
    std::ofstream(wurzel / "prog" / "txtPrefix.txt", std::ios::binary) << fctCodeTabelleText();
    basis = platform::programPath((wurzel / "lib").string()) + "\\";
    db = basis + "dbTessara.mdb";
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, db));
    oeffnen();
}

void Bibliothek::TearDown() {
    modell.reset();
    if (!fehlerErwartet) {
        EXPECT_EQ(fehler(), std::vector<std::string>{});
    }
    std::error_code ec;
    fs::remove_all(wurzel, ec);
}

void Bibliothek::ausfuehren(const std::string& sql) {
    db::Connection con(oeffner);
    con.open(fctJetVerbindung(db));
    con.execute(sql);
}

std::vector<std::string> Bibliothek::zeilen(const std::string& sql) {
    db::Connection con(oeffner);
    con.open(fctJetVerbindung(db));
    db::Recordset rs;
    rs.open(sql, con);
    std::vector<std::string> aus;
    for (; !rs.eof(); rs.moveNext()) {
        std::string zeile;
        for (int i = 0; i < rs.fieldCount(); ++i)
            zeile +=
                (i ? "|" : "") + (rs.value(i).isNull() ? std::string() : rs.value(i).toString());
        aus.push_back(zeile);
    }
    return aus;
}

void Bibliothek::oeffnen(const std::string& code) {
    modell = std::make_unique<NavigationsModell>(z, oeffner);
    ASSERT_TRUE(modell->fctCodeTabelleLesen(z.strAppPfad + "\\txtPrefix.txt"));
    ASSERT_TRUE(modell->fctDatenbankOeffnen(db));
    ASSERT_TRUE(modell->OrdnerInArrayEinlesen());
    modell->setAnzahlDerBilder(0);
    ASSERT_TRUE(modell->fctOrdnerWaehlen(code));
}

std::vector<std::string> Bibliothek::fehler() const {
    std::ifstream in(platform::nativePath(z.strErrorDatei), std::ios::binary);
    std::vector<std::string> aus;
    for (std::string zeile; std::getline(in, zeile);) {
        if (zeile.find("Meldung") == std::string::npos) aus.push_back(zeile);
    }
    return aus;
}

std::vector<std::string> Bibliothek::gezeigt() const {
    std::vector<std::string> aus;
    for (const auto& g : benutzer.gezeigt) {
        std::string t = g.titel + ": " + g.text;
        for (std::size_t i; (i = t.find('\r')) != std::string::npos;) t.replace(i, 1, " / ");
        aus.push_back(t);
    }
    return aus;
}

}  // namespace tessara::orgtest
