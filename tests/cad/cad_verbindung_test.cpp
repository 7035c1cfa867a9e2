// Connection and version detection: the automation route against a fake
// AutoCAD server, the title route against the scripted desktop.
#include "cad/cad_verbindung.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "cad_umgebung.h"
#include "fake_acad.h"
#include "tabelle.h"

namespace tessara::test {
namespace {

TEST(VersionsTabelle, ErsteFuenfZeichenEntscheiden) {
    for (const auto& f : tabelle("cad/golden/versionen.txt"))
        EXPECT_EQ(fctAcadVersionZuordnen(f.at(0)), f.at(1)) << f[0];
}

class Verbindung : public CadUmgebung {
  protected:
    void SetUp() override {
        CadUmgebung::SetUp();
        v.automation = &automation;
        v.meldungsText = [](int nr) { return "Meldung " + std::to_string(nr); };
    }
    std::shared_ptr<FakeAnwendung> autocadLaeuft(const std::string& version,
                                                 const std::string& caption) {
        auto app = std::make_shared<FakeAnwendung>(log);
        app->version = version;
        app->caption = caption;
        automation.laufend = app;
        return app;
    }
    // The host found: "version|title|window|only the window".
    std::string satz() const {
        const auto& i = v.typAcadVersionInfo;
        return i.strACadVersion + "|" + i.strAcadTitel + "|" + std::to_string(i.lngAcadHwnd) + "|" +
               std::to_string(v.bytNurFenster);
    }
    std::shared_ptr<FakeAcadLog> log = std::make_shared<FakeAcadLog>();
    FakeAutomation automation;
};

// The cases of golden/verbindung.txt: the hosts running and the windows on
// the desktop, how the connection is called, and what it then found, showed
// and activated.
TEST_F(Verbindung, Faelle) {
    for (const auto& f : tabelle("cad/golden/verbindung.txt")) {
        SCOPED_TRACE(f.at(2) + " " + f.at(3));
        const auto pfeil = std::find(f.begin(), f.end(), "=>");
        ASSERT_EQ(pfeil - f.begin(), 5);
        automation = {};
        desktop = platform::MemoryDesktop{&uhr};
        benutzer = {};
        v = {};
        SetUp();
        if (!f[0].empty()) autocadLaeuft(f[0], f[1]);
        std::vector<platform::WindowHandle> fenster;
        std::istringstream titel(f[2]);
        for (std::string t; std::getline(titel, t, ';');) {
            fenster.push_back(desktop.addWindow(t.substr(t[0] == '~')));
            if (t[0] == '~') desktop.refuseActivation(fenster.back());
        }
        auto nr = [&](platform::WindowHandle h) {
            const auto i = std::find(fenster.begin(), fenster.end(), h) - fenster.begin();
            return std::to_string(i == static_cast<long>(fenster.size()) ? 0 : i + 1);
        };
        auto art = [&](char c) { return f[3].find(c) != std::string::npos; };
        std::string nichtMehr;
        v.booFensterlisteAnbieten = art('F') || art('N');
        if (art('N'))
            v.fctMsgboxNichtMehrAnzeigen = [&](const std::string& k) {
                nichtMehr = "nicht mehr: " + k;
                return false;
            };
        if (art('V')) v.typAcadVersionInfo.strACadVersion = "vorher";
        if (!f[4].empty()) benutzer.wahlen = {f[4]};
        bool lt = art('L');
        if (art('Z')) {
            ASSERT_TRUE(ACAD_Connect(z, v, false, false, lt));
            desktop.removeWindow(fenster.back());
            desktop.clearRecords();
        }
        const bool ok = ACAD_Connect(z, v, art('A'), art('S'), lt);
        const auto& i = v.typAcadVersionInfo;
        std::vector<std::string> ist{std::to_string(ok) + std::to_string(v.acadApp != nullptr) +
                                         std::to_string(fctIstAutoCadLt(v)),
                                     i.strACadVersion + "," + i.strAcadTitel + "," +
                                         nr(i.lngAcadHwnd) + "," + std::to_string(v.bytNurFenster),
                                     "", "", nichtMehr};
        for (auto h : desktop.activations()) ist[2] += nr(h);
        for (const auto& g : benutzer.gezeigt)
            ist[3] += g.text + "," + g.titel + "," + std::to_string(static_cast<int>(g.symbol));
        for (const auto& l : benutzer.listen) {
            ist[4] += l.titel + "," + l.frage;
            for (const auto& e : l.eintraege) ist[4] += "," + e;
        }
        EXPECT_EQ(ist, std::vector<std::string>(pfeil + 1, f.end()));
    }
}

TEST_F(Verbindung, ObjektHolenStartetNurWennErlaubt) {
    automation.neu = std::make_shared<FakeAnwendung>(log);
    EXPECT_FALSE(fctAcadObjektHolen(z, v, true));
    EXPECT_TRUE(fctAcadObjektHolen(z, v, false));
    EXPECT_EQ(v.acadApp, automation.neu);
    // A running host is attached, not created.
    automation.laufend = std::make_shared<FakeAnwendung>(log);
    EXPECT_TRUE(fctAcadObjektHolen(z, v, false));
    EXPECT_EQ(automation.erzeugt, 1);
    EXPECT_EQ(v.acadApp, automation.laufend);
}

TEST_F(Verbindung, AcadStartSuchlisteUndLetzterVersuch) {
    EXPECT_EQ(ACAD_Start(z, v, "break"), "") << "no host";
    auto app = autocadLaeuft("16.1s", "AutoCAD 2005");
    app->dokumente = 0;
    EXPECT_EQ(ACAD_Start(z, v, "break"), "") << "no drawing";
    EXPECT_FALSE(app->supportGelesen);
    app->dokumente = 1;
    app->dokument->variablen["DWGPREFIX"] = "c:\\zeichnungen\\";
    app->pfad = "c:\\acad";
    app->supportPfad = "c:\\sup1;c:\\sup2\\;c:\\sup3";
    // Nothing exists: the last path tried comes back. One separator between
    // entry and file, whichever side brings one.
    for (const auto& [da, datei, erwartet] : std::vector<std::array<std::string, 3>>{
             {"", "vorlage.lsp", "c:\\sup3\\vorlage.lsp"},
             {"c:\\sup2\\vorlage.lsp", "vorlage.lsp", "c:\\sup2\\vorlage.lsp"},
             {"c:\\acad\\vorlage.lsp", "vorlage.lsp", "c:\\acad\\vorlage.lsp"},
             {"c:\\zeichnungen\\vorlage.lsp", "\\vorlage.lsp", "c:\\zeichnungen\\vorlage.lsp"}}) {
        if (!da.empty()) anlegen(da);
        EXPECT_EQ(ACAD_Start(z, v, datei), erwartet);
    }
}

TEST_F(Verbindung, DokumentSchliessen) {
    auto app = autocadLaeuft("16.1s", "AutoCAD 2005");
    EXPECT_FALSE(fctAcadDokumentSchliessen(z, v)) << "no application held yet";
    v.acadApp = app;
    EXPECT_TRUE(fctAcadDokumentSchliessen(z, v));
    EXPECT_TRUE(app->dokument->geschlossen);
    app->dokument->closeWirft = true;
    EXPECT_FALSE(fctAcadDokumentSchliessen(z, v));
}

}  // namespace
}  // namespace tessara::test
