// Lookup of captions in the sections "Speziell", "Gruppe" and "Allg", and
// what a missing caption or message does.
#include "captions/beschriftung.h"

#include <gtest/gtest.h>

#include "captions/meldungen.h"
#include "captions/umgebung.h"

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
    struct Fall {
        const char *form, *control;
        int eintrag;
        std::optional<std::string> erwartet;
    };
    const Fall faelle[] = {
        {"frmF", "cmbA", -1, "F: A"},
        {"frmG", "cmbA", -1, "gruppe A"},
        {"frmF", "cmbB", -1, "gruppe B"},
        {"frmF", "cmbC", -1, "allg C"},
        {"frmF", "", -1, "Titel F"},
        {"frmG", "", -1, std::nullopt},
        // names compare without regard to case; the file's bytes are Windows-1252
        {"frmf", "cmbSchliessen", -1, "Schließen"},
        // an array member: its own entry, else the array's
        {"frmF", "chkMarkieren_3", -1, "Mark 3"},
        {"frmF", "chkMarkieren_17", -1, "Mark"},
        {"frmF", "comboxBilder", 2, "9 Bilder (3 × 3)"},
        {"frmF", "comboxBilder", 3, std::nullopt},
        {"frmF", "cmbLang", -1, lang},  // not cut at 120 characters
        {"frmF", "cmbLeer", -1, ""},    // present and empty is not missing
        {"frmF", "cmbFehlt", -1, std::nullopt},
    };
    for (const auto& f : faelle) {
        EXPECT_EQ(fctBeschriftungSuchen(z, BeschriftungsArt::Frm, f.form, f.control, f.eintrag),
                  f.erwartet)
            << f.form << "." << f.control << " " << f.eintrag;
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
