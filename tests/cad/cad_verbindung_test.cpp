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
    bool verbinden(bool nurAutomation = false, bool ohneMeldung = false, bool lt = false) {
        booLt = lt;
        return ACAD_Connect(z, v, nurAutomation, ohneMeldung, booLt);
    }
    // The host found: "version|title|window|only the window".
    std::string satz() const {
        const auto& i = v.typAcadVersionInfo;
        return i.strACadVersion + "|" + i.strAcadTitel + "|" + std::to_string(i.lngAcadHwnd) + "|" +
               std::to_string(v.bytNurFenster);
    }
    std::shared_ptr<FakeAcadLog> log = std::make_shared<FakeAcadLog>();
    FakeAutomation automation;
    bool booLt = false;
};

TEST_F(Verbindung, AutomationMitBekannterVersion) {
    // The title is what comes before the first hyphen, the blank kept.
    autocadLaeuft("16.1s (LMS Tech)", "AutoCAD 2005 - [a-b.dwg]");
    desktop.addWindow("Editor");
    const auto h = desktop.addWindow("AutoCAD 2005 - [a-b.dwg]");
    ASSERT_TRUE(verbinden());
    EXPECT_EQ(satz(), "AutoCAD 2005|AutoCAD 2005 |" + std::to_string(h) + "|0");
    EXPECT_TRUE(v.acadApp);
    EXPECT_FALSE(fctIstAutoCadLt(v));
    EXPECT_TRUE(benutzer.gezeigt.empty());
}

TEST_F(Verbindung, UnbekannteVersionMeldetUndBleibtUnverbunden) {
    autocadLaeuft("15.0s (LMS Tech)", "AutoCAD 2000 - [a.dwg]");
    v.typAcadVersionInfo.strACadVersion = "vorher";
    desktop.addWindow("AutoCAD LT 2000");  // never reached: the message ends it
    EXPECT_FALSE(verbinden());
    ASSERT_EQ(benutzer.gezeigt.size(), 1u);
    EXPECT_EQ(benutzer.gezeigt[0].text,
              "Tessara findet nur ein AutoCAD mit der VersionsNr: 15.0s (LMS Tech)\r"
              "Bitte melden Sie sich bei der Firma Vendel");
    EXPECT_EQ(benutzer.gezeigt[0].titel, "Info");
    EXPECT_EQ(benutzer.gezeigt[0].symbol, Symbol::Information);
    EXPECT_EQ(v.typAcadVersionInfo.strACadVersion, "vorher");
    EXPECT_TRUE(desktop.activations().empty());
}

TEST_F(Verbindung, Version2008FaelltZurTitelsucheDurch) {
    for (std::string version : {"2007", "2008"}) {
        autocadLaeuft(version, "AutoCAD 2008 - [a.dwg]");
        platform::MemoryDesktop frisch(&uhr);
        plattform.desktop = &frisch;
        const auto h = frisch.addWindow("AutoCAD LT 2008 - [Plan.dwg]");
        v = CadVerbindung{};
        v.automation = &automation;
        ASSERT_TRUE(verbinden()) << version;
        EXPECT_EQ(satz(), "AutoCAD LT|AutoCAD LT|" + std::to_string(h) + "|1");
        EXPECT_TRUE(fctIstAutoCadLt(v));
        EXPECT_TRUE(benutzer.gezeigt.empty());
        plattform.desktop = &desktop;
    }
}

TEST_F(Verbindung, NurAutomationOhneHostGibtFalschOhneTitelsuche) {
    desktop.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]");
    EXPECT_FALSE(verbinden(true));
    EXPECT_TRUE(desktop.activations().empty());
    EXPECT_TRUE(benutzer.gezeigt.empty());
}

TEST_F(Verbindung, LtGewaehltProbiertZuerstAutoCad) {
    autocadLaeuft("20.0s (LMS Tech)", "AutoCAD 2015 - [a.dwg]");
    const auto h = desktop.addWindow("AutoCAD 2015 - [a.dwg]");
    ASSERT_TRUE(verbinden(false, false, true));
    EXPECT_EQ(satz(), "AutoCAD|AutoCAD|" + std::to_string(h) + "|0");
    EXPECT_FALSE(v.acadApp) << "the automation route is not tried when LT was chosen";
    EXPECT_FALSE(fctIstAutoCadLt(v));
}

TEST_F(Verbindung, OhneLtWahlKeinePlainAutoCadProbe) {
    // Automation fails, the title route must not take a plain "AutoCAD ..."
    // window as full AutoCAD.
    desktop.addWindow("AutoCAD 2015 - [a.dwg]");
    v.booFensterlisteAnbieten = true;  // and the user cancels it
    EXPECT_FALSE(verbinden());
    ASSERT_EQ(benutzer.gezeigt.size(), 1u);
    EXPECT_EQ(benutzer.gezeigt[0].text, "Meldung 118");
    EXPECT_EQ(benutzer.gezeigt[0].titel, "Meldung 117");
}

TEST_F(Verbindung, TitelUndNurFensterMarke) {
    for (const auto& f : tabelle("cad/golden/host_titel.txt")) {
        SCOPED_TRACE(f.at(0));
        platform::MemoryDesktop frisch(&uhr);
        plattform.desktop = &frisch;
        frisch.addWindow("Explorer");
        const auto h = frisch.addWindow(f[0]);
        v = CadVerbindung{};
        v.automation = &automation;
        ASSERT_TRUE(verbinden());
        EXPECT_EQ(satz(), "AutoCAD LT|" + f.at(1) + "|" + std::to_string(h) + "|" + f.at(2));
        plattform.desktop = &desktop;
    }
}

TEST_F(Verbindung, TitelReihenfolgeErsterTrefferDerListeGewinnt) {
    desktop.addWindow("ZWCAD 2012");
    desktop.addWindow("Bricscad Pro V10 - [Plan.dwg]");
    const auto easy = desktop.addWindow("Easy Sketch");
    ASSERT_TRUE(verbinden());
    EXPECT_EQ(v.typAcadVersionInfo.strAcadTitel, "Easy Sketch");
    EXPECT_EQ(v.typAcadVersionInfo.lngAcadHwnd, easy);
}

TEST_F(Verbindung, AktivierungsfehlerFuehrtZumNaechstenKandidaten) {
    const auto lt = desktop.addWindow("AutoCAD LT 2015");
    desktop.refuseActivation(lt);
    const auto zw = desktop.addWindow("ZWCAD 2012");
    ASSERT_TRUE(verbinden());
    EXPECT_EQ(satz(), "AutoCAD LT|ZWCAD|" + std::to_string(zw) + "|0");
}

TEST_F(Verbindung, FensterlisteWaehlen) {
    desktop.addWindow("Notepad");
    const auto h = desktop.addWindow("MeinCAD 7 - [Plan.dwg]");
    v.booFensterlisteAnbieten = true;
    benutzer.wahlen = {"MeinCAD 7 - [Plan.dwg]"};
    ASSERT_TRUE(verbinden());
    ASSERT_EQ(benutzer.listen.size(), 1u);
    EXPECT_EQ(benutzer.listen[0].titel, "Übersicht der geöffneten Fenster");
    EXPECT_EQ(benutzer.listen[0].frage, "Wählen Sie das AutoCAD-Fenster aus.");
    EXPECT_EQ(benutzer.listen[0].eintraege,
              (std::vector<std::string>{"Notepad", "MeinCAD 7 - [Plan.dwg]"}));
    EXPECT_EQ(satz().rfind("AutoCAD LT|MeinCAD 7 - [Plan.dwg]|" + std::to_string(h) + "|", 0), 0u);
}

TEST_F(Verbindung, FensterlisteUnterdrueckt) {
    desktop.addWindow("MeinCAD 7");
    std::string schluessel;
    v.fctMsgboxNichtMehrAnzeigen = [&](const std::string& k) {
        schluessel = k;
        return false;
    };
    v.booFensterlisteAnbieten = true;
    benutzer.wahlen = {"MeinCAD 7"};
    EXPECT_FALSE(verbinden());
    EXPECT_EQ(schluessel, "AutoCadTitel");
    EXPECT_TRUE(benutzer.listen.empty());
    EXPECT_EQ(benutzer.gezeigt.size(), 1u);
}

TEST_F(Verbindung, KeinHostOhneMeldung) {
    desktop.addWindow("Notepad");
    EXPECT_FALSE(verbinden(false, true));
    EXPECT_TRUE(benutzer.gezeigt.empty());
    EXPECT_FALSE(verbinden(false, false));
    EXPECT_EQ(benutzer.gezeigt.size(), 1u);
}

TEST_F(Verbindung, ErfolgloserAufrufLaesstDenSatzStehen) {
    const auto h = desktop.addWindow("AutoCAD LT 2015");
    ASSERT_TRUE(verbinden());
    desktop.removeWindow(h);
    EXPECT_FALSE(verbinden(false, true));
    EXPECT_EQ(satz(), "AutoCAD LT|AutoCAD LT|" + std::to_string(h) + "|1");
}

TEST_F(Verbindung, ObjektHolenStartetNurWennErlaubt) {
    automation.neu = std::make_shared<FakeAnwendung>(log);
    EXPECT_FALSE(fctAcadObjektHolen(z, v, true));
    EXPECT_EQ(automation.erzeugt, 0);
    EXPECT_TRUE(fctAcadObjektHolen(z, v, false));
    EXPECT_EQ(automation.erzeugt, 1);
    EXPECT_EQ(v.acadApp, automation.neu);
    // A running host is attached, not created.
    automation.laufend = std::make_shared<FakeAnwendung>(log);
    EXPECT_TRUE(fctAcadObjektHolen(z, v, false));
    EXPECT_EQ(automation.erzeugt, 1);
    EXPECT_EQ(v.acadApp, automation.laufend);
}

TEST_F(Verbindung, AcadStartOhneHostOderOhneZeichnungLiestKeinenSuchpfad) {
    EXPECT_EQ(ACAD_Start(z, v, "break"), "");
    auto app = autocadLaeuft("16.1s", "AutoCAD 2005");
    app->dokumente = 0;
    app->supportPfad = "c:\\support";
    EXPECT_EQ(ACAD_Start(z, v, "break"), "");
    EXPECT_FALSE(app->supportGelesen);
}

TEST_F(Verbindung, AcadStartSuchlisteUndLetzterVersuch) {
    auto app = autocadLaeuft("16.1s", "AutoCAD 2005");
    app->dokument->variablen["DWGPREFIX"] = "c:\\zeichnungen\\";
    app->pfad = "c:\\acad";
    app->supportPfad = "c:\\sup1;c:\\sup2\\;c:\\sup3";
    // Nothing exists: the last path tried comes back.
    EXPECT_EQ(ACAD_Start(z, v, "vorlage.lsp"), "c:\\sup3\\vorlage.lsp");
    // One separator between entry and file, whichever side brings one.
    anlegen("c:\\sup2\\vorlage.lsp");
    EXPECT_EQ(ACAD_Start(z, v, "vorlage.lsp"), "c:\\sup2\\vorlage.lsp");
    anlegen("c:\\acad\\vorlage.lsp");
    EXPECT_EQ(ACAD_Start(z, v, "vorlage.lsp"), "c:\\acad\\vorlage.lsp");
    anlegen("c:\\zeichnungen\\vorlage.lsp");
    EXPECT_EQ(ACAD_Start(z, v, "\\vorlage.lsp"), "c:\\zeichnungen\\vorlage.lsp");
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
