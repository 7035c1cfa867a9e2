// The windows of the Block editing flows under Xvfb: the name dialog, the
// slide adjustment, the Variant choice and management, and the Insertion
// points of the Block properties. Only the wiring: the rules are the models'.
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "authoring/slide.h"
#include "captions/meldungen.h"
#include "editing/block_name.h"
#include "editing/varianten.h"
#include "platform/environment.h"
#include "startup/einstellungen.h"
#include "ui/frm_bildausschnitt_anpassen.h"
#include "ui/frm_block_eigenschaften.h"
#include "ui/frm_blockname_eingeben.h"
#include "ui/frm_varianten_auswahl.h"
#include "ui/frm_variantenverwaltung.h"
#include "ui/frm_vollbild.h"
#include "ui/qt_benutzer.h"
#include "ui_umgebung.h"

namespace tessara::uitest {
namespace {

using Bearbeiten = HauptfensterTest;

TEST_F(Bearbeiten, TheNameDialogRefusesTooLongANameAndStaysOpen) {
    QtBenutzer qt;
    qt.setZustand(&z);
    hauptfensterLaden();
    sobaldOffen<FrmBlocknameEingeben>([this](FrmBlocknameEingeben* f) {
        EXPECT_EQ(f->windowTitle(), QString::fromUtf8("Blockname ändern"));
        eintippen(f, "txtBlocknameEingeben", QString(33, 'x'));
        klicken(f, "cmbOk");
        EXPECT_TRUE(f->isVisible());
        ASSERT_EQ(benutzer.gezeigt.size(), 1u);
        EXPECT_EQ(benutzer.gezeigt[0].text, fctBeschriftMsgboxZuordnen(z, 304, kGruppeAllg));
        eintippen(f, "txtBlocknameEingeben", QString::fromUtf8("Kugelhahn groß"));
        bildschirmfoto(f, "frmBlocknameAendern");
        klicken(f, "cmbOk");
    });
    EXPECT_EQ(qt.nameEingeben("frmBlocknameAendern", "Ventil",
                              [&](const std::string& n) {
                                  return fctBlocknamePruefen(z, fenster->modell().datenbank().con,
                                                             n, false);
                              }),
              "Kugelhahn groß");
}

TEST_F(Bearbeiten, EachAdjustButtonReachesTheHostAndTheSlideIsReadAgain) {
    const std::string dia = z.strCTemp + "0A.sld";
    const auto aufnehmen = [&](std::int16_t rand) {
        slide::Slide s;
        s.highX = 399, s.highY = 299;
        s.addVector(7, {rand, rand}, {200, static_cast<std::int16_t>(299 - rand)});
        s.addFill(1, {{195, 145}, {205, 145}, {205, 155}, {195, 155}});  // the red point
        slide::writeSlideFile(s, platform::nativePath(dia));
    };
    aufnehmen(100);
    std::vector<int> gedrueckt;
    FrmBildausschnittAnpassen f(z, dia, [&](int knopf) {
        gedrueckt.push_back(knopf);
        aufnehmen(10);
        return true;
    });
    QSignalSpy gezeigt(&f, &FrmBildausschnittAnpassen::diaGezeigt);
    f.show();
    QTRY_VERIFY(gezeigt.count() > 0);
    bildschirmfoto(&f, "frmBildausschnittAnpassen");
    const QImage vorher = kind<DiaFlaeche>(&f, "sldBildausschnitt")->bild();
    for (const char* k : {"cmbZoomGroß", "cmbZoomKlein", "cmbPan", "cmbVerdeckt",
                          "cmbElementeAusblenden", "cmbFenster"})
        klicken(&f, k);
    EXPECT_EQ(gedrueckt,
              (std::vector<int>{Benutzer::kKnopfZoomGross, Benutzer::kKnopfZoomKlein,
                                Benutzer::kKnopfPan, Benutzer::kKnopfVerdeckt,
                                Benutzer::kKnopfElementeAusblenden, Benutzer::kKnopfFenster}));
    EXPECT_NE(kind<DiaFlaeche>(&f, "sldBildausschnitt")->bild(), vorher);
    klicken(&f, "cmbNein");
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(protokoll(), "");
}

TEST_F(Bearbeiten, TheVariantChoiceAnswersTheBlockItselfOrTheChosenVariant) {
    IniSetValue(z, z.strIniDatei, "AllgemeineDaten", "sWidthFrmVaria", "500");
    typEinfuegeAuftrag a;
    a.block.BlkName[0] = "Ventil";
    a.varianten = {{"Ventil DN 50", "0010A_1"}, {"Ventil DN 80", "0010A_2"}};
    const auto waehlen = [&](int zeile) {
        sobaldOffen<FrmVariantenAuswahl>([this, zeile](FrmVariantenAuswahl* f) {
            EXPECT_EQ(f->width(), 500);
            auto* liste = kind<QListWidget>(f, "lisVarianten");
            EXPECT_EQ(liste->item(0)->text(), "Ventil");
            bildschirmfoto(f, "frmVariantenAuswahl");
            liste->setCurrentRow(zeile);
            klicken(f, "cmbOk");
        });
        return FrmVariantenAuswahl::waehlen(z, a);
    };
    EXPECT_EQ(waehlen(2)->BlockDateiName, "0010A_2");
    const auto selbst = waehlen(0);
    ASSERT_TRUE(selbst);
    EXPECT_EQ(selbst->BlockDateiName, "");
}

TEST_F(Bearbeiten, VariantsAreRenamedAndThePropertiesWriteAnInsertionPoint) {
    hauptfensterLaden();
    NavigationsModell& m = fenster->modell();
    const typSlot platz = m.seitenSlots().at(0);
    ASSERT_TRUE(platz.booBelegt);
    ASSERT_TRUE(subBlockdatenInDatenbankAbspeichernVariante(z, m, platz.strBlockNr, "Flansch",
                                                            platz.strBlockNr + "_1", {}));
    int aenderungen = 0;
    FrmVariantenverwaltung varianten(z, m, platz.strBlockNr, false, [&] { ++aenderungen; });
    varianten.show();
    benutzer.namen = {"Flansch PN 16"};
    klicken(&varianten, "cmbUmbenennen");
    EXPECT_EQ(kind<QListWidget>(&varianten, "lisVarianten")->item(0)->text(), "Flansch PN 16");
    EXPECT_EQ(aenderungen, 1);
    bildschirmfoto(&varianten, "frmVariantenverwaltung");

    FrmBlockEigenschaften f(z, m, *fctBlockEigenschaftenLesen(z, m, platz.lngNr), false, {});
    f.show();
    eintippen(&f, "txtEinfuegepktX_1", "12,5");
    bildschirmfoto(&f, "frmBlockEigenschaften_Einfuegepunkte");
    klicken(&f, "cmbOk");
    EXPECT_FALSE(f.isVisible());
    const auto punkte = fctEinfuegepunkteLesen(z, m, platz.strBlockNr, 0);
    ASSERT_TRUE(punkte);
    EXPECT_EQ((*punkte)[1].x, "12.5");
}

}  // namespace
}  // namespace tessara::uitest
