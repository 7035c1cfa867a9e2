#pragma once
// Every question, message, file dialog and progress display of the program
// goes through this interface: ui/ implements it with Qt windows, tests with
// scripted answers (SkriptBenutzer). Subsystem logic never opens a window.
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessara {

enum class Symbol { Keins, Information, Ausrufezeichen, Frage, Kritisch };
enum class Knoepfe { Ok, OkAbbrechen, JaNein, JaNeinAbbrechen };
enum class Antwort { Ok, Abbrechen, Ja, Nein };

class Benutzer {
  public:
    virtual ~Benutzer() = default;

    // A message box: text (lines joined with "\r"), title, icon and buttons.
    virtual Antwort meldung(const std::string& text, const std::string& titel, Symbol symbol,
                            Knoepfe knoepfe) = 0;
    // The same box with a check box ("Nicht mehr anzeigen") under the text;
    // angekreuzt tells whether it was ticked when the box closed. The default
    // shows the plain box, so an implementation without check boxes still
    // works: nothing is ever ticked.
    virtual Antwort meldungMitKontrollkaestchen(const std::string& text, const std::string& titel,
                                                Symbol symbol, Knoepfe knoepfe,
                                                const std::string& kaestchen, bool& angekreuzt) {
        (void)kaestchen;
        angekreuzt = false;
        return meldung(text, titel, symbol, knoepfe);
    }
    // The folder-selection dialog; empty when cancelled.
    virtual std::string ordnerWaehlen(const std::string& titel, const std::string& start) = 0;
    // A file dialog for opening (speichern = false) or saving; empty when cancelled.
    virtual std::string dateiWaehlen(const std::string& titel, const std::string& start,
                                     const std::string& filter, bool speichern) = 0;
    // Progress of long work: done of total steps, with a line of text. total 0 ends it.
    virtual void fortschritt(long erledigt, long gesamt, const std::string& text) = 0;
    // The same for work the user may stop: false once Cancel was pressed, and
    // the caller stops at its next consistent point. Without a Cancel button
    // the work always goes on.
    virtual bool fortschrittMitAbbruch(long erledigt, long gesamt, const std::string& text) {
        fortschritt(erledigt, gesamt, text);
        return true;
    }
    // The general selection list: title, question and the entries; answers
    // the chosen entry, empty when cancelled. An implementation without
    // lists chooses nothing.
    virtual std::string listeWaehlen(const std::string& titel, const std::string& frage,
                                     const std::vector<std::string>& eintraege) {
        (void)titel, (void)frage, (void)eintraege;
        return {};
    }
    // A name asked in a small window of its own (fenster names it:
    // "frmBlocknameEingeben", "frmBlocknameAendern"), its field showing
    // vorgabe. pruefen answers the number of the message that refuses a
    // name (shown; the window stays open) or 0. Nothing when cancelled; an
    // implementation without windows cancels.
    virtual std::optional<std::string> nameEingeben(
        const std::string& fenster, const std::string& vorgabe,
        const std::function<long(const std::string&)>& pruefen) {
        (void)fenster, (void)vorgabe, (void)pruefen;
        return std::nullopt;
    }
    // The window frmBildausschnittAnpassen: shows the slide; each button
    // pressed goes to anwenden (kKnopf... below), which changes the view and
    // takes the slide again, and the picture is drawn anew; cmbNein or
    // closing the window keeps the slide as it stands.
    static constexpr int kKnopfZoomGross = 0, kKnopfZoomKlein = 1, kKnopfPan = 2,
                         kKnopfVerdeckt = 3, kKnopfElementeAusblenden = 4, kKnopfFenster = 5;
    virtual void bildausschnittAnpassen(const std::string& strDiaDatei,
                                        const std::function<bool(int knopf)>& anwenden) {
        (void)strDiaDatei, (void)anwenden;
    }
};

// Test double: records what was shown and answers from a queue.
class SkriptBenutzer : public Benutzer {
  public:
    struct Gezeigt {
        std::string text, titel;
        Symbol symbol;
        Knoepfe knoepfe;
        std::string kaestchen;  // caption of the check box; empty: none
    };
    std::vector<Gezeigt> gezeigt;
    std::vector<Antwort> antworten;    // taken from the front; default Ok/Ja
    std::vector<std::string> ordner;   // answers for ordnerWaehlen
    std::vector<std::string> dateien;  // answers for dateiWaehlen
    std::vector<std::string> fortschritte;
    long abbrechenBei = -1;   // Cancel pressed once this many steps are done
    std::vector<bool> haken;  // check box states, from the front; default unticked
    struct Liste {
        std::string titel, frage;
        std::vector<std::string> eintraege;
    };
    std::vector<Liste> listen;        // the selection lists offered
    std::vector<std::string> wahlen;  // answers for listeWaehlen
    std::vector<std::string> namen;   // typed into nameEingeben in turn; none left: cancel
    std::vector<long> abgelehnt;      // the messages by which names were refused
    std::vector<int> gedrueckt;       // buttons pressed in bildausschnittAnpassen

    Antwort meldung(const std::string& text, const std::string& titel, Symbol symbol,
                    Knoepfe knoepfe) override {
        gezeigt.push_back({text, titel, symbol, knoepfe, {}});
        return antwort(knoepfe);
    }
    Antwort meldungMitKontrollkaestchen(const std::string& text, const std::string& titel,
                                        Symbol symbol, Knoepfe knoepfe,
                                        const std::string& kaestchen, bool& angekreuzt) override {
        gezeigt.push_back({text, titel, symbol, knoepfe, kaestchen});
        angekreuzt = false;
        if (!haken.empty()) {
            angekreuzt = haken.front();
            haken.erase(haken.begin());
        }
        return antwort(knoepfe);
    }
    std::string ordnerWaehlen(const std::string&, const std::string&) override {
        return nimm(ordner);
    }
    std::string dateiWaehlen(const std::string&, const std::string&, const std::string&,
                             bool) override {
        return nimm(dateien);
    }
    void fortschritt(long erledigt, long gesamt, const std::string& text) override {
        fortschritte.push_back(std::to_string(erledigt) + "/" + std::to_string(gesamt) + " " +
                               text);
    }
    bool fortschrittMitAbbruch(long erledigt, long gesamt, const std::string& text) override {
        fortschritt(erledigt, gesamt, text);
        return abbrechenBei < 0 || erledigt < abbrechenBei;
    }
    std::string listeWaehlen(const std::string& titel, const std::string& frage,
                             const std::vector<std::string>& eintraege) override {
        listen.push_back({titel, frage, eintraege});
        return nimm(wahlen);
    }
    std::optional<std::string> nameEingeben(
        const std::string&, const std::string&,
        const std::function<long(const std::string&)>& pruefen) override {
        while (!namen.empty()) {
            const std::string name = nimm(namen);
            const long nr = pruefen ? pruefen(name) : 0;
            if (nr == 0) return name;
            abgelehnt.push_back(nr);
        }
        return std::nullopt;
    }
    void bildausschnittAnpassen(const std::string&,
                                const std::function<bool(int)>& anwenden) override {
        for (const int k : gedrueckt) anwenden(k);
    }

  private:
    Antwort antwort(Knoepfe knoepfe) {
        if (!antworten.empty()) {
            Antwort a = antworten.front();
            antworten.erase(antworten.begin());
            return a;
        }
        return knoepfe == Knoepfe::JaNein || knoepfe == Knoepfe::JaNeinAbbrechen ? Antwort::Ja
                                                                                 : Antwort::Ok;
    }
    static std::string nimm(std::vector<std::string>& v) {
        if (v.empty()) return {};
        std::string s = v.front();
        v.erase(v.begin());
        return s;
    }
};

}  // namespace tessara
