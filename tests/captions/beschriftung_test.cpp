// Lookup of captions in the sections "Speziell", "Gruppe" and "Allg", and
// what a missing caption or message does.
#include "captions/beschriftung.h"

#include <gtest/gtest.h>

#include "captions/meldungen.h"
#include "captions/umgebung.h"
#include "tabelle.h"

namespace tessara::captionstest {
namespace {

using Beschriftung = Umgebung;

std::size_t anzahl(const std::string& text, const std::string& teil) {
    std::size_t n = 0;
    for (auto p = text.find(teil); p != std::string::npos; p = text.find(teil, p + 1)) ++n;
    return n;
}

TEST_F(Beschriftung, SpeziellVorGruppeVorAllg) {
    const std::string lang(150, 'x');
    datei("Frm", "[Allg]\r\ncmbA=allg A\r\ncmbB=allg B\r\ncmbC=allg C\r\ncmbLang=" + lang +
                     "\r\ncmbLeer=allg leer\r\n"
                     "[Gruppe]\r\ncmbA=gruppe A\r\ncmbB=gruppe B\r\nchkMarkieren=Mark\r\n"
                     "comboxBilder_2=9 Bilder (3 \xD7 3)\r\ncmbLeer=\r\n"
                     "[Speziell]\r\nfrmF=Titel F\r\nfrmF.cmbA=F: A\r\nFRMF.CMBSCHLIESSEN=Schlie\xDF"
                     "en\r\nfrmF.chkMarkieren_3=Mark 3\r\n");
    for (const auto& f : test::tabelle("captions/golden/beschriftungen.txt")) {
        const auto erwartet = f.size() > 3 ? std::optional(f[3]) : std::nullopt;
        EXPECT_EQ(
            fctBeschriftungSuchen(z, BeschriftungsArt::Frm, f.at(0), f.at(1), std::stoi(f.at(2))),
            erwartet)
            << f[0] << "." << f[1] << " " << f[2];
    }
    EXPECT_EQ(fctBeschriftungSuchen(z, BeschriftungsArt::Tooltip, "frmF", "cmbA"), std::nullopt);
}

TEST_F(Beschriftung, FehlendesSichtbarUndEinmalGeloggt) {
    datei("Frm", "[Allg]\r\ncmbOk=OK\r\n");
    datei("Msgbox", "[Allg]\r\n3=Info\r\n");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(fctSteuerelementText(z, "frmF", "cmbFehlt"), "frmF.cmbFehlt");
        EXPECT_EQ(fctSteuerelementText(z, "frmF", ""), "frmF");
        EXPECT_EQ(fctBeschriftMsgboxZuordnen(z, 407, kGruppeAllg), "[Meldung 407]");
        EXPECT_EQ(fctBeschriftMsgboxZuordnen(z, 3, 7), "[Meldung 3]");  // no such group
        // Tool tips are optional: a missing one is not logged.
        EXPECT_EQ(fctBeschriftungSuchen(z, BeschriftungsArt::Tooltip, "frmF", "cmbFehlt"),
                  std::nullopt);
    }
    EXPECT_EQ(fctSteuerelementText(z, "frmF", "cmbOk"), "OK");
    const std::string l = log();
    EXPECT_EQ(anzahl(l, "\n"), 4u) << l;
    EXPECT_EQ(anzahl(l, "Beschriftung fehlt: frmF.cmbFehlt ("), 1u) << l;
    EXPECT_EQ(anzahl(l, "Beschriftung fehlt: frmF ("), 1u) << l;
    EXPECT_EQ(anzahl(l, "Meldung fehlt: 407 (Gruppe 1) ("), 1u) << l;
    EXPECT_EQ(anzahl(l, "Meldung fehlt: 3 (Gruppe 7) ("), 1u) << l;
    // A missing caption is no error of the run: the error count stays.
    EXPECT_EQ(z.fehler.intFehlerAnzahl, 0);
}

TEST_F(Beschriftung, OhneDateiKeinAbsturzUndGeaenderteDateiGilt) {
    EXPECT_EQ(fctSteuerelementText(z, "frmF", "cmbOk"), "frmF.cmbOk");
    EXPECT_EQ(fctBeschriftung(z, "ProgName"), "");
    datei("Frm", "[Allg]\r\nProgName=Tessara $\r\ncmbOk=OK\r\n");
    EXPECT_EQ(fctBeschriftung(z, "ProgName"), "Tessara $");
    datei("Frm", "[Allg]\r\nProgName=Tessara $\r\ncmbOk=Gut so\r\n");
    EXPECT_EQ(fctSteuerelementText(z, "frmF", "cmbOk"), "Gut so");
}

}  // namespace
}  // namespace tessara::captionstest
