// The library session over real .mdb files in a temporary directory: what a
// failed opening reports, the database list, write protection, the position
// kept per library, and the grid moves of the arrow keys.
#include "library/bibliothek_sitzung.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "authoring/code_tabelle.h"
#include "db/jet_opener.h"
#include "library/schema.h"
#include "platform/environment.h"
#include "startup/benutzer.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

class Sitzung : public ::testing::Test {
  protected:
    void SetUp() override {
        wurzel = fs::temp_directory_path() / ("tessara_sitzung_" + std::to_string(::getpid()));
        fs::remove_all(wurzel);
        fs::create_directories(wurzel / "prog");
        z.benutzer = &benutzer;
        z.strCTemp = pfad(wurzel) + "\\";
        z.strErrorDatei = z.strCTemp + "fehler.txt";
        z.strAppPfad = pfad(wurzel / "prog");
        z.strIniDatei = z.strAppPfad + "\\Tessara9.0.ini";
        std::ofstream(wurzel / "prog" / "txtPrefix.txt", std::ios::binary) << fctCodeTabelleText();
        ASSERT_TRUE(s.modell().fctCodeTabelleLesen(z.strAppPfad + "\\txtPrefix.txt"));
    }
    void TearDown() override { fs::remove_all(wurzel); }

    static std::string pfad(const fs::path& p) { return platform::programPath(p.string()); }
    // A library directory holding a new catalogue.
    std::string bibliothek(const std::string& name) {
        fs::create_directories(wurzel / name);
        const std::string db = pfad(wurzel / name / "dbTessara.mdb");
        EXPECT_TRUE(Mk_Datenbank(z, oeffner, db));
        return db;
    }

    fs::path wurzel;
    SkriptBenutzer benutzer;
    ProgrammZustand z;
    db::StorageOpener oeffner = db::jetOpener(platform::nativePath);
    BibliothekSitzung s{z, oeffner};
};

TEST_F(Sitzung, AFailedOpeningIsToldByNumberAndLeavesNoLibraryOpen) {
    const std::string fehlt = pfad(wurzel / "gibtsnicht");
    typOeffnenErgebnis r = s.fctOeffnen(fehlt + "\\dbTessara.mdb");
    EXPECT_EQ(r.lngMeldung, kMsgVerzeichnisFehlt);
    EXPECT_EQ(r.strPfad, fehlt);

    fs::create_directories(wurzel / "kaputt");
    std::ofstream(wurzel / "kaputt" / "dbTessara.mdb", std::ios::binary) << std::string(4096, 'x');
    const std::string kaputt = pfad(wurzel / "kaputt" / "dbTessara.mdb");
    r = s.fctOeffnen(kaputt);
    EXPECT_EQ(r.lngMeldung, kMsgBibliothekNichtOeffnen);
    EXPECT_EQ(r.strPfad, kaputt);
    EXPECT_EQ(r.lngGrund, kMsgDateiBeschaedigt);
    EXPECT_FALSE(s.modell().offen());
    EXPECT_EQ(s.strDbVerzeichnis(), "");

    // A directory without a catalogue gets a new one.
    fs::create_directories(wurzel / "neu");
    EXPECT_TRUE(s.fctOeffnen(pfad(wurzel / "neu" / "dbTessara.mdb")).ok());
    EXPECT_TRUE(fs::exists(wurzel / "neu" / "dbTessara.mdb"));
    EXPECT_EQ(s.strDbVerzeichnis(), pfad(wurzel / "neu"));
}

TEST_F(Sitzung, SwitchingByDirectoryJoinsTheListOnceAndReplacesAFirstStartPlaceholder) {
    const std::string a = bibliothek("a"), b = bibliothek("b");
    z.aryDbVerzeichnis = {""};
    ASSERT_TRUE(s.fctWechseln(pfad(wurzel / "a") + "\\").ok());
    ASSERT_TRUE(s.fctWechseln(b).ok());
    ASSERT_TRUE(s.fctWechseln(pfad(wurzel / "a")).ok());
    EXPECT_EQ(s.datenbankListe(),
              (std::vector<std::string>{pfad(wurzel / "a"), pfad(wurzel / "b")}));
    EXPECT_EQ(z.strAktuelleDb, a);
    EXPECT_TRUE(s.modell().offen());
}

TEST_F(Sitzung, ADatabaseFileMarkedReadOnlyWriteProtectsTheLibrary) {
    const std::string db = bibliothek("a");
    ASSERT_TRUE(s.fctOeffnen(db).ok());
    EXPECT_FALSE(s.schreibgeschuetzt());
    fs::permissions(wurzel / "a" / "dbTessara.mdb",
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    ASSERT_TRUE(s.fctOeffnen(db).ok());
    EXPECT_TRUE(s.schreibgeschuetzt());
}

TEST_F(Sitzung, EachLibraryComesBackWhereItWasLeft) {
    const std::string a = bibliothek("a"), b = bibliothek("b");
    ASSERT_TRUE(s.fctOeffnen(a).ok());
    ASSERT_TRUE(s.modell().GeheZuSeite(2));
    s.modell().subPositionSetzen(5);
    ASSERT_TRUE(s.fctOeffnen(b).ok());
    EXPECT_EQ(s.modell().intSeite(), 0);
    ASSERT_TRUE(s.fctOeffnen(a).ok());
    EXPECT_EQ(s.modell().intSeite(), 2);
    EXPECT_EQ(s.modell().intPosition(), 5);
}

TEST_F(Sitzung, ArrowKeysHomeAndEndStayOnThePage) {
    ASSERT_TRUE(s.fctOeffnen(bibliothek("a")).ok());
    ASSERT_TRUE(s.modell().BilderAnzeigenBeiGeaenderterBilderanzahl(2));  // 16 slots, 4 a row
    struct Fall {
        int von;
        RasterTaste taste;
        int nach;
    };
    const Fall faelle[] = {
        {5, RasterTaste::Links, 4},    {5, RasterTaste::Rechts, 6},   {5, RasterTaste::Hoch, 1},
        {5, RasterTaste::Runter, 9},   {5, RasterTaste::Anfang, 0},   {5, RasterTaste::Ende, 15},
        {0, RasterTaste::Links, 0},    {2, RasterTaste::Hoch, 2},     {15, RasterTaste::Rechts, 15},
        {13, RasterTaste::Runter, 13}, {11, RasterTaste::Runter, 15},
    };
    for (const auto& f : faelle) {
        s.modell().subPositionSetzen(f.von);
        EXPECT_EQ(s.fctRasterZiel(f.taste), f.nach)
            << "from " << f.von << " key " << static_cast<int>(f.taste);
    }
}

}  // namespace
}  // namespace tessara
