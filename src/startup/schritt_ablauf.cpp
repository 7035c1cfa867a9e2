#include "startup/schritt_ablauf.h"

#include <exception>

#include "startup/fehler_log.h"

namespace tessara {

SchrittAblauf::SchrittAblauf(std::string name, std::vector<std::string> labels)
    : name_(std::move(name)) {
    for (auto& l : labels) schritte_.push_back({std::move(l), {}, {}});
}

bool SchrittAblauf::setzen(const std::string& label, std::function<void()> aktion,
                           std::function<bool()> bedingung) {
    for (auto& s : schritte_) {
        if (s.label == label) {
            s.aktion = std::move(aktion);
            s.bedingung = std::move(bedingung);
            return true;
        }
    }
    return false;
}

std::vector<std::string> SchrittAblauf::offeneSchritte() const {
    std::vector<std::string> r;
    for (const auto& s : schritte_)
        if (!s.aktion) r.push_back(s.label);
    return r;
}

std::vector<std::string> SchrittAblauf::ausfuehren(ProgrammZustand& z) const {
    Prozedur p(z, name_, true);
    std::vector<std::string> gelaufen;
    for (const auto& s : schritte_) {
        try {
            if (s.bedingung && !s.bedingung()) continue;
        } catch (const std::exception& e) {
            p.fehler(e, true);
            continue;
        }
        p.step(s.label);
        gelaufen.push_back(s.label);
        if (!s.aktion) continue;
        try {
            s.aktion();
        } catch (const std::exception& e) {
            p.fehler(e, true);
        } catch (...) {
            p.fehler("unbekannter Fehler", 0, true);
        }
    }
    return gelaufen;
}

SchrittAblauf fctLadeAblauf() {
    return SchrittAblauf("Form_Load", {"Werte zuordnen",
                                       "ACAD_Connect",
                                       "me.show",
                                       "Daten aus Ini-DAtei lesen",
                                       "subAktuelleDatenbankAusRegistrierdatenbank",
                                       "SetupEinstellungenZuweisen",
                                       "nach vorhandener Db suchen",
                                       "erste Datenbank wird eingebunden",
                                       "Datenbank von Tessara7 kann importiert werden",
                                       "im Verzeichnis besteht schon eine Db",
                                       "Db wird neu angelegt",
                                       "setupeinstellungen zuweisen",
                                       "in Ini-Datei abspeichern",
                                       "in Registry abspeichern",
                                       "SlideEndung festlegen",
                                       "Menüdateien",
                                       "Startfenster anzeigen",
                                       "OptionsGruppeAnzeigen",
                                       "VerzeichnisOhneDb zuweisen",
                                       "Blockverwaltung beschriften",
                                       "Ordnernummern einlesen",
                                       "Bilderanzahl festlegen",
                                       "Formular auf Grösse Angleichen",
                                       "Verbindung zur Datenbank herstellen",
                                       "Blocknummern einlesen",
                                       "Werte für die Seite anzeigen",
                                       "Anzeigen aufrufen",
                                       "Maske in Position bringen"});
}

SchrittAblauf fctEntladeAblauf() {
    return SchrittAblauf(
        "Form_Unload", {"Zwischenspeicher abfragen", "Frage, ob Tessara geschlossen werden soll",
                        "Markierte Bloecke aus Db löschen", "longCurrent zuordnen",
                        "longCurrent abspeichern", "IniDatei speichern", "Einträge in die Registry",
                        "Rs schließen", "Temp-Verzeichnis löschen"});
}

}  // namespace tessara
