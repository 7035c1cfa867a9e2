// Registry values in the memory registry: the setup values in their order
// and types, read back; the current database; the machine-wide entries.
#include "startup/registry_werte.h"

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

#include "einstellungen_umgebung.h"
#include "platform/case_fold.h"
#include "tabelle.h"

namespace tessara::einstellungentest {
namespace {

using platform::Hive;

// Records every write in the order it reaches the registry, as
// "HIVE key!name|type=value" lines (type s a string, d a DWORD; the key in
// one case, as the registry compares keys).
class AufzeichnendeRegistry : public platform::MemoryRegistry {
  public:
    std::string protokoll;
    bool writeString(Hive h, const std::string& k, const std::string& n,
                     const std::string& v) override {
        protokoll += (h == Hive::CurrentUser ? "HKCU " : "HKLM ") + platform::foldCase(k) + "!" +
                     n + "|s=" + v + "\n";
        return MemoryRegistry::writeString(h, k, n, v);
    }
    bool writeDword(Hive h, const std::string& k, const std::string& n, std::uint32_t v) override {
        protokoll += (h == Hive::CurrentUser ? "HKCU " : "HKLM ") + platform::foldCase(k) + "!" +
                     n + "|d=" + std::to_string(v) + "\n";
        return MemoryRegistry::writeDword(h, k, n, v);
    }
    std::string abholen() { return std::exchange(protokoll, {}); }
};

// A setup value as text, whatever its type.
std::string alsText(const typSetupWerte& w, const typSetupEintrag& e) {
    if (auto* zahl = std::get_if<std::int32_t typSetupWerte::*>(&e.feld))
        return std::to_string(w.**zahl);
    return w.*std::get<std::string typSetupWerte::*>(e.feld);
}

class RegistryWerte : public EinstellungenUmgebung {
  protected:
    void SetUp() override {
        EinstellungenUmgebung::SetUp();
        plattform.registry = &aufz;
    }
    const std::string setup = "Software\\Vendel\\Tessara\\9.0\\Setup";
    AufzeichnendeRegistry aufz;
};

TEST_F(RegistryWerte, SetupWerteInReihenfolgeUndTypOhnePositionsflagOhnePosition) {
    for (const int flag : {1, 0}) {
        typSetupWerte w;
        w.longFensterpositionSpeichern = flag;
        ASSERT_TRUE(SetupInRegistrierdatenbankSpeichern(z, w));
        std::string soll, ist;
        for (const auto& f : test::tabelle("startup/golden/setup_reihenfolge.txt"))
            if (flag || f.at(0).rfind("longCurrent", 0) != 0)
                soll += "HKCU " + platform::foldCase(setup) + "!" + f[0] + "|" + f.at(1) + "\n";
        std::istringstream zeilen(aufz.abholen());
        for (std::string zeile; std::getline(zeilen, zeile);)
            ist += zeile.substr(0, zeile.find('=')) + "\n";  // without the value
        EXPECT_EQ(ist, soll) << flag;
    }
}

TEST_F(RegistryWerte, SetupWerteZurueckgelesen) {
    typSetupWerte w;
    int n = 0;
    for (const auto& e : fctSetupEintraege()) {
        if (auto* zahl = std::get_if<std::int32_t typSetupWerte::*>(&e.feld))
            w.** zahl = ++n * 7 - 100;  // negative values too (window position)
        else
            w.*std::get<std::string typSetupWerte::*>(e.feld) =
                std::string("Wert ") + e.name + " ä";
    }
    ASSERT_TRUE(SetupInRegistrierdatenbankSpeichern(z, w));
    typSetupWerte r;
    ASSERT_TRUE(SetupEinstellungenZuweisen(z, r));
    for (const auto& e : fctSetupEintraege()) EXPECT_EQ(alsText(r, e), alsText(w, e)) << e.name;
}

TEST_F(RegistryWerte, OhneSetupSchluesselBleibenDieVorgaben) {
    typSetupWerte r;
    r.longDoppelklick = 1;
    EXPECT_FALSE(SetupEinstellungenZuweisen(z, r));
    EXPECT_EQ(std::tie(r.longDoppelklick, r.longAnzahlDerBilder), std::tuple(1, 2));
    // A value of the wrong type keeps the default as well.
    aufz.writeString(Hive::CurrentUser, setup, "longAnzahlDerBilder", "5");
    aufz.writeDword(Hive::CurrentUser, setup, "longXRef", 1);
    typSetupWerte s;
    EXPECT_TRUE(SetupEinstellungenZuweisen(z, s));
    EXPECT_EQ(std::tie(s.longAnzahlDerBilder, s.longXRef), std::tuple(2, 1));
}

TEST_F(RegistryWerte, FenstergeometrieUnterSetup) {
    const typFensterGeometrie g{-1200, 40, 700, 900};
    for (const bool mitPosition : {false, true}) {
        ASSERT_TRUE(subFensterGeometrieSpeichern(z, g, mitPosition));
        const typFensterGeometrie r = fctFensterGeometrieLesen(z);
        EXPECT_EQ(std::tie(r.booPosition, r.booGroesse, r.lonFrmHeight, r.lonFrmWidth),
                  std::tuple(mitPosition, true, 700, 900));
        if (mitPosition) {
            EXPECT_EQ(std::tie(r.longCurrentX, r.longCurrentY), std::tuple(-1200, 40));
        }
    }
    EXPECT_EQ(aufz.readDword(Hive::CurrentUser, setup, "longCurrentX"), 0xFFFFFFFFu - 1199u);
}

TEST_F(RegistryWerte, EintraegeBeimSchliessen) {
    z.strAktuelleDb = "c:\\Bib\\dbTessara.mdb";
    z.strVerzeichnisVorgabe = "c:\\Bib\\";
    ASSERT_TRUE(subRegistryEintraegeSpeichern(z));
    EXPECT_TRUE(fctEintrag1Speichern(z, "d:\\X\\dbTessara.mdb"));
    const std::string k = "HKCU " + platform::foldCase(z.strRegRoot) + "!";
    EXPECT_EQ(aufz.abholen(), k + "Eintrag1|s=c:\\Bib\\dbTessara.mdb\n" + k +
                                  "strVerzeichnisVorgabe|s=c:\\Bib\\\n" + k +
                                  "Eintrag1|s=d:\\X\\dbTessara.mdb\n");
}

TEST_F(RegistryWerte, AktuelleDatenbankAusEintrag1) {
    for (const auto& f : test::tabelle("startup/golden/aktuelle_datenbank.txt")) {
        aufz.deleteValue(Hive::CurrentUser, z.strRegRoot, "Eintrag1");
        if (f.at(1) != "-") aufz.writeString(Hive::CurrentUser, z.strRegRoot, "Eintrag1", f[1]);
        z.aryDbVerzeichnis.assign(f.begin() + 3, f.end());
        z.strAktuelleDb = "vorher";
        EXPECT_EQ(EintraegeAusRegistrierdatenbank(z), !f.at(2).empty()) << f[0];
        EXPECT_EQ(z.strAktuelleDb, f[2]) << f[0];
    }
}

TEST_F(RegistryWerte, DatenbankenFuerAlleBenutzer) {
    z.aryDbVerzeichnis = {"0"};
    EXPECT_TRUE(EintraegeInRegistrierdatenbank(z));
    EXPECT_EQ(aufz.abholen(), "") << "no database, nothing to enter";
    z.aryDbVerzeichnis = {"c:\\A", "d:\\B\\"};
    z.strAktuelleDb = "d:\\B\\dbTessara.mdb";
    const std::string v8 = "HKLM software\\tessara\\version_8";
    const std::string eintraege = v8 + "!Eintrag2|s=c:\\A\\dbTessara.mdb\n" + v8 +
                                  "!Eintrag3|s=d:\\B\\dbTessara.mdb\n" + v8 +
                                  "!Eintrag1|s=d:\\B\\dbTessara.mdb\n";
    // The Setup key with the application data only while the key is new.
    ASSERT_TRUE(EintraegeInRegistrierdatenbank(z));
    EXPECT_EQ(aufz.abholen(),
              v8 + "\\setup!Anwendungsdaten|s=" + env.commonAppData() + "\n" + eintraege);
    ASSERT_TRUE(EintraegeInRegistrierdatenbank(z));
    EXPECT_EQ(aufz.abholen(), eintraege);
    aufz.setReadOnly(true);
    EXPECT_FALSE(EintraegeInRegistrierdatenbank(z)) << "a user without the rights";
}

TEST_F(RegistryWerte, GesperrteRegistryOhneAbsturz) {
    aufz.setReadOnly(true);
    z.aryDbVerzeichnis = {"c:\\A"};
    EXPECT_FALSE(SetupInRegistrierdatenbankSpeichern(z, typSetupWerte{}));
    EXPECT_FALSE(subRegistryEintraegeSpeichern(z));
    EXPECT_TRUE(EintraegeAusRegistrierdatenbank(z));  // falls back on the list
    EXPECT_EQ(z.strAktuelleDb, "c:\\A\\dbTessara.mdb");
    // Without a registry at all: the defaults.
    plattform.registry = nullptr;
    typSetupWerte w;
    EXPECT_FALSE(SetupInRegistrierdatenbankSpeichern(z, w));
    EXPECT_FALSE(SetupEinstellungenZuweisen(z, w));
}

}  // namespace
}  // namespace tessara::einstellungentest
