// The layer manager: configurations in the Settings file, and the drawing's
// layers read from and set on the host (the simulated host for the script
// channel, the fake automation object for full AutoCAD).
#include "cad/layer_verwaltung.h"

#include <gtest/gtest.h>

#include <sstream>

#include "cad_umgebung.h"
#include "fake_acad.h"
#include "sim_interpreter.h"

namespace tessara::test {
namespace {

class LayerVerwaltung : public CadUmgebung {
  protected:
    const typLayerKonfiguration entwurf{"Entwurf",
                                        {{"0", 7, "Continuous", true, false, false},
                                         {"Wände", 1, "DASHED", true, false, true},
                                         {"Alte Möbel", 30, "HIDDEN", false, true, false}}};
};

TEST_F(LayerVerwaltung, KonfigurationSpeichernListenUmbenennenLoeschen) {
    EXPECT_TRUE(fctLayerKonfigurationenListe(z).empty());
    ASSERT_TRUE(fctLayerKonfigurationSpeichern(z, entwurf));
    ASSERT_TRUE(fctLayerKonfigurationSpeichern(z, {"Plot", {}}));
    EXPECT_NE(lesen(z.strIniDatei).find("Layer1=W\xE4nde;1;DASHED;1;0;1\r\n"), std::string::npos);
    EXPECT_EQ(fctLayerKonfigurationenListe(z), (std::vector<std::string>{"Entwurf", "Plot"}));
    const auto g = fctLayerKonfigurationLesen(z, "entwurf");
    EXPECT_TRUE(g.booGefunden && g.fehlerhafteZeilen.empty());
    EXPECT_EQ(g.konfiguration.layer, entwurf.layer);
    EXPECT_TRUE(fctLayerKonfigurationLesen(z, "Plot").booGefunden);

    EXPECT_FALSE(fctLayerKonfigurationUmbenennen(z, "Entwurf", "PLOT")) << "name in use";
    ASSERT_TRUE(fctLayerKonfigurationUmbenennen(z, "Entwurf", "Bestand"));
    EXPECT_EQ(fctLayerKonfigurationLesen(z, "Bestand").konfiguration.layer, entwurf.layer);
    ASSERT_TRUE(fctLayerKonfigurationLoeschen(z, "Plot"));
    EXPECT_FALSE(fctLayerKonfigurationLoeschen(z, "Plot"));
    EXPECT_EQ(fctLayerKonfigurationenListe(z), (std::vector<std::string>{"Bestand"}));
    for (const auto& [name, nr] : std::vector<std::pair<std::string, long>>{
             {" ", 600}, {"a]b", 601}, {"a;b", 601}, {"Erdgeschoss 1:50", 0}})
        EXPECT_EQ(fctLayerKonfigurationNamePruefen(name), nr) << name;
}

TEST_F(LayerVerwaltung, KonfigurationMitFehlerhaftenZeilen) {
    anlegen(z.strIniDatei, dateiInhalt(std::filesystem::path(TESSARA_SOURCE_DIR) /
                                       "tests/cad/golden/layer_einstellungen.ini"));
    EXPECT_EQ(fctLayerKonfigurationenListe(z), (std::vector<std::string>{"Entwurf", "Plot"}));
    const auto g = fctLayerKonfigurationLesen(z, "Entwurf");
    std::vector<std::string> namen;
    for (const auto& l : g.konfiguration.layer) namen.push_back(l.strName);
    EXPECT_EQ(namen, (std::vector<std::string>{"0", "Wände", "Möbel"}));
    EXPECT_EQ(g.konfiguration.layer[2], (typLayer{"Möbel", 30, "HIDDEN", false, true, true}));
    EXPECT_EQ(g.fehlerhafteZeilen,
              (std::vector<std::string>{
                  "Layer2=Achsen;300;CENTER;1;0;0", "Layer3=Text;2;Continuous;ja;0;0",
                  "Layer4=Bemaßung;3;Continuous;0;1", "Zeile ohne Gleichheitszeichen",
                  "Farbe=Text;2;Continuous;1;0;0", "Layer5=;4;Continuous;1;0;0"}));
    EXPECT_FALSE(fctLayerKonfigurationLesen(z, "Fehlt").booGefunden);
}

// The script channel against the simulated host: the keys typed reach its
// command line as a user's would, a blank or a return ending each input.
TEST_F(LayerVerwaltung, AnwendenUndLesenImSimuliertenHost) {
    std::ostringstream log;
    simhost::SimInterpreter host(log);
    desktop.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]");
    v.typAcadVersionInfo = {"AutoCAD LT", 0, "AutoCAD LT"};
    desktop.onKeys = [&](const platform::MemoryDesktop::TypedKeys& t) {
        std::string k = t.keys, eingabe;
        for (std::size_t i = 0; i < k.size(); ++i) {
            if (k.compare(i, 5, "{ESC}") == 0) {
                host.escape();
                i += 4;
            } else if (k[i] == '\r' || k[i] == ' ') {
                host.eingabe(eingabe);
                eingabe.clear();
            } else {
                eingabe += k[i];
            }
        }
    };
    ASSERT_TRUE(fctLayerKonfigurationAnwenden(z, v, {}, entwurf));
    for (const char* zeile :
         {"BEFEHL LAYER", "LAYER NEU Wände", "LAYER Wände farbe=1", "LAYER Wände linientyp=DASHED",
          "LAYER Wände gesperrt", "LAYER NEU Alte Möbel", "LAYER Alte Möbel aus",
          "LAYER Alte Möbel gefroren", "LAYER ENDE"})
        EXPECT_NE(log.str().find("\n" + std::string(zeile) + "\n"), std::string::npos) << zeile;
    EXPECT_EQ(host.variable("FILEDIA"), "1");

    const auto gelesen = fctLayerVomHostLesen(z, v, {});
    ASSERT_TRUE(gelesen.booOk) << gelesen.strFehler << log.str();
    auto erwartet = entwurf.layer;
    std::swap(erwartet[1], erwartet[2]);  // the host lists them by name
    EXPECT_EQ(gelesen.layer, erwartet) << log.str();
}

TEST_F(LayerVerwaltung, VollesAutoCadUeberLayersUndSendCommand) {
    auto log = std::make_shared<FakeAcadLog>();
    auto app = std::make_shared<FakeAnwendung>(log);
    app->dokument->layers = entwurf.layer;
    EXPECT_FALSE(fctLayerVomHostLesen(z, v, {}).booOk) << "not connected";
    EXPECT_FALSE(fctLayerKonfigurationAnwenden(z, v, {}, entwurf));
    v.acadApp = app;
    v.typAcadVersionInfo.strACadVersion = "AutoCAD 2005";
    EXPECT_EQ(fctLayerVomHostLesen(z, v, {}).layer, entwurf.layer);
    ASSERT_TRUE(fctLayerKonfigurationAnwenden(z, v, {}, {"x", {entwurf.layer[2]}}));
    EXPECT_EQ(log->eintraege.back(),
              "SendCommand:._-layer\r_new\r\"Alte Möbel\"\r_color\r30\r\"Alte Möbel\"\r_ltype\r"
              "HIDDEN\r\"Alte Möbel\"\r_off\r\"Alte Möbel\"\r_freeze\r\"Alte Möbel\"\r_unlock\r"
              "\"Alte Möbel\"\r\r");
}

}  // namespace
}  // namespace tessara::test
