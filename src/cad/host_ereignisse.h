#pragma once
// The object that receives the CAD host's events: it follows the drawing
// active in the host (its title and whether its directory can be written)
// and, when the host goes away, drops what the program held of it, so that
// the next operation connects afresh instead of talking to a closed host.
#include <functional>
#include <memory>
#include <string>

#include "cad/acad_automation.h"
#include "cad/cad_verbindung.h"
#include "startup/programm_zustand.h"

namespace tessara {

struct typAktiveZeichnung {
    std::string strTitel;        // the drawing's WindowTitle; empty: none open
    std::string strVerzeichnis;  // its directory (DWGPREFIX), program form
    bool booSchreibgeschuetzt = false;
    bool booHostBeendet = false;  // the host has closed
};

class clsHostEreignisse {
  public:
    using Beobachter = std::function<void(const typAktiveZeichnung&)>;
    clsHostEreignisse(ProgrammZustand& z, CadVerbindung& v, Beobachter beobachter);
    ~clsHostEreignisse();
    clsHostEreignisse(const clsHostEreignisse&) = delete;
    clsHostEreignisse& operator=(const clsHostEreignisse&) = delete;

    // Subscribes to the connected host's events unless "bytOhneWithEvent"
    // says otherwise; called again after a connection was made, it moves the
    // subscription to the new host. True while subscribed.
    bool abonnieren();
    void ereignis(AcadEreignis e, const std::string& strDatei);
    const typAktiveZeichnung& aktiv() const { return aktiv_; }

  private:
    void aktiveLesen();
    void melden();

    ProgrammZustand& z_;
    CadVerbindung& v_;
    Beobachter beobachter_;
    std::shared_ptr<AcadAnwendung> app_;  // the host subscribed to
    // Held by the receivers handed to the host: a host that calls after this
    // object is gone finds it expired.
    std::shared_ptr<clsHostEreignisse*> selbst_;
    typAktiveZeichnung aktiv_;
};

}  // namespace tessara
