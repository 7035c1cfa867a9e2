#pragma once
// Until the catalogue window exists, the main window reports what start-up
// found (Settings file, temporary directory, language, debug mode) and which
// requests were handed to it; it is what a second instance activates.
#include <QLabel>
#include <QListWidget>
#include <QWidget>

#include "startup/programm_zustand.h"
#include "startup/registry_werte.h"
#include "startup/schritt_ablauf.h"
#include "startup/start_ablauf.h"

namespace tessara {

class BerichtFenster : public QWidget, public Hauptfenster {
public:
    explicit BerichtFenster(ProgrammZustand& z);

    void laden() override;
    bool startAbbrechen() override { return false; }
    bool nurNachVorneHolen() override { return false; }
    void zeigen() override;
    platform::WindowHandle fensterHandle() override;
    void blockAnfrageAusfuehren() override;
    void datenbankWechseln(const std::string& strPfad) override;
    void timerIntervall(int millisekunden) override;

    // The lines of the start-up report, as also printed on standard output.
    std::vector<std::string> bericht() const;

protected:
    void closeEvent(QCloseEvent* e) override;

private:
    void melden(const std::string& zeile);

    ProgrammZustand& z_;
    SchrittAblauf laden_;
    SchrittAblauf entladen_;
    typSetupWerte setup_;
    QLabel* kopf_;
    QListWidget* liste_;
};

}  // namespace tessara
