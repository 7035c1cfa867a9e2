// The host's menu files: their texts exact, and how they reach full AutoCAD
// (MenuGroups.Load, then "(load ...)"); AutoCAD LT gets none.
#include "cad/menue_dateien.h"

#include "cad_umgebung.h"
#include "fake_acad.h"

namespace tessara::test {
namespace {

class MenueDateien : public CadUmgebung {
  protected:
    void SetUp() override {
        CadUmgebung::SetUp();
        v.meldungsText = [](int n) {
            return n == 561   ? "&Tessara"
                   : n == 562 ? "Tessara &starten"
                              : "Letzten Block &einfügen";
        };
        v.acadApp = app;
        v.typAcadVersionInfo.strACadVersion = "AutoCAD 2005";
    }
    std::shared_ptr<FakeAcadLog> log = std::make_shared<FakeAcadLog>();
    std::shared_ptr<FakeAnwendung> app = std::make_shared<FakeAnwendung>(log);
};

TEST_F(MenueDateien, TexteGenauWieGoldenUndUeberMenuGroupsGeladen) {
    anlegen("c:\\Programme\\Tessara\\tessara9.0.exe");
    ASSERT_TRUE(fctMenueDateienLaden(z, v));
    for (const char* name : {"tessara.mnu", "tessara.mnl"})
        EXPECT_EQ(
            lesen(std::string("c:\\Programme\\Tessara\\") + name),
            dateiInhalt(std::filesystem::path(TESSARA_SOURCE_DIR) / "tests/cad/golden" / name))
            << name;
    EXPECT_EQ(log->eintraege,
              (std::vector<std::string>{
                  "MenuGroups.Load:c:\\Programme\\Tessara\\tessara.mnu",
                  "SendCommand:(load \"c:\\\\Programme\\\\Tessara\\\\tessara.mnl\") "}));
}

TEST_F(MenueDateien, InventorNamenUndNichtsFuerLtOderOhneAutomation) {
    z.strTblBlockInfo = "tblBlockInfoInventor";
    EXPECT_EQ(fctMenueDateiNamen(z, "c:\\x\\").strMnl, "c:\\x\\itessara.mnl");
    v.typAcadVersionInfo.strACadVersion = "AutoCAD LT";
    EXPECT_FALSE(fctMenueDateienLaden(z, v));
    v.typAcadVersionInfo.strACadVersion = "AutoCAD 2005";
    v.acadApp.reset();
    EXPECT_FALSE(fctMenueDateienLaden(z, v));
    EXPECT_TRUE(log->eintraege.empty());
    EXPECT_FALSE(std::filesystem::exists(datei("c:\\Programme\\Tessara")));
}

}  // namespace
}  // namespace tessara::test
