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

}  // namespace
