// Connection and version detection: the automation route against a fake
// AutoCAD server, the title route against the scripted desktop.
#include "cad/cad_verbindung.h"

#include <gtest/gtest.h>

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

struct Fall {
    const char* name;
    bool nurAutomation = false, ohneMeldung = false, lt = false;
};

// Each case sets up the running hosts and windows; what the connection then
// found, showed and activated is in golden/verbindung.txt ("== case").
TEST_F(Verbindung, Faelle) {
    std::string schluessel;
    const std::vector<std::pair<Fall, std::function<void()>>> faelle{
        // The title is what comes before the first hyphen, the blank kept.
        {{"Automation mit bekannter Version"},
         [&] {
             autocadLaeuft("16.1s (LMS Tech)", "AutoCAD 2005 - [a-b.dwg]");
             desktop.addWindow("Editor");
             desktop.addWindow("AutoCAD 2005 - [a-b.dwg]");
         }},
        {{"unbekannte Version meldet"},
         [&] {
             autocadLaeuft("15.0s (LMS Tech)", "AutoCAD 2000 - [a.dwg]");
             v.typAcadVersionInfo.strACadVersion = "vorher";
             desktop.addWindow("AutoCAD LT 2000");  // never reached: the message ends it
         }},
        {{"Version 2007 faellt zur Titelsuche durch"},
         [&] {
             autocadLaeuft("2007", "AutoCAD 2008 - [a.dwg]");
             desktop.addWindow("AutoCAD LT 2008 - [Plan.dwg]");
         }},
        {{"Version 2008 faellt zur Titelsuche durch"},
         [&] {
             autocadLaeuft("2008", "AutoCAD 2008 - [a.dwg]");
             desktop.addWindow("AutoCAD LT 2008 - [Plan.dwg]");
         }},
        {{"nur Automation, ohne Host", true},
         [&] { desktop.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]"); }},
        {{"LT gewaehlt probiert zuerst AutoCAD", false, false, true},
         [&] {
             autocadLaeuft("20.0s (LMS Tech)", "AutoCAD 2015 - [a.dwg]");
             desktop.addWindow("AutoCAD 2015 - [a.dwg]");
         }},
        // Automation fails: the title route must not take a plain
        // "AutoCAD ..." window as full AutoCAD. The user cancels the list.
        {{"ohne LT-Wahl keine AutoCAD-Titelprobe"},
         [&] {
             desktop.addWindow("AutoCAD 2015 - [a.dwg]");
             v.booFensterlisteAnbieten = true;
         }},
        {{"der erste Treffer der Titelliste gewinnt"},
         [&] {
             for (const char* t : {"ZWCAD 2012", "Bricscad Pro V10 - [Plan.dwg]", "Easy Sketch"})
                 desktop.addWindow(t);
         }},
        {{"Aktivierungsfehler fuehrt zum naechsten Kandidaten"},
         [&] {
             desktop.refuseActivation(desktop.addWindow("AutoCAD LT 2015"));
             desktop.addWindow("ZWCAD 2012");
         }},
        {{"Fensterliste"},
         [&] {
             desktop.addWindow("Notepad");
             desktop.addWindow("MeinCAD 7 - [Plan.dwg]");
             v.booFensterlisteAnbieten = true;
             benutzer.wahlen = {"MeinCAD 7 - [Plan.dwg]"};
         }},
        {{"Fensterliste unterdrueckt"},
         [&] {
             desktop.addWindow("MeinCAD 7");
             v.fctMsgboxNichtMehrAnzeigen = [&](const std::string& k) {
                 schluessel = k;
                 return false;
             };
             v.booFensterlisteAnbieten = true;
             benutzer.wahlen = {"MeinCAD 7"};
         }},
        {{"kein Host, ohne Meldung", false, true}, [&] { desktop.addWindow("Notepad"); }},
        {{"kein Host, mit Meldung"}, [&] { desktop.addWindow("Notepad"); }},
        {{"erfolgloser Aufruf laesst den Satz stehen", false, true},
         [&] {
             const auto h = desktop.addWindow("AutoCAD LT 2015");
             bool lt = false;
             ASSERT_TRUE(ACAD_Connect(z, v, false, false, lt));
             desktop.removeWindow(h);
         }},
    };
    std::vector<std::string> ist;
    for (const auto& [f, vorher] : faelle) {
        automation = {};
        desktop = platform::MemoryDesktop{&uhr};
        benutzer = {};
        schluessel.clear();
        v = {};
        SetUp();
        vorher();
        bool lt = f.lt;
        ist.push_back(std::string("== ") + f.name);
        const bool ok = ACAD_Connect(z, v, f.nurAutomation, f.ohneMeldung, lt);
        ist.push_back("verbunden: " + std::to_string(ok) +
                      " automation: " + std::to_string(v.acadApp != nullptr) +
                      " lt: " + std::to_string(fctIstAutoCadLt(v)));
        ist.push_back("satz: " + satz());
        std::string aktiviert = "aktiviert:";
        for (auto h : desktop.activations()) aktiviert += " " + std::to_string(h);
        ist.push_back(aktiviert);
        for (const auto& g : benutzer.gezeigt)
            ist.push_back("gezeigt: " + g.text + " | " + g.titel + " | " +
                          std::to_string(static_cast<int>(g.symbol)));
        for (const auto& l : benutzer.listen) {
            ist.push_back("liste: " + l.titel + " | " + l.frage);
            for (const auto& e : l.eintraege) ist.push_back("  " + e);
        }
        if (!schluessel.empty()) ist.push_back("nicht mehr zeigen? " + schluessel);
    }
    goldenVergleich("verbindung.txt", ist);
}

TEST_F(Verbindung, TitelUndNurFensterMarke) {
    for (const auto& f : tabelle("cad/golden/host_titel.txt")) {
        SCOPED_TRACE(f.at(0));
        desktop = platform::MemoryDesktop{&uhr};
        v = {};
        v.automation = &automation;
        desktop.addWindow("Explorer");
        const auto h = desktop.addWindow(f[0]);
        bool lt = false;
        ASSERT_TRUE(ACAD_Connect(z, v, false, false, lt));
        EXPECT_EQ(satz(), "AutoCAD LT|" + f.at(1) + "|" + std::to_string(h) + "|" + f.at(2));
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
