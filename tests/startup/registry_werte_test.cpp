// Registry values in the memory registry: the setup values in their order
// and types, read back; the current database; the machine-wide entries.
#include "startup/registry_werte.h"

#include <gtest/gtest.h>

#include "einstellungen_umgebung.h"
#include "tabelle.h"

namespace tessara::einstellungentest {
namespace {

using platform::Hive;

// Records every write in the order it reaches the registry.
class AufzeichnendeRegistry : public platform::MemoryRegistry {
  public:
    struct Schreiben {
        Hive hive;
        std::string schluessel, name;
        char typ;  // 's' string, 'd' DWORD
    };
    std::vector<Schreiben> geschrieben;

    bool writeString(Hive h, const std::string& k, const std::string& n,
                     const std::string& v) override {
        geschrieben.push_back({h, k, n, 's'});
        return MemoryRegistry::writeString(h, k, n, v);
    }
    bool writeDword(Hive h, const std::string& k, const std::string& n, std::uint32_t v) override {
        geschrieben.push_back({h, k, n, 'd'});
        return MemoryRegistry::writeDword(h, k, n, v);
    }
};

// The values in the order the program writes them; the CAD host version
// text is stored as "strACadVersion".
std::vector<std::string> reihenfolge() {
    std::vector<std::string> namen;
    for (const auto& f : test::tabelle("startup/golden/setup_reihenfolge.txt"))
        namen.push_back(f.at(0));
    return namen;
}

char typNachName(const std::string& name) {
    return name.rfind("lon", 0) == 0 ? 'd' : 's';  // "lon" covers "long" too
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

TEST_F(RegistryWerte, SetupWerteInReihenfolgeUndTyp) {
    typSetupWerte w;
    w.Eintrag1 = "c:\\Bib\\dbTessara.mdb";
    w.strACadVersion = "AutoCAD LT";
    ASSERT_TRUE(SetupInRegistrierdatenbankSpeichern(z, w));
    std::vector<std::string> namen;
    for (const auto& s : aufz.geschrieben) {
        EXPECT_EQ(s.hive, Hive::CurrentUser);
        EXPECT_EQ(s.schluessel, setup);
        EXPECT_EQ(s.typ, typNachName(s.name)) << s.name;
        namen.push_back(s.name);
    }
    EXPECT_EQ(namen, reihenfolge());
    // The stored types, as another reader sees them.
    EXPECT_EQ(aufz.readString(Hive::CurrentUser, setup, "Eintrag1"), "c:\\Bib\\dbTessara.mdb");
    EXPECT_EQ(aufz.readDword(Hive::CurrentUser, setup, "longAnzahlDerBilder"), 2u);
    EXPECT_FALSE(aufz.readString(Hive::CurrentUser, setup, "longAnzahlDerBilder"));
    EXPECT_EQ(aufz.readString(Hive::CurrentUser, setup, "strMassstabX"), "1");
    EXPECT_FALSE(aufz.readDword(Hive::CurrentUser, setup, "strMassstabX"));
    EXPECT_EQ(aufz.readString(Hive::CurrentUser, setup, "strACadVersion"), "AutoCAD LT");
    EXPECT_EQ(aufz.valueNames(Hive::CurrentUser, setup), reihenfolge());
}

TEST_F(RegistryWerte, OhnePositionsflagKeinePosition) {
    typSetupWerte w;
    w.longFensterpositionSpeichern = 0;
    ASSERT_TRUE(SetupInRegistrierdatenbankSpeichern(z, w));
    std::vector<std::string> erwartet;
    for (const auto& n : reihenfolge())
        if (n != "longCurrentX" && n != "longCurrentY") erwartet.push_back(n);
    EXPECT_EQ(aufz.valueNames(Hive::CurrentUser, setup), erwartet);
}

TEST_F(RegistryWerte, SetupWerteZurueckgelesen) {
    typSetupWerte w;
    int n = 0;
    for (const auto& e : fctSetupEintraege()) {
        ++n;
        if (auto* zahl = std::get_if<std::int32_t typSetupWerte::*>(&e.feld))
            w.** zahl = n * 7 - 100;  // negative values too (window position)
        else
            w.*std::get<std::string typSetupWerte::*>(e.feld) =
                std::string("Wert ") + e.name + " ä";
    }
    ASSERT_TRUE(SetupInRegistrierdatenbankSpeichern(z, w));
    typSetupWerte r;
    ASSERT_TRUE(SetupEinstellungenZuweisen(z, r));
    for (const auto& e : fctSetupEintraege()) {
        if (auto* zahl = std::get_if<std::int32_t typSetupWerte::*>(&e.feld))
            EXPECT_EQ(r.**zahl, w.**zahl) << e.name;
        else
            EXPECT_EQ(r.*std::get<std::string typSetupWerte::*>(e.feld),
                      w.*std::get<std::string typSetupWerte::*>(e.feld))
                << e.name;
    }
}

TEST_F(RegistryWerte, OhneSetupSchluesselBleibenDieVorgaben) {
    typSetupWerte r;
    r.longDoppelklick = 1;
    EXPECT_FALSE(SetupEinstellungenZuweisen(z, r));
    EXPECT_EQ(r.longDoppelklick, 1);
    EXPECT_EQ(r.longAnzahlDerBilder, 2);
    // A value of the wrong type keeps the default as well.
    aufz.writeString(Hive::CurrentUser, setup, "longAnzahlDerBilder", "5");
    aufz.writeDword(Hive::CurrentUser, setup, "longXRef", 1);
    typSetupWerte s;
    EXPECT_TRUE(SetupEinstellungenZuweisen(z, s));
    EXPECT_EQ(s.longAnzahlDerBilder, 2);
    EXPECT_EQ(s.longXRef, 1);
}

TEST_F(RegistryWerte, FenstergeometrieUnterSetup) {
    typFensterGeometrie g;
    g.longCurrentX = -1200;
    g.longCurrentY = 40;
    g.lonFrmHeight = 700;
    g.lonFrmWidth = 900;
    ASSERT_TRUE(subFensterGeometrieSpeichern(z, g, false));
    typFensterGeometrie r = fctFensterGeometrieLesen(z);
    EXPECT_FALSE(r.booPosition);
    EXPECT_TRUE(r.booGroesse);
    EXPECT_EQ(r.lonFrmHeight, 700);
    ASSERT_TRUE(subFensterGeometrieSpeichern(z, g, true));
    r = fctFensterGeometrieLesen(z);
    EXPECT_TRUE(r.booPosition);
    EXPECT_EQ(r.longCurrentX, -1200);
    EXPECT_EQ(r.longCurrentY, 40);
    EXPECT_EQ(r.lonFrmWidth, 900);
    EXPECT_EQ(aufz.readDword(Hive::CurrentUser, setup, "longCurrentX"), 0xFFFFFFFFu - 1199u);
}

TEST_F(RegistryWerte, EintraegeBeimSchliessen) {
    z.strAktuelleDb = "c:\\Bib\\dbTessara.mdb";
    z.strVerzeichnisVorgabe = "c:\\Bib\\";
    ASSERT_TRUE(subRegistryEintraegeSpeichern(z));
    ASSERT_EQ(aufz.geschrieben.size(), 2u);
    EXPECT_EQ(aufz.geschrieben[0].name, "Eintrag1");
    EXPECT_EQ(aufz.geschrieben[1].name, "strVerzeichnisVorgabe");
    EXPECT_EQ(aufz.readString(Hive::CurrentUser, z.strRegRoot, "Eintrag1"), z.strAktuelleDb);
    EXPECT_EQ(aufz.readString(Hive::CurrentUser, z.strRegRoot, "strVerzeichnisVorgabe"),
              "c:\\Bib\\");
    EXPECT_TRUE(fctEintrag1Speichern(z, "d:\\X\\dbTessara.mdb"));
    EXPECT_EQ(aufz.readString(Hive::CurrentUser, z.strRegRoot, "Eintrag1"), "d:\\X\\dbTessara.mdb");
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
    const std::string v8 = "Software\\Tessara\\Version_8";
    z.aryDbVerzeichnis = {"0"};
    EXPECT_TRUE(EintraegeInRegistrierdatenbank(z));
    EXPECT_TRUE(aufz.geschrieben.empty()) << "no database, nothing to enter";
    z.aryDbVerzeichnis = {"c:\\A", "d:\\B\\"};
    z.strAktuelleDb = "d:\\B\\dbTessara.mdb";
    for (int lauf = 0; lauf < 2; ++lauf) {
        aufz.geschrieben.clear();
        ASSERT_TRUE(EintraegeInRegistrierdatenbank(z));
        std::string namen;
        for (const auto& w : aufz.geschrieben)
            namen += (w.hive == Hive::LocalMachine ? "" : "HKCU!") + w.name + " ";
        // The Setup key with the application data only while the key is new.
        EXPECT_EQ(namen, lauf == 0 ? "Anwendungsdaten Eintrag2 Eintrag3 Eintrag1 "
                                   : "Eintrag2 Eintrag3 Eintrag1 ");
    }
    EXPECT_EQ(aufz.readString(Hive::LocalMachine, v8 + "\\Setup", "Anwendungsdaten"),
              env.commonAppData());
    EXPECT_EQ(aufz.readString(Hive::LocalMachine, v8, "Eintrag2"), "c:\\A\\dbTessara.mdb");
    EXPECT_EQ(aufz.readString(Hive::LocalMachine, v8, "Eintrag3"), "d:\\B\\dbTessara.mdb");
    EXPECT_EQ(aufz.readString(Hive::LocalMachine, v8, "Eintrag1"), z.strAktuelleDb);
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
