#pragma once
// Message boxes, folder and file dialogs and progress through Qt windows.
#include <QPointer>
#include <QProgressDialog>
#include <QWidget>
#include <functional>

#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara {

// A file filter of the program ("Name (*.x)|*.x|…") in Qt's form.
QString fctQtFilter(const std::string& filter);

class QtBenutzer : public Benutzer {
  public:
    explicit QtBenutzer(QWidget* eltern = nullptr) : eltern_(eltern) {}
    void setEltern(QWidget* eltern) { eltern_ = eltern; }
    // The buttons of the boxes take their captions ("cmbOk", "cmbAbbrechen",
    // "cmbJa", "cmbNein") from the caption file of the user's language; Qt's
    // own English ones stay where a caption is missing.
    void setBeschriftung(std::function<std::string(const std::string&)> text) {
        beschriftung_ = std::move(text);
    }
    // The program's own windows (the name and the slide adjustment) caption
    // themselves and show numbered messages through the program state;
    // without it they are not offered and the question counts as cancelled.
    void setZustand(ProgrammZustand* z) { z_ = z; }

    Antwort meldung(const std::string& text, const std::string& titel, Symbol symbol,
                    Knoepfe knoepfe) override;
    Antwort meldungMitKontrollkaestchen(const std::string& text, const std::string& titel,
                                        Symbol symbol, Knoepfe knoepfe,
                                        const std::string& kaestchen, bool& angekreuzt) override;
    std::string ordnerWaehlen(const std::string& titel, const std::string& start) override;
    std::string dateiWaehlen(const std::string& titel, const std::string& start,
                             const std::string& filter, bool speichern) override;
    void fortschritt(long erledigt, long gesamt, const std::string& text) override;
    bool fortschrittMitAbbruch(long erledigt, long gesamt, const std::string& text) override;
    std::string listeWaehlen(const std::string& titel, const std::string& frage,
                             const std::vector<std::string>& eintraege) override;
    std::optional<std::string> nameEingeben(
        const std::string& fenster, const std::string& vorgabe,
        const std::function<long(const std::string&)>& pruefen) override;
    void bildausschnittAnpassen(const std::string& strDiaDatei,
                                const std::function<bool(int knopf)>& anwenden) override;

  private:
    Antwort zeigen(const std::string& text, const std::string& titel, Symbol symbol,
                   Knoepfe knoepfe, const std::string* kaestchen, bool& angekreuzt);
    bool fortschrittZeigen(long erledigt, long gesamt, const std::string& text, bool abbrechbar);

    std::function<std::string(const std::string&)> beschriftung_;
    ProgrammZustand* z_ = nullptr;
    QPointer<QWidget> eltern_;
    QPointer<QProgressDialog> fortschritt_;
};

}  // namespace tessara
