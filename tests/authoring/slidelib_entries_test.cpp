// The operations that tie SlideLib entries and block files together, over a
// catalogue made by Mk_Datenbank and real files in a temporary directory.
#include "authoring/slidelib_entries.h"

#include <gtest/gtest.h>

#include "db/memory_opener.h"
#include "library/schema.h"
#include "library/zugriff.h"
#include "tabelle.h"
#include "temp_verzeichnis.h"

namespace {

using namespace tessara;
namespace fs = std::filesystem;

class SlideLibEintraege : public slidetest::TempVerzeichnis {
  protected:
    void SetUp() override {
        slidetest::TempVerzeichnis::SetUp();
        ASSERT_TRUE(Mk_Datenbank(z, oeffner, "db"));
        ASSERT_TRUE(fctConnectionOeffnen(z, con, "db"));
        con.execute("INSERT INTO tblOrdner (OrdnerNr, Ordnername) VALUES ('001', 'Armaturen')");
    }
    std::shared_ptr<sql::MemoryFiles> files = std::make_shared<sql::MemoryFiles>();
    db::StorageOpener oeffner = db::memoryOpener(files);
    db::Connection con{oeffner};
};

TEST_F(SlideLibEintraege, RelativeFormAusAbsolutenPfaden) {
    for (const auto& f : tessara::test::tabelle("authoring/golden/slidelib_relativ.txt"))
        EXPECT_EQ(fctSlideLibRelativ(f.at(0), "C:\\Tessara\\", "001"), f.at(1)) << f[0];
}

TEST_F(SlideLibEintraege, PfadEintragAendernLaesstRelativeEintraegeStehen) {
    con.execute(
        "INSERT INTO tblBlockInfo (Block, OrdnerID, SlideLib) VALUES ('0010001', 2, "
        "'C:\\Tessara\\001\\00100010.slb')");
    con.execute(
        "INSERT INTO tblBlockInfo (Block, OrdnerID, SlideLib) VALUES ('0010002', 2, "
        "'001\\00100020.sld')");
    con.execute(
        "INSERT INTO tblBlockInfo (Block, OrdnerID, SlideLib) VALUES ('0000003', 1, "
        "'E:\\x\\000\\00000030.slb')");
    db::Recordset rsOrdner;
    ASSERT_EQ(fctRsEinlesenAllgemein(z, con, rsOrdner, "tblOrdner", ""), 2);
    rsOrdner.setAbsolutePosition(2);

    EXPECT_EQ(fctPfadEintragAendern(z, con, rsOrdner, "C:\\Tessara\\"), 2);
    EXPECT_EQ(rsOrdner.absolutePosition(), 2);
    db::Recordset rs;
    rs.open("SELECT Block, SlideLib FROM tblBlockInfo ORDER BY Block", con);
    std::vector<std::string> werte;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) werte.push_back(rs.text("SlideLib"));
    EXPECT_EQ(werte, (std::vector<std::string>{"000\\00000030.slb", "001\\00100010.slb",
                                               "001\\00100020.sld"}));
    ASSERT_FALSE(benutzer.fortschritte.empty());
    EXPECT_NE(benutzer.fortschritte.front().find("DatenbankEinträge müssen geändert werden."),
              std::string::npos);
}

TEST_F(SlideLibEintraege, DateienZiehenMitDemBlockUm) {
    for (const char* f : {"001/00100170.slb", "001/00100171.slb", "001/00100173.sld",
                          "001/Block/00100170.dwg", "001/Block/00100172.dwg",
                          "001/Block/Varia/0010017_DN500.dwg", "001/Block/Varia/0010017_DN50.dat",
                          "001/Block/Varia/0010018_DN500.dwg", "001/00100180.slb"})
        datei(f);
    con.execute(
        "INSERT INTO tblBlockInfo (Block, OrdnerID, SlideLib) VALUES ('0010017', 2, "
        "'001\\00100170.slb')");
    db::Recordset rs;
    ASSERT_TRUE(
        fctRsEinlesenMitEinemKriterium(z, con, rs, "tblBlockInfo", "Block", "0010017", false));

    ASSERT_TRUE(DateienUmEinePositionVerschieben(z, rs, basis, "001", "0010017", "0010025"));
    for (const char* f : {"001/00100250.slb", "001/00100251.slb", "001/00100253.sld",
                          "001/Block/00100250.dwg", "001/Block/00100252.dwg",
                          "001/Block/Varia/0010025_DN500.dwg", "001/Block/Varia/0010025_DN50.dat"})
        EXPECT_TRUE(fs::exists(wurzel / f)) << f;
    for (const char* f :
         {"001/00100170.slb", "001/Block/00100170.dwg", "001/Block/Varia/0010017_DN500.dwg"})
        EXPECT_FALSE(fs::exists(wurzel / f)) << f;
    // Another block's files stay where they are.
    EXPECT_TRUE(fs::exists(wurzel / "001/Block/Varia/0010018_DN500.dwg"));
    EXPECT_TRUE(fs::exists(wurzel / "001/00100180.slb"));
    EXPECT_EQ(z.fehler.intFehlerAnzahl, 0);

    db::Recordset pruef;
    fctRsEinlesenMitEinemKriterium(z, con, pruef, "tblBlockInfo", "Block", "0010017", false);
    EXPECT_EQ(pruef.text("SlideLib"), "001\\00100250.slb");
}

}  // namespace
