#include "bericht_fenster.h"

#include <QVBoxLayout>
#include <iostream>

#include "captions/beschriftung.h"
#include "platform/environment.h"
#include "startup/einstellungen.h"

#include <QCloseEvent>

namespace tessara {

BerichtFenster::BerichtFenster(ProgrammZustand& z)
    : z_(z), laden_(fctLadeAblauf()), entladen_(fctEntladeAblauf()), kopf_(new QLabel(this)), liste_(new QListWidget(this)) {
    auto* lay = new QVBoxLayout(this);
    lay->addWidget(kopf_);
    lay->addWidget(liste_);
    resize(720, 360);

    laden_.setzen("Werte zuordnen", [this] {
        setWindowTitle(QString::fromStdString(fctFensterTitel(z_, fctBeschriftung(z_, "ProgName"))));
        kopf_->setText(QString::fromUtf8("Tessara: Start-Bericht"));
    });
    laden_.setzen("me.show", [this] { zeigen(); });
    laden_.setzen("Daten aus Ini-DAtei lesen", [this] {
        fctIniDateiErsterStart(z_);
        subLesenTessaraIniDatei(z_);
    });
    laden_.setzen("subAktuelleDatenbankAusRegistrierdatenbank",
                  [this] { EintraegeAusRegistrierdatenbank(z_); });
    laden_.setzen("SetupEinstellungenZuweisen", [this] { SetupEinstellungenZuweisen(z_, setup_); });

    entladen_.setzen("IniDatei speichern", [this] { subSpeichernTessaraIniDatei(z_); });
    entladen_.setzen("Einträge in die Registry", [this] { subRegistryEintraegeSpeichern(z_); });
}

void BerichtFenster::closeEvent(QCloseEvent* e) {
    entladen_.ausfuehren(z_);
    e->accept();
}

std::vector<std::string> BerichtFenster::bericht() const {
    return {"Einstellungsdatei: " + z_.strIniDatei + " (" + platform::nativePath(z_.strIniDatei) + ")",
            "Temp-Verzeichnis: " + z_.strCTemp + " (" + platform::nativePath(z_.strCTemp) + ")",
            "Sprache: " + z_.strSprache,
            std::string("Debug-Modus: ") + (z_.booDebug ? "ein" : "aus"),
            "Fehlerprotokoll: " + z_.strErrorDatei,
            "Datenbanken: " + [this] {
                std::string s;
                for (const auto& d : z_.aryDbVerzeichnis) s += (s.empty() ? "" : "; ") + d;
                return s;
            }(),
            "Aktuelle Datenbank: " + z_.strAktuelleDb};
}

void BerichtFenster::melden(const std::string& zeile) {
    liste_->addItem(QString::fromStdString(zeile));
    std::cout << zeile << std::endl;
}

void BerichtFenster::laden() {
    laden_.ausfuehren(z_);
    for (const auto& zeile : bericht()) melden(zeile);
    melden("bereit");
}

void BerichtFenster::zeigen() {
    show();
    raise();
    activateWindow();
}

platform::WindowHandle BerichtFenster::fensterHandle() {
    return static_cast<platform::WindowHandle>(winId());
}

void BerichtFenster::blockAnfrageAusfuehren() {
    melden("Blockanfrage: " + z_.strUebergabeBlock + ";" + z_.strUebergabeVariante);
}

void BerichtFenster::datenbankWechseln(const std::string& strPfad) {
    melden("Datenbank: " + strPfad);
}

void BerichtFenster::timerIntervall(int millisekunden) {
    (void)millisekunden;
}

}  // namespace tessara
