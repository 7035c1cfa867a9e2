#include "ui/frm_bildausschnitt_anpassen.h"

#include <QPushButton>
#include <utility>

#include "authoring/slide_library.h"
#include "startup/benutzer.h"
#include "startup/fehler_log.h"
#include "ui/beschriften.h"
#include "ui/slide_painter.h"
#include "ui_frm_bildausschnitt_anpassen.h"

namespace tessara {

FrmBildausschnittAnpassen::FrmBildausschnittAnpassen(ProgrammZustand& z,
                                                     const std::string& strDiaDatei,
                                                     std::function<bool(int)> anwenden,
                                                     QWidget* eltern)
    : QDialog(eltern),
      z_(z),
      strDiaDatei_(strDiaDatei),
      anwenden_(std::move(anwenden)),
      ui_(std::make_unique<Ui::FrmBildausschnittAnpassen>()) {
    ui_->setupUi(this);
    ui::subFormularBeschriften(z_, this);
    const std::pair<const char*, int> knoepfe[] = {
        {"cmbZoomGroß", Benutzer::kKnopfZoomGross},
        {"cmbZoomKlein", Benutzer::kKnopfZoomKlein},
        {"cmbPan", Benutzer::kKnopfPan},
        {"cmbVerdeckt", Benutzer::kKnopfVerdeckt},
        {"cmbElementeAusblenden", Benutzer::kKnopfElementeAusblenden},
        {"cmbFenster", Benutzer::kKnopfFenster}};
    for (const auto& [name, knopf] : knoepfe)
        connect(findChild<QPushButton*>(QString::fromUtf8(name)), &QPushButton::clicked, this,
                [this, k = knopf] { knopf_Click(k); });
    connect(ui_->cmbNein, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui_->sldBildausschnitt, &DiaFlaeche::groesseGeaendert, this,
            &FrmBildausschnittAnpassen::diaZeigen);
}

FrmBildausschnittAnpassen::~FrmBildausschnittAnpassen() = default;

// The host is busy while it changes the view and takes the slide (the
// user may pick in it): no second button meanwhile.
void FrmBildausschnittAnpassen::knopf_Click(int knopf) {
    setEnabled(false);
    if (anwenden_) anwenden_(knopf);
    setEnabled(true);
    diaZeigen();
}

void FrmBildausschnittAnpassen::diaZeigen() {
    Prozedur p(z_, "FrmBildausschnittAnpassen.diaZeigen", true);
    const QSize groesse = ui_->sldBildausschnitt->bildGroesse();
    if (groesse.isEmpty()) return;
    QImage bild;
    p.geschuetztNurLog([&] {
        p.step("Dia lesen");
        bild = ui::fctDiaBild(slide::fctDiaLaden(strDiaDatei_), groesse);
    });
    if (bild.isNull()) bild = ui::fctKeineVorschauBild(groesse, ui::DiaHintergrund::Dunkel);
    bild.setDevicePixelRatio(ui_->sldBildausschnitt->devicePixelRatioF());
    ui_->sldBildausschnitt->setBild(bild);
    emit diaGezeigt();
}

}  // namespace tessara
