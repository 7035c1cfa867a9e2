#pragma once
// The command line of the simulated CAD host: it takes the inputs a user or
// a script gives (one answer per Enter, per blank outside quotes, or per
// script line), runs the handful of commands the program sends, and writes
// every input and every effect to its log for the tests to read.
#include <deque>
#include <fstream>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "sim_zeichnung.h"

namespace simhost {

class SimInterpreter {
  public:
    explicit SimInterpreter(std::ostream& log);

    // One input: a command name or an answer to the pending prompt.
    void eingabe(const std::string& text);
    void escape();
    // A click on the screen, in pixels with the origin lower left: a point
    // through the view, or the pick of the nearest object while selecting.
    void linksklick(int x, int y);
    void rechtsklick();
    // The window became the active one, or stopped being it: tests wait on
    // this to know where typed keys go.
    void aktiviert(bool aktiv);

    // What the window shows below the drawing.
    std::string prompt() const;
    const std::vector<Objekt>& objekte() const { return objekte_; }
    // What the screen shows, as a slide would take it.
    std::vector<Bildlinie> bildschirm() const { return bild(objekte_, ansicht_); }
    std::string variable(const std::string& name) const;

  private:
    enum class Warten { Eingabe, Punkt, Auswahl };
    struct Stand {
        std::vector<Objekt> objekte;
        Ansicht ansicht;
    };

    void schreib(const std::string& zeile);
    bool istVariable(const std::string& name) const;
    void ausfuehren(const std::string& text);
    void befehlBeginnen(const std::string& name, const std::string& roh);
    void antwort(const std::string& text);
    void punktNehmen(Punkt p);
    void auswahlBeginnen();
    void auswahlText(const std::string& text);
    void waehlen(const Objekt& o);
    void auswahlEnde();
    void aendern(const std::string& text);
    void zoomen(const std::string& text);
    void ansichtSetzen(const std::string& was, const Ansicht& neu);
    void fertig();
    void skriptLaden(const std::string& pfad);
    void skriptWeiter();
    void slideSchreiben(const std::string& pfad);
    bool zeichnungSchreiben(const std::string& pfad, const std::vector<Objekt>& objekte,
                            const std::string& basis);
    void einfuegungAbschliessen();
    void layerAntwort(const std::string& text);
    void layerListe(const std::string& muster);
    void logDatei(const std::string& zeile);

    std::ostream& log_;
    std::vector<Objekt> objekte_;
    Ansicht ansicht_;
    int naechsteId_ = 1;
    std::optional<Stand> undoMarke_;
    std::map<std::string, std::string> variablen_;
    std::set<std::string> bloecke_;

    // The drawing's layers by their upper-case name; "0" is always there.
    struct Layer {
        std::string name;
        int farbe = 7;
        std::string linientyp = "Continuous";
        bool ein = true, gefroren = false, gesperrt = false;
    };
    std::map<std::string, Layer> layer_;
    std::string layerOption_;               // -LAYER: the option whose layer names come next
    std::optional<std::string> layerWert_;  // its colour or line type, once given
    // LOGFILEON: the command history goes to this file until LOGFILEOFF.
    std::optional<std::ofstream> logDatei_;

    std::string befehl_;                  // canonical name of the running command, empty at rest
    std::vector<std::string> antworten_;  // answers given to it so far
    Warten warten_ = Warten::Eingabe;
    std::string frage_;           // a yes/no question of the running command, empty when none
    std::optional<Punkt> punkt_;  // INSERT's insertion point
    std::vector<Punkt> punkte_;   // points of the running command
    std::vector<int> auswahl_;    // ids picked by the running selection
    std::vector<int> vorherige_;  // the previous selection set ("_p")
    std::string eigenschaft_;     // CHANGE: the property the next answer sets

    // A transparent command ('setvar) running inside another one.
    std::string transparent_;
    std::vector<std::string> transparentAntworten_;

    std::deque<std::string> skript_;
    bool imSkript_ = false;
};

}  // namespace simhost
