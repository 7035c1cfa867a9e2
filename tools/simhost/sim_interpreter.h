#pragma once
// The command line of the simulated CAD host: it takes the inputs a user or
// a script gives (one answer per Enter, per blank outside quotes, or per
// script line), runs the handful of commands the program sends, and writes
// every input and every effect to its log for the tests to read.
#include <deque>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace simhost {

struct Linie {
    int x1, y1, x2, y2;
    int farbe;
};

class SimInterpreter {
  public:
    explicit SimInterpreter(std::ostream& log);

    // One input: a command name or an answer to the pending prompt.
    void eingabe(const std::string& text);
    void escape();
    // A pick in drawing coordinates (origin lower left).
    void linksklick(int x, int y);
    void rechtsklick();
    // The window became the active one, or stopped being it: tests wait on
    // this to know where typed keys go.
    void aktiviert(bool aktiv);

    // What the window shows below the drawing.
    std::string prompt() const;
    const std::vector<Linie>& zeichnung() const { return zeichnung_; }
    std::string variable(const std::string& name) const;

    // The screen size the slides are written for.
    static constexpr int kBreite = 640;
    static constexpr int kHoehe = 400;

  private:
    enum class Warten { Eingabe, Punkt, Rechtsklick };

    void schreib(const std::string& zeile);
    void ausfuehren(const std::string& text);
    void befehlBeginnen(const std::string& name, const std::string& roh);
    void antwort(const std::string& text);
    void fertig();
    void skriptLaden(const std::string& pfad);
    void skriptWeiter();
    void sliedeSchreiben(const std::string& pfad);
    void zeichnungSchreiben(const std::string& pfad);
    void einfuegungAbschliessen();

    std::ostream& log_;
    std::vector<Linie> zeichnung_;
    std::optional<std::vector<Linie>> undoMarke_;
    std::map<std::string, std::string> variablen_;
    std::set<std::string> bloecke_;

    std::string befehl_;                  // canonical name of the running command, empty at rest
    std::vector<std::string> antworten_;  // answers given to it so far
    Warten warten_ = Warten::Eingabe;
    std::optional<std::pair<int, int>> punkt_;

    // A transparent command ('setvar) running inside another one.
    std::string transparent_;
    std::vector<std::string> transparentAntworten_;

    std::deque<std::string> skript_;
    bool imSkript_ = false;
};

}  // namespace simhost
