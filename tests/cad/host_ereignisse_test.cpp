// The object that receives the host's events, driven by the fake AutoCAD:
// the drawing it follows, and what is left of the host once it has closed.
#include "cad/host_ereignisse.h"

#include <gtest/gtest.h>

#include "cad_umgebung.h"
#include "fake_acad.h"

namespace tessara::test {
namespace {

class HostEreignisse : public CadUmgebung {
  protected:
    void SetUp() override {
        CadUmgebung::SetUp();
        std::filesystem::create_directories(laufwerk / "plaene");
        app->dokument->variablen["DWGPREFIX"] = "c:\\plaene\\";
        v.acadApp = app;
        v.typAcadVersionInfo = {"AutoCAD 2005", 0x4711, "AutoCAD 2005 "};
    }
    // What the window last heard: "title|write-protected|host closed".
    std::string gehoert() const {
        return gemeldet.strTitel + "|" + std::to_string(gemeldet.booSchreibgeschuetzt) + "|" +
               std::to_string(gemeldet.booHostBeendet);
    }
    std::shared_ptr<FakeAcadLog> log = std::make_shared<FakeAcadLog>();
    std::shared_ptr<FakeAnwendung> app = std::make_shared<FakeAnwendung>(log);
    typAktiveZeichnung gemeldet;
    int meldungen = 0;
    clsHostEreignisse ereignisse{z, v, [this](const typAktiveZeichnung& a) {
                                     gemeldet = a;
                                     ++meldungen;
                                 }};
};

TEST_F(HostEreignisse, FolgenDerAktivenZeichnungBisDerHostSchliesst) {
    ASSERT_TRUE(ereignisse.abonnieren());
    EXPECT_EQ(gehoert(), "Zeichnung1.dwg|0|0");
    struct Schritt {
        AcadEreignis e;
        const char *titel, *verzeichnis, *erwartet;
    };
    // A directory that cannot be written: one that is not there.
    for (const Schritt& s : std::vector<Schritt>{
             {AcadEreignis::DokumentGeoeffnet, "Plan.dwg", "c:\\weg\\", "Plan.dwg|1|0"},
             {AcadEreignis::DokumentGeschlossen, "Plan.dwg", "c:\\weg\\", "|0|0"},
             {AcadEreignis::DokumentAktiviert, "Zeichnung1.dwg", "c:\\plaene\\",
              "Zeichnung1.dwg|0|0"},
             {AcadEreignis::DokumentAktiviert, "Neu.dwg", "", "Neu.dwg|0|0"}}) {
        app->dokument->titel = s.titel;
        app->dokument->variablen["DWGPREFIX"] = s.verzeichnis;
        app->ausloesen(s.e, s.titel);
        EXPECT_EQ(gehoert(), s.erwartet) << s.titel;
    }
    app->ausloesen(AcadEreignis::AnwendungEnde);
    EXPECT_EQ(gehoert(), "|0|1");
    EXPECT_EQ(v.acadApp, nullptr);
    EXPECT_EQ(v.typAcadVersionInfo.strACadVersion, "");
    EXPECT_EQ(v.typAcadVersionInfo.lngAcadHwnd, 0u);
    EXPECT_FALSE(app->empfaenger) << "the subscription ends with the host";
    // A host started anew is followed once the program has connected to it.
    auto zweite = std::make_shared<FakeAnwendung>(log);
    EXPECT_FALSE(ereignisse.abonnieren());
    v.acadApp = zweite;
    ASSERT_TRUE(ereignisse.abonnieren());
    EXPECT_TRUE(zweite->empfaenger);
    EXPECT_EQ(gehoert(), "Zeichnung1.dwg|0|0");
}

TEST_F(HostEreignisse, OhneWithEventKeinAbonnementUndEinHostOhneZeichnungIstKeinFehler) {
    z.bytOhneWithEvent = 1;
    EXPECT_FALSE(ereignisse.abonnieren());
    EXPECT_FALSE(app->empfaenger);
    EXPECT_EQ(meldungen, 0);

    z.bytOhneWithEvent = 0;
    app->dokumente = 0;  // ActiveDocument raises
    ASSERT_TRUE(ereignisse.abonnieren());
    EXPECT_EQ(gehoert(), "|0|0");
    app->ausloesen(AcadEreignis::DokumentAktiviert, "x.dwg");
    EXPECT_EQ(gehoert(), "|0|0");
}

TEST_F(HostEreignisse, EinHostDerNachDemEndeDesEmpfaengersRuftTrifftNiemanden) {
    auto kurz = std::make_unique<clsHostEreignisse>(
        z, v, [this](const typAktiveZeichnung&) { ++meldungen; });
    ASSERT_TRUE(kurz->abonnieren());
    auto empfaenger = app->empfaenger;  // as a host may still hold it
    const int vorher = meldungen;
    kurz.reset();
    EXPECT_FALSE(app->empfaenger);
    empfaenger(AcadEreignis::AnwendungEnde, "");
    EXPECT_EQ(meldungen, vorher);
    EXPECT_NE(v.acadApp, nullptr);
}

}  // namespace
}  // namespace tessara::test
